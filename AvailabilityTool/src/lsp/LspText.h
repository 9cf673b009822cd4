#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include <tarn/workbench/EditedRules.h>

// Positions, ranges and names of files as the protocol of language servers writes them.

namespace tarn::tool {

/// How many units of a position the bytes of a line take.
enum class PositionEncoding { Utf16, Utf8 };

/// The units of a text. Bytes that are not UTF-8 count as one unit each.
[[nodiscard]] std::size_t unitsOf(std::string_view text, PositionEncoding encoding) noexcept;
/// The bytes of the first `units` units of a line; all of them if it has fewer.
[[nodiscard]] std::size_t bytesOf(std::string_view line, std::size_t units, PositionEncoding encoding) noexcept;

/// The path of a file as a URI, and the path in a URI. A URI that names no file stays as it is, both ways.
[[nodiscard]] std::string uriOf(std::string const& path);
[[nodiscard]] std::string pathOf(std::string const& uri);

/// Converts positions in the files of a rule base.
class LspPositions {
 public:
  LspPositions(workbench::EditedRules const& rules, PositionEncoding encoding) : rules_(rules), encoding_(encoding) {}

  [[nodiscard]] nlohmann::ordered_json json(std::string const& file, workbench::EditorPosition position) const;
  [[nodiscard]] nlohmann::ordered_json json(std::string const& file, workbench::EditorRange const& range) const;
  [[nodiscard]] workbench::EditorPosition position(std::string const& file, std::size_t line, std::size_t unit) const;

 private:
  workbench::EditedRules const& rules_;
  PositionEncoding encoding_;
};

}  // namespace tarn::tool
