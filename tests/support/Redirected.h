#pragma once

#include <ios>
#include <streambuf>

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

}  // namespace tarn::test
