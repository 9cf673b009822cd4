#pragma once

#include <cstddef>
#include <string>

#include <tarn/DynamicTDF.h>
#include <tarn/ModelState.h>

#include "tree/DynamicTDFNode.h"
#include "tree/DynamicTDFStore.h"

namespace tarn {

/// Puts the values of a state into a tree that was loaded from one with the same objects in the same order, object by
/// object. Then the tree is as if it had been loaded anew, without having been built anew.
///
/// When an operation returns false, or `isComplete` does in the end, the objects are others. The tree then holds some
/// of either state and is to be loaded by `initialise`.
class [[gnu::visibility("hidden")]] DynamicTDF::StateLoad {
 public:
  StateLoad(DynamicTDF & tree, bool skipEmpty) : store_(*tree.nodes_), skipEmpty_(skipEmpty) {}

  /// The next object is `path`, and its values are those that it has.
  [[nodiscard]] bool keep(std::string const& path) {
    if (at_ >= store_.lastLoad().size() || !store_.isFoundUnder(*store_.lastLoad()[at_], path)) return false;
    ++at_;
    return true;
  }
  /// The same of an object that is known to be the next one.
  void keepNext() noexcept {
    ++at_;
  }
  /// The next object is `path`, and these are its values.
  [[nodiscard]] bool take(std::string const& path, ObjectState const& values) {
    return keep(path) && store_.lastLoad()[at_ - 1]->refill(values, skipEmpty_, store_.names());
  }
  [[nodiscard]] bool isComplete() const noexcept {
    return at_ != 0 && at_ == store_.lastLoad().size();
  }

 private:
  NodeStore& store_;
  bool skipEmpty_;
  std::size_t at_ = 0;
};

}  // namespace tarn
