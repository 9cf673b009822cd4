// The progress line of a long run. It contains no line end, so it can be removed completely. Names are shortened to fit
// a narrow terminal, because a line that wraps could not be removed.
#include "cli/Progress.h"

#include <unistd.h>

#include <ostream>

namespace tarn::tool {

namespace {

constexpr std::size_t widestName = 60;

}  // namespace

Progress::Progress(std::ostream& stream, bool on, std::size_t total, Clock::duration patience)
    : stream_(stream), on_(on && total > 1), total_(total), from_(Clock::now() + patience) {}

Progress::~Progress() {
  try {
    hide();
  } catch (std::exception const&) {  // nothing can be removed from a stream that throws
    shown_ = false;
  }
}

void Progress::begin(std::string const& name) {
  ++count_;
  if (!on_ || Clock::now() < from_) return;
  std::string const end = name.size() <= widestName ? name : "..." + name.substr(name.size() - widestName);
  stream_ << "\r\033[K[" << count_ << '/' << total_ << "] " << end << std::flush;
  shown_ = true;
}

void Progress::hide() {
  if (!shown_) return;
  stream_ << "\r\033[K" << std::flush;
  shown_ = false;
}

bool standardErrorIsTerminal() noexcept {
  return ::isatty(STDERR_FILENO) == 1;
}

bool standardOutputIsTerminal() noexcept {
  return ::isatty(STDOUT_FILENO) == 1;
}

}  // namespace tarn::tool
