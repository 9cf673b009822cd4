#pragma once

#include <string>

namespace tarn {

class ProvisionalFacts;

/// Finds out whether a new object of a named type would hold anything. An object under a name that no user has is put
/// into the active tree in the middle of a walk. The walk goes through it like any other object, and then it is taken
/// out again.
///
/// Nothing of it may remain. While it exists, the active tree does not record and quantity types are not tracked.
/// Everything that the walk leaves of it in the active tree, the guide and the potential items is removed with it. Only
/// bounds are tracked as always, and those of the probe are published. There is one probe at a time.
class NamedObjectProbe {
 public:
  /// `facts` is used for as long as the probe lives.
  explicit NamedObjectProbe(ProvisionalFacts& facts) noexcept : facts_(facts) {}
  NamedObjectProbe(NamedObjectProbe const&) = delete;
  NamedObjectProbe& operator=(NamedObjectProbe const&) = delete;

  [[nodiscard]] bool inTestNamedObject() const noexcept { return !testNamedObjectPath_.empty(); }
  /// False for any path while there is no probe, also for the path of the root, which is the empty string.
  [[nodiscard]] bool isTestNamedObjectPath(std::string const& path) const noexcept {
    return inTestNamedObject() && path == testNamedObjectPath_;
  }

  void createTestNamedObject(std::string const& objPath, std::string const& type);
  /// If it fails it may be called again. It cannot fail while there are no potential items.
  void deleteTestNamedObject();

  /// Forgets where the probe is, and nothing else.
  void clearPath() noexcept { testNamedObjectPath_.clear(); }

 private:
  ProvisionalFacts& facts_;
  std::string testNamedObjectPath_;  // empty while there is no probe
};

}  // namespace tarn
