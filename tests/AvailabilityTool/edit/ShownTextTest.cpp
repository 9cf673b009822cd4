#include "edit/ShownText.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn::tool {
namespace {

TEST(ShownText, ALineThatFitsStaysAsItIs) {
  EXPECT_EQ(wrapped("done 1: on /Case/Title\n  1 new\n", 22), "done 1: on /Case/Title\n  1 new\n");
  EXPECT_EQ(wrapped("", 10), "");
  EXPECT_EQ(wrapped("\n\n", 10), "\n\n");
}

TEST(ShownText, ALongLineIsDividedBetweenWordsAndWhatFollowsIsIndented) {
  EXPECT_EQ(wrapped("  Steps = 300   not available now: A transient run ends with its total time.\nnext\n", 40),
            "  Steps = 300   not available now: A\n"
            "      transient run ends with its total\n"
            "      time.\n"
            "next\n");
}

TEST(ShownText, AWordThatIsLongerThanALineStaysWhole) {
  EXPECT_EQ(wrapped("see /Case/Domain:channel/Boundary:inlet/Flow now and later", 24),
            "see\n    /Case/Domain:channel/Boundary:inlet/Flow\n    now and later");
}

TEST(ShownText, WithoutATerminalNothingIsDivided) {
  std::string const line(1000, ' ');
  EXPECT_EQ(wrapped(line + 'x', 0), line + 'x');
}

TEST(ShownText, ACommandIsNotDivided) {
  EXPECT_EQ(wrapped("  nearest: " + unbroken("set /Case/Flow Regime = Laminar"), 30),
            "  nearest:\n      set /Case/Flow Regime = Laminar");
  EXPECT_EQ(wrapped(unbroken("set Title = x"), 0), "set Title = x");
}

TEST(ShownText, ColoursAndMultibyteCharactersTakeTheRoomThatIsSeen) {
  std::string const coloured = "\x1b[32mdone\x1b[0m: \xC3\xA4\xC3\xB6\xC3\xBC \xC3\x9F";
  EXPECT_EQ(wrapped(coloured, 11), coloured);
  EXPECT_EQ(wrapped("\x1b[32mdone\x1b[0m: a bc de", 10), "\x1b[32mdone\x1b[0m: a bc\nde");
}

}  // namespace
}  // namespace tarn::tool
