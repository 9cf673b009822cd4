// Which entries to move. An entry that moves down past another one takes along those between the two that read it; one
// that moves up takes along those between that it reads. No other entry changes its place relative to what it reads.
// Context rules, and the entries that have a context, likewise keep their places relative to each other.

#include "lint/EntryOrder.h"

#include <algorithm>
#include <utility>

namespace tarn::rules {

namespace {

constexpr std::size_t none = static_cast<std::size_t>(-1);

bool contains(std::vector<std::size_t> const& sorted, std::size_t entry) {
  return std::binary_search(sorted.begin(), sorted.end(), entry);
}

}  // namespace

void EntryOrder::addRead(Entry reader, Entry read, bool isCertain, std::size_t reason) {
  if (reader == read) return;
  auto& reads = reads_[reader];
  auto const [known, isNew] = known_.try_emplace(reader * reads_.size() + read, reads.size());
  if (isNew) {
    reads.push_back({read, isCertain, reason});
    readers_[read].push_back(reader);
  } else if (auto& former = reads[known->second]; isCertain && !former.isCertain) {
    former = {read, true, reason};
  }
}

std::optional<std::vector<EntryOrder::Entry>> EntryOrder::movedTogether(Entry from, Entry to, bool isDown,
                                                                        std::size_t& totalSteps) const {
  Entry const low = std::min(from, to);
  Entry const high = std::max(from, to);
  std::vector<Entry> moved{from};
  bool isPossible = true;
  auto const add = [&](Entry entry) {
    if (entry < low || entry > high || std::find(moved.begin(), moved.end(), entry) != moved.end()) return;
    bool const canMove = homes_[entry].taken == homes_[from].taken &&
                         (homes_[from].taken == nullptr || homes_[entry].section == homes_[from].section);
    if (entry == to || moved.size() == mostMoved || !canMove) {
      isPossible = false;
    } else {
      moved.push_back(entry);
    }
  };
  auto const addAll = [&](std::vector<Entry> const& sorted) {
    for (auto entry = std::lower_bound(sorted.begin(), sorted.end(), low);
         isPossible && entry != sorted.end() && *entry <= high; ++entry) {
      add(*entry);
    }
  };
  std::size_t steps = 0;
  for (std::size_t i = 0; i < moved.size() && isPossible; ++i) {
    Entry const entry = moved[i];
    std::size_t const work = isDown ? readers_[entry].size() : reads_[entry].size();
    steps += work;
    if (steps > mostSteps || (totalSteps += work) > mostTotalSteps) return std::nullopt;
    if (isDown) {
      for (Entry const reader : readers_[entry]) add(reader);
    } else {
      for (Read const& read : reads_[entry]) add(read.to);
    }
    if (contains(contextRules_, entry)) {
      addAll(withContext_);
      if (keepsContextRules_) addAll(contextRules_);
    } else if (contains(withContext_, entry)) {
      addAll(contextRules_);
    }
  }
  if (!isPossible) return std::nullopt;
  std::sort(moved.begin(), moved.end());
  return moved;
}

std::optional<EntryOrder::Move> EntryOrder::moveDown(Entry reader, Entry read, std::size_t& totalSteps) const {
  auto const& from = homes_[reader];
  auto const& to = homes_[read];
  Move move{{}, read, true};
  if (from.taken != to.taken || (from.taken != nullptr && from.section != to.section)) {
    if (from.taken != nullptr || to.use == nullptr) return std::nullopt;
    move.isUse = true;
    while (move.anchor + 1 < homes_.size() && homes_[move.anchor + 1].use == to.use) ++move.anchor;
  }
  auto moved = movedTogether(reader, move.anchor, true, totalSteps);
  if (!moved) return std::nullopt;
  move.entries = std::move(*moved);
  return move;
}

std::optional<EntryOrder::Move> EntryOrder::moveUp(Entry reader, Entry read, std::size_t& totalSteps) const {
  auto const& from = homes_[read];
  auto const& to = homes_[reader];
  Move move{{}, reader, false};
  if (from.taken != to.taken || (from.taken != nullptr && from.section != to.section)) {
    if (from.taken != nullptr || to.use == nullptr) return std::nullopt;
    move.isUse = true;
    while (move.anchor > 0 && homes_[move.anchor - 1].use == to.use) --move.anchor;
  }
  auto moved = movedTogether(read, move.anchor, false, totalSteps);
  if (!moved) return std::nullopt;
  move.entries = std::move(*moved);
  return move;
}

bool EntryOrder::isCircle(Entry reader, Entry read) {
  if (circles_.empty()) findCircles();
  return circles_[reader] == circles_[read];
}

EntryOrder::Entry EntryOrder::lastRead(Entry reader, Entry read) {
  for (Read const& other : reads_[reader]) {
    if (other.isCertain && other.to > read && !isCircle(reader, other.to)) read = other.to;
  }
  return read;
}

/// The strongly connected parts by Tarjan's method, with its own stack.
void EntryOrder::findCircles() {
  std::size_t const size = reads_.size();
  circles_.assign(size, none);
  std::vector<std::size_t> order(size, none);
  std::vector<std::size_t> lowest(size, none);
  std::vector<Entry> open;  // entered and not yet in a circle
  struct Step {
    Entry entry;
    std::size_t next = 0;
  };
  std::vector<Step> stack;
  std::size_t count = 0;
  auto const enter = [&](Entry entry) {
    order[entry] = lowest[entry] = count++;
    open.push_back(entry);
    stack.push_back({entry});
  };
  for (Entry start = 0; start < size; ++start) {
    if (order[start] != none) continue;
    enter(start);
    while (!stack.empty()) {
      Entry const entry = stack.back().entry;
      if (stack.back().next < reads_[entry].size()) {
        auto const& read = reads_[entry][stack.back().next++];
        if (!read.isCertain) continue;
        if (order[read.to] == none) {
          enter(read.to);
        } else if (circles_[read.to] == none) {
          lowest[entry] = std::min(lowest[entry], order[read.to]);
        }
        continue;
      }
      stack.pop_back();
      if (!stack.empty()) lowest[stack.back().entry] = std::min(lowest[stack.back().entry], lowest[entry]);
      if (lowest[entry] != order[entry]) continue;
      Entry member = none;
      do {
        member = open.back();
        open.pop_back();
        circles_[member] = entry;
      } while (member != entry);
    }
  }
}

std::vector<std::size_t> EntryOrder::shortestCircle(Entry reader, Entry read, std::size_t& totalSteps) const {
  struct Reached {
    Entry from;
    std::size_t reason;
  };
  // Breadth first from `read`, so the first way back is a shortest one.
  std::unordered_map<Entry, Reached> reached{{read, {none, none}}};
  std::vector<Entry> next{read};
  std::size_t steps = 0;
  for (std::size_t i = 0; i < next.size() && !reached.contains(reader); ++i) {
    for (Read const& one : reads_[next[i]]) {
      if (++steps > mostSteps || ++totalSteps > mostTotalSteps) return {};
      bool const isInside = one.isCertain && circles_[one.to] == circles_[reader];
      if (isInside && reached.try_emplace(one.to, Reached{next[i], one.reason}).second) next.push_back(one.to);
    }
  }
  if (!reached.contains(reader)) return {};
  std::vector<std::size_t> reasons;
  for (Entry at = reader; at != read; at = reached.at(at).from) reasons.push_back(reached.at(at).reason);
  for (Read const& one : reads_[reader]) {
    if (one.to == read) reasons.push_back(one.reason);
  }
  std::reverse(reasons.begin(), reasons.end());
  return reasons;
}

}  // namespace tarn::rules
