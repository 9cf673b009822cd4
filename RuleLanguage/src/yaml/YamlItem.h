#pragma once

#include <cstddef>

#include <tarn/RulePlace.h>

#include "diagnostics/SourceText.h"
#include "yaml/YamlDocument.h"

namespace tarn::rules {

/// A YAML node together with its file. Valid as long as whoever owns both.
struct Item {
  SourceText const* source = nullptr;
  YamlNode const* node = nullptr;

  explicit operator bool() const noexcept { return node != nullptr; }
  /// Where the node begins.
  [[nodiscard]] RulePlace place() const;
  /// The first byte of the expression that follows `skipped` bytes of the scalar and blanks; `skipped` when nothing but
  /// blanks follows. An expression's ranges count from here, so they are also ranges of its source text.
  [[nodiscard]] std::size_t beginOfExpression(std::size_t skipped) const noexcept;
  /// The position of that byte.
  [[nodiscard]] RulePlace placeOfExpression(std::size_t skipped) const;
};

}  // namespace tarn::rules
