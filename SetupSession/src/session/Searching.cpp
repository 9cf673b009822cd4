// The lists of items: search, the user's own values, what waits, differences, the result. Each goes through everything
// that is edited.
#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Review.h>

#include "session/PresentTypes.h"
#include "session/SessionImpl.h"

namespace tarn::session {

namespace {

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
}

/// How `name` matches `text`, which is in lower case and not empty.
std::optional<MatchKind> match(std::string_view name, std::string const& text) {
  std::string const lower = StringUtilities::toLower(std::string(name));
  std::size_t place = lower.find(text);
  if (place == std::string::npos) return std::nullopt;
  if (place == 0) return lower.size() == text.size() ? MatchKind::Exact : MatchKind::Prefix;
  for (; place != std::string::npos; place = lower.find(text, place + 1)) {
    if (!isWordCharacter(lower[place - 1])) return MatchKind::Word;
  }
  return MatchKind::Substring;
}

std::string soughtText(std::string_view text) {
  return StringUtilities::toLower(StringUtilities::removeWhitespace(std::string(text)));
}

/// Calls `visit` with the path of each object of the tree at and below `root`, parents first, in the order of the tree.
template <class Visit>
void forEachObject(DynamicTDF const& tree, std::string const& root, Visit const& visit) {
  if (!tree.hasObject(root)) return;
  std::vector<std::string> open = {root};
  std::vector<std::string> children;
  while (!open.empty()) {
    std::string const path = std::move(open.back());
    open.pop_back();
    visit(path);
    if (!tree.getChildObjectPaths(path, children)) continue;
    for (auto child = children.rbegin(); child != children.rend(); ++child) open.push_back(std::move(*child));
  }
}

}  // namespace

std::variant<Item, Refused> SessionImpl::resolve(std::string_view text) const {
  EditChecks const checks(work_->ruled, [this](Item const& item) { return work_->offers.has(item); });
  Item item;
  auto fault = checks.resolve(std::string(text), item);
  if (!fault) return item;
  std::string const& wrong = fault->edit.name.empty() ? fault->edit.path : fault->edit.name;
  proposeElsewhere(*fault, wrong.substr(wrong.rfind('/') + 1));
  // A path may have several slips. The first one is reported, and the nearest path is one that can be resolved.
  constexpr int mostSlips = 3;
  std::string first;
  for (int slip = 0; slip < mostSlips && fault->nearest; ++slip) {
    Edit const& nearest = *fault->nearest;
    std::string const path = nearest.name.empty() ? nearest.path : nearest.path + '/' + nearest.name;
    auto other = checks.resolve(path, item);
    if (!other) return std::move(*fault);
    if (slip == 0) first = path;
    fault->nearest = std::move(other->nearest);
  }
  fault->nearest.reset();
  if (fault->possible.empty() && !first.empty()) fault->possible = SharedStrings{first};
  return std::move(*fault);
}

/// A user may leave out the object, and write only the name of the parameter. If nothing near is in the object,
/// proposes the parameter of that name, or of one that is spelt alike, wherever it is.
void SessionImpl::proposeElsewhere(Refused& refused, std::string_view name) const {
  bool const isUnknown = refused.code == RefusalCode::UnknownParameter || refused.code == RefusalCode::UnknownObject;
  bool const isPlain = !name.empty() && name.find(':') == std::string_view::npos;
  if (!isUnknown || !isPlain || refused.nearest || !refused.possible.empty()) return;
  PresentTypes const present(work_->ruled, root_);
  auto const types = present.withRules();
  std::set<std::string> names;
  for (PresentTypes::Type const* type : types) {
    for (auto const& param : type->rules->params()) names.insert(param->name);
  }
  std::string const wanted(name);
  std::string const meant =
      names.contains(wanted) ? wanted : StringUtilities::nearMatch(wanted, {names.begin(), names.end()});
  if (meant.empty()) return;
  std::vector<std::pair<std::size_t, std::string>> found;
  std::size_t count = 0;
  for (PresentTypes::Type const* type : types) {
    if (type->rules->findParam(meant) == nullptr) continue;
    count += type->count;
    found.insert(found.end(), type->first.begin(), type->first.end());
  }
  std::sort(found.begin(), found.end());
  if (found.size() == 1) {
    Edit nearest = refused.edit;
    bool const isOfObject = nearest.name.empty();
    if (isOfObject) nearest.kind = Edit::Kind::ActivateParam;
    nearest.path = found.front().second;
    nearest.name = meant;
    refused.nearest = std::move(nearest);
    return;
  }
  std::vector<std::string> paths;
  for (auto const& [number, path] : found) {
    if (paths.size() < Refused::mostPaths) paths.push_back(path + '/' + meant);
  }
  if (count > paths.size()) refused.possibleCount = count;
  refused.possible = SharedStrings(std::move(paths));
}

std::optional<MatchKind> matchOf(std::string_view name, std::string_view text) {
  std::string const sought = soughtText(text);
  return sought.empty() ? std::nullopt : match(name, sought);
}

std::vector<Found> SessionImpl::find(std::string_view text, std::size_t most) const {
  std::string const lower = soughtText(text);
  std::vector<Found> found;
  if (lower.empty() || most == 0) return found;
  // The names of a type are compared once, however many objects have it.
  struct Match {
    std::string const* name;
    MatchKind kind;
  };
  std::unordered_map<ObjDependDef const*, std::vector<Match>> matches;
  DynamicTDF const& tree = provisional().getActiveTree();
  forEachObject(tree, root_, [&](std::string const& path) {
    std::optional<MatchKind> kind = path.empty() ? std::nullopt : match(PathUtils::lastName(path), lower);
    if (!path.empty()) {
      auto const ofType = match(PathUtils::lastType(path), lower);
      if (ofType && (!kind || *ofType < *kind)) kind = ofType;
    }
    if (kind) found.push_back({{path, std::nullopt}, *kind, true});
    ObjDependDef const* const rules = work_->ruled.rulesOfObject(path);
    if (rules == nullptr) return;
    auto const [entry, isNew] = matches.try_emplace(rules);
    if (isNew) {
      for (auto const& param : rules->params()) {
        if (auto const ofName = match(param->name, lower)) entry->second.push_back({&param->name, *ofName});
      }
    }
    for (Match const& param : entry->second) {
      found.push_back({{path, *param.name}, param.kind, tree.hasParameter(path, *param.name)});
    }
  });
  // Matches come in the order of the tree and the rules, which is the order of equal matches.
  std::stable_sort(found.begin(), found.end(), [](Found const& a, Found const& b) {
    return a.match != b.match ? a.match < b.match : a.item.path < b.item.path;
  });
  if (found.size() > most) found.erase(found.begin() + static_cast<std::ptrdiff_t>(most), found.end());
  return found;
}

std::vector<OwnValue> SessionImpl::own() const {
  std::vector<OwnValue> values;
  for (auto const& [item, given] : requests_.values()) {
    if (given.empty()) continue;
    std::string const* const asked = work_->ruled.askedValue(item.path, *item.name);
    if (asked == nullptr) continue;  // it went with its object
    std::string const wanted = StringUtilities::removeWhitespace(given.back().value);
    std::string const* const value = work_->ruled.value(item.path, *item.name);
    ParamRules const rules = work_->ruled.rulesOfParam(item.path, *item.name);
    bool const inForce =
        value != nullptr && *asked == wanted && rules && RuledState::isInForce(rules.value->type, wanted, *value);
    values.push_back({item, wanted, given.back().step, inForce});
  }
  return values;
}

std::vector<Waiting> SessionImpl::waiting() const {
  std::vector<Item> asked;
  DynamicTDF const& guide = provisional().getGuideTree();
  ModelState const& active = provisional().getActiveTDFState();
  std::vector<std::string> names;
  forEachObject(guide, root_, [&](std::string const& path) {
    if (!work_->ruled.hasObject(path)) asked.push_back({path, std::nullopt});
    if (!guide.getParameterNames(path, names) || names.empty()) return;
    auto const object = active.find(path);
    for (std::string& name : names) {
      // Almost every value is in force as it was asked for. Such a value does not wait, whatever the rules say.
      if (object != active.end()) {
        auto const value = object->second.find(name);
        if (value != object->second.end() && value->second == guide.getParameterValue(path, name)) continue;
      }
      asked.push_back({path, std::move(name)});
    }
  });
  for (auto const& [item, count] : requests_.decided()) {
    if (count != 0) asked.push_back(item);
  }
  std::sort(asked.begin(), asked.end());
  asked.erase(std::unique(asked.begin(), asked.end()), asked.end());
  std::vector<Waiting> all;
  for (Item const& item : asked) {
    bool const isOffered = work_->offers.has(item);
    auto waits = item.isParam() ? work_->ruled.waitingParam(item.path, *item.name, isOffered)
                                : work_->ruled.waitingObject(item.path, isOffered);
    if (waits) all.push_back(std::move(*waits));
  }
  return all;
}

std::vector<Difference> SessionImpl::differencesFrom(ModelState const& model) const {
  std::map<Item, Difference> all;
  DynamicTDF const& tree = provisional().getActiveTree();
  ModelState const& active = provisional().getActiveTDFState();
  ObjectState const none;
  auto const valuesAt = [&active, &none](std::string const& path) -> ObjectState const& {
    auto const object = active.find(path);
    return object == active.end() ? none : object->second;
  };
  auto const isInside = [this](std::string const& path) { return StringUtilities::isPathRootedAt(root_, path); };
  // Objects that the model mentions or implies.
  std::set<std::string> inModel;
  for (auto const& [path, params] : model) {
    if (!isInside(path)) continue;
    for (std::string at = path; inModel.insert(at).second && at.size() > root_.size();) at = PathUtils::parentOf(at);
    ObjectState const& present = valuesAt(path);
    if (params == present) continue;  // almost always, and quicker than to look for each name
    for (auto const& [name, value] : params) {
      if (StringUtilities::trimmed(value).empty()) continue;
      auto const now = present.find(name);
      bool const isPresent = now != present.end();
      if (isPresent && now->second == value) continue;
      Item const item = {path, name};
      all[item] = {item, value, isPresent ? std::optional(now->second) : std::nullopt, false};
    }
  }
  for (std::string const& path : inModel) {
    Item const item = {path, std::nullopt};
    if (!work_->ruled.hasObject(path)) all[item] = {item, std::nullopt, std::nullopt, false};
  }
  forEachObject(tree, root_, [&](std::string const& path) {
    if (!inModel.contains(path) && !path.empty()) {
      Item const object = {path, std::nullopt};
      all[object] = {object, std::nullopt, std::nullopt, true};
    }
    auto const entry = model.find(path);
    ObjectState const& present = valuesAt(path);
    if (entry != model.end() && entry->second == present) return;
    for (auto const& [name, value] : present) {
      // A value of blanks counts as absent, unless the result has the same.
      bool isInModel = false;
      if (entry != model.end()) {
        auto const known = entry->second.find(name);
        isInModel = known != entry->second.end() &&
                    (known->second == value || !StringUtilities::trimmed(known->second).empty());
      }
      if (isInModel) continue;
      Item const item = {path, name};
      all[item] = {item, std::nullopt, value, false};
    }
  });
  std::vector<Difference> list;
  list.reserve(all.size());
  for (auto& [item, difference] : all) list.push_back(std::move(difference));
  return list;
}

ModelState SessionImpl::result() const {
  ModelState state = provisional().getActiveTDFState();
  for (auto const& [path, params] : model_) {
    if (!StringUtilities::isPathRootedAt(root_, path)) state.emplace(path, params);
  }
  DynamicTDF const& tree = provisional().getActiveTree();
  if (!work_->ruled.hasObject(root_)) return state;
  std::vector<std::string> content;
  forEachObject(tree, root_, [&](std::string const& path) {
    if (state.contains(path) || tree.getChildObjectPaths(path, content)) return;
    if (!path.empty()) state.try_emplace(path);
  });
  return state;
}

Findings const& SessionImpl::review() const {
  if (!review_) review_ = Review(rules_).judge(result());
  return *review_;
}

void SessionImpl::setReview(Findings findings) {
  review_ = std::move(findings);
}

}  // namespace tarn::session
