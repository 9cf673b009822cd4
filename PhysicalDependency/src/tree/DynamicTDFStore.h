#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/ObjectReader.h>

#include "journal/Journal.h"
#include "tree/DynamicTDFNode.h"
#include "tree/TreeListener.h"

namespace tarn {

/// Owns the objects of a tree and finds each by its path, in a hash index that stores no paths. The hash of an object
/// is made from that of its parent, and a path is compared with an object component by component, from the end upwards.
/// Objects are added and removed only by this class, which updates the index and the children of the parent together.
/// So both hold the same objects, and with an object all objects above it exist.
class [[gnu::visibility("hidden")]] DynamicTDF::NodeStore final : public ObjectReader {
 public:
  /// The root alone.
  NodeStore();
  ~NodeStore() override;
  NodeStore(NodeStore const&) = delete;
  NodeStore& operator=(NodeStore const&) = delete;

  [[nodiscard]] Node& root() const noexcept {
    return *root_;
  }
  /// Return null when there is no such object or parameter. They do not throw.
  [[nodiscard]] Node* find(std::string_view path) const;
  [[nodiscard]] Node::ParamVal const* findParam(std::string_view objPath, std::string_view name) const;

  [[nodiscard]] ObjectHandle findObject(std::string_view path) const override;
  [[nodiscard]] ObjectHandle findSingleton(ObjectHandle const& parent, std::string_view type) const override;
  void getChildren(ObjectHandle const& parent, std::string_view type, std::vector<Child>& out) const override;
  [[nodiscard]] std::string const* findParameterValue(ObjectHandle const& object, std::string_view name) const override;

  /// The number of objects, including the root.
  [[nodiscard]] std::size_t size() const noexcept {
    return size_;
  }
  /// Returns whether, since the last reset, there was an object that is listed under another path than it is found
  /// under.
  [[nodiscard]] bool hasOtherwiseListed() const noexcept {
    return hasOtherwiseListed_;
  }
  void setOtherwiseListed(bool has) noexcept {
    hasOtherwiseListed_ = has;
  }

  /// Another number after every change to objects, parameters and values. Objects count by themselves; who changes a
  /// parameter calls `noteChange` before.
  [[nodiscard]] std::uint64_t revision() const noexcept {
    return revision_;
  }
  void noteChange() noexcept {
    ++revision_;
  }

  /// Null, which it is at the start, for none. The store reports changes of objects to it; who changes a parameter
  /// reports that. `reset` reports nothing.
  void setListener(TreeListener * listener) noexcept {
    listener_ = listener;
  }
  [[nodiscard]] TreeListener* listener() const noexcept {
    return listener_;
  }

  /// Null, which it is at the start, for none. The store records changes of objects in it; who changes a parameter
  /// records that. Not owned.
  void setJournal(Journal * journal) noexcept {
    journal_ = journal;
  }
  /// Null also while the journal does not record.
  [[nodiscard]] Journal* journal() const noexcept {
    return journal_ != nullptr && journal_->isRecording() ? journal_ : nullptr;
  }
  /// The position in the journal, if it records.
  [[nodiscard]] std::optional<Journal::Position> positionInJournal() const noexcept {
    return journal() == nullptr ? std::nullopt : std::optional(journal()->position());
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

  /// Removed objects that a journal keeps, and the step that puts them back.
  class Removed {
   public:
    explicit Removed(NodeStore& store) noexcept : store_(&store) {}
    Removed(Removed&&) noexcept = default;
    Removed& operator=(Removed&&) = delete;
    ~Removed();
    void take(std::unique_ptr<Node> node) noexcept;
    void operator()() noexcept;

   private:
    [[nodiscard]] std::unique_ptr<Node> takeBack() noexcept;

    NodeStore* store_;
    /// The one that was removed last. The others follow as in a bucket.
    std::unique_ptr<Node> last_;
  };

  /// Adds the step for the objects that are removed next, so that removing them does not fail. Null when no journal
  /// records.
  [[nodiscard]] Removed* recordRemoval();
  /// Removes an object that has no children and is not the root. Gives it to `removed`, unless that is null.
  void removeLeaf(Node & node, Removed * removed) noexcept;
  /// Takes back the creation of `made` and of the objects above it, up to but not including `kept`. Nothing below or
  /// beside them may have been created since. `before` is the position in the journal before the creation.
  void takeBackCreation(Node const& kept, Node& made, std::optional<Journal::Position> const& before) noexcept;

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
  [[nodiscard]] static Node const& nodeOf(ObjectHandle const& object) noexcept {
    return *static_cast<Node const*>(objectOf(object));
  }
  [[nodiscard]] static std::size_t foundPlace(std::string_view path) noexcept;
  [[nodiscard]] Node* search(std::string_view path) const;
  void forget(Node const& node) noexcept;
  Node& insert(Node * parent, PathHash const& hash, std::string_view component);
  [[nodiscard]] std::unique_ptr<Node> unlink(Node & node) noexcept;
  void link(std::unique_ptr<Node> node) noexcept;
  void putBack(std::unique_ptr<Node> node) noexcept;
  void swapContent(NodeStore & other) noexcept;
  void forgetLookUps() noexcept;
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
  Journal* journal_ = nullptr;
  std::vector<Node*> lastLoad_;
  Node* root_ = nullptr;

  /// Recently found objects, each at the index that the end of its path gives. Walks and rules ask for the same few
  /// objects again and again: the current object, its parent and siblings, and the object that holds the choices. Such
  /// a look-up costs one comparison of the path with the object. Several threads may read at once: an element is only a
  /// guess, and the object to which it points does not change meanwhile.
  static constexpr unsigned foundBits = 6;
  mutable std::array<std::atomic<Node*>, 1U << foundBits> found_{};
};

}  // namespace tarn
