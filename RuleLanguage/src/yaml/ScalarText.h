#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/SourceText.h"
#include "yaml/YamlDocument.h"

// The text of a YAML scalar and the way it is written in its file: quotes, escapes, folded lines, indentation.

namespace tarn::rules {

/// How far a search for a position in a scalar has come, so that the next search in the same scalar can go on from
/// there.
struct ScalarWalk {
  YamlNode const* scalar = nullptr;
  std::size_t offset = 0;
  std::size_t at = 0;    // bytes of the source
  std::size_t done = 0;  // bytes of the scalar's text
};

/// The range in `source` of `length` bytes of the scalar's text from byte `offset`. Quotes, escapes and folded lines
/// are taken into account. Linear in the offset, or in the distance from the last search when that was in the same
/// scalar and ended before `offset`.
[[nodiscard]] SourceRange rangeInScalar(SourceText const& source, YamlNode const& scalar, std::size_t offset,
                                        std::size_t length, ScalarWalk* walk = nullptr);

/// The way to write `text` in the file when it replaces `length` bytes of the scalar's text from byte `offset`: escaped
/// as the scalar's quotes need it. Nothing when it cannot be written there, or could change how the scalar ends.
[[nodiscard]] std::optional<std::string> writtenInScalar(YamlNode const& scalar, std::size_t offset, std::size_t length,
                                                         std::string_view text);

}  // namespace tarn::rules
