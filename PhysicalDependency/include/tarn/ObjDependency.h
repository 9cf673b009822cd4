#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ObjDependDef.h>
#include <tarn/ObjectReader.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/TDFContext.h>
#include <tarn/TDFParam.h>

namespace tarn {

class EvalContext;
class PhysicsData;

/// A cursor over the rules of one object. It goes through the object's parameter entries and its child entries, each in
/// the order of the rules, and answers what the rules say about the current entry.
///
///     std::string const rotor = "/Case/Domain:rotor";
///     ObjDependency rules(rotor, &evalContext, &physicsData);
///     for (rules.firstParam(); !rules.isDoneParam(); rules.nextParam()) {
///       std::string const& name = rules.getParamName();
///       ParamAllowedValues allowed;
///       bool const available = rules.isParamAvailable(allowed);
///       if (available && rules.isParamContextRule() && model.hasParameter(rotor, name)) {
///         rules.setContextRuleValue(model.getParameterValue(rotor, name));
///       }
///     }
///     for (rules.firstChild(); !rules.isDoneChild(); rules.nextChild()) {
///       ObjDependency::AllowedNameData names;
///       bool const available = rules.isChildAvailable(names);
///     }
///
/// Set the context rule value only for a parameter that the model holds, as above. An absent parameter must leave the
/// previous value in force; the value "" would select other entries.
///
/// The two walks. Each starts before its first entry, then is on an entry, then after the last. Before the first and
/// after the last entry it reads as done. Either walk may be started again at any time. They share one thing only, the
/// context rule value: `nextParam` selects with it which of the parameters are live, and `firstChild` which of the
/// children. So set it while the cursor is on the context rule parameter, and walk the children after the parameters.
/// An entry that is not live is visited and answers everything. It only reads as unavailable, and its condition is not
/// evaluated. For an object without rules (see `isValid`) both walks are done at once.
///
/// Failures. A question about an entry when there is none throws `std::runtime_error` with a text that names the
/// question. Some questions share the text of another; the texts are fixed. It means that the caller ran past the end
/// of a walk, or that the rules hold a parameter entry without a value rule. A model never causes it. Exceptions of a
/// rule reach the caller and leave the cursor unchanged.
///
/// A cursor is a value: a copy is at the same entry as the original, with its evaluated results, and is independent of
/// it. The evaluation context and the rule database are not owned and must outlive all copies. The cursor holds no
/// model. Rules read the model of the context at the time of the question.
class TARN_EXPORT ObjDependency {
 public:
  /// The result of `isChildAvailable` about the names of the children.
  struct AllowedNameData {
    /// The entry has allowed names, and they were evaluated.
    bool hasAllowedNames = false;
    std::vector<std::string> allowedNames;
    std::vector<std::string> defaultNames;
  };

  /// Makes a cursor on the object at `objPath`. The object need not exist in a model. Throws the `Error` of `TDFPath`
  /// when `objPath` cannot be read. Both pointers must not be null.
  ObjDependency(std::string const& objPath, EvalContext* evalContext, PhysicsData const* physicsData);

  /// The same for a caller who has the rules for the type path of `objPath`, or null when there are none. Neither is
  /// checked. This saves most of the time of the other constructor. `object` is the object at `objPath`, if the caller
  /// has found it in the model. Conditions then read its parameters without a look-up.
  ObjDependency(std::string objPath, ObjDependDef const* rules, EvalContext* evalContext,
                PhysicsData const* physicsData, ObjectHandle object = {})
      : evalContext_(evalContext), physicsData_(physicsData), context_(std::move(objPath), object), objDef_(rules) {}

  /// Makes this the cursor that the constructor would make of the same arguments, but exchanges the path with
  /// `objPath`. A walk through many objects needs no memory for each of them then.
  void moveTo(std::string& objPath, ObjDependDef const* rules, ObjectHandle const& object) noexcept;

  [[nodiscard]] std::string const& getObjPath() const noexcept { return context_.objPath(); }
  /// The handle that the constructor got, or an empty one.
  [[nodiscard]] ObjectHandle const& getObject() const noexcept { return context_.object(); }
  /// The rules for the object's type path, or null.
  [[nodiscard]] ObjDependDef const* getRules() const noexcept { return objDef_; }

  /// Returns whether there are rules for the object's type path: `/Case/Domain` for `/Case/Domain:rotor`.
  [[nodiscard]] bool isValid() const noexcept { return objDef_ != nullptr; }

  /// @name The parameter entries
  /// `firstParam` clears the context rule value, so the first entry is selected without one.
  /// @{
  void firstParam();
  void nextParam();
  /// The number of entries, live or not.
  [[nodiscard]] std::size_t numParams() const noexcept { return objDef_ == nullptr ? 0 : objDef_->params().size(); }
  /// From the next `firstParam` on, the parameter walk stops only at the entries with these names and, with
  /// `andRequired`, at those of required parameters. Each comes once, in the order of the rules. Names without an entry
  /// are ignored. Rules may have thousands of entries for an object that holds a dozen parameters. With the names that
  /// the object holds, the walk is linear in their number.
  void limitParams(std::vector<std::string> const& names, bool andRequired);
  /// Moves to the entry at index `place`, as if the walk had come there with this context rule value. The object must
  /// have rules with so many entries. For a caller who knows that the entries before it need no evaluation.
  void goToParam(std::size_t place, std::string const& contextRuleValue);
  [[nodiscard]] bool isDoneParam() const noexcept { return currParam_ == nullptr; }

  /// Sets the value of the current context rule parameter. It selects the entries after this one, until another value
  /// is set. Call it only for a parameter that is available and that the model holds. Without a current parameter it
  /// does nothing.
  void setContextRuleValue(std::string const& value);

  /// Returns whether the parameter is available: the entry is live, its condition holds, and if it has an allowed value
  /// rule, the evaluated list is not empty or may be empty. The subset does not matter. `out` becomes the evaluated
  /// record. It is left unchanged when the allowed values are not evaluated, so pass a fresh one. Evaluates at every
  /// call. False without a current parameter.
  [[nodiscard]] bool isParamAvailable(ParamAllowedValues& out) const;

  /// The name and the marks of the entry. References are valid as long as the rule database.
  [[nodiscard]] std::string const& getParamName() const;
  [[nodiscard]] bool isParamRequired() const;
  [[nodiscard]] bool hasParamValidationRelaxed() const;
  [[nodiscard]] bool isParamContextRule() const;

  /// The properties of the parameter's value rule. See `ParamValueDef`.
  [[nodiscard]] TDFParam::Type getParamType() const;
  [[nodiscard]] bool isCompleteListRequired() const;
  [[nodiscard]] bool hasParamDynamicBounds() const;
  [[nodiscard]] bool hasParamDefault() const;
  [[nodiscard]] bool hasParamValueOverride() const;

  /// Lower and upper bound, evaluated at the first question. The reference is valid until the parameter walk moves.
  [[nodiscard]] std::pair<std::string, std::string> const& getParamBounds() const;

  /// The default, on its own or under the allowed values `allowed`. Evaluated at the first question. The form that is
  /// called first decides, and both return its result from then on. The reference is valid until the parameter walk
  /// moves.
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
  /// As `goToParam`.
  void goToChild(std::size_t place, std::string const& contextRuleValue);
  [[nodiscard]] bool isDoneChild() const noexcept { return currChild_ == nullptr; }

  /// Returns whether children of the type are available: the entry is live, its condition holds, and if it has allowed
  /// names, they evaluate to at least one. Evaluates at every call: the allowed names of an available entry, or its
  /// default names when it has no allowed names. `hasAllowedNames` and `allowedNames` of `out` are always set.
  /// `defaultNames` are set only when they are evaluated, so pass a fresh record for each entry. False without a
  /// current child.
  [[nodiscard]] bool isChildAvailable(AllowedNameData& out) const;

  /// The type and the marks of the entry. The reference is valid as long as the rule database.
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

  EvalContext* evalContext_;
  PhysicsData const* physicsData_;

  // The object.
  TDFContext context_;
  ObjDependDef const* objDef_;  // null when the rules do not know the object's type path

  // The entries at which the parameter walk stops, as indexes. It stops at every entry unless limited_.
  bool limited_ = false;
  std::vector<std::size_t> stops_;
  std::size_t stopsPassed_ = 0;

  // The current entries of the walks.
  ParamValueDef const* currParamDef_ = nullptr;
  ParamAvail const* currParam_ = nullptr;
  bool currParamLive_ = false;
  ChildAvail const* currChild_ = nullptr;
  bool currChildLive_ = false;
  std::size_t nextPlace_ = 0;  // in the list of parameter entries, unless limited_
  CACursor childCursor_;
  std::string contextRuleValue_;  // cleared by firstParam only

  // Evaluated results of the current parameter. Reset when the parameter walk moves.
  mutable bool defaultDone_ = false;
  mutable std::string defaultValue_;
  mutable bool boundsDone_ = false;
  mutable std::pair<std::string, std::string> bounds_;
};

}  // namespace tarn
