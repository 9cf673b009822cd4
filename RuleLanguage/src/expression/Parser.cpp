// A parser by recursive descent, with one operation per level of binding. Levels of nesting are counted, so no input
// can exhaust the stack, neither here nor in what walks the tree later. A chain of one operator becomes one node with
// many operands, and adds no level. A syntax error ends parsing, by a private exception; all other mistakes are
// collected.

#include "expression/Parser.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include <tarn/StringUtilities.h>

#include "expression/Functions.h"
#include "expression/Habits.h"
#include "expression/Lexer.h"
#include "expression/Nodes.h"
#include "expression/OperandChecks.h"
#include "patterns/RegularExpression.h"

namespace tarn::rules {

namespace {

/// Ends parsing. Everything that was found before is reported as well.
struct SyntaxError {
  Issue issue;
};

constexpr std::array<std::string_view, 5> operatorWords = {"and", "or", "not", "in", "implies"};

Replacement replaceBy(Range range, std::string_view written, std::string_view text) {
  return {range, std::string(text), "Replace " + inQuotes(written) + " by " + inQuotes(text)};
}

class Parser {
 public:
  Parser(std::string_view text, NamedRules const& named, PhysicsData const* data, ParserLimits const& limits)
      : text_(text), lexer_(text), named_(named), data_(data), limits_(limits), checks_(text, issues_) {}

  ParsedExpression parse(Role role) {
    ParsedExpression result;
    try {
      if (text_.size() > std::min(limits_.length, Range::longestText)) {
        fail({limits_.length, 1}, "the expression is longer than " + std::to_string(limits_.length) + " characters",
             Code::LimitExceeded);
      }
      advance();
      if (token_.kind == TokenKind::End) fail({0, text_.size()}, "an expression is missing");
      result.expression = implication();
      if (token_.kind != TokenKind::End) unexpected();
      checkRole(*result.expression, role);
    } catch (SyntaxError& error) {
      issues_.push_back(std::move(error.issue));
    }
    if (!issues_.empty()) result.expression = nullptr;
    std::stable_sort(issues_.begin(), issues_.end(),
                     [](Issue const& a, Issue const& b) { return a.range.offset < b.range.offset; });
    result.issues = std::move(issues_);
    result.calls = std::move(calls_);
    result.depth = deepest_;
    result.hasQuantities = hasQuantities_;
    return result;
  }

 private:
  /// Counts the levels of nesting for as long as it lives.
  class Level {
   public:
    explicit Level(Parser& parser) : parser_(parser) {
      parser_.deepest_ = std::max(parser_.deepest_, ++parser_.depth_);
      if (parser_.depth_ > parser_.limits_.depth) {
        fail(parser_.token_.range,
             "the expression is nested deeper than " + std::to_string(parser_.limits_.depth) +
                 " levels; move a part of it into a named check",
             Code::LimitExceeded);
      }
    }
    Level(Level const&) = delete;
    Level& operator=(Level const&) = delete;
    ~Level() { --parser_.depth_; }

   private:
    Parser& parser_;
  };

  [[noreturn]] static void fail(Range range, std::string message, Code code = Code::ExpressionSyntax,
                                std::optional<Replacement> fix = std::nullopt) {
    throw SyntaxError{{range, std::move(message), code, std::move(fix)}};
  }

  void advance() {
    Issue fault;
    last_ = token_.range;
    if (lexer_.next(token_, fault)) return;
    adviseAfter(fault);
    throw SyntaxError{std::move(fault)};
  }

  /// The advice for a sign of another language depends on what is before it: texts are joined, and methods are called.
  void adviseAfter(Issue& fault) const {
    auto const sign = text_.substr(fault.range.offset, fault.range.length);
    if (last_.length == 0 || (sign != "." && sign != "&")) return;
    char const first = text_[last_.offset];
    char const final = text_[std::size_t{last_.offset} + last_.length - 1];
    bool const isText = first == '\'' || first == '"';
    if (sign == "&" && isText) {
      fault.message = "'&' is not part of the language; texts are joined by '+'";
      fault.fix = replaceBy(fault.range, sign, "+");
    } else if (sign == "." && isText) {
      fault.message = "'.' does not join texts; write '+'";
      fault.fix = replaceBy(fault.range, sign, "+");
    } else if (sign == "." && (final == '}' || final == ')')) {
      fault.message = "a function is not called after a '.'; what it is applied to is its argument: size(list)";
    }
  }

  [[nodiscard]] bool isSymbol(std::string_view symbol) const {
    return token_.kind == TokenKind::Symbol && token_.text == symbol;
  }
  [[nodiscard]] bool isWord(std::string_view word) const {
    return token_.kind == TokenKind::Word && token_.text == word;
  }

  [[noreturn]] void unexpected() const {
    if (token_.kind == TokenKind::End) fail(end(), "the expression ends too early");
    if (isSymbol(")")) fail(token_.range, "')' has no '(' before it");
    if (token_.kind == TokenKind::Word && findFunction(token_.text) != nullptr) {
      fail(token_.range, "an operator is missing before this; " + inQuotes(token_.text) +
                             " is a function: " + std::string(findFunction(token_.text)->signature));
    }
    if (token_.kind == TokenKind::Word) {
      std::string message = "an operator is missing before " + inQuotes(token_.text);
      if (auto const advice = adviceForOperator(token_.text)) {
        if (advice->instead.empty()) fail(token_.range, message + std::string(advice->message));
        fail(token_.range, message + didYouMean(advice->instead), Code::ExpressionSyntax,
             replaceBy(token_.range, token_.text, advice->instead));
      }
      auto const known = std::find_if(operatorWords.begin(), operatorWords.end(), [&](std::string_view word) {
        return StringUtilities::equalIgnoringCase(token_.text, word);
      });
      bool const isAfterNumber =
          last_.length > 0 && std::string_view("0123456789.").find(text_[last_.offset]) != std::string_view::npos;
      if (known == operatorWords.end() && isAfterNumber) {
        message += "; units are written in brackets: [" + std::string(token_.text) + "]";
      }
      if (known == operatorWords.end()) fail(token_.range, std::move(message));
      fail(token_.range, message + didYouMean(*known), Code::ExpressionSyntax,
           replaceBy(token_.range, token_.text, *known));
    }
    fail(token_.range, "an operator is missing before this");
  }

  void expectSymbol(std::string_view symbol, std::string_view purpose) {
    if (!isSymbol(symbol)) {
      Range const range = token_.kind == TokenKind::End ? end() : token_.range;
      fail(range, inQuotes(symbol) + " is missing " + std::string(purpose));
    }
    advance();
  }

  void issue(Range range, std::string message, Code code, std::optional<Replacement> fix = std::nullopt) {
    issues_.push_back({range, std::move(message), code, std::move(fix)});
  }

  /// The position of something that is missing: after the last token.
  [[nodiscard]] Range end() const { return {std::size_t{last_.offset} + last_.length, 0}; }

  [[nodiscard]] Range since(std::size_t offset) const {
    return {offset, std::size_t{last_.offset} + last_.length - offset};
  }

  void checkRole(Expression const& expression, Role role) {
    switch (role) {
      case Role::Condition:
        checks_.requireCondition(expression);
        break;
      case Role::Text:
        checks_.requireScalar(expression);
        break;
      case Role::List:
        checks_.requireList(expression);
        break;
      case Role::Any:
        break;
    }
  }

  // The levels of binding, weakest first.

  ExpressionPtr implication() {
    Level const level(*this);
    std::size_t const begin = token_.range.offset;
    auto left = disjunction();
    if (!isWord("implies")) return left;
    advance();
    auto right = implication();
    checks_.requireCondition(*left);
    checks_.requireCondition(*right);
    return std::make_unique<Logic>(Logic::Operator::Implies, since(begin), operands(std::move(left), std::move(right)));
  }

  ExpressionPtr disjunction() { return chain("or", Logic::Operator::Or, &Parser::conjunction); }
  ExpressionPtr conjunction() { return chain("and", Logic::Operator::And, &Parser::negation); }

  ExpressionPtr chain(std::string_view word, Logic::Operator op, ExpressionPtr (Parser::*operand)()) {
    std::size_t const begin = token_.range.offset;
    auto first = (this->*operand)();
    if (!isWord(word)) return first;
    checks_.requireCondition(*first);
    std::vector<ExpressionPtr> all;
    all.push_back(std::move(first));
    while (isWord(word)) {
      advance();
      all.push_back((this->*operand)());
      checks_.requireCondition(*all.back());
    }
    return std::make_unique<Logic>(op, since(begin), std::move(all));
  }

  ExpressionPtr negation() {
    if (!isWord("not")) return comparison();
    Level const level(*this);
    std::size_t const begin = token_.range.offset;
    advance();
    auto inner = negation();
    checks_.requireCondition(*inner);
    return std::make_unique<Logic>(Logic::Operator::Not, since(begin), operands(std::move(inner)));
  }

  [[nodiscard]] bool isComparison() const {
    static constexpr std::array<std::string_view, 6> comparisons = {"==", "!=", "<", "<=", ">", ">="};
    return token_.kind == TokenKind::Symbol &&
           std::find(comparisons.begin(), comparisons.end(), token_.text) != comparisons.end();
  }

  ExpressionPtr comparison() {
    std::size_t const begin = token_.range.offset;
    auto left = sum();
    if (isWord("in") || isWord("not")) return membership(std::move(left), begin);
    if (!isComparison()) return left;

    static constexpr std::array<std::pair<std::string_view, Comparison::Operator>, 6> operators = {
        {{"==", Comparison::Operator::Equal},
         {"!=", Comparison::Operator::NotEqual},
         {"<", Comparison::Operator::Less},
         {"<=", Comparison::Operator::LessEqual},
         {">", Comparison::Operator::Greater},
         {">=", Comparison::Operator::GreaterEqual}}};
    auto const op = std::find_if(operators.begin(), operators.end(), [&](auto const& entry) {
                      return entry.first == token_.text;
                    })->second;
    advance();
    auto right = sum();
    if (isComparison() || isWord("in")) {
      fail(token_.range, "comparisons cannot be chained; combine two of them with 'and'");
    }
    if (op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual) {
      checks_.requireComparable(*left);
      checks_.requireComparable(*right);
    } else {
      checks_.requireNumber(*left);
      checks_.requireNumber(*right);
    }
    return std::make_unique<Comparison>(op, since(begin), operands(std::move(left), std::move(right)));
  }

  ExpressionPtr membership(ExpressionPtr item, std::size_t begin) {
    bool const negated = isWord("not");
    if (negated) {
      advance();
      if (!isWord("in")) fail(last_, "'not' belongs in front of a condition, or before 'in'");
    }
    advance();
    auto items = sum();
    if (isComparison() || isWord("in")) {
      fail(token_.range, "comparisons cannot be chained; combine two of them with 'and'");
    }
    checks_.requireText(*item);
    checks_.requireList(*items);
    return std::make_unique<Membership>(negated, since(begin), operands(std::move(item), std::move(items)));
  }

  ExpressionPtr sum() {
    std::size_t const begin = token_.range.offset;
    auto first = product();
    if (!isSymbol("+") && !isSymbol("-")) return first;
    std::vector<ExpressionPtr> terms;
    std::string operators = "+";
    terms.push_back(std::move(first));
    while (isSymbol("+") || isSymbol("-")) {
      operators += token_.text[0];
      advance();
      terms.push_back(product());
    }

    // A text on either side of a "+" makes the sum so far a text; from there on everything is joined.
    std::size_t numeric = terms.size();
    for (std::size_t i = 1; i < terms.size() && numeric == terms.size(); ++i) {
      bool const text =
          operators[i] == '+' && (terms[i]->kind() == Kind::Text || (i == 1 && terms[0]->kind() == Kind::Text));
      if (text) numeric = i;
    }
    for (std::size_t i = 0; i < terms.size(); ++i) {
      if (numeric < terms.size() && (i >= numeric || numeric == 1)) {
        checks_.requireScalar(*terms[i]);
        if (operators[i] == '-' && i >= numeric) {
          issue(terms[i]->range(), "'-' needs numbers, but the part before it is a text", Code::WrongOperandKind);
        }
      } else {
        checks_.requireNumber(*terms[i]);
      }
    }
    Kind const kind = numeric < terms.size() ? Kind::Text : Kind::Number;
    return std::make_unique<Arithmetic>(kind, since(begin), std::move(terms), std::move(operators), numeric);
  }

  ExpressionPtr product() {
    std::size_t const begin = token_.range.offset;
    auto first = unary();
    if (!isSymbol("*") && !isSymbol("/")) return first;
    checks_.requireNumber(*first);
    std::vector<ExpressionPtr> factors;
    std::string operators = "*";
    factors.push_back(std::move(first));
    while (isSymbol("*") || isSymbol("/")) {
      operators += token_.text[0];
      advance();
      factors.push_back(unary());
      checks_.requireNumber(*factors.back());
    }
    std::size_t const count = factors.size();
    return std::make_unique<Arithmetic>(Kind::Number, since(begin), std::move(factors), std::move(operators), count);
  }

  ExpressionPtr unary() {
    if (!isSymbol("-")) return primary();
    Level const level(*this);
    std::size_t const begin = token_.range.offset;
    advance();
    auto inner = unary();
    checks_.requireNumber(*inner);
    return std::make_unique<Negation>(since(begin), operands(std::move(inner)));
  }

  ExpressionPtr primary() {
    Token const token = token_;
    switch (token.kind) {
      case TokenKind::Number:
        advance();
        if (token.hasUnits) {
          hasQuantities_ = true;
          return std::make_unique<QuantityLiteral>(token.range, token.number, token.units, token.text);
        }
        return std::make_unique<Literal>(token.range, token.number);
      case TokenKind::Text:
        advance();
        return std::make_unique<Literal>(token.range, token.text);
      case TokenKind::Parameter:
        return parameter(false);
      case TokenKind::Objects:
        return objects();
      case TokenKind::Word:
        return word();
      case TokenKind::Symbol:
        if (token.text == "(") return parenthesis();
        fail(token.range, token.text == "==" || isComparison()
                              ? "there is nothing to compare before " + inQuotes(token.text)
                              : "a value is missing before " + inQuotes(token.text));
      case TokenKind::End:
        break;
    }
    fail(end(), "a value is missing at the end of the expression");
  }

  void patternIssue(Token const& token, PathPattern::Fault& fault) {
    issue({token.contentOffset + fault.offset, fault.length}, std::move(fault.message), Code::InvalidPath);
  }

  ExpressionPtr parameter(bool manyAllowed) {
    Token const token = token_;
    advance();
    if (isQuantity(token)) return std::make_unique<FaultyPart>(Kind::Number, token.range);
    PathPattern::Fault fault;
    std::string name;
    auto pattern = PathPattern::parseParameter(token.text, name, fault);
    if (!pattern) {
      patternIssue(token, fault);
      pattern.emplace();
    } else if (!pattern->isSingle() && !manyAllowed && !isSkipping_) {
      issue(token.range,
            "this path can match several parameters; only " + callsThatTakeManyParameters() + " accept that",
            Code::SeveralParameters);
    }
    bool const isName = pattern->start() == PathPattern::Start::Context && pattern->steps().empty();
    if (isName && objectNamed(name)) {
      issue(token.range, inQuotes(name) + " names an object here; write ${" + name + "/Name} for a parameter of it",
            Code::InvalidPath);
    }
    PathOrigin const origin = originOf(token, *pattern);
    return std::make_unique<ParameterReference>(token.range, origin, std::move(*pattern), std::move(name), data_);
  }

  /// Reports a quantity in braces, where a path is expected. True when there is one.
  bool isQuantity(Token const& token) {
    auto const quantity = TDFParam::asQuantity(token.text);
    if (!quantity || quantity->units.empty()) return false;
    std::string const written(StringUtilities::trimmed(token.text));
    issue(token.range, "braces are for paths; a quantity is written without them: " + written, Code::InvalidPath,
          replaceBy(token.range, text_.substr(token.range.offset, token.range.length), written));
    return true;
  }

  ExpressionPtr objects() {
    Token const token = token_;
    advance();
    if (isQuantity(token)) return std::make_unique<FaultyPart>(Kind::Number, token.range);
    PathPattern::Fault fault;
    auto pattern = PathPattern::parse(token.text, fault);
    if (!pattern) {
      patternIssue(token, fault);
      pattern.emplace();
    }
    PathOrigin const origin = originOf(token, *pattern);
    return std::make_unique<ObjectSet>(token.range, origin, std::move(*pattern));
  }

  ExpressionPtr parenthesis() {
    Level const level(*this);
    std::size_t const begin = token_.range.offset;
    advance();
    if (isSymbol(")")) {
      advance();
      return std::make_unique<ListLiteral>(since(begin), std::vector<ExpressionPtr>{});
    }
    auto first = implication();
    if (isSymbol(")")) {
      advance();
      return first;
    }
    if (!isSymbol(",")) expectSymbol(")", "to close the '(' at the beginning of this part");
    std::vector<ExpressionPtr> items;
    items.push_back(std::move(first));
    while (isSymbol(",")) {
      advance();
      if (isSymbol(")")) break;
      items.push_back(implication());
    }
    expectSymbol(")", "at the end of the list");
    for (auto const& item : items) checks_.requireItem(*item);
    return std::make_unique<ListLiteral>(since(begin), std::move(items));
  }

  ExpressionPtr word() {
    Token const token = token_;
    advance();
    if (token.text == "true" || token.text == "false") {
      return std::make_unique<Literal>(token.range, token.text == "true");
    }
    auto const* function = findFunction(token.text);
    if (!isSymbol("(")) {
      if (auto const named = objectNamed(token.text)) {
        return std::make_unique<ObjectSet>(token.range, *named, PathPattern());
      }
      if (isOperatorWord(token.text)) {
        fail(token.range, "a value is missing before " + inQuotes(token.text));
      }
      if (function != nullptr) {
        std::string const form(token.text == "if" ? function->signature : token.text + "(...)");
        fail(token.range, inQuotes(token.text) + " is a function; write " + form);
      }
      unknownValue(token);
      std::string const phrase(phraseAt(token.range));
      auto remedy = otherKindOf(phrase);
      if (remedy.empty()) {
        remedy = "; write '" + phrase + "' for a text, or " +
                 (isType(phrase) && !isParameter(phrase) ? "{" + phrase + ":*} for the objects of this type"
                                                         : "${" + phrase + "} for a parameter");
      }
      fail({token.range.offset, phrase.size()}, "unknown name " + inQuotes(phrase) + remedy, Code::UnknownWord);
    }
    if (function == nullptr) {
      unknownFunction(token);
      return std::make_unique<FaultyPart>(Kind::Value, since(token.range.offset));
    }
    return call(token.range.offset, *function);
  }

  [[nodiscard]] bool isType(std::string_view name) const { return named_.isType && named_.isType(name); }
  [[nodiscard]] bool isParameter(std::string_view name) const { return named_.isParameter && named_.isParameter(name); }

  /// The words that begin with an unknown one, as far as they can be one name: joined by a blank or by a hyphen. A name
  /// that the rules know may have any words.
  [[nodiscard]] std::string_view phraseAt(Range range) const {
    auto const isPart = [](char c) { return c == '_' || std::isalnum(static_cast<unsigned char>(c)) != 0; };
    std::size_t end = std::size_t{range.offset} + range.length;
    while (end + 1 < text_.size() && (text_[end] == ' ' || text_[end] == '-') && isPart(text_[end + 1])) {
      std::size_t next = end + 1;
      while (next < text_.size() && isPart(text_[next])) ++next;
      auto const word = text_.substr(end + 1, next - end - 1);
      bool const isCall = next < text_.size() && text_[next] == '(';
      if (isCall || (text_[end] == ' ' && (isOperatorWord(word) || adviceForOperator(word)))) break;
      end = next;
    }
    // A name may have an operator in it: "Heat in Room".
    constexpr std::size_t longestName = 100;
    auto const rest = StringUtilities::trimmed(text_.substr(range.offset));
    for (std::size_t length = std::min(rest.size(), longestName); range.offset + length > end; --length) {
      if (length < rest.size() && isPart(rest[length])) continue;
      auto const name = rest.substr(0, length);
      if (!otherKindOf(std::string(name)).empty() || isParameter(name) || isType(name)) return name;
    }
    return text_.substr(range.offset, end - range.offset);
  }

  /// Fails with a proposal when the word means a value in other languages.
  static void unknownValue(Token const& token) {
    auto const proposed = [&](std::string_view instead) {
      fail(token.range, "unknown name " + inQuotes(token.text) + didYouMean(instead), Code::UnknownWord,
           replaceBy(token.range, token.text, instead));
    };
    for (auto const word : operatorWords) {
      if (StringUtilities::equalIgnoringCase(token.text, word)) proposed(word);
    }
    auto const advice = adviceForValue(token.text);
    if (!advice) return;
    if (!advice->instead.empty()) proposed(advice->instead);
    fail(token.range, "unknown name " + inQuotes(token.text) + std::string(advice->message), Code::UnknownWord);
  }

  /// Proposes a near match, or the functions for the purpose of a function of another language, or those for arguments
  /// of the given kind.
  void unknownFunction(Token const& token) {
    std::string const message = "unknown function " + inQuotes(token.text);
    auto const near = StringUtilities::nearMatch(token.text, functionNames());
    auto const calls = callsInsteadOf(token.text);
    bool const isProposed = !near.empty() && (calls.empty() || calls.find(near + "(") != std::string_view::npos);
    issue(token.range,
          message + (calls.empty() ? std::string() : "; its purpose is served by " + std::string(calls)) +
              (isProposed ? didYouMean(near) : std::string()),
          Code::UnknownFunction, isProposed ? std::optional(replaceBy(token.range, token.text, near)) : std::nullopt);
    std::size_t const index = issues_.size() - 1;
    Kind const kind = skipArguments();
    if (isProposed || !calls.empty()) return;
    auto const group = kind == Kind::Objects ? 0 : kind == Kind::List ? 1 : 2;
    issues_[index].message += "; " + functionsOfGroup(static_cast<std::size_t>(group));
  }

  /// Reads the arguments of an unknown function, so that mistakes in them are reported. Returns the kind of the first.
  Kind skipArguments() {
    Level const level(*this);
    bool const wasSkipping = std::exchange(isSkipping_, true);
    advance();
    std::optional<Kind> first;
    if (!isSymbol(")")) {
      for (;;) {
        auto const argument = implication();
        if (!first) first = argument->kind();
        if (!isSymbol(",")) break;
        advance();
      }
    }
    expectSymbol(")", "at the end of the arguments");
    isSkipping_ = wasSkipping;
    return first.value_or(Kind::Objects);
  }

  ExpressionPtr call(std::size_t begin, Function const& function) {
    Level const level(*this);
    std::size_t const issuesBefore = issues_.size();
    advance();
    CheckedCall call{function.result, {}, {}, nullptr, nullptr, {}};
    if (!isSymbol(")")) {
      if (function.namesObject) call.objectName = newObjectName();
      for (;;) {
        bool const wanted = call.arguments.size() < function.most;
        call.arguments.push_back(wanted ? argument(function, call.arguments.size(), call) : implication());
        if (call.arguments.size() == 1 && !call.objectName.empty()) objectNames_.push_back(call.objectName);
        if (!isSymbol(",")) break;
        advance();
      }
      if (!call.objectName.empty()) objectNames_.pop_back();
    }
    expectSymbol(")", "at the end of the arguments of " + std::string(function.name));
    call.range = since(begin);
    if (call.arguments.size() < function.least || call.arguments.size() > function.most) {
      issue(call.range,
            std::string(function.name) + " takes " + countText(function) + ", not " +
                std::to_string(call.arguments.size()) + ": " + std::string(function.signature),
            Code::WrongArgumentCount);
      return std::make_unique<FaultyPart>(function.result, call.range);
    }
    unifyBranches(function, call);
    if (issues_.size() != issuesBefore) return std::make_unique<FaultyPart>(call.kind, call.range);
    if (call.rule != nullptr) calls_.push_back({call.rule, call.range});
    if (auto const* make = std::get_if<ExpressionPtr (*)(CheckedCall)>(&function.evaluate)) {
      return (*make)(std::move(call));
    }
    return std::make_unique<FunctionCall>(function, call.range, std::move(call.arguments));
  }

  /// Reads `x in` before a set of objects and returns the name; "" when there is none.
  std::string newObjectName() {
    if (token_.kind != TokenKind::Word || isOperatorWord(token_.text)) return {};
    Lexer ahead = lexer_;
    Token next;
    Issue fault;
    if (!ahead.next(next, fault) || next.kind != TokenKind::Word || next.text != "in") return {};
    // A set that begins with a word is a call, unless all of this is the name of a type: "Leak in Pipe".
    bool const isWordNext = ahead.next(next, fault) && next.kind == TokenKind::Word;
    if (isWordNext && isType(phraseAt(token_.range))) return {};
    Token const name = token_;
    advance();
    advance();
    auto const taken = [&](std::string_view by) {
      issue(name.range,
            inQuotes(name.text) + " is " + std::string(by) + ", so it cannot name an object here; use another name",
            Code::NameTaken);
    };
    if (name.text == "true" || name.text == "false") {
      taken("a truth value");
    } else if (findFunction(name.text) != nullptr) {
      taken("a function");
    } else if (objectNamed(name.text)) {
      taken("the name of another object already");
    } else if (isType(name.text)) {
      taken("a type of objects");
    }
    return name.text;
  }

  /// The object that has this name, if one has.
  [[nodiscard]] std::optional<PathOrigin> objectNamed(std::string_view name) const {
    for (std::size_t level = 0; level < objectNames_.size(); ++level) {
      if (objectNames_[objectNames_.size() - 1 - level] == name) return PathOrigin(level);
    }
    return std::nullopt;
  }

  /// The origin of a path. When its first step is the name of an object, that step is taken away.
  PathOrigin originOf(Token const& token, PathPattern& pattern) {
    if (objectNames_.empty() || pattern.start() != PathPattern::Start::Context || pattern.steps().empty()) return {};
    auto const& step = pattern.steps().front();
    auto const named = objectNamed(step.type);
    if (!named) return {};
    if (step.kind == PathPattern::StepKind::ChildrenOfType || !step.name.empty()) {
      issue(token.range, inQuotes(step.type) + " names one object here, so no ':' can follow it", Code::InvalidPath);
      return {};
    }
    pattern = pattern.withoutFirstStep();
    return *named;
  }

  [[nodiscard]] static bool isOperatorWord(std::string_view word) {
    return std::find(operatorWords.begin(), operatorWords.end(), word) != operatorWords.end();
  }

  /// Reads argument `i`. The rule or pattern that it names goes to `call`.
  ExpressionPtr argument(Function const& function, std::size_t i, CheckedCall& call) {
    Argument const kind = function.argument(i);
    bool const many = kind == Argument::ParameterOrObjects || kind == Argument::Parameters;
    if (many && token_.kind == TokenKind::Parameter) return parameter(true);
    if (kind == Argument::CheckName) return ruleName(function, "check", named_.checks, call.rule);
    if (kind == Argument::ListName) return ruleName(function, "list", named_.lists, call.rule);
    if (kind == Argument::ValueName) {
      auto name = ruleName(function, "value", named_.values, call.rule);
      if (call.rule != nullptr) call.kind = call.rule->kind();
      return name;
    }

    auto value = implication();
    switch (kind) {
      case Argument::Scalar:
        checks_.requireScalar(*value);
        break;
      case Argument::Text:
        checks_.requireText(*value);
        break;
      case Argument::Pattern:
        checks_.requireText(*value);
        call.pattern = fixedPattern(*value);
        break;
      case Argument::Number:
        checks_.requireNumber(*value);
        break;
      case Argument::Condition:
        checks_.requireCondition(*value);
        break;
      case Argument::List:
        checks_.requireList(*value);
        break;
      case Argument::Objects:
        checks_.requireObjects(*value);
        break;
      case Argument::ParameterOrObjects:
        if (value->kind() != Kind::Objects) {
          issue(value->range(), std::string(function.name) + " takes a parameter, ${...}, or a set of objects, {...}",
                Code::WrongOperandKind);
        }
        break;
      case Argument::Parameters:
        issue(value->range(), std::string(function.name) + " takes a path to a parameter, ${...}",
              Code::WrongOperandKind);
        break;
      case Argument::Branch:  // checked when all branches are known
      case Argument::CheckName:
      case Argument::ListName:
      case Argument::ValueName:
        break;
    }
    return value;
  }

  /// The regular expression that is written out; null when it is computed or wrong.
  std::shared_ptr<RegularExpression const> fixedPattern(Expression const& value) {
    std::string const* text = nullptr;
    if (auto const* literal = dynamic_cast<Literal const*>(&value);
        literal != nullptr && literal->kind() == Kind::Text) {
      text = &literal->rawText();
    } else if (auto const* named = dynamic_cast<NamedCall const*>(&value)) {
      text = named->rule().fixedText();
    }
    if (text == nullptr) return nullptr;
    auto pattern = std::make_shared<RegularExpression>(*text);
    if (pattern->fault().empty()) return pattern;
    issue(value.range(), notAPattern(*pattern), Code::InvalidPattern);
    return nullptr;
  }

  template <typename Rules>
  ExpressionPtr ruleName(Function const& function, std::string_view noun, Rules const& rules, NamedRule const*& rule) {
    Token const token = token_;
    if (token.kind != TokenKind::Text) {
      auto value = implication();
      issue(value->range(),
            std::string(function.name) + " takes the name of a " + std::string(noun) + ", written in quotes",
            Code::WrongOperandKind);
      return value;
    }
    advance();
    if (auto const found = rules.find(token.text); found != rules.end()) {
      rule = &found->second->rule();
    } else {
      auto const near = nearKey(token.text, rules, named_.hints);
      issue(token.range,
            "there is no " + std::string(noun) + " " + inQuotes(token.text) +
                (near.empty() ? otherKindOf(token.text) : didYouMean(near)),
            Code::UnknownNamedRule,
            near.empty() ? std::nullopt : std::optional(replaceBy(token.range, token.text, near)));
      if (!near.empty()) issues_.back().fix->text = quoted(near, text_[token.range.offset]);
    }
    return std::make_unique<Literal>(token.range, token.text);
  }

  /// The way to write a named rule of another kind; empty when no kind has the name.
  [[nodiscard]] std::string otherKindOf(std::string const& name) const {
    std::string_view function;
    if (named_.checks.contains(name)) function = "check";
    if (named_.lists.contains(name)) function = "list";
    if (named_.values.contains(name)) function = "value";
    if (function.empty()) return {};
    return "; there is a " + std::string(function) + " of that name: " + std::string(function) + "(" + inQuotes(name) +
           ")";
  }

  /// `text` as a text of the language between two quotes of the given kind.
  [[nodiscard]] static std::string quoted(std::string_view text, char quote) {
    std::string result(1, quote);
    for (char const c : text) result.append(c == quote ? 2 : 1, c);
    return result + quote;
  }

  /// Gives a call the kind of its branches, if its function has branches.
  void unifyBranches(Function const& function, CheckedCall& call) {
    bool first = true;
    for (std::size_t i = 0; i < call.arguments.size(); ++i) {
      if (function.argument(i) != Argument::Branch) continue;
      Kind const a = call.kind;
      Kind const b = call.arguments[i]->kind();
      if (std::exchange(first, false)) {
        call.kind = b;
      } else if (a != b) {
        bool const lists = (a == Kind::List && b == Kind::Value) || (a == Kind::Value && b == Kind::List);
        bool const incompatible =
            a == Kind::Objects || b == Kind::Objects || ((a == Kind::List || b == Kind::List) && !lists);
        if (incompatible) {
          issue(call.range,
                "the two results of " + std::string(function.name) + " must go together, but one is " +
                    std::string(kindName(a)) + " and the other " + std::string(kindName(b)),
                Code::WrongOperandKind);
        }
        call.kind = lists ? Kind::List : Kind::Value;
      }
    }
  }

  static std::string countText(Function const& function) {
    auto const plural = [](std::size_t count) {
      return std::to_string(count) + (count == 1 ? " argument" : " arguments");
    };
    if (function.most == RuleFunction::unlimited) return "at least " + plural(function.least);
    if (function.least == function.most) return plural(function.least);
    return std::to_string(function.least) + " or " + plural(function.most);
  }

  template <typename... Ptr>
  static std::vector<ExpressionPtr> operands(Ptr... ptr) {
    std::vector<ExpressionPtr> result;
    result.reserve(sizeof...(ptr));
    (result.push_back(std::move(ptr)), ...);
    return result;
  }

  std::string_view text_;
  Lexer lexer_;
  NamedRules const& named_;
  PhysicsData const* data_;
  ParserLimits const& limits_;
  Token token_;
  Range last_;
  std::size_t depth_ = 0;
  std::size_t deepest_ = 0;
  bool hasQuantities_ = false;
  bool isSkipping_ = false;  // the arguments of an unknown function, which may take a path to many parameters
  std::vector<Issue> issues_;
  std::vector<RuleCall> calls_;
  std::vector<std::string> objectNames_;  // that quantifiers around the present token give, the innermost last
  OperandChecks checks_;
};

}  // namespace

ParsedExpression parseExpression(std::string_view text, Role role, NamedRules const& named, PhysicsData const* data,
                                 ParserLimits const& limits) {
  return Parser(text, named, data, limits).parse(role);
}

}  // namespace tarn::rules
