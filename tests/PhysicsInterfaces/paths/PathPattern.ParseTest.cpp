#include <tarn/PathPattern.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/Error.h>

namespace tarn {
namespace {

using testing::IsEmpty;
using Start = PathPattern::Start;
using Kind = PathPattern::StepKind;

/// "offset+length: message".
std::string faultOf(std::string const& text) {
  PathPattern::Fault fault;
  if (PathPattern::parse(text, fault)) return "none";
  return std::to_string(fault.offset) + "+" + std::to_string(fault.length) + ": " + fault.message;
}

TEST(PathPattern, ADefaultConstructedPatternIsTheContextItself) {
  PathPattern const pattern;
  std::string path;

  EXPECT_EQ(pattern.start(), Start::Context);
  EXPECT_THAT(pattern.steps(), IsEmpty());
  EXPECT_TRUE(pattern.isSingle());
  EXPECT_FALSE(pattern.isAbsolute());
  EXPECT_TRUE(pattern.resolve(TDFContext("/Case/Domain:rotor"), path));
  EXPECT_EQ(path, "/Case/Domain:rotor");
}

TEST(PathPattern, EachFormOfAComponentIsAStepOfItsKind) {
  PathPattern const pattern("/Turbulence/Boundary:inlet/Boundary:*/*/**/..");

  EXPECT_EQ(pattern.start(), Start::Root);
  ASSERT_EQ(pattern.steps().size(), 6U);
  EXPECT_EQ(pattern.steps()[0].kind, Kind::Child);
  EXPECT_EQ(pattern.steps()[0].type, "Turbulence");
  EXPECT_EQ(pattern.steps()[0].name, "");
  EXPECT_EQ(pattern.steps()[1].kind, Kind::Child);
  EXPECT_EQ(pattern.steps()[1].type, "Boundary");
  EXPECT_EQ(pattern.steps()[1].name, "inlet");
  EXPECT_EQ(pattern.steps()[2].kind, Kind::ChildrenOfType);
  EXPECT_EQ(pattern.steps()[2].type, "Boundary");
  EXPECT_EQ(pattern.steps()[3].kind, Kind::AnyChild);
  EXPECT_EQ(pattern.steps()[4].kind, Kind::AnyDepth);
  EXPECT_EQ(pattern.steps()[5].kind, Kind::Parent);
}

TEST(PathPattern, TheBeginningDecidesWhereItStarts) {
  EXPECT_EQ(PathPattern("/Case").start(), Start::Root);
  EXPECT_EQ(PathPattern("/").start(), Start::Root);
  EXPECT_EQ(PathPattern("Case").start(), Start::Context);
  EXPECT_EQ(PathPattern("..").start(), Start::Context);
  EXPECT_EQ(PathPattern("@").start(), Start::Owner);
  EXPECT_EQ(PathPattern("@/Motion").start(), Start::Owner);
  EXPECT_EQ(PathPattern("^Domain").start(), Start::Nearest);
  EXPECT_EQ(PathPattern("^Domain").startType(), "Domain");
  EXPECT_EQ(PathPattern("^Domain/Motion").steps().size(), 1U);
  EXPECT_EQ(PathPattern("Case").startType(), "");
}

TEST(PathPattern, OnlyWildcardsNameMoreThanOneObject) {
  for (char const* const single : {"/", "@", "..", "^Domain/..", "/Case/Domain:rotor", "Motion"}) {
    EXPECT_TRUE(PathPattern(single).isSingle()) << single;
  }
  for (char const* const many : {"*", "**", "Domain:*", "/Case/*/Motion", "**/.."}) {
    EXPECT_FALSE(PathPattern(many).isSingle()) << many;
  }
}

TEST(PathPattern, OnlyAPatternFromTheRootIsAbsolute) {
  EXPECT_TRUE(PathPattern("/").isAbsolute());
  EXPECT_TRUE(PathPattern("/Case/Domain:*").isAbsolute());
  for (char const* const relative : {"Case", "..", "@", "^Domain", "**"}) {
    EXPECT_FALSE(PathPattern(relative).isAbsolute()) << relative;
  }
}

TEST(PathPattern, ABlankIsPartOfANameButNotAtItsEnds) {
  PathPattern const pattern("  / Output Control / Material : Water at 25 C  ");

  ASSERT_EQ(pattern.steps().size(), 2U);
  EXPECT_TRUE(pattern.isAbsolute());
  EXPECT_EQ(pattern.steps()[0].type, "Output Control");
  EXPECT_EQ(pattern.steps()[1].type, "Material");
  EXPECT_EQ(pattern.steps()[1].name, "Water at 25 C");
}

TEST(PathPattern, ABackslashTakesTheNextCharacterAsItIs) {
  std::map<std::string, std::string> const types = {
      {R"(\*)", "*"},     {R"(\*\*)", "**"},     {R"(\..)", ".."},    {R"(\^Domain)", "^Domain"}, {R"(\@)", "@"},
      {R"(a\}b)", "a}b"}, {R"(a\\b)", R"(a\b)"}, {R"(\ a\ )", " a "}, {R"(\Case)", "Case"},       {R"(50\*)", "50*"}};
  for (auto const& [text, type] : types) {
    PathPattern const pattern(text);
    EXPECT_EQ(pattern.start(), Start::Context) << text;
    ASSERT_EQ(pattern.steps().size(), 1U) << text;
    EXPECT_EQ(pattern.steps()[0].kind, Kind::Child) << text;
    EXPECT_EQ(pattern.steps()[0].type, type) << text;
  }
  PathPattern const named(R"(Boundary:\*)");
  EXPECT_EQ(named.steps()[0].kind, Kind::Child);
  EXPECT_EQ(named.steps()[0].name, "*");
}

TEST(PathPattern, AnEscapeInTheTypeDoesNotHideTheCaretBeforeIt) {
  PathPattern const pattern(R"(^Domain\*/Motion)");

  EXPECT_EQ(pattern.start(), Start::Nearest);
  EXPECT_EQ(pattern.startType(), "Domain*");
  EXPECT_EQ(pattern.steps().size(), 1U);
}

TEST(PathPattern, AtAndDotsAreOrdinaryAsPartOfAName) {
  EXPECT_EQ(PathPattern("@home").steps()[0].type, "@home");
  EXPECT_EQ(PathPattern("...").steps()[0].type, "...");
  EXPECT_EQ(PathPattern("Wall:..").steps()[0].name, "..");
  EXPECT_EQ(PathPattern("Wall:@").steps()[0].name, "@");
}

TEST(PathPattern, FaultsAreToldWithTheirPlace) {
  EXPECT_EQ(faultOf(""), "0+1: the path is empty");
  EXPECT_EQ(faultOf("   "), "0+3: the path is empty");
  EXPECT_EQ(faultOf("/Case//Motion"), "6+1: a component of the path is empty");
  EXPECT_EQ(faultOf("Case/"), "5+1: a component of the path is empty");
  EXPECT_EQ(faultOf("Case/ /Motion"), "5+1: a component of the path is empty");
  EXPECT_EQ(faultOf("/:rotor"), "1+6: the type before ':' is empty");
  EXPECT_EQ(faultOf("Domain:"), "6+1: the name after ':' is empty");
  EXPECT_EQ(faultOf("Domain:a:b"), "8+1: a component has a second ':'");
  EXPECT_EQ(faultOf("Case\\"), "4+1: '\\' must be followed by a character");
  EXPECT_EQ(faultOf(R"(a\/b)"), "1+2: a type or name cannot contain '/'");
  EXPECT_EQ(faultOf(R"(a\:b)"), "1+2: a type or name cannot contain ':'");
  EXPECT_EQ(faultOf("Case/^Domain"), "5+7: '^' is allowed only at the beginning of a path");
  EXPECT_EQ(faultOf("/@"), "1+1: '@' is allowed only at the beginning of a path");
  EXPECT_EQ(faultOf("@:x"), "0+1: '@' is allowed only at the beginning of a path");
  EXPECT_EQ(faultOf("Dom*"),
            "0+4: '*' can only replace a whole component or a whole name; write '\\*' for the character");
  EXPECT_EQ(faultOf("*:x"),
            "0+1: '*' can only replace a whole component or a whole name; write '\\*' for the character");
  EXPECT_EQ(faultOf("Domain:ro*"), "7+3: '*' can only replace a whole name; write '\\*' for the character");
  EXPECT_EQ(faultOf("Domain:**"), "7+2: '*' can only replace a whole name; write '\\*' for the character");
  EXPECT_EQ(faultOf("^"), "0+1: '^' needs a type after it");
  EXPECT_EQ(faultOf("^Domain:x"), "8+1: '^' takes a type only, without a name");
  EXPECT_EQ(faultOf("^*"), "0+2: '^' needs the name of a type after it");
}

TEST(PathPattern, TheConstructorThrowsForWhatIsNoPattern) {
  EXPECT_THROW(PathPattern("/Case//Motion"), Error);
  EXPECT_THROW(PathPattern(""), Error);
}

TEST(PathPattern, AThousandComponentsAreTakenAndOneMoreIsNot) {
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "/A";
  EXPECT_EQ(PathPattern(text).steps().size(), 1000U);
  EXPECT_EQ(faultOf(text + "/B"), "2001+1: the path has more than 1000 components");
}

TEST(PathPattern, AParameterIsTheLastComponent) {
  PathPattern::Fault fault;
  std::string name;

  auto const plain = PathPattern::parseParameter(" Flow Regime ", name, fault);
  ASSERT_TRUE(plain);
  EXPECT_EQ(name, "Flow Regime");
  EXPECT_THAT(plain->steps(), IsEmpty());
  EXPECT_EQ(plain->start(), Start::Context);

  auto const nearest = PathPattern::parseParameter("^Domain/Motion", name, fault);
  ASSERT_TRUE(nearest);
  EXPECT_EQ(name, "Motion");
  EXPECT_EQ(nearest->start(), Start::Nearest);

  auto const many = PathPattern::parseParameter("/Case/Domain:*/Material", name, fault);
  ASSERT_TRUE(many);
  EXPECT_EQ(name, "Material");
  EXPECT_FALSE(many->isSingle());

  auto const ofRoot = PathPattern::parseParameter("/Title", name, fault);
  ASSERT_TRUE(ofRoot);
  EXPECT_TRUE(ofRoot->isAbsolute());
  EXPECT_THAT(ofRoot->steps(), IsEmpty());

  auto const starred = PathPattern::parseParameter(R"(../\*)", name, fault);
  ASSERT_TRUE(starred);
  EXPECT_EQ(name, "*");
}

TEST(PathPattern, APathThatEndsInNoNameIsNoParameter) {
  std::map<std::string, std::string> const faults = {
      {"/", "0+1: the path must end in the name of a parameter"},
      {"..", "0+2: the path must end in the name of a parameter"},
      {"@", "0+1: the path must end in the name of a parameter"},
      {"^Domain", "0+7: the path must end in the name of a parameter"},
      {"Domain:*/*", "9+1: the path must end in the name of a parameter"},
      {"/Case/Domain:rotor", "6+12: the path must end in the name of a parameter, which cannot contain ':'"},
      {"Domain:*", "0+8: the path must end in the name of a parameter, which cannot contain ':'"},
      {"a//b", "2+1: a component of the path is empty"}};
  for (auto const& [text, expected] : faults) {
    PathPattern::Fault fault;
    std::string name;
    EXPECT_FALSE(PathPattern::parseParameter(text, name, fault)) << text;
    EXPECT_EQ(std::to_string(fault.offset) + "+" + std::to_string(fault.length) + ": " + fault.message, expected)
        << text;
  }
}

}  // namespace
}  // namespace tarn
