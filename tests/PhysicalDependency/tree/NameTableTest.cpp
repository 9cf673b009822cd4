// Undoing insertions and erasures in tables of one and of several chunks.

#include "tree/NameTable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace tarn {
namespace {

/// A table of numbers. The names are "p1000" and so on, so their order is that of the numbers.
class NumberTable {
 public:
  auto insert(int number) { return table_.insert(names_.at(static_cast<std::size_t>(number)), int{number}); }
  auto takeOut(int number) { return table_.takeOut(table_.at(names_.at(static_cast<std::size_t>(number)))); }
  [[nodiscard]] bool holds(int number) { return table_.find(names_.at(static_cast<std::size_t>(number))) != nullptr; }
  [[nodiscard]] std::vector<int> content() const {
    std::vector<int> numbers;
    for (auto const& entry : table_) numbers.push_back(entry.value);
    return numbers;
  }
  NameTable<int>& table() { return table_; }

 private:
  std::vector<std::string> const names_ = [] {
    std::vector<std::string> names;
    for (int i = 1000; i < 2000; ++i) names.push_back("p" + std::to_string(i));
    return names;
  }();
  NameTable<int> table_;
};

std::vector<int> upTo(int end) {
  std::vector<int> numbers(static_cast<std::size_t>(end));
  for (int i = 0; i < end; ++i) numbers[static_cast<std::size_t>(i)] = i;
  return numbers;
}

TEST(NameTable, AnInsertionThatSplitAChunkIsTakenBack) {
  NumberTable numbers;
  for (int i = 0; i < 128; ++i) numbers.insert(i);
  auto const last = numbers.insert(200);
  ASSERT_TRUE(last.split);
  numbers.table().takeBack(last);
  EXPECT_EQ(numbers.content(), upTo(128));
}

TEST(NameTable, AnEntryThatWasAloneInItsChunkIsPutBack) {
  NumberTable numbers;
  for (int i = 0; i < 129; ++i) numbers.insert(i);
  auto other = numbers.takeOut(128);  // alone in the second chunk, with 127
  auto alone = numbers.takeOut(127);
  EXPECT_EQ(numbers.content(), upTo(127));
  numbers.table().putBack(std::move(alone));
  numbers.table().putBack(std::move(other));
  EXPECT_EQ(numbers.content(), upTo(129));
  EXPECT_TRUE(numbers.holds(128));
}

TEST(NameTable, TheOnlyEntryIsPutBack) {
  NumberTable numbers;
  numbers.insert(0);
  auto only = numbers.takeOut(0);
  EXPECT_TRUE(numbers.table().empty());
  numbers.table().putBack(std::move(only));
  EXPECT_EQ(numbers.content(), upTo(1));
}

TEST(NameTable, TheEntryAfterAnErasedOneIsNextAlsoInAnotherChunk) {
  NumberTable numbers;
  for (int i = 0; i < 300; ++i) numbers.insert(i);
  std::vector<int> seen;
  for (auto place = numbers.table().begin(); place != numbers.table().end();) {
    seen.push_back(place->value);
    auto const erased = numbers.table().takeOut(place);
    place = numbers.table().after(erased);
  }
  EXPECT_EQ(seen, upTo(300));
  EXPECT_TRUE(numbers.table().empty());
}

TEST(NameTable, RandomChangesAreUndoneStepByStep) {
  for (unsigned seed = 1; seed <= 10; ++seed) {
    std::mt19937 random(seed);
    NumberTable numbers;
    std::vector<std::function<void()>> undo;
    std::vector<std::vector<int>> contents;
    std::deque<NameTable<int>::Erased> erased;
    bool growing = true;
    for (int i = 0; i < 1200; ++i) {
      contents.push_back(numbers.content());
      if (contents.back().size() > 500) growing = false;
      if (contents.back().size() < 3) growing = true;
      bool const inserts = random() % 8 == 0 ? !growing : growing;
      int number = static_cast<int>(random() % 600);
      if (!inserts && !contents.back().empty()) number = contents.back()[random() % contents.back().size()];
      if (numbers.holds(number)) {
        erased.push_back(numbers.takeOut(number));
        undo.emplace_back([&numbers, &erased] {
          numbers.table().putBack(std::move(erased.back()));
          erased.pop_back();
        });
      } else {
        undo.emplace_back([&numbers, made = numbers.insert(number)] { numbers.table().takeBack(made); });
      }
    }
    for (; !undo.empty(); undo.pop_back(), contents.pop_back()) {
      undo.back()();
      ASSERT_EQ(numbers.content(), contents.back()) << "seed " << seed << ", step " << undo.size();
      for (int number : {0, 100, 300, 599}) {
        bool const wasThere = std::binary_search(contents.back().begin(), contents.back().end(), number);
        ASSERT_EQ(numbers.holds(number), wasThere) << "seed " << seed << ", step " << undo.size();
      }
    }
  }
}

}  // namespace
}  // namespace tarn
