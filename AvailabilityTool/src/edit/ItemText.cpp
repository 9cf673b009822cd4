// The records of a session as lines for people.
#include "edit/ItemText.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "cli/Counted.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using session::ChildTypeRecord;
using session::ObjectRecord;
using session::Origin;
using session::ParamRecord;
using session::Session;

constexpr std::size_t mostAllowed = 100;

std::string_view typeName(TDFParam::Type type) noexcept {
  switch (type) {
    case TDFParam::String:
      return "text";
    case TDFParam::StringList:
      return "list of texts";
    case TDFParam::Integer:
      return "whole number";
    case TDFParam::IntegerList:
      return "list of whole numbers";
    case TDFParam::Real:
      return "number";
    case TDFParam::RealList:
      return "list of numbers";
    case TDFParam::Logical:
      return "yes or no";
    case TDFParam::LogicalList:
      return "list of yes and no";
    default:
      return "value";
  }
}

std::string joined(SharedStrings const& items) {
  std::string text;
  std::size_t const count = std::min(items.size(), mostAllowed);
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + shortened(items[i]);
  if (count < items.size()) text += " and " + std::to_string(items.size() - count) + " more";
  return text.empty() ? "nothing" : text;
}

std::string boundText(std::string const& bound, std::string_view title, std::string_view kind) {
  std::string const limit = shortened(bound);
  if (TDFParam::asQuantity(bound)) return std::string(title) + ' ' + limit;
  return "no " + std::string(kind) + " bound ('" + limit + "' is not a number)";
}

std::string boundsText(ParamRecord const& param) {
  std::string text;
  if (param.lowerBound) text = boundText(*param.lowerBound, param.lowerBoundExcluded ? "above" : "at least", "lower");
  if (!param.upperBound) return text;
  if (!text.empty()) text += ", ";
  return text + boundText(*param.upperBound, param.upperBoundExcluded ? "below" : "at most", "upper");
}

/// The first part of a path: "Boundary:a" of "/Case/Boundary:a".
std::string lastComponent(std::string const& path) {
  return path.substr(path.rfind('/') + 1);
}

void addNames(std::string& text, std::string_view title, std::vector<std::string> const& names) {
  if (names.empty()) return;
  text += title;
  for (std::size_t i = 0; i < names.size(); ++i) text += (i == 0 ? " " : ", ") + names[i];
  text += '\n';
}

std::string objectsOf(ChildTypeRecord const& type) {
  constexpr std::size_t mostNamed = 10;
  std::string text;
  std::size_t const count = std::min(type.present.size(), mostNamed);
  for (std::size_t i = 0; i < count; ++i) text += (i == 0 ? "" : ", ") + shortened(lastComponent(type.present[i]));
  if (count < type.present.size()) {
    text += " and " + std::to_string(type.present.size() - count) + " more, \"list\" shows all";
  }
  return text;
}

}  // namespace

std::string originText(ParamRecord const& param) {
  switch (param.origin) {
    case Origin::User:
      return "set by you" + (param.step == 0 ? "" : ", step " + std::to_string(param.step));
    case Origin::Model:
      return "from the model";
    case Origin::Default:
      return "default";
    case Origin::Override:
      return "fixed by the rules";
    case Origin::FormerOverride:
      return "left by the rules";
    case Origin::CompletedList:
      return "completed by the rules";
    case Origin::None:
      break;
  }
  return {};
}

std::string paramText(ParamRecord const& param, TextLook const& look) {
  std::string text = painted(shownPath(param.path) + '/' + shortened(param.name), Colour::Cyan, look) + "   " +
                     std::string(typeName(param.type)) + (param.required ? ", required" : ", optional") + '\n';
  auto const add = [&](std::string_view title, std::string const& what) {
    if (!what.empty()) text += "  " + padded(std::string(title), 12) + what + '\n';
  };
  add("about", harmless(param.description));
  if (param.value) {
    std::string const value =
        param.value->empty() ? painted("needs a value", Colour::Yellow, look) : harmless(*param.value);
    add("value", value + "   (" + originText(param) + ')');
    if (!param.outOfBounds.empty()) add("", painted("it " + harmless(param.outOfBounds), Colour::Yellow, look));
  } else if (param.offered) {
    add("value", "none; it is on offer");
  } else {
    add("value", "none; it is not available now" + (param.reason.empty() ? "" : ": " + harmless(param.reason)));
  }
  if (param.waiting) {
    add("waiting", (param.waiting->value ? shortened(*param.waiting->value) + ": " : "") + whyWaiting(*param.waiting));
  }
  if (param.valueInModel && param.valueInModel != param.value) add("in model", shortened(*param.valueInModel));
  if (param.defaultValue && (param.defaultValue != param.value || param.origin != Origin::Default)) {
    add("default", shortened(*param.defaultValue));
  }
  add("bounds", boundsText(param));
  if (!param.units.empty()) {
    std::string units;
    for (std::string const& unit : param.units) units += (units.empty() ? "" : ", ") + harmless(unit);
    add("units", units + "   (" + harmless(param.quantityType) + ", the first is taken when none is given)");
  }
  if (param.allowed.hasAllowedValues) {
    add("choices", joined(param.allowed.hasSubset ? param.allowed.subsetValues : param.allowed.allowedValues) +
                       (param.allowed.allowsAnyValue ? ", or any other value" : ""));
  }
  add("rule", harmless(param.rule.text()));
  return text;
}

std::string objectText(Session const& session, ObjectRecord const& object, TextLook const& look) {
  std::string text = painted(shownPath(object.path), Colour::Cyan, look);
  if (!object.present) {
    text += object.offered     ? "   not present; it is on offer"
            : object.available ? "   not present"
                               : "   not available now";
    if (!object.available && !object.reason.empty()) text += ": " + harmless(object.reason);
  }
  if (object.waiting && !object.offered) text += "   waits: " + whyWaiting(*object.waiting);
  if (!object.editable) text += "   taken from the model as it is";
  text += '\n';
  if (!object.description.empty()) text += "  " + harmless(object.description) + '\n';

  std::vector<ParamRecord> present;
  std::vector<std::string> offered;
  std::vector<std::string> unavailable;
  for (std::string const& name : session.params(object.path)) {
    auto param = session.lookParam(object.path, name);
    if (!param) continue;
    if (param->present) {
      present.push_back(std::move(*param));
    } else {
      (param->offered ? offered : unavailable).push_back(shortened(name));
    }
  }
  // The origins are in one column, as far as there is room for it.
  constexpr std::size_t roomOfOrigin = 24;
  std::size_t most = 60;
  if (look.width != 0) most = std::min(most, look.width - std::min(look.width, roomOfOrigin));
  std::size_t widest = 0;
  for (ParamRecord const& param : present) {
    std::size_t const columns = charactersOf(param.name) + charactersOf(*param.value) + 3;
    if (columns <= most) widest = std::max(widest, columns);
  }
  for (ParamRecord const& param : present) {
    std::string line = shortened(param.name);
    line += param.value->empty() ? "   " + painted("needs a value", Colour::Yellow, look)
                                 : " = " + shortened(*param.value, look.width == 0 ? 0 : look.width / 2);
    if (!param.value->empty()) line = padded(std::move(line), widest) + "   " + originText(param);
    if (param.waiting && param.waiting->value) {
      line += "; " + shortened(*param.waiting->value) + " waits: " + whyWaiting(*param.waiting);
    }
    text += "  " + line + '\n';
  }
  addNames(text, "  on offer:", offered);
  addNames(text, "  not available:", unavailable);

  std::string objects;
  std::vector<std::string> canAdd;
  std::vector<std::string> offeredObjects;
  std::vector<std::string> unavailableTypes;
  for (ChildTypeRecord const& type : session.childTypes(object.path)) {
    if (!type.present.empty()) objects += "    " + objectsOf(type) + '\n';
    if (type.canAdd) canAdd.push_back(shortened(type.type) + ":NAME");
    for (std::string const& path : type.offered) offeredObjects.push_back(shortened(lastComponent(path)));
    if (!type.available && type.present.empty()) unavailableTypes.push_back(shortened(type.type));
  }
  if (!objects.empty()) text += "  objects:\n" + objects;
  addNames(text, "  objects on offer:", offeredObjects);
  addNames(text, "  objects to add:", canAdd);
  addNames(text, "  objects not available:", unavailableTypes);
  return text;
}

std::string remarkOn(Session const& session, std::span<Edit const> edits) {
  std::string remark;
  for (Edit const& edit : edits) {
    if (edit.kind != Edit::Kind::SetParam) continue;
    auto const param = session.lookParam(edit.path, edit.name);
    if (!param || param->outOfBounds.empty()) continue;
    std::string const name = edits.size() == 1 ? edit.name : edit.path + '/' + edit.name;
    remark += (remark.empty() ? "" : "; ") + shortened(name) + ' ' + harmless(param->outOfBounds);
  }
  return remark;
}

std::string groupedText(std::vector<std::pair<std::string, std::string>> const& lines) {
  std::string text;
  std::string const* before = nullptr;
  for (auto const& [path, line] : lines) {
    if (before == nullptr || *before != path || line.empty()) text += "  " + shownPath(path) + '\n';
    if (!line.empty()) text += "    " + line + '\n';
    before = &path;
  }
  return text;
}

}  // namespace tarn::tool
