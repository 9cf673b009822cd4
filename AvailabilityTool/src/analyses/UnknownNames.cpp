// The search for names that the rules do not know.
//
// The objects come from the model, not from the rules, since a walk along the rules would pass by exactly what is
// sought here, and would leave out what is not available. So the analyser is sent to one object at a time, says there
// whether the type has rules, and is told to skip the entries: they are looked up by the names that the object holds.
//
// A model is given in the order of its paths, in which an object mostly stands near its parent. What is known of the
// components of one path is kept for the next, so each object is judged once. Byte order may separate an object from
// its children (`/Case B` comes between `/Case` and `/Case/Domain`), hence the memory of the objects told already.
#include "analyses/UnknownNames.h"

#include <algorithm>

#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

namespace tarn::tool {

namespace {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  result += text;
  result += '"';
  return result;
}

std::string didYouMean(std::string const& match) {
  return match.empty() ? "." : "; did you mean " + quoted(match) + "?";
}

}  // namespace

UnknownNames::UnknownNames(PhysicsData const& rules) : DependencyAnalyser(&rules), rules_(rules) {}

UnknownNames::Result UnknownNames::find(ModelState const& model, std::vector<std::string> const& roots) {
  path_.clear();
  typePath_.clear();
  levels_.clear();
  unknownObjects_.clear();
  near_ = {};
  result_ = {};

  EvalContext context(nullptr);  // nothing is evaluated
  for (auto const& [path, parameters] : model) {
    std::size_t takenAsKnown = 0;
    if (!roots.empty()) {
      auto const root = std::find_if(roots.begin(), roots.end(), [&path = path](std::string const& one) {
        return StringUtilities::isPathRootedAt(one, path);
      });
      if (root == roots.end()) continue;
      takenAsKnown = root->size();
    }
    if (!openPath(path, takenAsKnown)) continue;
    if (parameters.empty()) continue;
    parameters_ = &parameters;
    analyse(path, &context);
  }
  return std::move(result_);
}

// Makes `levels_` those of `path`, judging the objects that are new. Returns false when one of them is unknown.
bool UnknownNames::openPath(std::string const& path, std::size_t takenAsKnown) {
  auto const [differs, unused] = std::mismatch(path_.begin(), path_.end(), path.begin(), path.end());
  auto const common = static_cast<std::size_t>(differs - path_.begin());
  auto const stillOpen = [&](Level const& level) {
    return level.pathEnd <= common && (level.pathEnd == path.size() || path[level.pathEnd] == '/');
  };
  while (!levels_.empty() && !stillOpen(levels_.back())) levels_.pop_back();
  typePath_.resize(levels_.empty() ? 0 : levels_.back().typePathEnd);

  while (levels_.empty() || levels_.back().known) {
    std::size_t const begin = levels_.empty() ? 0 : levels_.back().pathEnd;
    if (begin == path.size()) break;
    std::size_t const end = std::min(path.find('/', begin + 1), path.size());
    std::string_view const component = std::string_view(path).substr(begin + 1, end - begin - 1);
    std::string_view const type = component.substr(0, component.find(':'));

    bool known = end <= takenAsKnown;
    if (!known) {
      std::string const object = path.substr(0, end);
      known = !unknownObjects_.contains(object) && judgeObject(object, type, type.size() != component.size());
    }
    typePath_ += '/';
    typePath_ += type;
    levels_.push_back({end, typePath_.size(), known ? rules_.getObjDependDef(typePath_, false) : nullptr, known});
  }
  path_ = path;
  return levels_.empty() || levels_.back().known;
}

// Whether the object is known by the rules of its parent, which is the innermost open level.
bool UnknownNames::judgeObject(std::string const& path, std::string_view type, bool named) {
  std::string const typeName(type);
  if (levels_.empty()) return judgeRootObject(path, typeName);
  ObjDependDef const* parent = levels_.back().rules;
  ChildAvail const* entry = parent ? parent->findChild(typeName) : nullptr;
  if (entry && entry->singleton != named) return true;

  std::string const place = quoted(PathUtils::parentOf(path));
  if (!entry) {
    tell(path, std::nullopt,
         "The rules know no object of the type " + quoted(type) + " in the object " + place +
             didYouMean(near_.find(parent, typeName, false)));
  } else if (named) {
    tell(path, std::nullopt,
         "The rules know only one object of the type " + quoted(type) + " in the object " + place +
             ", without a name of its own.");
  } else {
    tell(path, std::nullopt,
         "The rules know objects of the type " + quoted(type) + " in the object " + place +
             " only with a name: " + quoted(typeName + ":NAME") + '.');
  }
  unknownObjects_.insert(path);
  return false;
}

bool UnknownNames::judgeRootObject(std::string const& path, std::string const& type) {
  std::vector<std::string> const& roots = rules_.getPertinentGlobalCheckRoots();
  if (std::find(roots.begin(), roots.end(), type) != roots.end()) return true;
  std::string const match = StringUtilities::nearMatch(type, roots);
  if (match.empty()) {
    ++result_.objectsPassedOver;
  } else {
    tell(path, std::nullopt,
         "The rules know no object of the type " + quoted(type) + " at the root of the model" + didYouMean(match));
  }
  unknownObjects_.insert(path);
  return false;
}

// The walk has come to an object that is known: judge its parameters.
UnknownNames::HandlerStatus UnknownNames::onBeginObject(ObjBeginInfo const* info) {
  std::string const& path = info->getObjPath();
  ObjDependDef const* rules = levels_.empty() ? nullptr : levels_.back().rules;
  for (auto const& [name, value] : *parameters_) {
    if (info->isValid() && rules->findParam(name)) continue;
    std::string const place = path.empty() ? " at the root of the model" : " in the object " + quoted(path);
    tell(path, name, "The rules know no parameter " + quoted(name) + place + didYouMean(near_.find(rules, name, true)));
  }
  return SkipObject;
}

// Nothing of the entries is visited.
UnknownNames::HandlerStatus UnknownNames::onBeginParam(std::string const&, std::string const&) {
  return Abort;
}
UnknownNames::HandlerStatus UnknownNames::onParamCheck(ParamAvailInfo const*) {
  return Abort;
}
UnknownNames::HandlerStatus UnknownNames::onChildCheck(ChildAvailInfo const*) {
  return Abort;
}
UnknownNames::HandlerStatus UnknownNames::onEndObject(std::string const&, bool) {
  return Continue;
}

void UnknownNames::tell(std::string path, std::optional<std::string> name, std::string message) {
  result_.names.push_back({std::move(path), std::move(name), std::move(message)});
}

std::string UnknownNames::NearNames::find(ObjDependDef const* rules, std::string const& name, bool ofParameter) {
  if (!rules) return {};
  Key const key(rules, ofParameter);
  auto const [answer, isNew] = answers_.try_emplace({key, name});
  if (!isNew) return answer->second;

  auto const [names, empty] = names_.try_emplace(key);
  if (empty && ofParameter) {
    for (auto const& entry : rules->params()) names->second.push_back(entry->name);
  } else if (empty) {
    for (auto const& entry : rules->children()) names->second.push_back(entry->type);
  }
  if (names->second.size() > left_) return {};
  left_ -= names->second.size();
  return answer->second = StringUtilities::nearMatch(name, names->second);
}

}  // namespace tarn::tool
