#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The absent required objects of one child rule while a walk tries them out one by one: which are still to come and
/// which turned out to be needed. It holds one group at a time: a single singleton or a set of named objects.
///
///     record.beginNamed("/Case", "Domain", {"rotor", "stator"});
///     record.matches("/Case/Domain:rotor");   // true: it belongs to the group
///     record.finishObject(true);              // it is needed
class MissingObjRecord {
 public:
  /// Opens a group. An earlier group must have been cleared. When this throws, the group is open and must be cleared
  /// too.
  void beginSingleton(std::string const& objPath, std::string const& type);
  void beginNamed(std::string const& objPath, std::string const& type, std::vector<std::string> const& names);

  /// Returns whether the object at `path` belongs to the group and has not been finished yet. Remembers the parts of
  /// the path for `finishObject`. False while no group is open.
  [[nodiscard]] bool matches(std::string_view path);

  /// Finishes the object of the last `matches` call. `confirmed` means that it is needed.
  void finishObject(bool confirmed);

  [[nodiscard]] bool isOpen() const noexcept { return active_; }
  [[nodiscard]] bool hasPending() const noexcept { return active_ && !pending_.empty(); }
  [[nodiscard]] bool hasReported() const noexcept { return active_ && !reported_.empty(); }
  /// Returns the names that turned out to be needed, sorted; for a singleton, its type. Empty while no group is open.
  [[nodiscard]] std::vector<std::string> getReportedNames() const;

  /// These describe the open group, or the last one while none is open.
  [[nodiscard]] std::string const& objPath() const noexcept { return objPath_; }
  [[nodiscard]] std::string const& type() const noexcept { return type_; }
  [[nodiscard]] bool isSingleton() const noexcept { return isSingleton_; }

  /// Closes the group.
  void clear() noexcept;

 private:
  void parse(std::string_view path);

  bool active_ = false;
  std::string objPath_;
  std::string type_;
  std::set<std::string> pending_;
  std::set<std::string> reported_;
  bool isSingleton_ = false;

  std::string parsedParent_;
  std::string parsedType_;
  std::string parsedName_;
};

}  // namespace tarn
