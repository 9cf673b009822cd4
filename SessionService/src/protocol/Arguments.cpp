#include "protocol/Arguments.h"

#include <algorithm>
#include <array>

#include <tarn/service/SessionJson.h>

#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

using Json = nlohmann::json;

[[noreturn]] void refuse(std::string_view key, std::string const& what) {
  throw ProtocolError(ErrorCode::InvalidParams, "\"" + std::string(key) + "\" " + what);
}

std::size_t wholeNumber(char const* key, Json const& json) {
  if (!json.is_number_unsigned()) refuse(key, "must be a whole number from 0");
  return json.get<std::size_t>();
}

constexpr std::array editKinds{Edit::Kind::SetParam,       Edit::Kind::ActivateParam,    Edit::Kind::DeactivateParam,
                               Edit::Kind::ActivateObject, Edit::Kind::DeactivateObject, Edit::Kind::AddObject,
                               Edit::Kind::RemoveObject,   Edit::Kind::DuplicateObject,  Edit::Kind::RenameObject};

Edit::Kind kindOf(std::string const& name) {
  auto const found =
      std::find_if(editKinds.begin(), editKinds.end(), [&](Edit::Kind kind) { return editKindName(kind) == name; });
  if (found == editKinds.end()) refuse("kind", "must be a kind of edit, such as set-param");
  return *found;
}

}  // namespace

Json const& Arguments::at(char const* key) const {
  auto const found = params_->find(key);
  if (found == params_->end()) refuse(key, "is missing");
  return *found;
}

std::string Arguments::text(char const* key) const {
  Json const& value = at(key);
  if (!value.is_string()) refuse(key, "must be a string");
  return value.get<std::string>();
}

std::optional<std::string> Arguments::optionalText(char const* key) const {
  return has(key) ? std::optional(text(key)) : std::nullopt;
}

bool Arguments::flag(char const* key) const {
  if (!has(key)) return false;
  Json const& value = at(key);
  if (!value.is_boolean()) refuse(key, "must be true or false");
  return value.get<bool>();
}

std::size_t Arguments::number(char const* key) const {
  return wholeNumber(key, at(key));
}

std::size_t Arguments::number(char const* key, std::size_t otherwise) const {
  return has(key) ? number(key) : otherwise;
}

Page Arguments::page(std::size_t most) const {
  return {number("offset", 0), std::min(number("limit", most), most)};
}

session::Item Arguments::item() const {
  return {text("path"), optionalText("name")};
}

std::vector<Edit> Arguments::edits(std::size_t most) const {
  std::vector<Edit> edits;
  for (Json const& edit : objects("edits", most)) edits.push_back(editFromJson(edit));
  return edits;
}

std::size_t Arguments::word(char const* key, std::vector<std::string_view> const& words) const {
  if (!has(key)) return 0;
  std::string const given = text(key);
  auto const found = std::find(words.begin(), words.end(), given);
  if (found == words.end()) {
    std::string all;
    for (std::string_view const word : words) all.append(all.empty() ? "" : ", ").append(word);
    refuse(key, "must be one of: " + all);
  }
  return static_cast<std::size_t>(found - words.begin());
}

Json const& Arguments::objects(char const* key, std::size_t most) const {
  Json const& list = at(key);
  if (!list.is_array()) refuse(key, "must be a list");
  if (list.size() > most) {
    throw ProtocolError(ErrorCode::LimitExceeded,
                        "\"" + std::string(key) + "\" has more than " + std::to_string(most) + " entries");
  }
  for (Json const& entry : list) {
    if (!entry.is_object()) refuse(key, "must be a list of objects");
  }
  return list;
}

Edit editFromJson(Json const& json) {
  Arguments const arguments(json);
  Edit edit;
  edit.kind = kindOf(arguments.text("kind"));
  edit.path = arguments.text("path");
  switch (edit.kind) {
    case Edit::Kind::SetParam:
      edit.name = arguments.text("name");
      edit.value = arguments.text("value");
      break;
    case Edit::Kind::ActivateParam:
    case Edit::Kind::DeactivateParam:
    case Edit::Kind::DuplicateObject:
    case Edit::Kind::RenameObject:
      edit.name = arguments.text("name");
      break;
    case Edit::Kind::ActivateObject:
    case Edit::Kind::DeactivateObject:
    case Edit::Kind::AddObject:
    case Edit::Kind::RemoveObject:
      break;
  }
  return edit;
}

}  // namespace tarn::service
