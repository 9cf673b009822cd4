#include <tarn/ObjDependDef.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>

#include "support/Rules.h"

namespace tarn {
namespace {

using test::Rules;
using testing::ElementsAre;
using testing::Pair;

/// Every parameter entry with whether it is live, as a walk sees them in which each context rule parameter has the
/// value that `values` gives it.
std::vector<std::pair<std::string, bool>> walkParams(ObjDependDef const& object,
                                                     std::map<std::string, std::string> const& values) {
  std::vector<std::pair<std::string, bool>> seen;
  PACursor cursor;
  std::string context;
  for (auto entry = object.firstParamAvail(cursor); entry.first != nullptr;
       entry = object.nextParamAvail(cursor, context)) {
    seen.emplace_back(entry.first->name, entry.second);
    if (entry.first->contextRule) context = values.at(entry.first->name);
  }
  return seen;
}

std::vector<std::pair<std::string, bool>> walkChildren(ObjDependDef const& object, std::string const& context) {
  std::vector<std::pair<std::string, bool>> seen;
  CACursor cursor;
  for (auto entry = object.firstChildAvail(cursor, context); entry.first != nullptr;
       entry = object.nextChildAvail(cursor)) {
    seen.emplace_back(entry.first->type, entry.second);
  }
  return seen;
}

TEST(ObjDependDef, AnObjectWithoutEntriesHasNoFirstOne) {
  PhysicsData data;
  ObjDependDef const& object = data.addObject("/Case");
  PACursor params;
  CACursor children;

  EXPECT_THAT(object.firstParamAvail(params), Pair(nullptr, false));
  EXPECT_THAT(object.firstChildAvail(children, ""), Pair(nullptr, false));
  EXPECT_THAT(object.nextParamAvail(params, ""), Pair(nullptr, false));
  EXPECT_THAT(object.nextChildAvail(children), Pair(nullptr, false));
}

TEST(ObjDependDef, EntriesComeInTheOrderOfAdding) {
  PhysicsData data;
  Rules(data, "/Case").param("Motion").param("Axis").param("Material").child("Turbulence").child("Boundary");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_THAT(walkParams(object, {}), ElementsAre(Pair("Motion", true), Pair("Axis", true), Pair("Material", true)));
  EXPECT_THAT(walkChildren(object, ""), ElementsAre(Pair("Turbulence", true), Pair("Boundary", true)));
}

TEST(ObjDependDef, BehindTheLastEntryTheEndIsGivenAgainAndAgain) {
  PhysicsData data;
  Rules(data, "/Case").param("Motion").child("Boundary");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);
  PACursor params;
  CACursor children;

  EXPECT_NE(object.firstParamAvail(params).first, nullptr);
  EXPECT_EQ(object.nextParamAvail(params, "").first, nullptr);
  EXPECT_EQ(object.nextParamAvail(params, "").first, nullptr);
  EXPECT_NE(object.firstChildAvail(children, "").first, nullptr);
  EXPECT_EQ(object.nextChildAvail(children).first, nullptr);
  EXPECT_EQ(object.nextChildAvail(children).first, nullptr);
}

TEST(ObjDependDef, AFreshCursorStandsBeforeTheFirstEntry) {
  PhysicsData data;
  Rules(data, "/Case").param("Motion").param("Axis").child("Turbulence");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);
  PACursor params;
  CACursor children;

  EXPECT_EQ(object.nextParamAvail(params, "").first->name, "Motion");
  EXPECT_EQ(object.nextChildAvail(children).first->type, "Turbulence");
}

TEST(ObjDependDef, ACopiedCursorGoesItsOwnWay) {
  PhysicsData data;
  Rules(data, "/Case").param("Motion").param("Axis").param("Material");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);
  PACursor cursor;
  (void)object.firstParamAvail(cursor);
  PACursor copy = cursor;

  EXPECT_EQ(object.nextParamAvail(cursor, "").first->name, "Axis");
  EXPECT_EQ(object.nextParamAvail(cursor, "").first->name, "Material");
  EXPECT_EQ(object.nextParamAvail(copy, "").first->name, "Axis");
}

TEST(ObjDependDef, AnEntryOfAContextIsLiveOnlyWhileTheLastContextRuleHasOneOfItsValues) {
  PhysicsData data;
  Rules(data, "/Case")
      .param("Flow Regime")
      .contextRule()
      .param("Turbulence Model")
      .inContexts({"Turbulent", "Transitional"})
      .param("Viscosity Factor")
      .inContexts({"Laminar"})
      .param("Reference Pressure");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_THAT(walkParams(object, {{"Flow Regime", "Turbulent"}}),
              ElementsAre(Pair("Flow Regime", true), Pair("Turbulence Model", true), Pair("Viscosity Factor", false),
                          Pair("Reference Pressure", true)));
  EXPECT_THAT(walkParams(object, {{"Flow Regime", "Transitional"}}),
              ElementsAre(Pair("Flow Regime", true), Pair("Turbulence Model", true), Pair("Viscosity Factor", false),
                          Pair("Reference Pressure", true)));
  EXPECT_THAT(walkParams(object, {{"Flow Regime", "Laminar"}}),
              ElementsAre(Pair("Flow Regime", true), Pair("Turbulence Model", false), Pair("Viscosity Factor", true),
                          Pair("Reference Pressure", true)));
}

TEST(ObjDependDef, ContextValuesAreComparedExactly) {
  PhysicsData data;
  Rules(data, "/Case").param("Flow Regime").contextRule().param("Turbulence Model").inContexts({"Turbulent"});
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  for (std::string const value : {"turbulent", " Turbulent", "Turbulent,Laminar", ""}) {
    EXPECT_THAT(walkParams(object, {{"Flow Regime", value}}),
                ElementsAre(Pair("Flow Regime", true), Pair("Turbulence Model", false)))
        << value;
  }
}

TEST(ObjDependDef, BeforeAnyContextValueOnlyTheEmptyContextIsLive) {
  PhysicsData data;
  Rules(data, "/Case")
      .param("Title")
      .inContexts({""})
      .param("Speed")
      .inContexts({"Rotating"})
      .param("Motion")
      .contextRule()
      .param("Subtitle")
      .inContexts({""});
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_THAT(walkParams(object, {{"Motion", "Rotating"}}),
              ElementsAre(Pair("Title", true), Pair("Speed", false), Pair("Motion", true), Pair("Subtitle", false)));
  EXPECT_THAT(walkParams(object, {{"Motion", ""}}),
              ElementsAre(Pair("Title", true), Pair("Speed", false), Pair("Motion", true), Pair("Subtitle", true)));
}

TEST(ObjDependDef, TheFirstEntryIsJudgedByTheEmptyContext) {
  PhysicsData data;
  Rules(data, "/Case").param("Speed").inContexts({"Rotating"});
  Rules(data, "/Library").param("Title").inContexts({""});
  PACursor cursor;

  EXPECT_FALSE(data.getObjDependDef("/Case", true)->firstParamAvail(cursor).second);
  EXPECT_TRUE(data.getObjDependDef("/Library", true)->firstParamAvail(cursor).second);
}

TEST(ObjDependDef, ChildrenKeepTheContextThatTheirWalkBeganWith) {
  PhysicsData data;
  Rules(data, "/Case")
      .child("Turbulence")
      .inContexts({"Turbulent"})
      .child("Boundary")
      .child("Wall Treatment")
      .inContexts({"Turbulent", "Transitional"});
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_THAT(walkChildren(object, "Turbulent"),
              ElementsAre(Pair("Turbulence", true), Pair("Boundary", true), Pair("Wall Treatment", true)));
  EXPECT_THAT(walkChildren(object, "Transitional"),
              ElementsAre(Pair("Turbulence", false), Pair("Boundary", true), Pair("Wall Treatment", true)));
  EXPECT_THAT(walkChildren(object, ""),
              ElementsAre(Pair("Turbulence", false), Pair("Boundary", true), Pair("Wall Treatment", false)));
}

TEST(ObjDependDef, ACopiedChildCursorTakesItsContextAlong) {
  PhysicsData data;
  Rules(data, "/Case").child("Boundary").child("Turbulence").inContexts({"Turbulent"});
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);
  CACursor copy;
  {
    CACursor cursor;
    (void)object.firstChildAvail(cursor, "Turbulent");
    copy = cursor;
  }

  EXPECT_TRUE(object.nextChildAvail(copy).second);
}

TEST(ObjDependDef, ASecondEntryOfOneNameIsRefusedAndChangesNothing) {
  PhysicsData data;
  ObjDependDef& object = data.addObject("/Case");
  auto const param = [](std::string const& name, bool required) {
    ParamAvail entry;
    entry.name = name;
    entry.required = required;
    return entry;
  };
  auto const child = [](std::string const& type, bool required) {
    ChildAvail entry;
    entry.type = type;
    entry.required = required;
    return entry;
  };
  auto const values = [](TDFParam::Type type) {
    ParamValueDef def;
    def.type = type;
    return def;
  };

  EXPECT_TRUE(object.addParam(param("Speed", true), values(TDFParam::Real)));
  EXPECT_FALSE(object.addParam(param("Speed", false), values(TDFParam::Integer)));
  EXPECT_FALSE(object.addParam(param("Speed", false)));
  EXPECT_TRUE(object.addChild(child("Boundary", true)));
  EXPECT_FALSE(object.addChild(child("Boundary", false)));

  ASSERT_EQ(object.params().size(), 1U);
  EXPECT_TRUE(object.params().front()->required);
  EXPECT_EQ(object.findValueDef("Speed")->type, TDFParam::Real);
  ASSERT_EQ(object.children().size(), 1U);
  EXPECT_TRUE(object.children().front()->required);
}

TEST(ObjDependDef, AParameterAndAChildMayShareAName) {
  PhysicsData data;
  Rules(data, "/Case").param("Turbulence").child("Turbulence");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_NE(object.findParam("Turbulence"), nullptr);
  EXPECT_NE(object.findChild("Turbulence"), nullptr);
}

TEST(ObjDependDef, EntriesAndValueRulesAreFoundByName) {
  PhysicsData data;
  Rules(data, "/Case").param("Motion").paramWithoutValueRule("Speed").child("Boundary");
  ObjDependDef const& object = *data.getObjDependDef("/Case", true);

  EXPECT_EQ(object.findParam("Motion"), object.params()[0].get());
  EXPECT_EQ(object.findParam("Speed"), object.params()[1].get());
  EXPECT_EQ(object.findParam("motion"), nullptr);
  EXPECT_EQ(object.findChild("Boundary"), object.children()[0].get());
  EXPECT_EQ(object.findChild("Motion"), nullptr);
  EXPECT_EQ(object.findParam("Motion")->valueDef(), object.findValueDef("Motion"));
  EXPECT_NE(object.findValueDef("Motion"), nullptr);
  EXPECT_EQ(object.findParam("Speed")->valueDef(), nullptr);
  EXPECT_EQ(object.findValueDef("Speed"), nullptr);
  EXPECT_EQ(object.findValueDef("Axis"), nullptr);
}

TEST(ObjDependDef, EntriesAreFoundByTheirFormerNames) {
  PhysicsData data;
  ObjDependDef& object = data.addObject("/Case/Domain");
  ParamAvail viscosity;
  viscosity.name = "Dynamic Viscosity";
  viscosity.history.formerNames = {"Viscosity", "mu"};
  ParamAvail motion;
  motion.name = "Viscosity Model";
  motion.history.formerNames = {"mu"};
  ChildAvail wall;
  wall.type = "Wall";
  wall.history.formerNames = {"Boundary"};
  ASSERT_TRUE(object.addParam(std::move(viscosity)));
  ASSERT_TRUE(object.addParam(std::move(motion)));
  ASSERT_TRUE(object.addChild(std::move(wall)));

  EXPECT_EQ(object.findRenamedParam("Viscosity"), object.findParam("Dynamic Viscosity"));
  EXPECT_EQ(object.findRenamedParam("mu"), object.findParam("Dynamic Viscosity")) << "the first that claims a name";
  EXPECT_EQ(object.findRenamedParam("Dynamic Viscosity"), nullptr);
  EXPECT_EQ(object.findRenamedParam("Boundary"), nullptr);
  EXPECT_EQ(object.findRenamedChild("Boundary"), object.findChild("Wall"));
  EXPECT_EQ(object.findRenamedChild("Wall"), nullptr);
}

}  // namespace
}  // namespace tarn
