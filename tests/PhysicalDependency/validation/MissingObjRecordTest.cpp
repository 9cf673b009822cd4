#include "validation/MissingObjRecord.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

MissingObjRecord openDomains() {
  MissingObjRecord record;
  record.beginNamed("/Case", "Domain", {"stator", "rotor"});
  return record;
}

TEST(MissingObjRecord, WithNoGroupOpenNothingMatchesAndNothingIsLeft) {
  MissingObjRecord record;
  EXPECT_FALSE(record.matches("/Case/Solver"));
  EXPECT_FALSE(record.matches(""));
  EXPECT_FALSE(record.hasPending());
  EXPECT_FALSE(record.hasReported());
  EXPECT_THAT(record.getReportedNames(), IsEmpty());
}

TEST(MissingObjRecord, ASingletonMatchesUnderItsTypeOnly) {
  MissingObjRecord record;
  record.beginSingleton("/Case/Domain:rotor", "Initial Values");
  EXPECT_TRUE(record.isSingleton());
  EXPECT_EQ(record.objPath(), "/Case/Domain:rotor");
  EXPECT_EQ(record.type(), "Initial Values");
  EXPECT_TRUE(record.matches("/Case/Domain:rotor/Initial Values"));
  EXPECT_FALSE(record.matches("/Case/Domain:rotor/Initial Values/Pressure"));
  EXPECT_FALSE(record.matches("/Case/Domain:rotor/Initial Values:first"));
  EXPECT_FALSE(record.matches("/Case/Domain:stator/Initial Values"));
  EXPECT_FALSE(record.matches("/Case/Domain:rotor"));
  EXPECT_FALSE(record.matches("/Case/Domain:rotor/Initial Value"));
}

TEST(MissingObjRecord, ASingletonNamedLikeItsTypeMatchesAsWell) {
  MissingObjRecord record;
  record.beginSingleton("/Case", "Solver");
  EXPECT_TRUE(record.matches("/Case/Solver:Solver"));
}

TEST(MissingObjRecord, NamedObjectsMatchUnderTheirNamesOnly) {
  MissingObjRecord record = openDomains();
  EXPECT_FALSE(record.isSingleton());
  EXPECT_TRUE(record.matches("/Case/Domain:rotor"));
  EXPECT_TRUE(record.matches("/Case/Domain:stator"));
  EXPECT_FALSE(record.matches("/Case/Domain:casing"));
  EXPECT_FALSE(record.matches("/Case/Domain"));
  EXPECT_FALSE(record.matches("/Case/Boundary:rotor"));
  EXPECT_FALSE(record.matches("/Case/Domain:rotor/Boundary:rotor"));
}

TEST(MissingObjRecord, AColonFurtherUpInThePathIsNotTheName) {
  MissingObjRecord record;
  record.beginSingleton("/Case/Domain:rotor", "Solver");
  EXPECT_TRUE(record.matches("/Case/Domain:rotor/Solver"));
}

TEST(MissingObjRecord, AnObjectAtTheRootHasTheEmptyParent) {
  MissingObjRecord record;
  record.beginNamed("", "Case", {"pump"});
  EXPECT_TRUE(record.matches("/Case:pump"));
  EXPECT_TRUE(record.matches("Case:pump"));
  EXPECT_FALSE(record.matches("/Case"));
}

TEST(MissingObjRecord, TheRootKeepsThePartsOfThePathBeforeIt) {
  MissingObjRecord record = openDomains();
  EXPECT_FALSE(record.matches(""));
  EXPECT_TRUE(record.matches("/Case/Domain:rotor"));
  EXPECT_TRUE(record.matches(""));
  EXPECT_FALSE(record.matches("/Case"));
  EXPECT_FALSE(record.matches(""));
}

TEST(MissingObjRecord, AConfirmedObjectMovesToTheReportedOnes) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.finishObject(true);
  EXPECT_FALSE(record.matches("/Case/Domain:rotor"));
  EXPECT_TRUE(record.hasPending());
  EXPECT_TRUE(record.hasReported());
  EXPECT_THAT(record.getReportedNames(), ElementsAre("rotor"));
}

TEST(MissingObjRecord, AnObjectThatIsNotNeededJustGoes) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:stator"));
  record.finishObject(false);
  EXPECT_FALSE(record.matches("/Case/Domain:stator"));
  EXPECT_TRUE(record.hasPending());
  EXPECT_FALSE(record.hasReported());
}

TEST(MissingObjRecord, ReportedNamesAreSortedWhateverTheOrderOfTheWalk) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:stator"));
  record.finishObject(true);
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.finishObject(true);
  EXPECT_FALSE(record.hasPending());
  EXPECT_THAT(record.getReportedNames(), ElementsAre("rotor", "stator"));
}

TEST(MissingObjRecord, AFinishedSingletonIsReportedUnderItsType) {
  MissingObjRecord record;
  record.beginSingleton("/Case", "Solver");
  EXPECT_TRUE(record.hasPending());
  ASSERT_TRUE(record.matches("/Case/Solver"));
  record.finishObject(true);
  EXPECT_FALSE(record.hasPending());
  EXPECT_THAT(record.getReportedNames(), ElementsAre("Solver"));
}

TEST(MissingObjRecord, ClearClosesTheGroup) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.finishObject(true);
  record.clear();
  EXPECT_FALSE(record.matches("/Case/Domain:stator"));
  EXPECT_FALSE(record.hasPending());
  EXPECT_FALSE(record.hasReported());
  EXPECT_THAT(record.getReportedNames(), IsEmpty());
}

TEST(MissingObjRecord, APathThatIsAskedAboutWhileNoGroupIsOpenIsNotRemembered) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.clear();
  EXPECT_FALSE(record.matches("/Case/Domain:stator"));
  record.beginNamed("/Case", "Domain", {"stator", "rotor"});
  record.finishObject(true);
  EXPECT_THAT(record.getReportedNames(), ElementsAre("rotor"));
}

TEST(MissingObjRecord, WhatIsFinishedWhileNoGroupIsOpenIsNotReported) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.clear();
  record.finishObject(true);
  EXPECT_FALSE(record.hasReported());
  EXPECT_THAT(record.getReportedNames(), IsEmpty());
}

TEST(MissingObjRecord, ANewGroupKnowsNothingOfTheOneBefore) {
  MissingObjRecord record = openDomains();
  ASSERT_TRUE(record.matches("/Case/Domain:rotor"));
  record.finishObject(true);
  record.clear();
  record.beginSingleton("/Case", "Solver");
  EXPECT_TRUE(record.isSingleton());
  EXPECT_FALSE(record.matches("/Case/Domain:stator"));
  EXPECT_TRUE(record.matches("/Case/Solver"));
  EXPECT_FALSE(record.hasReported());
}

}  // namespace
}  // namespace tarn
