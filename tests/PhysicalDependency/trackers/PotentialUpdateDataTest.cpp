// The potential items that one walk found: what is kept, what a path finds, and what is removed with a path.

#include <tarn/PotentialUpdateData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "support/AllowedValues.h"

namespace tarn {
namespace {

using test::allowing;
using Strings = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs paramsOf(PotentialUpdateData const& data) {
  return {data.getParams().begin(), data.getParams().end()};
}

TEST(PotentialUpdateData, ANewRecordIsEmpty) {
  PotentialUpdateData const data;
  EXPECT_EQ(data.getObjects(), Strings());
  EXPECT_EQ(paramsOf(data), Pairs());
  EXPECT_FALSE(data.hasObjPotentialChildren(""));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case"));
}

TEST(PotentialUpdateData, ObjectsStandInTheOrderOfAdditionWithTheirDuplicates) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  data.addObject("/Case/Domain:rotor");
  data.addObject("/Case/Solver");
  EXPECT_EQ(data.getObjects(), (Strings{"/Case/Solver", "/Case/Domain:rotor", "/Case/Solver"}));
}

TEST(PotentialUpdateData, ParametersStandByObjectInTheOrderOfAdditionWithTheirDuplicates) {
  PotentialUpdateData data;
  data.addParam("/Case/Solver", "Steps");
  data.addParam("/Case", "Title");
  data.addParam("/Case/Solver", "Order");
  data.addParam("/Case/Solver", "Steps");
  EXPECT_EQ(
      paramsOf(data),
      (Pairs{{"/Case", "Title"}, {"/Case/Solver", "Steps"}, {"/Case/Solver", "Order"}, {"/Case/Solver", "Steps"}}));
}

TEST(PotentialUpdateData, TheAllowedValuesThatWereAddedFirstStand) {
  PotentialUpdateData data;
  data.addParam("/Case", "Fluid", allowing({"Water"}));
  data.addParam("/Case", "Fluid", allowing({"Air"}));
  EXPECT_EQ(data.getAllowedValueData("/Case", "Fluid").allowedValues, (Strings{"Water"}));
  EXPECT_EQ(data.getParams().size(), 2U);
}

TEST(PotentialUpdateData, AParameterWithoutAllowedValuesHasAnEmptyRecord) {
  PotentialUpdateData data;
  data.addParam("/Case", "Title");
  data.addParam("/Case", "Fluid", allowing({"Water"}));
  EXPECT_TRUE(data.getAllowedValueData("/Case", "Title").isEqualTo(ParamAllowedValues()));
  EXPECT_TRUE(data.getAllowedValueData("/Case/Solver", "Fluid").isEqualTo(ParamAllowedValues()));
}

TEST(PotentialUpdateData, AllowedValuesAreComparedAsWholeRecords) {
  PotentialUpdateData data;
  data.addParam("/Case", "Fluid", allowing({"Water"}));
  EXPECT_TRUE(data.compareAllowedValues("/Case", "Fluid", allowing({"Water"})));
  EXPECT_FALSE(data.compareAllowedValues("/Case", "Fluid", allowing({"Water", "Air"})));
  EXPECT_FALSE(data.compareAllowedValues("/Case", "Fluid", ParamAllowedValues({"Water"}, {"Water"})));
  EXPECT_FALSE(data.compareAllowedValues("/Case", "Fluid", ParamAllowedValues()));
}

TEST(PotentialUpdateData, WithoutAnEntryOnlyEmptyAllowedValuesCompareEqual) {
  PotentialUpdateData data;
  data.addParam("/Case", "Title");
  EXPECT_TRUE(data.compareAllowedValues("/Case", "Title", ParamAllowedValues()));
  EXPECT_TRUE(data.compareAllowedValues("/Case", "Title", allowing({})));  // the list counts, not the flags
  EXPECT_FALSE(data.compareAllowedValues("/Case", "Title", allowing({"Water"})));
  EXPECT_TRUE(data.compareAllowedValues("/Case/Solver", "Order", ParamAllowedValues()));
}

TEST(PotentialUpdateData, AnEntryOfEmptyAllowedValuesIsComparedAsARecord) {
  PotentialUpdateData data;
  data.addParam("/Case", "Fluid", ParamAllowedValues());
  EXPECT_TRUE(data.compareAllowedValues("/Case", "Fluid", ParamAllowedValues()));
  EXPECT_FALSE(data.compareAllowedValues("/Case", "Fluid", allowing({})));
}

TEST(PotentialUpdateData, AnObjectWithAPotentialParameterIsFoundAndSoAreTheObjectsAboveIt) {
  PotentialUpdateData data;
  data.addParam("/Case/Domain:rotor", "Title");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case/Domain:rotor"));
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case/Domain:stator"));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case/Domain:rotor/Boundary:inlet"));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case/Domain:rot"));
}

TEST(PotentialUpdateData, TheParentOfAPotentialObjectIsFoundAndTheObjectItselfIsNot) {
  PotentialUpdateData data;
  data.addObject("/Case/Domain:rotor");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case/Domain:rotor"));
}

TEST(PotentialUpdateData, TheParentOfAPathWithoutSeparatorIsTheRoot) {
  PotentialUpdateData data;
  data.addObject("Case");
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
  EXPECT_FALSE(data.hasObjPotentialChildren("Case"));
}

TEST(PotentialUpdateData, ASubtreeIsFoundAlsoWherePathsStandBetweenInByteOrder) {
  PotentialUpdateData data;
  data.addParam("/Case B", "Title");  // in byte order between "/Case" and "/Case/Solver"
  data.addParam("/Case/Solver", "Steps");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
  data.clearObjectReferences("/Case");
  EXPECT_EQ(paramsOf(data), (Pairs{{"/Case B", "Title"}}));
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case"));
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case B"));
}

TEST(PotentialUpdateData, ClearEmptiesEverything) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  data.addParam("/Case", "Fluid", allowing({"Water"}));
  data.clear();
  EXPECT_EQ(data.getObjects(), Strings());
  EXPECT_EQ(paramsOf(data), Pairs());
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case"));
  EXPECT_TRUE(data.compareAllowedValues("/Case", "Fluid", ParamAllowedValues()));
}

TEST(PotentialUpdateData, WithAPathGoesTheObjectAllBelowItAndTheirParameters) {
  PotentialUpdateData data;
  data.addObject("/Case/Domain:rotor");
  data.addObject("/Case/Domain:rotor/Boundary:inlet");
  data.addObject("/Case/Domain:stator");
  data.addObject("/Case/Domain:rotor2");
  data.addParam("/Case/Domain:rotor", "Title");
  data.addParam("/Case/Domain:rotor/Boundary:inlet", "Fluid", allowing({"Water"}));
  data.addParam("/Case/Domain:rotor2", "Title");
  data.addParam("/Case", "Title");
  data.clearObjectReferences("/Case/Domain:rotor");
  EXPECT_EQ(data.getObjects(), (Strings{"/Case/Domain:stator", "/Case/Domain:rotor2"}));
  EXPECT_EQ(paramsOf(data), (Pairs{{"/Case", "Title"}, {"/Case/Domain:rotor2", "Title"}}));
  EXPECT_TRUE(data.getAllowedValueData("/Case/Domain:rotor/Boundary:inlet", "Fluid").isEmpty());
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case/Domain:rotor"));
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case/Domain:rotor2"));
}

TEST(PotentialUpdateData, AnAncestorIsFoundAsLongAsSomethingPotentialRemainsBelowIt) {
  PotentialUpdateData data;
  data.addObject("/Case/Domain:rotor/Boundary:inlet");
  data.addObject("/Case/Domain:stator/Boundary:inlet");
  data.clearObjectReferences("/Case/Domain:rotor");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
  data.clearObjectReferences("/Case/Domain:stator");
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case"));
}

TEST(PotentialUpdateData, TheParentOfTheLastRemovedObjectIsFoundNoMore) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  data.addObject("/Case/Output");
  data.clearObjectReferences("/Case/Solver");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
  data.clearObjectReferences("/Case/Output");
  EXPECT_FALSE(data.hasObjPotentialChildren("/Case"));
}

TEST(PotentialUpdateData, TheParentOfARemovedObjectIsFoundAsLongAsItHasAPotentialParameter) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  data.addParam("/Case", "Title");
  data.clearObjectReferences("/Case/Solver");
  EXPECT_TRUE(data.hasObjPotentialChildren("/Case"));
}

TEST(PotentialUpdateData, APathThatNothingRefersToChangesNothing) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  data.addParam("", "Version");
  data.clearObjectReferences("/Case/Domain:rotor");
  EXPECT_EQ(data.getObjects(), (Strings{"/Case/Solver"}));
  EXPECT_EQ(paramsOf(data), (Pairs{{"", "Version"}}));
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
}

TEST(PotentialUpdateData, ItemsAreFoundFromTheRootUnderItsEmptyPath) {
  PotentialUpdateData withParam;
  withParam.addParam("", "Version");
  EXPECT_TRUE(withParam.hasObjPotentialChildren(""));
  PotentialUpdateData withObject;
  withObject.addObject("/Library");
  EXPECT_TRUE(withObject.hasObjPotentialChildren(""));
  PotentialUpdateData deep;
  deep.addParam("/Case/Domain:rotor", "Title");
  EXPECT_TRUE(deep.hasObjPotentialChildren(""));
}

TEST(PotentialUpdateData, UnderASlashOnlyItemsBelowObjectsAtTheRootAreFound) {
  PotentialUpdateData atRoot;
  atRoot.addParam("", "Version");
  atRoot.addObject("/Library");
  EXPECT_FALSE(atRoot.hasObjPotentialChildren("/"));
  PotentialUpdateData deep;
  deep.addParam("/Case/Domain:rotor", "Title");
  EXPECT_TRUE(deep.hasObjPotentialChildren("/"));
}

TEST(PotentialUpdateData, AParameterOfTheRootIsFoundAsLongAsNothingWasRemoved) {
  PotentialUpdateData data;
  data.addParam("", "Version");
  data.clearObjectReferences("/Case");
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
}

TEST(PotentialUpdateData, AParameterOfTheRootIsNotFoundFromTheRootAnyMoreOnceSomethingWasRemoved) {
  PotentialUpdateData data;
  data.addParam("", "Version");
  data.addObject("/Case/Solver");
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
  data.clearObjectReferences("/Case");
  EXPECT_EQ(paramsOf(data), (Pairs{{"", "Version"}}));
  EXPECT_FALSE(data.hasObjPotentialChildren(""));
}

TEST(PotentialUpdateData, TheRootAsAnObjectsParentIsFoundAfterARemoval) {
  PotentialUpdateData data;
  data.addParam("", "Version");
  data.addObject("/Library");
  data.addObject("/Case/Solver");
  data.clearObjectReferences("/Case");
  EXPECT_TRUE(data.hasObjPotentialChildren(""));
}

TEST(PotentialUpdateData, WithTheRootGoesEverythingHoweverItIsWritten) {
  for (std::string const root : {"", "/"}) {
    PotentialUpdateData data;
    data.addParam("", "Version", allowing({"1", "2"}));
    data.addObject("/Case/Solver");
    data.addParam("/Case/Domain:rotor", "Fluid", allowing({"Water", "Air"}));
    data.clearObjectReferences(root);
    EXPECT_EQ(data.getObjects(), Strings());
    EXPECT_EQ(paramsOf(data), Pairs());
    EXPECT_FALSE(data.hasObjPotentialChildren(""));
    EXPECT_TRUE(data.getAllowedValueData("", "Version").isEmpty());
    EXPECT_TRUE(data.getAllowedValueData("/Case/Domain:rotor", "Fluid").isEmpty());
  }
}

TEST(PotentialUpdateData, ACopyIsIndependent) {
  PotentialUpdateData data;
  data.addObject("/Case/Solver");
  PotentialUpdateData copy = data;
  copy.addParam("/Case", "Title");
  data.clear();
  EXPECT_EQ(copy.getObjects(), (Strings{"/Case/Solver"}));
  EXPECT_EQ(data.getParams().size(), 0U);
}

/// The same removal, written down without any of the orders that make it quick.
struct PlainData {
  Strings objects;
  Pairs params;

  static bool isAtOrBelow(std::string const& path, std::string const& candidate) {
    return candidate == path || candidate.starts_with(path + '/');
  }
  void clearObjectReferences(std::string const& path) {
    std::erase_if(objects, [&](std::string const& object) { return isAtOrBelow(path, object); });
    std::erase_if(params, [&](auto const& param) { return isAtOrBelow(path, param.first); });
  }
  bool hasObjPotentialChildren(std::string const& path) const {
    return std::any_of(
               objects.begin(), objects.end(),
               [&](std::string const& object) { return isAtOrBelow(path, object.substr(0, object.rfind('/'))); }) ||
           std::any_of(params.begin(), params.end(), [&](auto const& param) { return isAtOrBelow(path, param.first); });
  }
};

TEST(PotentialUpdateData, RandomAdditionsAndRemovalsAgreeWithAPlainReading) {
  Strings const components{"/A", "/A B", "/A:x", "/A:xy", "/A-", "/B:x"};
  for (unsigned seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    auto const pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
    auto const somePath = [&] {
      std::string path;
      for (std::size_t depth = 1 + pick(3); depth > 0; --depth) path += components[pick(components.size())];
      return path;
    };
    PotentialUpdateData data;
    PlainData plain;
    for (int step = 0; step < 40; ++step) {
      std::string const path = somePath();
      std::size_t const action = pick(5);
      if (action < 2) {
        data.addObject(path);
        plain.objects.push_back(path);
      } else if (action < 4) {
        data.addParam(path, "P", allowing({path}));
        plain.params.emplace_back(path, "P");
      } else {
        data.clearObjectReferences(path);
        plain.clearObjectReferences(path);
      }
      EXPECT_EQ(data.getObjects(), plain.objects);
      Pairs sorted = plain.params;
      std::stable_sort(sorted.begin(), sorted.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
      EXPECT_EQ(paramsOf(data), sorted);
      std::string const asked = somePath();
      EXPECT_EQ(data.hasObjPotentialChildren(asked), plain.hasObjPotentialChildren(asked)) << asked;
      bool const known =
          std::find(sorted.begin(), sorted.end(), std::pair<std::string, std::string>(asked, "P")) != sorted.end();
      EXPECT_EQ(data.getAllowedValueData(asked, "P").isEmpty(), !known) << asked;
    }
  }
}

}  // namespace
}  // namespace tarn
