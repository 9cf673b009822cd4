#include "yaml/MapReader.h"

#include "yaml/ScalarText.h"

namespace tarn::rules {

using StringUtilities::isSpace;

Diagnostic& MapReader::error(Code code, Item const& item, std::string message) {
  return diagnostics_.add(code, *item.source, item.node->range(), std::move(message));
}

std::optional<std::string_view> MapReader::scalar(Item const& item, std::string_view what) {
  if (item.node->kind == YamlNode::Kind::Scalar) return item.node->value;
  std::string message = std::string(what) + " must be a single value, but this is " + std::string(kindText(*item.node));
  if (item.node->flow && item.node->kind == YamlNode::Kind::Mapping) {
    message += "; put quotes around an expression that begins with '{'";
  }
  error(Code::WrongKind, item, std::move(message));
  return std::nullopt;
}

void MapReader::yesNo(Item const& item, bool& value) {
  auto const text = scalar(item, "yes or no");
  if (!text) return;
  if (auto const given = StringUtilities::asYesNo(*text)) {
    value = *given;
    return;
  }
  error(Code::NotYesOrNo, item, "this must be yes or no, not " + inQuotes(text->substr(0, 60)));
}

std::optional<std::vector<std::string>> MapReader::texts(Item const& item, bool oneAllowed,
                                                         std::string_view otherwise) {
  if (item.node->kind == YamlNode::Kind::Scalar && oneAllowed) return std::vector<std::string>{item.node->value};
  if (item.node->kind != YamlNode::Kind::Sequence) {
    // A call that lacks its sign is no item of a list.
    auto const& text = item.node->value;
    bool const isCall = text.ends_with(')') && text.find('(') != std::string::npos && text.find_first_of(" (") > 0 &&
                        text.find(' ') > text.find('(');
    bool const isOne = item.node->kind == YamlNode::Kind::Scalar && !isExpression(*item.node) && !isCall;
    std::string message = "this must be a list of texts, but it is " + std::string(kindText(*item.node));
    if (!otherwise.empty() && isExpression(*item.node)) {
      message += "; " + std::string(otherwise);
    } else if (isCall && !isExpression(*item.node)) {
      message += "; an expression begins with '=': = " + text.substr(0, 60);
    } else if (text.size() > 1 && text.starts_with('(') && text.ends_with(')')) {
      message += "; a list is written in square brackets: [" +
                 text.substr(1, std::min<std::size_t>(text.size() - 2, 60)) + "]";
    } else if (isOne) {
      message += "; write a list of one as [" + item.node->value.substr(0, 60) + "]";
    }
    auto& diagnostic = error(Code::WrongKind, item, std::move(message));
    if (isOne && !text.starts_with('(')) fixAsList(diagnostic, item);
    return std::nullopt;
  }
  std::vector<std::string> result;
  result.reserve(item.node->children.size());
  bool good = true;
  for (auto const* child : item.node->children) {
    if (child->kind == YamlNode::Kind::Scalar) {
      result.push_back(child->value);
    } else {
      error(Code::WrongKind, {item.source, child},
            "an item of this list must be a single text, but this is " + std::string(kindText(*child)));
      good = false;
    }
  }
  if (!good) return std::nullopt;
  return result;
}

bool MapReader::isMapping(Item const& item, std::string_view what) {
  if (item.node->kind == YamlNode::Kind::Mapping) return true;
  if (!isNothing(*item.node)) {
    error(
        Code::WrongKind, item,
        std::string(what) + " must be a map, but this is " + std::string(kindText(*item.node)) +
            (item.node->kind == YamlNode::Kind::Sequence && !item.node->flow ? "; leave out the '-' before its entries"
             : what == "a parameter"                                         ? "; write {Parameter Type: ...}"
                                                                             : ""));
  }
  return false;
}

bool MapReader::isName(Item const& item, std::string_view what) {
  std::string_view const name = item.node->value;
  if (name.empty()) return error(Code::InvalidName, item, std::string(what) + " cannot be empty"), false;
  if (isSpace(name.front()) || isSpace(name.back())) {
    return error(Code::InvalidName, item, std::string(what) + " cannot begin or end with a blank"), false;
  }
  return true;
}

void MapReader::fixText(Diagnostic& diagnostic, Item const& item, std::string_view text) {
  std::string const& former = item.node->value;
  auto written = writtenInScalar(*item.node, 0, former.size(), text);
  if (!written || former.empty()) return;
  DiagnosticList::fix(diagnostic, *item.source, rangeInScalar(*item.source, *item.node, 0, former.size()),
                      std::move(*written), "Replace " + inQuotes(former) + " by " + inQuotes(text));
}

void MapReader::fixAsList(Diagnostic& diagnostic, Item const& item) {
  auto const& node = *item.node;
  // Only for a plain text of one line without characters that would end it inside a list.
  bool const plain = node.style == YamlNode::Style::Plain && node.line == node.endLine && !node.value.empty() &&
                     node.value.find_first_of(",[]{}") == std::string::npos;
  if (!plain) return;
  DiagnosticList::fix(diagnostic, *item.source, rangeInScalar(*item.source, node, 0, node.value.size()),
                      "[" + node.value + "]", "Write a list of one item");
}

void MapReader::twice(Code code, Item const& item, Item const& former, std::string message) {
  auto& diagnostic = error(code, item, std::move(message));
  if (former) DiagnosticList::note(diagnostic, *former.source, former.node->range(), "the first one is here");
}

std::string_view MapReader::keyBeforeValue(std::string_view key) {
  auto const sign = key.find_first_of(":=");
  if (sign == std::string_view::npos || sign + 1 == key.size()) return {};
  return StringUtilities::trimmed(key.substr(0, sign));
}

bool MapReader::isMisspelled(std::string_view key, YamlNode const& map) const {
  return proposedKeys_.contains({&map, std::string(key)}) || proposedKeys_.contains({&map, anyKey});
}

}  // namespace tarn::rules
