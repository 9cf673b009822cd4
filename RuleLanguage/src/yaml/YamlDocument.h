#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "loading/DiagnosticList.h"
#include "loading/SourceText.h"

namespace tarn::rules {

/// A node of a YAML document. An alias is the very node that it stands for.
struct YamlNode {
  enum class Kind : std::uint8_t { Scalar, Sequence, Mapping };
  enum class Style : std::uint8_t { Plain, SingleQuoted, DoubleQuoted, Literal, Folded };

  Kind kind = Kind::Scalar;
  Style style = Style::Plain;
  bool flow = false;
  std::uint32_t line = 1;
  std::uint32_t column = 1;
  std::uint32_t endLine = 1;
  std::uint32_t endColumn = 1;
  std::string value;                // of a scalar, its text as written, whatever it may mean elsewhere
  std::vector<YamlNode*> children;  // of a mapping, key and value in turn
  std::size_t weight = 1;           // nodes in it, aliases counted as what they stand for

  [[nodiscard]] Place place() const noexcept { return {line, column}; }
  /// The number of characters by which a diagnostic about the node underlines it: to the end of its first line.
  [[nodiscard]] std::size_t shownLength() const noexcept {
    return line == endLine && endColumn > column ? endColumn - column : 1;
  }
};

/// One rule file as YAML. Depth and size are limited, so that no file can exhaust memory or stack.
class YamlDocument {
 public:
  struct Limits {
    std::size_t depth;
    std::size_t nodes;
  };

  /// Parses `source`, which must outlive the document. Faults go to `diagnostics`; then there is no root.
  YamlDocument(SourceText const& source, Limits const& limits, DiagnosticList& diagnostics);

  [[nodiscard]] YamlNode const* root() const noexcept { return root_; }

 private:
  std::deque<YamlNode> nodes_;
  YamlNode* root_ = nullptr;
};

/// How far the search for a place in a scalar has come, for the next one that is further on in the same.
struct ScalarWalk {
  YamlNode const* scalar = nullptr;
  std::size_t offset = 0;
  std::size_t at = 0;    // in the source
  std::size_t done = 0;  // in the text of the scalar
};

/// The place in `source` of byte `offset` of the scalar's text: quoting, escapes and folded lines are seen through.
/// Linear in the offset, or where the last search of `walk` was in the same scalar and not further on, in what lies
/// between.
[[nodiscard]] Place placeInScalar(SourceText const& source, YamlNode const& scalar, std::size_t offset,
                                  ScalarWalk* walk = nullptr);

}  // namespace tarn::rules
