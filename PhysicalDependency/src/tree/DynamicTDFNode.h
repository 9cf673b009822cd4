#pragma once

#include <cstddef>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ParamAllowedValues.h>

#include "tree/NamePool.h"

namespace tarn {

/// One object of the tree. It is linked to its parent, to its first and last child and to its neighbours among the
/// children of its parent. So a subtree can be walked in either direction without a stack, however deep it is, and a
/// child leaves a list of any length in constant time.
struct DynamicTDF::Node {
  class ParamVal;
  /// Owns the objects of a tree, by path.
  using NodeMap = std::map<std::string, std::unique_ptr<Node>, std::less<>>;
  using Params = std::map<PooledName, ParamVal, PooledName::Less>;

  /// The children in the order of their creation. The store owns them.
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
    [[nodiscard]] Node* first() const noexcept { return first_; }
    [[nodiscard]] Node* last() const noexcept { return last_; }
    void append(Node& child) noexcept;
    void remove(Node& child) noexcept;

   private:
    Node* first_ = nullptr;
    Node* last_ = nullptr;
  };

  /// `entry` is the place in the store that owns the object, `type` a text that outlives it.
  Node(NodeMap::const_iterator entry, Node* parent, std::string const& type, std::string_view name);

  /// The path under which the store knows the object.
  [[nodiscard]] std::string const& key() const noexcept { return entry->first; }

  /// The path as composed from the parent's path, the type and, if it differs, the name.
  [[nodiscard]] std::string const& path() const noexcept { return composedPath_ ? *composedPath_ : key(); }

  /// A new parameter gets its name from `names`.
  SetResult setParamValue(std::string const& paramName, std::string_view value, NamePool& names);
  SetResult setParamValue(std::string const& paramName, ParamAllowedValues const& allowedValues, std::string_view value,
                          NamePool& names);

  /// The object that comes next when the subtree of `top` is walked with parents before children and children in their
  /// order. Null behind the last one.
  [[nodiscard]] Node const* nextBelow(Node const& top) const noexcept;

  NodeMap::const_iterator const entry;
  std::string const& type;
  std::string const name;
  Node* const parent;
  Node* nextSibling = nullptr;
  Node* previousSibling = nullptr;
  ChildList children;
  Params params;

 private:
  /// Only where the composed path is not the key: an object whose name was written although it equals the type.
  std::unique_ptr<std::string const> composedPath_;
};

/// The value of a parameter. What few parameters have, items that were asked for and allowed values, stands apart, so
/// that a plain value costs little more than its text.
class DynamicTDF::Node::ParamVal {
 public:
  /// An ordinary parameter.
  explicit ParamVal(std::string_view value) : value_(value) {}
  /// A parameter of allowed value type.
  ParamVal(ParamAllowedValues const& allowedValues, std::string_view value)
      : value_(value), extras_(std::make_unique<Extras>(Extras{std::nullopt, allowedValues})) {}

  [[nodiscard]] std::string const& value() const noexcept { return value_; }
  [[nodiscard]] bool hasAllowedValues() const noexcept {
    return extras_ != nullptr && extras_->allowedValues.has_value();
  }
  /// Of an ordinary parameter, the shared empty record.
  [[nodiscard]] ParamAllowedValues const& allowedValues() const noexcept;
  /// The value divided at commas. Divided once for each value, not once for each question.
  [[nodiscard]] std::vector<std::string> const& getValueAsList() const;

  /// Returns whether the value differed. Allowed values stay as they are.
  bool setValue(std::string_view value);
  /// Returns whether value or allowed values differed. Throws on an ordinary parameter and then changes nothing.
  bool modifyValue(ParamAllowedValues const& allowedValues, std::string_view value);

 private:
  struct Extras {
    /// Derived from value_; none when it has not been asked for since value_ was set.
    std::optional<std::vector<std::string>> listValue;
    /// None on an ordinary parameter, for its whole life.
    std::optional<ParamAllowedValues> allowedValues;
  };

  std::string value_;
  /// Null until there is something in it. Mutable for the list, which is made when it is first read.
  mutable std::unique_ptr<Extras> extras_;
};

}  // namespace tarn
