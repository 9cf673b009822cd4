#pragma once

#include <fstream>
#include <iosfwd>
#include <optional>
#include <ostream>
#include <string>

#include "cli/Output.h"

namespace tarn::tool {

/// Where the console's printer writes: a standard stream, or a file that is added to. The printer loses what cannot be
/// written and says nothing; here it is seen, and told while the user can still do something about it.
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

  /// Whether there is a use in going on. When the file cannot be written `err` gets that told, once until it can be
  /// again, and it is tried anew from then on: a disk may get room. But a reader who is gone does not come back, and
  /// neither do those of a standard stream, of which nothing is said here.
  [[nodiscard]] bool takesMore(std::ostream& err);

  /// Ends the log, and tells a last time. Whether all that was printed has been written, from beginning to end.
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
