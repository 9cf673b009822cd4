#pragma once

#include <ostream>
#include <streambuf>
#include <string>

namespace tarn::tool {

/// Keeps why a stream could not be written. The stream itself only remembers that a write failed, and when it is asked
/// at the end, `errno` may be that of a file which was not found meanwhile.
///
///     WriteErrors const errors(std::cout);
///     std::cout << "a verdict\n";
///     flushResults(std::cout);
class WriteErrors : public std::streambuf {
 public:
  /// Watches what is written to `out`, which must live longer, by standing between it and its buffer.
  explicit WriteErrors(std::ostream& out);
  ~WriteErrors() override;
  WriteErrors(WriteErrors const&) = delete;
  WriteErrors& operator=(WriteErrors const&) = delete;

  /// The `errno` of the first write that failed; 0 when none has failed, or it set none.
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

/// What to put behind a sentence that says that something failed: ": " and the text of the `errno`; nothing for 0.
[[nodiscard]] std::string becauseOf(int error);

/// Sees to it that what was written to `out` has arrived. Throws a `Failure` when it has not: the reader is gone, the
/// disk is full. Which it was is told of a stream that `WriteErrors` watches.
void flushResults(std::ostream& out);

/// Prepares the process for writing: a reader that goes away, and a file that has reached the size that it may have,
/// become a write that fails; and a standard stream that the caller has closed does not turn into the first file that
/// is opened: nothing can be read from it, and to write to it fails with EBADF.
void prepareStandardStreams() noexcept;

}  // namespace tarn::tool
