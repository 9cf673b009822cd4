#include <tarn/PathPattern.h>

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

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

TEST(PathPattern, AnEscapedPathNamesExactlyThatObject) {
  EXPECT_EQ(PathPattern::escapedPath(""), "");
  EXPECT_EQ(PathPattern::escapedPath("/Case/Domain:rotor 1"), "/Case/Domain:rotor 1");
  EXPECT_EQ(PathPattern::escapedPath("/Case/Domain:*"), R"(/Case/Domain:\*)");
  EXPECT_EQ(PathPattern::escapedPath("/Case/**/Domain:a}b"), R"(/Case/\*\*/Domain:a\}b)");
  EXPECT_EQ(PathPattern::escapedPath("/Case/..:^x"), R"(/Case/\..:\^x)");

  PathPattern const pattern(PathPattern::escapedPath("/Case/Domain:*"));
  ASSERT_EQ(pattern.steps().size(), 2U);
  EXPECT_EQ(pattern.steps()[1].kind, PathPattern::StepKind::Child);
  EXPECT_EQ(pattern.steps()[1].name, "*");
}

TEST(PathPattern, TheTextOfTheContextItselfIsEmpty) {
  EXPECT_EQ(PathPattern().text(), "");
}

}  // namespace
}  // namespace tarn
