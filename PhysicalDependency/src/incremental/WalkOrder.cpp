#include "incremental/WalkOrder.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "journal/JournaledWrites.h"

namespace tarn {

void WalkOrder::apply(std::vector<std::string>& list, Journal* journal) {
  if (replacements_.empty()) return;
  if (journal != nullptr) {
    // The journal keeps the former ones; these copies are changed.
    journaled::assign(journal, list, std::vector<std::string>(list));
    journaled::assign(journal, visits_, std::vector<VisitRef>(visits_));
  }
  std::stable_sort(replacements_.begin(), replacements_.end(),
                   [](Replacement const& a, Replacement const& b) { return comesBefore(a.visit, b.visit); });
  auto const start = std::lower_bound(visits_.begin(), visits_.end(), replacements_.front().visit, comesBefore);
  auto const kept = static_cast<std::size_t>(start - visits_.begin());
  std::size_t size = list.size();
  for (Replacement const& replacement : replacements_) size += replacement.texts.size();
  // All memory comes first, so that the list does not get lost half way.
  std::vector<VisitRef> const visitsOfTail(start, visits_.end());
  visits_.reserve(size);
  list.reserve(size);
  std::vector<std::string> tail;
  tail.reserve(list.size() - kept);
  std::move(list.begin() + static_cast<std::ptrdiff_t>(kept), list.end(), std::back_inserter(tail));
  list.resize(kept);
  visits_.resize(kept);

  std::size_t at = 0;
  auto const take = [&](std::size_t end) {
    for (; at < end; ++at) {
      list.push_back(std::move(tail[at]));
      visits_.push_back(visitsOfTail[at]);
    }
  };
  for (Replacement& replacement : replacements_) {
    auto const from = visitsOfTail.begin() + static_cast<std::ptrdiff_t>(at);
    take(static_cast<std::size_t>(std::lower_bound(from, visitsOfTail.end(), replacement.visit, comesBefore) -
                                  visitsOfTail.begin()));
    while (at < visitsOfTail.size() && !comesBefore(replacement.visit, visitsOfTail[at])) ++at;
    for (std::string& text : replacement.texts) {
      list.push_back(std::move(text));
      visits_.push_back(replacement.visit);
    }
  }
  take(visitsOfTail.size());
  replacements_.clear();
}

void WalkOrder::clear() noexcept {
  visits_.clear();
  replacements_.clear();
}

}  // namespace tarn
