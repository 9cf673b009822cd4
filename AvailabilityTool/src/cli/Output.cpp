// Failures of the standard streams. Without these steps a closed pipe, or a file at its maximum size, would end the
// process by a signal. And if standard output is closed, a model file would get its descriptor.
#include "cli/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <iostream>
#include <string>
#include <system_error>

#include "cli/Failure.h"

namespace tarn::tool {

WriteErrors::WriteErrors(std::ostream& out) : out_(out), below_(out.rdbuf()) {
  out_.rdbuf(this);
}

WriteErrors::~WriteErrors() {
  out_.rdbuf(below_);
}

// `errno` is reset before each write. So a write that fails without setting it does not report an older error.

std::streamsize WriteErrors::xsputn(char const* text, std::streamsize count) {
  errno = 0;
  std::streamsize const written = below_->sputn(text, count);
  if (written != count) keepWhy();
  return written;
}

WriteErrors::int_type WriteErrors::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  errno = 0;
  int_type const written = below_->sputc(traits_type::to_char_type(c));
  if (traits_type::eq_int_type(written, traits_type::eof())) keepWhy();
  return written;
}

int WriteErrors::sync() {
  errno = 0;
  int const result = below_->pubsync();
  if (result == -1) keepWhy();
  return result;
}

void WriteErrors::keepWhy() {
  if (!failed_) first_ = errno;
  failed_ = true;
}

std::string becauseOf(int error) {
  return error != 0 ? ": " + std::generic_category().message(error) : "";
}

void flushResults(std::ostream& out) {
  out.flush();
  if (out) return;
  auto const* const errors = dynamic_cast<WriteErrors const*>(out.rdbuf());
  throw Failure("the standard output cannot be written" + becauseOf(errors != nullptr ? errors->first() : 0) +
                "; let its reader read to the end, or write to a file on a disk with free space");
}

void prepareStandardStreams() noexcept {
  for (int const signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
  for (int const descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) != -1 || errno != EBADF) continue;
    // The lowest free descriptor is the one that was found closed. Opened for reading only, it fails on writing.
    if (::open("/dev/null", O_RDONLY) == -1) return;
  }
  std::ios_base::sync_with_stdio(false);
}

}  // namespace tarn::tool
