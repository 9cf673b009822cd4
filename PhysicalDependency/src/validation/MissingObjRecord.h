#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

/// The absent required objects of one child rule while a walk tries them out one by one: which are still to come and
/// which proved to be needed. One group at a time; a group is a single singleton or a set of named objects.
///
///     record.beginNamed("/Case", "Domain", {"rotor", "stator"});
///     record.matches("/Case/Domain:rotor");   // true: this is one of them
///     record.finishObject(true);              // and it is needed
class MissingObjRecord {
 public:
  /// Opens a group. What an earlier group left behind must have been cleared. Should it fail, the group is open, and to
  /// be cleared as well.
  void beginSingleton(std::string const& objPath, std::string const& type);
  void beginNamed(std::string const& objPath, std::string const& type, std::vector<std::string> const& names);

  /// Whether the object at `path` is one of the group that has not been finished yet. Remembers the parts of the path
  /// for `finishObject`. False while no group is open.
  [[nodiscard]] bool matches(std::string_view path);

  /// Finishes the object that the latest `matches` was asked about; `confirmed` says that it is needed.
  void finishObject(bool confirmed);

  [[nodiscard]] bool isOpen() const noexcept { return active_; }
  [[nodiscard]] bool hasPending() const noexcept { return active_ && !pending_.empty(); }
  [[nodiscard]] bool hasReported() const noexcept { return active_ && !reported_.empty(); }
  /// The names that proved to be needed, sorted; of a singleton, its type. Empty while no group is open.
  [[nodiscard]] std::vector<std::string> getReportedNames() const;

  /// Of the open group; left over from the last one while none is open.
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
