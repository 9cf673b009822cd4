// The wording of every fault that a validation reports about the objects and parameters of a model: the templates, the
// choice of singular and plural, and the two ways of joining a list. The checks of the validator decide when each is
// reported.

#include "validation/ValidationMessages.h"

#include <algorithm>
#include <string_view>

#include <tarn/StringUtilities.h>
#include <tarn/UserMsg.h>

namespace tarn::ValidationMessages {
namespace {

/// The values fill the tokens in number order, in whatever order the template has them.
template <typename... Values>
std::string compose(char const* messageTemplate, Values const&... values) {
  UserMsg message(messageTemplate, nullptr);
  (message << ... << values);
  return message;
}

std::string fullList(std::vector<std::string> const& items) {
  return StringUtilities::vectorToString(items, ',');
}

std::string byNumber(std::vector<std::string> const& items, char const* one, char const* other) {
  return items.size() == 1 ? one : other;
}

void makeSet(std::vector<std::string>& items) {
  std::sort(items.begin(), items.end());
  items.erase(std::unique(items.begin(), items.end()), items.end());
}

}  // namespace

std::string formatMissingParam(std::string const& objPath, std::string const& name) {
  return compose("The parameter \"%1\" should exist in the object \"%2\" but is not present.", name, objPath);
}

std::string formatInvalidParam(std::string const& objPath, std::string const& name) {
  return compose("The parameter \"%1\" is present in the object \"%2\" but it is not physically valid.", name, objPath);
}

std::string formatInvalidValue(std::string const& objPath, std::string const& name, Strings allowed,
                               std::string const& value) {
  return compose(
      "The parameter \"%1\" in \"%2\" has the value \"%3\". This does not match any of the allowed values: \"%4\".",
      name, objPath, value, shortList(allowed));
}

std::string formatInvalidValues(std::string const& objPath, std::string const& name, Strings allowed,
                                std::vector<std::string> const& disallowed) {
  return compose(
      "The parameter \"%1\" in \"%2\" holds the following disallowed %3: \"%4\". (Allowed values are: \"%5\".)", name,
      objPath, byNumber(disallowed, "value", "values"), fullList(disallowed), shortList(allowed));
}

std::string formatInvalidSingleton(std::string const& objPath, std::string const& type) {
  return compose("The object \"%1\" is present in the object \"%2\" but it is not physically valid.", type, objPath);
}

std::string formatInvalidNamedObjs(std::string const& objPath, std::string const& type,
                                   std::vector<std::string> const& names) {
  if (names.size() == 1) {
    return compose("The object \"%1: %2\" is present in the object \"%3\" but it is not physically valid.", type,
                   names.front(), objPath);
  }
  return compose(
      "Objects of type \"%1\" (names: %2) are present in the object \"%3\" but the existence of this type is not "
      "physically valid.",
      type, fullList(names), objPath);
}

std::string formatInvalidNames(std::string const& objPath, [[maybe_unused]] std::string const& type, Strings allowed,
                               std::vector<std::string> const& disallowed) {
  return compose(
      "The object \"%1\" contains the following %2: \"%3\" whose %4 not in the set of those allowed: \"%5\".", objPath,
      byNumber(disallowed, "object", "objects"), fullList(disallowed), byNumber(disallowed, "name is", "names are"),
      shortList(allowed));
}

std::string formatMissingSingleton(std::string const& objPath, std::string const& type) {
  return compose("There must be an object of type \"%1\" in the object \"%2\" but it does not exist.", type, objPath);
}

std::string formatMissingNamedObjs(std::string const& objPath, std::string const& type,
                                   std::vector<std::string> const& names) {
  return compose("The object \"%1\" does not contain the %2%3: \"%4\", which must be present.", objPath, type,
                 byNumber(names, " object", " objects"), fullList(names));
}

std::string shortList(Strings items) {
  constexpr std::size_t shown = 4;
  std::string text;
  for (std::string const& item : items.first(std::min(items.size(), shown))) {
    if (&item != items.data()) text += ", ";
    text += item;
  }
  if (items.size() > shown) text += ", ...";
  return text;
}

std::vector<std::string> setDifferenceOf(Strings items, Strings others) {
  std::vector<std::string_view> sorted(others.begin(), others.end());
  std::sort(sorted.begin(), sorted.end());
  std::vector<std::string> difference;
  for (std::string const& item : items) {
    if (!std::binary_search(sorted.begin(), sorted.end(), std::string_view(item))) difference.push_back(item);
  }
  makeSet(difference);
  return difference;
}

std::vector<std::string> setDifferenceOf(Strings items, SharedStrings const& others) {
  std::vector<std::string> difference;
  for (std::string const& item : items) {
    if (!others.contains(item)) difference.push_back(item);
  }
  makeSet(difference);
  return difference;
}

}  // namespace tarn::ValidationMessages
