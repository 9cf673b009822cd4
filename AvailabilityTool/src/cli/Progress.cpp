// The moving line of a long run. It never holds a line end, so wiping it leaves no trace; names are cut to what fits a
// narrow terminal, since a line that wraps could not be wiped.
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
  } catch (std::exception const&) {  // a stream that throws has nothing to wipe
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

}  // namespace tarn::tool
