// The rule cursor on one object. The object's rules provide the walks. The cursor adds the liveness of the current
// entry, the context rule value that selects the next entries, and the kept results of default and bounds, for which
// several hooks ask. Availability and overrides are evaluated at every question.
#include <tarn/ObjDependency.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <stdexcept>
#include <tuple>

#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFPath.h>

namespace tarn {

namespace {

/// Reading the path checks it.
ObjDependDef const* rulesFor(std::string const& objPath, PhysicsData const& physicsData) {
  return physicsData.getObjDependDef(PathUtils::typePathOf(TDFPath(objPath).getFullPath()), true);
}

// `question` is the name in the fixed text. For some questions it is the name of another one.
[[noreturn]] void failInternally(char const* question) {
  throw std::runtime_error(std::string("ObjDependency::") + question + " - internal error");
}

template <typename T>
T const& known(T const* current, char const* question) {
  if (current == nullptr) failInternally(question);
  return *current;
}

}  // namespace

ObjDependency::ObjDependency(std::string const& objPath, EvalContext* evalContext, PhysicsData const* physicsData)
    : evalContext_(evalContext),
      physicsData_(physicsData),
      context_(objPath),
      objDef_(rulesFor(objPath, *physicsData)) {}

void ObjDependency::moveTo(std::string& objPath, ObjDependDef const* rules, ObjectHandle const& object) noexcept {
  context_.moveTo(objPath, object);
  objDef_ = rules;
  limited_ = false;
  initCurrParam({nullptr, false});
  currChild_ = nullptr;
  currChildLive_ = false;
  contextRuleValue_.clear();
}

void ObjDependency::firstParam() {
  contextRuleValue_.clear();
  stopsPassed_ = 0;
  nextPlace_ = 0;
  nextParam();
}

void ObjDependency::nextParam() {
  if (objDef_ == nullptr) return;
  if (limited_) {
    initCurrParam(nextOfLimited());
  } else if (nextPlace_ < objDef_->params().size()) {
    initCurrParam(objDef_->paramAvailAt(nextPlace_++, contextRuleValue_));
  } else {
    initCurrParam({nullptr, false});
  }
}

void ObjDependency::goToParam(std::size_t place, std::string const& contextRuleValue) {
  contextRuleValue_ = contextRuleValue;
  initCurrParam(objDef_->paramAvailAt(place, contextRuleValue_));
}

void ObjDependency::limitParams(std::vector<std::string> const& names, bool andRequired) {
  if (objDef_ == nullptr) return;
  limited_ = true;
  // One bit for each entry, which gives the stops in order and each once. Sorting thousands of them takes longer.
  constexpr std::size_t bits = 64;
  std::vector<std::uint64_t> marks(numParams() / bits + 1);
  auto const mark = [&marks](std::size_t place) { marks[place / bits] |= std::uint64_t{1} << place % bits; };
  for (std::string const& name : names) {
    std::size_t const place = objDef_->placeOfParam(name);
    if (place != ObjDependDef::noPlace) mark(place);
  }
  if (andRequired) std::for_each(objDef_->requiredParams().begin(), objDef_->requiredParams().end(), mark);
  stops_.clear();
  for (std::size_t word = 0; word < marks.size(); ++word) {
    for (std::uint64_t left = marks[word]; left != 0; left &= left - 1) {
      stops_.push_back(word * bits + static_cast<std::size_t>(std::countr_zero(left)));
    }
  }
}

std::pair<ParamAvail const*, bool> ObjDependency::nextOfLimited() {
  if (stopsPassed_ == stops_.size()) return {nullptr, false};
  return objDef_->paramAvailAt(stops_[stopsPassed_++], contextRuleValue_);
}

void ObjDependency::initCurrParam(std::pair<ParamAvail const*, bool> entry) {
  currParam_ = entry.first;
  currParamLive_ = entry.second;
  defaultDone_ = false;
  boundsDone_ = false;
  // The same as PhysicsData::getParamValueDef for the object's type path and the name, without the two look-ups.
  currParamDef_ = currParam_ != nullptr ? currParam_->valueDef() : nullptr;
}

void ObjDependency::setContextRuleValue(std::string const& value) {
  if (currParam_ != nullptr) contextRuleValue_ = value;
}

bool ObjDependency::isParamAvailable(ParamAllowedValues& out) const {
  if (currParam_ == nullptr || !currParamLive_) return false;
  if (!currParam_->evaluate(context_, evalContext_)) return false;
  if (currParamDef_ == nullptr || currParamDef_->allowedValueKind == ParamValueDef::NoAllowedValues) return true;
  out = currParamDef_->evaluateAllowedValues(physicsData_->getRules(), context_, evalContext_);
  return currParamDef_->availableWithNoAllowedValues || !out.allowedValues.empty();
}

std::string const& ObjDependency::getParamName() const {
  return known(currParam_, "getParamName").name;
}

bool ObjDependency::isParamRequired() const {
  return known(currParam_, "isParamRequired").required;
}

bool ObjDependency::hasParamValidationRelaxed() const {
  return known(currParam_, "hasParamValidationRelaxed").validationRelaxed;
}

bool ObjDependency::isParamContextRule() const {
  return known(currParam_, "isParamContextRule").contextRule;
}

TDFParam::Type ObjDependency::getParamType() const {
  return known(currParamDef_, "getParamType").type;
}

bool ObjDependency::isCompleteListRequired() const {
  return known(currParamDef_, "isCompleteListRequired").completeListRequired;
}

bool ObjDependency::hasParamDynamicBounds() const {
  return known(currParamDef_, "hasParamDynamicBounds").hasVariableBounds();
}

bool ObjDependency::hasParamDefault() const {
  return known(currParamDef_, "hasParamDefault").hasDefault();
}

bool ObjDependency::hasParamValueOverride() const {
  return known(currParamDef_, "hasParamOverride").hasValueOverride();
}

std::pair<std::string, std::string> const& ObjDependency::getParamBounds() const {
  ParamValueDef const& def = known(currParamDef_, "getParamBounds");
  if (!boundsDone_) {
    bounds_ = def.evaluateBounds(physicsData_->getRules(), context_, evalContext_);
    boundsDone_ = true;
  }
  return bounds_;
}

std::string const& ObjDependency::getParamDefault() const {
  ParamValueDef const& def = known(currParamDef_, "getParamDefault");
  if (!defaultDone_) {
    defaultValue_ = def.evaluateDefault(physicsData_->getRules(), context_, evalContext_);
    defaultDone_ = true;
  }
  return defaultValue_;
}

std::string const& ObjDependency::getParamDefault(ParamAllowedValues const& allowed) const {
  ParamValueDef const& def = known(currParamDef_, "getParamDefault");
  if (!defaultDone_) {
    defaultValue_ = def.evaluateDefault(physicsData_->getRules(), context_, evalContext_, allowed);
    defaultDone_ = true;
  }
  return defaultValue_;
}

std::pair<bool, std::string> ObjDependency::getParamValueOverride() const {
  return known(currParamDef_, "getParamValueOverride")
      .evaluateValueOverride(physicsData_->getRules(), context_, evalContext_);
}

std::pair<bool, std::string> ObjDependency::getParamValueOverride(ParamAllowedValues const& allowed) const {
  return known(currParamDef_, "getParamOverride")
      .evaluateValueOverride(physicsData_->getRules(), context_, evalContext_, allowed);
}

void ObjDependency::firstChild() {
  if (objDef_ != nullptr)
    std::tie(currChild_, currChildLive_) = objDef_->firstChildAvail(childCursor_, contextRuleValue_);
}

void ObjDependency::nextChild() {
  if (objDef_ != nullptr) std::tie(currChild_, currChildLive_) = objDef_->nextChildAvail(childCursor_);
}

void ObjDependency::goToChild(std::size_t place, std::string const& contextRuleValue) {
  contextRuleValue_ = contextRuleValue;
  std::tie(currChild_, currChildLive_) = objDef_->childAvailAt(place, contextRuleValue_);
}

bool ObjDependency::isChildAvailable(AllowedNameData& out) const {
  out.hasAllowedNames = false;
  out.allowedNames.clear();
  if (currChild_ == nullptr || !currChildLive_) return false;
  if (!currChild_->evaluate(context_, evalContext_)) return false;
  if (currChild_->allowedNamesSource != nullptr) {
    out.hasAllowedNames = true;
    currChild_->evaluateAllowedNames(context_, evalContext_, out.allowedNames);
    return !out.allowedNames.empty();
  }
  currChild_->evaluateDefaultNames(context_, evalContext_, out.defaultNames);
  return true;
}

std::string const& ObjDependency::getChildType() const {
  return known(currChild_, "getChildType").type;
}

bool ObjDependency::isChildRequired() const {
  return known(currChild_, "isChildRequired").required;
}

// Shares the text of the question above.
bool ObjDependency::isChildSingleton() const {
  return known(currChild_, "isChildRequired").singleton;
}

bool ObjDependency::isChildCoupled() const {
  ChildAvail const& child = known(currChild_, "isChildCoupled");
  return child.coupled || child.allowedNamesSource != nullptr;
}

// Shares the text of the question about a parameter.
bool ObjDependency::hasChildValidationRelaxed() const {
  return known(currChild_, "hasParamValidationRelaxed").validationRelaxed;
}

}  // namespace tarn
