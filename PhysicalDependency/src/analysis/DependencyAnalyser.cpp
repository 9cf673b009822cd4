// The walk under the rules. It keeps the open objects on a stack of its own, so that a deep model cannot exhaust the
// thread's stack. Each entry of that stack is a rule cursor and the children found for its current child entry.
//
// The times at which the model is read are essential: only directly after the hook for the entry in question, because
// hooks create and delete the items of the entry. Do not move a read before its hook.
#include <tarn/DependencyAnalyser.h>

#include <deque>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ObjDependency.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFPath.h>

#include "analysis/AvailInfoAdapters.h"

namespace tarn {

namespace {

/// Thrown to leave the walk when a hook returns `Abort`. The message helps in a debugger.
struct AbortException {
  std::string message;
};

}  // namespace

/// An object whose `onEndObject` has not been called yet.
struct DependencyAnalyser::OpenObject {
  /// The arguments after `isRequired` construct the cursor.
  template <class... CursorParts>
  explicit OpenObject(bool isRequired, CursorParts&&... parts)
      : required(isRequired), dep(std::forward<CursorParts>(parts)...) {}

  [[nodiscard]] std::string const& path() const noexcept { return dep.getObjPath(); }

  /// The path of the child that is entered next.
  [[nodiscard]] std::string nextChildPath() const {
    std::string const& name = childNames[entered];
    std::string const& type = dep.getChildType();
    std::string childPath;
    childPath.reserve(path().size() + type.size() + name.size() + 2);
    childPath.append(path()).append(1, '/').append(type);
    if (!dep.isChildSingleton()) childPath.append(1, ':').append(name);
    return childPath;
  }

  bool required;
  ObjDependency dep;
  // The children found for the current child entry of `dep`. The first `entered` of them have been entered. The name of
  // a singleton is not used.
  std::vector<std::string> childNames;
  std::size_t entered = 0;
  // Their rules, if the type can be in a path. Then the path of a child can be read if its name can be in a path.
  bool hasPlainChildType = false;
  ObjDependDef const* childRules = nullptr;
};

DependencyAnalyser::DependencyAnalyser(PhysicsData const* physicsData) noexcept : physicsData_(physicsData) {}

void DependencyAnalyser::analyse(std::string const& path, EvalContext* evalContext) {
  evalContext_ = evalContext;
  model_ = evalContext->getDB();
  try {
    checkTree(TDFPath(path).getFullPath());
  } catch (AbortException const&) {
    // A hook ended the walk. That is no error.
  }
}

void DependencyAnalyser::checkTree(std::string const& root) {
  std::deque<OpenObject> open;  // the innermost last; a deque, because it does not move the others when it grows
  open.emplace_back(true, root, evalContext_, physicsData_);
  beginObject(open.back(), false);
  while (!open.empty()) {
    OpenObject& object = open.back();
    if (object.entered < object.childNames.size()) {
      enterChild(open);
    } else if (!object.dep.isDoneChild()) {
      object.dep.nextChild();
      checkChild(object);
    } else {
      onEndObject(object.path(), object.required);
      open.pop_back();
    }
  }
}

void DependencyAnalyser::enterChild(std::deque<OpenObject>& open) {
  OpenObject& parent = open.back();
  bool const required = parent.dep.isChildRequired();
  bool const coupled = parent.dep.isChildCoupled();
  bool const isPath =
      parent.hasPlainChildType && (parent.dep.isChildSingleton() || isPlainWord(parent.childNames[parent.entered]));
  if (isPath) {
    open.emplace_back(required, parent.nextChildPath(), parent.childRules, evalContext_, physicsData_);
  } else {
    open.emplace_back(required, parent.nextChildPath(), evalContext_, physicsData_);
  }
  ++parent.entered;
  beginObject(open.back(), coupled);
}

// Walks the parameters and starts the first child entry. `checkTree` continues with the others. When an object is not
// walked, both walks of its cursor stay in their initial state, done.
void DependencyAnalyser::beginObject(OpenObject& object, bool coupled) {
  ObjBeginInfoAdapter const info(object.path(), object.dep, object.required, coupled);
  paramScope_ = ParamScope::All;
  HandlerStatus const status = onBeginObject(&info);
  if (!object.dep.isValid() || status == SkipObject) return;
  constexpr std::size_t fewEntries = 32;
  if (paramScope_ != ParamScope::All && object.dep.numParams() > fewEntries) {
    presentParams_.clear();
    model_->getParameterNames(object.path(), presentParams_);
    object.dep.limitParams(presentParams_, paramScope_ == ParamScope::PresentOrRequired);
  }
  // The order matters: the context rule value found among the parameters selects the children.
  checkParams(object.path(), object.dep);
  object.dep.firstChild();
  checkChild(object);
}

void DependencyAnalyser::checkParams(std::string const& path, ObjDependency& dep) {
  for (dep.firstParam(); !dep.isDoneParam(); dep.nextParam()) {
    bool const available = isParamAvailable(path, dep);
    // Only for a context rule it matters whether the model has the parameter.
    if (!available || !dep.isParamContextRule() || !model_->hasParameter(path, dep.getParamName())) continue;
    dep.setContextRuleValue(model_->getParameterValue(path, dep.getParamName()));
  }
}

bool DependencyAnalyser::isParamAvailable(std::string const& path, ObjDependency const& dep) {
  if (onBeginParam(path, dep.getParamName()) != Abort) {
    ParamAllowedValues allowed;
    bool const available = dep.isParamAvailable(allowed);
    ParamAvailInfoAdapter const info(path, available, dep, allowed);
    if (onParamCheck(&info) != Abort) return available;
  }
  throw AbortException{"DependencyAnalyser::isParamAvailable - aborting on path" + path +
                       " on availability analysis of parameter " + dep.getParamName()};
}

void DependencyAnalyser::checkChild(OpenObject& object) {
  object.childNames.clear();
  object.entered = 0;
  ObjDependency const& dep = object.dep;
  if (dep.isDoneChild() || !isChildAvailable(object.path(), dep)) return;

  std::string const& type = dep.getChildType();
  if (dep.isChildSingleton()) {
    object.childNames.emplace_back();
    if (!model_->hasObject(object.nextChildPath())) object.childNames.clear();
  } else if (!model_->getChildObjectNamesByType(object.path(), type, object.childNames)) {
    object.childNames.clear();
  }
  if (object.childNames.empty()) return;
  object.hasPlainChildType = isPlainWord(type);
  if (object.hasPlainChildType) {
    object.childRules = physicsData_->getObjDependDef(dep.getRules()->typePath() + '/' + type, true);
  }
}

bool DependencyAnalyser::isChildAvailable(std::string const& path, ObjDependency const& dep) {
  ObjDependency::AllowedNameData names;
  bool const available = dep.isChildAvailable(names);
  ChildAvailInfoAdapter const info(path, available, dep, names);
  if (onChildCheck(&info) != Abort) return available;
  throw AbortException{"DependencyAnalyser::isChildAvailable - aborting on path" + path +
                       " on availability analysis of child object " + dep.getChildType()};
}

bool DependencyAnalyser::isParamValueEqual(std::string const& objPath, std::string const& name,
                                           std::string const& value) const {
  ObjDependency dep(objPath, evalContext_, physicsData_);
  for (dep.firstParam(); !dep.isDoneParam(); dep.nextParam()) {
    if (dep.getParamName() == name) {
      return TDFParam::valuesEqual(dep.getParamType(), model_->getParameterValue(objPath, name), value);
    }
  }
  return false;
}

}  // namespace tarn
