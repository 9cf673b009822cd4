// The walk: the order of events, its reads and their order, the effect of the hooks' results, and its end. The content
// of the records has tests of its own.

#include <tarn/DependencyAnalyser.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Error.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

#include "support/MapModel.h"
#include "support/ModelView.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::ModelView;
using test::never;
using test::Question;
using test::Rules;
using test::when;
using Strings = std::vector<std::string>;
using Status = DependencyAnalyser::HandlerStatus;

constexpr Status Continue = DependencyAnalyser::Continue;
constexpr Status SkipObject = DependencyAnalyser::SkipObject;
constexpr Status Abort = DependencyAnalyser::Abort;

/// Writes down each hook as one line, and then does what the test wants done at that line.
///
///     begin /Case, param? /Case|Motion, param /Case|Motion, child /Case|Domain, end /Case
class Recorder final : public DependencyAnalyser {
 public:
  explicit Recorder(PhysicsData const* rules) : DependencyAnalyser(rules) {}

  using DependencyAnalyser::isParamValueEqual;
  using DependencyAnalyser::limitParams;
  using DependencyAnalyser::ParamScope;

  Strings events;
  std::map<std::string, std::function<Status()>> at;

 private:
  Status onBeginObject(ObjBeginInfo const* info) override {
    return told("begin " + info->getObjPath() + (info->isValid() ? "" : " unknown") +
                    (info->isRequired() ? " required" : "") + (info->isCoupled() ? " coupled" : ""),
                "begin " + info->getObjPath());
  }
  Status onBeginParam(std::string const& objPath, std::string const& name) override {
    return told("param? " + objPath + '|' + name);
  }
  Status onParamCheck(ParamAvailInfo const* info) override {
    std::string const event = "param " + info->getObjPath() + '|' + info->getName();
    return told(event + (info->isAvailable() ? "" : " unavailable"), event);
  }
  Status onChildCheck(ChildAvailInfo const* info) override {
    std::string const event = "child " + info->getObjPath() + '|' + info->getType();
    return told(event + (info->isAvailable() ? "" : " unavailable"), event);
  }
  Status onEndObject(std::string const& objPath, bool required) override {
    std::string const event = "end " + objPath;
    return told(event + (required ? " required" : ""), event);
  }

  Status told(std::string const& line, std::string const& event) {
    events.push_back(line);
    auto const wanted = at.find(event);
    return wanted != at.end() ? wanted->second() : Continue;
  }
  Status told(std::string const& event) { return told(event, event); }
};

class DependencyAnalyserTest : public testing::Test {
 protected:
  Strings const& eventsOf(std::string const& path) {
    analyser_.events.clear();
    EvalContext context(&model_);
    analyser_.analyse(path, &context);
    return analyser_.events;
  }

  /// Sets the action of the hook for which `Recorder` writes the line `event`, without its marks.
  void at(std::string const& event, Status result) {
    analyser_.at[event] = [result] { return result; };
  }
  void at(std::string const& event, std::function<void()> const& action) {
    analyser_.at[event] = [action] { return action(), Continue; };
  }

  PhysicsData rules_;
  MapModel model_;
  Recorder analyser_{&rules_};
};

// Order.

TEST_F(DependencyAnalyserTest, TheHooksOfOneObjectComeInTheOrderOfItsRules) {
  Rules(rules_, "/Case").param("Title").param("Flow Regime").child("Domain").child("Solver").singleton();
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "param? /Case|Title", "param /Case|Title", "param? /Case|Flow Regime",
                     "param /Case|Flow Regime", "child /Case|Domain", "child /Case|Solver", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, TheObjectsOfAChildEntryAreWalkedWholeBeforeTheNextEntryIsLookedAt) {
  Rules(rules_, "/Case").param("Title").child("Domain").required().child("Solver").singleton().coupled();
  Rules(rules_, "/Case/Domain").param("Motion").child("Boundary").allowedNames({"inlet"});
  Rules(rules_, "/Case/Domain/Boundary").param("Kind");
  Rules(rules_, "/Case/Solver").param("Steps");
  model_.add("/Case/Domain:stator/Boundary:inlet");
  model_.add("/Case/Solver");
  model_.add("/Case/Domain:rotor");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required",
                                        "param? /Case|Title",
                                        "param /Case|Title",
                                        "child /Case|Domain",
                                        "begin /Case/Domain:stator required",
                                        "param? /Case/Domain:stator|Motion",
                                        "param /Case/Domain:stator|Motion",
                                        "child /Case/Domain:stator|Boundary",
                                        "begin /Case/Domain:stator/Boundary:inlet coupled",
                                        "param? /Case/Domain:stator/Boundary:inlet|Kind",
                                        "param /Case/Domain:stator/Boundary:inlet|Kind",
                                        "end /Case/Domain:stator/Boundary:inlet",
                                        "end /Case/Domain:stator required",
                                        "begin /Case/Domain:rotor required",
                                        "param? /Case/Domain:rotor|Motion",
                                        "param /Case/Domain:rotor|Motion",
                                        "child /Case/Domain:rotor|Boundary",
                                        "end /Case/Domain:rotor required",
                                        "child /Case|Solver",
                                        "begin /Case/Solver coupled",
                                        "param? /Case/Solver|Steps",
                                        "param /Case/Solver|Steps",
                                        "end /Case/Solver",
                                        "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, TheRootOfAModelIsWalkedAsTheEmptyPath) {
  Rules(rules_, "").child("Case").singleton();
  Rules(rules_, "/Case").param("Title");
  model_.add("/Case");
  EXPECT_EQ(eventsOf(""), (Strings{"begin  required", "child |Case", "begin /Case", "param? /Case|Title",
                                   "param /Case|Title", "end /Case", "end  required"}));
  EXPECT_EQ(eventsOf("/"), eventsOf(""));
}

TEST_F(DependencyAnalyserTest, TheStartOfAWalkIsRequiredAndNotCoupledWhateverItsParentSays) {
  Rules(rules_, "/Case").child("Domain").coupled();
  Rules(rules_, "/Case/Domain").param("Motion");
  model_.add("/Case/Domain:rotor");
  EXPECT_EQ(eventsOf("/Case/Domain:rotor"),
            (Strings{"begin /Case/Domain:rotor required", "param? /Case/Domain:rotor|Motion",
                     "param /Case/Domain:rotor|Motion", "end /Case/Domain:rotor required"}));
}

TEST_F(DependencyAnalyserTest, AnObjectThatTheModelLacksIsWalkedAllTheSame) {
  Rules(rules_, "/Case").param("Title").child("Domain");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "param? /Case|Title", "param /Case|Title",
                                        "child /Case|Domain", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, AnObjectWithoutRulesBeginsAndEndsAndNothingBetween) {
  Rules(rules_, "/Case").child("Domain");
  model_.add("/Case/Domain:rotor/Boundary:inlet");
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:rotor unknown",
                     "end /Case/Domain:rotor", "end /Case required"}));
  EXPECT_EQ(eventsOf("/Material:oil"), (Strings{"begin /Material:oil unknown required", "end /Material:oil required"}));
}

TEST_F(DependencyAnalyserTest, WhatTheRulesHaveNoEntryForIsNotVisited) {
  Rules(rules_, "/Case").param("Title").child("Domain");
  rules_.addObject("/Case/Report");
  model_.set("/Case", "Author", "me");
  model_.add("/Case/Report");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "param? /Case|Title", "param /Case|Title",
                                        "child /Case|Domain", "end /Case required"}));
}

// Which children are entered.

TEST_F(DependencyAnalyserTest, ASingletonIsEnteredWhenItIsAvailableAndThere) {
  Rules(rules_, "/Case").child("Solver").singleton();
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Solver", "end /Case required"}));
  model_.add("/Case/Solver");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Solver", "begin /Case/Solver unknown",
                                        "end /Case/Solver", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, ChildrenThatAreThereButUnavailableAreNotEntered) {
  Rules(rules_, "/Case").child("Solver").singleton().availableWhen(never()).child("Domain").availableWhen(never());
  model_.add("/Case/Solver");
  model_.add("/Case/Domain:rotor");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Solver unavailable",
                                        "child /Case|Domain unavailable", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, ASingletonEntryNeverFindsNamedChildren) {
  Rules(rules_, "/Case").child("Solver").singleton();
  model_.add("/Case/Solver:first");
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Solver", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, ANamedEntryAddressesAChildWithoutANameByItsType) {
  Rules(rules_, "/Case").child("Domain");
  model_.add("/Case/Domain");
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:Domain unknown",
                     "end /Case/Domain:Domain", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, AChildTypeOfTwoComponentsIsWalkedUnderTheRulesOfItsWholePath) {
  Rules(rules_, "/Case").child("Output/Monitor").singleton();
  Rules(rules_, "/Case/Output/Monitor").param("Kind");
  model_.add("/Case/Output/Monitor");
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Output/Monitor", "begin /Case/Output/Monitor",
                     "param? /Case/Output/Monitor|Kind", "param /Case/Output/Monitor|Kind", "end /Case/Output/Monitor",
                     "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, AChildWhoseNameCannotStandInAPathIsRefusedWhenTheWalkComesToIt) {
  Rules(rules_, "/Case").child("Domain");
  model_.add("/Case/Domain:rotor");
  model_.add("/Case/Domain:");
  EXPECT_THROW((void)eventsOf("/Case"), Error);
  EXPECT_EQ(analyser_.events, (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:rotor unknown",
                                       "end /Case/Domain:rotor"}));
}

TEST_F(DependencyAnalyserTest, RequiredAndCoupledAreThoseOfTheEntryThroughWhichTheWalkCame) {
  Rules(rules_, "/Case").child("Domain").required().child("Material").coupled();
  Rules(rules_, "/Case").child("Region").allowedNames({"all"}).child("Solver").singleton().required().coupled();
  for (char const* path : {"/Case/Domain:a", "/Case/Material:b", "/Case/Region:c", "/Case/Solver"}) model_.add(path);
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:a unknown required",
                     "end /Case/Domain:a required", "child /Case|Material", "begin /Case/Material:b unknown coupled",
                     "end /Case/Material:b", "child /Case|Region", "begin /Case/Region:c unknown coupled",
                     "end /Case/Region:c", "child /Case|Solver", "begin /Case/Solver unknown required coupled",
                     "end /Case/Solver required", "end /Case required"}));
}

// Scope.

/// A schedule, of which the rules know a title, a kind, and 100 fields.
class DependencyAnalyserScopeTest : public DependencyAnalyserTest {
 protected:
  DependencyAnalyserScopeTest() {
    Rules rules(rules_, "/Schedule");
    rules.param("Title").required().param("Kind").contextRule();
    for (int i = 1; i <= 100; ++i) rules.param("Field " + std::to_string(i)).inContexts({"Fields"});
    rules.param("Limits").required().child("Day");
    Rules(rules_, "/Schedule/Day").param("Hour").param("Minute");
  }

  Strings walkedWith(Recorder::ParamScope scope) {
    at("begin /Schedule", [this, scope] { analyser_.limitParams(scope); });
    Strings walked;
    for (std::string const& event : eventsOf("/Schedule")) {
      if (event.starts_with("param /")) walked.push_back(event.substr(event.find('|') + 1));
    }
    return walked;
  }
};

TEST_F(DependencyAnalyserScopeTest, OnlyParametersThatTheModelHoldsAreWalkedIfNothingElseMatters) {
  model_ = MapModel{{"/Schedule", {{"Field 70", "Until: 24:00"}, {"Field 8", "0.5"}, {"Kind", "Fields"}, {"X", "1"}}}};
  EXPECT_EQ(walkedWith(Recorder::ParamScope::Present), (Strings{"Kind", "Field 8", "Field 70"}));
}

TEST_F(DependencyAnalyserScopeTest, RequiredParametersAreWalkedAlsoWhenTheModelLacksThem) {
  model_ = MapModel{{"/Schedule", {{"Field 70", "Until: 24:00"}, {"Limits", "Fraction"}}}};
  EXPECT_EQ(walkedWith(Recorder::ParamScope::PresentOrRequired), (Strings{"Title", "Field 70 unavailable", "Limits"}));
}

TEST_F(DependencyAnalyserScopeTest, TheScopeIsOfTheObjectThatBegins) {
  model_ = MapModel{{"/Schedule", {}}, {"/Schedule/Day:monday", {}}};
  EXPECT_EQ(walkedWith(Recorder::ParamScope::Present), (Strings{"Hour", "Minute"}));
}

TEST_F(DependencyAnalyserScopeTest, AWalkOfEverythingIsTheRule) {
  model_ = MapModel{{"/Schedule", {}}};
  EXPECT_EQ(walkedWith(Recorder::ParamScope::All).size(), 103U);
}

// Context rules.

class DependencyAnalyserContextTest : public DependencyAnalyserTest {
 protected:
  DependencyAnalyserContextTest() {
    Rules rules(rules_, "/Case");
    rules.param("Compressible").contextRule();
    rules.param("Mach Number").inContexts({"Yes"});
    rules.param("Flow Regime").contextRule().availableWhen(when("Steady", "Yes"));
    rules.param("Intensity").inContexts({"Turbulent"});
    rules.param("Gas").inContexts({"Yes"});
    rules.param("Blank").inContexts({""});
    rules.child("Shock").singleton().inContexts({"Yes"});
    rules.child("Eddy").singleton().inContexts({"Turbulent"});
  }

  /// The available entries after the first one.
  Strings availableWith(ObjectState const& state) {
    model_ = MapModel{{"/Case", state}};
    Strings available;
    for (std::string const& event : eventsOf("/Case")) {
      bool const evaluated = event.starts_with("param /") || event.starts_with("child /");
      if (evaluated && !event.ends_with("unavailable")) available.push_back(event.substr(event.find('|') + 1));
    }
    return available;
  }
};

TEST_F(DependencyAnalyserContextTest, TheValueOfAContextRuleSelectsLaterParametersAndChildren) {
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}}), (Strings{"Compressible", "Mach Number", "Gas", "Shock"}));
}

TEST_F(DependencyAnalyserContextTest, TheLastContextRuleThatIsPresentDecides) {
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}, {"Steady", "Yes"}, {"Flow Regime", "Turbulent"}}),
            (Strings{"Compressible", "Mach Number", "Flow Regime", "Intensity", "Eddy"}));
}

TEST_F(DependencyAnalyserContextTest, AnUnavailableContextRuleLeavesTheValueBeforeItInForce) {
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}, {"Flow Regime", "Turbulent"}}),
            (Strings{"Compressible", "Mach Number", "Gas", "Shock"}));
}

TEST_F(DependencyAnalyserContextTest, AnAbsentContextRuleLeavesTheValueBeforeItInForce) {
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}, {"Steady", "Yes"}}),
            (Strings{"Compressible", "Mach Number", "Flow Regime", "Gas", "Shock"}));
}

TEST_F(DependencyAnalyserContextTest, AContextRuleWithAnEmptyValueSelectsByTheEmptyValue) {
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}, {"Steady", "Yes"}, {"Flow Regime", ""}}),
            (Strings{"Compressible", "Mach Number", "Flow Regime", "Blank"}));
}

TEST_F(DependencyAnalyserContextTest, EachObjectBeginsWithoutAValue) {
  Rules(rules_, "/Case").child("Stage");
  Rules(rules_, "/Case/Stage").param("Blank").inContexts({""}).param("Gas").inContexts({"Yes"});
  model_ = MapModel{{"/Case", {{"Compressible", "Yes"}}}, {"/Case/Stage:one", {}}};
  Strings const events = eventsOf("/Case");
  EXPECT_NE(std::find(events.begin(), events.end(), "param /Case/Stage:one|Blank"), events.end());
  EXPECT_NE(std::find(events.begin(), events.end(), "param /Case/Stage:one|Gas unavailable"), events.end());
}

TEST_F(DependencyAnalyserContextTest, AParameterThatItsHookCreatesCountsAsPresent) {
  at("param /Case|Compressible", [&] { model_.set("/Case", "Compressible", "Yes"); });
  EXPECT_EQ(availableWith({}), (Strings{"Compressible", "Mach Number", "Gas", "Shock"}));
}

TEST_F(DependencyAnalyserContextTest, AParameterThatItsHookDeletesCountsAsAbsent) {
  at("param /Case|Compressible", [&] { model_.removeParameter("/Case", "Compressible"); });
  EXPECT_EQ(availableWith({{"Compressible", "Yes"}}), (Strings{"Compressible", "Blank"}));
}

// Hooks that change the model.

TEST_F(DependencyAnalyserTest, TheModelIsReadRightAfterTheHookForWhatIsRead) {
  MapModel model;
  model.set("/Case", "Flow Regime", "Laminar");
  model.add("/Case/Solver");
  model.add("/Case/Domain:rotor");
  Rules(rules_, "/Case").param("Flow Regime").contextRule().param("Title").param("Gone").availableWhen(never());
  Rules(rules_, "/Case").param("Steady").availableWhen(when("Flow Regime", "Laminar"));
  Rules(rules_, "/Case").child("Solver").singleton().child("Domain").child("Report").availableWhen(never());
  ModelView const view(model, [&](Question question, std::string const& objPath, std::string const& name) {
    static std::map<Question, std::string> const words = {{Question::HasObject, "has "},
                                                          {Question::HasParameter, "has "},
                                                          {Question::ParameterValue, "value of "},
                                                          {Question::ChildNamesByType, "names of "}};
    analyser_.events.push_back("  " + words.at(question) + objPath + (name.empty() ? "" : '|' + name));
  });
  EvalContext context(&view);
  analyser_.analyse("/Case", &context);
  EXPECT_EQ(analyser_.events, (Strings{"begin /Case required",
                                       "param? /Case|Flow Regime",
                                       "param /Case|Flow Regime",
                                       "  has /Case|Flow Regime",
                                       "  value of /Case|Flow Regime",
                                       "param? /Case|Title",
                                       "param /Case|Title",
                                       "param? /Case|Gone",
                                       "param /Case|Gone unavailable",
                                       "param? /Case|Steady",
                                       "  value of /Case|Flow Regime",
                                       "param /Case|Steady",
                                       "child /Case|Solver",
                                       "  has /Case/Solver",
                                       "begin /Case/Solver unknown",
                                       "end /Case/Solver",
                                       "child /Case|Domain",
                                       "  names of /Case|Domain",
                                       "begin /Case/Domain:rotor unknown",
                                       "end /Case/Domain:rotor",
                                       "child /Case|Report unavailable",
                                       "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, WhatOnBeginParamDoesIsSeenByTheEvaluation) {
  Rules(rules_, "/Case").param("Intensity").availableWhen(when("Flow Regime", "Turbulent"));
  at("param? /Case|Intensity", [&] { model_.set("/Case", "Flow Regime", "Turbulent"); });
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "param? /Case|Intensity", "param /Case|Intensity", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, ChildrenThatTheirHookCreatesAreWalked) {
  Rules(rules_, "/Case").child("Solver").singleton().child("Domain");
  at("child /Case|Solver", [&] { model_.add("/Case/Solver"); });
  at("child /Case|Domain", [&] { model_.add("/Case/Domain:rotor"); });
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Solver", "begin /Case/Solver unknown",
                                        "end /Case/Solver", "child /Case|Domain", "begin /Case/Domain:rotor unknown",
                                        "end /Case/Domain:rotor", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, ChildrenThatTheirHookDeletesAreNotWalked) {
  Rules(rules_, "/Case").child("Solver").singleton().child("Domain");
  model_.add("/Case/Solver");
  model_.add("/Case/Domain:rotor");
  at("child /Case|Solver", [&] { model_.remove("/Case/Solver"); });
  at("child /Case|Domain", [&] { model_.remove("/Case/Domain:rotor"); });
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Solver", "child /Case|Domain", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, SiblingsCreatedDuringTheWalkOfTheirTypeAreNotVisitedAndDeletedOnesAre) {
  Rules(rules_, "/Case").child("Domain");
  Rules(rules_, "/Case/Domain").param("Motion");
  model_.add("/Case/Domain:rotor");
  model_.add("/Case/Domain:stator");
  at("begin /Case/Domain:rotor", [&] {
    model_.remove("/Case/Domain:stator");
    model_.add("/Case/Domain:casing");
  });
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:rotor",
                     "param? /Case/Domain:rotor|Motion", "param /Case/Domain:rotor|Motion", "end /Case/Domain:rotor",
                     "begin /Case/Domain:stator", "param? /Case/Domain:stator|Motion",
                     "param /Case/Domain:stator|Motion", "end /Case/Domain:stator", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, AnObjectThatIsDeletedWhileItIsWalkedIsWalkedToItsEnd) {
  Rules(rules_, "/Case").child("Domain").child("Solver").singleton();
  Rules(rules_, "/Case/Domain").param("Motion").child("Boundary");
  model_.add("/Case/Domain:rotor/Boundary:inlet");
  model_.add("/Case/Solver");
  at("param /Case/Domain:rotor|Motion", [&] { model_.remove("/Case"); });
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "child /Case|Domain", "begin /Case/Domain:rotor",
                                        "param? /Case/Domain:rotor|Motion", "param /Case/Domain:rotor|Motion",
                                        "child /Case/Domain:rotor|Boundary", "end /Case/Domain:rotor",
                                        "child /Case|Solver", "end /Case required"}));
}

TEST_F(DependencyAnalyserTest, AHookMayWalkWithAnotherAnalyser) {
  Rules(rules_, "/Case").param("Title").child("Domain");
  model_.add("/Case/Domain:rotor");
  Recorder other(&rules_);
  at("child /Case|Domain", [&] {
    EvalContext context(&model_);
    other.analyse("/Case/Domain:rotor", &context);
  });
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "param? /Case|Title", "param /Case|Title", "child /Case|Domain",
                     "begin /Case/Domain:rotor unknown", "end /Case/Domain:rotor", "end /Case required"}));
  EXPECT_EQ(other.events, (Strings{"begin /Case/Domain:rotor unknown required", "end /Case/Domain:rotor required"}));
}

// The results of the hooks: every status at every hook.

class DependencyAnalyserStatusTest : public DependencyAnalyserTest {
 protected:
  DependencyAnalyserStatusTest() {
    Rules(rules_, "/Case").param("Title").child("Domain");
    Rules(rules_, "/Case/Domain").param("Motion").child("Boundary");
    model_.add("/Case/Domain:rotor");
  }

  Strings const whole_{"begin /Case required",
                       "param? /Case|Title",
                       "param /Case|Title",
                       "child /Case|Domain",
                       "begin /Case/Domain:rotor",
                       "param? /Case/Domain:rotor|Motion",
                       "param /Case/Domain:rotor|Motion",
                       "child /Case/Domain:rotor|Boundary",
                       "end /Case/Domain:rotor",
                       "end /Case required"};

  /// The events of the whole walk up to the one that begins with `last`.
  Strings upTo(std::string const& last) {
    Strings events;
    for (std::string const& event : whole_) {
      events.push_back(event);
      if (event == last) break;
    }
    return events;
  }
};

TEST_F(DependencyAnalyserStatusTest, ContinueEverywhereGivesTheWholeWalk) {
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST_F(DependencyAnalyserStatusTest, SkipObjectAtBeginPassesOverTheObjectsContentAndEndsIt) {
  at("begin /Case/Domain:rotor", SkipObject);
  EXPECT_EQ(eventsOf("/Case"),
            (Strings{"begin /Case required", "param? /Case|Title", "param /Case|Title", "child /Case|Domain",
                     "begin /Case/Domain:rotor", "end /Case/Domain:rotor", "end /Case required"}));
}

TEST_F(DependencyAnalyserStatusTest, SkipObjectAtTheStartOfAWalkLeavesBeginAndEnd) {
  at("begin /Case", SkipObject);
  EXPECT_EQ(eventsOf("/Case"), (Strings{"begin /Case required", "end /Case required"}));
}

TEST_F(DependencyAnalyserStatusTest, AbortAtBeginDoesNotStopTheWalk) {
  at("begin /Case", Abort);
  at("begin /Case/Domain:rotor", Abort);
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST_F(DependencyAnalyserStatusTest, SkipObjectAnywhereElseIsAsContinue) {
  at("param? /Case|Title", SkipObject);
  at("param /Case|Title", SkipObject);
  at("child /Case|Domain", SkipObject);
  at("end /Case/Domain:rotor", SkipObject);
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST_F(DependencyAnalyserStatusTest, AbortBeforeAParameterEndsTheWalkWithoutItsCheck) {
  at("param? /Case/Domain:rotor|Motion", Abort);
  EXPECT_EQ(eventsOf("/Case"), upTo("param? /Case/Domain:rotor|Motion"));
}

TEST_F(DependencyAnalyserStatusTest, AbortBeforeAParameterLeavesItUnevaluated) {
  PhysicsData rules;
  bool evaluated = false;
  Rules(rules, "/Case").param("Title").availableWhen(when([&](auto&, auto&) { return evaluated = true; }));
  Recorder analyser(&rules);
  analyser.at["param? /Case|Title"] = [] { return Abort; };
  EvalContext context(&model_);
  analyser.analyse("/Case", &context);
  EXPECT_FALSE(evaluated);
}

TEST_F(DependencyAnalyserStatusTest, AbortAtAParameterEndsTheWalkAndEndsNoObject) {
  at("param /Case/Domain:rotor|Motion", Abort);
  EXPECT_EQ(eventsOf("/Case"), upTo("param /Case/Domain:rotor|Motion"));
}

TEST_F(DependencyAnalyserStatusTest, AbortAtAChildEndsTheWalkAndEndsNoObject) {
  at("child /Case/Domain:rotor|Boundary", Abort);
  EXPECT_EQ(eventsOf("/Case"), upTo("child /Case/Domain:rotor|Boundary"));
}

TEST_F(DependencyAnalyserStatusTest, AbortAtAnUnavailableItemEndsTheWalkAsWell) {
  Rules(rules_, "/Report").param("Title").availableWhen(never()).param("Pages").child("Page");
  at("param /Report|Title", Abort);
  EXPECT_EQ(eventsOf("/Report"),
            (Strings{"begin /Report required", "param? /Report|Title", "param /Report|Title unavailable"}));
}

TEST_F(DependencyAnalyserStatusTest, AbortAtTheEndOfAnObjectIsIgnored) {
  at("end /Case/Domain:rotor", Abort);
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST_F(DependencyAnalyserStatusTest, AbortAtTheThirdParameterOfADeepObjectEndsTheWalkQuietly) {
  Rules(rules_, "/Case/Domain/Boundary").param("Kind").param("Area").param("Pressure").param("Speed").child("Profile");
  model_.add("/Case/Domain:rotor/Boundary:inlet");
  at("param /Case/Domain:rotor/Boundary:inlet|Pressure", Abort);
  Strings const events = eventsOf("/Case");
  EXPECT_EQ(events.back(), "param /Case/Domain:rotor/Boundary:inlet|Pressure");
  EXPECT_EQ(std::count_if(events.begin(), events.end(), [](auto const& event) { return event.starts_with("end"); }), 0);
}

TEST_F(DependencyAnalyserStatusTest, TheAnalyserWalksAgainAfterAnAbort) {
  at("param /Case|Title", Abort);
  EXPECT_EQ(eventsOf("/Case"), upTo("param /Case|Title"));
  analyser_.at.clear();
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST(DependencyAnalyser, TheNumbersOfTheStatusesAreFixed) {
  EXPECT_EQ(static_cast<int>(Continue), 0);
  EXPECT_EQ(static_cast<int>(SkipObject), 1);
  EXPECT_EQ(static_cast<int>(Abort), 2);
}

// Failures.

TEST_F(DependencyAnalyserStatusTest, WhatAHookThrowsReachesTheCallerAndEndsNoObject) {
  at("param /Case/Domain:rotor|Motion", [] { throw std::domain_error("broken"); });
  EXPECT_THROW(eventsOf("/Case"), std::domain_error);
  EXPECT_EQ(analyser_.events, upTo("param /Case/Domain:rotor|Motion"));
  analyser_.at.clear();
  EXPECT_EQ(eventsOf("/Case"), whole_);
}

TEST_F(DependencyAnalyserTest, WhatARuleThrowsReachesTheCallerAndEndsNoObject) {
  Rules(rules_, "/Case").param("Title").availableWhen(when([](auto&, auto&) -> bool { throw std::domain_error("?"); }));
  EXPECT_THROW(eventsOf("/Case"), std::domain_error);
  EXPECT_EQ(analyser_.events, (Strings{"begin /Case required", "param? /Case|Title"}));
}

TEST_F(DependencyAnalyserTest, AParameterWithoutValueRuleFailsBeforeItsCheck) {
  Rules(rules_, "/Case").paramWithoutValueRule("Title");
  try {
    eventsOf("/Case");
    ADD_FAILURE() << "the walk went on";
  } catch (std::runtime_error const& error) {
    EXPECT_STREQ(error.what(), "ObjDependency::isCompleteListRequired - internal error");
  }
  EXPECT_EQ(analyser_.events, (Strings{"begin /Case required", "param? /Case|Title"}));
}

TEST_F(DependencyAnalyserTest, AStartThatIsNoPathIsRefusedBeforeTheFirstHook) {
  EXPECT_THROW(eventsOf("Case"), Error);
  EXPECT_EQ(analyser_.events, Strings{});
}

// Comparing values.

class DependencyAnalyserValueTest : public DependencyAnalyserTest {
 protected:
  DependencyAnalyserValueTest() {
    Rules rules(rules_, "/Case/Domain");
    rules.param("Motion").contextRule();
    rules.param("Speed").type(TDFParam::Real).inContexts({"Rotating"});
    rules.param("Axis");
    model_ = MapModel{{"/Case/Domain:rotor", {{"Motion", "Rotating"}, {"Speed", "100.0"}, {"Note", "hot"}}}};
    analyser_.analyse("/Case/Domain:rotor", &context_);
    analyser_.events.clear();
  }

  bool isRotor(std::string const& name, std::string const& value) {
    return analyser_.isParamValueEqual("/Case/Domain:rotor", name, value);
  }

  EvalContext context_{&model_};
};

TEST_F(DependencyAnalyserValueTest, ValuesAreComparedAsValuesOfTheirType) {
  EXPECT_TRUE(isRotor("Speed", "100"));
  EXPECT_FALSE(isRotor("Speed", "101"));
  EXPECT_TRUE(isRotor("Motion", "Rotating"));
  EXPECT_FALSE(isRotor("Motion", "rotating"));
}

TEST_F(DependencyAnalyserValueTest, AParameterThatTheModelLacksHasTheEmptyValue) {
  EXPECT_TRUE(isRotor("Axis", ""));
  EXPECT_FALSE(isRotor("Axis", "Z"));
}

TEST_F(DependencyAnalyserValueTest, AParameterWithoutRuleEqualsNothingAlsoWhenTheModelHasIt) {
  EXPECT_FALSE(isRotor("Note", "hot"));
  EXPECT_FALSE(isRotor("Note", ""));
}

TEST_F(DependencyAnalyserValueTest, NamesAreComparedByteForByte) {
  EXPECT_FALSE(isRotor("speed", "100"));
}

TEST_F(DependencyAnalyserValueTest, AnObjectWithoutRulesHasNoEqualValues) {
  EXPECT_FALSE(analyser_.isParamValueEqual("/Case", "Title", ""));
}

TEST_F(DependencyAnalyserValueTest, ComparingCallsNoHook) {
  EXPECT_TRUE(isRotor("Speed", "100"));
  EXPECT_EQ(analyser_.events, Strings{});
}

TEST_F(DependencyAnalyserValueTest, ComparingDuringAWalkReadsTheModelAsTheHookLeftIt) {
  bool equal = false;
  at("param /Case/Domain:rotor|Speed", [&] {
    model_.set("/Case/Domain:rotor", "Speed", "5");
    equal = analyser_.isParamValueEqual("/Case/Domain:rotor", "Speed", "5.0");
  });
  eventsOf("/Case/Domain:rotor");
  EXPECT_TRUE(equal);
}

// Size.

/// Counts the objects of a walk without keeping anything of them.
class Counter final : public DependencyAnalyser {
 public:
  explicit Counter(PhysicsData const* rules) : DependencyAnalyser(rules) {}
  int begun = 0;
  int ended = 0;

 private:
  Status onBeginObject(ObjBeginInfo const*) override { return ++begun, Continue; }
  Status onBeginParam(std::string const&, std::string const&) override { return Continue; }
  Status onParamCheck(ParamAvailInfo const*) override { return Continue; }
  Status onChildCheck(ChildAvailInfo const*) override { return Continue; }
  Status onEndObject(std::string const&, bool) override { return ++ended, Continue; }
};

/// Runs `work` on a thread that has a stack of 256 KiB.
void runOnASmallStack(std::function<void()> work) {
  auto const run = [](void* argument) -> void* {
    (*static_cast<std::function<void()>*>(argument))();
    return nullptr;
  };
  pthread_attr_t attributes{};
  pthread_t thread{};
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 * 1024), 0);
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
}

TEST(DependencyAnalyser, AModelOfAThousandLevelsIsWalkedOnASmallStack) {
  constexpr int levels = 1000;
  PhysicsData rules;
  std::string typePath;
  std::string path;
  for (int level = 0; level < levels; ++level) {
    Rules(rules, typePath).child("Part");
    typePath += "/Part";
    path += "/Part:p";
  }
  Rules(rules, typePath).param("Material");
  MapModel model;
  model.add(path);
  EvalContext context(&model);
  Counter counter(&rules);
  runOnASmallStack([&] { counter.analyse("", &context); });
  EXPECT_EQ(counter.begun, levels + 1);
  EXPECT_EQ(counter.ended, levels + 1);
}

// The example of the class comment.

class MissingParameters final : public DependencyAnalyser {
 public:
  MissingParameters(PhysicsData const* rules, ModelTDF const* model) : DependencyAnalyser(rules), model_(model) {}

  std::vector<std::string> in(std::string const& root) {
    missing_.clear();
    EvalContext context(model_);
    analyse(root, &context);
    return missing_;
  }

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const*) override { return Continue; }
  HandlerStatus onBeginParam(std::string const&, std::string const&) override { return Continue; }
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
    bool const wanted = info->isAvailable() && info->isRequired();
    if (wanted && !model_->hasParameter(info->getObjPath(), info->getName())) {
      missing_.push_back(info->getObjPath() + "/" + info->getName());
    }
    return Continue;
  }
  HandlerStatus onChildCheck(ChildAvailInfo const*) override { return Continue; }
  HandlerStatus onEndObject(std::string const&, bool) override { return Continue; }

  ModelTDF const* model_;
  std::vector<std::string> missing_;
};

TEST(DependencyAnalyser, TheExampleOfTheManualListsWhatIsMissing) {
  PhysicsData rules;
  Rules(rules, "/Case").param("Flow Regime").required().child("Domain");
  Rules(rules, "/Case/Domain").param("Motion").required();
  MapModel const model{{"/Case/Domain:rotor", {}}};
  MissingParameters missing(&rules, &model);
  EXPECT_EQ(missing.in("/Case"), (Strings{"/Case/Flow Regime", "/Case/Domain:rotor/Motion"}));
}

}  // namespace
}  // namespace tarn
