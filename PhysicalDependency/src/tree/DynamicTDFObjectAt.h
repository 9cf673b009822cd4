#pragma once

#include <string>

#include <tarn/DynamicTDF.h>

#include "tree/DynamicTDFNode.h"
#include "tree/DynamicTDFStore.h"

namespace tarn {

/// One object of a tree, looked up once for many questions about its parameters. To be moved anew when an object of the
/// tree has come or gone.
class [[gnu::visibility("hidden")]] DynamicTDF::ObjectAt {
 public:
  explicit ObjectAt(DynamicTDF const& tree) noexcept : store_(*tree.nodes_) {}

  void moveTo(std::string const& objPath) {
    node_ = store_.find(objPath);
  }

  /// Null when the object has no such parameter, or when there is no such object.
  [[nodiscard]] std::string const* findValue(std::string const& name) const noexcept {
    if (node_ == nullptr) return nullptr;
    Node::ParamVal const* const param = node_->params.find(name);
    return param == nullptr ? nullptr : &param->value();
  }

 private:
  NodeStore const& store_;
  Node const* node_ = nullptr;
};

}  // namespace tarn
