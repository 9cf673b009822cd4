// Sessions without memory: whatever fails leaves every answer as it was.

#include <gtest/gtest.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

#include "failures/Injection.h"
#include "support/SessionLaw.h"

namespace tarn::test {
namespace {

/// A rotor: switching its motion withdraws a value that waits then, brings another one, and changes a default.
char const* const rotorRules = R"rules(Rule Database: 1
Pertinent Roots: [Rotor]
Objects:
  /Rotor:
    Parameters:
      Motion:
        Required: Yes
        Parameter Type: String
        Ordered Allowed String List: [Stationary, Rotating]
      Speed:
        Available: ${Motion} == 'Rotating'
        Parameter Type: Real
        Default Value: "= if(${Motion} == 'Rotating', '100', '0')"
      Brake:
        Available: ${Motion} == 'Stationary'
        Parameter Type: Logical
    Children:
      Blade: {Coupled: Yes}
  /Rotor/Blade:
    Parameters:
      Angle:
        Required: Yes
        Parameter Type: Real
        Default Value: "= if(${../Motion} == 'Rotating', '5', '0')"
)rules";

/// Calls `operation` on a session in which `prepare` was done, once for each allocation that can fail.
template <class Prepare, class Operation>
void leavesEveryAnswerAsItWas(Prepare const& prepare, Operation const& operation) {
  auto const rules = rules::parseRules(rotorRules);
  forEveryFailureOf(FailingCall::Allocation, {.alone = 3, .withAllBehind = 40}, [&](Attempt& attempt) {
    auto const opened =
        session::Session::open(*rules, ModelState{{"/Rotor", {{"Brake", "true"}}}, {"/Rotor/Blade:first blade", {}}});
    session::Session& session = *opened.session;
    prepare(session);
    std::string const before = answersOf(session);
    if (attempt([&] { operation(session); })) {
      ASSERT_EQ(answersOf(session), before);
      operation(session);
    }
    EXPECT_NE(answersOf(session), before);
  });
}

void rotate(session::Session& session) {
  (void)session.edit(Edit::setParam("/Rotor", "Motion", "Rotating"));
}

void nothing(session::Session& /*session*/) {}

TEST(SessionFailures, AnEditIsMadeOrNotMade) {
  leavesEveryAnswerAsItWas(nothing, rotate);
}

TEST(SessionFailures, AnUndoIsMadeOrNotMade) {
  leavesEveryAnswerAsItWas(rotate, [](session::Session& session) { (void)session.undo(); });
}

TEST(SessionFailures, ARedoIsMadeOrNotMade) {
  leavesEveryAnswerAsItWas(
      [](session::Session& session) {
        rotate(session);
        (void)session.undo();
      },
      [](session::Session& session) { (void)session.redo(); });
}

TEST(SessionFailures, ARenamingIsMadeOrNotMade) {
  leavesEveryAnswerAsItWas(nothing, [](session::Session& session) {
    (void)session.renameFollowed("/Rotor/Blade:first blade", "other blade");
  });
}

TEST(SessionFailures, ATrialLeavesEveryAnswerAsItWasInAnyCase) {
  auto const rules = rules::parseRules(rotorRules);
  Edit const edit = Edit::setParam("/Rotor", "Motion", "Rotating");
  forEveryFailureOf(FailingCall::Allocation, {.alone = 3, .withAllBehind = 40}, [&](Attempt& attempt) {
    auto const opened = session::Session::open(*rules, ModelState{{"/Rotor", {{"Brake", "true"}}}});
    std::string const before = answersOf(*opened.session);
    (void)attempt([&] { (void)opened.session->tryEdit(edit); });
    EXPECT_EQ(answersOf(*opened.session), before);
  });
}

TEST(SessionFailures, AnUndoOverStepsWithoutAWayBackIsMadeOrNotMade) {
  auto const rules = rules::parseRules(rotorRules);
  session::SessionOptions options;
  options.quickSteps = 0;
  forEveryFailureOf(FailingCall::Allocation, {.alone = 7, .withAllBehind = 80}, [&](Attempt& attempt) {
    auto const opened = session::Session::open(*rules, ModelState{{"/Rotor", {{"Brake", "true"}}}}, options);
    rotate(*opened.session);
    std::string const before = answersOf(*opened.session);
    if (attempt([&] { (void)opened.session->undo(); })) {
      EXPECT_EQ(answersOf(*opened.session), before);
    }
  });
}

}  // namespace
}  // namespace tarn::test
