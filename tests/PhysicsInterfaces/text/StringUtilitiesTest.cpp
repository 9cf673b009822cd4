// The text helpers, by tables.
#include <tarn/StringUtilities.h>

#include <gtest/gtest.h>

namespace tarn {
namespace {

using Texts = std::vector<std::string>;

TEST(StringUtilities, APathIsRootedAtItselfAndAtWhatIsAboveIt) {
  EXPECT_TRUE(StringUtilities::isPathRootedAt("/A", "/A"));
  EXPECT_TRUE(StringUtilities::isPathRootedAt("/A", "/A/B"));
  EXPECT_FALSE(StringUtilities::isPathRootedAt("/A", "/AB"));
  EXPECT_FALSE(StringUtilities::isPathRootedAt("/A", "/A B"));
  EXPECT_FALSE(StringUtilities::isPathRootedAt("/A:x", "/A:xy"));
  EXPECT_FALSE(StringUtilities::isPathRootedAt("/A/B", "/A"));
  EXPECT_TRUE(StringUtilities::isPathRootedAt("", "/A"));
  EXPECT_TRUE(StringUtilities::isPathRootedAt("", ""));
  EXPECT_TRUE(StringUtilities::isPathRootedAt("/", "/A"));
  EXPECT_FALSE(StringUtilities::isPathRootedAt("/A", ""));
}

TEST(StringUtilities, ComparesTheHeadsOfTwoTexts) {
  EXPECT_TRUE(StringUtilities::leadingSubstrEqual("setParam", "setObject", 3));
  EXPECT_FALSE(StringUtilities::leadingSubstrEqual("setParam", "setObject", 4));
  EXPECT_TRUE(StringUtilities::leadingSubstrEqual("abc", "xyz", 0));
  EXPECT_TRUE(StringUtilities::leadingSubstrEqual("abc", "abc", 100));
  EXPECT_FALSE(StringUtilities::leadingSubstrEqual("abc", "abcd", 4));
  EXPECT_TRUE(StringUtilities::leadingSubstrEqual("abc", "abcd", 3));
  EXPECT_TRUE(StringUtilities::leadingSubstrEqual("", "", ~0ULL));
}

TEST(StringUtilities, DividesAParameterPathAtItsLastSeparator) {
  struct Row {
    char const* path;
    char const* object;
    char const* name;
  };
  for (Row const& row : {Row{"/Case/Domain:rotor/Motion", "/Case/Domain:rotor", "Motion"}, Row{"/Title", "", "Title"},
                         Row{"Title", "", "Title"}, Row{"", "", ""}, Row{"/Case/", "/Case", ""}}) {
    std::string object = "old";
    std::string name = "old";
    StringUtilities::splitPathName(row.path, &object, &name);
    EXPECT_EQ(object, row.object);
    EXPECT_EQ(name, row.name);
  }
}

TEST(StringUtilities, DividesIntoOneResultOrIntoTheTextItself) {
  std::string name;
  StringUtilities::splitPathName("/Case/Motion", nullptr, &name);
  EXPECT_EQ(name, "Motion");
  StringUtilities::splitPathName("/Case/Motion", nullptr, nullptr);
  std::string path = "/Case/Motion";
  StringUtilities::splitPathName(path, &path, &name);
  EXPECT_EQ(path, "/Case");
  EXPECT_EQ(name, "Motion");
  path = "/Case/Kind";
  StringUtilities::splitPathName(path, &name, &path);
  EXPECT_EQ(name, "/Case");
  EXPECT_EQ(path, "Kind");
}

TEST(StringUtilities, RemovesWhiteSpaceAtTheEndsOnly) {
  EXPECT_EQ(StringUtilities::removeWhitespace(" \t\n\v\f\rset  param \r\n"), "set  param");
  EXPECT_EQ(StringUtilities::removeWhitespace("  "), "");
  EXPECT_EQ(StringUtilities::removeWhitespace(""), "");
  EXPECT_EQ(StringUtilities::removeWhitespace("\xC2\xA0x"), "\xC2\xA0x");
  EXPECT_EQ(StringUtilities::trimmed(" a "), "a");
}

TEST(StringUtilities, SplitsAtEveryDelimiterAndKeepsEmptyItems) {
  EXPECT_EQ(StringUtilities::splitValue("", ','), Texts{});
  EXPECT_EQ(StringUtilities::splitValue("Water", ','), (Texts{"Water"}));
  EXPECT_EQ(StringUtilities::splitValue("Water, Air ,,Oil", ','), (Texts{"Water", " Air ", "", "Oil"}));
  EXPECT_EQ(StringUtilities::splitValue(",", ','), (Texts{"", ""}));
  EXPECT_EQ(StringUtilities::splitValue("a,", ','), (Texts{"a", ""}));
  EXPECT_EQ(StringUtilities::splitValue("a,b", '|'), (Texts{"a,b"}));
}

TEST(StringUtilities, TrimsTheItemsOfAVector) {
  EXPECT_EQ(StringUtilities::stringToVector("", ','), Texts{});
  EXPECT_EQ(StringUtilities::stringToVector(" /Case/Motion, Rotating ,,x", ','),
            (Texts{"/Case/Motion", "Rotating", "", "x"}));
  EXPECT_EQ(StringUtilities::stringToVector(" ", ','), (Texts{""}));
}

TEST(StringUtilities, JoinsItemsByTheDelimiter) {
  EXPECT_EQ(StringUtilities::vectorToString({}, ','), "");
  EXPECT_EQ(StringUtilities::vectorToString({"a"}, ','), "a");
  EXPECT_EQ(StringUtilities::vectorToString({"a", "", " b"}, ','), "a,, b");
}

TEST(StringUtilities, FindsTheCandidateThatATextIsASlipOf) {
  struct Row {
    char const* text;
    Texts candidates;
    char const* near;
  };
  for (Row const& row : {
           Row{"exist", {"count", "exists"}, "exists"},
           Row{"turbulent", {"Turbulence", "Turbulent"}, "Turbulent"},
           Row{"CASE", {"Cast", "Case"}, "Case"},            // letter case comes before edits
           Row{"Domian", {"Boundary", "Domain"}, "Domain"},  // neighbours swapped
           Row{"Boundray", {"Boundary", "Bounds"}, "Boundary"},
           Row{"Case", {"Cave", "Cast"}, "Cave"},                          // the first of equals
           Row{"Boundarie", {"Boundaries-", "Boundaries"}, "Boundaries"},  // the nearest of several
           Row{"Case", {"Cxxe"}, ""},                                      // two edits in four characters
           Row{"Motion", {"Mtoiin"}, "Mtoiin"},                            // two edits in six
           Row{"Motion", {"Mxxxon"}, ""},                                  // three
           Row{"Turbulence", {"Turbolents"}, "Turbolents"},                // three edits in ten
           Row{"Turbulence", {"Torbolents"}, ""},                          // four
           Row{"Turbulence", {"Turb"}, ""},                                // far too short
           Row{"ab", {"ac"}, ""},                                          // too short to decide
           Row{"Case", {"Case"}, ""},                                      // no slip at all
           Row{"Case", {}, ""},
           Row{"", {"a"}, ""},
       }) {
    EXPECT_EQ(StringUtilities::nearMatch(row.text, row.candidates), row.near) << row.text;
  }
}

TEST(StringUtilities, OnlyTheLettersOfAsciiHaveTwoCases) {
  EXPECT_EQ(StringUtilities::toLower("k-EPSILON \xC3\x84[@Z"), "k-epsilon \xC3\x84[@z");
  EXPECT_EQ(StringUtilities::toUpper("k-epsilon \xC3\xA4{`z"), "K-EPSILON \xC3\xA4{`Z");
  EXPECT_TRUE(StringUtilities::equalIgnoringCase("Turbulent", "tURBULENT"));
  EXPECT_FALSE(StringUtilities::equalIgnoringCase("Turbulent", "Turbulents"));
  EXPECT_FALSE(StringUtilities::equalIgnoringCase("\xC3\x84", "\xC3\xA4"));
}

TEST(StringUtilities, LongTextsAreNoSlips) {
  EXPECT_EQ(StringUtilities::nearMatch(std::string(200, 'a'), {std::string(201, 'a')}), std::string(201, 'a'));
  EXPECT_EQ(StringUtilities::nearMatch(std::string(201, 'a'), {std::string(200, 'a')}), "");
}

TEST(StringUtilities, AYesNoWordIsReadInAnyCaseAndOnlyAsItStands) {
  for (char const* const yes : {"yes", "true", "on", "YES", "True", "oN"})
    EXPECT_EQ(StringUtilities::asYesNo(yes), true) << yes;
  for (char const* const no : {"no", "false", "off", "NO", "False", "oFF"})
    EXPECT_EQ(StringUtilities::asYesNo(no), false) << no;
  for (char const* const other : {"", "1", "0", " yes", "yes ", "y", "yess"}) {
    EXPECT_EQ(StringUtilities::asYesNo(other), std::nullopt) << other;
  }
}

}  // namespace
}  // namespace tarn
