#include <tarn/session/WrittenItem.h>

#include <cstddef>
#include <utility>
#include <variant>

#include <tarn/ObjDependDef.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/StringUtilities.h>

namespace tarn::session {

namespace {

ObjDependDef const* rulesOf(Session const& session, std::string const& object) {
  return session.rules().getObjDependDef(PathUtils::typePathOf(object), true);
}

}  // namespace

std::string absolutePath(Session const& session, std::string_view text) {
  return absolutePath(session.root(), text);
}

std::string absolutePath(std::string const& root, std::string_view text) {
  std::string path(StringUtilities::trimmed(text));
  if (path == "/") return {};
  if (path.empty() || path == ".") return root;
  if (path.back() == '/') path.pop_back();
  return path.front() == '/' ? path : root + '/' + path;
}

Item paramAt(std::string const& absolutePath) {
  std::size_t const slash = absolutePath.rfind('/');
  return {absolutePath.substr(0, slash), absolutePath.substr(slash + 1)};
}

bool meansParam(Session const& session, std::string const& absolutePath) {
  if (absolutePath.empty() || absolutePath.find(':', absolutePath.rfind('/')) != std::string::npos) return false;
  Item const item = paramAt(absolutePath);
  ObjDependDef const* const rules = rulesOf(session, item.path);
  if (rules != nullptr) {
    if (rules->findChild(*item.name) != nullptr) return false;
    if (rules->findParam(*item.name) != nullptr) return true;
  }
  // A slip: what was probably meant decides.
  auto const resolved = session.resolve(absolutePath);
  if (auto const* known = std::get_if<Item>(&resolved)) return known->isParam();
  auto const& nearest = std::get<Refused>(resolved).nearest;
  if (nearest) return nearest->kind == Edit::Kind::ActivateParam;
  return rules != nullptr;
}

Edit switchEdit(Session const& session, std::string const& absolutePath, bool isOn) {
  if (!meansParam(session, absolutePath)) {
    return isOn ? Edit::activateObject(absolutePath) : Edit::deactivateObject(absolutePath);
  }
  auto [object, name] = paramAt(absolutePath);
  return isOn ? Edit::activateParam(std::move(object), std::move(*name))
              : Edit::deactivateParam(std::move(object), std::move(*name));
}

KnownItem knownItem(Session const& session, std::string_view text) {
  KnownItem known;
  auto resolved = session.resolve(text);
  if (auto* const item = std::get_if<Item>(&resolved)) {
    known.item = std::move(*item);
    return known;
  }
  known.refused = std::get<Refused>(std::move(resolved));
  // A type without an object: the answer is about one that could be added.
  bool const isType = known.refused->code == RefusalCode::NameMissing && !known.refused->nearest;
  if (known.refused->code != RefusalCode::UnknownObject && !isType) return known;
  // The path was read, so its edit has it in the form that the model uses.
  Edit const& edit = known.refused->edit;
  std::string const whole = edit.name.empty() ? edit.path : edit.path + '/' + edit.name;
  Item const param = paramAt(whole);
  if (ObjDependDef const* const above = rulesOf(session, param.path);
      above != nullptr && above->findParam(*param.name) != nullptr) {
    known.item = param;
  } else if (rulesOf(session, whole) != nullptr) {
    known.item = Item{isType ? whole + ":new" : whole, std::nullopt};
  }
  return known;
}

}  // namespace tarn::session
