#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"
#include "yaml/YamlRecovery.h"

namespace tarn::rules {

/// A node of a YAML document. An alias is no node of its own: it shares the node of its anchor.
struct YamlNode {
  enum class Kind : std::uint8_t { Scalar, Sequence, Mapping };
  enum class Style : std::uint8_t { Plain, SingleQuoted, DoubleQuoted, Literal, Folded };

  Kind kind = Kind::Scalar;
  Style style = Style::Plain;
  bool flow = false;
  bool hasProperties = false;  // an anchor or a tag is written before it; its range begins with them
  std::uint32_t line = 1;
  std::uint32_t column = 1;
  std::uint32_t endLine = 1;
  std::uint32_t endColumn = 1;
  std::string value;                // of a scalar: its text, never read as a number or a truth value
  std::vector<YamlNode*> children;  // of a mapping: keys and values in turn
  std::size_t weight = 1;           // number of nodes in it, each alias counted as a copy

  [[nodiscard]] Place place() const noexcept { return {line, column}; }
  /// The range of a map or list in block style ends with its last item: blank lines and comments after it are not
  /// included.
  [[nodiscard]] SourceRange range() const noexcept { return {{line, column}, {endLine, endColumn}}; }
};

/// Calls `each` with every key and value of a map; not at all for null and for other nodes.
template <typename Each>
void forEachIn(YamlNode const* map, Each each) {
  if (map == nullptr || map->kind != YamlNode::Kind::Mapping) return;
  for (std::size_t i = 0; i + 1 < map->children.size(); i += 2) each(*map->children[i], *map->children[i + 1]);
}

/// The value of a key of a map; null when the map does not have it, or is not a map.
[[nodiscard]] inline YamlNode const* valueIn(YamlNode const& map, std::string_view key) {
  YamlNode const* found = nullptr;
  forEachIn(&map, [&](YamlNode const& name, YamlNode const& value) {
    if (found == nullptr && name.value == key) found = &value;
  });
  return found;
}

/// One rule file as YAML. Depth and size are limited, so that no file can exhaust memory or stack.
///
/// A part that is not YAML is reported and left out, and the rest is read. That ends after `mostErrors` of them, and
/// when the file was read `mostReadings` times or, if it is longer than `freeLength`, a few times as far as it is long.
class YamlDocument {
 public:
  struct Limits {
    std::size_t depth;
    std::size_t nodes;
  };

  static constexpr std::size_t mostErrors = 20;
  static constexpr std::size_t mostReadings = 200;
  static constexpr std::size_t freeLength = std::size_t{1} << 20;

  /// Parses `source`, which must outlive the document. Problems go to `diagnostics`. The root is null when nothing
  /// could be read.
  YamlDocument(SourceText const& source, Limits const& limits, DiagnosticList& diagnostics);

  [[nodiscard]] YamlNode const* root() const noexcept { return root_; }
  /// Whether some of the file was left out.
  [[nodiscard]] bool isIncomplete() const noexcept { return incomplete_; }
  /// Whether some of the entry that begins in this line was left out.
  [[nodiscard]] bool lacksPartOf(std::size_t line) const { return recovery_ && recovery_->lacksPartOf(line); }

 private:
  struct Attempt;
  [[nodiscard]] bool recover(SourceText const& source, Limits const& limits, Attempt& attempt);

  [[nodiscard]] bool isSameIndentation(SourceText const& source, Place const& at);

  std::deque<YamlNode> nodes_;
  YamlNode* root_ = nullptr;
  bool incomplete_ = false;
  std::unique_ptr<YamlRecovery> recovery_;  // made when an error is found
  std::size_t readings_ = 0;
  std::size_t readBytes_ = 0;
  std::size_t wrongLine_ = 0;  // of the last error, when it was at the beginning of a line; otherwise 0
  std::size_t wrongIndent_ = 0;
};

}  // namespace tarn::rules
