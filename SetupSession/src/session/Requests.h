#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/session/Item.h>
#include <tarn/session/Step.h>

namespace tarn::session {

/// Which step asked for what, for questions about one item. It follows the history: a step is added at the end and is
/// removed from there.
class Requests {
 public:
  struct Given {
    std::size_t step;
    std::string value;
  };

  /// When memory runs out, nothing has been added.
  void add(Step const& step);
  void removeLast() noexcept;
  void clear() noexcept;

  /// The last value that was set, or null.
  [[nodiscard]] Given const* lastValue(Item const& item) const;
  /// The last step that made an object at or above `path` by copying or renaming. 0 when there is none.
  [[nodiscard]] std::size_t lastCopy(std::string_view path) const;
  /// Every item for which a value was set, with the values.
  [[nodiscard]] std::map<Item, std::vector<Given>> const& values() const noexcept { return values_; }
  /// Every item that was ever switched on or off.
  [[nodiscard]] std::map<Item, std::size_t> const& decided() const noexcept { return decided_; }
  /// Every object that was ever added, copied or renamed.
  [[nodiscard]] std::map<std::string, std::vector<std::size_t>, std::less<>> const& made() const noexcept {
    return made_;
  }

 private:
  using Values = std::map<Item, std::vector<Given>>;
  using Decided = std::map<Item, std::size_t>;
  using Made = std::map<std::string, std::vector<std::size_t>, std::less<>>;
  /// The requests that a step added, for its removal. Entries of the maps stay, without content.
  struct Added {
    std::vector<Values::iterator> values;
    std::vector<Decided::iterator> decided;
    std::vector<Made::iterator> made;
  };
  static void remove(Added const& added) noexcept;

  Values values_;
  Decided decided_;
  Made made_;
  std::vector<Added> added_;
};

}  // namespace tarn::session
