// The shared list of texts.
#include <tarn/SharedStrings.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <type_traits>

namespace tarn {
namespace {

std::vector<std::string> numbered(int n) {
  std::vector<std::string> items;
  for (int i = 0; i < n; ++i) items.push_back("material " + std::to_string(i));
  return items;
}

TEST(SharedStrings, IsEmptyByDefault) {
  SharedStrings const none;
  EXPECT_TRUE(none.empty());
  EXPECT_EQ(none.size(), 0U);
  EXPECT_EQ(none.begin(), none.end());
  EXPECT_FALSE(none.contains(""));
  EXPECT_EQ(none, SharedStrings(std::vector<std::string>()));
}

TEST(SharedStrings, ReadsLikeAVector) {
  SharedStrings const fluids{"Water", "Air", "Oil"};
  EXPECT_EQ(fluids.size(), 3U);
  EXPECT_EQ(fluids.front(), "Water");
  EXPECT_EQ(fluids[1], "Air");
  EXPECT_EQ(fluids.back(), "Oil");
  std::vector<std::string> const& items = fluids;
  EXPECT_EQ(items, (std::vector<std::string>{"Water", "Air", "Oil"}));
  EXPECT_EQ(std::vector<std::string>(fluids.begin(), fluids.end()), items);
}

TEST(SharedStrings, CopiesShareOneBody) {
  SharedStrings const list(numbered(1000));
  SharedStrings const copy = list;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(&copy.vector(), &list.vector());
  EXPECT_EQ(copy, list);
}

TEST(SharedStrings, ComparesItemsInOrder) {
  EXPECT_EQ((SharedStrings{"a", "b"}), (SharedStrings{"a", "b"}));
  EXPECT_FALSE((SharedStrings{"a", "b"}) == (SharedStrings{"b", "a"}));
  EXPECT_FALSE((SharedStrings{"a"}) == SharedStrings());
  EXPECT_TRUE((SharedStrings{"a"}) == std::vector<std::string>{"a"});
}

TEST(SharedStrings, FindsItemsOfShortAndOfLongLists) {
  for (int const size : {1, 15, 16, 17, 18, 1000}) {
    SharedStrings const list(numbered(size));
    for (std::string const& item : numbered(size)) EXPECT_TRUE(list.contains(item)) << size;
    EXPECT_FALSE(list.contains("material " + std::to_string(size))) << size;
    EXPECT_FALSE(list.contains("")) << size;
    EXPECT_FALSE(list.contains("Material 0")) << size;
  }
}

TEST(SharedStrings, FindsAnItemThatHoldsANulByte) {
  std::vector<std::string> items = numbered(100);
  items.push_back(std::string("a\0b", 3));
  SharedStrings const list(items);
  EXPECT_TRUE(list.contains(std::string_view("a\0b", 3)));
  EXPECT_FALSE(list.contains("a"));
}

TEST(SharedStrings, KnowsWhetherItContainsAllItemsOfAnotherList) {
  SharedStrings const all(numbered(100));
  SharedStrings const some(numbered(20));
  SharedStrings const others{"material 1", "Water"};
  SharedStrings const none;
  // Answers are kept, so each pair is asked twice, and in between comes another one.
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(all.containsAll(some));
    EXPECT_TRUE(all.containsAll(some));
    EXPECT_FALSE(all.containsAll(others));
    EXPECT_FALSE(all.containsAll(others));
    EXPECT_FALSE(some.containsAll(all));
    EXPECT_TRUE(all.containsAll(all));
    EXPECT_TRUE(all.containsAll(none));
    EXPECT_TRUE(none.containsAll(none));
    EXPECT_FALSE(none.containsAll(some));
  }
}

TEST(SharedStrings, DoesNotTakeANewListForOneThatIsGone) {
  SharedStrings const all(numbered(100));
  for (int round = 0; round < 20; ++round) {
    EXPECT_TRUE(all.containsAll(SharedStrings{"material 1", "material 2"}));
    EXPECT_FALSE(all.containsAll(SharedStrings{"material 1", "Water"}));
  }
}

TEST(SharedStrings, CanBeAskedByManyThreadsAtOnce) {
  for (int round = 0; round < 50; ++round) {
    SharedStrings const list(numbered(200));
    SharedStrings const inside(numbered(20));
    SharedStrings const outside{"Water"};
    std::atomic<int> found{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
      threads.emplace_back([list, &inside, &outside, &found] {
        for (int i = 0; i < 400; ++i) found += list.contains("material " + std::to_string(i)) ? 1 : 0;
        for (int i = 0; i < 20; ++i) {
          EXPECT_EQ(list.containsAll(i % 2 == 0 ? inside : outside), i % 2 == 0);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(found, 800);
  }
}

SharedStrings materials() {
  return {"Water", "Air"};
}

TEST(SharedStrings, TheItemsOfATemporaryListAreCopied) {
  static_assert(std::is_same_v<decltype(materials().vector()), std::vector<std::string>>);
  static_assert(!std::is_convertible_v<SharedStrings, std::vector<std::string> const&>);
  std::vector<std::string> const& items = materials().vector();
  EXPECT_EQ(items, (std::vector<std::string>{"Water", "Air"}));
}

}  // namespace
}  // namespace tarn
