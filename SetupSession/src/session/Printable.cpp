#include "session/Printable.h"

#include <array>
#include <cstdio>

namespace tarn::session {

/// Control characters would move the cursor of a terminal, and marks of writing direction would swap what is around
/// them.
std::string escaped(std::string_view text) {
  std::string result;
  std::size_t const end = text.size();
  for (std::size_t i = 0; i < end; ++i) {
    auto const c = static_cast<unsigned char>(text[i]);
    bool const isC1 = c == 0xC2 && i + 1 < end && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    bool const isDirection =
        c == 0xE2 && i + 2 < end &&
        ((static_cast<unsigned char>(text[i + 1]) == 0x80 &&
          ((static_cast<unsigned char>(text[i + 2]) >= 0xAA && static_cast<unsigned char>(text[i + 2]) <= 0xAE) ||
           static_cast<unsigned char>(text[i + 2]) == 0x8E || static_cast<unsigned char>(text[i + 2]) == 0x8F)) ||
         (static_cast<unsigned char>(text[i + 1]) == 0x81 && static_cast<unsigned char>(text[i + 2]) >= 0xA6 &&
          static_cast<unsigned char>(text[i + 2]) <= 0xA9));
    if (c >= 0x20 && c != 0x7F && !isC1 && !isDirection) {
      result += text[i];
      continue;
    }
    std::size_t const bytes = isDirection ? 3 : isC1 ? 2 : 1;
    for (std::size_t k = 0; k < bytes; ++k) {
      std::array<char, 5> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02X", static_cast<unsigned char>(text[i + k]));
      result += escape.data();
    }
    i += bytes - 1;
  }
  return result;
}

std::string printable(std::string_view text, std::size_t longest) {
  if (text.size() <= longest) return escaped(text);
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) --end;  // do not split a character
  return escaped(text.substr(0, end)) + "...";
}

}  // namespace tarn::session
