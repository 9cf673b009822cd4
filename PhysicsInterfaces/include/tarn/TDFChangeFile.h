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
/// The last of these lines is an object without parameters. The other form is nested blocks, as the tool prints a
/// model:
///
///     Case:
///       Flow Regime = Turbulent
///       Domain: rotor
///         Angular Velocity = 120 [rad/s]
///       END # Domain:rotor
///     END # Case:
///
/// A line that begins with "/" is an item. Any other line with "=" is a parameter of the open block, or of the root
/// when no block is open. `END # …` closes a block, and a line with ":" opens one. An empty block is an object without
/// parameters. The text is UTF-8. A byte order mark and carriage returns are dropped. The last line needs no line end.
///
/// Limits: the path of an object has at most 1,000 components. A NUL byte makes its line malformed.
///
/// Faults in lenient mode. A malformed line has no effect of its own. If a malformed line opens a block that is closed
/// later, the content of the block is skipped as well, because it has no path; lines that begin with "/" are still
/// loaded. An `END` for an outer open block closes that block and all blocks within it. An `END` for no open block is
/// ignored, with one exception: if it is at the indentation of the innermost block, and that block has no `END` of its
/// own, it is taken as a misspelt `END` of that block. The content of a block that is never closed is loaded.
class TARN_EXPORT TDFChangeFile {
 public:
  enum InputMode : int {
    /// Each malformed line is reported on the standard error as `file:line:column: reason` and skipped.
    Lenient = 0,
    /// The first malformed line throws an `Error` with that text.
    Strict = 3
  };

  static constexpr std::size_t maxComponents = 1000;

  using const_iterator = std::vector<TDFChange>::const_iterator;

  /// Reads `files` in order, then each text of `extra` as the content of one more file. The name "-" is the standard
  /// input; messages call it "<stdin>". Messages call the texts of `extra` "<text 1>", "<text 2>" and so on. In both
  /// modes, throws a `FileError` that names the file if a file cannot be opened or cannot be read to its end. In strict
  /// mode, throws a `ParseError` for the first malformed line; its message is `file:line:column: reason`. Lines and
  /// columns count from 1, columns in characters. Linear in the length of the text. When memory runs out, throws
  /// `std::bad_alloc` and never reports it as a malformed line.
  TDFChangeFile(std::vector<std::string> const& files, std::vector<std::string> const& extra, InputMode mode);

  [[nodiscard]] const_iterator begin() const noexcept { return items_.begin(); }
  [[nodiscard]] const_iterator end() const noexcept { return items_.end(); }

  /// The items as a state. If a parameter is given twice, the first value counts. An object without parameters has an
  /// entry with an empty map. A file that is not needed any more gives up its strings, which saves their copies. Linear
  /// for items in the order of a state, as the library writes them.
  [[nodiscard]] ModelState toModelState() const&;
  [[nodiscard]] ModelState toModelState() &&;

 private:
  std::vector<TDFChange> items_;
};

}  // namespace tarn
