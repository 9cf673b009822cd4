#pragma once

#include <functional>
#include <istream>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// While an object exists, a stream that cannot be read is at its end. By itself, the stream only remembers that
/// reading failed, and a loop that waits for the end of the input would never end. Input that was read ahead of the
/// last line taken is lost when the object is destroyed.
class CommandInput : public std::streambuf {
 public:
  /// Puts itself between `in` and its buffer. `in` must live longer. `goesOn` is called before each line; if it returns
  /// false, the input ends.
  CommandInput(std::istream& in, std::function<bool()> goesOn);
  ~CommandInput() override;
  CommandInput(CommandInput const&) = delete;
  CommandInput& operator=(CommandInput const&) = delete;

  [[nodiscard]] bool hasFailed() const noexcept { return hasFailed_; }
  /// The `errno` of the failure. 0 if none was set.
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
