#pragma once

#include <streambuf>
#include <string>

namespace tarn::tool {

/// Stands under an output stream and keeps back the last line as long as it is not ended, so that it can be taken as a
/// prompt. Lines go on to the buffer below when they end; a flush reaches that too, but does not let go of the line.
class PromptBuffer final : public std::streambuf {
 public:
  /// `below` must outlive this buffer.
  explicit PromptBuffer(std::streambuf& below) noexcept : below_(below) {}
  /// Hands on what it has kept back.
  ~PromptBuffer() override;
  PromptBuffer(PromptBuffer const&) = delete;
  PromptBuffer& operator=(PromptBuffer const&) = delete;

  /// The line that is not ended, which is then no longer kept and never written.
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
