// The memory of selected values, and the subset that it widens.

#include "provisional/SubsetSelections.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

TEST(SubsetSelections, NothingIsRememberedAtTheStart) {
  SubsetSelections const selections;
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Fluid"), Strings());
}

TEST(SubsetSelections, ValuesStandInTheOrderOfFirstSelectionAndEachOnce) {
  SubsetSelections selections;
  selections.rememberSubsetValue("/Case", "Fluid", "Water");
  selections.rememberSubsetValues("/Case", "Fluid", {"Oil", "Water", "Air", "Oil"});
  selections.rememberSubsetValue("/Case", "Fluid", "Air");
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Fluid"), (Strings{"Water", "Oil", "Air"}));
}

TEST(SubsetSelections, EachParameterHasItsOwn) {
  SubsetSelections selections;
  selections.rememberSubsetValue("/Case", "Fluid", "Water");
  selections.rememberSubsetValue("/Case/Fluid", "Fluid", "Air");
  selections.rememberSubsetValues("/Case", "Coolant", {});
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Fluid"), (Strings{"Water"}));
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case/Fluid", "Fluid"), (Strings{"Air"}));
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Coolant"), Strings());
}

ParamAllowedValues widened(Strings const& selected, ParamAllowedValues const& allowed) {
  return SubsetSelections::widenAllowedSubset(selected, allowed);
}

TEST(SubsetSelections, SelectedValuesOutsideTheSubsetAreAppendedInByteOrder) {
  ParamAllowedValues const allowed({"Water", "Oil", "Air", "Steam"}, {"Water"});
  ParamAllowedValues const expected({"Water", "Oil", "Air", "Steam"}, {"Water", "Air", "Oil"});
  EXPECT_TRUE(widened({"Oil", "Water", "Air"}, allowed).isEqualTo(expected));
}

TEST(SubsetSelections, SelectedValuesThatAreNoLongerAllowedAreNotBroughtBack) {
  ParamAllowedValues const allowed({"Water", "Air"}, {"Water"});
  ParamAllowedValues const expected({"Water", "Air"}, {"Water", "Air"});
  EXPECT_TRUE(widened({"Oil", "Air"}, allowed).isEqualTo(expected));
  EXPECT_TRUE(widened({"Oil"}, allowed).isEqualTo(allowed));
}

TEST(SubsetSelections, WithNothingToAddTheAllowedValuesStayAsTheyAre) {
  ParamAllowedValues const allowed({"Water", "Air"}, {"Water", "Air"});
  EXPECT_TRUE(widened({}, allowed).isEqualTo(allowed));
  EXPECT_TRUE(widened({"Air"}, allowed).isEqualTo(allowed));
}

TEST(SubsetSelections, WhereAnyValueIsAllowedNothingIsAdded) {
  ParamAllowedValues allowed({"Water", "Air"}, {"Water"});
  allowed.allowsAnyValue = true;
  EXPECT_TRUE(widened({"Air"}, allowed).isEqualTo(allowed));
}

TEST(SubsetSelections, ARollbackForgetsWhatWasSelectedSinceAndNoMore) {
  Journal journal;
  SubsetSelections selections;
  selections.rememberSubsetValue("/Case", "Fluid", "Water");
  Journal::Mark const mark = journal.mark();
  selections.rememberSubsetValues("/Case", "Fluid", {"Oil", "Water", "Air"}, &journal);
  selections.rememberSubsetValue("/Case", "Coolant", "Water", &journal);
  journal.rollback(mark);
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Fluid"), (Strings{"Water"}));
  EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Coolant"), Strings());
}

TEST(SubsetSelections, AValueThatARollbackForgotCanBeSelectedAgain) {
  Journal journal;
  SubsetSelections selections;
  selections.rememberSubsetValue("/Case", "Fluid", "Air");
  for (int i = 0; i < 2; ++i) {
    Journal::Mark const mark = journal.mark();
    selections.rememberSubsetValues("/Case", "Fluid", {"Water", "Oil"}, &journal);
    EXPECT_EQ(selections.getSubsetSelectionValues("/Case", "Fluid"), (Strings{"Air", "Water", "Oil"}));
    journal.rollback(mark);
  }
}

}  // namespace
}  // namespace tarn
