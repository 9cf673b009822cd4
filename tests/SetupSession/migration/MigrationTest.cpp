#include <tarn/session/Migration.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/session/Review.h>

#include "support/Rules.h"

namespace tarn::session {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

ParamAvail param(std::string name, std::vector<std::string> formerNames) {
  ParamAvail entry;
  entry.name = std::move(name);
  entry.history.formerNames = std::move(formerNames);
  return entry;
}

ChildAvail child(std::string type, std::vector<std::string> formerTypes) {
  ChildAvail entry;
  entry.type = std::move(type);
  entry.coupled = true;
  entry.history.formerNames = std::move(formerTypes);
  return entry;
}

/// A plant was a system, and its circuits were loops.
struct PlantRules : PhysicsData {
  PlantRules() {
    addPertinentRoot("Plant");
    ObjDependDef& plant = addObject("/Plant");
    plant.history.formerNames = {"System"};
    EXPECT_TRUE(plant.addParam(param("Flow Temperature", {"Supply Temperature", "Supply"}), ParamValueDef()));
    EXPECT_TRUE(plant.addParam(param("Mode", {}), ParamValueDef()));
    ChildAvail circuit = child("Circuit", {"Loop"});
    circuit.renamedNames = {{"left", "right"}, {"right", "left"}, {"first floor", "upper floor"}};
    EXPECT_TRUE(plant.addChild(std::move(circuit)));
    ObjDependDef& circuits = addObject("/Plant/Circuit");
    EXPECT_TRUE(circuits.addParam(param("Mixer", {"Valve"}), ParamValueDef()));
  }
};

Migration migrated(std::string const& text) {
  static PlantRules const rules;
  return migrate(rules, ModelText("plant.tdf", text), text);
}

std::vector<std::string> sentencesOf(Migration const& migration) {
  std::vector<std::string> sentences;
  for (MigrationEntry const& entry : migration.entries) sentences.push_back(sentenceOf(entry));
  return sentences;
}

TEST(Migration, RenamesFromTheRootDown) {
  Migration const migration = migrated("/System/Supply=50\n/System/Loop:a/Valve=x\n");
  EXPECT_EQ(migration.text, "/Plant/Flow Temperature=50\n/Plant/Circuit:a/Mixer=x\n");
  EXPECT_THAT(sentencesOf(migration),
              ElementsAre("renamed the object \"/System\" to \"Plant\".",
                          "renamed the parameter \"Supply\" of \"/System\" to \"Flow Temperature\".",
                          "renamed the object \"/System/Loop:a\" to \"Circuit:a\".",
                          "renamed the parameter \"Valve\" of \"/System/Loop:a\" to \"Mixer\"."));
  EXPECT_FALSE(migration.isOpen());
}

TEST(Migration, AMigratedModelNeedsNoMigration) {
  std::string const once = migrated("/System/Supply=50\n/System/Loop:first floor/Valve=x\n").text;
  EXPECT_THAT(migrated(once).entries, IsEmpty());
  EXPECT_EQ(migrated(once).text, once);
}

TEST(Migration, AnItemWhoseNameTheRulesKnowIsNeverTouched) {
  std::string const text = "/Plant/Mode=Supply\n/Plant/Circuit:Loop/Mixer=Valve\n/Other/Supply=1\n";
  EXPECT_THAT(migrated(text).entries, IsEmpty());
  EXPECT_EQ(migrated(text).text, text);
}

TEST(Migration, OldAndNewNameWithTheSameValueBecomeOne) {
  Migration const migration = migrated("/Plant/Supply=50\n/Plant/Flow Temperature=50\n/Plant/Supply Temperature=50\n");
  EXPECT_EQ(migration.text, "/Plant/Flow Temperature=50\n");
  EXPECT_FALSE(migration.isOpen());
}

TEST(Migration, OldAndNewNameWithDifferentValuesStay) {
  std::string const text = "/Plant/Supply=50\n/Plant/Flow Temperature=60\n";
  Migration const migration = migrated(text);
  EXPECT_EQ(migration.text, text);
  EXPECT_TRUE(migration.isOpen());
  EXPECT_THAT(
      sentencesOf(migration),
      ElementsAre("did not rename the parameter \"Supply\" of \"/Plant\" to \"Flow Temperature\": it has the value "
                  "\"50\", and the other parameter for that name has \"60\"; delete one of the two."));
}

TEST(Migration, TwoOldNamesWithDifferentValuesStay) {
  std::string const text = "/Plant/Supply=50\n/Plant/Supply Temperature=60\n";
  EXPECT_EQ(migrated(text).text, text);
  EXPECT_EQ(migrated(text).entries.size(), 2u);
}

TEST(Migration, ObjectsCanExchangeTheirNames) {
  EXPECT_EQ(migrated("/Plant/Circuit:left/Mixer=1\n/Plant/Circuit:right/Mixer=2\n").text,
            "/Plant/Circuit:right/Mixer=1\n/Plant/Circuit:left/Mixer=2\n");
}

TEST(Migration, AnObjectKeepsItsNameWhenTheNewOneIsTaken) {
  std::string const text = "/Plant/Loop:a/Valve=1\n/Plant/Circuit:a/Valve=2\n";
  Migration const migration = migrated(text);
  EXPECT_EQ(migration.text, "/Plant/Loop:a/Valve=1\n/Plant/Circuit:a/Mixer=2\n");
  EXPECT_TRUE(migration.isOpen());
}

TEST(Migration, AnObjectDoesNotGetTheNameOfItsType) {
  std::string const text = "/Plant/Loop:Circuit/Valve=1\n";
  EXPECT_EQ(migrated(text).text, text);
  EXPECT_TRUE(migrated(text).isOpen());
}

TEST(Migration, ValuesThatNameARenamedObjectAreShown) {
  Migration const migration = migrated("/Plant/Circuit:first floor/\n/Plant/Mode=first floor\n");
  EXPECT_EQ(migration.text, "/Plant/Circuit:upper floor/\n/Plant/Mode=first floor\n");
  EXPECT_THAT(
      sentencesOf(migration),
      ElementsAre("renamed the object \"/Plant/Circuit:first floor\" to \"Circuit:upper floor\".",
                  "did not change the parameter \"Mode\" of \"/Plant\": its value \"first floor\" has the former name "
                  "of \"/Plant/Circuit:first floor\"; change the value if it means that object."));
}

TEST(Migration, EntriesHaveTheirPlaceInTheText) {
  Migration const migration = migrated("# plant\n/Plant/Mode=a\n/Plant/Supply=50\n");
  ASSERT_EQ(migration.entries.size(), 1u);
  EXPECT_EQ(migration.entries[0].place.text(), "plant.tdf:3:8");
}

TEST(Review, WarnsOfFormerNamesAndSaysThePresentOnes) {
  PlantRules const rules;
  Findings const findings = Review(rules).judge(ModelState{
      {"/Plant", {{"Supply", "50"}}}, {"/Plant/Loop:a", {{"Valve", "1"}}}, {"/Plant/Circuit:left", {{"Mixer", "1"}}}});
  std::vector<std::string> seen;
  for (Finding const& finding : findings.list) {
    EXPECT_EQ(finding.severity, Severity::Warning);
    seen.push_back(std::string(describe(finding.code).name) + ' ' + finding.path + " -> " +
                   finding.expected.nearMatch.value_or(""));
  }
  EXPECT_THAT(seen,
              ElementsAre("renamed-parameter /Plant -> Flow Temperature", "renamed-name /Plant/Circuit:left -> right",
                          "renamed-object /Plant/Loop:a -> Circuit"));
}

}  // namespace
}  // namespace tarn::session
