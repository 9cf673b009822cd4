#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tarn {

/// One fact of a model that an evaluation asked for, with the answer that it got. An absent item is an answer too.
struct ModelRead {
  enum class Kind {
    /// The value of a parameter.
    Value,
    /// Only whether the parameter exists.
    Presence,
    /// Whether the object exists.
    Object,
    /// The names of the parameters of an object.
    ParameterNames,
    /// All children of an object, and their order.
    Children,
    /// The children of one type, and their order.
    ChildrenOfType
  };

  /// The longest value, and the most items, that are kept of an answer. The rest is cut off.
  static constexpr std::size_t maxValue = 4096;
  static constexpr std::size_t maxItems = 100;

  Kind kind = Kind::Value;
  /// The path of the object; "" for the root.
  std::string object;
  /// The name of the parameter for `Value` and `Presence`, the type for `ChildrenOfType`. Otherwise empty.
  std::string name;
  /// Whether the parameter or object exists; for a list, whether it has an item.
  bool isPresent = false;
  /// The value, for `Value`. Empty when the parameter is absent.
  std::string value;
  /// For the three lists: names of parameters, or paths of objects.
  std::vector<std::string> items;
  /// The number of items before they were cut off.
  std::size_t itemCount = 0;

  /// Whether the read is about a parameter.
  [[nodiscard]] bool isParameter() const noexcept { return kind == Kind::Value || kind == Kind::Presence; }
  /// Whether both asked for the same fact. `Value` and `Presence` of one parameter count as the same.
  [[nodiscard]] bool isSameFact(ModelRead const& other) const noexcept {
    bool const isSameKind = kind == other.kind || (isParameter() && other.isParameter());
    return isSameKind && object == other.object && name == other.name;
  }

  friend bool operator==(ModelRead const&, ModelRead const&) = default;
};

}  // namespace tarn
