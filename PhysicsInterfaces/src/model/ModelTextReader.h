#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tarn {

/// A line of model text, and its number, counted from 1.
struct ModelTextPlace {
  std::string_view line;
  std::size_t number = 0;

  /// The column of `part`, which points into the line; of the line's end for its end. Counts characters from 1.
  [[nodiscard]] std::size_t columnOf(std::string_view part) const noexcept;
};

/// Receives what a text holds, in the order of the text. All views are valid until the call returns, but `name`,
/// `value` and the line point into the text that is read.
class ModelTextSink {
 public:
  /// A parameter of the object at `path`, which is in canonical form. Name and value are empty for an object without
  /// parameters. `isPathInLine`: `path` points into the line; otherwise the item is in a block, or at the root.
  virtual void onItem(std::string_view path, std::string_view name, std::string_view value, ModelTextPlace const& place,
                      bool isPathInLine) = 0;
  /// A line opens the block of the object at `path`. `label` is the text of the line that names the object.
  virtual void onOpening(std::string_view path, std::string_view label, ModelTextPlace const& place);
  /// The line closes the innermost open block. An empty block has been an item before.
  virtual void onClosing(ModelTextPlace const& place);
  /// The line is malformed. Reading goes on with the next line, unless the sink throws.
  virtual void onFault(std::string const& reason, std::size_t column, std::size_t line) = 0;

 protected:
  ~ModelTextSink() = default;
};

/// Reads `text` and hands what it holds to `sink`. `TDFChangeFile` describes the text and what becomes of malformed
/// lines. Linear in the length of the text.
void readModelText(std::string_view text, ModelTextSink& sink);

}  // namespace tarn
