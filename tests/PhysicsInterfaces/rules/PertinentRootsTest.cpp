#include <tarn/PertinentRoots.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <tarn/PhysicsData.h>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

struct PumpRules : PhysicsData {
  PumpRules() {
    addPertinentRoot("Solver");
    addPertinentRoot("Case");
  }
};

TEST(PertinentRoots, TypesAreSortedAndCopied) {
  PumpRules rules;
  PertinentRoots const roots(rules);
  rules.addPertinentRoot("Output");
  EXPECT_EQ(Strings(roots.types().begin(), roots.types().end()), (Strings{"Case", "Solver"}));
  EXPECT_TRUE(roots.hasType("Solver"));
  EXPECT_FALSE(roots.hasType("Output"));
}

TEST(PertinentRoots, AnObjectCountsWithEverythingBelowAPertinentRoot) {
  PumpRules const rules;
  PertinentRoots const roots(rules);
  for (std::string const path : {"/Case", "/Case:pump", "/Case/Domain:rotor", "/Case:pump/Domain:rotor"}) {
    EXPECT_TRUE(roots.covers(path)) << path;
  }
  for (std::string const path : {"", "/", "/CaseStudy", "/Cas", "/case", "/Log/Case", "/Log:Case"}) {
    EXPECT_FALSE(roots.covers(path)) << path;
  }
}

TEST(PertinentRoots, TheTypeAtTheRootEndsAtANameOrAtTheNextObject) {
  EXPECT_EQ(PertinentRoots::typeAtRoot("/Case"), "Case");
  EXPECT_EQ(PertinentRoots::typeAtRoot("/Case:pump/Domain:rotor"), "Case");
  EXPECT_EQ(PertinentRoots::typeAtRoot("/Case/Domain:rotor"), "Case");
  EXPECT_EQ(PertinentRoots::typeAtRoot("/"), "");
  EXPECT_EQ(PertinentRoots::typeAtRoot(""), "");
}

TEST(PertinentRoots, TheObjectsOfAStateAreItsTopmostPertinentOnesInPathOrder) {
  PumpRules const rules;
  ModelState const state{{"", {{"Title", "pump"}}},
                         {"/Case B", {{"Regime", "Laminar"}}},
                         {"/Case/Domain:rotor", {{"Motion", "Rotating"}}},
                         {"/Case/Domain:stator", {{"Motion", "Stationary"}}},
                         {"/Case:b", {}},
                         {"/Case:a/Domain:rotor", {{"Motion", "Rotating"}}},
                         {"/Log", {{"Level", "1"}}},
                         {"/Solver", {{"Steps", "10"}}}};
  EXPECT_EQ(PertinentRoots(rules).objectsIn(state), (Strings{"/Case", "/Case:a", "/Case:b", "/Solver"}));
  EXPECT_EQ(PertinentRoots(rules).objectsIn({}), Strings{});
}

}  // namespace
}  // namespace tarn
