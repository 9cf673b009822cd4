#include "console/PromptBuffer.h"

#include <string_view>
#include <utility>

namespace tarn::tool {

PromptBuffer::~PromptBuffer() {
  try {
    below_.sputn(kept_.data(), static_cast<std::streamsize>(kept_.size()));
    below_.pubsync();
  } catch (...) {  // there is no stream left to report it to
    kept_.clear();
  }
}

std::string PromptBuffer::takePrompt() {
  return std::exchange(kept_, {});
}

std::streamsize PromptBuffer::xsputn(char const* text, std::streamsize count) {
  std::string_view const given(text, static_cast<std::size_t>(count));
  auto const end = given.rfind('\n');
  if (end == std::string_view::npos) {
    kept_ += given;
    return count;
  }
  auto const kept = static_cast<std::streamsize>(kept_.size());
  auto const ended = static_cast<std::streamsize>(end) + 1;
  if (below_.sputn(kept_.data(), kept) != kept) return 0;
  kept_.clear();
  if (std::streamsize const written = below_.sputn(text, ended); written != ended) return written;
  kept_ = given.substr(end + 1);
  return count;
}

PromptBuffer::int_type PromptBuffer::overflow(int_type c) {
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  char const character = traits_type::to_char_type(c);
  return xsputn(&character, 1) == 1 ? c : traits_type::eof();
}

int PromptBuffer::sync() {
  return below_.pubsync();
}

}  // namespace tarn::tool
