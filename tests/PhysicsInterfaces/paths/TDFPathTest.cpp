// Parsed paths: their components, which texts are refused and why, and that copies are independent.
#include <tarn/TDFPath.h>

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>

#include <tarn/Error.h>

namespace tarn {
namespace {

std::string faultOf(std::string const& path) {
  try {
    TDFPath const parsed(path);
  } catch (ParseError const& error) {
    return error.getMessage();
  }
  return "";
}

TEST(TDFPath, TheEmptyTextAndTheLoneSeparatorAreTheRoot) {
  for (std::string const& text : {std::string(), std::string("/")}) {
    TDFPath const path(text);
    EXPECT_EQ(path.numComponent(), 0U);
    EXPECT_EQ(path.size(), 0U);
    EXPECT_EQ(path.getFullPath(), "");
    EXPECT_TRUE(path.isSingleton());
    EXPECT_EQ(path.getParentPath(), "");
    EXPECT_EQ(path.getSubPath(0, 5), "");
  }
  EXPECT_EQ(TDFPath().getFullPath(), "");
}

TEST(TDFPath, GivesTypeAndNameOfEveryComponent) {
  TDFPath const path("/Case/Domain:main rotor/Boundary:in 1");
  ASSERT_EQ(path.numComponent(), 3U);
  EXPECT_EQ(path.getType(0), "Case");
  EXPECT_EQ(path.getName(0), "Case");
  EXPECT_EQ(path.getType(1), "Domain");
  EXPECT_EQ(path.getName(1), "main rotor");
  EXPECT_EQ(path.getLastType(), "Boundary");
  EXPECT_EQ(path.getLastName(), "in 1");
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:main rotor/Boundary:in 1");
}

TEST(TDFPath, IsASingletonWhenTheLastComponentHasNoName) {
  EXPECT_FALSE(TDFPath("/A/B:x").isSingleton());
  EXPECT_TRUE(TDFPath("/A/B").isSingleton());
  EXPECT_TRUE(TDFPath("/A:x/B").isSingleton());
}

TEST(TDFPath, OfAParameterPathTheNameIsTheLastType) {
  TDFPath const path("/Case/Domain:rotor/Angular Velocity");
  EXPECT_EQ(path.getLastType(), "Angular Velocity");
  EXPECT_EQ(path.getParentPath(), "/Case/Domain:rotor");
}

TEST(TDFPath, KeepsANameThatEqualsItsTypeAsItIsWritten) {
  TDFPath const path("/Case:Case");
  EXPECT_EQ(path.getFullPath(), "/Case:Case");
  EXPECT_FALSE(path.isSingleton());
}

TEST(TDFPath, TheParentOfAFirstLevelObjectIsTheRoot) {
  EXPECT_EQ(TDFPath("/Case").getParentPath(), "");
  EXPECT_EQ(TDFPath("/Case:x").getParentPath(), "");
  EXPECT_EQ(TDFPath("/Case/Domain:x").getParentPath(), "/Case");
}

TEST(TDFPath, GivesAnyRunOfComponentsAndLeavesOutWhatLiesBeyondTheEnd) {
  TDFPath const path("/A/B:x/C");
  auto const most = std::numeric_limits<unsigned long long>::max();
  EXPECT_EQ(path.getSubPath(0, 0), "");
  EXPECT_EQ(path.getSubPath(0, 1), "/A");
  EXPECT_EQ(path.getSubPath(0, 2), "/A/B:x");
  EXPECT_EQ(path.getSubPath(0, 3), "/A/B:x/C");
  EXPECT_EQ(path.getSubPath(0, most), "/A/B:x/C");
  EXPECT_EQ(path.getSubPath(1, 1), "/B:x");
  EXPECT_EQ(path.getSubPath(1, most), "/B:x/C");
  EXPECT_EQ(path.getSubPath(2, most), "/C");
  EXPECT_EQ(path.getSubPath(3, 1), "");
  EXPECT_EQ(path.getSubPath(most, most), "");
}

TEST(TDFPath, RenamesAComponentAndShowsItInTheFullPath) {
  TDFPath path("/Case/Domain:rotor/Boundary:in");
  path.setName(path.size() - 1, "outlet");
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:rotor/Boundary:outlet");
  path.setName(1, "s");
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:s/Boundary:outlet");
  EXPECT_EQ(path.getName(1), "s");
  EXPECT_EQ(path.getSubPath(0, 2), "/Case/Domain:s");
  EXPECT_EQ(path.getSubPath(2, 1), "/Boundary:outlet");
  EXPECT_EQ(path.getParentPath(), "/Case/Domain:s");
}

TEST(TDFPath, NamesASingletonAndTakesANameAway) {
  TDFPath path("/Case/Domain/Boundary:in");
  path.setName(1, "rotor");
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:rotor/Boundary:in");
  path.setName(2, "");
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:rotor/Boundary");
  EXPECT_TRUE(path.isSingleton());
  EXPECT_EQ(path.getLastName(), "Boundary");
  path.setName(0, "x");
  EXPECT_EQ(path.getFullPath(), "/Case:x/Domain:rotor/Boundary");
}

TEST(TDFPath, ARefusedNameChangesNothing) {
  TDFPath path("/Case/Domain:rotor");
  EXPECT_THROW(path.setName(1, "a/b"), ParseError);
  EXPECT_THROW(path.setName(1, "a:b"), ParseError);
  EXPECT_THROW(path.setName(2, "x"), Error);
  EXPECT_EQ(path.getFullPath(), "/Case/Domain:rotor");
}

TEST(TDFPath, RenamingACopyLeavesTheOriginal) {
  TDFPath const original("/Case/Domain:rotor");
  TDFPath copy = original;
  std::string const& text = original.getFullPath();
  copy.setName(1, "stator");
  EXPECT_EQ(original.getFullPath(), "/Case/Domain:rotor");
  EXPECT_EQ(original.getLastName(), "rotor");
  EXPECT_EQ(text, "/Case/Domain:rotor");
  EXPECT_EQ(copy.getFullPath(), "/Case/Domain:stator");
}

TEST(TDFPath, AMovedFromPathIsTheRoot) {
  TDFPath path("/Case");
  TDFPath const moved = std::move(path);
  EXPECT_EQ(moved.getFullPath(), "/Case");
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<TDFPath>);
}

TEST(TDFPath, AnIndexThatIsNoComponentThrows) {
  TDFPath const path("/A/B");
  EXPECT_THROW((void)path.getType(2), Error);
  EXPECT_THROW((void)path.getName(2), Error);
  EXPECT_THROW((void)path.getName(std::numeric_limits<unsigned long long>::max()), Error);
  EXPECT_THROW((void)TDFPath().getLastType(), Error);
  EXPECT_THROW((void)TDFPath().getLastName(), Error);
  try {
    (void)path.getType(2);
  } catch (Error const& error) {
    EXPECT_EQ(error.getMessage(), "\"/A/B\" has 2 components, but number 2, counted from 0, was asked for");
  }
}

TEST(TDFPath, RefusesWhatIsNoPathAndSaysWhy) {
  struct Row {
    char const* path;
    char const* message;
  };
  for (Row const& row : {
           Row{"Case", "\"Case\" is not a path: a path begins with \"/\""},
           Row{" /Case", "\" /Case\" is not a path: a path begins with \"/\""},
           Row{"//", "\"//\" is not a path: a component of the path is empty"},
           Row{"/Case/", "\"/Case/\" is not a path: a component of the path is empty"},
           Row{"/Case//Domain", "\"/Case//Domain\" is not a path: a component of the path is empty"},
           Row{"//Case", "\"//Case\" is not a path: a component of the path is empty"},
           Row{"/:rotor", "\"/:rotor\" is not a path: the type before \":\" is missing"},
           Row{"/:", "\"/:\" is not a path: the type before \":\" is missing"},
           Row{"/Domain:", "\"/Domain:\" is not a path: the name after \":\" is missing"},
           Row{"/Domain:/B", "\"/Domain:/B\" is not a path: the name after \":\" is missing"},
           Row{"/Domain:a:b", "\"/Domain:a:b\" is not a path: a component of the path holds a second \":\""},
           Row{"/Domain::", "\"/Domain::\" is not a path: a component of the path holds a second \":\""},
       }) {
    EXPECT_EQ(faultOf(row.path), row.message);
  }
}

TEST(TDFPath, AcceptsBlanksAndAnyOtherCharacterInTypesAndNames) {
  EXPECT_EQ(TDFPath("/ /a b:c d").getLastName(), "c d");
  EXPECT_EQ(TDFPath("/Gr\xC3\xB6\xC3\x9F"
                    "e:\xC3\xA4=#")
                .getLastName(),
            "\xC3\xA4=#");
}

TEST(TDFPath, CutsALongTextInTheMiddleOfTheMessage) {
  std::string const text = "Case" + std::string(1000, 'x') + "end";
  EXPECT_EQ(faultOf(text), "\"Case" + std::string(56, 'x') + "..." + std::string(27, 'x') +
                               "end\" is not a path: a path begins with \"/\"");
  EXPECT_EQ(faultOf("a\nb"), "\"a?b\" is not a path: a path begins with \"/\"");
}

TEST(TDFPath, ReadsAMillionComponents) {
  std::string text;
  for (int i = 0; i < 1000000; ++i) text += "/A:b";
  TDFPath path(text);
  EXPECT_EQ(path.numComponent(), 1000000U);
  EXPECT_EQ(path.getFullPath(), text);
  EXPECT_EQ(path.getName(999999), "b");
  path.setName(0, "long");
  EXPECT_EQ(path.getSubPath(0, 2), "/A:long/A:b");
  EXPECT_EQ(path.getSubPath(999999, 1), "/A:b");
  EXPECT_EQ(faultOf(text + "/"), '"' + text.substr(0, 60) + "..." + text.substr(text.size() - 29) +
                                     "/\" is not a path: a component of the path is empty");
}

}  // namespace
}  // namespace tarn
