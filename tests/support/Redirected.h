#pragma once

#include <ios>
#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace tarn::test {

/// Puts a stream buffer in the place of another for as long as this lives.
class Redirected {
 public:
  Redirected(std::ios& stream, std::streambuf* buffer) : stream_(stream), former_(stream.rdbuf(buffer)) {}
  Redirected(Redirected const&) = delete;
  Redirected& operator=(Redirected const&) = delete;
  ~Redirected() {
    stream_.rdbuf(former_);
    stream_.clear();
  }

 private:
  std::ios& stream_;
  std::streambuf* former_;
};

/// Takes what is written to a standard stream for as long as this lives.
class Captured {
 public:
  explicit Captured(std::ostream& stream) : redirected_(stream, text_.rdbuf()) {}

  [[nodiscard]] std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  Redirected redirected_;
};

/// Gives `input` to the program as its standard input, and takes its standard output, for as long as this lives.
class Dialogue {
 public:
  explicit Dialogue(std::string const& input) : input_(input), redirected_(std::cin, input_.rdbuf()) {}

  [[nodiscard]] std::string output() const { return output_.text(); }

 private:
  std::istringstream input_;
  Redirected redirected_;
  Captured output_{std::cout};
};

}  // namespace tarn::test
