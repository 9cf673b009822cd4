// Edits and history.
//
// Every edit is made twice. The first time is a trial inside a mark: it is judged, and the touched items are looked at
// after it and, when it was taken back, before it. So a refused edit, a trial and a failure all leave the state as it
// was, and the net effect is right by construction. The second time keeps the mark as the way back for undo.
#include "session/SessionImpl.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Review.h>

namespace tarn::session {

namespace {

/// Takes the state back at the end of the scope.
class Trial {
 public:
  explicit Trial(ProvisionalTDF& state) : state_(state), mark_(state.mark()) {}
  ~Trial() { end(); }
  Trial(Trial const&) = delete;
  Trial& operator=(Trial const&) = delete;
  void end() noexcept {
    if (isOpen_) state_.rollback(mark_);
    isOpen_ = false;
  }
  [[nodiscard]] ProvisionalTDF::Mark keep() noexcept {
    isOpen_ = false;
    return mark_;
  }

 private:
  ProvisionalTDF& state_;
  ProvisionalTDF::Mark mark_;
  bool isOpen_ = true;
};

/// So that one more item cannot fail.
template <class Entry>
void makeRoom(std::vector<Entry>& list) {
  if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

/// Ends a trial of several edits.
struct RefusedEdits {
  Refused refused;
};

Refused ruleFailed(Edit const& edit, std::string const& message) {
  Refused refused;
  refused.code = RefusalCode::RuleFailed;
  refused.edit = edit;
  refused.sentence = "A rule failed: " + message;
  return refused;
}

EditResult refusedResult(Refused refused) {
  EditResult result;
  result.refused = std::move(refused);
  return result;
}

std::string renamedPath(Edit const& rename) {
  return rename.path.substr(0, rename.path.size() - PathUtils::lastName(rename.path).size()) + rename.name;
}

}  // namespace

/// A value that names an object which is renamed.
struct SessionImpl::Referring {
  Item item;
  std::string value;
  std::string newValue;
  std::string oldItem;
  std::string newItem;
};

SessionImpl::Work::Work(SessionImpl const& session)
    : state([&session] {
        auto made = std::make_unique<ProvisionalTDF>(&session.rules_, &session.modifier_, session.root_);
        made->initialise(&session.base_, {});
        return made;
      }()),
      ruled(session.rules_, *state),
      offers(*state) {}

SessionImpl::SessionImpl(PhysicsData const& rules, std::optional<ModelText> text, ModelState model, std::string root,
                         SessionOptions const& options)
    : rules_(rules),
      text_(std::move(text)),
      model_(std::move(model)),
      root_(std::move(root)),
      options_(options),
      readers_(rules),
      modifier_(rules) {
  base_.initialise(model_.begin(), model_.end());
  work_ = std::make_unique<Work>(*this);
}

EditResult SessionImpl::edit(std::span<Edit const> edits, References references) {
  if (edits.empty()) return {};
  if (steps_.size() >= Session::mostSteps) {
    Refused full;
    full.code = RefusalCode::TooManySteps;
    full.edit = edits.front();
    full.sentence = "The session has " + std::to_string(steps_.size()) +
                    " steps and cannot take more. Save the model and open it again.";
    return refusedResult(std::move(full));
  }
  EditResult result = attempt(*work_, edits, references);
  if (result.refused) {
    proposeWhatWorks(*result.refused, edits, references);
    return result;
  }
  result.step = steps_.size() + 1;
  Step step = {result.step, {edits.begin(), edits.end()}, result.made, result.conversions, result.followed};
  EditResult answer = result;
  try {
    commit(std::move(step), std::move(result));
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    return refusedResult(ruleFailed(edits.front(), error.what()));
  }
  undone_.clear();
  return answer;
}

EditResult SessionImpl::tryEdits(std::span<Edit const> edits, References references) const {
  EditResult result = attempt(*work_, edits, references);
  if (result.refused) proposeWhatWorks(*result.refused, edits, references);
  return result;
}

/// Keeps the nearest edit only if it would be applied. An edit may have two slips, in its path and in its value.
void SessionImpl::proposeWhatWorks(Refused& refused, std::span<Edit const> edits, References references) const {
  if (refused.code == RefusalCode::UnknownParameter) proposeElsewhere(refused, refused.edit.name);
  if (!refused.nearest || refused.index >= edits.size()) return;
  std::vector<Edit> nearest(edits.begin(), edits.begin() + static_cast<std::ptrdiff_t>(refused.index) + 1);
  Edit const first = *refused.nearest;
  constexpr int mostSlips = 3;
  for (int slip = 0; slip < mostSlips && refused.nearest; ++slip) {
    nearest.back() = *refused.nearest;
    EditResult const tried = attempt(*work_, nearest, references);
    if (tried.applied()) return;
    bool const isSameEdit = tried.refused->index == refused.index;
    refused.nearest = isSameEdit ? tried.refused->nearest : std::nullopt;
  }
  refused.nearest.reset();
  // The name that was meant is worth knowing in any case.
  if (!refused.possible.empty()) return;
  if (first.name != refused.edit.name) {
    refused.possible = SharedStrings{first.name};
  } else if (first.path != refused.edit.path) {
    refused.possible = SharedStrings{first.path};
  }
}

EditResult SessionImpl::attempt(Work& work, std::span<Edit const> edits, References references,
                                std::function<void()> const& inside) const {
  EditResult result;
  EffectFinder finder(work.ruled, work.offers, readers_, requests_);
  std::size_t index = 0;
  try {
    std::size_t characters = 0;
    for (Edit const& edit : edits) characters += edit.path.size() + edit.name.size() + edit.value.size();
    if (edits.size() > Session::mostSteps || characters > Session::mostCharacters) {
      Refused tooMuch;
      std::string const most = std::to_string(Session::mostCharacters);
      tooMuch.sentence =
          edits.size() == 1
              ? "The edit is too long: its path, its name and its value can have " + most + " characters together."
              : "These are too many edits at once: they can be " + std::to_string(Session::mostSteps) + ", with " +
                    most + " characters together.";
      return refusedResult(std::move(tooMuch));
    }
    Trial trial(*work.state);
    for (; index < edits.size(); ++index) {
      std::size_t const before = result.conversions.size();
      makeChecked(work, edits[index], references, finder, result);
      for (std::size_t i = before; i < result.conversions.size(); ++i) result.conversions[i].index = index;
    }
    finder.lookAfter();
    if (inside) inside();
    trial.end();
    finder.lookBefore();
    result.effect = finder.effect();
    return result;
  } catch (RefusedEdits& refused) {
    refused.refused.index = index;
    return refusedResult(std::move(refused.refused));
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    Refused failed = ruleFailed(edits[std::min(index, edits.size() - 1)], error.what());
    failed.index = std::min(index, edits.size() - 1);
    return refusedResult(std::move(failed));
  }
}

void SessionImpl::makeChecked(Work& work, Edit const& edit, References references, EffectFinder& finder,
                              EditResult& result) const {
  EditChecks const checks(work.ruled, [&finder](Item const& item) { return finder.isOffered(item); });
  Edit made = edit;
  if (auto refused = checks.before(made)) {
    refused->edit = edit;
    throw RefusedEdits{std::move(*refused)};
  }
  bool const isRename = made.kind == Edit::Kind::RenameObject;
  std::vector<Edit> const moved = isRename ? editsToMove(work, made) : std::vector<Edit>();
  std::vector<Referring> const naming =
      isRename && references == References::Follow ? valuesNaming(work, made) : std::vector<Referring>();

  std::optional<Refusal> const refusal = work.state->apply(made);
  if (auto refused = checks.after(made, refusal)) {
    refused->edit = edit;
    throw RefusedEdits{std::move(*refused)};
  }
  finder.noteUpdate(made);
  if (made.kind == Edit::Kind::SetParam && made.value != StringUtilities::removeWhitespace(edit.value) &&
      TDFParam::isNumericType(work.ruled.rulesOfParam(made.path, made.name).value->type)) {
    result.conversions.push_back({0, {made.path, made.name}, edit.value, made.value});
  }
  result.made.push_back(std::move(made));
  for (Edit const& move : moved) makeRaw(work, move, finder, result);
  if (!naming.empty()) follow(work, naming, finder, result);
}

/// An edit that follows from another one.
void SessionImpl::makeRaw(Work& work, Edit edit, EffectFinder& finder, EditResult& result) const {
  (void)work.state->apply(edit);
  finder.noteUpdate(edit);
  result.made.push_back(std::move(edit));
}

/// The requests that a renaming would lose: the state copies only what is present.
std::vector<Edit> SessionImpl::editsToMove(Work const& work, Edit const& rename) const {
  std::string const target = renamedPath(rename);
  auto const moved = [&](std::string const& path) { return target + path.substr(rename.path.size()); };
  std::vector<Edit> edits;
  // Decisions first, so that a value does not switch on what is switched off.
  for (auto const& [item, count] : requests_.decided()) {
    if (!StringUtilities::isPathRootedAt(rename.path, item.path) || item.path == rename.path) {
      if (!item.isParam() || item.path != rename.path) continue;
    }
    std::string path = moved(item.path);
    if (item.isParam()) {
      auto const decision = work.state->getParamDecision(item.path, *item.name);
      if (!decision) continue;
      edits.push_back(*decision ? Edit::activateParam(std::move(path), *item.name)
                                : Edit::deactivateParam(std::move(path), *item.name));
    } else {
      auto const decision = work.state->getObjectDecision(item.path);
      if (!decision) continue;
      edits.push_back(*decision ? Edit::activateObject(std::move(path)) : Edit::deactivateObject(std::move(path)));
    }
  }
  for (auto const& [path, params] : work.state->getGuideTree().getState(rename.path)) {
    for (auto const& [name, value] : params) {
      std::string const* const present = work.ruled.value(path, name);
      if (present != nullptr && *present == value) continue;
      if (work.ruled.rulesOfParam(path, name)) edits.push_back(Edit::setParam(moved(path), name, value));
    }
  }
  return edits;
}

namespace {

/// `value` with every item `from` replaced by `to`, or "" when there is none.
std::string withItemReplaced(TDFParam::Type type, std::string const& value, std::string const& from,
                             std::string const& to) {
  if (!TDFParam::isListType(type)) return value == from ? to : std::string();
  std::vector<std::string> items = StringUtilities::stringToVector(value, ',');
  if (std::find(items.begin(), items.end(), from) == items.end()) return {};
  std::replace(items.begin(), items.end(), from, to);
  return StringUtilities::vectorToString(items, ',');
}

}  // namespace

std::vector<SessionImpl::Referring> SessionImpl::valuesNaming(Work const& work, Edit const& rename) const {
  std::string const target = renamedPath(rename);
  std::string const oldName(PathUtils::lastName(rename.path));
  std::vector<Referring> found;
  for (auto const& [path, params] : work.state->getGuideTree().getState(root_)) {
    for (auto const& [name, value] : params) {
      if (value.find(oldName) == std::string::npos) continue;
      ParamRules const rules = work.ruled.rulesOfParam(path, name);
      if (!rules || rules.value->allowedValueKind == ParamValueDef::NoAllowedValues) continue;
      bool const isInside = StringUtilities::isPathRootedAt(rename.path, path);
      std::string const newPath = isInside ? target + path.substr(rename.path.size()) : path;
      for (auto const& [oldItem, newItem] : {std::pair(oldName, rename.name), std::pair(rename.path, target)}) {
        std::string newValue = withItemReplaced(rules.value->type, value, oldItem, newItem);
        if (newValue.empty() || !work.ruled.allowedValues(rules, path).allowedValues.contains(oldItem)) continue;
        found.push_back({{newPath, name}, value, std::move(newValue), oldItem, newItem});
        break;
      }
    }
  }
  return found;
}

void SessionImpl::follow(Work& work, std::vector<Referring> const& values, EffectFinder& finder,
                         EditResult& result) const {
  for (Referring const& reference : values) {
    std::string const& path = reference.item.path;
    std::string const& name = *reference.item.name;
    ParamAllowedValues const allowed = work.ruled.allowedValues(work.ruled.rulesOfParam(path, name), path);
    // Another object may have the old name.
    if (!allowed.allowedValues.contains(reference.newItem) || allowed.allowedValues.contains(reference.oldItem))
      continue;
    makeRaw(work, Edit::setParam(path, name, reference.newValue), finder, result);
    result.followed.push_back({reference.item, reference.value, reference.newValue});
  }
}

/// Makes the step for good. When it throws, nothing has changed.
void SessionImpl::commit(Step step, EditResult result) {
  makeRoom(steps_);
  makeRoom(results_);
  requests_.add(step);
  try {
    remake(*work_, result.made, result.effect);
  } catch (...) {
    requests_.removeLast();
    throw;
  }
  steps_.push_back(std::move(step));
  results_.push_back(std::move(result));
  if (work_->marks.empty()) results_.erase(results_.begin(), results_.end() - 1);
  changed();
}

void SessionImpl::remake(Work& work, std::vector<Edit> const& made, Effect const& effect) const {
  makeRoom(work.marks);
  OfferIndex::Change const offers = work.offers.begin(effect.offersGained, effect.offersLost);
  try {
    Trial trial(*work.state);
    for (Edit const& edit : made) (void)work.state->apply(edit);
    keepWayBack(work, effect.size(), trial.keep());
  } catch (...) {
    work.offers.abandon(offers);
    throw;
  }
  work.offers.finish(offers);
}

void SessionImpl::keepWayBack(Work& work, std::size_t effectSize, ProvisionalTDF::Mark mark) const {
  work.marks.push_back(mark);
  work.changes += effectSize;
  if (work.marks.size() <= options_.quickSteps && work.changes <= options_.quickChanges) return;
  work.state->release(work.marks.front());
  work.marks.clear();
  work.changes = 0;
}

std::optional<EditResult> SessionImpl::undo() {
  if (steps_.empty()) return std::nullopt;
  if (work_->marks.empty()) return undoAnew();
  EditResult answer;
  answer.step = steps_.back().number;
  answer.made = steps_.back().made;
  answer.effect = results_.back().effect.reversed();
  makeRoom(undone_);
  OfferIndex::Change const offers = work_->offers.begin(answer.effect.offersGained, answer.effect.offersLost);
  // From here on nothing fails.
  work_->state->rollback(work_->marks.back());
  work_->offers.finish(offers);
  work_->marks.pop_back();
  work_->changes -= results_.back().effect.size();
  undone_.push_back({std::move(steps_.back()), std::move(results_.back())});
  steps_.pop_back();
  results_.pop_back();
  requests_.removeLast();
  changed();
  return answer;
}

/// The way back is not known. So all steps but the last are made again from the start.
std::optional<EditResult> SessionImpl::undoAnew() {
  EditResult answer;
  answer.step = steps_.back().number;
  answer.made = steps_.back().made;
  answer.effect = results_.back().effect.reversed();
  makeRoom(undone_);
  std::vector<EditResult> results;
  std::unique_ptr<Work> work;
  try {
    work = std::make_unique<Work>(*this);
    // Only the last results are of use.
    std::size_t const count = steps_.size() - 1;
    std::size_t const first = count > options_.quickSteps + 1 ? count - options_.quickSteps - 1 : 0;
    for (std::size_t i = 0; i < count; ++i) {
      EditResult result;
      EffectFinder finder(work->ruled, work->offers, readers_, requests_);
      {
        Trial trial(*work->state);
        for (Edit const& edit : steps_[i].made) {
          (void)work->state->apply(edit);
          finder.noteUpdate(edit);
        }
        finder.lookAfter();
        trial.end();
        finder.lookBefore();
      }
      result.effect = finder.effect();
      result.made = steps_[i].made;
      result.step = steps_[i].number;
      result.conversions = steps_[i].conversions;
      result.followed = steps_[i].followed;
      remake(*work, result.made, result.effect);
      if (work->marks.empty()) results.clear();
      if (i >= first) results.push_back(std::move(result));
    }
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    return refusedResult(ruleFailed(steps_.back().made.front(), error.what()));
  }
  work_ = std::move(work);
  undone_.push_back({std::move(steps_.back()), std::move(results_.back())});
  steps_.pop_back();
  results_ = std::move(results);
  requests_.removeLast();
  changed();
  return answer;
}

std::optional<EditResult> SessionImpl::redo() {
  if (undone_.empty()) return std::nullopt;
  EditResult answer = undone_.back().result;
  try {
    commit(undone_.back().step, undone_.back().result);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& error) {
    return refusedResult(ruleFailed(answer.made.front(), error.what()));
  }
  undone_.pop_back();
  return answer;
}

TryResult SessionImpl::tryWithFindings(std::span<Edit const> edits, References references) const {
  TryResult tried;
  Findings after;
  Review const reviewer(rules_);
  tried.result = attempt(*work_, edits, references, [&] { after = reviewer.judge(result()); });
  if (tried.result.refused) {
    proposeWhatWorks(*tried.result.refused, edits, references);
    return tried;
  }

  auto const keyOf = [](Finding const& finding) {
    return std::tuple(finding.code, finding.path, finding.name, finding.type, finding.check, finding.message);
  };
  std::map<decltype(keyOf(Finding())), std::ptrdiff_t> counts;
  for (Finding const& finding : review().list) --counts[keyOf(finding)];
  for (Finding const& finding : after.list) ++counts[keyOf(finding)];
  for (Finding const& finding : after.list) {
    auto& count = counts[keyOf(finding)];
    if (count <= 0) continue;
    --count;
    tried.findingsGained.push_back(finding);
  }
  for (Finding const& finding : review().list) {
    auto& count = counts[keyOf(finding)];
    if (count >= 0) continue;
    ++count;
    tried.findingsLost.push_back(finding);
  }
  return tried;
}

}  // namespace tarn::session
