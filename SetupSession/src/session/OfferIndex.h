#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include <tarn/ProvisionalTDF.h>
#include <tarn/session/Item.h>

namespace tarn::session {

/// The items that are on offer, for questions about one of them. The provisional state lists them, and it would take
/// too long to search the list for one item of very many.
///
/// A change is made in two parts, so that it cannot be made by halves: `begin` may fail, and then nothing has changed;
/// `finish` and `abandon` cannot.
class OfferIndex {
 public:
  class Change {
    friend class OfferIndex;
    std::vector<std::string> gained_;
    std::vector<std::string> lost_;
  };

  explicit OfferIndex(ProvisionalTDF const& state) {
    for (std::string const& path : state.getAvailPotObjects()) keys_.insert(path);
    for (auto const& [path, name] : state.getAvailPotParams()) keys_.insert(keyOf({path, name}));
  }

  [[nodiscard]] bool has(Item const& item) const { return keys_.contains(keyOf(item)); }

  /// The items of `gained` are not on offer, those of `lost` are.
  [[nodiscard]] Change begin(std::vector<Item> const& gained, std::vector<Item> const& lost) {
    Change change;
    change.gained_.reserve(gained.size());
    change.lost_.reserve(lost.size());
    for (Item const& item : gained) change.gained_.push_back(keyOf(item));
    for (Item const& item : lost) change.lost_.push_back(keyOf(item));
    try {
      for (std::string const& key : change.gained_) keys_.insert(key);
    } catch (...) {
      abandon(change);
      throw;
    }
    return change;
  }
  void finish(Change const& change) noexcept {
    for (std::string const& key : change.lost_) keys_.erase(key);
  }
  void abandon(Change const& change) noexcept {
    for (std::string const& key : change.gained_) keys_.erase(key);
  }

 private:
  /// A name holds no line end, so keys of parameters differ from all paths.
  static std::string keyOf(Item const& item) { return item.isParam() ? item.path + '\n' + *item.name : item.path; }

  std::unordered_set<std::string> keys_;
};

}  // namespace tarn::session
