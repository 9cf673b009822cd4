#pragma once

#include <string>
#include <string_view>

#include "expression/Expression.h"

namespace tarn::rules {

enum class TokenKind { End, Number, Text, Word, Parameter, Objects, Symbol };

/// A token of an expression. `text` is the content: of a text without its quotes, of a path what stands between the
/// braces (`range` covers the whole), of a symbol or word the characters themselves.
struct Token {
  TokenKind kind = TokenKind::End;
  Range range;
  std::string text;
  double number = 0;
  std::size_t contentOffset = 0;  // where the content of a path begins
};

/// Divides an expression into tokens, one at a time.
class Lexer {
 public:
  explicit Lexer(std::string_view text) : text_(text) {}

  /// Reads the next token. False, with the fault's place and message, when there is none to be made of what follows.
  bool next(Token& token, Range& fault, std::string& message);

 private:
  bool number(Token& token, Range& fault, std::string& message);
  bool quoted(Token& token, Range& fault, std::string& message);
  bool path(Token& token, Range& fault, std::string& message);
  bool symbol(Token& token, Range& fault, std::string& message);

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace tarn::rules
