#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

namespace tarn::rules {

/// The parameters or the children of one object in their order, and the reads between them. Finds the entries to move
/// when one reads another that comes after it.
///
/// A move that it proposes makes no other entry come before one that it reads, and does not change which context rule
/// an entry depends on. The searches share a limit on their steps. Once it is reached, nothing more is proposed.
class EntryOrder {
 public:
  /// The index of an entry in the list.
  using Entry = std::size_t;

  /// Entries that cannot be moved apart from each other, or not past each other, have these in common.
  struct Home {
    void const* section = nullptr;  // where the entry is written
    void const* taken = nullptr;    // the use of a template by which the object takes it; null when it is its own
    void const* use = nullptr;      // the list that has that use, when it is written among the entries
  };

  /// More entries are not proposed to move.
  static constexpr std::size_t mostMoved = 10;
  static constexpr std::size_t mostSteps = 20'000;          // of one search
  static constexpr std::size_t mostTotalSteps = 5'000'000;  // of all searches in all lists

  explicit EntryOrder(std::size_t size) : reads_(size), readers_(size), homes_(size) {}

  void setHome(Entry entry, Home const& home) { homes_[entry] = home; }
  /// An entry that decides the context of later ones, and one that has a context. Add both in ascending order.
  void addContextRule(Entry entry) { contextRules_.push_back(entry); }
  void addWithContext(Entry entry) { withContext_.push_back(entry); }
  /// Context rules must keep their order, because something depends on the last of them.
  void keepContextRules() { keepsContextRules_ = true; }
  /// `reader` reads `read`. It is certain when `reader` gets a warning whenever it comes first. `reason` is a number of
  /// the caller; that of the first certain read between two entries is kept.
  void addRead(Entry reader, Entry read, bool isCertain, std::size_t reason);

  struct Move {
    std::vector<Entry> entries;  // in their order
    Entry anchor;
    bool isAfter;
    /// The anchor is a use of templates, of which `anchor` is the last or first entry.
    bool isUse = false;
  };
  /// The smallest move after which `reader` comes after `read`, which must be the later one of the two: of `reader` and
  /// those that read it, or of `read` and those that it reads.
  [[nodiscard]] std::optional<Move> moveDown(Entry reader, Entry read, std::size_t& totalSteps) const;
  [[nodiscard]] std::optional<Move> moveUp(Entry reader, Entry read, std::size_t& totalSteps) const;

  /// Whether the two read each other, over other entries or not.
  [[nodiscard]] bool isCircle(Entry reader, Entry read);
  /// The reasons of the shortest circle of certain reads that begins with that of `read` by `reader`. Empty when
  /// it was not found within the limits.
  /// `isCircle` must be true of them.
  [[nodiscard]] std::vector<std::size_t> shortestCircle(Entry reader, Entry read, std::size_t& totalSteps) const;
  /// The last entry that `reader` certainly reads, that comes after it, and that is not in a circle with it; `read`
  /// when there is no later one.
  [[nodiscard]] Entry lastRead(Entry reader, Entry read);

 private:
  struct Read {
    Entry to;
    bool isCertain;
    std::size_t reason;
  };

  /// The entries from `from` on, in the direction of `to`, that must move together with `from` past `to`. Nothing when
  /// `to` is among them, when there are too many, or when one of them cannot be moved there.
  [[nodiscard]] std::optional<std::vector<Entry>> movedTogether(Entry from, Entry to, bool isDown,
                                                                std::size_t& totalSteps) const;
  void findCircles();

  std::vector<std::vector<Read>> reads_;                // of each entry
  std::vector<std::vector<Entry>> readers_;             // of each entry
  std::unordered_map<std::size_t, std::size_t> known_;  // by reader and read: the index in `reads_` of the reader
  std::vector<Home> homes_;
  std::vector<Entry> contextRules_;
  std::vector<Entry> withContext_;
  bool keepsContextRules_ = false;
  std::vector<std::size_t> circles_;  // of each entry: equal numbers are in one circle; found when first needed
};

}  // namespace tarn::rules
