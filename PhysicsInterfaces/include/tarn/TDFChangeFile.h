#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/TDFChange.h>

namespace tarn {

/// Model text, read as a sequence of `TDFChange` items in file order.
///
/// Two forms may be mixed. One item a line:
///
///     # blank lines and lines that begin with # are skipped
///     /Case/Flow Regime=Turbulent
///     /Case/Domain:rotor/Angular Velocity=120 [rad/s]
///     /Case/Domain:stator/
///
/// the last one an object that holds no parameters; and nested blocks, as the tool prints a model:
///
///     Case:
///       Flow Regime = Turbulent
///       Domain: rotor
///         Angular Velocity = 120 [rad/s]
///       END # Domain:rotor
///     END # Case:
///
/// A line that begins with "/" is an item. Of the others, one with "=" is a parameter of the open block (of the root when
/// none is open), `END # …` closes, and one that holds a ":" opens. A block that holds nothing is an object without
/// parameters. UTF-8; a byte order mark and carriage returns are dropped, and the last line needs no line end.
///
/// Limits: a path has at most 1,000 components. A NUL byte makes its line malformed.
class TARN_EXPORT TDFChangeFile {
 public:
  enum InputMode : int {
    /// A malformed line is written to the standard error as `file:line:column: reason` and skipped.
    Lenient = 0,
    /// The first malformed line throws an `Error` with that text.
    Strict = 3
  };

  static constexpr std::size_t maxComponents = 1000;

  using const_iterator = std::vector<TDFChange>::const_iterator;

  /// Reads `files` in order, then each text of `extra` as the content of one more file. The name "-" is the standard
  /// input. Throws an `Error` that names the file when one cannot be opened or not be read to its end, in both modes.
  TDFChangeFile(std::vector<std::string> const& files, std::vector<std::string> const& extra, InputMode mode);

  [[nodiscard]] const_iterator begin() const noexcept { return items_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return items_.end(); }

  /// The items as a state. Of a parameter given twice the first value stands. An object without parameters has an entry
  /// with an empty map.
  [[nodiscard]] ModelState toModelState() const;

 private:
  std::vector<TDFChange> items_;
};

}  // namespace tarn
