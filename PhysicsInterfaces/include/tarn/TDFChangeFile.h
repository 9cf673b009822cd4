#pragma once

#include <cstddef>
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
/// A line that begins with "/" is an item. Of the others, one with "=" is a parameter of the open block (of the root
/// when none is open), `END # …` closes, and one that holds a ":" opens. A block that holds nothing is an object
/// without parameters. UTF-8; a byte order mark and carriage returns are dropped, and the last line needs no line end.
///
/// Limits: the path of an object has at most 1,000 components. A NUL byte makes its line malformed.
///
/// What the lenient mode makes of a fault. A malformed line has no effect of its own. A malformed opening line whose
/// block is closed further on takes what the block holds with it, since there is no place for it; lines that begin with
/// "/" are loaded all the same. An `END` for a block that is open further out closes that one and all within it. An
/// `END` for no open block is passed over, unless it stands under the opening line of the innermost block and that
/// block is not closed by an `END` of its own: then it is taken as a slip for that. Of a block left open, what it holds
/// is loaded.
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
  /// input, which messages call "<stdin>"; the texts of `extra` are called "<text 1>", "<text 2>" and so on. Throws a
  /// `FileError` that names the file when one cannot be opened or not be read to its end, in both modes, and in strict
  /// mode a `ParseError` whose message is the text `file:line:column: reason` alone. Lines and columns count from 1,
  /// columns in characters. Linear in the length of the text. `std::bad_alloc` is never told as a fault of a line.
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
