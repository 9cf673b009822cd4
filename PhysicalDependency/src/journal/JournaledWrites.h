#pragma once

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "journal/Journal.h"

/// Writes to values and containers that a journal can undo. With null for the journal they only write. When they throw,
/// nothing has changed. The written value must stay at its address until the step is undone or forgotten. Entries of a
/// map do so, because no entry is destroyed while a journal records.
namespace tarn::journaled {

template <class Value>
struct Assigned {
  void operator()() noexcept {
    static_assert(std::is_nothrow_swappable_v<Value>);
    using std::swap;
    swap(*place, other);
  }

  Value* place;
  Value other;
};

/// Also clears a container: assign an empty one.
template <class Value>
void assign(Journal* journal, Value& place, Value value) {
  Assigned<Value> assigned{&place, std::move(value)};
  if (journal == nullptr) return assigned();
  // The step exchanges the two values, so it also makes the change.
  journal->add(std::move(assigned))();
}

template <class Item>
void append(Journal* journal, std::vector<Item>& list, Item item) {
  Journal::perform(
      journal, [&] { list.push_back(std::move(item)); }, [&list]() noexcept { list.pop_back(); });
}

template <class Entries>
struct Inserted {
  void operator()() noexcept { entries->erase(place); }

  Entries* entries;
  /// Erasing the entry and undoing that keeps it at its address, and so the position.
  typename Entries::iterator place;
};

/// Inserts an entry of a map or a set, unless there is one with its key. Returns the position and whether it is new.
template <class Entries, class... Value>
std::pair<typename Entries::iterator, bool> emplace(Journal* journal, Entries& entries, typename Entries::key_type key,
                                                    Value&&... value) {
  Journal::Prepared<Inserted<Entries>> step;
  if (journal != nullptr) {
    if (auto const present = entries.find(key); present != entries.end()) return {present, false};
    step = journal->prepare(Inserted<Entries>{&entries, {}});
  }
  std::pair<typename Entries::iterator, bool> result;
  if constexpr (sizeof...(Value) == 0) {
    result = entries.insert(std::move(key));
  } else {
    result = entries.try_emplace(std::move(key), std::forward<Value>(value)...);
  }
  if (step) {
    step->place = result.first;
    journal->keep(std::move(step));
  }
  return result;
}

/// Erases several entries of a map or a set in one step.
template <class Entries>
class Erasing {
 public:
  Erasing(Journal* journal, Entries& entries) : entries_(entries) {
    if (journal != nullptr) erased_ = &journal->add(Erased{&entries, {}}).erased;
  }
  /// Returns the next position.
  typename Entries::iterator erase(typename Entries::iterator place) noexcept {
    if (erased_ == nullptr) return entries_.erase(place);
    auto const next = std::next(place);
    erased_->insert(entries_.extract(place));
    return next;
  }

 private:
  struct Erased {
    void operator()() noexcept { entries->merge(erased); }

    Entries* entries;
    Entries erased;
  };

  Entries& entries_;
  Entries* erased_ = nullptr;
};

}  // namespace tarn::journaled
