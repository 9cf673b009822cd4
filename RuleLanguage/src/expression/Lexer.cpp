// Tokens of the expression language. The characters that other languages would use here get a message that says what
// this one writes.

#include "expression/Lexer.h"

#include <algorithm>
#include <array>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

namespace tarn::rules {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool isWordPart(char c) {
  return isWordStart(c) || isDigit(c);
}

struct Mistake {
  std::string_view written;
  std::string_view message;
};

constexpr std::array<Mistake, 9> mistakes = {{
    {"&&", "'&&' is not part of the language; write 'and'"},
    {"||", "'||' is not part of the language; write 'or'"},
    {"=~", "'=~' is not part of the language; see contains, starts_with and ends_with"},
    {"<>", "'<>' is not part of the language; write '!='"},
    {"=", "'=' compares nothing; write '=='"},
    {"!", "'!' is not part of the language; write 'not'"},
    {"[", "units are not written in an expression: a quantity counts as its number"},
    {"$", "'$' must stand before a path in braces: ${Name}"},
    {"}", "'}' has no '{' before it"},
}};

}  // namespace

bool Lexer::next(Token& token, Range& fault, std::string& message) {
  while (position_ < text_.size() && StringUtilities::isSpace(text_[position_])) ++position_;
  token = Token{};
  token.range.offset = position_;
  if (position_ == text_.size()) return true;

  char const c = text_[position_];
  char const after = position_ + 1 < text_.size() ? text_[position_ + 1] : '\0';
  bool good = false;
  if (isDigit(c) || (c == '.' && isDigit(after))) {
    good = number(token, fault, message);
  } else if (c == '\'' || c == '"') {
    good = quoted(token, fault, message);
  } else if (c == '{' || (c == '$' && after == '{')) {
    good = path(token, fault, message);
  } else if (isWordStart(c)) {
    std::size_t end = position_;
    while (end < text_.size() && isWordPart(text_[end])) ++end;
    token.kind = TokenKind::Word;
    token.text = text_.substr(position_, end - position_);
    position_ = end;
    good = true;
  } else {
    good = symbol(token, fault, message);
  }
  token.range.length = position_ - token.range.offset;
  return good;
}

bool Lexer::number(Token& token, Range& fault, std::string& message) {
  std::size_t end = position_;
  auto const digits = [&] {
    while (end < text_.size() && isDigit(text_[end])) ++end;
  };
  digits();
  if (end < text_.size() && text_[end] == '.') {
    ++end;
    digits();
  }
  if (end < text_.size() && (text_[end] == 'e' || text_[end] == 'E')) {
    std::size_t exponent = end + 1;
    if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
    if (exponent < text_.size() && isDigit(text_[exponent])) {
      end = exponent;
      digits();
    }
  }
  std::size_t wordEnd = end;
  while (wordEnd < text_.size() && (isWordPart(text_[wordEnd]) || text_[wordEnd] == '.')) ++wordEnd;
  auto const value = TDFParam::asNumber(text_.substr(position_, end - position_));
  if (wordEnd != end || !value) {
    fault = {position_, wordEnd - position_};
    message =
        "'" + std::string(text_.substr(position_, wordEnd - position_)) + "' is no number; a text stands in quotes";
    return false;
  }
  token.kind = TokenKind::Number;
  token.text = text_.substr(position_, end - position_);
  token.number = *value;
  position_ = end;
  return true;
}

bool Lexer::quoted(Token& token, Range& fault, std::string& message) {
  char const quote = text_[position_];
  token.kind = TokenKind::Text;
  for (std::size_t i = position_ + 1; i < text_.size(); ++i) {
    if (text_[i] != quote) {
      token.text += text_[i];
    } else if (i + 1 < text_.size() && text_[i + 1] == quote) {
      token.text += quote;
      ++i;
    } else {
      position_ = i + 1;
      return true;
    }
  }
  fault = {position_, text_.size() - position_};
  message = std::string("the text that begins here has no closing ") + quote;
  return false;
}

bool Lexer::path(Token& token, Range& fault, std::string& message) {
  bool const parameter = text_[position_] == '$';
  std::size_t const begin = position_ + (parameter ? 2 : 1);
  token.kind = parameter ? TokenKind::Parameter : TokenKind::Objects;
  token.contentOffset = begin;
  for (std::size_t i = begin; i < text_.size(); ++i) {
    if (text_[i] == '\\') {
      ++i;
    } else if (text_[i] == '}') {
      token.text = text_.substr(begin, i - begin);
      position_ = i + 1;
      return true;
    }
  }
  fault = {position_, text_.size() - position_};
  message = "the path that begins here has no closing '}'";
  return false;
}

bool Lexer::symbol(Token& token, Range& fault, std::string& message) {
  static constexpr std::array<std::string_view, 13> symbols = {"==", "!=", "<=", ">=", "<", ">", "(",
                                                               ")",  ",",  "+",  "-",  "*", "/"};
  auto const rest = text_.substr(position_);
  // "<>" would otherwise read as two comparisons.
  bool const slip = rest.starts_with("<>");
  for (auto const known : symbols) {
    if (slip || !rest.starts_with(known)) continue;
    token.kind = TokenKind::Symbol;
    token.text = known;
    position_ += known.size();
    return true;
  }
  for (auto const& mistake : mistakes) {
    if (!rest.starts_with(mistake.written)) continue;
    fault = {position_, mistake.written.size()};
    message = mistake.message;
    return false;
  }
  std::size_t length = 1;
  while (position_ + length < text_.size() && (static_cast<unsigned char>(text_[position_ + length]) & 0xC0) == 0x80) {
    ++length;
  }
  fault = {position_, length};
  auto const byte = static_cast<unsigned char>(rest.front());
  message = byte < 0x20 || byte == 0x7f
                ? "a control character has no place in an expression"
                : "'" + std::string(rest.substr(0, length)) + "' has no meaning here; a text stands in quotes";
  return false;
}

}  // namespace tarn::rules
