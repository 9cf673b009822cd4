// Reads what the rules say about the history of an item: `Deprecated`, `Renamed From`, `Rename Message` and
// `Renamed Names`.

#include <algorithm>

#include <tarn/StringUtilities.h>

#include "diagnostics/NearMatch.h"
#include "loading/RuleBuilder.h"
#include "loading/RuleSections.h"

namespace tarn::rules {

void RuleBuilder::readDeprecated(Item const& value, std::string& message) {
  auto const given = scalar(value, "Deprecated");
  if (!given) return;
  if (StringUtilities::trimmed(*given).empty() || StringUtilities::asYesNo(*given)) {
    error(Code::WrongKind, value, "Deprecated must be a text for users; write what they should use instead");
    return;
  }
  message = *given;
}

bool RuleBuilder::isItemName(Item const& name, std::string_view what) {
  if (!isName(name, what)) return false;
  if (!holdsSeparator(name.node->value)) return true;
  error(Code::InvalidName, name, std::string(what) + " cannot contain '/' or ':'");
  return false;
}

void RuleBuilder::readFormerNames(Item const& value, std::vector<std::string>& names) {
  constexpr std::string_view what = "a former name";
  if (!texts(value, true)) return;
  auto const add = [&](Item const& item) {
    if (!isItemName(item, what)) return;
    auto const& name = item.node->value;
    if (std::find(names.begin(), names.end(), name) != names.end()) {
      error(Code::DuplicateName, item, inQuotes(name) + " is given twice");
      return;
    }
    names.push_back(name);
  };
  if (value.node->kind == YamlNode::Kind::Scalar) {
    add(value);
    return;
  }
  for (auto const* child : value.node->children) add({value.source, child});
}

void RuleBuilder::readRenamedNames(Item const& value, std::map<std::string, std::string>& names) {
  forEach(value, "Renamed Names", [&](Item const& former, Item const& present) {
    if (!scalar(present, "a name") || !isItemName(former, "a former name") || !isItemName(present, "a name")) return;
    names.emplace(former.node->value, present.node->value);
  });
}

void RuleBuilder::readHistoryOfObject(ObjDependDef& object, Item const& key, Item const& value) {
  auto const& path = object.typePath();
  std::string const attribute = key.node->value;
  if (readTemplate_ != nullptr || taking_) {
    if (!taking_) error(Code::UnknownKey, key, attribute + " is for entries, and not for a whole template");
    return;
  }
  if (auto const end = path.rfind('/'); end != 0) {
    error(Code::UnknownKey, key,
          attribute + " of this type is written at the child entry " + inQuotes(path.substr(end + 1)) + " of " +
              path.substr(0, end));
    return;
  }
  if (attribute == attributes::deprecated) {
    readDeprecated(value, object.history.deprecated);
  } else if (attribute == attributes::renamedFrom) {
    readFormerNames(value, object.history.formerNames);
  } else if (auto const text = scalar(value, attribute)) {
    object.history.renameMessage = *text;
  }
}

}  // namespace tarn::rules
