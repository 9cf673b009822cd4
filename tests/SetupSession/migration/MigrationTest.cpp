#include <tarn/session/Migration.h>

#include <algorithm>
#include <map>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Review.h>

#include "support/MigrationLaw.h"
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

/// Rules in which a parameter names circuits: the rules compute its values.
Migration migratedChoice(std::string const& text) {
  static auto const rules = rules::parseRules(R"yaml(Rule Database: 1
Pertinent Roots: [Plant]
Objects:
  /Plant:
    Parameters:
      Main: {Parameter Type: String, Value List Source: "names({Circuit:*})", Renamed From: Chief}
      Order: {Parameter Type: String List, Value List Source: "names({Circuit:*})"}
      Fixed: {Parameter Type: String, Ordered Allowed String List: [upper floor]}
    Children:
      Circuit:
        Coupled: yes
        Renamed Names: {first floor: upper floor, attic: upper floor, left: right, right: left}
)yaml");
  return migrate(*rules, ModelText("plant.tdf", text), text);
}

TEST(Migration, AValueThatMustMeanARenamedObjectFollows) {
  Migration const migration = migratedChoice("/Plant/Circuit:first floor/\n/Plant/Chief = first floor\n");
  EXPECT_EQ(migration.text, "/Plant/Circuit:upper floor/\n/Plant/Main = upper floor\n");
  EXPECT_EQ(sentencesOf(migration).back(),
            "changed the parameter \"Chief\" of \"/Plant\" from \"first floor\" to \"upper floor\": that is what "
            "\"/Plant/Circuit:first floor\" is called now.");
  EXPECT_FALSE(migration.isOpen());
}

TEST(Migration, AnItemOfAListThatMustMeanARenamedObjectFollows) {
  Migration const migration =
      migratedChoice("/Plant/Circuit:first floor/\n/Plant/Circuit:cellar/\n/Plant/Order = cellar,first floor\n");
  EXPECT_EQ(migration.text, "/Plant/Circuit:upper floor/\n/Plant/Circuit:cellar/\n/Plant/Order = cellar,upper floor\n");
}

TEST(Migration, AValueThatCanMeanAnythingElseStays) {
  for (std::string const text : {
           // The rules do not compute the values.
           "/Plant/Fixed=first floor\n",
           // The parameter is given twice.
           "/Plant/Main=first floor\n/Plant/Main=first floor\n",
       }) {
    Migration const migration = migratedChoice("/Plant/Circuit:first floor/\n" + text);
    EXPECT_EQ(migration.text, "/Plant/Circuit:upper floor/\n" + text);
    EXPECT_TRUE(migration.isOpen());
  }
  // Two objects exchange their names, so the value is still a name.
  Migration const exchanged = migratedChoice("/Plant/Circuit:left/\n/Plant/Circuit:right/\n/Plant/Main=left\n");
  EXPECT_EQ(exchanged.text, "/Plant/Circuit:right/\n/Plant/Circuit:left/\n/Plant/Main=left\n");
  EXPECT_TRUE(exchanged.isOpen());
}

/// A model with former names, in lines and blocks, with comments and odd blanks.
std::string randomModel(std::mt19937& random) {
  auto const oneOf = [&](std::vector<std::string> const& list) { return list[random() % list.size()]; };
  std::string const end = random() % 4 == 0 ? "\r\n" : "\n";
  std::string text = random() % 5 == 0 ? "# A plant." + end + end : "";
  auto const value = [&] { return oneOf({"1", "50", "-3", "eco", "comfort", "open", "shut", "a", "b, a", ""}); };
  for (std::size_t i = 0; i < 3 + random() % 8; ++i) {
    std::string const equals = oneOf({"=", " = ", "= "});
    std::string const loop = oneOf({"a", "b", "c", "d"});
    switch (random() % 6) {
      case 0:
        text += "/System/" + oneOf({"Supply", "Mode", "First", "Note"}) + equals + value() + end;
        break;
      case 1:
        text += "/System/Loop:" + loop + '/' + oneOf({"Valve", "Size"}) + equals + value() + end;
        break;
      case 2:
        text += "/System/Loop:" + loop + "/Fan:x/Power" + equals + value() + end;
        break;
      case 3:
        text += "  # " + value() + end;
        break;
      case 4:
        text += "/System/Loop:" + loop + '/' + end;
        break;
      default:
        text += "System: " + end + "\tNote" + equals + value() + end + "  Loop: " + loop + end +
                "    Valve =" + value() + end + "  END # Loop:" + loop + end + "END # System:" + end;
    }
  }
  return text;
}

TEST(Migration, TheLawsHoldForRandomModelsAndNames) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    std::map<std::string, bool> chosen;
    auto const rules = rules::parseRules(tarn::test::renamedPlant(
        [&](std::string const& former) { return chosen.try_emplace(former, random() % 2 == 0).first->second; }));
    std::string const text = randomModel(random);
    EXPECT_EQ(tarn::test::brokenLawOfMigration(*rules, text), "") << "seed " << seed << '\n' << text;
  }
}

TEST(Migration, AMigratedModelIsJudgedAsTheOldOneUnderTheOldRules) {
  auto const before = rules::parseRules(tarn::test::renamedPlant([](std::string const&) { return false; }));
  auto const after = rules::parseRules(tarn::test::renamedPlant([](std::string const&) { return true; }));
  // The findings, without names.
  auto const found = [](PhysicsData const& rules, std::string const& text) {
    std::vector<std::string> list;
    for (Finding const& finding : Review(rules).judge(ModelText("plant.tdf", text).state()).list) {
      list.push_back(std::string(describe(finding.code).name) + ' ' + finding.value.value_or("") + ' ' +
                     finding.expected.lowerBound.value_or("") + ' ' + finding.expected.upperBound.value_or(""));
    }
    std::sort(list.begin(), list.end());
    return list;
  };
  std::size_t judged = 0;
  for (unsigned seed = 1; seed <= 200; ++seed) {
    std::mt19937 random(seed);
    std::string const text = randomModel(random);
    Migration const migration = migrate(*after, ModelText("plant.tdf", text), text);
    EXPECT_FALSE(migration.isOpen());
    auto const old = found(*before, text);
    EXPECT_EQ(found(*after, migration.text), old) << "seed " << seed << '\n' << text;
    judged += old.size();
  }
  EXPECT_GT(judged, 200u);
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
