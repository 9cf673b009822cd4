// Findings as data. The logger gets the same with and without an observer.
#include <tarn/PhysicsFault.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/BetaLoggingController.h>
#include <tarn/PhysicsValidator2.h>

#include "support/Rules.h"

namespace tarn {
namespace {

using testing::ElementsAre;

/// Keeps one line for each fault: kind, path, item, value, wrong parts, allowed values.
class Lines final : public PhysicsFaultObserver {
 public:
  void onFault(PhysicsFault const& fault) override {
    std::string line = std::to_string(fault.kind) + " | " + std::string(fault.path) + " | " + std::string(fault.item) +
                       " | " + std::string(fault.value) + " |";
    for (std::string const& one : fault.wrong) line += ' ' + one;
    line += " |";
    for (std::string const& one : fault.allowed) line += ' ' + one;
    lines_.push_back(line);
    messages_.emplace_back(fault.message);
  }

  std::vector<std::string> lines_;
  std::vector<std::string> messages_;
};

class PhysicsFaultTest : public testing::Test {
 protected:
  PhysicsFaultTest() {
    test::Rules rules(rules_);
    rules.pertinentRoot("Case").object("/Case");
    rules.param("Flow Regime").required();
    rules.param("Material").allowed({"Water", "Oil"});
    rules.param("Outputs").type(TDFParam::StringList).allowed({"Pressure", "Velocity"});
    rules.param("Speed").availableWhen(test::when("Motion", "Rotating"));
    rules.param("Combustion").beta("Combustion is not released.");
    rules.child("Domain").required().allowedNames({"rotor", "stator"});
    rules.child("Solver").singleton().availableWhen(test::when("Motion", "Rotating"));
    rules.object("/Case/Domain").param("Motion");
    rules.globalCheck(
        "well posed", [](ModelTDF const&) { return false; }, PhysicsErrorMsg("The case is not well posed."));
  }

  void validate(PhysicsErrorLogger& logger, PhysicsFaultObserver* observer) {
    BetaLoggingController beta;
    PhysicsValidator2 validator(&rules_);
    validator.setLogger(&logger);
    validator.setFaultObserver(observer);
    validator.setBetaLoggingController(&beta);
    validator.validate(PhysicsValidator2::ValAll, faulty_, {"/Case"});
  }

  PhysicsData rules_;
  ModelState const faulty_ = {
      {"/Case", {{"Combustion", "on"}, {"Material", "Watr"}, {"Outputs", "Heat,Pressure"}, {"Speed", "3"}}},
      {"/Case/Domain:shaft", {}},
      {"/Case/Domain:stator", {}},
      {"/Case/Solver", {}}};
};

TEST_F(PhysicsFaultTest, EachFindingSaysWhatItIsAbout) {
  BasicPhysicsErrorLogger logger;
  Lines lines;
  validate(logger, &lines);
  EXPECT_THAT(lines.lines_, ElementsAre("0 | /Case | Flow Regime |  | |",             //
                                        "2 | /Case | Material | Watr | | Water Oil",  //
                                        "2 | /Case | Outputs | Heat,Pressure | Heat | Pressure Velocity",
                                        "1 | /Case | Speed | 3 | |",      //
                                        "7 | /Case | Combustion |  | |",  //
                                        "5 | /Case | Domain |  | shaft | rotor stator",
                                        "3 | /Case | Domain |  | rotor |",  //
                                        "4 | /Case | Solver |  | |",        //
                                        "6 |  | well posed |  | |"));
}

TEST_F(PhysicsFaultTest, TheSentencesAreThoseOfTheLogger) {
  BasicPhysicsErrorLogger logger;
  Lines lines;
  validate(logger, &lines);
  std::vector<std::string> logged;
  for (auto const& error : logger.getDependencyErrors()) logged.push_back(error.message);
  for (std::string const& message : logger.getGlobalErrors()) logged.push_back(message);
  EXPECT_EQ(lines.messages_, logged);
}

TEST_F(PhysicsFaultTest, TheLoggerGetsTheSameWithoutAnObserver) {
  BasicPhysicsErrorLogger with;
  Lines lines;
  validate(with, &lines);
  BasicPhysicsErrorLogger without;
  validate(without, nullptr);
  auto const textOf = [](BasicPhysicsErrorLogger const& logger) {
    std::string text;
    for (auto const& [path, message] : logger.getDependencyErrors()) text += path + ": " + message + '\n';
    for (std::string const& message : logger.getGlobalErrors()) text += message + '\n';
    return text;
  };
  EXPECT_EQ(textOf(with), textOf(without));
}

TEST_F(PhysicsFaultTest, AnExceptionOfTheObserverReachesTheCaller) {
  class Full final : public PhysicsFaultObserver {
    void onFault(PhysicsFault const&) override { throw std::length_error("the list is full"); }
  } full;
  BasicPhysicsErrorLogger logger;
  EXPECT_THROW(validate(logger, &full), std::length_error);
  EXPECT_THAT(logger.getDependencyErrors(), testing::IsEmpty());
}

}  // namespace
}  // namespace tarn
