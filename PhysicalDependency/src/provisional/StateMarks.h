#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/PotentialUpdateTracker.h>

#include "journal/Journal.h"
#include "provisional/Listings.h"
#include "provisional/Outcome.h"

namespace tarn {

class FactMarks;

/// The open marks of a provisional state. A mark takes two things back: the stores, and the lists that a whole walk
/// makes up. While walks are followed, the listings record every change of these lists. Otherwise a mark keeps a copy.
///
/// A mark is known by the number of marks that were open before it.
class StateMarks {
 public:
  /// All are used as long as this exists.
  StateMarks(Journal& stores, Listings& listings, Outcome& outcome) noexcept
      : stores_(stores), listings_(listings), outcome_(outcome) {}
  StateMarks(StateMarks const&) = delete;
  StateMarks& operator=(StateMarks const&) = delete;

  [[nodiscard]] std::size_t mark();
  /// Takes everything back to the mark, and ends it and all later ones.
  void rollback(std::size_t number) noexcept;
  void release(std::size_t number) noexcept;
  [[nodiscard]] std::size_t open() const noexcept { return open_.size(); }

  /// From now on, `marks` are taken back as well; null while walks are not followed. A step of a rollback may call
  /// this.
  void follow(FactMarks* marks) noexcept;

 private:
  struct Lists {
    PotentialUpdateTracker offers;
    std::vector<std::string> emptyParams;
    std::vector<std::string> emptyTypedParams;
    std::vector<std::pair<std::string, std::string>> userNamedTypes;
  };
  struct OpenMark {
    Journal::Mark stores;
    /// One of these two.
    std::optional<Journal::Mark> listings;
    std::optional<Lists> lists;
  };

  void keepLists() noexcept;
  [[nodiscard]] Lists copyOfLists() const;
  void restoreLists(Lists& lists) noexcept;
  [[nodiscard]] std::size_t listingMarksBefore(std::size_t number) const noexcept;

  Journal& stores_;
  Listings& listings_;
  Outcome& outcome_;
  FactMarks* marks_ = nullptr;
  std::vector<OpenMark> open_;
};

}  // namespace tarn
