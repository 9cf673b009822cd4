// Reading and single edits of the editable tree, through its public interface. The change log has a test of its own,
// and so have the bulk operations.

#include <tarn/DynamicTDF.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Error.h>
#include <tarn/PhysicsDepErrors.h>

#include "support/AllowedValues.h"

namespace tarn {
namespace {

using test::allowing;
using Strings = std::vector<std::string>;

/// A case with two domains; the rotor has a boundary.
class PumpCase : public DynamicTDF {
 public:
  PumpCase() {
    setParameter("/Case", "Flow Regime", "Turbulent");
    setParameter("/Case/Domain:rotor", "Motion", "Rotating");
    setParameter("/Case/Domain:rotor", "Materials", "Water, Air,,Oil");
    setParameter("/Case/Domain:rotor/Boundary:inlet", "Kind", "Inlet");
    createObject("/Case", "Domain", "stator");
    createObject("/Case", "Solver", "");
  }
};

TEST(DynamicTDF, ANewTreeHoldsTheRootAlone) {
  DynamicTDF const model;
  Strings out{"before"};
  EXPECT_TRUE(model.hasObject(""));
  EXPECT_EQ(model.getObjectName(""), "");
  EXPECT_EQ(model.getObjectType(""), "");
  EXPECT_FALSE(model.getChildObjectPaths("", out));
  EXPECT_TRUE(out.empty());
}

TEST(DynamicTDF, TheRootDoesNotAnswerToASlash) {
  EXPECT_TRUE(PumpCase().hasObject(""));
  EXPECT_FALSE(PumpCase().hasObject("/"));
}

TEST(DynamicTDF, AnObjectIsFoundUnderItsExactPathOnly) {
  PumpCase const model;
  EXPECT_TRUE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_FALSE(model.hasObject("/Case/Domain:roto"));
  EXPECT_FALSE(model.hasObject("/Case/Domain"));
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor/"));
  EXPECT_FALSE(model.hasObject("Case"));
}

TEST(DynamicTDF, TypeAndNameComeFromThePath) {
  PumpCase const model;
  EXPECT_EQ(model.getObjectType("/Case/Domain:rotor"), "Domain");
  EXPECT_EQ(model.getObjectName("/Case/Domain:rotor"), "rotor");
  EXPECT_EQ(model.getObjectType("/Case/Solver"), "Solver");
  EXPECT_EQ(model.getObjectName("/Case/Solver"), "Solver");
}

TEST(DynamicTDF, TypeAndNameOfAnUnknownObjectAreEmpty) {
  PumpCase const model;
  EXPECT_EQ(model.getObjectType("/Case/Domain:pump"), "");
  EXPECT_EQ(model.getObjectName("/Case/Domain:pump"), "");
}

TEST(DynamicTDF, AParameterIsFoundByPathAndByObjectAndName) {
  PumpCase const model;
  EXPECT_TRUE(model.hasParameter("/Case/Domain:rotor/Motion"));
  EXPECT_TRUE(model.hasParameter("/Case/Domain:rotor", "Motion"));
  EXPECT_FALSE(model.hasParameter("/Case/Domain:rotor/motion"));
  EXPECT_FALSE(model.hasParameter("/Case/Domain:rotor", "motion"));
  EXPECT_FALSE(model.hasParameter("/Case/Domain:pump/Motion"));
  EXPECT_FALSE(model.hasParameter("/Case/Domain:pump", "Motion"));
}

TEST(DynamicTDF, AChildObjectIsNoParameter) {
  EXPECT_FALSE(PumpCase().hasParameter("/Case/Solver"));
  EXPECT_FALSE(PumpCase().hasParameter("/Case", "Solver"));
}

TEST(DynamicTDF, AParameterAtTheRootHasTheEmptyObjectPath) {
  DynamicTDF model;
  model.setParameter("", "Version", "3");
  EXPECT_EQ(model.getParameterValue("", "Version"), "3");
  EXPECT_EQ(model.getParameterValue("/Version"), "3");
  EXPECT_TRUE(model.hasParameter("/Version"));
}

TEST(DynamicTDF, AValueIsReadByPathAndByObjectAndName) {
  PumpCase const model;
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor/Motion"), "Rotating");
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor", "Motion"), "Rotating");
}

TEST(DynamicTDF, AMissingValueReadsAsEmpty) {
  PumpCase const model;
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor/Speed"), "");
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor", "Speed"), "");
  EXPECT_EQ(model.getParameterValue("/Case/Domain:pump/Motion"), "");
  EXPECT_EQ(model.getParameterValue("/Case/Domain:pump", "Motion"), "");
}

TEST(DynamicTDF, AParameterPathIsPassedOnToTheFormThatADerivedModelOverrides) {
  class Doubled : public DynamicTDF {
   public:
    using DynamicTDF::getParameterValue;
    using DynamicTDF::getParamValueAsList;
    using DynamicTDF::hasParameter;
    bool hasParameter(std::string const& objPath, std::string const& name) const override {
      return objPath == "/Case/Domain:x" && name == "Motion";
    }
    std::string const& getParameterValue(std::string const& objPath, std::string const& name) const override {
      seen = objPath + "|" + name;
      return seen;
    }
    bool getParamValueAsList(std::string const& objPath, std::string const& name, Strings& out) const override {
      out = {objPath, name};
      return true;
    }
    mutable std::string seen;
  };
  Doubled const model;
  Strings out;
  EXPECT_TRUE(model.hasParameter("/Case/Domain:x/Motion"));
  EXPECT_EQ(model.getParameterValue("/Case/Domain:x/Motion"), "/Case/Domain:x|Motion");
  EXPECT_TRUE(model.getParamValueAsList("/Case/Domain:x/Motion", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:x", "Motion"}));
}

TEST(DynamicTDF, AValueIsDividedAtCommasWithEmptyItemsKeptAndNothingTrimmed) {
  PumpCase const model;
  Strings out{"before"};
  EXPECT_TRUE(model.getParamValueAsList("/Case/Domain:rotor", "Materials", out));
  EXPECT_EQ(out, (Strings{"Water", " Air", "", "Oil"}));
  out.clear();
  EXPECT_TRUE(model.getParamValueAsList("/Case/Domain:rotor/Materials", out));
  EXPECT_EQ(out, (Strings{"Water", " Air", "", "Oil"}));
}

TEST(DynamicTDF, TheListOfAMissingOrEmptyValueIsEmpty) {
  PumpCase model;
  model.setParameter("/Case", "Notes", "");
  for (auto const& [objPath, name] : std::vector<std::pair<std::string, std::string>>{
           {"/Case/Domain:pump", "Materials"}, {"/Case/Domain:rotor", "Fluids"}, {"/Case", "Notes"}}) {
    Strings out{"before"};
    EXPECT_FALSE(model.getParamValueAsList(objPath, name, out)) << objPath << "/" << name;
    EXPECT_TRUE(out.empty()) << objPath << "/" << name;
  }
}

TEST(DynamicTDF, AListReadAfterAnotherValueWasSetIsThatOfTheNewValue) {
  PumpCase model;
  Strings out;
  model.getParamValueAsList("/Case/Domain:rotor", "Materials", out);
  model.setParameter("/Case/Domain:rotor", "Materials", "Steam,Ice");
  model.getParamValueAsList("/Case/Domain:rotor", "Materials", out);
  EXPECT_EQ(out, (Strings{"Steam", "Ice"}));
}

TEST(DynamicTDF, AListReadAfterAnAllowedValueParameterWasSetIsThatOfTheNewValue) {
  DynamicTDF model;
  Strings out;
  model.setParameter("/Case", "Models", allowing({"a", "b"}), "a,b");
  model.getParamValueAsList("/Case", "Models", out);
  model.setParameter("/Case", "Models", allowing({"a", "b"}), "b");
  model.getParamValueAsList("/Case", "Models", out);
  EXPECT_EQ(out, Strings{"b"});
}

TEST(DynamicTDF, ParameterNamesComeInByteOrderAndReplaceWhatTheListHeld) {
  DynamicTDF model;
  for (char const* name : {"b", "a b", "B", "a", "\xc3\xa4"}) model.setParameter("/Case", name, "1");
  Strings out{"before"};
  EXPECT_TRUE(model.getParameterNames("/Case", out));
  EXPECT_EQ(out, (Strings{"B", "a", "a b", "b", "\xc3\xa4"}));
}

TEST(DynamicTDF, ParameterNamesOfAnUnknownObjectLeaveTheListAsItWas) {
  Strings out{"before"};
  EXPECT_FALSE(PumpCase().getParameterNames("/Case/Domain:pump", out));
  EXPECT_EQ(out, Strings{"before"});
}

TEST(DynamicTDF, ParameterNamesOfAnObjectWithoutParametersAreThereAndEmpty) {
  Strings out{"before"};
  EXPECT_TRUE(PumpCase().getParameterNames("/Case/Domain:stator", out));
  EXPECT_TRUE(out.empty());
}

TEST(DynamicTDF, ChildPathsComeInTheOrderOfCreation) {
  DynamicTDF model;
  model.createObject("/Case", "Domain", "z");
  model.createObject("/Case", "Solver", "");
  model.setParameter("/Case/Domain:a", "Motion", "Stationary");
  Strings out{"before"};
  EXPECT_TRUE(model.getChildObjectPaths("/Case", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:z", "/Case/Solver", "/Case/Domain:a"}));
}

TEST(DynamicTDF, ChildPathsOfTheRootAreTheFirstLevel) {
  Strings out;
  EXPECT_TRUE(PumpCase().getChildObjectPaths("", out));
  EXPECT_EQ(out, Strings{"/Case"});
}

TEST(DynamicTDF, ChildListingsOfAnUnknownObjectEmptyTheList) {
  PumpCase const model;
  Strings out{"before"};
  EXPECT_FALSE(model.getChildObjectPaths("/Case/Domain:pump", out));
  EXPECT_TRUE(out.empty());
  out = {"before"};
  EXPECT_FALSE(model.getChildObjectNamesByType("/Case/Domain:pump", "Boundary", out));
  EXPECT_TRUE(out.empty());
  out = {"before"};
  EXPECT_FALSE(model.getChildObjectPathsByType("/Case/Domain:pump", "Boundary", out));
  EXPECT_TRUE(out.empty());
}

TEST(DynamicTDF, ChildListingsOfAnObjectWithoutChildrenAreFalse) {
  PumpCase const model;
  Strings out{"before"};
  EXPECT_FALSE(model.getChildObjectPaths("/Case/Solver", out));
  EXPECT_TRUE(out.empty());
}

TEST(DynamicTDF, ChildrenOfOneTypeAreThoseOfExactlyThisType) {
  PumpCase model;
  model.createObject("/Case", "Domain Interface", "rotor side");
  Strings out{"before"};
  EXPECT_TRUE(model.getChildObjectNamesByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"rotor", "stator"}));
  EXPECT_TRUE(model.getChildObjectPathsByType("/Case", "Domain", out));
  EXPECT_EQ(out, (Strings{"/Case/Domain:rotor", "/Case/Domain:stator"}));
  EXPECT_TRUE(model.getChildObjectNamesByType("/Case", "Solver", out));
  EXPECT_EQ(out, Strings{"Solver"});
  EXPECT_FALSE(model.getChildObjectNamesByType("/Case", "Dom", out));
  EXPECT_TRUE(out.empty());
  EXPECT_FALSE(model.getChildObjectPathsByType("/Case", "Boundary", out));
  EXPECT_TRUE(out.empty());
}

TEST(DynamicTDF, ChildrenOfOneTypeKeepTheirOrderAlsoAmongManyWhileOthersComeAndGo) {
  DynamicTDF model;
  std::vector<std::pair<std::string, std::string>> present;
  Strings const types{"Domain", "Material", "Monitor", "Expression", "Domain Interface"};
  auto const check = [&] {
    for (std::string const& type : types) {
      Strings names;
      Strings paths;
      for (auto const& [presentType, name] : present) {
        if (presentType != type) continue;
        names.push_back(name);
        paths.push_back("/Case/" + type + (name == type ? "" : ":" + name));
      }
      Strings out;
      ASSERT_EQ(model.getChildObjectNamesByType("/Case", type, out), !names.empty()) << type;
      ASSERT_EQ(out, names) << type;
      ASSERT_EQ(model.getChildObjectPathsByType("/Case", type, out), !paths.empty()) << type;
      ASSERT_EQ(out, paths) << type;
    }
    Strings out{"before"};
    ASSERT_FALSE(model.getChildObjectNamesByType("/Case", "Boundary", out));
    ASSERT_TRUE(out.empty());
  };
  auto const create = [&](std::string const& type, std::string const& name) {
    ASSERT_TRUE(model.createObject("/Case", type, name));
    present.emplace_back(type, name);
    check();
  };
  auto const erase = [&](std::size_t at) {
    auto const& [type, name] = present[at];
    model.deleteObject("/Case/" + type + (name == type ? "" : ":" + name));
    present.erase(present.begin() + static_cast<std::ptrdiff_t>(at));
    check();
  };

  for (int i = 0; i < 40; ++i) create(types[static_cast<std::size_t>(i * i) % 4], std::to_string(i));
  create("Domain Interface", "Domain Interface");
  erase(present.size() - 1);
  create("Domain Interface", "Domain Interface");
  for (std::size_t at : {0U, 38U, 7U, 7U, 7U, 20U, 0U, 0U, 30U}) erase(at);
  create("Domain", "0");
  while (!present.empty()) erase(present.size() / 2);
  for (int i = 0; i < 20; ++i) create("Monitor", std::to_string(i));
}

TEST(DynamicTDF, ObjectsAreFoundUnderComponentsOfAnyLengthAndNearlyRightPathsAreNot) {
  DynamicTDF model;
  std::string path;
  for (std::size_t size = 1; size <= 40; ++size) {
    path += "/" + std::string(size, 'T') + ":" + std::string(41 - size, 'n');
    ASSERT_TRUE(model.createObject(path, "Leaf", ""));
    ASSERT_TRUE(model.hasObject(path));
    ASSERT_TRUE(model.hasObject(path + "/Leaf"));
    ASSERT_FALSE(model.hasObject(path + "/Lea"));
    ASSERT_FALSE(model.hasObject(path + "/Leaf:Leaf"));
    ASSERT_FALSE(model.hasObject(path.substr(1)));
    ASSERT_EQ(model.getObjectType(path).size(), size);
  }
  for (std::size_t i = 0; i < path.size(); ++i) {
    std::string other = path;
    other[i] = '*';
    ASSERT_FALSE(model.hasObject(other)) << other;
  }
}

TEST(DynamicTDF, CreatingAnObjectTellsWhetherItIsNew) {
  DynamicTDF model;
  EXPECT_TRUE(model.createObject("/Case", "Domain", "rotor"));
  model.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  EXPECT_FALSE(model.createObject("/Case", "Domain", "rotor"));
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor", "Motion"), "Rotating");
}

TEST(DynamicTDF, AnObjectCreatedWithoutANameOrWithItsTypeAsNameIsASingleton) {
  DynamicTDF model;
  EXPECT_TRUE(model.createObject("", "Case", ""));
  EXPECT_TRUE(model.hasObject("/Case"));
  EXPECT_TRUE(model.createObject("/Case", "Solver", "Solver"));
  EXPECT_TRUE(model.hasObject("/Case/Solver"));
  EXPECT_FALSE(model.hasObject("/Case/Solver:Solver"));
  EXPECT_FALSE(model.createObject("/Case", "Solver", ""));
}

TEST(DynamicTDF, CreatingAnObjectCreatesAllThatIsMissingAboveIt) {
  DynamicTDF model;
  EXPECT_TRUE(model.createObject("/Case/Domain:rotor", "Boundary", "inlet"));
  EXPECT_EQ(model.getObjectType("/Case"), "Case");
  EXPECT_EQ(model.getObjectName("/Case/Domain:rotor"), "rotor");
  EXPECT_EQ(model.getObjectName("/Case/Domain:rotor/Boundary:inlet"), "inlet");
  Strings out;
  model.getChildObjectPaths("/Case", out);
  EXPECT_EQ(out, Strings{"/Case/Domain:rotor"});
}

TEST(DynamicTDF, SettingAParameterCreatesAllThatIsMissingAboveIt) {
  DynamicTDF model;
  model.setParameter("/Case/Domain:rotor/Boundary:inlet", "Kind", "Inlet");
  EXPECT_TRUE(model.hasObject("/Case"));
  EXPECT_TRUE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor/Boundary:inlet/Kind"), "Inlet");
}

TEST(DynamicTDF, ASlashAsPathSetsTheRoot) {
  DynamicTDF model;
  model.setParameter("/", "Version", "3");
  EXPECT_EQ(model.getParameterValue("", "Version"), "3");
  EXPECT_FALSE(model.hasObject("/"));
}

TEST(DynamicTDF, APathThatCannotBeReadThrowsAndCreatesNothing) {
  for (char const* path : {"Case", "/Case//Domain:a", "/Case/Domain:", "/Case/:a", "/Case/Domain:a:b", "/Case/"}) {
    DynamicTDF model;
    EXPECT_THROW(model.setParameter(path, "Motion", "Rotating"), Error) << path;
    EXPECT_FALSE(model.hasObject("/Case")) << path;
    EXPECT_TRUE(model.getAddedParameters().empty()) << path;
  }
}

TEST(DynamicTDF, APathThatCannotBeReadThrowsAlsoBelowAnObjectThatExistsAndIsToldAsAWhole) {
  for (char const* path : {"/Case/Domain:rotor/", "/Case/Domain:rotor//Boundary:a", "/Case/Domain:rotor/Boundary:"}) {
    PumpCase model;
    ModelState const before = model.getState("");
    try {
      model.setParameter(path, "Kind", "Wall");
      ADD_FAILURE() << path << " was read";
    } catch (Error const& error) {
      EXPECT_NE(error.getMessage().find(path), std::string::npos) << error.getMessage();
    }
    EXPECT_EQ(model.getState(""), before) << path;
  }
}

TEST(DynamicTDF, AnObjectIsFoundUnderTheLongFormThatItWasCreatedWithAndListedUnderTheShortOne) {
  DynamicTDF model;
  model.setParameter("/Case:Case/Domain:rotor", "Motion", "Rotating");
  EXPECT_TRUE(model.hasObject("/Case:Case/Domain:rotor"));
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor"));
  Strings out;
  model.getChildObjectPaths("/Case:Case", out);
  EXPECT_EQ(out, Strings{"/Case/Domain:rotor"});
}

TEST(DynamicTDF, DeletingAnObjectOfTheLongFormTakesItsChildrenWithIt) {
  DynamicTDF model;
  model.setParameter("/Case:Case/Domain:rotor", "Motion", "Rotating");
  model.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
  model.setParameter("/Case:Case", "Title", "pump");
  model.resetChanges();
  model.deleteObject("/Case:Case");
  EXPECT_EQ(model.getDeletedParameters(),
            (std::vector<DynamicTDF::ParamId>{{"/Case/Domain:rotor", "Motion"}, {"/Case:Case", "Title"}}));
  EXPECT_EQ(model.getDeletedObjects(), Strings{"/Case:Case"});
  EXPECT_FALSE(model.hasObject("/Case:Case/Domain:rotor"));
  EXPECT_EQ(model.getParameterValue("/Case/Domain:rotor", "Motion"), "Stationary");
}

TEST(DynamicTDF, TheStateNamesObjectsAsTheyAreFound) {
  DynamicTDF model;
  model.setParameter("/Case:Case/Domain:rotor", "Motion", "Rotating");
  model.setParameter("/Case/Domain:rotor", "Motion", "Stationary");
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case/Domain:rotor", {{"Motion", "Stationary"}}},
                                            {"/Case:Case/Domain:rotor", {{"Motion", "Rotating"}}}}));
  EXPECT_EQ(model.getState("/Case:Case"), (ModelState{{"/Case:Case/Domain:rotor", {{"Motion", "Rotating"}}}}));
}

TEST(DynamicTDF, AMirrorOfTheLongFormStandsUnderTheShortOne) {
  DynamicTDF source;
  source.setParameter("/Case:Case/Solver:Solver", "Steps", "5");
  DynamicTDF model;
  model.setParameter("/Case/Solver", "Steps", "4");
  model.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  model.resetChanges();
  model.copyBranch(&source, "/Case:Case");
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case/Solver", {{"Steps", "5"}}}}));
  EXPECT_EQ(model.getModifiedParameters(), (std::vector<DynamicTDF::ParamId>{{"/Case/Solver", "Steps"}}));
  EXPECT_EQ(model.getDeletedObjects(), Strings{"/Case/Domain:rotor"});
}

TEST(DynamicTDF, WhiteSpaceAtTheEndsOfAValueIsDropped) {
  DynamicTDF model;
  model.setParameter("/Case", "Title", " \t two  words \r\n");
  EXPECT_EQ(model.getParameterValue("/Case", "Title"), "two  words");
}

TEST(DynamicTDF, AnEmptyValueIsStored) {
  DynamicTDF model;
  model.setParameter("/Case", "Title", "  ");
  EXPECT_TRUE(model.hasParameter("/Case", "Title"));
  EXPECT_EQ(model.getParameterValue("/Case", "Title"), "");
}

TEST(DynamicTDF, AllowedValuesAreKeptWithTheParameterAndNotEnforced) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), " none ");
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "none");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST", "LES"})));
}

TEST(DynamicTDF, AllowedValuesAreReplacedByTheNextOnes) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  model.setParameter("/Case", "Model", allowing({"SST"}), "SST");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST"})));
}

TEST(DynamicTDF, APlainValueOnAnAllowedValueParameterKeepsTheAllowedValues) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", allowing({"SST", "LES"}), "SST");
  model.setParameter("/Case", "Model", "LES");
  EXPECT_EQ(model.getParameterValue("/Case", "Model"), "LES");
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST", "LES"})));
  EXPECT_NO_THROW(model.setParameter("/Case", "Model", allowing({"DES"}), "DES"));
}

TEST(DynamicTDF, AParameterSetWithAnEmptyRecordIsOfAllowedValueType) {
  DynamicTDF model;
  model.setParameter("/Case", "Model", ParamAllowedValues(), "SST");
  EXPECT_NO_THROW(model.setParameter("/Case", "Model", allowing({"SST"}), "SST"));
  EXPECT_TRUE(model.getAllowedValueData("/Case", "Model").isEqualTo(allowing({"SST"})));
}

TEST(DynamicTDF, AllowedValuesThatAreNotThereReadAsAnEmptyRecord) {
  PumpCase const model;
  ParamAllowedValues const none;
  EXPECT_TRUE(model.getAllowedValueData("/Case/Domain:pump", "Motion").isEqualTo(none));
  EXPECT_TRUE(model.getAllowedValueData("/Case/Domain:rotor", "Speed").isEqualTo(none));
  EXPECT_TRUE(model.getAllowedValueData("/Case/Domain:rotor", "Motion").isEqualTo(none));
}

TEST(DynamicTDF, AllowedValuesForAnOrdinaryParameterThrowAndLeaveItAsItWas) {
  PumpCase model;
  model.resetChanges();
  try {
    model.setParameter("/Case", "Flow Regime", allowing({"Laminar"}), "Laminar");
    FAIL() << "nothing was thrown";
  } catch (physics_dep::invalidParamVal const& error) {
    EXPECT_EQ(error.exceptionName(), "physical_dependency::invalidParamVal");
    EXPECT_EQ(error.getClass(), "DynamicTDF::Node::ParamVal");
    EXPECT_EQ(error.getMethod(), "modifyValue");
    EXPECT_EQ(static_cast<int>(error.getType()), 4);
    EXPECT_EQ(error.getMessage(),
              "Attempt to modify an allowed value range in a parameter that is not already of 'allowed value' type.");
  }
  EXPECT_EQ(model.getParameterValue("/Case", "Flow Regime"), "Turbulent");
  EXPECT_TRUE(model.getModifiedParameters().empty());
  EXPECT_TRUE(model.getAddedParameters().empty());
}

TEST(DynamicTDF, AParameterThatWasDeletedMayComeBackAsTheOtherKind) {
  PumpCase model;
  model.deleteParameter("/Case", "Flow Regime");
  EXPECT_NO_THROW(model.setParameter("/Case", "Flow Regime", allowing({"Laminar"}), "Laminar"));
  EXPECT_FALSE(model.getAllowedValueData("/Case", "Flow Regime").isEmpty());
}

TEST(DynamicTDF, DeletingAnObjectTakesAllBelowItAndNothingElse) {
  PumpCase model;
  model.deleteObject("/Case/Domain:rotor");
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor/Boundary:inlet"));
  EXPECT_FALSE(model.hasParameter("/Case/Domain:rotor/Boundary:inlet/Kind"));
  Strings out;
  model.getChildObjectPaths("/Case", out);
  EXPECT_EQ(out, (Strings{"/Case/Domain:stator", "/Case/Solver"}));
}

TEST(DynamicTDF, DeletingAChildKeepsTheOrderOfTheOthersWhereverItStood) {
  for (auto const& [deleted, rest] :
       std::vector<std::pair<std::string, Strings>>{{"a", {"b", "c"}}, {"b", {"a", "c"}}, {"c", {"a", "b"}}}) {
    DynamicTDF model;
    for (char const* name : {"a", "b", "c"}) model.createObject("/Case", "Domain", name);
    model.deleteObject("/Case/Domain:" + deleted);
    Strings out;
    model.getChildObjectNamesByType("/Case", "Domain", out);
    EXPECT_EQ(out, rest) << deleted;
    model.createObject("/Case", "Domain", "d");
    Strings withNew = rest;
    withNew.emplace_back("d");
    model.getChildObjectNamesByType("/Case", "Domain", out);
    EXPECT_EQ(out, withNew) << deleted;
  }
}

TEST(DynamicTDF, AnObjectThatComesBackHasNothingOfWhatItHeld) {
  PumpCase model;
  model.deleteObject("/Case/Domain:rotor");
  EXPECT_TRUE(model.createObject("/Case", "Domain", "rotor"));
  Strings out;
  EXPECT_TRUE(model.getParameterNames("/Case/Domain:rotor", out));
  EXPECT_TRUE(out.empty());
  EXPECT_FALSE(model.getChildObjectPaths("/Case/Domain:rotor", out));
  model.getChildObjectNamesByType("/Case", "Domain", out);
  EXPECT_EQ(out, (Strings{"stator", "rotor"}));
}

TEST(DynamicTDF, DeletingWhatIsNotThereIsIgnored) {
  PumpCase model;
  ModelState const before = model.getState("");
  model.deleteObject("/Case/Domain:pump");
  model.deleteObjectUnrecorded("/Case/Domain:pump");
  model.deleteParameter("/Case/Domain:pump", "Motion");
  model.deleteParameter("/Case/Domain:rotor", "Speed");
  EXPECT_EQ(model.getState(""), before);
}

TEST(DynamicTDF, TheRootIsNotDeleted) {
  PumpCase model;
  model.resetChanges();
  ModelState const before = model.getState("");
  for (char const* path : {"", "/"}) {
    model.deleteObject(path);
    model.deleteObjectUnrecorded(path);
  }
  EXPECT_EQ(model.getState(""), before);
  EXPECT_TRUE(model.getDeletedObjects().empty());
  EXPECT_TRUE(model.getDeletedParameters().empty());
}

TEST(DynamicTDF, ObjectsAreDeletedOneAfterTheOtherEvenIfOneLiesBelowAnother) {
  PumpCase model;
  model.resetChanges();
  model.deleteObjects({"/Case/Domain:stator", "/Case/Domain:rotor", "/Case/Domain:rotor/Boundary:inlet"});
  EXPECT_EQ(model.getDeletedObjects(), (Strings{"/Case/Domain:stator", "/Case/Domain:rotor"}));
  EXPECT_EQ(model.getState(""), (ModelState{{"/Case", {{"Flow Regime", "Turbulent"}}}}));
}

TEST(DynamicTDF, TheTextThatNamesAnObjectMayGoWithIt) {
  PumpCase model;
  model.setParameter("/Case/Domain:rotor", "Owner", "/Case/Domain:rotor");
  model.resetChanges();
  model.deleteObject(model.getParameterValue("/Case/Domain:rotor", "Owner"));
  EXPECT_EQ(model.getDeletedObjects(), Strings{"/Case/Domain:rotor"});
}

TEST(DynamicTDF, TheLogOfDeletedObjectsMayBeDeletedFromTheTree) {
  PumpCase model;
  model.resetChanges();
  model.deleteObject("/Case/Domain:rotor");
  model.createObject("/Case", "Domain", "rotor");
  model.deleteObjects(model.getDeletedObjects());
  EXPECT_FALSE(model.hasObject("/Case/Domain:rotor"));
  EXPECT_EQ(model.getDeletedObjects(), (Strings{"/Case/Domain:rotor", "/Case/Domain:rotor"}));
}

TEST(DynamicTDF, AReferenceToAValueOutlivesEditsElsewhere) {
  PumpCase model;
  std::string const& motion = model.getParameterValue("/Case/Domain:rotor", "Motion");
  for (int i = 0; i < 1000; ++i) {
    model.setParameter("/Case/Domain:stator", "P" + std::to_string(i), "1");
    model.createObject("/Case", "Domain", "extra " + std::to_string(i));
  }
  model.deleteObject("/Case/Domain:stator");
  EXPECT_EQ(&motion, &model.getParameterValue("/Case/Domain:rotor", "Motion"));
  EXPECT_EQ(motion, "Rotating");
}

TEST(DynamicTDF, AnArgumentMayBeAValueOfTheObjectThatGetsAnotherParameter) {
  DynamicTDF model;
  model.setParameter("/Case", "Self", "/Case");
  model.setParameter("/Case", "Next", "A parameter whose name is a value of the same object");
  model.resetChanges();
  model.setParameter(model.getParameterValue("/Case", "Self"), model.getParameterValue("/Case", "Next"),
                     model.getParameterValue("/Case", "Next"));
  std::string const next = "A parameter whose name is a value of the same object";
  EXPECT_EQ(model.getParameterValue("/Case", next), next);
  EXPECT_EQ(model.getAddedParameters(), (std::vector<DynamicTDF::ParamId>{{"/Case", next}}));
}

TEST(DynamicTDF, ThousandsOfParametersOfAnObjectStandInOrderThroughAllEdits) {
  DynamicTDF model;
  ObjectState expected;
  std::mt19937 random(7);
  for (int edit = 0; edit < 20000; ++edit) {
    std::string const name = "Field " + std::to_string(random() % 3000);
    // Mostly additions at first, later mostly deletions, down to none.
    if (random() % 20000 < static_cast<unsigned>(edit)) {
      model.deleteParameter("/Schedule", name);
      expected.erase(name);
    } else {
      model.setParameter("/Schedule", name, std::to_string(edit));
      expected[name] = std::to_string(edit);
    }
    std::string const* const value = model.findParameterValue("/Schedule", name);
    ASSERT_EQ(value != nullptr, expected.contains(name));
    if (edit % 1000 == 0) {
      ASSERT_EQ(model.getState("").at("/Schedule"), expected);
    }
  }
  for (auto const& [name, value] : expected) ASSERT_EQ(*model.findParameterValue("/Schedule", name), value);

  DynamicTDF few;
  few.setParameter("/Schedule", "Field 17", "kept");
  model.copyBranch(&few, "/Schedule");
  EXPECT_EQ(model.getState("").at("/Schedule"), (ObjectState{{"Field 17", "kept"}}));
  model.deleteParameter("/Schedule", "Field 17");
  EXPECT_TRUE(model.isObjectEmpty("/Schedule"));
}

TEST(DynamicTDF, WhatIsLookedUpOftenIsGoneWhenItIsDeleted) {
  PumpCase model;
  std::string const rotor = "/Case/Domain:rotor";
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(model.hasParameter(rotor, "Motion"));
  model.deleteObject(rotor);
  EXPECT_FALSE(model.hasObject(rotor));
  EXPECT_EQ(model.findParameterValue(rotor, "Motion"), nullptr);
  model.createObject("/Case", "Domain", "rotor");
  EXPECT_TRUE(model.hasObject(rotor));
  EXPECT_FALSE(model.hasParameter(rotor, "Motion"));
}

TEST(DynamicTDF, AnObjectIsEmptyWhenNothingAtOrBelowItHoldsAParameter) {
  DynamicTDF model;
  model.createObject("/Case/Domain:a/Boundary:x", "Area", "1");
  model.createObject("/Case/Domain:a", "Boundary", "y");
  EXPECT_TRUE(model.isObjectEmpty(""));
  EXPECT_TRUE(model.isObjectEmpty("/Case"));
  model.setParameter("/Case/Domain:a/Boundary:y", "Kind", "");
  EXPECT_FALSE(model.isObjectEmpty("/Case"));
  EXPECT_FALSE(model.isObjectEmpty("/Case/Domain:a"));
  EXPECT_FALSE(model.isObjectEmpty("/Case/Domain:a/Boundary:y"));
  EXPECT_TRUE(model.isObjectEmpty("/Case/Domain:a/Boundary:x"));
}

TEST(DynamicTDF, AnObjectIsEmptyWhateverItsSiblingsHold) {
  PumpCase const model;
  EXPECT_TRUE(model.isObjectEmpty("/Case/Domain:stator"));
  EXPECT_TRUE(model.isObjectEmpty("/Case/Solver"));
}

TEST(DynamicTDF, AnUnknownObjectIsEmpty) {
  EXPECT_TRUE(PumpCase().isObjectEmpty("/Case/Domain:pump"));
}

TEST(DynamicTDF, TheStateLeavesOutObjectsWithoutParameters) {
  EXPECT_EQ(PumpCase().getState(""),
            (ModelState{{"/Case", {{"Flow Regime", "Turbulent"}}},
                        {"/Case/Domain:rotor", {{"Materials", "Water, Air,,Oil"}, {"Motion", "Rotating"}}},
                        {"/Case/Domain:rotor/Boundary:inlet", {{"Kind", "Inlet"}}}}));
}

TEST(DynamicTDF, TheStateOfABranchIsTakenOnWholeComponents) {
  DynamicTDF model;
  for (char const* path : {"", "/A", "/A B", "/A/C:x", "/A/C:x/D", "/A/C:xy", "/A:n", "/B"})
    model.setParameter(path, "p", path);
  auto const pathsOf = [&](char const* root) {
    Strings paths;
    for (auto const& entry : model.getState(root)) paths.push_back(entry.first);
    return paths;
  };
  EXPECT_EQ(pathsOf("/A"), (Strings{"/A", "/A/C:x", "/A/C:x/D", "/A/C:xy"}));
  EXPECT_EQ(pathsOf("/A/C:x"), (Strings{"/A/C:x", "/A/C:x/D"}));
  EXPECT_EQ(pathsOf("/A/C"), Strings{});
  EXPECT_EQ(pathsOf("/Z"), Strings{});
  Strings const all{"", "/A", "/A B", "/A/C:x", "/A/C:x/D", "/A/C:xy", "/A:n", "/B"};
  EXPECT_EQ(pathsOf(""), all);
  EXPECT_EQ(pathsOf("/"), all);
  EXPECT_EQ(pathsOf("/A/"), Strings{});
}

TEST(DynamicTDF, TheStateHoldsEveryObjectOnceWhereNamesSortBesideTheSlash) {
  // A blank, a hyphen and a dot come before "/", a colon and letters after it.
  Strings const components{"/A", "/A B", "/A-B", "/A.", "/A:n", "/A:n m", "/AB", "/A:n.m"};
  Strings paths{""};
  for (std::string const& first : components) {
    for (std::string const& second : components) paths.push_back(first + second);
    paths.push_back(first);
  }
  for (int order = 0; order < 2; ++order) {
    DynamicTDF model;
    ModelState expected;
    for (std::string const& path : paths) {
      model.setParameter(path, "p", path);
      expected[path]["p"] = path;
    }
    EXPECT_EQ(model.getState(""), expected);
    std::reverse(paths.begin(), paths.end());
  }
}

TEST(DynamicTDF, LookUpsInADeepTreeAreRightInWhateverOrderTheyComeAndAlsoAfterDeletion) {
  DynamicTDF model;
  Strings chains;
  for (char const* name : {"a", "b"}) {
    std::string path = std::string("/Group:") + name;
    for (int i = 0; i < 100; ++i) {
      path += "/Group:" + std::to_string(i);
      model.createObject(path, "Leaf", "");
      chains.push_back(path);
    }
  }
  for (std::size_t step : {1U, 199U, 7U, 93U}) {
    for (std::size_t i = 0, at = 0; i < chains.size(); ++i, at = (at + step) % chains.size()) {
      ASSERT_TRUE(model.hasObject(chains[at])) << chains[at];
      ASSERT_TRUE(model.hasObject(chains[at] + "/Leaf")) << chains[at];
      ASSERT_FALSE(model.hasObject(chains[at] + "/Leaf:x")) << chains[at];
    }
  }
  ASSERT_TRUE(model.hasObject(chains[99]));
  model.deleteObject(chains[50]);
  for (std::size_t i = 0; i < chains.size(); ++i) {
    ASSERT_EQ(model.hasObject(chains[i]), i < 50 || i >= 100) << chains[i];
  }
  for (std::size_t i = 50; i < 100; ++i) ASSERT_TRUE(model.createObject(chains[i], "Leaf", "")) << chains[i];
  ASSERT_TRUE(model.hasObject(chains[99] + "/Leaf"));
  ModelState const nothing;
  model.initialise(nothing.begin(), nothing.end());
  ASSERT_FALSE(model.hasObject(chains[99]));
}

TEST(DynamicTDF, AChainOfTenThousandObjectsIsCreatedReadAndDeletedWithoutRecursion) {
  constexpr int depth = 10000;
  DynamicTDF model;
  std::string path;
  for (int i = 0; i < depth; ++i) path += "/D";
  model.setParameter(path, "p", "1");
  EXPECT_FALSE(model.isObjectEmpty(""));
  EXPECT_EQ(model.getState("").size(), 1U);
  model.resetChanges();
  model.deleteObject("/D");
  EXPECT_FALSE(model.hasObject(path));
  EXPECT_TRUE(model.isObjectEmpty(""));
  EXPECT_EQ(model.getDeletedParameters().size(), 1U);
}

TEST(DynamicTDF, TheRevisionIsAnotherOneAfterEveryChange) {
  DynamicTDF source(false);
  source.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  source.createObject("/Case/Domain:rotor", "Boundary", "inlet");
  ModelState const loaded{{"/Case", {{"Title", "Pump"}}}};
  for (bool const recording : {true, false}) {
    DynamicTDF tree(recording);
    std::vector<std::function<void()>> const changes = {
        [&] { tree.createObject("/Case", "Domain", "rotor"); },
        [&] { tree.setParameter("/Case/Domain:rotor", "Motion", "Resting"); },
        [&] { tree.setParameter("/Case/Domain:rotor", "Motion", "Rotating"); },
        [&] { tree.setParameter("/Case", "Fluid", allowing({"Water"}), "Water"); },
        [&] {
          tree.setParameter("/Case", "Fluid", allowing({"Water", "Air"}), "Water");
        },
        [&] { tree.deleteParameter("/Case", "Fluid"); },
        [&] { tree.copyBranch(&source, "/Case/Domain:rotor"); },
        [&] { tree.deleteObjectUnrecorded("/Case/Domain:rotor/Boundary:inlet"); },
        [&] { tree.setParameter("/Case/Domain:rotor", "Title", "Impeller"); },
        [&] { tree.copyBranch(&source, "/Case/Domain:rotor"); },
        [&] { tree.deleteObject("/Case/Domain:rotor"); },
        [&] { tree.update(loaded.begin(), loaded.end()); },
        [&] { tree.initialise(loaded.begin(), loaded.end()); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
      auto const before = tree.getRevision();
      changes[i]();
      EXPECT_NE(tree.getRevision(), before) << i;
    }
  }
}

TEST(DynamicTDF, TheRevisionStaysWhereNothingChanges) {
  DynamicTDF source(false);
  source.setParameter("/Case/Domain:rotor", "Motion", "Rotating");
  DynamicTDF tree;
  tree.copyBranch(&source, "/Case");
  auto const before = tree.getRevision();
  tree.setParameter("/Case/Domain:rotor", "Motion", " Rotating ");
  tree.createObject("/Case", "Domain", "rotor");
  tree.deleteParameter("/Case", "Title");
  tree.deleteObject("/Case/Domain:stator");
  tree.copyBranch(&source, "/Case");
  tree.resetChanges();
  EXPECT_EQ(tree.getRevision(), before);
}

}  // namespace
}  // namespace tarn
