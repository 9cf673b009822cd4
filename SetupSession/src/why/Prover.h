#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/session/Effect.h>
#include <tarn/session/Item.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Step.h>

#include "session/OfferIndex.h"
#include "session/RuledState.h"
#include "why/DecisionModel.h"

namespace tarn::session {

/// The material of a proof.
struct ProofSources {
  RuledState const& state;
  /// Whether an item is on offer.
  std::function<bool(Item const&)> isOffered;
  /// Where the value of a present parameter comes from, and the step for `Origin::User`.
  std::function<Origin(Item const&, std::size_t& step)> originOf;
  /// The last step and its effect; null before the first step.
  Step const* lastStep = nullptr;
  Effect const* lastEffect = nullptr;
};

/// Makes one proof. Throws what a rule throws.
class Prover {
 public:
  explicit Prover(ProofSources const& sources);

  [[nodiscard]] Proof prove(Question question, Item const& item, std::string const& value, std::size_t depth);

 private:
  static constexpr std::size_t none = static_cast<std::size_t>(-1);
  using Key = std::pair<Item, Question>;

  // Each fills the node at an index. Nodes of children are added later, from `open_`.
  void explainPresence(std::size_t node);
  void explainParamPresence(std::size_t node);
  void explainObjectPresence(std::size_t node);
  void explainValue(std::size_t node);
  void explainDefault(std::size_t node, ParamRules const& rules, ParamAllowedValues const& allowed);
  void explainAllowed(std::size_t node, std::string const& value);
  void explainLastEdit(std::size_t node);

  std::size_t addNode(Item const& item);
  /// The node of a fact, made if there is none; `none` when there are too many.
  std::size_t nodeOf(Item const& item, Question question, std::size_t depth);
  [[nodiscard]] std::string absentAncestor(std::string const& path) const;
  /// Explains an expression and adds it to the node. `trim` takes away what the proof does not need. Returns the result
  /// of the expression.
  Explanation::Result addRule(std::size_t node, std::string attribute, RuleExpression const& expression,
                              std::function<void(Explanation&)> const& trim = nullptr);
  /// A condition that must have had this result. If it has another one now, and it is not known what it read, the node
  /// is outdated.
  void addCondition(std::size_t node, std::string attribute, RuleExpression const& condition, bool expected);
  [[nodiscard]] ProofRead readOf(ModelRead read, DecisionModel const& model) const;
  [[nodiscard]] RulePlace placeOfValue(Item const& item, Origin origin) const;
  void openReads(std::size_t node, std::size_t depth);
  [[nodiscard]] bool wasChanged(ModelRead const& read) const;
  [[nodiscard]] bool isEditedItself(Item const& item) const;

  ProofSources const& sources_;
  RuledState const& state_;
  FormerState former_;
  Proof proof_;
  std::map<Key, std::size_t> known_;
  std::size_t depth_ = 1;
};

}  // namespace tarn::session
