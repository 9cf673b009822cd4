// The user's decisions: the answer for each of them, and which of them an erasure removes.

#include "provisional/ActivityDecisions.h"

#include <gtest/gtest.h>

#include <string>

namespace tarn {
namespace {

std::string const wall = "/Case/Domain:rotor/Boundary:wall";

TEST(ActivityDecisions, WhatWasNeverDecidedIsUnset) {
  ActivityDecisions const decisions;
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::Unset);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::Unset);
}

TEST(ActivityDecisions, AskingDecidesNothing) {
  ActivityDecisions decisions;
  static_cast<void>(decisions.ofParam(wall, "Label"));
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::Unset);
}

TEST(ActivityDecisions, TheLastDecisionHolds) {
  ActivityDecisions decisions;
  decisions.setParam(wall, "Label", true);
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::SetOn);
  decisions.setParam(wall, "Label", false);
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::SetOff);
  decisions.setObject(wall, false);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::SetOff);
  decisions.setObject(wall, true);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::SetOn);
}

TEST(ActivityDecisions, ParametersAndObjectsOfOnePathAreApart) {
  ActivityDecisions decisions;
  decisions.setParam("/Case", "Solver", true);
  EXPECT_EQ(decisions.ofObject("/Case/Solver"), ActivityState::Unset);
  decisions.setObject("/Case/Output", true);
  EXPECT_EQ(decisions.ofParam("/Case", "Output"), ActivityState::Unset);
}

TEST(ActivityDecisions, NeighbouringKeysAreToldApart) {
  ActivityDecisions decisions;
  decisions.setParam("/A", "B", true);
  for (auto const& [objPath, name] : {std::pair<std::string, std::string>{"/A", "BC"},
                                      {"/A", ""},
                                      {"/A B", "B"},
                                      {"/A-", "B"},
                                      {"", "A"},
                                      {"/", "B"},
                                      {"/AB", ""},
                                      {"/A/B", ""},
                                      {"/A", "A"}}) {
    EXPECT_EQ(decisions.ofParam(objPath, name), ActivityState::Unset) << objPath << '|' << name;
  }
  EXPECT_EQ(decisions.ofParam("/A", "B"), ActivityState::SetOn);
}

TEST(ActivityDecisions, AnErasureTakesAllThatBeginsWithTheText) {
  ActivityDecisions decisions;
  decisions.setParam(wall, "Label", true);
  decisions.setParam(wall + "/Turbulence", "Intensity", false);
  decisions.setParam(wall + "2", "Label", true);
  decisions.setObject(wall, true);
  decisions.setObject(wall + "2/Turbulence", false);
  decisions.eraseFromOptActivityMaps(wall);
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::Unset);
  EXPECT_EQ(decisions.ofParam(wall + "/Turbulence", "Intensity"), ActivityState::Unset);
  EXPECT_EQ(decisions.ofParam(wall + "2", "Label"), ActivityState::Unset);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::Unset);
  EXPECT_EQ(decisions.ofObject(wall + "2/Turbulence"), ActivityState::Unset);
}

TEST(ActivityDecisions, AnErasureLeavesWhatStandsBeforeAndBehind) {
  ActivityDecisions decisions;
  decisions.setParam("/Case/Domain:rotor/Boundary:wal", "Label", true);
  decisions.setParam("/Case/Domain:rotor/Boundary:wam", "Label", true);
  decisions.setParam("/Case/Domain:rotor", "Boundary", false);
  decisions.setObject("/Case", false);
  decisions.eraseFromOptActivityMaps(wall);
  EXPECT_EQ(decisions.ofParam("/Case/Domain:rotor/Boundary:wal", "Label"), ActivityState::SetOn);
  EXPECT_EQ(decisions.ofParam("/Case/Domain:rotor/Boundary:wam", "Label"), ActivityState::SetOn);
  EXPECT_EQ(decisions.ofParam("/Case/Domain:rotor", "Boundary"), ActivityState::SetOff);
  EXPECT_EQ(decisions.ofObject("/Case"), ActivityState::SetOff);
}

TEST(ActivityDecisions, ARollbackForgetsAFirstDecisionAndRestoresAChangedOne) {
  Journal journal;
  ActivityDecisions decisions;
  decisions.setParam(wall, "Label", true);
  decisions.setObject(wall, false);
  Journal::Mark const mark = journal.mark();
  decisions.setParam(wall, "Label", false, &journal);
  decisions.setParam(wall, "Area", true, &journal);
  decisions.setObject(wall, true, &journal);
  decisions.setObject("/Case", true, &journal);
  journal.rollback(mark);
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::SetOn);
  EXPECT_EQ(decisions.ofParam(wall, "Area"), ActivityState::Unset);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::SetOff);
  EXPECT_EQ(decisions.ofObject("/Case"), ActivityState::Unset);
}

TEST(ActivityDecisions, ARollbackRestoresWhatWasErasedAndThenDecidedAnew) {
  Journal journal;
  ActivityDecisions decisions;
  decisions.setParam(wall, "Label", true);
  decisions.setObject(wall, true);
  decisions.setObject(wall + "2", false);
  Journal::Mark const mark = journal.mark();
  decisions.setObject(wall + "3", true, &journal);
  decisions.eraseFromOptActivityMaps(wall, &journal);
  EXPECT_EQ(decisions.ofObject(wall + "2"), ActivityState::Unset);
  decisions.setObject(wall, false, &journal);
  journal.rollback(mark);
  EXPECT_EQ(decisions.ofParam(wall, "Label"), ActivityState::SetOn);
  EXPECT_EQ(decisions.ofObject(wall), ActivityState::SetOn);
  EXPECT_EQ(decisions.ofObject(wall + "2"), ActivityState::SetOff);
  EXPECT_EQ(decisions.ofObject(wall + "3"), ActivityState::Unset);
}

}  // namespace
}  // namespace tarn
