// Lists taken as sets.

#include "provisional/ValueLists.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn {
namespace {

using Strings = std::vector<std::string>;

TEST(ValueLists, WhatIsNotAllowedIsRemovedAndTheRestKeepsItsOrderAndDuplicates) {
  Strings list{"Oil", "Air", "Water", "Air", "Oil"};
  keepAllowedOnly({"Water", "Air"}, list);
  EXPECT_EQ(list, (Strings{"Air", "Water", "Air"}));
}

TEST(ValueLists, WhereNothingIsAllowedNothingRemains) {
  Strings list{"Oil"};
  keepAllowedOnly({}, list);
  EXPECT_EQ(list, Strings());
}

TEST(ValueLists, TheDifferenceIsInByteOrderAndHoldsEachItemOnce) {
  EXPECT_EQ(sortedDifference({"b", "Z", "a", "b", "c", "Z"}, {"c", "x"}), (Strings{"Z", "a", "b"}));
}

TEST(ValueLists, TheDifferenceToNothingIsAllAndOfNothingIsNothing) {
  EXPECT_EQ(sortedDifference({"b", "a"}, {}), (Strings{"a", "b"}));
  EXPECT_EQ(sortedDifference({}, {"a"}), Strings());
  EXPECT_EQ(sortedDifference({"a", "a"}, {"a"}), Strings());
}

}  // namespace
}  // namespace tarn
