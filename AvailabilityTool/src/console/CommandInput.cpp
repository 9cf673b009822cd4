#include "console/CommandInput.h"

#include <cerrno>
#include <exception>
#include <utility>

namespace tarn::tool {

CommandInput::CommandInput(std::istream& in, std::function<bool()> goesOn)
    : in_(in), below_(in.rdbuf()), goesOn_(std::move(goesOn)) {
  in_.rdbuf(this);
}

CommandInput::~CommandInput() {
  in_.rdbuf(below_);
}

CommandInput::int_type CommandInput::underflow() {
  bool const isWithinLine = !piece_.empty() && piece_.back() != '\n';
  if (hasFailed_ || (!isWithinLine && !goesOn_()) || !readSome()) return traits_type::eof();
  setg(piece_.data(), piece_.data(), piece_.data() + piece_.size());
  return traits_type::to_int_type(piece_.front());
}

/// Reads a line, or the part of it that is there.
bool CommandInput::readSome() {
  piece_.clear();
  errno = 0;
  try {
    if (traits_type::eq_int_type(below_->sgetc(), traits_type::eof())) return false;
  } catch (std::exception const&) {  // a file that cannot be read throws
    error_ = errno;
    hasFailed_ = true;
    return false;
  }
  for (std::streamsize left = below_->in_avail(); left > 0; --left) {
    piece_ += traits_type::to_char_type(below_->sbumpc());
    if (piece_.back() == '\n') break;
  }
  return true;
}

}  // namespace tarn::tool
