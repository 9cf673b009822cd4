#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ParamAllowedValues.h>

#include "tree/NamePool.h"
#include "tree/NameTable.h"
#include "tree/PathHash.h"

namespace tarn {

/// One object of the tree. It holds its own component of the path and links to its parent, its first and last child,
/// and its siblings. So a subtree of any depth can be walked in either direction without a stack, and a child is
/// removed from a list of any length in constant time. A path is composed from the components when it is needed. Paths
/// stored at every object would take memory quadratic in the depth.
///
/// An object has its component in two forms. It is found under the form that was written when it was created. It is
/// listed under the type, and the name if that differs. The two differ only when a name was written that equals the
/// type.
struct [[gnu::visibility("hidden")]] DynamicTDF::Node {
  class ParamVal;
  using Params = NameTable<ParamVal>;

  /// The children in the order of their creation. The store owns them.
  ///
  /// An object with many children also keeps them by type, each type's children in the order of their creation. A walk
  /// asks an object for every type in its rules. That may be hundreds of types, and most objects have no child of most
  /// of them. With few children it is as fast to compare each.
  class ChildList {
   public:
    class Iterator {
     public:
      using iterator_category = std::forward_iterator_tag;
      using difference_type = std::ptrdiff_t;
      using value_type = Node;
      using pointer = Node*;
      using reference = Node&;

      explicit Iterator(Node* node) noexcept : node_(node) {}
      [[nodiscard]] Node& operator*() const noexcept { return *node_; }
      Iterator& operator++() noexcept {
        node_ = node_->nextSibling;
        return *this;
      }
      friend bool operator==(Iterator const& a, Iterator const& b) noexcept = default;

     private:
      Node* node_;
    };

    [[nodiscard]] Iterator begin() const noexcept { return Iterator(first_); }
    [[nodiscard]] Iterator end() const noexcept { return Iterator(nullptr); }
    [[nodiscard]] bool empty() const noexcept { return first_ == nullptr; }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    [[nodiscard]] Node* first() const noexcept { return first_; }
    [[nodiscard]] Node* last() const noexcept { return last_; }

    /// Calls `visit` with each child of exactly this type, in the order of their creation. Linear in their number.
    template <class Visit>
    void visitOfType(std::string_view wanted, Visit visit) const {
      (void)anyOfType(wanted, [&](Node const& child) {
        visit(child);
        return false;
      });
    }

    /// The same until `visit` returns true. Returns whether it did.
    template <class Visit>
    bool anyOfType(std::string_view wanted, Visit visit) const {
      if (byType_ == nullptr) {
        return std::any_of(begin(), end(), [&](Node const& child) { return child.type == wanted && visit(child); });
      }
      auto const place = byType_->find(wanted);
      if (place == byType_->end()) return false;
      for (Node const* child = place->second.first; child != nullptr; child = child->nextOfType) {
        if (visit(*child)) return true;
      }
      return false;
    }

    void append(Node& child);
    /// The child keeps its siblings, so that `putBack` finds its position.
    void remove(Node& child) noexcept;
    /// Undoes `remove`. Later changes must have been undone.
    void putBack(Node& child) noexcept;

    /// Whether the next child makes the list keep its children by type.
    [[nodiscard]] bool isAboutToGroup() const noexcept;
    /// Undoes the making of the groups. To be called before the child that made them is removed.
    void ungroup() noexcept { byType_.reset(); }

   private:
    /// The children of one type. A group stays when its last child goes: there are few types.
    struct Group {
      Node* first = nullptr;
      Node* last = nullptr;
    };
    /// The keys are views of strings in the pool, which holds the types of all children.
    using Groups = std::unordered_map<std::string_view, Group>;

    static void appendTo(Groups& groups, Node& child);
    static void removeFrom(Groups& groups, Node& child) noexcept;
    static void putBackIn(Groups& groups, Node& child) noexcept;

    Node* first_ = nullptr;
    Node* last_ = nullptr;
    /// Null until there are many children.
    std::unique_ptr<Groups> byType_;
    std::uint32_t size_ = 0;
  };

  /// `pooledType` must outlive the object. `writtenName` is the name in the path, empty if there is none.
  Node(Node * parent, PathHash const& hash, std::string const& pooledType, std::string_view writtenName);

  [[nodiscard]] std::string const& name() const noexcept {
    return writtenName.empty() ? type : writtenName;
  }

  /// Removes the component under which the object is found, with its leading "/", from the end of `path`. Returns
  /// false, and removes nothing, when `path` ends differently.
  [[nodiscard]] bool takeComponent(std::string_view & path) const noexcept;
  [[nodiscard]] bool hasComponent(std::string_view component) const noexcept;

  /// The path under which the object is listed.
  [[nodiscard]] std::string path() const;

  /// Adds the component with a leading "/".
  void appendFoundComponent(std::string & path) const;
  void appendListedComponent(std::string & path) const;

  /// Makes the parameters equal to `values`: all ordinary, without white space at the ends, and with `skipEmpty`
  /// without empty values. Returns false when it meets a parameter of allowed value type. Part of the values is then
  /// set.
  bool refill(ObjectState const& values, bool skipEmpty, NamePool& names);

  /// Returns the next object of a walk over the subtree of `top`, parents before children and children in their order.
  /// Null after the last one.
  [[nodiscard]] Node const* nextBelow(Node const& top) const noexcept;

  /// The hash of the path under which the object is found.
  PathHash const hash;
  /// The rest of the objects in the same bucket of the store. It is next to the hash, because a search along the bucket
  /// mostly reads only these two fields.
  std::unique_ptr<Node> nextInBucket;
  std::string const& type;
  std::string const writtenName;
  Node* const parent;

  Node* nextSibling = nullptr;
  Node* previousSibling = nullptr;
  /// The siblings of the same type, if the parent keeps its children by type.
  Node* nextOfType = nullptr;
  Node* previousOfType = nullptr;
  [[no_unique_address]] ChildList children;
  /// True when the object is listed under the path under which it is found. The field uses the padding of the list,
  /// because a model has very many objects.
  bool const listedAsFound;
  Params params;
};

/// The value of a parameter. Few parameters have allowed values. These are stored apart, so that a plain value takes
/// little more than its string.
class [[gnu::visibility("hidden")]] DynamicTDF::Node::ParamVal {
 public:
  /// An ordinary parameter.
  explicit ParamVal(std::string_view value) : value_(value) {}
  /// A parameter of allowed value type.
  ParamVal(ParamAllowedValues const& allowedValues, std::string_view value)
      : value_(value), allowedValues_(std::make_unique<ParamAllowedValues>(allowedValues)) {}

  [[nodiscard]] std::string const& value() const noexcept {
    return value_;
  }
  /// The same value and allowed values.
  [[nodiscard]] ParamVal copy() const {
    return hasAllowedValues() ? ParamVal(*allowedValues_, value_) : ParamVal(value_);
  }
  [[nodiscard]] bool hasAllowedValues() const noexcept {
    return allowedValues_ != nullptr;
  }
  /// For an ordinary parameter, the shared empty record.
  [[nodiscard]] ParamAllowedValues const& allowedValues() const noexcept;

  /// Keeps the allowed values.
  void setValue(std::string_view value);
  /// Throws for an ordinary parameter, and changes nothing then.
  void modifyValue(ParamAllowedValues const& allowedValues, std::string_view value);

 private:
  std::string value_;
  /// Null for an ordinary parameter, as long as it exists.
  std::unique_ptr<ParamAllowedValues> allowedValues_;
};

}  // namespace tarn
