#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "tree/DynamicTDFNode.h"

namespace tarn {

/// Owns the objects of a tree and knows each under its path, twice: in a map in byte order, which is the order of a
/// state, and in a hash index over the keys of that map, which answers the look-ups. Objects enter and leave through
/// this class only, and with both at once; so the two hold the same objects, each is linked into its parent's children,
/// and with a path all paths above it are present.
class DynamicTDF::NodeStore {
 public:
  /// The root alone.
  NodeStore();

  [[nodiscard]] Node& root() const noexcept { return *root_; }
  /// Null when there is none; of a parameter, also when there is no such object.
  [[nodiscard]] Node* find(std::string_view path) const;
  [[nodiscard]] Node::ParamVal const* findParam(std::string_view objPath, std::string_view name) const;
  /// All objects in byte order of their paths.
  [[nodiscard]] Node::NodeMap const& nodes() const noexcept { return nodes_; }

  /// The types and parameter names of the tree.
  [[nodiscard]] NamePool& names() noexcept { return names_; }

  /// The object at `path`, made together with what is missing above it. A path without components is the root's. Throws
  /// the `Error` of `TDFPath` when it cannot be read, and then makes nothing.
  Node& create(std::string const& path);

  /// Removes an object that has no children left and is not the root.
  void removeLeaf(Node& node);

  /// Back to the root alone. Every other object, and the old root, are gone.
  void reset();

 private:
  Node& insert(std::string_view path, Node* parent, std::string_view type, std::string_view name);

  /// Read by all objects, so it goes after them.
  NamePool names_;
  Node::NodeMap nodes_;
  /// The keys are views of those in nodes_, which stay where they are as long as their entry.
  std::unordered_map<std::string_view, Node*> index_;
  Node* root_ = nullptr;
};

}  // namespace tarn
