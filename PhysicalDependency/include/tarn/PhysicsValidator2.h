#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/DynamicTDF.h>
#include <tarn/Export.h>
#include <tarn/ModelState.h>

namespace tarn {

class BetaLoggingController;
class EvalCache;
class EvalContext;
class GlobalCheck;
class MissingObjRecord;
class PhysicsData;
class PhysicsErrorLogger;

/// Judges a whole model against the rule database, and tells the user in his own words what is physically wrong:
/// parameters and objects that are missing or not valid, values outside the allowed ones, checks of the model as a
/// whole that fail.
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
/// Order of calls. Make the validator over a database that is complete: the list of global checks and the pertinent
/// root types are read once, by the constructor. Set a logger before the first `validate`; without one nothing is done.
/// Set a `BetaLoggingController` if beta messages are wanted. Then call `validate` as often as the model changes.
///
/// Two phases. The dependency checks walk the model under the rules, from the given roots downwards, and log
/// dependency errors, each under the path of the object that it is about. The global checks are evaluated one after the
/// other, in the order of the database, and log global errors. The phases are independent: errors in one do not keep
/// the other from running.
///
/// What a walk reports. For each root in turn and from there depth first: the parameters of an object in the order of
/// its rules, then its child rules in their order; of a child rule first its own verdict, then what is found in the
/// children. Nothing is sorted afterwards. Entries whose rule has its validation relaxed are not judged at all.
/// A required object that is absent is reported only if it would have held a parameter that is available and not
/// relaxed, in itself or in a required object below it. To find that out the validator walks through an empty
/// placeholder, so conditions of rules see such an object for a while although the model has none.
///
/// What is remembered. Of the model only the objects count whose topmost object has a pertinent root type, see
/// `getPertinentRootLevelTypes`; the others are seen neither by the rules nor by the comparison that follows. When
/// `validate` gets a model that is the same, in these objects, as that of the call before, it repeats nothing: the
/// status and the logger's contents stand, and only a phase that has not run yet for this model does. Neither the roots
/// nor the logger take part in the comparison. So pass the same roots for the same model, and leave the logger's
/// contents alone between such calls. When the model differs, the logger is reset and everything begins anew. A new
/// validator takes a model that has no parameter in pertinent objects for one that it knows already.
///
/// Values. White space at the ends of a value is not part of it, and a parameter with an empty value counts as absent.
///
/// Beta messages of the rules' authors are logged as dependency errors of level `PhysicsErrorMsg::Beta`, under the path
/// of the item, object path + "/" + parameter name or child component. A logger that does not look at the level, like
/// `BasicPhysicsErrorLogger`, counts them as errors, and `ValDependencyErrors` is set then.
///
/// The environment variable `TARN_PHYSVAL_DONTUSECACHE`, when it is on, see `BoolFromEnvironment`, makes a run evaluate
/// every rule afresh. Verdicts do not depend on it.
///
/// Lifetime. Database, logger and controller are not owned and must outlive the validator. The model that is handed to
/// `validate` and the roots are not kept.
///
/// One thread at a time; `validate` must not be called from within a rule or a logger that it is using. Several
/// validators may share a database on several threads, as long as no controller is attached to that.
class TARN_EXPORT PhysicsValidator2 : public DependencyAnalyser {
 public:
  /// The phases to run: a bit set.
  enum ValType : std::int32_t { ValDependency = 1, ValGlobal = 2, ValAll = 3 };

  /// What was found: a bit set. A bit says that the logger held errors of that kind at the end of that phase.
  enum ValStatus : std::int32_t { ValStatusClean = 0, ValDependencyErrors = 1, ValGlobalErrors = 2, ValAllErrors = 3 };

  /// `rules` must not be null.
  explicit PhysicsValidator2(PhysicsData const* rules);
  virtual ~PhysicsValidator2();
  PhysicsValidator2(PhysicsValidator2 const&) = delete;
  PhysicsValidator2& operator=(PhysicsValidator2 const&) = delete;

  /// Runs the phases of `type` that have not run yet for this model, and returns what all phases that ran for it found.
  /// The walk starts at each of `roots`, "/Case" for example; with no roots it finds nothing, and has run all the same.
  ///
  /// Without a logger it does nothing and returns `ValStatusClean`.
  ///
  /// Faults of the model are never thrown. `std::out_of_range` is thrown for a state that holds the empty path, with
  /// nothing changed, and the `Error` of `TDFPath` for a path that cannot be read. What a rule or the logger throws
  /// reaches the caller, and so does `std::bad_alloc`; the phase then counts as not run, so the next call for the same
  /// model repeats it, behind the messages that the logger has from the broken one. For another model, and when the
  /// model itself could not be taken in, the next call begins anew. Nothing of a broken run is taken for a verdict.
  ///
  /// Linear in the size of the model to compare it; a model that is known already costs nothing beyond that.
  ValStatus validate(ValType type, ModelState const& state, std::vector<std::string> const& roots);

  /// Where findings go. Null, the state at the start, switches validation off. What was found before is not repeated to
  /// a new logger as long as the model stays the same.
  void setLogger(PhysicsErrorLogger* logger) noexcept;

  /// Gathers beta messages while the rules are evaluated; the validator empties it after every rule. It need not be
  /// attached to the database. Null, the state at the start: no beta messages are logged.
  void setBetaLoggingController(BetaLoggingController* controller) noexcept;

  /// The types of objects at the root of a model that count for validation; sorted, each once.
  [[nodiscard]] std::vector<std::string> getPertinentRootLevelTypes() const;

  /// Prints the model as the rules see it on the standard output, as `printModelState` does.
  void dumpDB() const;

  // The model as the rules see it; for the validator's own sources and tests, and not to be had from the library.
  class PVModelTDF;

 private:
  using DependencyAnalyser::analyse;  // a walk makes sense within `validate` only

  /// How far the treatment of absent required objects has come. Between two placeholders of one group it is off.
  enum MissingMode : std::int32_t { MissingOff = 0, MissingProbing = 1, MissingConfirmed = 2 };

  class Run;
  class RootFilter;
  class StateText;

  HandlerStatus onBeginObject(ObjBeginInfo const* info) override;
  HandlerStatus onBeginParam(std::string const& objPath, std::string const& name) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* info) override;
  HandlerStatus onEndObject(std::string const& objPath, bool required) override;

  ValStatus doValidate(ValType type, ModelState const& state, std::vector<std::string> const& roots,
                       bool useStateAsGiven);
  void reset(ModelState const& state, bool useStateAsGiven);
  bool takeState(ModelState const& state, bool useStateAsGiven, bool isKnown);
  void loadFilteredTree(ModelState const& state, bool useStateAsGiven);
  void evaluateGlobalChecks(EvalContext* evalContext);
  void setEvaluationCache(EvalCache* cache);
  void unsetEvaluationCache() noexcept;

  HandlerStatus checkAvailableParam(ParamAvailInfo const* info);
  HandlerStatus checkUnavailableParam(ParamAvailInfo const* info);
  void checkAllowedValues(std::string const& objPath, std::string const& name, std::string const& value,
                          ParamAvailInfo const* info);

  HandlerStatus checkAvailableChild(ChildAvailInfo const* info);
  HandlerStatus checkUnavailableChild(ChildAvailInfo const* info);
  void checkChildNames(std::string const& objPath, std::string const& type, ChildAvailInfo const* info);

  void beginMissingSingleton(std::string const& objPath, std::string const& type);
  void beginMissingNamedObjs(std::string const& objPath, std::string const& type,
                             std::vector<std::string> const& names);
  HandlerStatus checkParamMissingObj(ParamAvailInfo const* info);
  HandlerStatus checkChildMissingObj(ChildAvailInfo const* info);
  HandlerStatus endObjectMissingObj(std::string const& path);
  void logMissingObjError();
  void resetMissingObjMode();

  void logError(std::string const& objPath, std::string const& text);
  void logBetaMessage(std::string const& objPath, std::string const& item, std::vector<std::string> const& messages);
  void logIfParamBetaMessage(std::string const& objPath, std::string const& name);
  void logIfParamValueBetaMessage(std::string const& objPath, std::string const& name, std::string const& value);
  void logIfObjBetaMessage(std::string const& objPath, std::string const& type);
  void logIfObjBetaMessage(std::string const& objPath, std::string const& type, std::vector<std::string> const& names);
  void clearBetaMessages() noexcept;

  // Constant after construction.
  std::set<std::string, std::less<>> rootTypes_;
  std::vector<GlobalCheck const*> globalChecks_;

  // Set by the host.
  PhysicsErrorLogger* logger_ = nullptr;
  BetaLoggingController* betaController_ = nullptr;

  // What is known of the model last validated.
  std::string lastStateText_;
  DynamicTDF filteredTree_;
  /// Text and tree are those of one model, and the logger was reset for it. Not so after a failure on the way there.
  bool isStateKnown_ = true;
  ValStatus status_ = ValStatusClean;
  bool dependencyChecksDone_ = false;
  bool globalChecksDone_ = false;

  // The run under way; null and false between runs.
  PVModelTDF* currentView_ = nullptr;
  DynamicTDF::ObjectAt* currentObject_ = nullptr;  // the one of which parameters are checked
  EvalCache* evalCache_ = nullptr;
  bool useEvalCache_ = false;

  // The group of absent required objects that is being tried out; empty between groups.
  DynamicTDF missingTree_;
  std::unique_ptr<MissingObjRecord> missingRecord_;
  MissingMode missingMode_ = MissingOff;
};

}  // namespace tarn
