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
#include "tree/TreeListener.h"

namespace tarn {

/// Owns the objects of a tree and finds each by its path, in a hash index that stores no paths. The hash of an object
/// is made from that of its parent, and a path is compared with an object component by component, from the end upwards.
/// Objects are added and removed only by this class, which updates the index and the children of the parent together.
/// So both hold the same objects, and with an object all objects above it exist.
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
  /// Return null when there is no such object or parameter. They do not throw.
  [[nodiscard]] Node* find(std::string_view path) const;
  [[nodiscard]] Node::ParamVal const* findParam(std::string_view objPath, std::string_view name) const;

  /// The number of objects, including the root.
  [[nodiscard]] std::size_t size() const noexcept {
    return size_;
  }
  /// Returns whether, since the last reset, there was an object that is listed under another path than it is found
  /// under.
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

  /// Null, which it is at the start, for none. The store tells it of objects; who changes a parameter tells it of that.
  /// `reset` tells it nothing.
  void setListener(TreeListener * listener) noexcept {
    listener_ = listener;
  }
  [[nodiscard]] TreeListener* listener() const noexcept {
    return listener_;
  }

  /// The types and parameter names of the tree.
  [[nodiscard]] NamePool& names() noexcept {
    return names_;
  }

  /// Creates the object at `path` and all missing objects above it, and returns it. A path without components is the
  /// root. Throws the `Error` of `TDFPath` when it cannot be read. Then, and without memory, nothing is created.
  /// `present`, if given, becomes the lowest object of the path that existed before.
  Node& create(std::string const& path, Node** present = nullptr);

  /// Returns the child with this component, and creates it if it is missing. `component` has its leading "/" and must
  /// be one that `TDFPath` accepts.
  Node& findCreateChild(Node & parent, std::string_view component);

  /// Removes an object that has no children and is not the root.
  void removeLeaf(Node & node) noexcept;
  /// Removes `made` and the objects above it, up to but not including `kept`. None of them may have another child.
  void removeUpTo(Node const& kept, Node& made) noexcept;

  /// Returns whether the object is the one that `find` returns for the path.
  [[nodiscard]] static bool isFoundUnder(Node const& node, std::string_view path) noexcept;

  /// The objects of the load that made the whole tree, in the order of the load. Empty once an object or parameter was
  /// added or an object removed: then the tree differs from what was loaded by more than values and removed parameters.
  [[nodiscard]] std::vector<Node*> const& lastLoad() const noexcept {
    return lastLoad_;
  }
  void rememberLoad(std::vector<Node*> objects) noexcept {
    lastLoad_ = std::move(objects);
  }
  void forgetLoad() noexcept {
    lastLoad_.clear();
  }

  /// Removes all objects and makes a new root. Without memory it throws and removes nothing.
  void reset();

 private:
  [[nodiscard]] static std::size_t foundPlace(std::string_view path) noexcept;
  [[nodiscard]] Node* search(std::string_view path) const;
  void forget(Node const& node) const noexcept;
  Node& insert(Node * parent, PathHash const& hash, std::string_view component);
  [[nodiscard]] std::size_t bucketOf(PathHash const& hash) const noexcept;
  void grow();
  void clear() noexcept;

  /// All objects refer to it, so it is destroyed after them.
  NamePool names_;
  /// Their number is a power of two and at least the number of objects. Each holds a chain, mostly of one object.
  std::vector<std::unique_ptr<Node>> buckets_;
  std::size_t size_ = 0;
  std::uint64_t revision_ = 0;
  bool hasOtherwiseListed_ = false;
  TreeListener* listener_ = nullptr;
  std::vector<Node*> lastLoad_;
  Node* root_ = nullptr;

  /// Recent look-ups, each at the index that the end of its path gives. Walks and rules ask for the same few objects
  /// again and again: the current object, its parent and siblings, and the object that holds the choices. Such a
  /// look-up costs one comparison of strings.
  struct Found {
    std::string path;
    Node* node = nullptr;
  };
  static constexpr unsigned foundBits = 6;
  mutable std::array<Found, 1U << foundBits> found_;
};

}  // namespace tarn
