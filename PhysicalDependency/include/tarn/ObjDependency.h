#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>

namespace tarn {

class EvalContext;
class PhysicsData;

/// A cursor over the rules of one object. It goes through the object's parameter entries and its child entries, each in
/// the order of the rules, and answers for the entry it stands on what the rules say now.
///
///     ObjDependency rules("/Case/Domain:rotor", &evalContext, &physicsData);
///     for (rules.firstParam(); !rules.isDoneParam(); rules.nextParam()) {
///       ParamAllowedValues allowed;
///       bool const available = rules.isParamAvailable(allowed);
///       if (available && rules.isParamContextRule()) rules.setContextRuleValue(model.getParameterValue(...));
///     }
///     for (rules.firstChild(); !rules.isDoneChild(); rules.nextChild()) ...
///
/// The two walks. Each stands before its first entry at the start, then on an entry, then behind the last; before and
/// behind read as done. Either may be started again at any time. They meet in one thing only, the context rule value:
/// `nextParam` selects by it which of the parameters are live, and `firstChild` which of the children. So give it while
/// the cursor stands on the context rule parameter, and walk the children after the parameters. An entry that is not
/// live is visited and answers everything; it merely reads as unavailable, without its condition being evaluated.
/// Of an object that the rules do not know, see `isValid`, both walks are done at once.
///
/// Failures. A question about an entry when there is none throws `std::runtime_error` with a text that names the
/// question. Some questions share the text of another; the texts are fixed. It means that the caller ran past the end
/// of a walk, or that the rules hold a parameter entry without a value rule; it is never the fault of a model.
/// What a rule throws while it is evaluated passes through and leaves the cursor as it was.
///
/// A value: a copy stands where the original stands, with what that has evaluated so far, and goes its own way. The
/// evaluation context and the rule database are not owned and must outlive all copies. The cursor holds no model; rules
/// read the one of the context at the moment of the question.
class TARN_EXPORT ObjDependency {
 public:
  /// What `isChildAvailable` finds out about the names of the children.
  struct AllowedNameData {
    /// The entry has allowed names, and they were evaluated.
    bool hasAllowedNames = false;
    std::vector<std::string> allowedNames;
    std::vector<std::string> defaultNames;
  };

  /// A cursor on the object at `objPath`; whether a model has such an object is not asked. Throws the `Error` of
  /// `TDFPath` when that is no path. Both pointers must not be null.
  ObjDependency(std::string const& objPath, EvalContext* evalContext, PhysicsData const* physicsData);

  /// The same for a caller who has found the rules: those for the type path of `objPath`, or null when there are none.
  /// Neither is checked, which saves what most of the other constructor's time goes into.
  ObjDependency(std::string objPath, ObjDependDef const* rules, EvalContext* evalContext,
                PhysicsData const* physicsData)
      : context_(std::move(objPath)), evalContext_(evalContext), physicsData_(physicsData), objDef_(rules) {}

  [[nodiscard]] std::string const& getObjPath() const noexcept { return context_.objPath(); }
  /// The rules for the object's type path, or null.
  [[nodiscard]] ObjDependDef const* getRules() const noexcept { return objDef_; }

  /// Whether there are rules for the object's type path: `/Case/Domain` for `/Case/Domain:rotor`.
  [[nodiscard]] bool isValid() const noexcept { return objDef_ != nullptr; }

  /// @name The parameter entries
  /// `firstParam` forgets the context rule value, so the first entry is selected by none.
  /// @{
  void firstParam();
  void nextParam();
  /// How many entries there are, live or not.
  [[nodiscard]] std::size_t numParams() const noexcept { return objDef_ == nullptr ? 0 : objDef_->params().size(); }
  /// Makes the parameter walk, from the next `firstParam` on, stop only at the entries of these names and, if so
  /// wanted, at those of required parameters; still each once and in the order of the rules. Names without an entry are
  /// passed over. Rules may have thousands of entries for an object that holds a dozen parameters: with the names that
  /// the object holds, the walk costs as much as there are of those.
  void limitParams(std::vector<std::string> const& names, bool andRequired);
  [[nodiscard]] bool isDoneParam() const noexcept { return currParam_ == nullptr; }

  /// Says which value the context rule parameter has that the cursor stands on. The entries behind it are selected by
  /// it, until another one is given. Without a current parameter it does nothing.
  void setContextRuleValue(std::string const& value);

  /// Whether the parameter is available: the entry is live, its condition holds, and when it has an allowed value rule,
  /// the evaluated list holds something or may be empty. The subset plays no part. `out` becomes the evaluated record;
  /// it stays as it is when the allowed values are not evaluated, so hand in a fresh one. Evaluates at every call.
  /// Without a current parameter, false.
  [[nodiscard]] bool isParamAvailable(ParamAllowedValues& out) const;

  /// The name and the marks of the entry. References live as long as the rule database.
  [[nodiscard]] std::string const& getParamName() const;
  [[nodiscard]] bool isParamRequired() const;
  [[nodiscard]] bool hasParamValidationRelaxed() const;
  [[nodiscard]] bool isParamContextRule() const;

  /// What the value rule of the parameter says. See `ParamValueDef`.
  [[nodiscard]] TDFParam::Type getParamType() const;
  [[nodiscard]] bool isCompleteListRequired() const;
  [[nodiscard]] bool hasParamDynamicBounds() const;
  [[nodiscard]] bool hasParamDefault() const;
  [[nodiscard]] bool hasParamValueOverride() const;

  /// Lower and upper bound, evaluated at the first question. The reference is valid until the parameter walk moves.
  [[nodiscard]] std::pair<std::string, std::string> const& getParamBounds() const;

  /// The default, by itself or in the light of `allowed`. Evaluated at the first question; the form that asks first
  /// decides, and both return its result from then on. The reference is valid until the parameter walk moves.
  [[nodiscard]] std::string const& getParamDefault() const;
  [[nodiscard]] std::string const& getParamDefault(ParamAllowedValues const& allowed) const;

  /// Whether an override is in force, and its value. Evaluated at every question.
  [[nodiscard]] std::pair<bool, std::string> getParamValueOverride() const;
  [[nodiscard]] std::pair<bool, std::string> getParamValueOverride(ParamAllowedValues const& allowed) const;
  /// @}

  /// @name The child entries
  /// @{
  void firstChild();
  void nextChild();
  [[nodiscard]] bool isDoneChild() const noexcept { return currChild_ == nullptr; }

  /// Whether children of the type are available: the entry is live, its condition holds, and when it has allowed names,
  /// they evaluate to at least one. Evaluates at every call: of an available entry the allowed names, or when it has
  /// none, the default names. `hasAllowedNames` and `allowedNames` of `out` are always set; `defaultNames` are set only
  /// when they are evaluated and keep what they held otherwise, so hand in a fresh record for each entry.
  /// Without a current child, false.
  [[nodiscard]] bool isChildAvailable(AllowedNameData& out) const;

  /// The type and the marks of the entry. The reference lives as long as the rule database.
  [[nodiscard]] std::string const& getChildType() const;
  [[nodiscard]] bool isChildRequired() const;
  [[nodiscard]] bool isChildSingleton() const;
  /// The entry is marked coupled or has allowed names.
  [[nodiscard]] bool isChildCoupled() const;
  [[nodiscard]] bool hasChildValidationRelaxed() const;
  /// @}

 private:
  [[nodiscard]] std::pair<ParamAvail const*, bool> nextOfLimited();
  void initCurrParam(std::pair<ParamAvail const*, bool> entry);

  // Constant after construction.
  TDFContext context_;
  EvalContext* evalContext_;
  PhysicsData const* physicsData_;
  ObjDependDef const* objDef_;  // null when the rules do not know the object's type path

  // Where the parameter walk stops, as places among the entries; everywhere unless limited_.
  bool limited_ = false;
  std::vector<std::size_t> stops_;
  std::size_t stopsPassed_ = 0;

  // Where the walks stand.
  ParamValueDef const* currParamDef_ = nullptr;
  ParamAvail const* currParam_ = nullptr;
  bool currParamLive_ = false;
  ChildAvail const* currChild_ = nullptr;
  bool currChildLive_ = false;
  PACursor paramCursor_;
  CACursor childCursor_;
  std::string contextRuleValue_;  // cleared by firstParam only

  // What the current parameter has been asked; forgotten when the parameter walk moves.
  mutable bool defaultDone_ = false;
  mutable std::string defaultValue_;
  mutable bool boundsDone_ = false;
  mutable std::pair<std::string, std::string> bounds_;
};

}  // namespace tarn
