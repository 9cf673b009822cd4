#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tree/DynamicTDFNode.h"

namespace tarn {

/// Owns the objects of a tree and finds each by its path, in a hash index that keeps no path: the hash of an object is
/// made from that of its parent, and a text is compared with an object from the end upwards, component by component.
/// Objects enter and leave through this class only, and with the index the children of their parent change; so the two
/// hold the same objects, and with an object all those above it are present.
class [[gnu::visibility("hidden")]] DynamicTDF::NodeStore {
 public:
  /// The root alone.
  NodeStore();
  ~NodeStore();
  NodeStore(NodeStore const&) = delete;
  NodeStore& operator=(NodeStore const&) = delete;

  [[nodiscard]] Node& root() const noexcept {
    return *root_;
  }
  /// Null when there is none; of a parameter, also when there is no such object. Neither fails.
  [[nodiscard]] Node* find(std::string_view path) const;
  [[nodiscard]] Node::ParamVal const* findParam(std::string_view objPath, std::string_view name) const;

  /// How many objects there are, the root included.
  [[nodiscard]] std::size_t size() const noexcept {
    return size_;
  }
  /// Whether there was an object, since the last reset, that is listed under another path than it is found under.
  [[nodiscard]] bool hasOtherwiseListed() const noexcept {
    return hasOtherwiseListed_;
  }

  /// Another number after every change to objects, parameters and values. Objects count by themselves; who changes a
  /// parameter calls `noteChange` before.
  [[nodiscard]] std::uint64_t revision() const noexcept {
    return revision_;
  }
  void noteChange() noexcept {
    ++revision_;
  }

  /// The types and parameter names of the tree.
  [[nodiscard]] NamePool& names() noexcept {
    return names_;
  }

  /// The object at `path`, made together with what is missing above it. A path without components is the root's. Throws
  /// the `Error` of `TDFPath` when it cannot be read, and then, as also without memory, makes nothing. `present`, if
  /// given, becomes the lowest object of the path that there was.
  Node& create(std::string const& path, Node** present = nullptr);

  /// The child with this component, which is one that `TDFPath` accepts and has its leading "/"; made if it is missing.
  Node& findCreateChild(Node & parent, std::string_view component);

  /// Removes an object that has no children left and is not the root.
  void removeLeaf(Node & node) noexcept;
  /// Removes `made` and the objects above it up to `kept`, which stays. None of them has another child.
  void removeUpTo(Node const& kept, Node& made) noexcept;

  /// Whether the object is the one that `find` gives for the path.
  [[nodiscard]] bool isFoundUnder(Node const& node, std::string_view path) const;

  /// The objects of a load that made the whole tree, in its order. None once an object or a parameter has come or an
  /// object has gone: then the tree is not what was loaded any more, but for values.
  [[nodiscard]] std::vector<Node*> const& lastLoad() const noexcept {
    return lastLoad_;
  }
  void rememberLoad(std::vector<Node*> objects) noexcept {
    lastLoad_ = std::move(objects);
  }
  void forgetLoad() noexcept {
    lastLoad_.clear();
  }

  /// Back to the root alone. Every other object, and the old root, are gone. Without memory, nothing is.
  void reset();

 private:
  [[nodiscard]] static std::size_t foundPlace(std::string_view path) noexcept;
  [[nodiscard]] Node* search(std::string_view path) const;
  [[nodiscard]] Node* searchAround(std::string_view path) const;
  void forget(Node const& node) const noexcept;
  Node& insert(Node * parent, PathHash const& hash, std::string_view component);
  [[nodiscard]] std::size_t bucketOf(PathHash const& hash) const noexcept;
  void grow();
  void clear() noexcept;

  /// Read by all objects, so it goes after them.
  NamePool names_;
  /// As many as a power of two, and at least as many as objects. Each holds a chain, mostly of one.
  std::vector<std::unique_ptr<Node>> buckets_;
  std::size_t size_ = 0;
  std::uint64_t revision_ = 0;
  bool hasOtherwiseListed_ = false;
  std::vector<Node*> lastLoad_;
  Node* root_ = nullptr;

  /// What was found lately, each at the place that the end of its path gives. Walks and rules ask for the same few
  /// objects again and again: the object at hand, its parent and neighbours, the one that holds the choices. That costs
  /// one comparison of texts.
  struct Found {
    std::string path;
    Node* node = nullptr;
  };
  static constexpr unsigned foundBits = 6;
  mutable std::array<Found, 1U << foundBits> found_;
  /// What was found last that was in none of those places.
  mutable Node* lastSearched_ = nullptr;

  /// An object with its path, kept by the last look-up that had many components to compare. Questions come in the order
  /// of a walk, so the next ones most often pass it on the way up and compare the rest at once. Shallow trees have
  /// none.
  mutable Node const* landmark_ = nullptr;
  mutable std::string landmarkPath_;
};

}  // namespace tarn
