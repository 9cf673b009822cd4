#pragma once

#include <ostream>
#include <streambuf>

#include "failures/Injection.h"

namespace tarn::test {

/// Throws away what it is given, and may fail at each piece. Not so at a flush: a stream like the standard error, which
/// flushes behind each piece, does it where the standard library lets nothing be thrown.
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
