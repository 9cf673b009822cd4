#pragma once

#include <string>
#include <string_view>

#include "expression/Issue.h"

namespace tarn::rules {

enum class TokenKind { End, Number, Text, Word, Parameter, Objects, Symbol };

/// A token of an expression. `text` is its content: a text without its quotes, a path without its braces, a symbol or
/// word as it is written. `range` covers the whole token.
struct Token {
  TokenKind kind = TokenKind::End;
  Range range;
  std::string text;
  double number = 0;
  std::string units;  // of a number that is followed by its units in brackets
  bool hasUnits = false;
  std::size_t contentOffset = 0;  // position of the first character of a path inside its braces
};

/// Divides an expression into tokens, one at a time.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  /// Reads the next token; at the end of the text, one of kind `End`. Returns false, and fills `issue`, when the text
  /// goes on with something that is not a token.
  bool next(Token& token, Issue& issue);

 private:
  bool number(Token& token, Issue& issue);
  bool quoted(Token& token, Issue& issue);
  bool path(Token& token, Issue& issue);
  bool symbol(Token& token, Issue& issue);
  /// An expression that begins with "=" where there is always an expression.
  bool leadingSign(Issue& issue) const;
  [[nodiscard]] Replacement replacement(std::string_view written, std::string_view instead) const;

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace tarn::rules
