// A parser by recursive descent, one operation for each level of binding. Levels of nesting are counted, so that no
// input can exhaust the stack, here or in what walks the tree later. Chains of one operator make one node with many
// operands and count for nothing. A fault of syntax ends the parsing by way of a private exception; faults of kind are
// gathered.

#include "expression/Parser.h"

#include <algorithm>
#include <array>
#include <utility>

#include <tarn/StringUtilities.h>

#include "expression/Functions.h"
#include "expression/Lexer.h"
#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

struct SyntaxFault {
  Range range;
  std::string message;
};

template <typename Map>
std::string orNearKey(std::string_view text, Map const& map, HintBudget& hints) {
  if (!hints.take(map.size())) return {};
  std::vector<std::string> keys;
  keys.reserve(map.size());
  for (auto const& entry : map) keys.push_back(entry.first);
  return orNear(text, keys);
}

bool isLiteral(Expression const& expression) {
  return dynamic_cast<Literal const*>(&expression) != nullptr;
}

class Parser {
 public:
  Parser(std::string_view text, NamedRules const& named, PhysicsData const* data, ParserLimits const& limits)
      : text_(text), lexer_(text), named_(named), data_(data), limits_(limits) {}

  ParsedExpression parse(Role role) {
    ParsedExpression result;
    try {
      if (text_.size() > limits_.length) {
        throw SyntaxFault{{limits_.length, 1},
                          "the expression is longer than " + std::to_string(limits_.length) + " characters"};
      }
      advance();
      if (token_.kind == TokenKind::End) throw SyntaxFault{{0, text_.size()}, "an expression is missing"};
      result.expression = implication();
      if (token_.kind != TokenKind::End) unexpected();
      requireRole(*result.expression, role);
    } catch (SyntaxFault& fault) {
      issues_.push_back({fault.range, std::move(fault.message)});
    }
    if (!issues_.empty()) result.expression = nullptr;
    std::stable_sort(issues_.begin(), issues_.end(),
                     [](Issue const& a, Issue const& b) { return a.range.offset < b.range.offset; });
    result.issues = std::move(issues_);
    result.calls = std::move(calls_);
    result.depth = deepest_;
    return result;
  }

 private:
  /// Counts the levels of nesting for as long as it lives.
  class Level {
   public:
    explicit Level(Parser& parser) : parser_(parser) {
      parser_.deepest_ = std::max(parser_.deepest_, ++parser_.depth_);
      if (parser_.depth_ > parser_.limits_.depth) {
        throw SyntaxFault{parser_.token_.range, "the expression is nested deeper than " +
                                                    std::to_string(parser_.limits_.depth) +
                                                    " levels; move a part of it into a named check"};
      }
    }
    Level(Level const&) = delete;
    Level& operator=(Level const&) = delete;
    ~Level() { --parser_.depth_; }

   private:
    Parser& parser_;
  };

  void advance() {
    Range fault;
    std::string message;
    last_ = token_.range;
    if (!lexer_.next(token_, fault, message)) throw SyntaxFault{fault, std::move(message)};
  }

  [[nodiscard]] bool isSymbol(std::string_view symbol) const {
    return token_.kind == TokenKind::Symbol && token_.text == symbol;
  }
  [[nodiscard]] bool isWord(std::string_view word) const {
    return token_.kind == TokenKind::Word && token_.text == word;
  }

  [[noreturn]] void unexpected() const {
    if (token_.kind == TokenKind::End) {
      throw SyntaxFault{end(), "the expression ends where something is missing"};
    }
    if (isSymbol(")")) throw SyntaxFault{token_.range, "')' has no '(' before it"};
    if (token_.kind == TokenKind::Word && findFunction(token_.text) == nullptr) {
      throw SyntaxFault{token_.range,
                        "an operator is missing before " + inQuotes(token_.text) + operatorHint(token_.text)};
    }
    throw SyntaxFault{token_.range, "an operator is missing before this"};
  }

  [[nodiscard]] static std::string operatorHint(std::string const& word) {
    for (std::string_view const known : {"and", "or", "not", "in", "implies"}) {
      if (StringUtilities::equalIgnoringCase(word, known)) return didYouMean(known);
    }
    return {};
  }

  void expectSymbol(std::string_view symbol, std::string_view purpose) {
    if (!isSymbol(symbol)) {
      Range const range = token_.kind == TokenKind::End ? end() : token_.range;
      throw SyntaxFault{range, inQuotes(symbol) + " is missing " + std::string(purpose)};
    }
    advance();
  }

  void issue(Range range, std::string message) { issues_.push_back({range, std::move(message)}); }

  /// Where something is missing at the end: behind the last token.
  [[nodiscard]] Range end() const { return {last_.offset + last_.length, 1}; }

  [[nodiscard]] Range since(std::size_t offset) const { return {offset, last_.offset + last_.length - offset}; }

  // What an operand must be. Each tells of a fault and lets the parsing go on.

  void requireCondition(Expression const& operand) {
    if (operand.kind() == Kind::Truth || operand.kind() == Kind::Value) return;
    std::string message = "a condition is needed here, not " + std::string(kindName(operand.kind()));
    if (operand.kind() == Kind::Objects) {
      message += "; write exists(...) or any(...)";
    } else if (operand.kind() == Kind::List) {
      message += "; write size(...) > 0, or compare with 'in'";
    } else {
      message += "; compare it with something";
    }
    issue(operand.range(), std::move(message));
  }

  void requireNumber(Expression const& operand) {
    bool const computedText = operand.kind() == Kind::Text && !isLiteral(operand);
    if (operand.kind() == Kind::Number || operand.kind() == Kind::Value || computedText) return;
    std::string message = "a number is needed here, not " + std::string(kindName(operand.kind()));
    if (operand.kind() == Kind::Objects) message += "; write count(...) for how many there are";
    if (operand.kind() == Kind::List) message += "; write size(...) for how many there are";
    issue(operand.range(), std::move(message));
  }

  void requireScalar(Expression const& operand) {
    if (operand.kind() != Kind::List && operand.kind() != Kind::Objects) return;
    issue(operand.range(), "a single value is needed here, not " + std::string(kindName(operand.kind())) +
                               (operand.kind() == Kind::Objects ? "; write ${...} for the value of a parameter" : ""));
  }

  void requireText(Expression const& operand) {
    if (operand.kind() == Kind::Truth) {
      issue(operand.range(), "a text is needed here, not a truth value; write text(...)");
    } else {
      requireScalar(operand);
    }
  }

  void requireList(Expression const& operand) {
    if (operand.kind() == Kind::List || operand.kind() == Kind::Value) return;
    std::string message = "a list is needed here, not " + std::string(kindName(operand.kind()));
    if (operand.kind() == Kind::Objects) message += "; write names(...) or paths(...)";
    if (operand.kind() == Kind::Text && isLiteral(operand)) {
      message += "; a list of one is written (" +
                 std::string(text_.substr(operand.range().offset, operand.range().length)) + ",)";
    }
    issue(operand.range(), std::move(message));
  }

  void requireObjects(Expression const& operand) {
    if (operand.kind() == Kind::Objects) return;
    std::string message = "a set of objects is needed here, not " + std::string(kindName(operand.kind()));
    if (dynamic_cast<ParameterReference const*>(&operand) != nullptr) message += "; write {...} without the '$'";
    issue(operand.range(), std::move(message));
  }

  void requireRole(Expression const& expression, Role role) {
    switch (role) {
      case Role::Condition:
        requireCondition(expression);
        break;
      case Role::Text:
        requireScalar(expression);
        break;
      case Role::List:
        requireList(expression);
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
    requireCondition(*left);
    requireCondition(*right);
    return std::make_unique<Logic>(Logic::Operator::Implies, since(begin), operands(std::move(left), std::move(right)));
  }

  ExpressionPtr disjunction() { return chain("or", Logic::Operator::Or, &Parser::conjunction); }
  ExpressionPtr conjunction() { return chain("and", Logic::Operator::And, &Parser::negation); }

  ExpressionPtr chain(std::string_view word, Logic::Operator op, ExpressionPtr (Parser::*operand)()) {
    std::size_t const begin = token_.range.offset;
    auto first = (this->*operand)();
    if (!isWord(word)) return first;
    requireCondition(*first);
    std::vector<ExpressionPtr> all;
    all.push_back(std::move(first));
    while (isWord(word)) {
      advance();
      all.push_back((this->*operand)());
      requireCondition(*all.back());
    }
    return std::make_unique<Logic>(op, since(begin), std::move(all));
  }

  ExpressionPtr negation() {
    if (!isWord("not")) return comparison();
    Level const level(*this);
    std::size_t const begin = token_.range.offset;
    advance();
    auto inner = negation();
    requireCondition(*inner);
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
      throw SyntaxFault{token_.range, "comparisons cannot be chained; join two of them by 'and'"};
    }
    if (op == Comparison::Operator::Equal || op == Comparison::Operator::NotEqual) {
      for (auto const* operand : {left.get(), right.get()}) {
        if (operand->kind() == Kind::List) {
          issue(operand->range(), "a list cannot be compared; use 'in', or size(difference(a, b)) == 0");
        } else {
          requireScalar(*operand);
        }
      }
    } else {
      requireNumber(*left);
      requireNumber(*right);
    }
    return std::make_unique<Comparison>(op, since(begin), operands(std::move(left), std::move(right)));
  }

  ExpressionPtr membership(ExpressionPtr item, std::size_t begin) {
    bool const negated = isWord("not");
    if (negated) {
      advance();
      if (!isWord("in")) throw SyntaxFault{last_, "'not' stands before a condition, or before 'in'"};
    }
    advance();
    auto items = sum();
    if (isComparison() || isWord("in")) {
      throw SyntaxFault{token_.range, "comparisons cannot be chained; join two of them by 'and'"};
    }
    requireText(*item);
    requireList(*items);
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
        requireScalar(*terms[i]);
        if (operators[i] == '-' && i >= numeric) {
          issue(terms[i]->range(), "'-' is for numbers, but what stands before it is a text");
        }
      } else {
        requireNumber(*terms[i]);
      }
    }
    Kind const kind = numeric < terms.size() ? Kind::Text : Kind::Number;
    return std::make_unique<Arithmetic>(kind, since(begin), std::move(terms), std::move(operators), numeric);
  }

  ExpressionPtr product() {
    std::size_t const begin = token_.range.offset;
    auto first = unary();
    if (!isSymbol("*") && !isSymbol("/")) return first;
    requireNumber(*first);
    std::vector<ExpressionPtr> factors;
    std::string operators = "*";
    factors.push_back(std::move(first));
    while (isSymbol("*") || isSymbol("/")) {
      operators += token_.text[0];
      advance();
      factors.push_back(unary());
      requireNumber(*factors.back());
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
    requireNumber(*inner);
    return std::make_unique<Negation>(since(begin), operands(std::move(inner)));
  }

  ExpressionPtr primary() {
    Token const token = token_;
    switch (token.kind) {
      case TokenKind::Number:
        advance();
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
        throw SyntaxFault{token.range, token.text == "==" || isComparison()
                                           ? "there is nothing to compare before " + inQuotes(token.text)
                                           : "a value is missing before " + inQuotes(token.text)};
      case TokenKind::End:
        break;
    }
    throw SyntaxFault{end(), "the expression ends where a value is missing"};
  }

  [[nodiscard]] Issue patternIssue(Token const& token, PathPattern::Fault const& fault) const {
    std::size_t const offset = token.contentOffset + fault.offset;
    return {{offset, fault.length}, fault.message};
  }

  ExpressionPtr parameter(bool manyAllowed) {
    Token const token = token_;
    advance();
    PathPattern::Fault fault;
    std::string name;
    auto pattern = PathPattern::parseParameter(token.text, name, fault);
    if (!pattern) {
      issues_.push_back(patternIssue(token, fault));
      pattern.emplace();
    } else if (!pattern->isSingle() && !manyAllowed) {
      issue(token.range,
            "this can be the parameter of more than one object; only " + callsThatTakeManyParameters() + " take that");
    }
    return std::make_unique<ParameterReference>(token.range, std::move(*pattern), std::move(name), data_);
  }

  ExpressionPtr objects() {
    Token const token = token_;
    advance();
    PathPattern::Fault fault;
    auto pattern = PathPattern::parse(token.text, fault);
    if (!pattern) {
      issues_.push_back(patternIssue(token, fault));
      pattern.emplace();
    }
    return std::make_unique<ObjectSet>(token.range, std::move(*pattern));
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
    for (auto const& item : items) requireItem(*item);
    return std::make_unique<ListLiteral>(since(begin), std::move(items));
  }

  void requireItem(Expression const& item) {
    if (item.kind() == Kind::Text || item.kind() == Kind::Value) return;
    std::string message = "a list holds texts, not " + std::string(kindName(item.kind()));
    if (isLiteral(item)) {
      message += "; write '" + std::string(text_.substr(item.range().offset, item.range().length)) + "'";
    } else if (item.kind() == Kind::Number || item.kind() == Kind::Truth) {
      message += "; write text(...)";
    }
    issue(item.range(), std::move(message));
  }

  ExpressionPtr word() {
    Token const token = token_;
    advance();
    if (token.text == "true" || token.text == "false") {
      return std::make_unique<Literal>(token.range, token.text == "true");
    }
    auto const* function = findFunction(token.text);
    if (!isSymbol("(")) {
      for (std::string_view const reserved : {"not", "and", "or", "implies", "in"}) {
        if (token.text == reserved) throw SyntaxFault{token.range, "a value is missing before " + inQuotes(token.text)};
      }
      if (function != nullptr) {
        throw SyntaxFault{token.range, inQuotes(token.text) + " is a function; write " + token.text + "(...)"};
      }
      throw SyntaxFault{token.range, "unknown name " + inQuotes(token.text) + "; a text stands in quotes, '" +
                                         token.text + "', and a parameter in ${" + token.text + "}"};
    }
    if (function == nullptr) {
      issue(token.range, "unknown function " + inQuotes(token.text) + orNear(token.text, functionNames()));
      skipArguments();
      return std::make_unique<FaultyPart>(Kind::Value, since(token.range.offset));
    }
    return call(token.range.offset, *function);
  }

  /// Reads the arguments of a function that does not exist, for the sake of the faults in them.
  void skipArguments() {
    Level const level(*this);
    advance();
    if (!isSymbol(")")) {
      for (;;) {
        if (token_.kind == TokenKind::Parameter) {
          (void)parameter(true);
        } else {
          (void)implication();
        }
        if (!isSymbol(",")) break;
        advance();
      }
    }
    expectSymbol(")", "at the end of the arguments");
  }

  ExpressionPtr call(std::size_t begin, Function const& function) {
    Level const level(*this);
    std::size_t const issuesBefore = issues_.size();
    advance();
    CheckedCall call{function.result, {}, {}, nullptr};
    if (!isSymbol(")")) {
      for (;;) {
        bool const wanted = call.arguments.size() < function.most;
        call.arguments.push_back(wanted ? argument(function, call.arguments.size(), call.rule) : implication());
        if (!isSymbol(",")) break;
        advance();
      }
    }
    expectSymbol(")", "at the end of the arguments of " + std::string(function.name));
    call.range = since(begin);
    if (call.arguments.size() < function.least || call.arguments.size() > function.most) {
      issue(call.range, std::string(function.name) + " takes " + countText(function) + ", not " +
                            std::to_string(call.arguments.size()));
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

  ExpressionPtr argument(Function const& function, std::size_t i, NamedRule const*& rule) {
    Argument const kind = function.argument(i);
    bool const many = kind == Argument::ParameterOrObjects || kind == Argument::Parameters;
    if (many && token_.kind == TokenKind::Parameter) return parameter(true);
    if (kind == Argument::CheckName) return ruleName(function, "check", named_.checks, rule);
    if (kind == Argument::ListName) return ruleName(function, "list", named_.lists, rule);

    auto value = implication();
    switch (kind) {
      case Argument::Scalar:
        requireScalar(*value);
        break;
      case Argument::Text:
        requireText(*value);
        break;
      case Argument::Number:
        requireNumber(*value);
        break;
      case Argument::Condition:
        requireCondition(*value);
        break;
      case Argument::List:
        requireList(*value);
        break;
      case Argument::Objects:
        requireObjects(*value);
        break;
      case Argument::ParameterOrObjects:
        if (value->kind() != Kind::Objects) {
          issue(value->range(), std::string(function.name) + " takes a parameter, ${...}, or a set of objects, {...}");
        }
        break;
      case Argument::Parameters:
        issue(value->range(), std::string(function.name) + " takes a path to a parameter, ${...}");
        break;
      case Argument::Branch:  // checked when all branches are known
      case Argument::CheckName:
      case Argument::ListName:
        break;
    }
    return value;
  }

  template <typename Rules>
  ExpressionPtr ruleName(Function const& function, std::string_view noun, Rules const& rules, NamedRule const*& rule) {
    Token const token = token_;
    if (token.kind != TokenKind::Text) {
      auto value = implication();
      issue(value->range(),
            std::string(function.name) + " takes the name of a " + std::string(noun) + ", written in quotes");
      return value;
    }
    advance();
    if (auto const found = rules.find(token.text); found != rules.end()) {
      rule = &found->second->rule();
    } else {
      issue(token.range, "there is no " + std::string(noun) + " " + inQuotes(token.text) +
                             orNearKey(token.text, rules, named_.hints));
    }
    return std::make_unique<Literal>(token.range, token.text);
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
          issue(call.range, "the two results of " + std::string(function.name) + " must go together, but one is " +
                                std::string(kindName(a)) + " and the other " + std::string(kindName(b)));
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
  std::vector<Issue> issues_;
  std::vector<RuleCall> calls_;
};

}  // namespace

ParsedExpression parseExpression(std::string_view text, Role role, NamedRules const& named, PhysicsData const* data,
                                 ParserLimits const& limits) {
  return Parser(text, named, data, limits).parse(role);
}

}  // namespace tarn::rules
