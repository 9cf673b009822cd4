#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <optional>
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

/// One object of the tree. It holds its own component of the path and links: to its parent, to its first and last child
/// and to its neighbours among the children of its parent. So a subtree can be walked in either direction without a
/// stack, however deep it is, and a child leaves a list of any length in constant time. A path is put together from the
/// components upwards when somebody wants it; stored at every object, paths would cost the square of the depth.
///
/// An object has its component in two forms. Under the one it is found: as it was written when the object came into
/// being. Under the other it is listed: the type, and the name if that differs. They are the same but for a name that
/// was written although it equals the type.
struct [[gnu::visibility("hidden")]] DynamicTDF::Node {
  class ParamVal;
  using Params = NameTable<ParamVal>;

  /// The children in the order of their creation. The store owns them.
  ///
  /// An object with many children also keeps them by type, each type's in the order of their creation: a walk asks an
  /// object for every type that the rules know, hundreds of which most objects have no child of. Among few children it
  /// is as quick to look at each.
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

    /// Calls `visit` with each child of exactly this type, in the order of their creation. Costs as much as there are
    /// of them, but for a constant.
    template <class Visit>
    void visitOfType(std::string_view wanted, Visit visit) const {
      if (byType_ == nullptr) {
        for (Node const& child : *this) {
          if (child.type == wanted) visit(child);
        }
      } else if (auto const place = byType_->find(wanted); place != byType_->end()) {
        for (Node const* child = place->second.first; child != nullptr; child = child->nextOfType) visit(*child);
      }
    }

    void append(Node& child);
    void remove(Node& child) noexcept;

   private:
    /// The children of one type; there is at least one.
    struct Group {
      Node* first = nullptr;
      Node* last = nullptr;
    };
    /// The keys are texts of the pool, in which the types of all children stand.
    using Groups = std::unordered_map<std::string_view, Group>;

    static void appendTo(Groups& groups, Node& child);
    static void removeFrom(Groups& groups, Node& child) noexcept;

    Node* first_ = nullptr;
    Node* last_ = nullptr;
    /// Null as long as there have been few children.
    std::unique_ptr<Groups> byType_;
    std::uint32_t size_ = 0;
  };

  /// `pooledType` outlives the object. `writtenName` is the name that stands in the path; empty if none does.
  Node(Node * parent, PathHash const& hash, std::string const& pooledType, std::string_view writtenName);

  [[nodiscard]] std::string const& name() const noexcept {
    return writtenName.empty() ? type : writtenName;
  }

  /// Takes the component under which the object is found, with its leading "/", off the end of `path`. Returns false,
  /// with nothing taken, when something else stands there.
  [[nodiscard]] bool takeComponent(std::string_view & path) const noexcept;
  [[nodiscard]] bool hasComponent(std::string_view component) const noexcept;

  /// The path under which the object is listed.
  [[nodiscard]] std::string path() const;

  /// Adds the component with a leading "/".
  void appendFoundComponent(std::string & path) const;
  void appendListedComponent(std::string & path) const;

  /// Makes the parameters those of `values`, all ordinary and with white space at their ends dropped; empty ones are
  /// left out if that is wanted. Returns false, with any of it done, when a parameter of allowed value type is met.
  bool refill(ObjectState const& values, bool skipEmpty, NamePool& names);

  /// The object that comes next when the subtree of `top` is walked with parents before children and children in their
  /// order. Null behind the last one.
  [[nodiscard]] Node const* nextBelow(Node const& top) const noexcept;

  /// Of the path under which the object is found.
  PathHash const hash;
  /// The store's: the rest of the objects whose hash falls into the same place. Beside the hash, since who goes along
  /// them reads no more of most than the two.
  std::unique_ptr<Node> nextInBucket;
  std::string const& type;
  std::string const writtenName;
  Node* const parent;

  Node* nextSibling = nullptr;
  Node* previousSibling = nullptr;
  /// Among the children of the same type, where the parent keeps them by type.
  Node* nextOfType = nullptr;
  Node* previousOfType = nullptr;
  [[no_unique_address]] ChildList children;
  /// True when the path under which the object is listed is the one under which it is found. It stands where the list
  /// leaves room: a model has an object for every few parameters.
  bool const listedAsFound;
  Params params;
};

/// The value of a parameter. What few parameters have, items that were asked for and allowed values, stands apart, so
/// that a plain value costs little more than its text.
class [[gnu::visibility("hidden")]] DynamicTDF::Node::ParamVal {
 public:
  /// An ordinary parameter.
  explicit ParamVal(std::string_view value) : value_(value) {}
  /// A parameter of allowed value type.
  ParamVal(ParamAllowedValues const& allowedValues, std::string_view value)
      : value_(value), extras_(std::make_unique<Extras>(Extras{nullptr, allowedValues})) {}

  [[nodiscard]] std::string const& value() const noexcept {
    return value_;
  }
  [[nodiscard]] bool hasAllowedValues() const noexcept {
    return extras_ != nullptr && extras_->allowedValues.has_value();
  }
  /// Of an ordinary parameter, the shared empty record.
  [[nodiscard]] ParamAllowedValues const& allowedValues() const noexcept;
  /// The value divided at commas. Divided once for each value, not once for each question.
  [[nodiscard]] std::vector<std::string> const& getValueAsList() const;

  /// Allowed values stay as they are.
  void setValue(std::string_view value);
  /// Throws on an ordinary parameter and then changes nothing.
  void modifyValue(ParamAllowedValues const& allowedValues, std::string_view value);

 private:
  struct Extras {
    /// Derived from value_; none when it has not been asked for since value_ was set.
    std::unique_ptr<std::vector<std::string>> listValue;
    /// None on an ordinary parameter, for its whole life.
    std::optional<ParamAllowedValues> allowedValues;
  };

  std::string value_;
  /// Null until there is something in it. Mutable for the list, which is made when it is first read.
  mutable std::unique_ptr<Extras> extras_;
};

}  // namespace tarn
