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

TEST(PathPattern, TheTextOfTheContextItselfIsEmpty) {
  EXPECT_EQ(PathPattern().text(), "");
}

}  // namespace
}  // namespace tarn
