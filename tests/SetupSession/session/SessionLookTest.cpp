#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <tarn/session/Sentences.h>
#include <tarn/session/Session.h>

#include "SetupSession/session/TankCase.h"

namespace tarn::session {
namespace {

using test::Tanks;
using testing::ElementsAre;
using testing::IsEmpty;

template <class Records>
std::vector<std::string> sentencesOfAll(Records const& records) {
  std::vector<std::string> sentences;
  for (auto const& record : records) sentences.push_back(sentenceOf(record));
  return sentences;
}

TEST(SessionLook, AParameterHasItsValueDefaultBoundsUnitsAndRule) {
  Tanks tanks;
  auto const height = tanks->lookParam("/Plant/Tank:T1", "Height");
  ASSERT_TRUE(height);
  EXPECT_EQ(height->value, "3 [m]");
  EXPECT_EQ(height->origin, Origin::Model);
  EXPECT_EQ(height->valueInModel, "3 [m]");
  EXPECT_EQ(height->type, TDFParam::Real);
  EXPECT_TRUE(height->required);
  EXPECT_EQ(height->defaultValue, "2 [m]");
  EXPECT_EQ(height->lowerBound, "0 [m]");
  EXPECT_FALSE(height->upperBound);
  EXPECT_EQ(height->quantityType, "Length");
  EXPECT_THAT(height->units, ElementsAre("m", "in"));
  EXPECT_EQ(height->rule.source(), "plant.rules.yaml");
  EXPECT_EQ(sentenceOf(*height), "/Plant/Tank:T1/Height is \"3 [m]\", from the model.");
}

TEST(SessionLook, AValueOutOfItsBoundsSaysSo) {
  Tanks tanks;
  auto const outOfBounds = [&](std::string const& name, std::string const& value) {
    EXPECT_TRUE(tanks->edit(Edit::setParam("/Plant/Tank:T1", name, value)).applied());
    return tanks->lookParam("/Plant/Tank:T1", name)->outOfBounds;
  };
  EXPECT_EQ(outOfBounds("Height", "-1 [m]"), "is below its lower bound 0 [m]");
  EXPECT_EQ(outOfBounds("Height", "0"), "");
  EXPECT_EQ(outOfBounds("Height", ""), "");
  EXPECT_EQ(outOfBounds("Height", "40 [in]"), "");
  // 40 inches are 1.016 m.
  EXPECT_EQ(outOfBounds("Level", "1.02 [m]"), "is above its upper bound 40 [in]");
  EXPECT_EQ(
      sentenceOf(*tanks->lookParam("/Plant/Tank:T1", "Level")),
      "/Plant/Tank:T1/Level is \"1.02 [m]\", set in this session by step 5. It is above its upper bound 40 [in].");
  EXPECT_EQ(outOfBounds("Level", "1.01 [m]"), "");
}

TEST(SessionLook, AValueHasItsOrigin) {
  Tanks tanks;
  auto const originOf = [&](std::string const& path, std::string const& name) {
    return std::pair(tanks->lookParam(path, name)->origin, tanks->lookParam(path, name)->step);
  };
  (void)tanks->edit(Edit::setParam("/Plant", "Title", "Two tanks"));
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Transient"));
  EXPECT_EQ(originOf("/Plant", "Title"), std::pair(Origin::User, std::size_t{1}));
  EXPECT_EQ(originOf("/Plant/Solver", "Mode"), std::pair(Origin::User, std::size_t{2}));
  EXPECT_EQ(originOf("/Plant/Solver", "Steps"), std::pair(Origin::Default, std::size_t{0}));
  EXPECT_EQ(originOf("/Plant/Tank:T1", "Control"), std::pair(Origin::Override, std::size_t{0}));
  EXPECT_EQ(originOf("/Plant/Tank:T1", "Height"), std::pair(Origin::Model, std::size_t{0}));
  EXPECT_EQ(originOf("/Plant/Instrument:gauge", "Gain"), std::pair(Origin::Model, std::size_t{0}));
  EXPECT_EQ(originOf("/Plant/Solver", "Relaxation"), std::pair(Origin::None, std::size_t{0}));
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Steady"));
  EXPECT_EQ(originOf("/Plant/Tank:T1", "Control"), std::pair(Origin::FormerOverride, std::size_t{0}));
  (void)tanks->edit(Edit::duplicateObject("/Plant/Tank:T1", "T3"));
  EXPECT_EQ(originOf("/Plant/Tank:T3", "Height"), std::pair(Origin::User, std::size_t{4}));
}

TEST(SessionLook, AParameterThatIsNotAvailableSaysWhyAndWhatWaits) {
  Tanks tanks;
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Mode", "Transient"));
  auto const relaxation = tanks->lookParam("/Plant/Solver", "Relaxation");
  ASSERT_TRUE(relaxation);
  EXPECT_FALSE(relaxation->available());
  EXPECT_EQ(relaxation->reason, "a transient run is not relaxed");
  ASSERT_TRUE(relaxation->waiting);
  EXPECT_EQ(relaxation->waiting->value, "0.6");
  EXPECT_EQ(sentenceOf(*relaxation), "/Plant/Solver/Relaxation is not available: a transient run is not relaxed");
}

TEST(SessionLook, APathWithTwoSlipsIsResolvedToOneThatIsThere) {
  Tanks tanks;
  auto const nearest = [&](std::string const& text) {
    auto const resolved = tanks->resolve(text);
    Refused const& refused = std::get<Refused>(resolved);
    if (refused.nearest) return refused.nearest->path + " " + refused.nearest->name;
    return refused.possible.empty() ? "nothing" : "perhaps " + refused.possible[0];
  };
  EXPECT_EQ(nearest("Tnak:T1/Hieght"), "/Plant/Tank:T1 Height");
  EXPECT_EQ(nearest("Solvr/Mod"), "/Plant/Solver Mode");
  EXPECT_EQ(nearest("Solvr/Colour"), "perhaps /Plant/Solver/Colour");
  EXPECT_EQ(nearest("Elsewhere/Colour"), "nothing");
}

TEST(SessionLook, KnowsChoicesOfWhatIsOnOffer) {
  Tanks tanks("/Plant/Tank:T1/\n/Plant/Pipe:P1/\n");
  auto const through = tanks->lookParam("/Plant/Pipe:P1", "Through");
  ASSERT_TRUE(through);
  EXPECT_TRUE(through->offered);
  EXPECT_THAT(through->allowed.allowedValues, ElementsAre("T1"));
}

TEST(SessionLook, WhatTheRulesDoNotKnowHasNoRecord) {
  Tanks tanks;
  EXPECT_FALSE(tanks->lookParam("/Plant", "Titel"));
  EXPECT_FALSE(tanks->lookParam("/Plant/Tank:T9", "Height"));
  EXPECT_FALSE(tanks->lookParam("/Elsewhere", "Title"));
  EXPECT_FALSE(tanks->lookParam("nonsense", ""));
  EXPECT_FALSE(tanks->lookObject("/Plant/Tank:T9"));
  EXPECT_FALSE(tanks->lookObject("/Plant/Tnk:T1"));
  EXPECT_FALSE(tanks->lookObject(""));
}

TEST(SessionLook, AnObjectHasItsStateAndItsContent) {
  Tanks tanks;
  auto const plant = tanks->lookObject("/Plant");
  ASSERT_TRUE(plant);
  EXPECT_TRUE(plant->present);
  EXPECT_EQ(plant->children, 5U);
  auto const report = tanks->lookObject("/Plant/Report");
  ASSERT_TRUE(report);
  EXPECT_TRUE(report->offered);
  EXPECT_FALSE(report->inModel);
  auto const ambient = tanks->lookObject("/Plant/Ambient");
  ASSERT_TRUE(ambient);
  EXPECT_FALSE(ambient->available);
  EXPECT_EQ(ambient->reason, "only a transient plant exchanges heat with its surroundings");
  EXPECT_FALSE(tanks->lookObject("/Plant/Instrument:gauge")->editable);
}

TEST(SessionLook, ListsTheTypesOfChildren) {
  Tanks tanks;
  EXPECT_THAT(sentencesOfAll(tanks->childTypes("/Plant")),
              ElementsAre("Children \"Solver\": 1 present.", "Children \"Tank\": 2 present, more can be added.",
                          "Children \"Pipe\": 1 present, more can be added.",
                          "Children \"Report\": 0 present, 1 on offer.", "Children \"Instrument\": 1 present.",
                          "Children \"Ambient\" are not available: only a transient plant exchanges heat with its "
                          "surroundings"));
  EXPECT_THAT(tanks->params("/Plant/Solver"), ElementsAre("Mode", "Relaxation", "Time Step", "Steps", "Verbose"));
  EXPECT_THAT(tanks->params("/Nowhere"), IsEmpty());
}

TEST(SessionLook, FindsNamesWithTheBestMatchesFirst) {
  Tanks tanks;
  EXPECT_THAT(sentencesOfAll(tanks->find("level")),
              ElementsAre("/Plant/Tank:T1/Level", "/Plant/Tank:T2/Level", "/Plant/Tank:T1/Set Level",
                          "/Plant/Tank:T2/Set Level (not present)"));
  EXPECT_THAT(sentencesOfAll(tanks->find("T", 3)), ElementsAre("/Plant/Title (not present)", "/Plant/Pipe:P1/Through",
                                                               "/Plant/Solver/Time Step (not present)"));
  EXPECT_EQ(tanks->find("step").front().match, MatchKind::Prefix);
  EXPECT_THAT(tanks->find(""), IsEmpty());
  EXPECT_THAT(tanks->find("bananas"), IsEmpty());
}

TEST(SessionLook, ListsWhatTheUserHasSetAndWhatWaits) {
  Tanks tanks;
  (void)tanks->edit(Edit::setParam("/Plant", "Title", "Two tanks"));
  (void)tanks->edit(Edit::setParam("/Plant/Solver", "Time Step", "0.5"));
  EXPECT_THAT(sentencesOfAll(tanks->own()),
              ElementsAre("/Plant/Title = \"Two tanks\", set by step 1.",
                          "/Plant/Solver/Time Step = \"0.5\", set by step 2, not in force."));
  EXPECT_THAT(
      sentencesOfAll(tanks->waiting()),
      ElementsAre("/Plant/Solver/Time Step = \"0.5\" waits, because it is not available now: a steady run has no "
                  "time steps"));
}

TEST(SessionLook, ListsWhatTheModelAsksForAndTheRulesDoNotKnow) {
  Tanks tanks("/Plant/Colour=blue\n/Plant/Pump:P/Power=3\n/Plant/Tank:T1/\n");
  EXPECT_THAT(sentencesOfAll(tanks->waiting()),
              ElementsAre("/Plant/Colour = \"blue\" waits, because the rules do not know it.",
                          "/Plant/Pump:P waits, because the rules do not know it.",
                          "/Plant/Pump:P/Power = \"3\" waits, because the rules do not know it."));
}

TEST(SessionLook, ListsTheDifferencesFromTheModel) {
  Tanks tanks(
      "/Plant/Solver/Mode=Steady\n/Plant/Tank:T1/Control=Free\n/Plant/Tank:T1/Height=3 [m]\n"
      "/Plant/Tank:T1/Level=1 [m]\n/Plant/Colour=blue\n");
  (void)tanks->edit(Edit::setParam("/Plant/Tank:T1", "Height", "4 [m]"));
  (void)tanks->edit(Edit::activateObject("/Plant/Report"));
  EXPECT_THAT(sentencesOfAll(tanks->differences()),
              ElementsAre("/Plant/Colour is not in the result; the model has \"blue\".", "/Plant/Report is new.",
                          "/Plant/Report/File is new, with the value \"report.txt\".",
                          "/Plant/Tank:T1/Height is \"4 [m]\"; the model has \"3 [m]\"."));
}

TEST(SessionLook, TheResultIsTheWholeModel) {
  Tanks tanks("/Other/Note=kept\n/Plant/Solver/Mode=Steady\n/Plant/Tank:T1/\n/Plant/Instrument:gauge/\n");
  ModelState const result = tanks->result();
  EXPECT_EQ(result.at("/Other").at("Note"), "kept");
  EXPECT_EQ(result.at("/Plant/Tank:T1").at("Height"), "2 [m]");
  EXPECT_TRUE(result.at("/Plant/Instrument:gauge").empty());
}

TEST(SessionLook, ResolvesWhatAUserTypes) {
  Tanks tanks;
  auto const resolved = [&](std::string const& text) {
    auto const answer = tanks->resolve(text);
    if (auto const* item = std::get_if<Item>(&answer))
      return (item->isParam() ? "parameter " : "object ") + item->text();
    return sentenceOf(std::get<Refused>(answer));
  };
  EXPECT_EQ(resolved("/Plant/Tank:T1"), "object /Plant/Tank:T1");
  EXPECT_EQ(resolved("  Tank:T1/Height "), "parameter /Plant/Tank:T1/Height");
  EXPECT_EQ(resolved("Solver/Time Step"), "parameter /Plant/Solver/Time Step");
  EXPECT_EQ(resolved("Ambient"), "object /Plant/Ambient");
  EXPECT_EQ(resolved("Instrument:gauge/Gain"), "parameter /Plant/Instrument:gauge/Gain");
  EXPECT_EQ(resolved(""), "object /Plant");
  EXPECT_EQ(resolved("/Plant/"), "object /Plant");
  EXPECT_EQ(resolved("Tank:T1/Hight"),
            "The rules know no parameter \"Hight\" in \"/Plant/Tank:T1\". Nearest: switch on /Plant/Tank:T1/Height.");
  EXPECT_EQ(resolved("Tnk:T1/Height"),
            "The rules know no object \"Tnk\" in \"/Plant\". Nearest: switch on /Plant/Tank:T1/Height.");
  EXPECT_EQ(resolved("/"), "\"/\" is outside of \"/Plant\", which is being edited.");
  EXPECT_EQ(resolved("Tank::T1"), "\"/Plant/Tank::T1\" is not a path: a component of the path holds a second \":\".");
}

}  // namespace
}  // namespace tarn::session
