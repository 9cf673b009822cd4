// Reading model text and rules without memory. Reading again afterwards gives the normal result.

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "failures/FailingStream.h"
#include "failures/Injection.h"
#include "failures/RecordingWalk.h"
#include "support/MapModel.h"
#include "support/Redirected.h"
#include "support/TemporaryFolder.h"

namespace tarn::test {
namespace {

// Model text.

char const* const modelText =
    "# the rotor of a pump\n"
    "/Case/Flow Regime of the Case=Turbulent\n"
    "/Case/Domain:stator of the pump/\n"
    "Case:\n"
    "  Domain: rotor of the pump\n"
    "    Angular Velocity of the Rotor = 120 [rad/s]\n"
    "    Boundary: inlet of the pump\n"
    "    END # Boundary:inlet of the pump\n"
    "  END # Domain:rotor of the pump\n"
    "END # Case:\n";

char const* const faultyModelText =
    "Case:\n"
    "  Domain: rotor of the pump\n"
    "    Angular Velocity of the Rotor, in radians\n"
    "    Title of the Domain = Impeller of the pump\n"
    "  END # Domain:stator of the pump\n"
    "  Domain: stator of the pump\n";

ModelState loaded(std::vector<std::string> const& files, std::vector<std::string> const& texts,
                  TDFChangeFile::InputMode mode) {
  ModelState const state = TDFChangeFile(files, texts, mode).toModelState();
  DynamicTDF tree;
  tree.initialise(state.begin(), state.end());
  return tree.getState("");
}

void canBeReadAgain(std::function<ModelState()> const& read, FailingCall call = FailingCall::Allocation) {
  ModelState const undisturbed = read();
  ASSERT_FALSE(undisturbed.empty());
  forEveryFailureOf(call, [&](Attempt& attempt) {
    ModelState first;
    bool const failed = attempt([&] { first = read(); });
    EXPECT_EQ(failed ? read() : first, undisturbed);
  });
}

TEST(LoadFailures, ModelTextCanBeReadAgain) {
  canBeReadAgain([] { return loaded({}, {modelText}, TDFChangeFile::Strict); });
}

TEST(LoadFailures, ModelTextWithFaultsCanBeReadAgain) {
  FailingBuffer messages;
  Redirected const redirected(std::cerr, &messages);
  auto const read = [] {
    std::cerr.clear();
    return loaded({}, {faultyModelText, modelText}, TDFChangeFile::Lenient);
  };
  canBeReadAgain(read);
  // Where the messages go may fail as well, and whether the stream passes that on is its owner's choice.
  canBeReadAgain(read, FailingCall::Hook);
  std::cerr.exceptions(std::ios::badbit);
  canBeReadAgain(read, FailingCall::Hook);
  std::cerr.exceptions(std::ios::goodbit);
}

TEST(LoadFailures, ATextWithItsFaultsAndPlacesCanBeReadAgain) {
  auto const read = [] {
    ModelText const text("pump.tdf", std::string(faultyModelText) + modelText);
    std::string shown;
    for (auto const& [line, column, reason] : text.faults()) shown += std::to_string(line) + ": " + reason + '\n';
    auto const found = text.locate({{"/Case/Domain:rotor of the pump", "Angular Velocity of the Rotor"}});
    for (auto const& [place, value] : found.front()) shown += place.text() + ": " + value + '\n';
    return shown;
  };
  std::string const undisturbed = read();
  ASSERT_NE(undisturbed, "");
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    std::string first;
    bool const failed = attempt([&] { first = read(); });
    EXPECT_EQ(failed ? read() : first, undisturbed);
  });
}

TEST(LoadFailures, AModelFileCanBeReadAgain) {
  TemporaryFolder const folder("load-failures");
  std::string const file = folder.path() / "pump.tdf";
  std::ofstream(file) << modelText;
  canBeReadAgain([&] { return loaded({file}, {}, TDFChangeFile::Strict); });
}

TEST(LoadFailures, ATextThatIsRefusedIsRefusedForItsFaultOrForMemory) {
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    bool refused = false;
    bool const failed = attempt([&] {
      try {
        (void)TDFChangeFile({}, {faultyModelText}, TDFChangeFile::Strict);
      } catch (ParseError const& error) {
        refused = error.getMessage().starts_with("<text 1>:");
      }
    });
    EXPECT_NE(failed, refused);
  });
}

// Rules.

char const* const ruleText = R"--(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types:
  Angular Velocity: {Units: [rad/s, rev/min]}
Lists:
  fluids that are known: [Water at 25 degrees, Air at 25 degrees C]
Checks:
  domain turns about an axis: ${Motion of the Domain} == 'Rotating about an Axis'
Objects:
  /Case:
    Children:
      Domain:
        Required: yes
        Default Names: [rotor of the pump]
  /Case/Domain:
    Description: A region of space with one fluid in it.
    Parameters:
      Motion of the Domain:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Stationary in Space, Rotating about an Axis]
        Default Value: Stationary in Space
      Angular Velocity:
        Available: check('domain turns about an axis')
        Reason: Only a rotating domain turns.
        Required: yes
        Parameter Type: Real
        Default Value: 0 [rad/s]
        Lower Bound: 0 [rad/s]
        Lower Bound Excluded: yes
        Upper Bound: = ${^Case/Largest Angular Velocity}
        Quantity Type: Angular Velocity
      Fluid in the Domain:
        Parameter Type: String
        Value List Source: list('fluids that are known')
Global Checks:
  there is a rotor in the pump:
    Check: count({/Case/Domain:*}, ${Motion of the Domain} != 'Stationary in Space') > 0
    Message: There is no rotor in the pump.
)--";

char const* const faultyRuleText = R"--(Rule Database: 1
Objects:
  /Case/Domain:
    Parameters:
      Motion of the Domain:
        Requird: yes
        Parameter Type: String
      Angular Velocity:
        Available: chek('domain turns about an axis')
        Parameter Type: Real
)--";

/// The answers of the rules for a model.
std::vector<std::string> said(PhysicsData const& rules) {
  MapModel const model = {{"/Case", {{"Largest Angular Velocity", "200 [rad/s]"}}},
                          {"/Case/Domain:rotor of the pump", {{"Motion of the Domain", "Rotating about an Axis"}}}};
  std::vector<std::string> all = RecordingWalk(&rules).walk("/Case", model);
  for (std::string const& name : rules.getGlobalCheckNames()) {
    EvalContext context(&model);
    all.push_back(name + (rules.getGlobalCheck(name, true)->evaluate(&context).first ? " passes" : " fails"));
  }
  for (auto const& [type, units] : rules.quantityTypes()) all.push_back(type + " in " + units.firstUnit());
  for (std::string const& root : rules.getPertinentGlobalCheckRoots()) all.push_back("root " + root);
  return all;
}

using Rules = std::unique_ptr<PhysicsData>;

void canBeLoadedAgain(std::function<Rules()> const& load) {
  std::vector<std::string> const undisturbed = said(*load());
  ASSERT_GT(undisturbed.size(), 10U);
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    Rules rules;
    if (attempt([&] { rules = load(); })) rules = load();
    EXPECT_EQ(said(*rules), undisturbed);
  });
}

TEST(LoadFailures, RuleTextCanBeLoadedAgain) {
  canBeLoadedAgain([] { return rules::parseRules(ruleText); });
}

TEST(LoadFailures, RuleFilesCanBeLoadedAgain) {
  TemporaryFolder const folder("load-failures");
  std::ofstream(folder.path() / "10-pump.rules.yaml") << ruleText;
  std::ofstream(folder.path() / "20-case.rules.yaml")
      << "Rule Database: 1\nObjects:\n  /Case:\n    Parameters:\n      Title of the Case: {Parameter Type: String}\n";
  canBeLoadedAgain([&] { return rules::loadRules({folder.path()}); });
}

/// A lack of memory is never reported as a fault of the file, and never hides a fault of the file.
TEST(LoadFailures, FaultsOfRulesAreAllToldOrMemoryIs) {
  auto const lint = [](char const* text) { return format(rules::lintText(text).diagnostics); };
  for (char const* const text : {ruleText, faultyRuleText}) {
    std::string const undisturbed = lint(text);
    forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
      std::string told;
      if (attempt([&] { told = lint(text); })) told = lint(text);
      EXPECT_EQ(told, undisturbed);
    });
  }
  EXPECT_NE(lint(faultyRuleText), "");
}

TEST(LoadFailures, RulesThatAreRefusedAreRefusedForTheirFaultsOrForMemory) {
  std::string whole;
  try {
    (void)rules::parseRules(faultyRuleText);
  } catch (rules::RuleError const& error) {
    whole = error.what();
  }
  ASSERT_NE(whole, "");
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    std::string told;
    bool const failed = attempt([&] {
      try {
        (void)rules::parseRules(faultyRuleText);
      } catch (rules::RuleError const& error) {
        told = error.what();
      }
    });
    EXPECT_EQ(told, failed ? "" : whole);
  });
}

// A rule database that a program fills.

ParamAvail paramNamed(std::string const& name) {
  ParamAvail entry;
  entry.name = name;
  entry.required = true;
  return entry;
}

ParamValueDef valuesOf(std::string const& byDefault) {
  ParamValueDef values;
  values.defaultValue = std::make_unique<FixedText>(byDefault);
  return values;
}

class NeverMet final : public GlobalCheck {
 public:
  [[nodiscard]] std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* /*evalContext*/) const override {
    return {false, PhysicsErrorMsg("There is no rotor in the pump.")};
  }
};

void isAddedOrNot(std::function<void(PhysicsData&)> const& add) {
  auto const filled = [] {
    auto rules = std::make_unique<PhysicsData>();
    (void)rules->addObject("/Case").addParam(paramNamed("Title of the Case"), valuesOf("Pump"));
    return rules;
  };
  auto const added = filled();
  add(*added);
  std::vector<std::string> const before = said(*filled());
  std::vector<std::string> const after = said(*added);
  ASSERT_NE(before, after);
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    auto const rules = filled();
    bool const failed = attempt([&] { add(*rules); });
    EXPECT_EQ(said(*rules), failed ? before : after);
    if (failed) add(*rules);
    EXPECT_EQ(said(*rules), after);
  });
}

TEST(FillFailures, AnEntryIsAddedToTheRulesOrNot) {
  isAddedOrNot([](PhysicsData& rules) {
    (void)rules.addObject("/Case").addParam(paramNamed("Flow Regime of the Case"),
                                            valuesOf("Turbulent, in all domains"));
  });
  isAddedOrNot([](PhysicsData& rules) {
    ChildAvail domain;
    domain.type = "Domain of the Case";
    domain.allowedNamesSource = std::make_unique<FixedList>(SharedStrings({"rotor of the pump"}));
    (void)rules.addObject("/Case").addChild(std::move(domain));
  });
  isAddedOrNot([](PhysicsData& rules) {
    (void)rules.addGlobalCheck("there is a rotor in the pump", std::make_unique<NeverMet>());
  });
  isAddedOrNot([](PhysicsData& rules) { (void)rules.addQuantityType("Angular Velocity", {"rad/s", "rev/min"}); });
  isAddedOrNot([](PhysicsData& rules) { rules.addPertinentRoot("Case of a Simulation"); });
}

TEST(FillFailures, AnObjectIsAddedToTheRulesWithItsPlaceOrNot) {
  forEveryFailureOf(FailingCall::Allocation, [&](Attempt& attempt) {
    PhysicsData rules;
    if (attempt([&] { rules.addObject("/Case/Domain of the Case"); })) {
      EXPECT_EQ(rules.getObjDependDef("/Case/Domain of the Case", true), nullptr);
      EXPECT_TRUE(rules.objects().empty());
      rules.addObject("/Case/Domain of the Case");
    }
    ASSERT_EQ(rules.objects().size(), 1U);
    EXPECT_EQ(rules.objects().front(), rules.getObjDependDef("/Case/Domain of the Case", true));
  });
}

}  // namespace
}  // namespace tarn::test
