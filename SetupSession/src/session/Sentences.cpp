// All sentences of a session. Records hold what a sentence says as data, so nothing here is read by a program.
#include <tarn/session/Sentences.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include <tarn/PathUtils.h>

#include "review/BoundsCheck.h"
#include "session/Printable.h"

namespace tarn::session {

namespace {

constexpr std::size_t mostListed = 10;

std::string quoted(std::string_view text) {
  return '"' + printable(text) + '"';
}

std::string shownPath(std::string const& path) {
  return path.empty() ? "/" : printable(path);
}

std::string shownItem(std::string const& path, std::string const& name) {
  return printable(path + '/' + name);
}

std::string shownItem(Item const& item) {
  return item.name ? shownItem(item.path, *item.name) : shownPath(item.path);
}

/// `count` is the number of all items, if `items` are only the first of them.
std::string shownList(std::vector<std::string> const& items, std::size_t count = 0) {
  std::string text;
  std::size_t const all = std::max(items.size(), count);
  for (std::size_t i = 0; i < items.size() && i < mostListed; ++i) text += (i == 0 ? "" : ", ") + quoted(items[i]);
  if (all > mostListed) text += " and " + std::to_string(all - mostListed) + " more";
  return items.empty() ? "nothing" : text;
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + ' ' + std::string(count == 1 ? one : many);
}

std::string orNone(std::string const& text) {
  return text.empty() ? "none" : quoted(text);
}

std::string withReason(std::string const& sentence, std::string const& reason) {
  return reason.empty() ? sentence + '.' : sentence + ": " + printable(reason);
}

std::string boundsText(BoundsChange::Bounds const& bounds) {
  auto const textOf = [](std::string const& bound) {
    return isBound(bound) ? printable(bound) : quoted(bound) + " (not a number)";
  };
  if (bounds.first.empty() && bounds.second.empty()) return "no bounds";
  if (bounds.second.empty()) return "at least " + textOf(bounds.first);
  if (bounds.first.empty()) return "at most " + textOf(bounds.second);
  return textOf(bounds.first) + " to " + textOf(bounds.second);
}

std::string_view originSentence(Origin origin) {
  switch (origin) {
    case Origin::User:
      return "set in this session";
    case Origin::Model:
      return "from the model";
    case Origin::Default:
      return "the default";
    case Origin::Override:
      return "fixed by the rules";
    case Origin::FormerOverride:
      return "left by the rules";
    case Origin::CompletedList:
      return "completed by the rules";
    case Origin::None:
      break;
  }
  return "";
}

}  // namespace

std::string sentenceOf(Edit const& edit) {
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      return "set " + shownItem(edit.path, edit.name) + " to " + quoted(edit.value);
    case Edit::Kind::ActivateParam:
      return "switch on " + shownItem(edit.path, edit.name);
    case Edit::Kind::DeactivateParam:
      return "switch off " + shownItem(edit.path, edit.name);
    case Edit::Kind::ActivateObject:
      return "switch on " + shownPath(edit.path);
    case Edit::Kind::DeactivateObject:
      return "switch off " + shownPath(edit.path);
    case Edit::Kind::AddObject:
      return "add " + shownPath(edit.path);
    case Edit::Kind::RemoveObject:
      return "remove " + shownPath(edit.path);
    case Edit::Kind::DuplicateObject:
      return "copy " + shownPath(edit.path) + " to the name " + quoted(edit.name);
    case Edit::Kind::RenameObject:
      return "rename " + shownPath(edit.path) + " to " + quoted(edit.name);
  }
  return "no edit";
}

std::string sentenceOf(Refused const& refused) {
  std::string sentence = escaped(refused.sentence);
  if (!refused.possible.empty())
    sentence += " Possible now: " + shownList(refused.possible, refused.possibleCount) + '.';
  if (refused.nearest) sentence += " Nearest: " + sentenceOf(*refused.nearest) + '.';
  return sentence;
}

std::string sentenceOf(Waiting const& waiting) {
  std::string const what =
      shownItem(waiting.item) + (waiting.value ? " = " + quoted(*waiting.value) : std::string()) + " waits";
  switch (waiting.reason) {
    case WaitingReason::NotAvailable:
      return withReason(what + ", because it is not available now", waiting.ruleReason);
    case WaitingReason::ObjectNotPresent:
      return what + ", because " + shownPath(waiting.missingObject) + " is not present.";
    case WaitingReason::SwitchedOff:
      return what + ", because it is switched off.";
    case WaitingReason::ValueNotAllowed:
      return what + ", because the value is not allowed now.";
    case WaitingReason::Overridden:
      return what + ", because the rules fix another value.";
    case WaitingReason::NotInTheRules:
      return what + ", because the rules do not know it.";
  }
  return what + '.';
}

std::string sentenceOf(WaitingChange const& change) {
  if (change.after) return sentenceOf(*change.after);
  return shownItem(change.item) + " waits no longer.";
}

std::string sentenceOf(ValueChange const& change) {
  std::string const item = shownItem(change.path, change.name);
  if (!change.before) return item + " came with the value " + quoted(change.after.value_or("")) + '.';
  if (!change.after) return item + " went; its value was " + quoted(*change.before) + '.';
  return item + " changed from " + quoted(*change.before) + " to " + quoted(*change.after) + '.';
}

std::string sentenceOf(ChoicesChange const& change) {
  auto const onOffer = [](ParamAllowedValues const& allowed) -> std::vector<std::string> const& {
    return allowed.hasSubset ? allowed.subsetValues.vector() : allowed.allowedValues.vector();
  };
  return "The choices of " + shownItem(change.path, change.name) + " changed from " +
         shownList(onOffer(change.before)) + " to " + shownList(onOffer(change.after)) + '.';
}

std::string sentenceOf(BoundsChange const& change) {
  return "The bounds of " + shownItem(change.path, change.name) + " changed from " + boundsText(change.before) +
         " to " + boundsText(change.after) + '.';
}

std::string sentenceOfDefault(TextChange const& change) {
  return "The default of " + shownItem(change.path, change.name) + " changed from " + orNone(change.before) + " to " +
         orNone(change.after) + '.';
}

std::string sentenceOfQuantity(TextChange const& change) {
  return "The quantity type of " + shownItem(change.path, change.name) + " changed from " + orNone(change.before) +
         " to " + orNone(change.after) + '.';
}

std::string sentenceOf(Conversion const& conversion) {
  return shownItem(conversion.item) + " was given as " + quoted(conversion.from) + " and set to " +
         quoted(conversion.to) + '.';
}

std::string sentenceOf(FollowedReference const& reference) {
  return shownItem(reference.item) + " follows the new name, from " + quoted(reference.before) + " to " +
         quoted(reference.after) + '.';
}

std::string sentenceOf(EditResult const& result) {
  if (result.refused) return "Refused: " + sentenceOf(*result.refused);
  Effect const& effect = result.effect;
  std::string text = "Done";
  if (result.step != 0) text += " as step " + std::to_string(result.step);
  std::size_t came = 0;
  std::size_t went = 0;
  for (ValueChange const& change : effect.values) {
    came += change.before ? 0 : 1;
    went += change.after ? 0 : 1;
  }
  std::size_t began = 0;
  for (WaitingChange const& change : effect.waiting) began += change.after ? 1 : 0;
  std::vector<std::string> parts;
  auto const add = [&parts](std::size_t count, std::string_view one, std::string_view many) {
    if (count != 0) parts.push_back(counted(count, one, many));
  };
  add(effect.values.size() - came - went, "value changed", "values changed");
  add(came, "parameter came", "parameters came");
  add(went, "parameter went", "parameters went");
  add(effect.objectsCreated.size(), "object came", "objects came");
  add(effect.objectsDeleted.size(), "object went", "objects went");
  add(effect.choices.size(), "list of choices changed", "lists of choices changed");
  add(effect.bounds.size(), "pair of bounds changed", "pairs of bounds changed");
  add(effect.defaults.size(), "default changed", "defaults changed");
  add(effect.quantities.size(), "quantity type changed", "quantity types changed");
  add(effect.offersGained.size(), "offer came", "offers came");
  add(effect.offersLost.size(), "offer went", "offers went");
  add(began, "request waits", "requests wait");
  if (parts.empty()) return text + ": nothing changed.";
  for (std::size_t i = 0; i < parts.size(); ++i) text += (i == 0 ? ": " : ", ") + parts[i];
  return text + '.';
}

std::vector<std::string> sentencesOf(Effect const& effect) {
  std::vector<std::string> sentences;
  sentences.reserve(effect.size());
  for (auto const& change : effect.values) sentences.push_back(sentenceOf(change));
  for (auto const& change : effect.choices) sentences.push_back(sentenceOf(change));
  for (auto const& change : effect.bounds) sentences.push_back(sentenceOf(change));
  for (auto const& change : effect.defaults) sentences.push_back(sentenceOfDefault(change));
  for (auto const& change : effect.quantities) sentences.push_back(sentenceOfQuantity(change));
  for (Item const& item : effect.offersGained) sentences.push_back(shownItem(item) + " is on offer now.");
  for (Item const& item : effect.offersLost) sentences.push_back(shownItem(item) + " is not on offer any more.");
  for (std::string const& path : effect.objectsCreated) sentences.push_back("The object " + shownPath(path) + " came.");
  for (std::string const& path : effect.objectsDeleted) sentences.push_back("The object " + shownPath(path) + " went.");
  for (auto const& change : effect.waiting) sentences.push_back(sentenceOf(change));
  return sentences;
}

std::string sentenceOf(ParamRecord const& param) {
  std::string text = shownItem(param.path, param.name);
  if (param.value) {
    text += param.value->empty() ? " has no value yet" : " is " + quoted(*param.value);
    text += ", " + std::string(originSentence(param.origin));
    if (param.step != 0) text += " by step " + std::to_string(param.step);
    return text + (param.outOfBounds.empty() ? "." : ". It " + printable(param.outOfBounds) + '.');
  }
  if (param.offered) return text + " is on offer.";
  return withReason(text + " is not available", param.reason);
}

std::string sentenceOf(ObjectRecord const& object) {
  std::string text = shownPath(object.path);
  if (object.present) {
    text += " has " + counted(object.params, "parameter", "parameters") + " and " +
            counted(object.children, "child", "children");
    return text + '.';
  }
  if (object.offered) return text + " is on offer.";
  if (object.waiting) return sentenceOf(*object.waiting);
  return withReason(text + " is not available", object.reason);
}

std::string sentenceOf(ChildTypeRecord const& type) {
  std::string text = "Children " + quoted(type.type);
  if (!type.available) return withReason(text + " are not available", type.reason);
  text += ": " + std::to_string(type.present.size()) + " present";
  if (!type.offered.empty()) text += ", " + std::to_string(type.offered.size()) + " on offer";
  if (type.canAdd) text += ", more can be added";
  return text + '.';
}

std::string sentenceOf(Found const& found) {
  return shownItem(found.item) + (found.present ? "" : " (not present)");
}

std::string sentenceOf(Step const& step) {
  std::string text = std::to_string(step.number) + ": ";
  for (std::size_t i = 0; i < step.edits.size() && i < mostListed; ++i) {
    text += (i == 0 ? "" : "; ") + sentenceOf(step.edits[i]);
  }
  if (step.edits.size() > mostListed) text += " and " + std::to_string(step.edits.size() - mostListed) + " more";
  return text;
}

std::string sentenceOf(OwnValue const& value) {
  return shownItem(value.item) + " = " + quoted(value.value) + ", set by step " + std::to_string(value.step) +
         (value.inForce ? "." : ", not in force.");
}

std::string sentenceOf(Difference const& difference) {
  std::string const item = shownItem(difference.item);
  if (!difference.item.isParam()) {
    return item + (difference.isNewObject ? " is new." : " is in the model and not in the result.");
  }
  if (!difference.inModel) return item + " is new, with the value " + quoted(difference.now.value_or("")) + '.';
  if (!difference.now) return item + " is not in the result; the model has " + quoted(*difference.inModel) + '.';
  return item + " is " + quoted(*difference.now) + "; the model has " + quoted(*difference.inModel) + '.';
}

}  // namespace tarn::session
