#include <tarn/PathPattern.h>

#include <algorithm>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/Error.h>

#include "support/MapModel.h"

namespace tarn {
namespace {

using test::MapModel;
using testing::ElementsAre;
using testing::IsEmpty;
using Start = PathPattern::Start;
using Kind = PathPattern::StepKind;

/// A pump: two domains with boundaries, each with its singleton Motion, and a library of materials.
MapModel const& pump() {
  static MapModel const model{{"/Case/Domain:rotor/Motion", {}},       {"/Case/Domain:rotor/Boundary:in", {}},
                              {"/Case/Domain:rotor/Boundary:out", {}}, {"/Case/Domain:stator/Boundary:wall", {}},
                              {"/Case/Domain:stator/Motion", {}},      {"/Case/Output Control", {}},
                              {"/Library/Material:Water at 25 C", {}}};
  return model;
}

std::vector<std::string> expand(std::string const& pattern, std::string const& context = "",
                                std::string const& owner = "") {
  auto const found = PathPattern(pattern).expand(TDFContext(context, owner), pump());
  // Asked one by one, the objects are the same.
  std::vector<std::string> asked;
  EXPECT_FALSE(PathPattern(pattern).findIf(TDFContext(context, owner), pump(), [&](std::string const& path) {
    if (std::find(asked.begin(), asked.end(), path) == asked.end()) asked.push_back(path);
    return false;
  })) << pattern;
  EXPECT_EQ(asked, found) << pattern;
  return found;
}

/// The path that a single pattern resolves to; "none" when there is none.
std::string resolve(std::string const& pattern, std::string const& context = "", std::string const& owner = "") {
  PathPattern const parsed(pattern);
  EXPECT_TRUE(parsed.isSingle()) << pattern;
  std::string path;
  return parsed.resolve(TDFContext(context, owner), path) ? path : "none";
}

/// "offset+length: message".
std::string faultOf(std::string const& text) {
  PathPattern::Fault fault;
  if (PathPattern::parse(text, fault)) return "none";
  return std::to_string(fault.offset) + "+" + std::to_string(fault.length) + ": " + fault.message;
}

// Parsing

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
  EXPECT_EQ(faultOf("Domain:"), "6+1: the name behind ':' is empty");
  EXPECT_EQ(faultOf("Domain:a:b"), "8+1: a component holds a second ':'");
  EXPECT_EQ(faultOf("Case\\"), "4+1: '\\' must stand before a character");
  EXPECT_EQ(faultOf(R"(a\/b)"), "1+2: no type or name of a model can hold '/'");
  EXPECT_EQ(faultOf(R"(a\:b)"), "1+2: no type or name of a model can hold ':'");
  EXPECT_EQ(faultOf("Case/^Domain"), "5+7: '^' may stand only at the beginning of a path");
  EXPECT_EQ(faultOf("/@"), "1+1: '@' may stand only at the beginning of a path");
  EXPECT_EQ(faultOf("@:x"), "0+1: '@' may stand only at the beginning of a path");
  EXPECT_EQ(faultOf("Dom*"),
            "0+4: '*' can stand for a whole component or a whole name only; write '\\*' for the character");
  EXPECT_EQ(faultOf("*:x"),
            "0+1: '*' can stand for a whole component or a whole name only; write '\\*' for the character");
  EXPECT_EQ(faultOf("Domain:ro*"), "7+3: '*' can stand for a whole name only; write '\\*' for the character");
  EXPECT_EQ(faultOf("Domain:**"), "7+2: '*' can stand for a whole name only; write '\\*' for the character");
  EXPECT_EQ(faultOf("^"), "0+1: '^' needs a type behind it");
  EXPECT_EQ(faultOf("^Domain:x"), "8+1: '^' takes a type only, without a name");
  EXPECT_EQ(faultOf("^*"), "0+2: '^' needs the name of a type behind it");
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
      {"/Case/Domain:rotor", "6+12: the path must end in the name of a parameter, which holds no ':'"},
      {"Domain:*", "0+8: the path must end in the name of a parameter, which holds no ':'"},
      {"a//b", "2+1: a component of the path is empty"}};
  for (auto const& [text, expected] : faults) {
    PathPattern::Fault fault;
    std::string name;
    EXPECT_FALSE(PathPattern::parseParameter(text, name, fault)) << text;
    EXPECT_EQ(std::to_string(fault.offset) + "+" + std::to_string(fault.length) + ": " + fault.message, expected)
        << text;
  }
}

TEST(PathPattern, ObjectsAreAskedAboutNoFurtherThanNeeded) {
  std::vector<std::string> asked;
  auto const isRotor = [&](std::string const& path) {
    asked.push_back(path);
    return path == "/Case/Domain:rotor";
  };
  EXPECT_TRUE(PathPattern("/Case/Domain:*").findIf(TDFContext(""), pump(), isRotor));
  EXPECT_EQ(asked.back(), "/Case/Domain:rotor");
  auto const all = expand("/Case/Domain:*");
  EXPECT_TRUE(std::equal(asked.begin(), asked.end(), all.begin()));
  EXPECT_FALSE(PathPattern("/Case/Boundary:*").findIf(TDFContext(""), pump(), isRotor));
}

// Resolving

TEST(PathPattern, ASinglePatternResolvesWhetherTheModelHoldsTheObjectOrNot) {
  EXPECT_EQ(resolve("/Case/Domain:diffuser"), "/Case/Domain:diffuser");
  EXPECT_EQ(resolve("Motion", "/Case/Domain:rotor"), "/Case/Domain:rotor/Motion");
  EXPECT_EQ(resolve("/", "/Case"), "");
}

TEST(PathPattern, ParentsLeadUpToTheRootAndNotBeyond) {
  EXPECT_EQ(resolve("..", "/Case/Domain:rotor"), "/Case");
  EXPECT_EQ(resolve("../..", "/Case/Domain:rotor"), "");
  EXPECT_EQ(resolve("../../..", "/Case/Domain:rotor"), "none");
  EXPECT_EQ(resolve("../Domain:stator", "/Case/Domain:rotor"), "/Case/Domain:stator");
  EXPECT_EQ(resolve("Boundary:in/../Motion", "/Case/Domain:rotor"), "/Case/Domain:rotor/Motion");
}

TEST(PathPattern, TheNearestObjectOfATypeIsLookedForAtTheContextAndAbove) {
  EXPECT_EQ(resolve("^Domain", "/Case/Domain:rotor/Boundary:in"), "/Case/Domain:rotor");
  EXPECT_EQ(resolve("^Domain", "/Case/Domain:rotor"), "/Case/Domain:rotor");
  EXPECT_EQ(resolve("^Case/Output Control", "/Case/Domain:rotor"), "/Case/Output Control");
  EXPECT_EQ(resolve("^Boundary", "/Case/Domain:rotor"), "none");
  EXPECT_EQ(resolve("^Domain", ""), "none");
  EXPECT_EQ(resolve("^Group", "/Group:outer/Group:inner/Item:x"), "/Group:outer/Group:inner");
  EXPECT_EQ(resolve("^Dom", "/Case/Domain:rotor"), "none");
}

TEST(PathPattern, TheOwnerIsNotTheContext) {
  EXPECT_EQ(resolve("@", "/Case/Domain:rotor/Boundary:in", "/Case/Domain:stator"), "/Case/Domain:stator");
  EXPECT_EQ(resolve("@/..", "/Case/Domain:rotor/Boundary:in", "/Case/Domain:stator"), "/Case");
}

// Expanding

TEST(PathPattern, ASinglePatternExpandsToTheObjectIfTheModelHoldsIt) {
  EXPECT_THAT(expand("/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor"));
  EXPECT_THAT(expand("Motion", "/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor/Motion"));
  EXPECT_THAT(expand("/Case/Domain:diffuser"), IsEmpty());
  EXPECT_THAT(expand("/Case/Domain"), IsEmpty()) << "the singleton of the type, which is not there";
  EXPECT_THAT(expand("/Case/Domain:rotor/../Domain:stator"), ElementsAre("/Case/Domain:stator"));
  EXPECT_THAT(expand("../../..", "/Case"), IsEmpty());
  EXPECT_THAT(expand("^Boundary", "/Case"), IsEmpty());
  EXPECT_THAT(expand("@", "/Case", "/Library"), ElementsAre("/Library"));
}

TEST(PathPattern, ATypeWithAStarIsEveryChildOfTheTypeASingletonIncluded) {
  EXPECT_THAT(expand("/Case/Domain:*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("Motion:*", "/Case/Domain:rotor"), ElementsAre("/Case/Domain:rotor/Motion"));
  EXPECT_THAT(expand("Dom:*", "/Case"), IsEmpty());
}

TEST(PathPattern, AStarIsEveryChildInTheOrderOfTheModel) {
  EXPECT_THAT(expand("/Case/*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator", "/Case/Output Control"));
  EXPECT_THAT(expand("/*"), ElementsAre("/Case", "/Library"));
  EXPECT_THAT(expand("*", "/Case/Output Control"), IsEmpty());
}

TEST(PathPattern, OnlyTheLastOfSingleStepsIsAskedFor) {
  EXPECT_THAT(expand("/Case/*/Motion"), ElementsAre("/Case/Domain:rotor/Motion", "/Case/Domain:stator/Motion"));
  EXPECT_THAT(expand("/Case/Domain:*/Boundary:wall"), ElementsAre("/Case/Domain:stator/Boundary:wall"));
}

TEST(PathPattern, TwoStarsAreAnyNumberOfLevelsDepthFirstParentsBeforeChildren) {
  EXPECT_THAT(expand("/Case/**"),
              ElementsAre("/Case", "/Case/Domain:rotor", "/Case/Domain:rotor/Motion", "/Case/Domain:rotor/Boundary:in",
                          "/Case/Domain:rotor/Boundary:out", "/Case/Domain:stator", "/Case/Domain:stator/Boundary:wall",
                          "/Case/Domain:stator/Motion", "/Case/Output Control"));
}

TEST(PathPattern, TwoStarsMayBeNoLevelAtAll) {
  EXPECT_THAT(expand("/**/Case"), ElementsAre("/Case"));
  EXPECT_THAT(expand("**", "/Case/Output Control"), ElementsAre("/Case/Output Control"));
  EXPECT_THAT(expand("/Case/**/Domain:*"), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("/**/Boundary:*"), ElementsAre("/Case/Domain:rotor/Boundary:in", "/Case/Domain:rotor/Boundary:out",
                                                    "/Case/Domain:stator/Boundary:wall"));
  EXPECT_THAT(expand("**", "/Nowhere"), IsEmpty());
}

TEST(PathPattern, EveryObjectIsGivenOnceHoweverManyWaysLeadToIt) {
  EXPECT_THAT(expand("/Case/**/**/Motion"), ElementsAre("/Case/Domain:rotor/Motion", "/Case/Domain:stator/Motion"));
  EXPECT_THAT(expand("/Case/Domain:*/Boundary:*/.."), ElementsAre("/Case/Domain:rotor", "/Case/Domain:stator"));
  EXPECT_THAT(expand("/Case/*/../Output Control"), ElementsAre("/Case/Output Control"));
}

TEST(PathPattern, ManyStarsOverADeepModelStayLinear) {
  MapModel model;
  std::string path;
  for (int i = 0; i < 500; ++i) {
    path += "/Group";
    model.add(path);
  }
  std::string pattern = "";
  for (int i = 0; i < 50; ++i) pattern += "/**";

  EXPECT_EQ(PathPattern(pattern + "/Group").expand(TDFContext(""), model).size(), 500U);
}

// Patterns seen from elsewhere

std::string seen(std::string const& pattern, std::string const& base) {
  return PathPattern(pattern).seenFrom(PathPattern(base)).text();
}

TEST(PathPattern, ARelativePatternIsSeenBehindItsBase) {
  EXPECT_EQ(seen("Boundary:*", "/Case/Domain:*"), "/Case/Domain:*/Boundary:*");
  EXPECT_EQ(seen("..", "Boundary:*"), "Boundary:*/..");
  EXPECT_EQ(seen("Motion", "@/Domain:rotor"), "@/Domain:rotor/Motion");
  EXPECT_EQ(PathPattern("Motion").seenFrom(PathPattern()).text(), "Motion");
}

TEST(PathPattern, APatternFromTheRootOrTheOwnerIsTheSameFromEverywhere) {
  EXPECT_EQ(seen("/Case/Domain:*", "Boundary:*"), "/Case/Domain:*");
  EXPECT_EQ(seen("@/Motion", "/Case/Domain:*"), "@/Motion");
}

TEST(PathPattern, TheNearestOfATypeIsFoundInTheBaseOrLeftToTheOwner) {
  EXPECT_EQ(seen("^Domain/Motion", "/Case/Domain:*/Boundary:*"), "/Case/Domain:*/Motion");
  EXPECT_EQ(seen("^Domain", "Domain:*"), "Domain:*");
  EXPECT_EQ(seen("^Case", "Boundary:*"), "^Case");
  EXPECT_EQ(PathPattern("^Case").seenFrom(PathPattern()).text(), "^Case");
}

TEST(PathPattern, WhereTheNearestOfATypeCannotBeToldEveryOneIsNamed) {
  EXPECT_EQ(seen("^Domain/Motion", "**"), "/**/Domain:*/Motion");
  EXPECT_EQ(seen("^Domain", "../Domain:*/.."), "/**/Domain:*");
  EXPECT_EQ(seen("^Domain", "@/Boundary:*"), "/**/Domain:*");
}

TEST(PathPattern, WhatIsSeenFromABaseNamesAtLeastWhatIsFoundFromEachOfItsObjects) {
  for (std::string const base : {"/Case/Domain:*", "/Case/**", "Boundary:*", "../*", "@/Boundary:*", "^Case/*"}) {
    for (std::string const pattern : {"Boundary:*", "..", "^Domain", "^Case/*", "@/..", "/Library/*", "../..", "**"}) {
      TDFContext const owner("/Case/Domain:rotor");
      auto const all = PathPattern(pattern).seenFrom(PathPattern(base)).expand(owner, pump());
      for (auto const& object : PathPattern(base).expand(owner, pump())) {
        for (auto const& found : PathPattern(pattern).expand(TDFContext(object, owner.ownerPath()), pump())) {
          EXPECT_THAT(all, testing::Contains(found)) << pattern << " seen from " << base;
        }
      }
    }
  }
}

// Text

TEST(PathPattern, ItsTextParsesBackToIt) {
  for (std::string const text : {"/",
                                 "/Case/Domain:*",
                                 "Boundary:inlet",
                                 "..",
                                 "../..",
                                 "@",
                                 "@/Motion",
                                 "^Domain",
                                 "^Domain/Motion",
                                 "*",
                                 "**",
                                 "/**/Boundary:*/../*",
                                 R"(\*)",
                                 R"(\^Domain)",
                                 R"(\@)",
                                 R"(\..)",
                                 R"(a\}b)",
                                 R"(a\\b)",
                                 R"(\ a\ )",
                                 R"(Boundary:\*)",
                                 R"(^Domain\*)",
                                 R"(^\^Domain)",
                                 "Output Control/Material:Water at 25 C"}) {
    EXPECT_EQ(PathPattern(text).text(), text);
  }
}

TEST(PathPattern, TheTextOfTheContextItselfIsEmpty) {
  EXPECT_EQ(PathPattern().text(), "");
}

}  // namespace
}  // namespace tarn
