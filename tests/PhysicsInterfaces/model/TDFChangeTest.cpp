// One item of model text: how it is divided, and what is refused.
#include <tarn/TDFChange.h>

#include <gtest/gtest.h>

#include <tarn/Error.h>

namespace tarn {
namespace {

TEST(TDFChange, DividesPathNameAndValue) {
  struct Row {
    char const* text;
    char const* path;
    char const* name;
    char const* value;
  };
  for (Row const& row : {
           Row{"/A/B=", "/A", "B", ""},
           Row{"/A/B=1,2", "/A", "B", "1,2"},
           Row{"/Case/Domain:rotor/Angular Velocity=120 [rad/s]", "/Case/Domain:rotor", "Angular Velocity",
               "120 [rad/s]"},
           Row{"/Title=test", "", "Title", "test"},
           Row{"/A/B=x=y", "/A", "B", "x=y"},
           Row{"/A/B==", "/A", "B", "="},
           Row{"/A/B=/C/D#e:f", "/A", "B", "/C/D#e:f"},
           Row{"  /A/B \t= x y \r\n", "/A", "B", "x y"},
           Row{"/A/ B=1", "/A", " B", "1"},
           Row{"/A/B#=1", "/A", "B#", "1"},
           Row{"/Case/Domain:stator/", "/Case/Domain:stator", "", ""},
           Row{" /Case/ ", "/Case", "", ""},
           Row{"/", "", "", ""},
       }) {
    TDFChange const change{std::string(row.text)};
    EXPECT_EQ(change.getFullPath(), row.path) << row.text;
    EXPECT_EQ(change.name, row.name) << row.text;
    EXPECT_EQ(change.value, row.value) << row.text;
  }
}

TEST(TDFChange, RefusesWhatIsNoChangeAndSaysWhy) {
  struct Row {
    char const* text;
    char const* reason;
  };
  for (Row const& row : {
           Row{"", "it does not begin with \"/\"; write path/name=value"},
           Row{"B=1", "it does not begin with \"/\"; write path/name=value"},
           Row{"# /A/B=1", "it does not begin with \"/\"; write path/name=value"},
           Row{"END # A:", "it does not begin with \"/\"; write path/name=value"},
           Row{"/A/B", "neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an object"},
           Row{"/A/=1", "the name before \"=\" is missing"},
           Row{"/A/ =1", "the name before \"=\" is missing"},
           Row{"/=1", "the name before \"=\" is missing"},
           Row{"/A:x=1", "a parameter name cannot hold \":\"; an object is divided from its parameter by \"/\""},
           Row{"/A/B:x=1", "a parameter name cannot hold \":\"; an object is divided from its parameter by \"/\""},
           Row{"//B=1", "a component of the path is empty"},
           Row{"//", "a component of the path is empty"},
           Row{"/A//B=1", "a component of the path is empty"},
           Row{"/A//", "a component of the path is empty"},
           Row{"/:x/B=1", "the type before \":\" is missing"},
           Row{"/A:/B=1", "the name after \":\" is missing"},
           Row{"/A:/", "the name after \":\" is missing"},
           Row{"/A:x:y/B=1", "a component of the path holds a second \":\""},
       }) {
    std::string message;
    try {
      TDFChange const change{std::string(row.text)};
    } catch (Error const& error) {
      message = error.getMessage();
    }
    EXPECT_EQ(message, "\"" + std::string(row.text) + "\" is not a change: " + row.reason);
  }
}

TEST(TDFChange, IsMadeOfPartsAsTheyAre) {
  TDFChange const change(TDFPath("/Case"), "Title", " a ");
  EXPECT_EQ(change.getFullPath(), "/Case");
  EXPECT_EQ(change.name, "Title");
  EXPECT_EQ(change.value, " a ");
}

}  // namespace
}  // namespace tarn
