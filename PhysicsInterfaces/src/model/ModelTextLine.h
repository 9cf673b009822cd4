#pragma once

#include <string>
#include <string_view>

#include "paths/PathSyntax.h"

namespace tarn {

/// Type and name of a block as its opening line and its `END` give them. A name that equals the type counts as no name.
struct BlockLabel {
  std::string_view type;
  std::string_view name;

  /// "Type:name", as an `END` shows it.
  [[nodiscard]] std::string text() const;
  friend bool operator==(BlockLabel const& a, BlockLabel const& b) noexcept;
};

/// The parts of one line of model text, without regard to the other lines. All views point into the line.
struct ModelTextLine {
  enum class Kind { Blank, Item, Parameter, Opening, End, Other };

  Kind kind = Kind::Blank;
  std::string_view path;     // Item: the object, "" for the root; not yet checked
  std::string_view name;     // Item, Parameter; empty for an object without parameters
  std::string_view value;    // Item, Parameter
  BlockLabel label;          // Opening, End; Parameter when what is before "=" holds a ":"
  path_syntax::Fault fault;  // the offset counts from the start of the line
  std::size_t indent = 0;    // where the text begins in the line

  [[nodiscard]] static ModelTextLine parse(std::string_view line) noexcept;
};

}  // namespace tarn
