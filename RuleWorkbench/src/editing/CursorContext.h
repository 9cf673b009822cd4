#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "editing/FileParts.h"
#include "editing/TextBuffer.h"

namespace tarn::workbench {

/// Where a cursor is in a file that need not be YAML: found from the indentation of the lines above and from the text
/// before the cursor.
struct CursorContext {
  /// The keys of the maps around the cursor, `listItem` for an item of a list. At a value, the key of the value is the
  /// last.
  std::vector<std::string> path;
  /// At a key: the cursor is where a key of a map is written.
  bool isKey = false;
  /// The cursor is in a comment.
  bool isComment = false;
  /// The text of the key or scalar from its beginning to the cursor, without quotes. Lines are joined by blanks.
  std::string before;
  /// The quote in which it is written, or 0.
  char quote = 0;
  /// The keys that the map already has, for a key.
  std::vector<std::string> siblings;
  /// A key: whether its colon is written already.
  bool hasColon = false;
  /// In a map or list in flow style.
  bool isFlow = false;
};

/// The text of another key in the same map as the cursor, without quotes. Empty if the map does not have the key near
/// the cursor, or not on one line.
[[nodiscard]] std::string siblingText(TextBuffer const& buffer, std::size_t offset, std::string_view key);

[[nodiscard]] CursorContext contextAt(TextBuffer const& buffer, ReadPart const* part, std::size_t offset, bool isTest);

}  // namespace tarn::workbench
