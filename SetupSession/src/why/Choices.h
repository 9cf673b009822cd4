#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tarn/session/Item.h>

#include "session/RuledState.h"

namespace tarn::session {

/// The values and names that an edit could choose from in the present state.
class Choices {
 public:
  explicit Choices(RuledState const& state) noexcept : state_(state) {}

  /// The values that the rules name for a parameter: its default, then its allowed values, or both truth values. Each
  /// once. Empty for a parameter that can have any number or text and has no default.
  [[nodiscard]] std::vector<std::string> values(Item const& param) const;
  /// The same without what the parameter has now.
  [[nodiscard]] std::vector<std::string> otherValues(Item const& param) const;
  /// Whether the parameter can have any number or text.
  [[nodiscard]] bool isFree(Item const& param) const;
  /// A name that no child of the type has: "new1".
  [[nodiscard]] std::string freeName(std::string const& parent, std::string_view type) const;
  /// The present children of a type whose names the user chooses; empty for all other types.
  [[nodiscard]] std::vector<std::string> namedChildren(std::string const& parent, std::string const& type) const;

 private:
  RuledState const& state_;
};

/// Whether the last component of the path has a name of its own.
[[nodiscard]] inline bool isNamedObject(std::string_view path) noexcept {
  return path.find(':', path.rfind('/') + 1) != std::string_view::npos;
}

}  // namespace tarn::session
