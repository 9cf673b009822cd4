#include <tarn/session/WrittenItem.h>

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "SetupSession/session/TankCase.h"

namespace tarn::session {
namespace {

using test::Tanks;

TEST(WrittenItem, ASwitchIsOfTheParameterOrOfTheObject) {
  Tanks tanks;
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Title", true), Edit::activateParam("/Plant", "Title"));
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Title", false), Edit::deactivateParam("/Plant", "Title"));
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Report", true), Edit::activateObject("/Plant/Report"));
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Report", false), Edit::deactivateObject("/Plant/Report"));
  // The item that was probably meant decides about a slip.
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Titel", true), Edit::activateParam("/Plant", "Titel"));
  EXPECT_EQ(switchEdit(*tanks, "/Plant/Reprot", true), Edit::activateObject("/Plant/Reprot"));
}

std::string itemText(KnownItem const& known) {
  return known.item ? known.item->text() : "";
}

TEST(WrittenItem, APathMeansAParameterOrAnObject) {
  Tanks tanks;
  auto const meant = [&](std::string const& text) {
    std::string const path = absolutePath(*tanks, text);
    Item const param = paramAt(path);
    return meansParam(*tanks, path) ? param.path + " . " + *param.name : path;
  };
  EXPECT_EQ(meant("Title"), "/Plant . Title");
  EXPECT_EQ(meant(" /Plant/Tank:T1/Height "), "/Plant/Tank:T1 . Height");
  EXPECT_EQ(meant("Solver"), "/Plant/Solver");
  EXPECT_EQ(meant("Solver/"), "/Plant/Solver");
  // An object need not be there, nor its name be known.
  EXPECT_EQ(meant("Tank:T9"), "/Plant/Tank:T9");
  EXPECT_EQ(meant("Tank:T9/Height"), "/Plant/Tank:T9 . Height");
  EXPECT_EQ(meant("."), "/Plant");
  EXPECT_EQ(meant("/"), "");
  // Slips.
  EXPECT_EQ(meant("Tank:T1/Hieght"), "/Plant/Tank:T1 . Hieght");
  EXPECT_EQ(meant("Solvr"), "/Plant/Solvr");
  EXPECT_EQ(meant("Nowhere/Somewhere"), "/Plant/Nowhere/Somewhere");
}

TEST(WrittenItem, AnAbsolutePathStartsAtTheRootOfTheModel) {
  Tanks tanks;
  EXPECT_EQ(absolutePath(*tanks, "Tank:T1/Height"), "/Plant/Tank:T1/Height");
  EXPECT_EQ(absolutePath(*tanks, " /Plant/Tank:T1/ "), "/Plant/Tank:T1");
  EXPECT_EQ(absolutePath(*tanks, ""), "/Plant");
  EXPECT_EQ(absolutePath(*tanks, "."), "/Plant");
  EXPECT_EQ(absolutePath(*tanks, "/"), "");
  EXPECT_EQ(absolutePath("/Plant/Tank:T1", "Level"), "/Plant/Tank:T1/Level");
  EXPECT_EQ(absolutePath("/Plant/Tank:T1", "/Plant"), "/Plant");
}

TEST(WrittenItem, AnItemIsKnownAlsoWhereItsObjectIsMissing) {
  Tanks tanks;
  EXPECT_EQ(itemText(knownItem(*tanks, "Tank:T1/Height")), "/Plant/Tank:T1/Height");
  EXPECT_FALSE(knownItem(*tanks, "Tank:T1/Height").refused);

  KnownItem const missing = knownItem(*tanks, "Tank:other/Height");
  EXPECT_EQ(itemText(missing), "/Plant/Tank:other/Height");
  EXPECT_EQ(missing.refused->code, RefusalCode::UnknownObject);
  EXPECT_EQ(itemText(knownItem(*tanks, "Tank:other")), "/Plant/Tank:other");
}

TEST(WrittenItem, AnItemThatTheRulesDoNotKnowIsRefusedWithTheNearestOne) {
  Tanks tanks;
  KnownItem const unknown = knownItem(*tanks, "Tank:T1/Hight");
  EXPECT_FALSE(unknown.item);
  EXPECT_EQ(unknown.refused->nearest, std::optional(Edit::activateParam("/Plant/Tank:T1", "Height")));
}

}  // namespace
}  // namespace tarn::session
