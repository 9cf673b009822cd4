// The search for names that the rules do not know.
//
// The search follows the model, not the rules: a walk along the rules would never visit an unknown item, and would
// leave out objects that are not available.
//
// Paths come in the order of the model, in which most objects come right after their parent. The levels of one path are
// kept for the next, so each object is judged once. Byte order can separate an object from its children (`/Case B` is
// between `/Case` and `/Case/Domain`). So the unknown objects are remembered as well, and none is reported twice.
#include "review/UnknownNames.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>
#include <utility>

#include <tarn/NearMatches.h>
#include <tarn/PathUtils.h>
#include <tarn/PertinentRoots.h>
#include <tarn/StringUtilities.h>

#include "review/ReviewJudge.h"

namespace tarn::session {

namespace {

std::string quoted(std::string_view text) {
  std::string result = "\"";
  result += text;
  result += '"';
  return result;
}

// The end of a sentence about something that was renamed.
std::string withMessage(std::string const& sentence, std::string const& message) {
  return message.empty() ? sentence : sentence + ' ' + message;
}

std::string didYouMean(std::string const& match) {
  return match.empty() ? "." : "; did you mean " + quoted(match) + "?";
}

// Finds names of an object's rules that are similar to an unknown name. Each question is answered once, and the names
// of each type are gathered once.
class NearNames {
 public:
  std::string find(ObjDependDef const* rules, std::string const& name, bool ofParameter) {
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
    return answer->second = matches_.find(name, names->second);
  }

 private:
  using Key = std::pair<ObjDependDef const*, bool>;
  NearMatches matches_;
  std::map<Key, std::vector<std::string>> names_;
  std::map<std::pair<Key, std::string>, std::string> answers_;
};

class Search {
 public:
  explicit Search(PhysicsData const& rules) : rules_(rules), roots_(rules) {
    for (ObjDependDef const* object : rules.objects()) {
      if (object->typePath().rfind('/') != 0) continue;
      for (std::string const& name : object->history.formerNames) renamedRoots_.try_emplace(name, object);
    }
  }

  void judge(std::string const& path, ObjectState const& parameters, std::size_t takenAsKnown) {
    if (openPath(path, takenAsKnown)) judgeParameters(path, parameters);
  }

  UnknownNames::Result takeResult() { return std::move(result_); }

 private:
  // An open component of the current path: where it ends in the path, and the rules of the object there.
  struct Level {
    std::size_t pathEnd;
    std::size_t typePathEnd;
    ObjDependDef const* rules;  // null when there are none
    bool known;
  };

  bool openPath(std::string const& path, std::size_t takenAsKnown);
  bool judgeObject(std::string const& path, std::string_view type, bool named);
  bool judgeRootObject(std::string const& path, std::string const& type);
  void judgeParameters(std::string const& path, ObjectState const& parameters);
  void reportRenamedObject(std::string const& path, std::string const& type, std::string const& present,
                           std::string const& message, TextPlace const& rule);
  void judgeName(std::string const& path, ChildAvail const& entry);
  void report(FindingCode code, std::string const& path, std::string const& item, std::string const& fact,
              std::string match = {});

  PhysicsData const& rules_;
  PertinentRoots const roots_;
  NearNames near_;
  std::map<std::string, ObjDependDef const*, std::less<>> renamedRoots_;  // by former type

  std::string path_;      // the previous path, as far as it was opened
  std::string typePath_;  // the types of its components
  std::vector<Level> levels_;
  std::unordered_set<std::string> unknownObjects_;  // reported or counted already
  UnknownNames::Result result_;
};

// Makes `levels_` the levels of `path`, and judges the objects that are new. Returns false when one of them is unknown.
bool Search::openPath(std::string const& path, std::size_t takenAsKnown) {
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

// Whether the rules of the parent, which is the innermost open level, know the object.
bool Search::judgeObject(std::string const& path, std::string_view type, bool named) {
  std::string const typeName(type);
  if (levels_.empty()) return judgeRootObject(path, typeName);
  ObjDependDef const* parent = levels_.back().rules;
  ChildAvail const* entry = parent ? parent->findChild(typeName) : nullptr;
  if (entry && entry->singleton != named) {
    if (named && !entry->renamedNames.empty()) judgeName(path, *entry);
    return true;
  }

  std::string const place = quoted(PathUtils::parentOf(path));
  if (ChildAvail const* const renamed = entry || !parent ? nullptr : parent->findRenamedChild(typeName)) {
    reportRenamedObject(path, typeName, renamed->type, renamed->history.renameMessage, renamed->rulePlace);
  } else if (!entry) {
    std::string match = near_.find(parent, typeName, false);
    report(FindingCode::UnknownObject, path, typeName,
           "The rules know no object of the type " + quoted(type) + " in the object " + place, std::move(match));
  } else if (named) {
    report(FindingCode::ObjectNameNotExpected, path, typeName,
           "The rules know only one object of the type " + quoted(type) + " in the object " + place +
               ", without a name of its own");
  } else {
    report(FindingCode::ObjectNameMissing, path, typeName,
           "The rules know objects of the type " + quoted(type) + " in the object " + place +
               " only with a name: " + quoted(typeName + ":NAME"));
  }
  unknownObjects_.insert(path);
  return false;
}

void Search::reportRenamedObject(std::string const& path, std::string const& type, std::string const& present,
                                 std::string const& message, TextPlace const& rule) {
  Finding finding =
      makeFinding(FindingCode::RenamedObject, path,
                  withMessage("Objects of the type " + quoted(type) + " are now called " + quoted(present) +
                                  ", so the object " + quoted(path) + " does not count.",
                              message));
  finding.type = type;
  finding.expected.nearMatch = present;
  finding.rule = rule;
  result_.names.push_back(std::move(finding));
}

// The name of an object whose type is known.
void Search::judgeName(std::string const& path, ChildAvail const& entry) {
  std::string const name = path.substr(path.rfind(':') + 1);
  auto const renamed = entry.renamedNames.find(name);
  if (renamed == entry.renamedNames.end()) return;
  Finding finding = makeFinding(
      FindingCode::RenamedName, path,
      withMessage("The object " + quoted(path) + " should now have the name " + quoted(renamed->second) + '.',
                  entry.history.renameMessage));
  finding.type = entry.type;
  finding.wrong = {name};
  finding.expected.nearMatch = renamed->second;
  finding.rule = entry.rulePlace;
  result_.names.push_back(std::move(finding));
}

bool Search::judgeRootObject(std::string const& path, std::string const& type) {
  if (roots_.hasType(type)) return true;
  if (auto const renamed = renamedRoots_.find(type); renamed != renamedRoots_.end()) {
    ObjDependDef const& object = *renamed->second;
    reportRenamedObject(path, type, object.typePath().substr(1), object.history.renameMessage, object.rulePlace);
    unknownObjects_.insert(path);
    return false;
  }
  std::string match = StringUtilities::nearMatch(type, rules_.getPertinentGlobalCheckRoots());
  if (match.empty()) {
    ++result_.objectsPassedOver;
  } else {
    report(FindingCode::UnknownObject, path, type,
           "The rules know no object of the type " + quoted(type) + " at the root of the model", std::move(match));
  }
  unknownObjects_.insert(path);
  return false;
}

void Search::judgeParameters(std::string const& path, ObjectState const& parameters) {
  ObjDependDef const* rules = levels_.empty() ? rules_.getObjDependDef("", false) : levels_.back().rules;
  for (auto const& [name, value] : parameters) {
    if (rules && rules->findParam(name)) continue;
    if (ParamAvail const* const renamed = rules ? rules->findRenamedParam(name) : nullptr) {
      Finding finding =
          makeFinding(FindingCode::RenamedParameter, path,
                      withMessage("The parameter " + quoted(name) + " of the object " + quoted(path) +
                                      " is now called " + quoted(renamed->name) + ", so its value does not count.",
                                  renamed->history.renameMessage));
      finding.name = name;
      finding.value = value;
      finding.expected.nearMatch = renamed->name;
      finding.rule = renamed->rulePlace;
      result_.names.push_back(std::move(finding));
      continue;
    }
    std::string const place = path.empty() ? " at the root of the model" : " in the object " + quoted(path);
    std::string match = near_.find(rules, name, true);
    report(FindingCode::UnknownParameter, path, name, "The rules know no parameter " + quoted(name) + place,
           std::move(match));
    result_.names.back().value = value;
  }
}

// `item` is the name of a parameter or the type of an object, `fact` the sentence without its end, and `match` the name
// that was probably meant.
void Search::report(FindingCode code, std::string const& path, std::string const& item, std::string const& fact,
                    std::string match) {
  Finding finding = makeFinding(code, path, fact + didYouMean(match));
  if (code == FindingCode::UnknownParameter) {
    finding.name = item;
  } else {
    finding.type = item;
    if (code != FindingCode::UnknownObject) finding.rule = placeOfChildRule(rules_, PathUtils::parentOf(path), item);
  }
  if (!match.empty()) finding.expected.nearMatch = std::move(match);
  result_.names.push_back(std::move(finding));
}

}  // namespace

UnknownNames::Result UnknownNames::find(ModelState const& model, std::vector<std::string> const& roots) const {
  Search search(*rules_);
  for (auto const& [path, parameters] : model) {
    std::size_t takenAsKnown = 0;
    if (!roots.empty()) {
      auto const root = std::find_if(roots.begin(), roots.end(), [&path = path](std::string const& candidate) {
        return StringUtilities::isPathRootedAt(candidate, path);
      });
      if (root == roots.end()) continue;
      takenAsKnown = root->size();
    }
    search.judge(path, parameters, takenAsKnown);
  }
  return search.takeResult();
}

}  // namespace tarn::session
