#pragma once

#include <string_view>

#include "tree/PathHash.h"

namespace tarn {

/// Is told of every single change of a tree, directly before a removal and directly after any other change. Objects are
/// named by the hash of the path under which they are found, because composing the path may fail and is often not
/// needed. A listener must not change the tree.
class TreeListener {
 public:
  /// The parameter is added or removed.
  virtual void onParamSetChange(PathHash const& object, std::string_view name) noexcept = 0;
  /// The parameter has another value or other allowed values.
  virtual void onParamChange(PathHash const& object, std::string_view name) noexcept = 0;
  /// The object is added or removed. Those of its parameters that exist at its removal are removed just before.
  virtual void onObjectSetChange(PathHash const& parent, std::string_view type, PathHash const& object) noexcept = 0;

 protected:
  TreeListener() = default;
  TreeListener(TreeListener const&) = default;
  TreeListener& operator=(TreeListener const&) = default;
  ~TreeListener() = default;
};

}  // namespace tarn
