#include "cli/ShellWord.h"

#include <gtest/gtest.h>

#include <string>

#include "end_to_end/Shell.h"

namespace tarn::tool {
namespace {

TEST(ShellWord, PlainTextNeedsNoQuotes) {
  EXPECT_EQ(shellWord("/Case/Domain:rotor/Width=3.5"), "/Case/Domain:rotor/Width=3.5");
}

TEST(ShellWord, BlanksAndQuotesAreQuoted) {
  EXPECT_EQ(shellWord("Flow Regime"), "'Flow Regime'");
  EXPECT_EQ(shellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(shellWord(""), "''");
}

TEST(ShellWord, AShellReadsBackTheText) {
  for (std::string const text :
       {"a b", "$HOME `date` $(date)", "'\"\\'", "*?[a]~#!&|;<>(){}", "two\nlines", "\xff\xc3\xa9"}) {
    EXPECT_EQ(test::outputOf("printf %s " + shellWord(text)), text);
  }
}

}  // namespace
}  // namespace tarn::tool
