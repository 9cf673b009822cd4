#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace tarn::test {

/// Takes what is written to the standard error as long as it lives.
class CapturedCerr {
 public:
  CapturedCerr() : before_(std::cerr.rdbuf(text_.rdbuf())) {}
  CapturedCerr(CapturedCerr const&) = delete;
  CapturedCerr& operator=(CapturedCerr const&) = delete;
  ~CapturedCerr() { std::cerr.rdbuf(before_); }

  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* before_;
};

}  // namespace tarn::test
