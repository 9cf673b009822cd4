#include <tarn/PhysicsData.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/MapModel.h"
#include "support/Rules.h"

namespace tarn {
namespace {

using test::MapModel;
using test::Rules;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PhysicsData, AFreshDatabaseHoldsNothing) {
  PhysicsData const data;

  EXPECT_EQ(data.getObjDependDef("/Case", true), nullptr);
  EXPECT_EQ(data.getParamValueDef("/Case", "Flow Regime", true), nullptr);
  EXPECT_EQ(data.getCheck("flow is turbulent", false), nullptr);
  EXPECT_EQ(data.getList("materials in use", false), nullptr);
  EXPECT_EQ(data.getGlobalCheck("outlet needs an inlet", true), nullptr);
  EXPECT_THAT(data.getGlobalCheckNames(), IsEmpty());
  EXPECT_THAT(data.getPertinentGlobalCheckRoots(), IsEmpty());
  EXPECT_THAT(data.quantityTypes(), IsEmpty());
  EXPECT_THAT(data.objects(), IsEmpty());
  EXPECT_THAT(data.getCheckNames(), IsEmpty());
  EXPECT_THAT(data.getListNames(), IsEmpty());
  EXPECT_EQ(data.findValue("smallest cell"), nullptr);
  EXPECT_THAT(data.getValueNames(), IsEmpty());
  EXPECT_EQ(data.attachedController(), nullptr);
}

TEST(PhysicsData, RulesOfAnObjectTypeAreFoundByTheExactTypePath) {
  PhysicsData data;
  Rules(data, "/Case/Domain").param("Motion");

  ObjDependDef const* domain = data.getObjDependDef("/Case/Domain", true);
  ASSERT_NE(domain, nullptr);
  EXPECT_EQ(domain->typePath(), "/Case/Domain");
  EXPECT_EQ(data.getObjDependDef("/Case/Domain", false), domain);
  EXPECT_EQ(data.getObjDependDef("/Case", true), nullptr);
  EXPECT_EQ(data.getObjDependDef("/Case/Domain/", true), nullptr);
  EXPECT_EQ(data.getObjDependDef("/Case/domain", true), nullptr);
  EXPECT_EQ(data.getObjDependDef("", true), nullptr);
}

TEST(PhysicsData, ATypePathIsTakenAsItIsWritten) {
  PhysicsData data;
  ObjDependDef& root = data.addObject("");
  ObjDependDef& unreachable = data.addObject("Case");

  EXPECT_EQ(data.getObjDependDef("", true), &root);
  EXPECT_EQ(data.getObjDependDef("Case", true), &unreachable);
  EXPECT_EQ(data.getObjDependDef("/Case", true), nullptr);
  EXPECT_EQ(data.getObjDependDef("/", true), nullptr);
}

TEST(PhysicsData, AValueRuleIsFoundByTypePathAndParameterName) {
  PhysicsData data;
  Rules(data, "/Case/Domain").param("Speed").type(TDFParam::Real);

  ParamValueDef const* speed = data.getParamValueDef("/Case/Domain", "Speed", true);
  ASSERT_NE(speed, nullptr);
  EXPECT_EQ(speed->type, TDFParam::Real);
  EXPECT_EQ(data.getParamValueDef("/Case/Domain", "Speed", false), speed);
  EXPECT_EQ(data.getParamValueDef("/Case/Domain", "Motion", true), nullptr);
  EXPECT_EQ(data.getParamValueDef("/Case/Boundary", "Speed", true), nullptr);
}

TEST(PhysicsData, AParameterWithoutAValueRuleHasNone) {
  PhysicsData data;
  Rules(data, "/Case/Domain").paramWithoutValueRule("Speed");

  EXPECT_NE(data.getObjDependDef("/Case/Domain", true)->findParam("Speed"), nullptr);
  EXPECT_EQ(data.getParamValueDef("/Case/Domain", "Speed", true), nullptr);
}

TEST(PhysicsData, AddingAnObjectAgainContinuesIt) {
  PhysicsData data;
  ObjDependDef& first = data.addObject("/Case");
  Rules(data, "/Case").param("Flow Regime");
  Rules(data, "/Case/Domain").param("Motion");
  ObjDependDef& again = data.addObject("/Case");

  EXPECT_EQ(&again, &first);
  EXPECT_EQ(again.params().size(), 1U);
  EXPECT_THAT(data.objects(), ElementsAre(&first, data.getObjDependDef("/Case/Domain", true)));
}

TEST(PhysicsData, ANameThatIsTakenIsRefusedAndTheFormerStays) {
  PhysicsData data;
  MapModel const model;
  EvalContext evaluation(&model);
  TDFContext const root{""};
  auto const check = [](bool holds) {
    return lambda::check([=](TDFContext const&, ModelTDF const&) { return holds; });
  };
  auto const list = [](std::vector<std::string> items) {
    return lambda::namedList([items = std::move(items)](TDFContext const&, ModelTDF const&) { return items; });
  };

  EXPECT_TRUE(data.addCheck("flow is turbulent", check(true)));
  EXPECT_FALSE(data.addCheck("flow is turbulent", check(false)));
  EXPECT_TRUE(data.getCheck("flow is turbulent", true)->evaluate(root, &evaluation));

  EXPECT_TRUE(data.addList("fluids", list({"Water"})));
  EXPECT_FALSE(data.addList("fluids", list({"Air"})));
  EXPECT_THAT(data.getList("fluids", true)->evaluate(root, &evaluation), ElementsAre("Water"));

  EXPECT_TRUE(data.addValue("smallest cell", std::make_unique<FixedText>("0.5 [mm]")));
  EXPECT_FALSE(data.addValue("smallest cell", std::make_unique<FixedText>("2 [mm]")));
  ASSERT_NE(data.findValue("smallest cell"), nullptr);
  EXPECT_EQ(data.findValue("smallest cell")->evaluate(root, &evaluation), "0.5 [mm]");
  EXPECT_EQ(data.findValue("largest cell"), nullptr);
  EXPECT_THAT(data.getValueNames(), ElementsAre("smallest cell"));

  EXPECT_TRUE(data.addQuantityType("Temperature", {"K", "degC"}));
  EXPECT_FALSE(data.addQuantityType("Temperature", {"degF"}));
  EXPECT_EQ(data.findQuantityType("Temperature")->firstUnit(), "K");
  EXPECT_EQ(data.findQuantityType("Pressure"), nullptr);
}

TEST(PhysicsData, ChecksListsAndGlobalChecksHaveNameSpacesOfTheirOwn) {
  PhysicsData data;
  Rules(data)
      .check("inlets", [](TDFContext const&, ModelTDF const&) { return true; })
      .namedList("inlets", [](TDFContext const&, ModelTDF const&) { return std::vector<std::string>{"in"}; })
      .globalCheck(
          "inlets", [](ModelTDF const&) { return true; }, PhysicsErrorMsg("none"));

  EXPECT_NE(data.getCheck("inlets", true), nullptr);
  EXPECT_NE(data.getList("inlets", true), nullptr);
  EXPECT_NE(data.getGlobalCheck("inlets", true), nullptr);
}

TEST(PhysicsData, GlobalChecksAreNamedInTheOrderInWhichTheyWereAdded) {
  PhysicsData data;
  auto const holds = [](ModelTDF const&) { return true; };
  Rules(data)
      .globalCheck("outlet needs an inlet", holds, PhysicsErrorMsg("a"))
      .globalCheck("a case is there", holds, PhysicsErrorMsg("b"))
      .globalCheck("materials are known", holds, PhysicsErrorMsg("c"));

  EXPECT_THAT(data.getGlobalCheckNames(),
              ElementsAre("outlet needs an inlet", "a case is there", "materials are known"));
}

TEST(PhysicsData, ARefusedGlobalCheckIsNotNamedAgain) {
  PhysicsData data;
  auto const make = [](bool passes) {
    class Fixed final : public GlobalCheck {
     public:
      explicit Fixed(bool passes) : passes_(passes) {}
      [[nodiscard]] std::pair<bool, PhysicsErrorMsg> evaluate(EvalContext* /*evalContext*/) const override {
        return {passes_, PhysicsErrorMsg("fails")};
      }

     private:
      bool passes_;
    };
    return std::make_unique<Fixed>(passes);
  };

  EXPECT_TRUE(data.addGlobalCheck("outlet needs an inlet", make(false)));
  EXPECT_FALSE(data.addGlobalCheck("outlet needs an inlet", make(true)));

  EXPECT_THAT(data.getGlobalCheckNames(), ElementsAre("outlet needs an inlet"));
  MapModel const model;
  EvalContext evaluation(&model);
  EXPECT_FALSE(data.getGlobalCheck("outlet needs an inlet", true)->evaluate(&evaluation).first);
}

TEST(PhysicsData, ARootIsPertinentOnceInTheOrderOfAdding) {
  PhysicsData data;
  Rules(data).pertinentRoot("Case").pertinentRoot("Library").pertinentRoot("Case");

  EXPECT_THAT(data.getPertinentGlobalCheckRoots(), ElementsAre("Case", "Library"));
}

TEST(PhysicsData, TheRulesHandedOutLeadBackToTheDatabase) {
  PhysicsData const data;

  ASSERT_NE(data.getRules(), nullptr);
  EXPECT_EQ(data.getRules()->data(), &data);
}

TEST(PhysicsData, PointersStayValidWhileTheDatabaseGrows) {
  PhysicsData data;
  Rules(data, "/Case").param("Flow Regime").child("Domain");
  ObjDependDef const* object = data.getObjDependDef("/Case", true);
  ParamAvail const* param = object->findParam("Flow Regime");
  ChildAvail const* child = object->findChild("Domain");
  ParamValueDef const* values = data.getParamValueDef("/Case", "Flow Regime", true);

  for (int i = 0; i < 1000; ++i) {
    Rules(data, "/Case").param("Parameter " + std::to_string(i)).child("Child " + std::to_string(i));
    data.addObject("/Case/Child " + std::to_string(i));
  }

  EXPECT_EQ(data.getObjDependDef("/Case", true), object);
  EXPECT_EQ(object->findParam("Flow Regime"), param);
  EXPECT_EQ(object->findChild("Domain"), child);
  EXPECT_EQ(data.getParamValueDef("/Case", "Flow Regime", true), values);
  EXPECT_EQ(param->name, "Flow Regime");
  EXPECT_EQ(child->type, "Domain");
}

TEST(PhysicsData, AnAttachedControllerCanBeDetached) {
  PhysicsData data;
  BetaLoggingController controller;

  data.attach(&controller);
  EXPECT_EQ(data.attachedController(), &controller);
  data.attach(nullptr);
  EXPECT_EQ(data.attachedController(), nullptr);
}

}  // namespace
}  // namespace tarn
