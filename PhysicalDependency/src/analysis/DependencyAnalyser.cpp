// The walk under the rules. It keeps the open objects on a stack of its own, so that a deep model cannot exhaust the
// thread's stack. Each entry of that stack is a rule cursor and the children found for its current child entry.
//
// The times at which the model is read are essential: only directly after the hook for the entry in question, because
// hooks create and delete the items of the entry. Do not move a read before its hook.
#include <tarn/DependencyAnalyser.h>

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ObjDependency.h>
#include <tarn/ObjectReader.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFPath.h>

#include "analysis/AvailInfoAdapters.h"

namespace tarn {

namespace {

/// Thrown to leave the walk when a hook returns `Abort`. The message helps in a debugger.
struct AbortException {
  std::string message;
};

[[noreturn]] void abortAt(std::string const& where, std::string const& path, std::string const& kind,
                          std::string const& item) {
  throw AbortException{where + " - aborting on path" + path + " on availability analysis of " + kind + " " + item};
}

}  // namespace

/// An object whose `onEndObject` has not been called yet.
struct DependencyAnalyser::OpenObject {
  OpenObject(EvalContext* context, PhysicsData const* rules) : dep(std::string(), nullptr, context, rules) {}

  [[nodiscard]] std::string const& path() const noexcept { return dep.getObjPath(); }

  /// Makes `childPath` the path of the child that is entered next.
  void getNextChildPath(std::string& childPath) const {
    childPath.assign(path()).append(1, '/').append(dep.getChildType());
    if (!dep.isChildSingleton()) childPath.append(1, ':').append(children[entered].name);
  }

  bool required = false;
  ObjDependency dep;
  // The children found for the current child entry of `dep`. The first `entered` of them have been entered. The name of
  // a singleton is not used. The handle of a child saves its look-up, and is empty when the model has no reader.
  std::vector<ObjectReader::Child> children;
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

/// The open objects, the innermost last. An object that was left stays for the next one of its depth, which uses its
/// memory.
class DependencyAnalyser::OpenObjects {
 public:
  OpenObjects(EvalContext* context, PhysicsData const* rules) noexcept : context_(context), rules_(rules) {}

  [[nodiscard]] bool empty() const noexcept { return count_ == 0; }
  [[nodiscard]] OpenObject& innermost() noexcept { return *objects_[count_ - 1]; }
  /// Exchanges the path of the object with `path`.
  OpenObject& enter(std::string& path, ObjDependDef const* rules, ObjectHandle const& found, bool isRequired) {
    if (count_ == objects_.size()) objects_.push_back(std::make_unique<OpenObject>(context_, rules_));
    OpenObject& object = *objects_[count_++];
    object.dep.moveTo(path, rules, found);
    object.required = isRequired;
    object.children.clear();
    object.entered = 0;
    return object;
  }
  void leave() noexcept { --count_; }

 private:
  EvalContext* context_;
  PhysicsData const* rules_;
  std::vector<std::unique_ptr<OpenObject>> objects_;
  std::size_t count_ = 0;
};

void DependencyAnalyser::checkTree(std::string root) {
  OpenObjects open(evalContext_, physicsData_);
  ObjectReader const* const reader = model_->objectReader();
  ObjectHandle const found = reader == nullptr ? ObjectHandle() : reader->findObject(root);
  ObjDependDef const* const rules = physicsData_->getObjDependDef(PathUtils::typePathOf(root), true);
  beginObject(open.enter(root, rules, found, true), false);
  while (!open.empty()) {
    OpenObject& object = open.innermost();
    if (object.entered < object.children.size()) {
      enterChild(open);
    } else if (!object.dep.isDoneChild()) {
      object.dep.nextChild();
      checkChild(object);
    } else {
      onEndObject(object.path(), object.required);
      open.leave();
    }
  }
}

void DependencyAnalyser::enterChild(OpenObjects& open) {
  OpenObject& parent = open.innermost();
  bool const required = parent.dep.isChildRequired();
  bool const coupled = parent.dep.isChildCoupled();
  ObjectReader::Child const& child = parent.children[parent.entered];
  parent.getNextChildPath(path_);
  ObjDependDef const* rules = parent.childRules;
  if (!parent.hasPlainChildType || !(parent.dep.isChildSingleton() || isPlainWord(child.name))) {
    rules = physicsData_->getObjDependDef(PathUtils::typePathOf(TDFPath(path_).getFullPath()), true);
  }
  ++parent.entered;
  beginObject(open.enter(path_, rules, child.object, required), coupled);
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
  ParamAllowedValues allowed;
  for (dep.firstParam(); !dep.isDoneParam(); dep.nextParam()) {
    if (allowed.hasAllowedValues) allowed = ParamAllowedValues();
    bool const available = isParamAvailable(path, dep, allowed);
    // Only for a context rule it matters whether the model has the parameter.
    if (!available || !dep.isParamContextRule() || !model_->hasParameter(path, dep.getParamName())) continue;
    dep.setContextRuleValue(model_->getParameterValue(path, dep.getParamName()));
  }
}

/// `allowed` must be a fresh record.
bool DependencyAnalyser::isParamAvailable(std::string const& path, ObjDependency const& dep,
                                          ParamAllowedValues& allowed) {
  if (onBeginParam(path, dep.getParamName()) != Abort) {
    bool const available = dep.isParamAvailable(allowed);
    ParamAvailInfoAdapter const info(path, available, dep, allowed);
    if (onParamCheck(&info) != Abort) return available;
  }
  abortAt("DependencyAnalyser::isParamAvailable", path, "parameter", dep.getParamName());
}

void DependencyAnalyser::checkChild(OpenObject& object) {
  object.children.clear();
  object.entered = 0;
  ObjDependency const& dep = object.dep;
  if (dep.isDoneChild() || !isChildAvailable(object.path(), dep)) return;

  findChildren(object);
  if (object.children.empty()) return;
  std::string const& type = dep.getChildType();
  object.hasPlainChildType = isPlainWord(type);
  if (object.hasPlainChildType) {
    path_.assign(dep.getRules()->typePath()).append(1, '/').append(type);
    object.childRules = physicsData_->getObjDependDef(path_, true);
  }
}

void DependencyAnalyser::findChildren(OpenObject& object) {
  ObjDependency const& dep = object.dep;
  std::string const& type = dep.getChildType();
  if (ObjectReader const* const reader = dep.getObject().readerIn(*model_)) {
    if (!dep.isChildSingleton()) {
      reader->getChildren(dep.getObject(), type, object.children);
      return;
    }
    if (isPlainWord(type)) {
      ObjectHandle const child = reader->findSingleton(dep.getObject(), type);
      if (!child.isEmpty()) object.children.push_back({std::string(), child});
      return;
    }
  }
  if (dep.isChildSingleton()) {
    object.children.emplace_back();
    object.getNextChildPath(path_);
    if (!model_->hasObject(path_)) object.children.clear();
    return;
  }
  std::vector<std::string> names;
  model_->getChildObjectNamesByType(object.path(), type, names);
  object.children.reserve(names.size());
  for (std::string& name : names) object.children.push_back({std::move(name), {}});
}

bool DependencyAnalyser::isChildAvailable(std::string const& path, ObjDependency const& dep) {
  ObjDependency::AllowedNameData names;
  bool const available = dep.isChildAvailable(names);
  ChildAvailInfoAdapter const info(path, available, dep, names);
  if (onChildCheck(&info) != Abort) return available;
  abortAt("DependencyAnalyser::isChildAvailable", path, "child object", dep.getChildType());
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
