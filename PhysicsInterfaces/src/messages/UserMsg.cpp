// Fills the tokens %1 to %9 of a message, one value after the other. The rule is: search the token from the front,
// replace its two characters by the value, and search again from the front, until there is no token.
//
// If replacing ends, the result does not depend on the order of the replacements, because two tokens never overlap. So
// the text is read once from left to right, with a stack of the parts still to read. A token is replaced as soon as its
// last character is in the result. This also finds a token that arises across the border of a value. If replacing would
// not end, only the tokens of the original text are replaced.
#include <tarn/UserMsg.h>

#include <iostream>
#include <optional>
#include <string_view>
#include <vector>

namespace tarn {

namespace {

constexpr std::size_t replacedLength = 2;
// The number of bytes that tokens which arise while replacing may add before replacing counts as endless. No message
// for a reader is that long.
constexpr std::size_t addedLimit = std::size_t{1} << 18;

std::size_t count(std::string_view text, std::string_view token) {
  std::size_t found = 0;
  for (std::size_t at = text.find(token); at != std::string_view::npos; at = text.find(token, at + token.size()))
    ++found;
  return found;
}

std::string replaceOnce(std::string_view text, std::string_view token, std::string_view value) {
  std::string result;
  for (;;) {
    std::size_t const at = text.find(token);
    result += text.substr(0, at);
    if (at == std::string_view::npos) return result;
    result += value;
    text.remove_prefix(at + replacedLength);
  }
}

// Whether the replacement of a token can make new tokens without end, by joining with the text before and after it. A
// shorter replacement cannot, because the text shrinks.
bool mayBeEndless(std::string_view replacement, std::string_view token) {
  if (replacement.size() < token.size()) return false;
  bool joinsLeft = false;
  bool joinsRight = false;
  for (std::size_t i = 1; i < token.size(); ++i) {
    joinsLeft = joinsLeft || replacement.starts_with(token.substr(i));
    joinsRight = joinsRight || replacement.ends_with(token.substr(0, i));
  }
  return joinsLeft && joinsRight;
}

// The text with all tokens replaced, or nothing if replacing would not end.
std::optional<std::string> replaceAll(std::string_view text, std::string_view token, std::string_view value,
                                      std::size_t tokens) {
  std::string_view const kept = token.substr(replacedLength);  // the last of three characters stays
  std::string const replacement = std::string(value).append(kept);
  if (replacement.find(token) != std::string::npos) return std::nullopt;
  std::size_t allowed = std::string_view::npos;
  if (mayBeEndless(replacement, token)) allowed = tokens + text.size() + addedLimit / replacement.size();

  std::string result;
  result.reserve(text.size() + tokens * value.size());
  std::vector<std::string_view> toCome{text};
  std::size_t replaced = 0;
  while (!toCome.empty()) {
    std::string_view part = toCome.back();
    toCome.pop_back();
    while (!part.empty()) {
      std::size_t const last = part.find(token.back());
      if (last == std::string_view::npos) {
        result += part;
        break;
      }
      result += part.substr(0, last + 1);
      part.remove_prefix(last + 1);
      if (!result.ends_with(token)) continue;
      if (++replaced > allowed) return std::nullopt;
      result.resize(result.size() - token.size());
      if (!part.empty()) toCome.push_back(part);
      part = replacement;
    }
  }
  return result;
}

}  // namespace

UserMsg::UserMsg(std::string const& text, bool* translated) : shown_{text, 0}, english_{text, 0} {
  if (translated) *translated = false;
}

UserMsg& UserMsg::operator<<(std::string const& value) {
  fill(shown_, value);
  fill(english_, value);
  return *this;
}

void UserMsg::fill(Text& target, std::string const& value) {
  ++target.filled;
  std::string const token = "%" + std::to_string(target.filled);
  std::size_t const tokens = count(target.text, token);
  if (tokens == 0) {
    std::cerr << "Warning: token %" << target.filled << " was not used in the message: \"" << value << '"';
    return;
  }
  std::optional<std::string> filled = replaceAll(target.text, token, value, tokens);
  target.text = filled ? *std::move(filled) : replaceOnce(target.text, token, value);
}

}  // namespace tarn
