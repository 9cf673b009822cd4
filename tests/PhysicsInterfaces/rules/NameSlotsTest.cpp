#include <tarn/NameSlots.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarn {
namespace {

/// A list of names with its slots, as users keep them.
class NameSlotsOfAList : public testing::Test {
 public:
  [[nodiscard]] std::string_view operator()(std::size_t position) const { return names_[position]; }

 protected:
  void add(std::string const& name) {
    slots_.reserve(names_.size() + 1, *this);
    names_.push_back(name);
    slots_.add(name, names_.size() - 1);
  }
  [[nodiscard]] std::size_t find(std::string_view name) const { return slots_.find(name, *this); }

  std::vector<std::string> names_;
  NameSlots slots_;
};

TEST_F(NameSlotsOfAList, NothingIsFoundBeforeTheFirstName) {
  EXPECT_EQ(find("Motion"), NameSlots::none);
}

TEST_F(NameSlotsOfAList, ANameIsFoundAtItsPosition) {
  add("Motion");
  add("");
  add("Motion of the Domain");
  EXPECT_EQ(find("Motion"), 0U);
  EXPECT_EQ(find(""), 1U);
  EXPECT_EQ(find("Motion of the Domain"), 2U);
  EXPECT_EQ(find("Motion of"), NameSlots::none);
}

TEST_F(NameSlotsOfAList, TenThousandNamesAreFoundAndNoOther) {
  for (int i = 0; i < 10'000; ++i) add("Option " + std::to_string(i));
  for (int i = 0; i < 10'000; ++i) ASSERT_EQ(find("Option " + std::to_string(i)), static_cast<std::size_t>(i));
  EXPECT_EQ(find("Option 10000"), NameSlots::none);
}

TEST_F(NameSlotsOfAList, NothingIsFoundAfterClear) {
  add("Motion");
  slots_.clear();
  EXPECT_EQ(find("Motion"), NameSlots::none);
}

}  // namespace
}  // namespace tarn
