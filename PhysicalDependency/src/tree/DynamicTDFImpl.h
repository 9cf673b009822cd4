#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tarn/DynamicTDF.h>

#include "tree/ChangeRecord.h"
#include "tree/DynamicTDFNode.h"
#include "tree/DynamicTDFStore.h"

namespace tarn {

/// The objects and the log of a tree, and the edits that keep the two in step. All changes of parameters, by single
/// edits and in bulk, go through `doSetParameter`.
struct [[gnu::visibility("hidden")]] DynamicTDF::Impl final : Journal::Participant {
  class SkipEmptyScope;
  class StateWalk;

  explicit Impl(bool recordUpdates) : changes_(recordUpdates) {}
  void noteAtMark(Journal & journal) override;

  /// The path of `child` as listings give it. `parentPath` is the path of its parent.
  [[nodiscard]] static std::string childPath(std::string const& parentPath, Node const& child);
  Node& findCreateNode(std::string const& path);
  void deleteObject(std::string const& path);
  bool deleteNodeAndChildren(std::string const& path);
  void doSetParameter(std::string const& objPath, std::string const& name, std::string const& value, Node& node);
  void doSetParameter(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues,
                      std::string const& value, Node& node);
  template <class Change>
  void changeObject(std::string const& path, Change const& change);
  template <class Change>
  void recordingModified(std::string const& objPath, std::string const& name, Node& node, Node::ParamVal const& param,
                         Change const& change);
  void tellParamSet(Node const& node, std::string_view name) const noexcept;
  void tellParam(Node const& node, std::string_view name) const noexcept;
  Node::Params::Iterator eraseParam(std::string const& objPath, Node& node, Node::Params::Iterator param);
  template <class... Initial>
  void addParameter(std::string const& objPath, std::string const& name, Node& node, Initial const&... initial);
  void setParameters(std::string topPath, ModelTDF const& model);
  Node& setParameters(std::string const& objPath, ObjectState const& values);
  void refreshParameter(ModelState & state, std::string const& rootPath, std::string const& objPath,
                        std::string const& name, Journal* journal) const;
  bool refill(std::vector<StateRange> const& parts, bool skipEmpty);
  /// `self` is the tree to which this belongs.
  void copyNodeAndChildren(DynamicTDF const& self, Node const& sourceTop);
  [[nodiscard]] static std::vector<std::string> listedChildrenNotIn(DynamicTDF const& self, Node const& sourceNode,
                                                                    std::string const& path);
  void copyNodeParameters(Node const& sourceNode, Node& targetNode, std::string const& objPath);
  void deleteObsoleteChildren(Node const& sourceNode, Node const& targetNode, std::string const& path);
  void clear();

  // The steps that undo a change of a parameter. The names are those of the pool.
  struct AddedParam;
  struct ChangedParam;
  struct ErasedParam;

  NodeStore nodes_;
  ChangeRecord changes_;
  /// Set during a bulk load that asks for it. `doSetParameter` then ignores empty values.
  bool skipEmptyValues_ = false;
};

/// Gives the library's own sources the objects of a tree.
struct DynamicTDFAccess {
  using Node = DynamicTDF::Node;
  using NodeStore = DynamicTDF::NodeStore;

  /// All later changes of the tree are recorded in `journal`, which must outlive it. `swap` is not recorded, and the
  /// journal goes with the content. To be called once.
  static void attach(DynamicTDF& tree, Journal& journal) noexcept {
    tree.impl_->attachTo(journal);
    tree.impl_->nodes_.setJournal(&journal);
  }

  /// As `DynamicTDF::refreshState`. The changes of `state` are recorded in `journal`, unless it is null.
  static void refreshState(DynamicTDF const& tree, ModelState& state, std::string const& rootPath, Journal* journal);

  [[nodiscard]] static NodeStore& storeOf(DynamicTDF& tree) noexcept { return tree.impl_->nodes_; }
  [[nodiscard]] static NodeStore const& storeOf(DynamicTDF const& tree) noexcept { return tree.impl_->nodes_; }
};

}  // namespace tarn
