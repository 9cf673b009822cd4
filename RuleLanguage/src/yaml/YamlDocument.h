#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"

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

/// One rule file as YAML. Depth and size are limited, so that no file can exhaust memory or stack.
class YamlDocument {
 public:
  struct Limits {
    std::size_t depth;
    std::size_t nodes;
  };

  /// Parses `source`, which must outlive the document. Problems go to `diagnostics`; the root is then null.
  YamlDocument(SourceText const& source, Limits const& limits, DiagnosticList& diagnostics);

  [[nodiscard]] YamlNode const* root() const noexcept { return root_; }

 private:
  std::deque<YamlNode> nodes_;
  YamlNode* root_ = nullptr;
};

}  // namespace tarn::rules
