#pragma once

#include <string>

#include <tarn/DynamicTDF.h>

#include "tree/DynamicTDFImpl.h"

namespace tarn {

/// One object of a tree, looked up once for many questions about its parameters. Call `moveTo` again after an object of
/// the tree was created or deleted.
class DynamicTDFObjectAt {
 public:
  explicit DynamicTDFObjectAt(DynamicTDF const& tree) noexcept : store_(DynamicTDFAccess::storeOf(tree)) {}

  void moveTo(std::string const& objPath) { node_ = store_.find(objPath); }

  /// Returns null when there is no such object or it has no such parameter.
  [[nodiscard]] std::string const* findValue(std::string const& name) const noexcept {
    if (node_ == nullptr) return nullptr;
    auto const* const param = node_->params.find(name);
    return param == nullptr ? nullptr : &param->value();
  }

 private:
  DynamicTDFAccess::NodeStore const& store_;
  DynamicTDFAccess::Node const* node_ = nullptr;
};

}  // namespace tarn
