// The text form of proofs. Everything that is said here is in the proof as data.

#include <tarn/session/Proof.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include <tarn/PathUtils.h>

#include "session/Printable.h"
#include "why/Leaves.h"

namespace tarn::session {

namespace {

using Operation = Explanation::Operation;
using Result = Explanation::Result;

constexpr std::size_t longestValue = 60;
constexpr std::size_t mostNames = 5;

std::string quoted(std::string_view text) {
  return '\'' + printable(text, longestValue) + '\'';
}

std::string shown(Item const& item) {
  std::string const text = item.path + (item.name ? '/' + *item.name : std::string());
  return text.empty() ? "/" : printable(text);
}

template <typename Items>
std::string listed(Items const& items, std::size_t count) {
  std::string text;
  std::size_t const most = std::min(items.size(), mostNames);
  for (std::size_t i = 0; i < most; ++i) text += (i == 0 ? "" : ", ") + quoted(items[i]);
  if (count > most) text += " and " + std::to_string(count - most) + " more";
  return text;
}

std::string placed(RulePlace const& place) {
  return place.isKnown() ? "  (" + place.text() + ")" : std::string();
}

bool isDecision(Fact fact) {
  return fact == Fact::Required || fact == Fact::AskedFor || fact == Fact::NeverSwitchedOn ||
         fact == Fact::SwitchedOff || fact == Fact::ValueRefused;
}

class Writer {
 public:
  explicit Writer(Proof const& proof) : proof_(proof) {}

  std::vector<std::string> lines() {
    numbers_.assign(proof_.nodes.size(), 0);
    // Depth first: what explains a fact follows it.
    std::vector<std::pair<std::size_t, std::size_t>> open{{0, 0}};
    while (!open.empty()) {
      auto const [index, indent] = open.back();
      open.pop_back();
      ProofNode const& node = proof_.nodes[index];
      if (numbers_[index] != 0) continue;
      numbers_[index] = ++count_;
      write(node, std::string(2 * indent, ' '));
      for (auto child = node.children.rbegin(); child != node.children.rend(); ++child) {
        open.emplace_back(*child, indent + 1);
      }
    }
    if (proof_.hidden > 0) {
      add("  ",
          std::to_string(proof_.hidden) + (proof_.hidden == 1 ? " more fact" : " more facts") + " with more depth");
    }
    return std::move(lines_);
  }

 private:
  void add(std::string const& indent, std::string const& text) { lines_.push_back(indent + text); }

  void write(ProofNode const& node, std::string const& indent) {
    add(indent, factText(node));
    if (!node.reason.empty()) add(indent, "  \"" + printable(node.reason) + '"');
    for (ProofRule const& rule : node.rules) {
      add(indent, "  " + rule.attribute + ": " + ruleText(rule) + placed(rule.place));
      if (rule.explanation.nodes.empty()) continue;
      // A part that is in force needs nothing.
      bool const isBlocking = !isDecision(node.fact) &&
                              rule.explanation.nodes.front().result.kind == Result::Kind::Truth &&
                              !rule.explanation.nodes.front().result.truth;
      writePart(node, rule, 0, isBlocking, indent + "    ");
    }
    if (node.isOutdated) add(indent, "  Decided on values that have changed since; decided again at the next edit.");
  }

  static std::string ruleText(ProofRule const& rule) {
    if (!rule.text.empty()) return printable(oneLine(rule.text));
    bool const isFixed =
        !rule.explanation.nodes.empty() && rule.explanation.nodes.front().operation == Operation::Literal;
    if (isFixed) return resultText(rule.explanation.nodes.front().result);
    return rule.place.isKnown() ? "a list with conditions" : "a rule of the program";
  }

  /// Rules may be written over several lines.
  static std::string oneLine(std::string_view text) {
    std::string result;
    for (char const c : text) {
      bool const isBlank = c == ' ' || c == '\n' || c == '\t';
      if (!isBlank) {
        result += c;
      } else if (!result.empty() && result.back() != ' ') {
        result += ' ';
      }
    }
    while (!result.empty() && result.back() == ' ') result.pop_back();
    return result;
  }

  std::string factText(ProofNode const& node) const {
    std::string item = shown(node.item);
    switch (node.fact) {
      case Fact::OutsideRoot:
        return item + " is outside of the object that is edited";
      case Fact::UnknownToTheRules:
        return item + " is unknown to the rules";
      case Fact::ObjectAbsent:
        return item + " is absent: its object is absent";
      case Fact::NotLive:
        return item + " is absent: it needs " + printable(node.contextParam.empty() ? "a context" : node.contextParam) +
               " to be " + listed(node.needed, node.needed.size()) +
               (node.contextParam.empty() ? std::string() : ", which is " + quoted(node.value));
      case Fact::NotAvailable:
        return item + " is absent: not available" + placed(node.rules.empty() ? node.place : RulePlace());
      case Fact::NoAllowedValue:
        return item + " is absent: no value is allowed now";
      case Fact::NameNotAllowed:
        return item + " is absent: " +
               (node.needed.empty() ? "no name is allowed now"
                                    : "allowed names are " + listed(node.needed, node.needed.size()));
      case Fact::NotAskedFor:
        return item + " is absent: nobody has added it";
      case Fact::NotInModel:
        return item + " is absent: it is taken from the model, which does not have it";
      case Fact::NeverSwitchedOn:
        return item + " is on offer: it was never switched on" + placed(node.place);
      case Fact::SwitchedOff:
        return item + " is on offer: it was switched off" + placed(node.place);
      case Fact::ValueRefused:
        return item + " is on offer: its value " + quoted(node.value) + " waits" + placed(node.place);
      case Fact::IsRoot:
        return item + " is present: it is the object that is edited";
      case Fact::Required:
        return item + " is present: required" + placed(node.place);
      case Fact::AskedFor:
        return item + " is present: it was asked for" + placed(node.place);
      case Fact::TakenFromModel:
        return item + " is taken from the model as it is";
      case Fact::Override:
        return item + " is " + quoted(node.value) + ": fixed by the rules";
      case Fact::SetByUser:
        return item + " is " + quoted(node.value) + ": set by the user in step " + std::to_string(node.step);
      case Fact::GivenByModel:
        return item + " is " + quoted(node.value) + ": given by the model";
      case Fact::FormerOverride:
        return item + " is " + quoted(node.value) + ": left by an override that no longer holds";
      case Fact::CompletedList:
        return item + " is " + quoted(node.value) + ": completed by the rules";
      case Fact::ConditionalDefault:
      case Fact::Default:
        return item + " is " + quoted(node.value) + ": the default";
      case Fact::FirstOnOffer:
        return item + " is " + quoted(node.value) + ": the first value on offer";
      case Fact::Blank:
        return item + " has no value: the rules give no default" + placed(node.place);
      case Fact::NotInList:
        return quoted(node.value) + " is not allowed for " + item + ": " +
               (node.needed.empty() ? "no value is allowed now"
                                    : "allowed are " + listed(node.needed, node.needed.size()));
      case Fact::Unused:
        return quoted(node.value) + " is never allowed for " + item + placed(node.place);
      case Fact::CheckFails:
        return quoted(node.value) + " is not allowed for " + item + " now";
      case Fact::OutsideSubset:
        return quoted(node.value) + " is allowed for " + item + ", but not on offer now";
      case Fact::ValueAllowed:
        return quoted(node.value) + " is allowed for " + item;
      case Fact::AnyValueAllowed:
        return item + " can have any value";
      case Fact::NotChanged:
        return item + " was not changed by the last edit";
      case Fact::EditedItself:
        return item + changeText(node) + " by the last edit itself";
      case Fact::ChangedByRules:
        return item + changeText(node) + " because of the last edit";
    }
    return item;
  }

  static std::string changeText(ProofNode const& node) {
    if (!node.item.isParam()) return node.before ? " went" : " came";
    if (!node.before) return " came with " + quoted(node.after.value_or(""));
    if (!node.after) return " went (it was " + quoted(*node.before) + ')';
    return " changed from " + quoted(*node.before) + " to " + quoted(*node.after);
  }

  // The parts of a rule. The depth of an explanation is limited, so these may recurse.

  void writePart(ProofNode const& node, ProofRule const& rule, std::size_t index, bool isBlocking,
                 std::string const& indent) {
    Explanation const& explanation = rule.explanation;
    Explanation::Node const& part = explanation.nodes[index];
    std::string const also = part.alsoFails ? "also " : "";
    switch (part.operation) {
      case Operation::And:
      case Operation::Or:
      case Operation::Implies: {
        // To change a false `and`, every false operand has to change; to change a false `or`, one.
        bool const needsAll = (part.operation == Operation::And) != part.result.truth;
        std::string inner = indent;
        if (isBlocking && part.children.size() > 1) {
          add(indent, also + (needsAll ? "needs all of" : "needs any of"));
          inner += "  ";
        }
        for (std::size_t const child : part.children) writePart(node, rule, child, isBlocking, inner);
        return;
      }
      case Operation::Not:
        for (std::size_t const child : part.children) writePart(node, rule, child, isBlocking, indent);
        return;
      case Operation::NamedRule: {
        std::string const result = part.result.kind != Result::Kind::Truth ? "is " + resultText(part.result)
                                   : part.result.truth                     ? "holds"
                                                                           : "does not hold";
        std::string place;
        if (!part.children.empty()) {
          std::size_t const source = explanation.nodes[part.children.front()].source;
          if (source < explanation.sources.size()) place = placed(explanation.sources[source].place);
        }
        add(indent, also + '\'' + printable(part.name) + "' " + result + place);
        for (std::size_t const child : part.children) writePart(node, rule, child, isBlocking, indent + "  ");
        return;
      }
      case Operation::Any:
      case Operation::All:
        add(indent, also + setText(rule, part));
        writeObjects(node, rule, part, isBlocking, indent + "  ");
        return;
      case Operation::Literal:
        return;
      case Operation::ListOfItems:
        for (std::size_t const child : part.children) writePart(node, rule, child, false, indent);
        return;
      case Operation::Choice:
        if (part.length == 0 && !part.children.empty()) {
          writeItem(node, rule, part, indent);
          return;
        }
        [[fallthrough]];
      default:
        add(indent, also + leafText(node, rule, part, isBlocking));
        writeFurther(node, rule, part, indent + "  ");
    }
  }

  /// An item of a list that counts only while its condition holds.
  void writeItem(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part,
                 std::string const& indent) {
    auto const& explanation = rule.explanation;
    Explanation::Node const& when = explanation.nodes[part.children.front()];
    std::string const value =
        part.children.size() > 1 ? resultText(explanation.nodes[part.children[1]].result) : "an item";
    std::string const place =
        when.source < explanation.sources.size() ? placed(explanation.sources[when.source].place) : std::string();
    add(indent, value + (part.result.truth ? " counts: " : " does not count: ") + partText(rule, when) + place);
    writePart(node, rule, part.children.front(), !part.result.truth, indent + "  ");
  }

  /// At most three objects, each with its name.
  void writeObjects(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part, bool isBlocking,
                    std::string const& indent) {
    std::size_t most = 3;
    for (std::size_t const child : part.children) {
      Explanation::Node const& object = rule.explanation.nodes[child];
      if (object.result.kind != Result::Kind::Truth) continue;
      if (most-- == 0) return;
      writePart(node, rule, child, isBlocking, indent);
    }
  }

  std::string setText(ProofRule const& rule, Explanation::Node const& part) const {
    std::string const text = partText(rule, part);
    if (part.total == 0) return text + ": no object matches";
    std::string const number = part.isCutShort ? "at least " + std::to_string(part.agreeing)
                                               : std::to_string(part.agreeing) + " of " + std::to_string(part.total);
    // The object follows. In a large set there may be more that were not looked at.
    if (part.operation == Operation::Any && part.result.truth && part.agreeing == 1) return text + ": holds";
    bool const isOfHolding = (part.operation == Operation::Any) == part.result.truth;
    bool const holds = isOfHolding || part.result.truth;
    return text + ": " + (holds ? "holds" : "fails") + " for " + number;
  }

  std::string leafText(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part,
                       bool isBlocking) const {
    auto const& nodes = rule.explanation.nodes;
    bool const wanted = !part.result.truth;
    switch (part.operation) {
      case Operation::Equal:
      case Operation::NotEqual:
      case Operation::Less:
      case Operation::LessEqual:
      case Operation::Greater:
      case Operation::GreaterEqual:
      case Operation::In:
      case Operation::NotIn: {
        if (part.children.size() != 2) break;
        Explanation::Node const* left = &nodes[part.children[0]];
        Explanation::Node const* right = &nodes[part.children[1]];
        Operation operation = part.operation;
        if (left->operation == Operation::Literal && right->operation != Operation::Literal &&
            operation != Operation::In && operation != Operation::NotIn) {
          std::swap(left, right);
          operation = mirrored(operation);
        }
        std::string text = subjectText(node, rule, *left);
        if (isBlocking) text += ", needs " + needText(node, rule, operation, wanted, *right);
        return text + sourcesText(rule, *left) + sourcesText(rule, *right);
      }
      case Operation::Exists: {
        std::string text = partText(rule, part);
        if (!part.reads.empty()) {
          ModelRead const& read = rule.explanation.reads[part.reads.front()];
          if (read.isParameter()) text = nameOf(node, read);
        }
        return text + (part.result.truth ? " exists" : " does not exist") +
               (isBlocking ? (wanted ? ", and must" : ", and must not") : "") + sourcesText(rule, part);
      }
      case Operation::Parameter: {
        std::string text = subjectText(node, rule, part);
        if (part.result.kind == Result::Kind::Truth && isBlocking) text += wanted ? ", needs true" : ", needs false";
        return text + sourcesText(rule, part);
      }
      default:
        break;
    }
    std::string const text = partText(rule, part);
    return (text.empty() ? std::string("the rule") : text) + " is " + resultText(part.result) + sourcesText(rule, part);
  }

  std::string needText(ProofNode const& node, ProofRule const& rule, Operation operation, bool wanted,
                       Explanation::Node const& other) const {
    std::string const value = neededText(node, rule, other);
    switch (operation) {
      case Operation::Equal:
        return wanted ? value : "a value other than " + value;
      case Operation::NotEqual:
        return wanted ? "a value other than " + value : value;
      case Operation::In:
        return (wanted ? "one of " : "none of ") + value;
      case Operation::NotIn:
        return (wanted ? "none of " : "one of ") + value;
      case Operation::Less:
        return (wanted ? "less than " : "at least ") + value;
      case Operation::LessEqual:
        return (wanted ? "at most " : "more than ") + value;
      case Operation::Greater:
        return (wanted ? "more than " : "at most ") + value;
      default:
        return (wanted ? "at least " : "less than ") + value;
    }
  }

  /// "'5', the value of Height".
  std::string neededText(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part) const {
    if (part.operation == Operation::Literal || part.result.kind == Result::Kind::List) return resultText(part.result);
    if (part.operation == Operation::Parameter && !part.reads.empty()) {
      ProofRead const& read = rule.reads[part.reads.front()];
      std::string const name = nameOf(node, read.read);
      if (!read.read.isPresent) return "the value of " + name + ", which is absent";
      return quoted(part.result.text) + ", the value " +
             (read.isOld ? "that " + name + " had when this was decided" : "of " + name);
    }
    std::string const text = operandText(rule, part);
    return resultText(part.result) + (text.empty() ? std::string() : ", which is " + text);
  }

  /// Words for `name()`, which says nothing to a user who looks at several objects.
  static std::string operandText(ProofRule const& rule, Explanation::Node const& part) {
    bool const isOfObject =
        part.operation == Operation::Function && part.children.empty() && (part.name == "name" || part.name == "type");
    if (isOfObject) return "the " + part.name + " of " + printable(part.context.empty() ? "/" : part.context);
    return partText(rule, part);
  }

  /// "Motion is 'Stationary'".
  std::string subjectText(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part) const {
    if (part.operation == Operation::Parameter && !part.reads.empty()) {
      ProofRead const& read = rule.reads[part.reads.front()];
      std::string const name = nameOf(node, read.read);
      std::string const value = read.read.isPresent ? quoted(part.result.text) : "absent";
      if (!read.isOld) return name + " is " + value;
      return name + " was " + value + " when this was decided (now " +
             (read.valueNow ? quoted(*read.valueNow) : "absent") + "; decided again at the next edit)";
    }
    std::string const text = operandText(rule, part);
    return (text.empty() ? std::string("it") : text) + " is " + resultText(part.result);
  }

  static std::string resultText(Result const& result) {
    switch (result.kind) {
      case Result::Kind::Truth:
        return result.truth ? "true" : "false";
      case Result::Kind::Number:
        return result.text.empty() ? "not a number" : printable(result.text, longestValue);
      case Result::Kind::Text:
        return quoted(result.text);
      case Result::Kind::List:
      case Result::Kind::Objects:
        break;
    }
    return result.itemCount == 0 ? "nothing" : listed(result.items, result.itemCount);
  }

  static std::string partText(ProofRule const& rule, Explanation::Node const& part) {
    return printable(oneLine(rule.explanation.textOf(part)), longestValue);
  }

  /// The parameter as seen from the item: its name alone when it belongs to the same object.
  static std::string nameOf(ProofNode const& node, ModelRead const& read) {
    std::string const owner = node.item.isParam() ? node.item.path : std::string(PathUtils::parentOf(node.item.path));
    return printable(read.object == owner ? read.name : read.object + '/' + read.name);
  }

  /// Where the values that a part read come from.
  std::string sourcesText(ProofRule const& rule, Explanation::Node const& part) const {
    if (part.reads.size() != 1) return {};
    ProofRead const& read = rule.reads[part.reads.front()];
    if (!read.read.isParameter() || read.isOld) return {};
    std::string text;
    if (read.origin == Origin::User) {
      text = "user, step " + std::to_string(read.step);
    } else if (read.origin != Origin::None) {
      text = originName(read.origin);
      if (read.place.isKnown()) text += ", " + read.place.text();
    }
    if (read.node && numbers_[*read.node] != 0) text += std::string(text.empty() ? "" : "; ") + "see above";
    return text.empty() ? text : "  (" + text + ")";
  }

  /// The parts below a leaf that are no operands of it: what a count looked at, and what chose a branch.
  void writeFurther(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part,
                    std::string const& indent) {
    for (std::size_t const child : part.children) {
      Explanation::Node const& below = rule.explanation.nodes[child];
      if (below.operation == Operation::Literal || below.operation == Operation::Parameter ||
          below.operation == Operation::Objects)
        continue;
      if (below.operation == Operation::Count) {
        writeObjects(node, rule, below, false, indent);
      } else if (below.result.kind == Result::Kind::Truth || below.operation == Operation::NamedRule) {
        writePart(node, rule, child, false, indent);
      } else {
        writeFurtherOperands(node, rule, below, indent);
      }
    }
  }

  void writeFurtherOperands(ProofNode const& node, ProofRule const& rule, Explanation::Node const& part,
                            std::string const& indent) {
    for (std::size_t const child : part.children) {
      Explanation::Node const& below = rule.explanation.nodes[child];
      if (below.operation != Operation::Literal) writePart(node, rule, child, false, indent);
    }
  }

  Proof const& proof_;
  std::vector<std::string> lines_;
  std::vector<std::size_t> numbers_;  // by node; 0: not written yet
  std::size_t count_ = 0;
};

}  // namespace

std::string textOf(Proof const& proof, std::size_t maxLines) {
  if (proof.nodes.empty() || maxLines == 0) return {};
  std::vector<std::string> lines = Writer(proof).lines();
  if (lines.size() > maxLines) {
    std::size_t const left = lines.size() - maxLines + 1;
    lines.resize(maxLines - 1);
    lines.push_back("  " + std::to_string(left) + " more lines");
  }
  std::string text;
  for (std::string const& line : lines) text += line + '\n';
  return text;
}

}  // namespace tarn::session
