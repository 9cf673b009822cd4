#pragma once

#include <string>

namespace tarn {

class DynamicTDF;
class ModifiedQuantityTracker;
class PotentialUpdateTracker;

/// Finds out whether a new object of a named type would hold anything: one under a name that no user has is put into
/// the active tree in the middle of a walk, which then goes through it like any other, and is taken out again.
///
/// Nothing may remain of it. While it exists the active tree does not record and quantity types are not tracked; what
/// the walk leaves of it in the active tree, the guide and the potential items goes with it. Bounds alone are
/// tracked as ever, and those of the probe are published. There is one probe at a time.
class NamedObjectProbe {
 public:
  /// All are used for as long as the probe lives.
  NamedObjectProbe(DynamicTDF& activeTDF, DynamicTDF& guideTDF, PotentialUpdateTracker& potentialTracker,
                   ModifiedQuantityTracker& quantityTracker) noexcept
      : activeTDF_(activeTDF),
        guideTDF_(guideTDF),
        potentialTracker_(potentialTracker),
        quantityTracker_(quantityTracker) {}
  NamedObjectProbe(NamedObjectProbe const&) = delete;
  NamedObjectProbe& operator=(NamedObjectProbe const&) = delete;

  [[nodiscard]] bool inTestNamedObject() const noexcept { return !testNamedObjectPath_.empty(); }
  /// False of any path while there is no probe, also of the root's, which is the empty text.
  [[nodiscard]] bool isTestNamedObjectPath(std::string const& path) const noexcept {
    return inTestNamedObject() && path == testNamedObjectPath_;
  }

  void createTestNamedObject(std::string const& objPath, std::string const& type);
  /// If it fails it may be called again, and cannot fail while there are no potential items.
  void deleteTestNamedObject();

  /// Forgets where the probe is, and nothing else.
  void clearPath() noexcept { testNamedObjectPath_.clear(); }

 private:
  DynamicTDF& activeTDF_;
  DynamicTDF& guideTDF_;
  PotentialUpdateTracker& potentialTracker_;
  ModifiedQuantityTracker& quantityTracker_;
  std::string testNamedObjectPath_;  // empty while there is no probe
};

}  // namespace tarn
