#pragma once

#include <chrono>
#include <cstddef>
#include <iosfwd>
#include <string>

namespace tarn::tool {

/// One line on a terminal that shows how far a run over many files is. It is removed at the end. When switched off, it
/// writes nothing.
class Progress {
 public:
  using Clock = std::chrono::steady_clock;

  /// Shows nothing before `patience` has passed, so a short run shows nothing at all. `stream` must outlive it.
  Progress(std::ostream& stream, bool on, std::size_t total, Clock::duration patience = std::chrono::milliseconds(300));
  ~Progress();
  Progress(Progress const&) = delete;
  Progress& operator=(Progress const&) = delete;

  /// The next file begins: "[3/9] pump.tdf".
  void begin(std::string const& name);
  /// Removes the line. Call it before anything else is written to the terminal.
  void hide();

 private:
  std::ostream& stream_;
  bool const on_;
  std::size_t const total_;
  Clock::time_point const from_;
  std::size_t count_ = 0;
  bool shown_ = false;
};

/// Whether the program's standard error is a terminal.
[[nodiscard]] bool standardErrorIsTerminal() noexcept;
/// Whether the program's standard output is a terminal.
[[nodiscard]] bool standardOutputIsTerminal() noexcept;

}  // namespace tarn::tool
