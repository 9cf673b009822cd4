#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Explanation.h>
#include <tarn/Export.h>
#include <tarn/ModelRead.h>
#include <tarn/RulePlace.h>
#include <tarn/session/Item.h>
#include <tarn/session/ParamRecord.h>

namespace tarn::session {

/// The question that a proof answers. The numbers are part of the interface.
enum class Question : int {
  /// Why the item is present, absent, required, on offer or waiting: whichever it is.
  Presence = 0,
  /// Why the parameter has its value. For an absent parameter the same as `Presence`.
  Value = 1,
  /// Why a value is allowed or not allowed.
  Allowed = 2,
  /// Why the last step changed the item.
  LastEdit = 3
};

/// The cause that decided about an item. The numbers are part of the interface. Later versions may add facts at the
/// end.
enum class Fact : int {
  /// @name Absent
  /// @{
  OutsideRoot = 0,
  UnknownToTheRules = 1,
  /// An object above is absent. That object is the item of the child node, which is the whole proof.
  ObjectAbsent = 2,
  /// The entry counts only while a context parameter has other values.
  NotLive = 3,
  NotAvailable = 4,
  /// The parameter must have an allowed value, and there is none.
  NoAllowedValue = 5,
  NameNotAllowed = 6,
  /// A named object that nobody has asked for.
  NotAskedFor = 7,
  /// An object that is taken from the model as it is, and the model does not have it.
  NotInModel = 8,
  /// On offer: nobody has switched it on or given it a value.
  NeverSwitchedOn = 9,
  /// On offer: the user has switched it off.
  SwitchedOff = 10,
  /// On offer: its value waits, because it is not allowed now.
  ValueRefused = 11,
  /// @}

  /// @name Present
  /// @{
  IsRoot = 20,
  Required = 21,
  /// Optional, and the user or the model asked for it.
  AskedFor = 22,
  /// Taken from the model as it is.
  TakenFromModel = 23,
  /// @}

  /// @name The value
  /// @{
  Override = 30,
  SetByUser = 31,
  GivenByModel = 32,
  FormerOverride = 33,
  CompletedList = 34,
  /// The default whose condition holds.
  ConditionalDefault = 35,
  Default = 36,
  /// There is no default that is allowed, so the first value on offer counts.
  FirstOnOffer = 37,
  /// There is no default.
  Blank = 38,
  /// @}

  /// @name A value that was asked about
  /// @{
  NotInList = 50,
  Unused = 51,
  CheckFails = 52,
  /// Allowed, but not among the values on offer.
  OutsideSubset = 53,
  ValueAllowed = 54,
  AnyValueAllowed = 55,
  /// @}

  /// @name The last step
  /// @{
  NotChanged = 70,
  /// The step itself asked for this.
  EditedItself = 71,
  /// The rules changed it, because something that they read has changed.
  ChangedByRules = 72
  /// @}
};

/// A read that decided, with where its value comes from.
struct TARN_EXPORT ProofRead {
  ModelRead read;
  /// The source of the value, for a parameter.
  Origin origin = Origin::None;
  /// The step, for `Origin::User`.
  std::size_t step = 0;
  /// The rule that gave the value, for a default or an override.
  RulePlace place;
  /// The rule used an old value: the walk decided on the item before it decided on what was read. `valueNow` is the
  /// value after the walk, empty when it is absent now. The rule is asked again at the next edit.
  bool isOld = false;
  std::optional<std::string> valueNow;
  /// The node that explains this, when the proof goes that deep.
  std::optional<std::size_t> node;
};

/// One rule that decided.
struct TARN_EXPORT ProofRule {
  /// The key of the rule in its file: "Available".
  std::string attribute;
  /// The rule as it is written; "" for a rule that a program made.
  std::string text;
  RulePlace place;
  /// How the rule came to its result.
  Explanation explanation;
  /// For each read of the explanation.
  std::vector<ProofRead> reads;
};

struct TARN_EXPORT ProofNode {
  Item item;
  Fact fact = Fact::UnknownToTheRules;
  /// The value of a present parameter, or the value that was asked about.
  std::string value;
  /// The step, for `SetByUser` and for the last step.
  std::size_t step = 0;
  /// The parameter that selects the entry, for `NotLive`.
  std::string contextParam;
  /// The values that would do, for `NotLive`, `NotInList` and `NameNotAllowed`.
  std::vector<std::string> needed;
  /// The text that the rule gives as its `Reason`. "" when it gives none.
  std::string reason;
  /// The rule's entry for the item. Not known for rules that a program made.
  RulePlace place;
  /// The rules that decided, in the order in which they were asked.
  std::vector<ProofRule> rules;
  /// Before and after the last step, for `ChangedByRules` and `EditedItself`. Empty where the item was absent.
  std::optional<std::string> before;
  std::optional<std::string> after;
  /// A rule has changed its mind: it decided on values that have changed since, and the values that it used are not
  /// known. It is asked again at the next edit. The rules of the node are then explained by the present values.
  bool isOutdated = false;
  /// Indices of the nodes that explain this one, each larger than that of this node.
  std::vector<std::size_t> children;
};

/// Why something is as it is: a tree of facts. Plain data; refers to nothing.
struct TARN_EXPORT Proof {
  /// At most so many nodes are made.
  static constexpr std::size_t maxNodes = 500;

  Question question = Question::Presence;
  Item item;
  /// The first is the answer. A fact has one node, however often it is needed.
  std::vector<ProofNode> nodes;
  /// Number of reads whose explanation would need more depth.
  std::size_t hidden = 0;

  [[nodiscard]] ProofNode const& answer() const { return nodes.front(); }
};

/// The fact to prove.
struct TARN_EXPORT WhyOptions {
  Question question = Question::Value;
  /// For `Question::Allowed`.
  std::string value;
  /// 1 explains the item by what its rules have read. With 2, what was read is explained in the same way, and so on.
  std::size_t depth = 1;
};

/// The proof as text: the fact, the reason, the rules with their places, and what decided with where it comes from. At
/// most `maxLines` lines; the last one then says how many are left out. Long values are cut off.
///
///     /Case/Domain:rotor/Angular Velocity is absent: not available
///       "Only a rotating domain has an angular velocity."
///       Available: ${Motion} == 'Rotating'  (flow.rules.yaml:19:22)
///         Motion is 'Stationary', needs 'Rotating'  (default, flow.rules.yaml:12:11)
[[nodiscard]] TARN_EXPORT std::string textOf(Proof const& proof, std::size_t maxLines = 10);

}  // namespace tarn::session
