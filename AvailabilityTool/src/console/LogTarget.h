#pragma once

#include <fstream>
#include <iosfwd>
#include <optional>
#include <ostream>
#include <string>

#include "cli/Output.h"

namespace tarn::tool {

/// The target of the console's printer: a standard stream, or a file to which it appends. The printer does not report
/// output that could not be written. This class notices it, and reports it while the user can still act.
///
///     LogTarget log("pump.log");
///     {
///       ProvTDFLogger printer(&state, log.stream());
///       while (log.takesMore(std::cerr)) ...
///     }
///     bool const whole = log.finish(std::cerr);
class LogTarget {
 public:
  /// "stdout" or "cout", "stderr" or "cerr", or the name of a file. Throws a `Failure` when the file cannot be opened.
  explicit LogTarget(std::string target);

  [[nodiscard]] std::ostream& stream() noexcept { return out_; }

  /// Returns whether it makes sense to continue. If the file cannot be written, reports that to `err`, once until it
  /// can be written again, and tries again each time: a disk can get free space. A reader who is gone does not come
  /// back; then the result is false. The same holds for the reader of a standard stream, about which nothing is
  /// reported here.
  [[nodiscard]] bool takesMore(std::ostream& err);

  /// Ends the log, and reports a last time. Returns whether everything that was printed has been written.
  [[nodiscard]] bool finish(std::ostream& err);

 private:
  std::string const target_;
  std::ofstream file_;
  std::ostream& out_;
  std::optional<WriteErrors> errors_;  // of the file
  bool isToldAlready_ = false;
  bool isWhole_ = true;
};

}  // namespace tarn::tool
