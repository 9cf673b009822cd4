#pragma once

#include <string>

namespace tarn {

/// The text of a model as it is read: what a file or the standard input holds, without a byte order mark and carriage
/// returns.
struct ModelTextFile {
  /// How messages name the file: "<stdin>" for the standard input.
  std::string source;
  std::string text;

  /// Reads a file to its end; "-" is the standard input. Throws a `FileError` that names the file if it cannot be
  /// opened or read to its end.
  [[nodiscard]] static ModelTextFile read(std::string const& name);

  /// Removes the byte order mark and all carriage returns.
  [[nodiscard]] static std::string cleaned(std::string text);
};

}  // namespace tarn
