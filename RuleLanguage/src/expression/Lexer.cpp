// Tokens of the expression language. Characters that other languages would use here get a message that says what to
// write in this one.

#include "expression/Lexer.h"

#include <algorithm>
#include <array>
#include <utility>

#include <tarn/StringUtilities.h>
#include <tarn/TDFParam.h>

#include "diagnostics/NearMatch.h"

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

/// A notation of another language that users write by mistake.
struct Mistake {
  std::string_view written;
  std::string_view instead;  // empty when no plain replacement is right
  std::string_view message;
};

/// Longer notations come before the shorter ones that they begin with.
constexpr auto mistakes = std::to_array<Mistake>({
    {"&&", "and", "'&&' is not part of the language; write 'and'"},
    {"||", "or", "'||' is not part of the language; write 'or'"},
    {"&", "and", "'&' is not part of the language; write 'and'"},
    {"|", "or", "'|' is not part of the language; write 'or'"},
    {"===", "==", "'===' is not part of the language; write '=='"},
    {"!==", "!=", "'!==' is not part of the language; write '!='"},
    {"->", "implies", "'->' is not part of the language; write 'implies'"},
    {"//", "", "there is no operator for whole numbers; write floor(a / b)"},
    {"=~", "", "'=~' is not part of the language; see matches, contains, starts_with and ends_with"},
    {"=<", "<=", "'=<' is not part of the language; write '<='"},
    {"=>", ">=", "'=>' is not part of the language; write '>='"},
    {"<>", "!=", "'<>' is not part of the language; write '!='"},
    {"**", "", "there is no operator for powers; multiply the number by itself"},
    {"^", "", "there is no operator for powers; multiply the number by itself"},
    {"=", "==", "'=' does not compare; write '=='"},
    {"!", "not", "'!' is not part of the language; write 'not'"},
    {"~", "not", "'~' is not part of the language; write 'not'"},
    {"%", "", "'%' is not part of the language; write mod(a, b) for a remainder, and 5 [%] for units"},
    {"?", "", "'?' is not part of the language; a choice is written if(condition, a, b)"},
    {"[", "", "units belong after a number that is written out: 12 [m/s]; a list is written ('a', 'b')"},
    {"$", "", "'$' must be followed by a path in braces: ${Name}"},
    {"}", "", "'}' has no '{' before it"},
    {"@", "", "'@' begins a path, and paths are in braces: {@} or ${@/Name}"},
    {".", "", "the components of a path are separated by '/', and paths are in braces: ${Domain/Name}"},
});

/// Notations that begin with a symbol of the language, so they would be read as two.
constexpr std::array<std::string_view, 6> slips = {"<>", "===", "!==", "**", "->", "//"};

/// Signs that look like the quotes of the language.
constexpr std::array<std::string_view, 8> otherQuotes = {"`",      "\u2018", "\u2019", "\u201a",
                                                         "\u201c", "\u201d", "\u201e", "\u00b4"};

}  // namespace

bool Lexer::next(Token& token, Issue& issue) {
  while (position_ < text_.size() && StringUtilities::isSpace(text_[position_])) ++position_;
  token = Token{};
  std::size_t const begin = position_;
  token.range = {begin, 0};
  if (position_ == text_.size()) return true;

  char const c = text_[position_];
  char const after = position_ + 1 < text_.size() ? text_[position_ + 1] : '\0';
  bool good = false;
  if (isDigit(c) || (c == '.' && isDigit(after))) {
    good = number(token, issue);
  } else if (c == '\'' || c == '"') {
    good = quoted(token, issue);
  } else if (c == '{' || (c == '$' && after == '{')) {
    good = path(token, issue);
  } else if (isWordStart(c)) {
    std::size_t end = position_;
    while (end < text_.size() && isWordPart(text_[end])) ++end;
    token.kind = TokenKind::Word;
    token.text = text_.substr(position_, end - position_);
    position_ = end;
    good = true;
  } else {
    good = symbol(token, issue);
  }
  token.range = {begin, position_ - begin};
  return good;
}

bool Lexer::number(Token& token, Issue& issue) {
  std::size_t const begin = position_;
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
    issue.range = {position_, wordEnd - position_};
    issue.message =
        "'" + std::string(text_.substr(position_, wordEnd - position_)) + "' is not a number; write a text in quotes";
    return false;
  }
  token.kind = TokenKind::Number;
  token.text = text_.substr(position_, end - position_);
  token.number = *value;
  position_ = end;
  while (end < text_.size() && StringUtilities::isSpace(text_[end])) ++end;
  if (end == text_.size() || text_[end] != '[') return true;
  std::size_t const close = text_.find_first_of("[]", end + 1);
  if (close == std::string_view::npos || text_[close] == '[') {
    issue.range = {end, (close == std::string_view::npos ? text_.size() : close) - end};
    issue.message = "the units that begin here have no closing ']'";
    return false;
  }
  token.hasUnits = true;
  token.units = text_.substr(end + 1, close - end - 1);
  position_ = close + 1;
  token.text = text_.substr(begin, position_ - begin);
  return true;
}

bool Lexer::quoted(Token& token, Issue& issue) {
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
  issue.range = {position_, text_.size() - position_};
  issue.message = std::string("the text that begins here has no closing ") + quote;
  return false;
}

bool Lexer::path(Token& token, Issue& issue) {
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
  issue.range = {position_, text_.size() - position_};
  issue.message = "the path that begins here has no closing '}'";
  return false;
}

Replacement Lexer::replacement(std::string_view written, std::string_view instead) const {
  // A word needs blanks around it, which a symbol does not need.
  std::size_t const end = position_ + written.size();
  bool const isWord = isWordStart(instead.front());
  std::string text(instead);
  if (isWord && position_ > 0 && !StringUtilities::isSpace(text_[position_ - 1])) text.insert(0, 1, ' ');
  if (isWord && end < text_.size() && !StringUtilities::isSpace(text_[end])) text += ' ';
  return {{position_, written.size()}, std::move(text), "Replace " + inQuotes(written) + " by " + inQuotes(instead)};
}

bool Lexer::leadingSign(Issue& issue) const {
  issue.range = {position_, 1};
  issue.message = "this is always an expression; remove the '=' before it";
  std::size_t next = position_ + 1;
  while (next < text_.size() && StringUtilities::isSpace(text_[next])) ++next;
  // The character after the sign is written again, because a scalar cannot begin with nothing.
  if (next < text_.size()) {
    issue.fix = Replacement{{position_, next + 1 - position_}, std::string(1, text_[next]), "Remove '='"};
  }
  return false;
}

bool Lexer::symbol(Token& token, Issue& issue) {
  static constexpr std::array<std::string_view, 13> symbols = {"==", "!=", "<=", ">=", "<", ">", "(",
                                                               ")",  ",",  "+",  "-",  "*", "/"};
  auto const rest = text_.substr(position_);
  bool const slip = std::any_of(slips.begin(), slips.end(), [&](auto written) { return rest.starts_with(written); });
  for (auto const known : symbols) {
    if (slip || !rest.starts_with(known)) continue;
    token.kind = TokenKind::Symbol;
    token.text = known;
    position_ += known.size();
    return true;
  }
  if (rest.front() == '=' && StringUtilities::trimmed(text_.substr(0, position_)).empty() && !rest.starts_with("==")) {
    return leadingSign(issue);
  }
  for (auto const& mistake : mistakes) {
    if (!rest.starts_with(mistake.written)) continue;
    issue.range = {position_, mistake.written.size()};
    issue.message = mistake.message;
    if (!mistake.instead.empty()) issue.fix = replacement(mistake.written, mistake.instead);
    return false;
  }
  std::size_t length = 1;
  while (position_ + length < text_.size() && (static_cast<unsigned char>(text_[position_ + length]) & 0xC0) == 0x80) {
    ++length;
  }
  issue.range = {position_, length};
  auto const byte = static_cast<unsigned char>(rest.front());
  if (byte < 0x20 || byte == 0x7f) {
    issue.message = "an expression cannot contain a control character";
    return false;
  }
  auto const written = rest.substr(0, length);
  bool const isQuote = std::find(otherQuotes.begin(), otherQuotes.end(), written) != otherQuotes.end();
  issue.message = "'" + std::string(written) + "' has no meaning here; write a text in " +
                  (isQuote ? "straight quotes: 'text'" : "quotes");
  return false;
}

}  // namespace tarn::rules
