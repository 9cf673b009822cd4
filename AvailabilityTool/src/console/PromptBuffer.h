#pragma once

#include <streambuf>
#include <string>

namespace tarn::tool {

/// The buffer of an output stream that holds back the last line until it ends, so that it can serve as a prompt.
/// Complete lines go to the buffer below. A flush reaches that buffer too, but the last line stays here.
class PromptBuffer final : public std::streambuf {
 public:
  /// `below` must outlive this buffer.
  explicit PromptBuffer(std::streambuf& below) noexcept : below_(below) {}
  /// Writes what was held back.
  ~PromptBuffer() override;
  PromptBuffer(PromptBuffer const&) = delete;
  PromptBuffer& operator=(PromptBuffer const&) = delete;

  /// Returns the line that has not ended. It is then no longer held back, and never written.
  [[nodiscard]] std::string takePrompt();

 protected:
  std::streamsize xsputn(char const* text, std::streamsize count) override;
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  std::streambuf& below_;
  std::string kept_;
};

}  // namespace tarn::tool
