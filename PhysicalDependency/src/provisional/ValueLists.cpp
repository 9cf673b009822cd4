// Lists of values and of names, taken as sets.

#include "provisional/ValueLists.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tarn {

void keepAllowedOnly(SharedStrings const& allowed, std::vector<std::string>& list) {
  std::erase_if(list, [&allowed](std::string const& item) { return !allowed.contains(item); });
}

std::vector<std::string> sortedDifference(std::vector<std::string> const& first,
                                          std::vector<std::string> const& second) {
  auto const asSet = [](std::vector<std::string> const& items) {
    std::vector<std::string_view> set(items.begin(), items.end());
    std::sort(set.begin(), set.end());
    set.erase(std::unique(set.begin(), set.end()), set.end());
    return set;
  };
  auto const wanted = asSet(first);
  auto const excluded = asSet(second);
  std::vector<std::string_view> rest;
  std::set_difference(wanted.begin(), wanted.end(), excluded.begin(), excluded.end(), std::back_inserter(rest));
  return {rest.begin(), rest.end()};
}

}  // namespace tarn
