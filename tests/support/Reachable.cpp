#include "support/Reachable.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Sentences.h>

namespace tarn::test {

namespace {

using session::Goal;
using session::HowAnswer;
using session::HowResult;
using session::Session;
using session::Way;

std::vector<std::string> presentObjects(Session const& session) {
  std::vector<std::string> objects;
  DynamicTDF const& tree = session.provisional().getActiveTree();
  if (!session.provisional().hasObject(session.root())) return objects;
  objects.push_back(session.root());
  for (std::size_t i = 0; i < objects.size(); ++i) {
    std::vector<std::string> children;
    std::string const path = objects[i];
    if (tree.getChildObjectPaths(path, children)) objects.insert(objects.end(), children.begin(), children.end());
  }
  return objects;
}

void writeState(std::ostream& out, ModelState const& state) {
  for (auto const& [path, params] : state) {
    out << path << '\n';
    for (auto const& [name, value] : params) out << ' ' << name << '=' << value << '\n';
  }
}

/// The state, the requests and the decisions.
std::string keyOf(Session const& session) {
  std::ostringstream out;
  auto const& state = session.provisional();
  writeState(out, state.getActiveTree().getState(session.root()));
  out << "guide\n";
  writeState(out, state.getGuideTree().getState(session.root()));
  for (std::string const& path : presentObjects(session)) {
    out << path << state.getObjectDecision(path).value_or(false) << '\n';
    for (std::string const& name : session.params(path)) {
      if (auto const decision = state.getParamDecision(path, name)) out << path << '/' << name << *decision << '\n';
    }
  }
  for (std::string const& path : state.getAvailPotObjects()) out << "offered " << path << '\n';
  for (auto const& [path, name] : state.getAvailPotParams()) out << "offered " << path << '/' << name << '\n';
  return out.str();
}

}  // namespace

std::vector<Edit> everyEdit(Session const& session, std::vector<std::string> const& numbers) {
  std::vector<Edit> edits;
  auto const& state = session.provisional();
  for (std::string const& path : presentObjects(session)) {
    for (std::string const& name : session.params(path)) {
      auto const record = session.lookParam(path, name);
      if (!record) continue;
      std::set<std::string> values(record->allowed.allowedValues.begin(), record->allowed.allowedValues.end());
      if (record->type == TDFParam::Logical) values.insert({"true", "false"});
      if (!record->allowed.hasAllowedValues && record->type != TDFParam::Logical)
        values.insert(numbers.begin(), numbers.end());
      if (record->defaultValue) values.insert(*record->defaultValue);
      for (std::string const& value : values) {
        if (record->value != value) edits.push_back(Edit::setParam(path, name, value));
      }
      edits.push_back(Edit::activateParam(path, name));
      if (record->available()) edits.push_back(Edit::deactivateParam(path, name));
    }
    for (session::ChildTypeRecord const& type : session.childTypes(path)) {
      for (std::string const& object : type.offered) edits.push_back(Edit::activateObject(object));
      for (std::string const& object : type.present) {
        edits.push_back(Edit::deactivateObject(object));
        if (type.singleton) continue;
        edits.push_back(Edit::removeObject(object));
        edits.push_back(Edit::duplicateObject(object, "new1"));
      }
      if (type.canAdd) {
        std::string const prefix = path + '/' + type.type + ':';
        edits.push_back(Edit::addObject(prefix + (state.hasObject(prefix + "new1") ? "new2" : "new1")));
      }
    }
  }
  return edits;
}

std::map<ReachedGoal, std::vector<Edit>> everythingReached(Session& session, std::size_t most,
                                                           std::vector<std::string> const& numbers,
                                                           std::size_t mostStates) {
  std::map<ReachedGoal, std::vector<Edit>> reached;
  std::set<std::string> seen;
  std::vector<std::vector<Edit>> level = {{}};
  std::size_t const stepsBefore = session.steps().size();
  auto const goThere = [&](std::vector<Edit> const& edits) {
    for (Edit const& edit : edits) (void)session.edit(edit);
  };
  auto const goBack = [&] {
    while (session.steps().size() > stepsBefore) session.undo();
  };
  auto const note = [&](std::vector<Edit> const& edits) {
    for (std::string const& path : presentObjects(session)) {
      reached.try_emplace({{path, std::nullopt}, std::nullopt}, edits);
      std::vector<std::string> names;
      session.provisional().getActiveTree().getParameterNames(path, names);
      for (std::string const& name : names) {
        reached.try_emplace({{path, name}, std::nullopt}, edits);
        reached.try_emplace({{path, name}, session.provisional().getParamValue(path, name)}, edits);
      }
    }
  };
  seen.insert(keyOf(session));
  note({});
  for (std::size_t length = 1; length <= most; ++length) {
    std::vector<std::vector<Edit>> next;
    for (std::vector<Edit> const& from : level) {
      if (seen.size() >= mostStates) break;
      goThere(from);
      for (Edit const& edit : everyEdit(session, numbers)) {
        if (session.edit(edit).refused) continue;
        if (seen.insert(keyOf(session)).second) {
          std::vector<Edit> edits = from;
          edits.push_back(edit);
          note(edits);
          if (length < most) next.push_back(std::move(edits));
        }
        session.undo();
      }
      goBack();
    }
    level = std::move(next);
  }
  return reached;
}

std::string checkHow(Session& session, Goal const& goal, std::optional<std::size_t> fewest, HowResult const& found) {
  auto const isThere = [&] {
    auto const& state = session.provisional();
    if (!goal.item.isParam()) return state.hasObject(goal.item.path);
    if (!state.hasParameter(goal.item.path, *goal.item.name)) return false;
    auto const record = session.lookParam(goal.item.path, *goal.item.name);
    return !goal.value || (record && TDFParam::valuesEqual(record->type, *record->value, *goal.value));
  };
  if (isThere()) return found.answer == HowAnswer::AlreadySo ? "" : "a goal that is reached is not called so";
  if (fewest && found.answer != HowAnswer::Found) {
    return "no way was found, but " + std::to_string(*fewest) + " edits are one";
  }
  std::string before;
  for (Way const& way : found.ways) {
    std::size_t const edits = way.edits.size() + (way.atNextEdit ? 1 : 0);
    if (fewest && edits > *fewest) {
      return "the way has " + std::to_string(edits) + " edits, but " + std::to_string(*fewest) + " are enough";
    }
    std::size_t made = 0;
    bool isRefused = false;
    for (Edit const& edit : way.edits) {
      isRefused = isRefused || session.edit(edit).refused.has_value();
      if (!isRefused) ++made;
    }
    bool const isReached = isThere();
    for (; made > 0; --made) session.undo();
    if (isRefused) return "an edit of a way is refused";
    if (isReached == way.atNextEdit) return "a way does not lead to the goal when it says";
  }
  return {};
}

}  // namespace tarn::test
