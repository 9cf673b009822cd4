#include "cli/ShellWord.h"

namespace tarn::tool {

std::string shellWord(std::string_view text) {
  constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:=,+@%";
  bool const isPlain = !text.empty() && text.find_first_not_of(plain) == std::string_view::npos;
  if (isPlain) return std::string(text);
  std::string word = "'";
  for (char const c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + '\'';
}

}  // namespace tarn::tool
