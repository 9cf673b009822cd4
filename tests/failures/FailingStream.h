#pragma once

#include <ostream>
#include <streambuf>

#include "failures/Injection.h"

namespace tarn::test {

/// Discards its input, and may fail at each piece, but not at a flush. A stream like the standard error flushes after
/// each piece, and the standard library lets no exception pass there.
class FailingBuffer final : public std::streambuf {
 private:
  std::streamsize xsputn(char const* /*text*/, std::streamsize size) override {
    mayFail();
    return size;
  }
  int_type overflow(int_type byte) override {
    mayFail();
    return traits_type::not_eof(byte);
  }
};

/// A stream over such a buffer that passes its failures on.
class FailingStream final : public std::ostream {
 public:
  FailingStream() : std::ostream(nullptr) {
    rdbuf(&buffer_);
    exceptions(badbit);
  }

 private:
  FailingBuffer buffer_;
};

}  // namespace tarn::test
