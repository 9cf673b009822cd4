#pragma once

#include <cstddef>
#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/ModelState.h>

#include "tree/DynamicTDFImpl.h"

namespace tarn {

/// Puts the values of a state, object by object, into a tree that was loaded from a state with the same objects in the
/// same order. The tree is then as if it had been loaded again, but is not rebuilt.
///
/// When an operation returns false, or `isComplete` does at the end, the objects are different. The tree then holds a
/// mixture of both states and must be loaded by `initialise`.
class DynamicTDFStateLoad {
 public:
  DynamicTDFStateLoad(DynamicTDF& tree, bool skipEmpty)
      : DynamicTDFStateLoad(DynamicTDFAccess::storeOf(tree), skipEmpty) {}
  DynamicTDFStateLoad(DynamicTDFAccess::NodeStore& store, bool skipEmpty) : store_(store), skipEmpty_(skipEmpty) {
    store_.noteChange();  // it may change any value
  }

  /// The next object is `path`, and its values are unchanged.
  [[nodiscard]] bool keep(std::string const& path) {
    if (at_ >= store_.lastLoad().size()) return false;
    if (!DynamicTDFAccess::NodeStore::isFoundUnder(*store_.lastLoad()[at_], path)) return false;
    ++at_;
    return true;
  }
  /// The same for an object that is known to be the next one.
  void keepNext() noexcept { ++at_; }
  /// The next object is `path`, and these are its values.
  [[nodiscard]] bool take(std::string const& path, ObjectState const& values) {
    return keep(path) && store_.lastLoad()[at_ - 1]->refill(values, skipEmpty_, store_.names());
  }
  [[nodiscard]] bool isComplete() const noexcept { return at_ != 0 && at_ == store_.lastLoad().size(); }

 private:
  DynamicTDFAccess::NodeStore& store_;
  bool skipEmpty_;
  std::size_t at_ = 0;
};

}  // namespace tarn
