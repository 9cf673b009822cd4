#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/Error.h>
#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class BetaLoggingController;
class PhysicsData;
class PhysicsErrorLogger;
class PhysicsFaultObserver;

/// Judges a whole model against the rule database and reports in the user's words what is physically wrong: missing or
/// invalid parameters and objects, values outside the allowed ones, and failed checks of the whole model.
///
///     std::unique_ptr<PhysicsData> rules = ...;   // filled, or loaded from rule files
///     PhysicsValidator2 validator(rules.get());
///     BasicPhysicsErrorLogger logger;
///     validator.setLogger(&logger);
///     ModelState model = {{"/Case", {{"Flow Regime", "Turbulent"}}}};
///     if (validator.validate(PhysicsValidator2::ValAll, model, {"/Case"}) != PhysicsValidator2::ValStatusClean) {
///       for (auto const& error : logger.getDependencyErrors()) std::cout << error.path << ": " << error.message <<
///       '\n'; for (auto const& message : logger.getGlobalErrors()) std::cout << message << '\n';
///     }
///
/// Order of calls. Make the validator when the database is complete: the constructor reads the list of global checks
/// and the pertinent root types once. Set a logger before the first `validate`; without a logger `validate` does
/// nothing. Set a `BetaLoggingController` if you want beta messages. Then call `validate` as often as the model
/// changes.
///
/// Two phases. The dependency checks walk the model under the rules, from the given roots downwards. They log
/// dependency errors, each under the path of the object that it concerns. The global checks are evaluated one after the
/// other, in the order of the database, and log global errors. The phases are independent: errors in one phase do not
/// stop the other.
///
/// Order of the messages. The roots are walked in turn, each depth first. The parameters of an object come in the order
/// of its rules, then its child rules in their order. For a child rule, its own verdict comes first, then the findings
/// in the children. Nothing is sorted afterwards.
///
/// Absent objects. A required object that is absent is reported only if it would have held a parameter that is
/// available and not relaxed, in itself or in a required object below it. To find that out, the validator walks an
/// empty placeholder. So conditions of rules see such an object for a while although the model does not have it.
///
/// Entries that are not judged or not evaluated:
/// - An entry whose rule has its validation relaxed is evaluated but not judged.
/// - An object whose rules have more than 32 parameter entries is walked along the parameters that it holds and those
///   that the rules require. The conditions and allowed values of its other entries are not evaluated, except in
///   placeholders, where every entry is. Such an entry never changes a verdict, but a condition with side effects, or
///   one that would throw, may not be reached.
/// - Bounds, defaults, value overrides and quantity types are never evaluated. A value outside its bounds is no
///   finding.
///
/// Memory between calls. Only objects whose topmost object has a pertinent root type count; see
/// `getPertinentRootLevelTypes`. Rules do not see the other objects, and they are ignored in the comparison that
/// follows. When the counting objects of a model are the same as in the previous call, `validate` repeats nothing: the
/// status and the content of the logger stay, and only a phase that has not run yet for this model runs. The comparison
/// ignores the roots and the logger. So pass the same roots for the same model, and do not change the content of the
/// logger between such calls. When the model differs, the logger is reset and both phases may run again. A new
/// validator treats a model that has no parameter in pertinent objects as one that it knows already.
///
/// Values. White space at the ends of a value is ignored. A parameter with an empty value counts as absent.
///
/// Beta messages of rule authors are logged as dependency errors of level `PhysicsErrorMsg::Beta`, under the path of
/// the item: object path + "/" + parameter name or child component. A logger that ignores the level, such as
/// `BasicPhysicsErrorLogger`, counts them as errors, and then `ValDependencyErrors` is set.
///
/// When the environment variable `TARN_PHYSVAL_DONTUSECACHE` is on (see `BoolFromEnvironment`), every run evaluates
/// every rule afresh. Verdicts do not depend on it.
///
/// Lifetime. The database, the logger and the controller are not owned and must outlive the validator. The validator
/// does not keep the model and the roots that `validate` gets.
///
/// Use a validator from one thread at a time, and do not call `validate` from a rule or logger that it is using.
/// Several validators may share a database on several threads as long as no controller is attached to the database.
class TARN_EXPORT PhysicsValidator2 : public DependencyAnalyser {
 public:
  /// The phases to run: a bit set.
  enum ValType : std::int32_t { ValDependency = 1, ValGlobal = 2, ValAll = 3 };
  friend constexpr ValType operator|(ValType a, ValType b) noexcept {
    return static_cast<ValType>(static_cast<std::int32_t>(a) | static_cast<std::int32_t>(b));
  }

  /// The kinds of findings: a bit set. A bit is set when the logger held errors of that kind at the end of the phase.
  enum ValStatus : std::int32_t { ValStatusClean = 0, ValDependencyErrors = 1, ValGlobalErrors = 2, ValAllErrors = 3 };
  friend constexpr ValStatus operator|(ValStatus a, ValStatus b) noexcept {
    return static_cast<ValStatus>(static_cast<std::int32_t>(a) | static_cast<std::int32_t>(b));
  }

  /// `rules` must not be null.
  explicit PhysicsValidator2(PhysicsData const* rules);
  virtual ~PhysicsValidator2();
  PhysicsValidator2(PhysicsValidator2 const&) = delete;
  PhysicsValidator2& operator=(PhysicsValidator2 const&) = delete;

  /// Runs the phases of `type` that have not run yet for this model, and returns what all phases that ran for it found.
  /// The walk starts at each of `roots`, for example "/Case". With no roots the dependency phase counts as run and
  /// finds nothing.
  ///
  /// Without a logger it does nothing and returns `ValStatusClean`.
  ///
  /// Faults of the model are never thrown. A state that holds the empty path throws `std::out_of_range`, and nothing is
  /// changed. A path that cannot be read throws the `Error` of `TDFPath`. Exceptions of a rule or the logger reach the
  /// caller, and so does `std::bad_alloc`. The phase then counts as not run: the next call for the same model repeats
  /// it, and its messages follow those that the logger already has from the failed run. For another model, or when the
  /// failure came before the model was taken over, the next call starts from scratch. A failed run never gives a
  /// verdict.
  ///
  /// Comparing the model is linear in its size. A model that is known already costs nothing more.
  ValStatus validate(ValType type, ModelState const& state, std::vector<std::string> const& roots);

  /// Sets where findings are logged. Null, the initial state, switches validation off. A new logger does not get the
  /// earlier findings again as long as the model stays the same.
  void setLogger(PhysicsErrorLogger* logger) noexcept;

  /// Sets who gets each finding as data. The observer is called directly before the logger gets the sentence, and is
  /// not owned. Null, the initial state, means nobody. Set it before the first `validate` of a model, because a phase
  /// that has run for a model is not repeated. An exception of the observer ends the validation and reaches the caller.
  void setFaultObserver(PhysicsFaultObserver* observer) noexcept;

  /// Sets the controller that gathers beta messages while rules are evaluated. With null, the initial state, no beta
  /// messages are logged.
  ///
  /// Set it before the first `validate` of a model, because a phase that has run for a model is not repeated. It need
  /// not be attached to the database (`PhysicsData::attach`); the runs of this validator use it in any case. Attach a
  /// controller to the database only for other evaluations, and then use the database from one thread only.
  ///
  /// The validator clears the controller after every entry. Entries that are not evaluated (see above) give no beta
  /// messages.
  void setBetaLoggingController(BetaLoggingController* controller) noexcept;

  /// Returns the types of objects at the root of a model that count for validation; sorted, each once.
  [[nodiscard]] std::vector<std::string> getPertinentRootLevelTypes() const;

  /// Prints the model that the rules see to the standard output, as `printModelState` does.
  void dumpDB() const;

 private:
  using DependencyAnalyser::analyse;  // a walk makes sense within `validate` only

  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace tarn
