#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/EditResult.h>
#include <tarn/session/Findings.h>
#include <tarn/session/RuleQuantityModifier.h>
#include <tarn/session/Session.h>
#include <tarn/session/Step.h>

#include "session/EditChecks.h"
#include "session/EffectFinder.h"
#include "session/OfferIndex.h"
#include "session/Requests.h"
#include "session/RuleReaders.h"
#include "session/RuledState.h"
#include "why/WaySearch.h"

namespace tarn::session {

/// The work of a session: the provisional state, the history, and the questions. Its sources are divided by concern:
/// SessionImpl.cpp has the edits and the history, Looking.cpp the records, Searching.cpp the lists of them.
class SessionImpl {
 public:
  /// Throws what a rule throws, and the `Error` of `TDFPath`.
  SessionImpl(PhysicsData const& rules, std::optional<ModelText> text, ModelState model, std::string root,
              SessionOptions const& options);

  // Edits and history.
  [[nodiscard]] EditResult edit(std::span<Edit const> edits, References references);
  [[nodiscard]] EditResult tryEdits(std::span<Edit const> edits, References references) const;
  [[nodiscard]] TryResult tryWithFindings(std::span<Edit const> edits, References references) const;
  [[nodiscard]] std::optional<EditResult> undo();
  [[nodiscard]] std::optional<EditResult> redo();
  [[nodiscard]] std::vector<Step> const& steps() const noexcept { return steps_; }
  [[nodiscard]] std::size_t undoneSteps() const noexcept { return undone_.size(); }
  [[nodiscard]] EditResult const* lastResult() const noexcept { return results_.empty() ? nullptr : &results_.back(); }

  // Records: Looking.cpp.
  [[nodiscard]] std::optional<ParamRecord> lookParam(std::string const& path, std::string const& name) const;
  [[nodiscard]] std::optional<ObjectRecord> lookObject(std::string const& path) const;
  [[nodiscard]] std::vector<std::string> params(std::string const& path) const;
  [[nodiscard]] std::vector<ChildTypeRecord> childTypes(std::string const& path) const;
  /// Where the value of a present parameter comes from, and the step for `Origin::User`.
  [[nodiscard]] Origin originOf(std::string const& path, std::string const& name, std::size_t& step) const;

  // Lists: Searching.cpp.
  [[nodiscard]] std::variant<Item, Refused> resolve(std::string_view text) const;
  [[nodiscard]] std::vector<Found> find(std::string_view text, std::size_t most) const;
  [[nodiscard]] std::vector<OwnValue> own() const;
  [[nodiscard]] std::vector<Waiting> waiting() const;
  [[nodiscard]] std::vector<Difference> differencesFrom(ModelState const& model) const;
  [[nodiscard]] ModelState result() const;
  [[nodiscard]] Findings const& review() const;
  void setReview(Findings findings);

  // Why and how: the folder why.
  [[nodiscard]] Proof why(Item const& item, WhyOptions const& options) const;
  [[nodiscard]] HowResult how(Goal const& asked, HowOptions const& options) const;

  // The parts that the session works with.
  [[nodiscard]] std::string const& root() const noexcept { return root_; }
  [[nodiscard]] PhysicsData const& rules() const noexcept { return rules_; }
  [[nodiscard]] ModelState const& model() const noexcept { return model_; }
  [[nodiscard]] ModelText const* modelText() const noexcept { return text_ ? &*text_ : nullptr; }
  [[nodiscard]] ProvisionalTDF const& provisional() const noexcept { return *work_->state; }
  /// Questions about the present state and its rules.
  [[nodiscard]] RuledState const& ruled() const noexcept { return work_->ruled; }
  [[nodiscard]] OfferIndex const& offers() const noexcept { return work_->offers; }
  [[nodiscard]] Requests const& requests() const noexcept { return requests_; }

 private:
  /// A provisional state with the ways back of the last steps.
  struct Work {
    explicit Work(SessionImpl const& session);

    std::unique_ptr<ProvisionalTDF> state;
    RuledState ruled;
    OfferIndex offers;
    std::vector<ProvisionalTDF::Mark> marks;
    /// The number of entries in the effects since the first mark.
    std::size_t changes = 0;
  };
  struct Undone {
    Step step;
    EditResult result;
  };
  struct Waits;
  struct Referring;

  /// Makes the edits, looks at what they do, and takes them back. `inside` is called while they are in force.
  [[nodiscard]] EditResult attempt(Work& work, std::span<Edit const> edits, References references,
                                   std::function<void()> const& inside = nullptr) const;
  void proposeElsewhere(Refused& refused, std::string_view name) const;
  void proposeWhatWorks(Refused& refused, std::span<Edit const> edits, References references) const;
  void makeChecked(Work& work, Edit const& edit, References references, EffectFinder& finder, EditResult& result) const;
  void makeRaw(Work& work, Edit edit, EffectFinder& finder, EditResult& result) const;
  [[nodiscard]] std::vector<Edit> editsToMove(Work const& work, Edit const& rename) const;
  [[nodiscard]] std::vector<Referring> valuesNaming(Work const& work, Edit const& rename) const;
  void follow(Work& work, std::vector<Referring> const& values, EffectFinder& finder, EditResult& result) const;
  void commit(Step step, EditResult result);
  void remake(Work& work, std::vector<Edit> const& made, Effect const& effect) const;
  void keepWayBack(Work& work, std::size_t effectSize, ProvisionalTDF::Mark mark) const;
  [[nodiscard]] std::optional<EditResult> undoAnew();
  void changed() noexcept { review_.reset(); }
  [[nodiscard]] std::optional<Refused> readGoal(Goal& goal) const;
  [[nodiscard]] Proof obstacle(Goal const& goal) const;
  /// Nothing when the caller has cancelled the search.
  [[nodiscard]] std::optional<std::vector<Way>> bestWays(std::vector<WaySearch::Found> const& found, Goal const& goal,
                                                         HowOptions const& options) const;
  [[nodiscard]] std::vector<ValueChange> lostBy(EditResult const& result) const;

  // Constant after construction.
  PhysicsData const& rules_;
  std::optional<ModelText> text_;
  ModelState model_;
  std::string root_;
  SessionOptions options_;
  RuleReaders readers_;
  RuleQuantityModifier modifier_;
  DynamicTDF base_{false};

  std::unique_ptr<Work> work_;

  // The history. Results are kept for the steps with a way back, and for the one before them.
  std::vector<Step> steps_;
  std::vector<EditResult> results_;
  std::vector<Undone> undone_;
  Requests requests_;

  mutable std::optional<Findings> review_;
};

}  // namespace tarn::session
