#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/ObjectReader.h>
#include <tarn/PertinentRoots.h>
#include <tarn/PhysicsFault.h>
#include <tarn/PhysicsValidator2.h>

#include "validation/MissingObjRecord.h"
#include "validation/StateText.h"

namespace tarn {

class EvalCache;
class EvalContext;
class GlobalCheck;
class PVModelTDF;

/// The run of a validation, its verdicts and what is remembered between runs. The hooks of `PhysicsValidator2` forward
/// to the operations of the same name.
struct [[gnu::visibility("hidden")]] PhysicsValidator2::Impl {
  /// How far the treatment of absent required objects has come. Between two placeholders of one group it is off.
  enum MissingMode : std::int32_t { MissingOff = 0, MissingProbing = 1, MissingConfirmed = 2 };

  class Run;

  Impl(PhysicsValidator2 & self, PhysicsData const& rules);

  HandlerStatus onBeginObject(ObjBeginInfo const* info);
  HandlerStatus onParamCheck(ParamAvailInfo const* info);
  HandlerStatus onChildCheck(ChildAvailInfo const* info);
  HandlerStatus onEndObject(std::string const& objPath);

  ValStatus doValidate(ValType type, ModelState const& state, std::vector<std::string> const& roots,
                       bool useStateAsGiven);
  void reset(ModelState const& state, bool useStateAsGiven);
  bool takeState(ModelState const& state, bool useStateAsGiven, bool isKnown);
  void loadFilteredTree(ModelState const& state, bool useStateAsGiven);
  void evaluateGlobalChecks(EvalContext * evalContext);
  void setEvaluationCache(EvalCache * cache);
  void unsetEvaluationCache() noexcept;

  /// The value in the model, or null when it lacks the parameter.
  [[nodiscard]] std::string const* findValue(ParamAvailInfo const* info) const;
  [[nodiscard]] bool hasSingleton(ChildAvailInfo const* info) const;
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

  void observe(PhysicsFault const& fault);
  void logError(PhysicsFault fault, std::string const& text);
  void logBetaMessage(std::string const& objPath, std::string const& item, std::vector<std::string> const& messages);
  void logIfParamBetaMessage(ParamAvailInfo const* info);
  void logIfParamValueBetaMessage(std::string const& objPath, std::string const& name, std::string const& value);
  void logIfObjBetaMessage(std::string const& objPath, std::string const& type);
  void logIfObjBetaMessage(std::string const& objPath, std::string const& type, std::vector<std::string> const& names);
  void clearBetaMessages() noexcept;

  /// The walker: runs call its `analyse` and `limitParams`.
  PhysicsValidator2& self_;

  // Constant after construction.
  PertinentRoots roots_;
  std::vector<std::pair<std::string, GlobalCheck const*>> globalChecks_;  // by name, in the order of the rules

  // Set by the host.
  PhysicsErrorLogger* logger_ = nullptr;
  PhysicsFaultObserver* observer_ = nullptr;
  BetaLoggingController* betaController_ = nullptr;

  // The model that was validated last.
  LinesOfState lastState_;
  DynamicTDF filteredTree_;
  /// True when text and tree belong to one model and the logger was reset for it. False after a failure before that.
  bool isStateKnown_ = true;
  ValStatus status_ = ValStatusClean;
  bool dependencyChecksDone_ = false;
  bool globalChecksDone_ = false;

  // The current run. Null and false between runs.
  PVModelTDF* currentView_ = nullptr;
  // The object whose parameters are being checked. Without a reader it is not in the model.
  ObjectHandle currentObject_;
  ObjectReader const* currentReader_ = nullptr;
  EvalCache* evalCache_ = nullptr;
  bool useEvalCache_ = false;

  // The group of absent required objects that is being tried out. Empty between groups.
  DynamicTDF missingTree_;
  MissingObjRecord missingRecord_;
  MissingMode missingMode_ = MissingOff;
};

}  // namespace tarn
