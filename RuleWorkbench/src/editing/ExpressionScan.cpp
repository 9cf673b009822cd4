#include "editing/ExpressionScan.h"

#include <algorithm>
#include <array>

#include <tarn/StringUtilities.h>
#include <tarn/rules/RuleFunction.h>

#include "expression/Lexer.h"

namespace tarn::workbench {

using rules::Lexer;
using rules::Token;
using rules::TokenKind;

namespace {

constexpr std::array<std::string_view, 7> keywords = {"and", "or", "not", "in", "implies", "true", "false"};

using Scope = std::shared_ptr<ExpressionScope const>;

/// The tokens of the text. A token whose end is missing reaches to the end of the text.
class Tokens {
 public:
  explicit Tokens(std::string_view text) : text_(text) {}

  [[nodiscard]] std::vector<ExpressionPart> all() {
    std::vector<ExpressionPart> parts;
    std::size_t begin = 0;
    while (begin < text_.size()) {
      Lexer lexer(text_.substr(begin));
      std::size_t last = begin;
      for (;;) {
        Token token;
        rules::Issue issue;
        if (!lexer.next(token, issue)) {
          begin = skip(last, parts);
          break;
        }
        if (token.kind == TokenKind::End) return parts;
        parts.push_back(partOf(token, begin));
        last = parts.back().span.end;
      }
    }
    return parts;
  }

 private:
  /// Goes on after something that is not a token. Returns where.
  std::size_t skip(std::size_t from, std::vector<ExpressionPart>& parts) const {
    while (from < text_.size() && StringUtilities::isSpace(text_[from])) ++from;
    if (from == text_.size()) return from;
    char const c = text_[from];
    char const after = from + 1 < text_.size() ? text_[from + 1] : '\0';
    bool const isPath = c == '{' || (c == '$' && after == '{');
    if (!isPath && c != '\'' && c != '"') {
      // A number with letters, or a sign without meaning.
      std::size_t end = from + 1;
      while (end < text_.size() && (static_cast<unsigned char>(text_[end]) & 0xC0U) == 0x80U) ++end;
      while (isDigit(c) && end < text_.size() && (isDigit(text_[end]) || isLetter(text_[end]))) ++end;
      return end;
    }
    ExpressionPart part;
    part.kind = !isPath    ? ExpressionPart::Kind::Text
                : c == '$' ? ExpressionPart::Kind::Parameter
                           : ExpressionPart::Kind::Objects;
    part.span = {from, text_.size()};
    part.content = {from + (c == '$' ? 2 : 1), text_.size()};
    part.text = text_.substr(part.content.begin);
    part.isOpen = true;
    parts.push_back(std::move(part));
    return text_.size();
  }

  [[nodiscard]] static bool isDigit(char c) { return (c >= '0' && c <= '9') || c == '.'; }
  [[nodiscard]] static bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }

  [[nodiscard]] static ExpressionPart partOf(Token const& token, std::size_t begin) {
    ExpressionPart part;
    part.span = {begin + token.range.offset, begin + token.range.offset + token.range.length};
    part.content = part.span;
    part.text = token.text;
    switch (token.kind) {
      case TokenKind::Number:
        part.kind = ExpressionPart::Kind::Number;
        break;
      case TokenKind::Text:
        part.kind = ExpressionPart::Kind::Text;
        part.content = {part.span.begin + 1, part.span.end - 1};
        break;
      case TokenKind::Parameter:
      case TokenKind::Objects:
        part.kind =
            token.kind == TokenKind::Parameter ? ExpressionPart::Kind::Parameter : ExpressionPart::Kind::Objects;
        part.content = {begin + token.contentOffset, part.span.end - 1};
        break;
      case TokenKind::Word:
        part.kind = std::find(keywords.begin(), keywords.end(), token.text) != keywords.end()
                        ? ExpressionPart::Kind::Keyword
                        : ExpressionPart::Kind::Word;
        break;
      default:
        break;
    }
    return part;
  }

  std::string_view text_;
};

/// Follows the parentheses of an expression, and gives its parts their meaning.
class Scopes {
 public:
  void take(std::vector<ExpressionPart>& parts, std::size_t i) {
    ExpressionPart& part = parts[i];
    switch (part.kind) {
      case ExpressionPart::Kind::Symbol:
        symbol(parts, i);
        break;
      case ExpressionPart::Kind::Word:
        word(parts, i);
        break;
      case ExpressionPart::Kind::Parameter:
        part.scope = scope_;
        break;
      case ExpressionPart::Kind::Objects:
        part.scope = scope_;
        if (!open_.empty() && open_.back().isSet && open_.back().argument == 0 && !open_.back().objects) {
          open_.back().objects = patternOf(part.text, scope_.get(), nullptr);
        }
        break;
      case ExpressionPart::Kind::Text:
        if (!open_.empty() && open_.back().argument == 0) {
          if (open_.back().function == "check") part.kind = ExpressionPart::Kind::CheckName;
          if (open_.back().function == "list") part.kind = ExpressionPart::Kind::ListName;
          if (open_.back().function == "value") part.kind = ExpressionPart::Kind::ValueName;
        }
        break;
      default:
        break;
    }
  }

  [[nodiscard]] Scope const& scope() const noexcept { return scope_; }

 private:
  struct Open {
    std::string function;
    bool isSet = false;
    std::size_t argument = 0;
    std::string objectName;
    std::optional<PathPattern> objects;
    Scope outer;
  };
  /// Deeper than any expression that can be loaded.
  static constexpr std::size_t mostLevels = 1000;

  void symbol(std::vector<ExpressionPart> const& parts, std::size_t i) {
    std::string const& text = parts[i].text;
    if (text == "(") {
      Open open;
      if (i > 0 && parts[i - 1].kind == ExpressionPart::Kind::Function) open.function = parts[i - 1].text;
      open.isSet = isSetFunction(open.function);
      open.outer = scope_;
      if (open_.size() < mostLevels) open_.push_back(std::move(open));
    } else if (text == ")" && !open_.empty()) {
      Open const closed = std::move(open_.back());
      open_.pop_back();
      scope_ = closed.outer;
      bool const isFirst = !open_.empty() && open_.back().isSet && open_.back().argument == 0;
      if (isFirst && closed.objects && !open_.back().objects) open_.back().objects = closed.objects;
    } else if (text == "," && !open_.empty()) {
      Open& open = open_.back();
      if (++open.argument == 1 && open.isSet) enter(open);
    }
  }

  void enter(Open const& open) {
    auto scope = std::make_shared<ExpressionScope>();
    if (open.outer) scope->names = open.outer->names;
    scope->context = open.objects.value_or(open.outer ? open.outer->context : PathPattern());
    if (!open.objectName.empty()) scope->names.emplace_back(open.objectName, scope->context);
    scope_ = std::move(scope);
  }

  void word(std::vector<ExpressionPart>& parts, std::size_t i) {
    ExpressionPart& part = parts[i];
    bool const isCall =
        i + 1 < parts.size() && parts[i + 1].kind == ExpressionPart::Kind::Symbol && parts[i + 1].text == "(";
    if (isCall) {
      part.kind = ExpressionPart::Kind::Function;
      return;
    }
    bool const isFirst = i > 0 && parts[i - 1].text == "(" && !open_.empty() && open_.back().isSet;
    if (isFirst && i + 1 < parts.size() && parts[i + 1].text == "in") {
      open_.back().objectName = part.text;
      part.kind = ExpressionPart::Kind::Name;
      return;
    }
    if (!scope_) return;
    for (auto name = scope_->names.rbegin(); name != scope_->names.rend(); ++name) {
      if (name->first != part.text) continue;
      part.kind = ExpressionPart::Kind::Name;
      part.scope = scope_;
      if (!open_.empty() && open_.back().isSet && open_.back().argument == 0 && !open_.back().objects) {
        open_.back().objects = name->second;
      }
      return;
    }
  }

  std::vector<Open> open_;
  Scope scope_;
};

}  // namespace

bool isSetFunction(std::string_view function) {
  auto const& functions = rules::ruleFunctions();
  return std::any_of(functions.begin(), functions.end(), [&](rules::RuleFunction const& one) {
    return one.name == function && one.cost == rules::RuleFunction::Cost::EachObject;
  });
}

std::vector<ExpressionPart> scanExpression(std::string_view text) {
  std::vector<ExpressionPart> parts = Tokens(text).all();
  Scopes scopes;
  for (std::size_t i = 0; i < parts.size(); ++i) scopes.take(parts, i);
  return parts;
}

std::shared_ptr<ExpressionScope const> scopeAtEnd(std::string_view text) {
  std::vector<ExpressionPart> parts = Tokens(text).all();
  Scopes scopes;
  for (std::size_t i = 0; i < parts.size(); ++i) scopes.take(parts, i);
  return scopes.scope();
}

std::optional<PathPattern> patternOf(std::string_view text, ExpressionScope const* scope, std::string* parameter) {
  PathPattern::Fault fault;
  auto pattern =
      parameter != nullptr ? PathPattern::parseParameter(text, *parameter, fault) : PathPattern::parse(text, fault);
  if (!pattern || scope == nullptr) return pattern;
  auto const& steps = pattern->steps();
  bool const mayBeName = pattern->start() == PathPattern::Start::Context && !steps.empty() &&
                         steps.front().kind == PathPattern::StepKind::Child && steps.front().name.empty();
  if (mayBeName) {
    for (auto name = scope->names.rbegin(); name != scope->names.rend(); ++name) {
      if (name->first == steps.front().type) return pattern->withoutFirstStep().seenFrom(name->second);
    }
  }
  return pattern->seenFrom(scope->context);
}

std::vector<Span> componentsOf(std::string_view path) {
  std::vector<Span> components;
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= path.size(); ++i) {
    if (i < path.size() && path[i] == '\\') {
      ++i;
    } else if (i == path.size() || path[i] == '/') {
      if (i > begin) components.push_back({begin, i});
      begin = i + 1;
    }
  }
  if (begin < path.size() && (components.empty() || components.back().end < path.size())) {
    components.push_back({begin, path.size()});  // it ends in the middle of an escape
  }
  return components;
}

Span typeSpan(std::string_view path, Span component) {
  while (component.size() > 0 && StringUtilities::isSpace(path[component.begin])) ++component.begin;
  if (component.size() > 0 && path[component.begin] == '^') ++component.begin;
  for (std::size_t i = component.begin; i < component.end; ++i) {
    if (path[i] == '\\') {
      ++i;
    } else if (path[i] == ':') {
      component.end = i;
    }
  }
  while (component.size() > 0 && StringUtilities::isSpace(path[component.end - 1])) --component.end;
  return component;
}

std::string typeOfComponent(std::string_view component) {
  Span const span = typeSpan(component, {0, component.size()});
  std::string_view const text = component.substr(span.begin, span.size());
  if (text == ".." || text == "*" || text == "**" || text == "@") return {};
  std::string type;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size()) ++i;
    type += text[i];
  }
  return type;
}

}  // namespace tarn::workbench
