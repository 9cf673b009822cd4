// Marks that no session is known to need, because other marks come with them. They are part of what FactMarks promises.

#include "incremental/FactMarks.h"

#include <gtest/gtest.h>

#include <utility>

#include <tarn/PhysicsData.h>

namespace tarn {
namespace {

/// A pump with a speed and with inlets, all of it visited.
class VisitedPump {
 public:
  VisitedPump() {
    ObjDependDef& rules = data_.addObject("/Pump");
    ParamAvail speed;
    speed.name = "Speed";
    EXPECT_TRUE(rules.addParam(std::move(speed), ParamValueDef()));
    ChildAvail inlet;
    inlet.type = "Inlet";
    EXPECT_TRUE(rules.addChild(std::move(inlet)));
    pump = &marks.tree.makeRoot("/Pump", &rules);
    for (WalkObject::Entry const entry : {speedEntry, inletEntry}) visit(entry, [] {});
  }

  template <class Work>
  void visit(WalkObject::Entry entry, Work work) {
    marks.beginVisit(*pump, entry);
    work();
    marks.endVisit();
  }

  static constexpr WalkObject::Entry speedEntry = 0;
  static constexpr WalkObject::Entry inletEntry = 1;

 private:
  PhysicsData data_;

 public:
  FactMarks marks;
  WalkObject* pump = nullptr;
};

TEST(FactMarks, AParameterThatTheVisitOfAnotherItemWritesIsVisitedAgain) {
  VisitedPump walk;
  walk.visit(VisitedPump::inletEntry, [&] { walk.marks.activeListener().onParamChange(PathHash("/Pump"), "Speed"); });
  EXPECT_TRUE(walk.pump->isMarked(VisitedPump::speedEntry));
  EXPECT_FALSE(walk.pump->isMarked(VisitedPump::inletEntry));
}

TEST(FactMarks, AVisitDoesNotMarkItselfByWritingItsOwnParameter) {
  VisitedPump walk;
  walk.visit(VisitedPump::speedEntry, [&] { walk.marks.activeListener().onParamChange(PathHash("/Pump"), "Speed"); });
  EXPECT_TRUE(walk.pump->isClean());
}

TEST(FactMarks, AVisitThatTriesAnObjectRunsAgainWhenItsOwnObjectComesOrGoesInTheGuide) {
  VisitedPump walk;
  walk.visit(VisitedPump::inletEntry, [&] {
    walk.marks.setMuted(true);
    walk.marks.guideListener().onObjectSetChange(PathHash("/Pump"), "Inlet", PathHash("/Pump/Inlet:new"));
    walk.marks.setMuted(false);
  });
  ASSERT_FALSE(walk.pump->isMarked(VisitedPump::inletEntry));
  walk.marks.guideListener().onObjectSetChange(PathHash(), "Pump", PathHash("/Pump"));
  EXPECT_TRUE(walk.pump->isMarked(VisitedPump::inletEntry));
  EXPECT_FALSE(walk.pump->isMarked(VisitedPump::speedEntry));
}

}  // namespace
}  // namespace tarn
