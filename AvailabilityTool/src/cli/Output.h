#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// Remembers why a stream could not be written. The stream itself remembers only that a write failed. Later, `errno`
/// may be that of another operation.
///
///     WriteErrors const errors(std::cout);
///     std::cout << "a verdict\n";
///     flushResults(std::cout);
class WriteErrors : public std::streambuf {
 public:
  /// Puts itself between `out` and its buffer. `out` must live longer.
  explicit WriteErrors(std::ostream& out);
  ~WriteErrors() override;
  WriteErrors(WriteErrors const&) = delete;
  WriteErrors& operator=(WriteErrors const&) = delete;

  /// The `errno` of the first write that failed. 0 if none failed, or if it set no `errno`.
  [[nodiscard]] int first() const noexcept { return first_; }

 protected:
  std::streamsize xsputn(char const* text, std::streamsize count) override;
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  void keepWhy();

  std::ostream& out_;
  std::streambuf* const below_;
  bool failed_ = false;
  int first_ = 0;
};

/// The end of a sentence that says that something failed: ": " and the text of the `errno`, "" for 0.
[[nodiscard]] std::string becauseOf(int error);

/// Flushes `out`. Throws a `Failure` if something could not be written: the reader is gone, or the disk is full. The
/// message gives the reason if a `WriteErrors` watches the stream.
void flushResults(std::ostream& out);

/// Prepares the process for writing. When a reader goes away, or a file reaches its maximum size, writing fails;
/// without this call a signal would end the process. A standard stream that the caller closed does not become the first
/// file that is opened: reading from it gives nothing, and writing to it fails with EBADF.
void prepareStandardStreams() noexcept;

}  // namespace tarn::tool
