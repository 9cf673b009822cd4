#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/PathPattern.h>

#include "editing/TextBuffer.h"

namespace tarn::workbench {

/// The objects in whose contexts a part of an expression is evaluated, seen from the owner of the rule, and the objects
/// that quantifiers around it have named.
struct ExpressionScope {
  PathPattern context;
  std::vector<std::pair<std::string, PathPattern>> names;  // the innermost last
};

/// A part of an expression: a token, and what it is there.
struct ExpressionPart {
  enum class Kind {
    Function,
    Keyword,  // and, or, not, in, implies, true, false
    Number,
    Text,
    Parameter,  // ${...}
    Objects,    // {...}
    Name,       // of the object under test
    CheckName,  // a text that names a check, list or value
    ListName,
    ValueName,
    Word,  // any other word
    Symbol
  };

  Kind kind = Kind::Symbol;
  Span span;     // in the expression
  Span content;  // of a text without its quotes, of a path without its braces
  std::string text;
  /// The end of a text or path is missing.
  bool isOpen = false;
  /// The scope of a path or name. Null: the owner of the rule, without names.
  std::shared_ptr<ExpressionScope const> scope = nullptr;
};

/// Divides an expression into parts. It may have any mistakes: what cannot be read is left out.
[[nodiscard]] std::vector<ExpressionPart> scanExpression(std::string_view text);

/// The scope at the end of an expression that is not complete.
[[nodiscard]] std::shared_ptr<ExpressionScope const> scopeAtEnd(std::string_view text);

/// The pattern of the path `text` as seen from the owner of the rule. With `parameter`, the last component is the name
/// of a parameter and goes there. Nothing if it is not a path.
[[nodiscard]] std::optional<PathPattern> patternOf(std::string_view text, ExpressionScope const* scope,
                                                   std::string* parameter);

/// The components of a path, as they are written, with the `/` between them left out.
[[nodiscard]] std::vector<Span> componentsOf(std::string_view path);

/// A component of a path as the name of a type or parameter: without escapes, `^`, and the name after `:`. Empty for
/// components that name no type, such as `..` and `*`.
[[nodiscard]] std::string typeOfComponent(std::string_view component);
/// The part of a component that is the type.
[[nodiscard]] Span typeSpan(std::string_view path, Span component);

/// Whether the function evaluates a condition for each object of a set.
[[nodiscard]] bool isSetFunction(std::string_view function);

}  // namespace tarn::workbench
