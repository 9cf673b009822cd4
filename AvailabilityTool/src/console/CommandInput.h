#pragma once

#include <functional>
#include <istream>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// While it lives, a stream that cannot be read has come to its end. A stream by itself only remembers that reading
/// went wrong, and a loop that looks for the end of the input would go round for ever. What was read ahead of the last
/// line that somebody took is lost with the object.
class CommandInput : public std::streambuf {
 public:
  /// Stands between `in`, which must live longer, and its buffer. `goesOn` is asked before each line; when it says no,
  /// that is the end as well.
  CommandInput(std::istream& in, std::function<bool()> goesOn);
  ~CommandInput() override;
  CommandInput(CommandInput const&) = delete;
  CommandInput& operator=(CommandInput const&) = delete;

  [[nodiscard]] bool hasFailed() const noexcept { return hasFailed_; }
  /// The `errno` of what failed; 0 when it set none.
  [[nodiscard]] int error() const noexcept { return error_; }

 protected:
  int_type underflow() override;

 private:
  [[nodiscard]] bool readSome();

  std::istream& in_;
  std::streambuf* const below_;
  std::function<bool()> const goesOn_;
  std::string piece_;
  bool hasFailed_ = false;
  int error_ = 0;
};

}  // namespace tarn::tool
