#include "provisional/StateMarks.h"

#include <algorithm>

#include "incremental/FactMarks.h"

namespace tarn {

std::size_t StateMarks::mark() {
  std::size_t const number = open_.size();
  open_.reserve(number + 1);
  OpenMark made{stores_.mark(), {}, {}};
  try {
    if (marks_ != nullptr) {
      made.listings = listings_.mark();
      marks_->recordIn(listings_.recording());
    } else {
      made.lists = copyOfLists();
    }
  } catch (...) {
    stores_.release(made.stores);
    throw;
  }
  open_.push_back(std::move(made));
  return number;
}

/// Marks of visits are taken back with the listings. So taking the stores back marks nothing.
void StateMarks::rollback(std::size_t number) noexcept {
  OpenMark& mark = open_[number];
  if (marks_ != nullptr) marks_->setRollingBack(true);
  stores_.rollback(mark.stores);
  if (mark.listings) {
    listings_.rollback(*mark.listings, listingMarksBefore(number));
  } else {
    // Walks may have been followed since then. Their lists go.
    while (open_.size() > number + 1) open_.pop_back();
    if (marks_ != nullptr) marks_->lose();
    restoreLists(*mark.lists);
  }
  if (marks_ != nullptr) {
    marks_->setRollingBack(false);
    marks_->recordIn(listings_.recording());
  }
  while (open_.size() > number) open_.pop_back();
}

void StateMarks::release(std::size_t number) noexcept {
  OpenMark& mark = open_[number];
  stores_.release(mark.stores);
  if (mark.listings) listings_.release(*mark.listings, listingMarksBefore(number));
  if (marks_ != nullptr) marks_->recordIn(listings_.recording());
  while (open_.size() > number) open_.pop_back();
}

void StateMarks::follow(FactMarks* marks) noexcept {
  if (marks == nullptr && marks_ != nullptr) keepLists();
  marks_ = marks;
}

std::size_t StateMarks::listingMarksBefore(std::size_t number) const noexcept {
  auto const end = open_.begin() + static_cast<std::ptrdiff_t>(number);
  return static_cast<std::size_t>(
      std::count_if(open_.begin(), end, [](OpenMark const& mark) { return mark.listings.has_value(); }));
}

StateMarks::Lists StateMarks::copyOfLists() const {
  return {outcome_.offers, outcome_.emptyParams, outcome_.emptyTypedParams, outcome_.userNamedTypes};
}

void StateMarks::restoreLists(Lists& lists) noexcept {
  std::swap(outcome_.offers, lists.offers);
  outcome_.emptyParams.swap(lists.emptyParams);
  outcome_.emptyTypedParams.swap(lists.emptyTypedParams);
  outcome_.userNamedTypes.swap(lists.userNamedTypes);
}

/// Walks are not followed any more. So the record of their listings goes, and each open mark gets the lists themselves.
/// Should there be no memory for those of an inner mark, they are empty after a rollback to it, as after a refused
/// edit.
void StateMarks::keepLists() noexcept {
  if (open_.empty()) return;
  Lists now{PotentialUpdateTracker(), {}, {}, {}};
  try {
    now = copyOfLists();
  } catch (...) {
    // The update that ends the following makes them anew.
  }
  for (std::size_t i = open_.size(); i-- > 0;) {
    OpenMark& mark = open_[i];
    if (!mark.listings) continue;
    std::size_t const before = listingMarksBefore(i);
    listings_.rollback(*mark.listings, before);
    mark.listings.reset();
    mark.lists.emplace();
    if (before == 0) {
      restoreLists(*mark.lists);  // the lists themselves, since nobody needs them any more
      continue;
    }
    try {
      *mark.lists = copyOfLists();
    } catch (...) {
      // Empty.
    }
  }
  restoreLists(now);
}

}  // namespace tarn
