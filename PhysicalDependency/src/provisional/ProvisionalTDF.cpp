// The provisional state as its users see it: construction, the operations, and the getters. The work is done in
// `ProvisionalTDF::Impl`, by concern: the start in ProvisionalTDF.Initialise.cpp, the frame of an update in
// .Update.cpp, the user's edits in .Edits.cpp, and what a walk does to parameters and children in .Parameters.cpp and
// .Children.cpp.
//
// One idea carries all of it: intent (guide and decisions) and outcome (active tree) are kept apart. Edits change the
// intent only. Each walk computes the outcome again from intent and rules, never from the old outcome. So no edit has
// to undo another, and items that the rules withdraw come back by themselves.

#include <tarn/ProvisionalTDF.h>

#include <algorithm>

#include <tarn/EvalContext.h>
#include <tarn/ExpandablePath.h>
#include <tarn/PathUtils.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFContext.h>

#include "provisional/ProvisionalTDFImpl.h"

namespace tarn {

namespace {

/// Callers may write the root as "/". Trees and views know it only as "".
std::string canonicalRoot(std::string const& path) {
  return path == PathUtils::pathSeparator ? std::string() : path;
}

}  // namespace

ProvisionalTDF::Impl::Impl(ProvisionalTDF& p_owner, PhysicsData const& p_rules, QuantityModifier const* p_modifier,
                           std::string const& p_activeRoot)
    : m_owner(p_owner), m_rules(p_rules), m_activeRoot(canonicalRoot(p_activeRoot)), m_facts(p_modifier) {}

/// The trees go with their facts, and would tell the walk of it.
ProvisionalTDF::Impl::~Impl() {
  m_walk.forget();
}

ProvisionalTDF::ProvisionalTDF(PhysicsData const* p_data, std::string const& p_activeRoot)
    : ProvisionalTDF(p_data, nullptr, p_activeRoot) {}

ProvisionalTDF::ProvisionalTDF(PhysicsData const* p_data, QuantityModifier const* p_modifier,
                               std::string const& p_activeRoot)
    : DependencyAnalyser(p_data), m_impl(std::make_unique<Impl>(*this, *p_data, p_modifier, p_activeRoot)) {}

ProvisionalTDF::~ProvisionalTDF() = default;

void ProvisionalTDF::setObserver(ProvTDFObserver* p_observer) noexcept {
  m_impl->setObserver(p_observer);
}

// The start and the edits.

void ProvisionalTDF::initialise(ModelTDF const* p_base, ModelState const& p_guideState) {
  m_impl->initialise(p_base, p_guideState);
}

void ProvisionalTDF::initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base,
                                       ModelState const& p_guideState) {
  m_impl->initialiseBasedOn(p_basedOnPath, p_base, p_guideState);
}

void ProvisionalTDF::baseUpdate(ModelTDF const* p_base) {
  m_impl->baseUpdate(p_base);
}

std::optional<Refusal> ProvisionalTDF::apply(Edit const& p_edit) {
  return m_impl->apply(p_edit);
}

// An edit has strings of its own: callers hand in some that they were given by reference, and that the update sweeps
// away.

void ProvisionalTDF::activeSetParam(std::string const& p_objPath, std::string const& p_name,
                                    std::string const& p_value) {
  (void)apply(Edit::setParam(p_objPath, p_name, p_value));
}

void ProvisionalTDF::activateOptParam(std::string const& p_objPath, std::string const& p_name) {
  (void)apply(Edit::activateParam(p_objPath, p_name));
}

void ProvisionalTDF::deactivateOptParam(std::string const& p_objPath, std::string const& p_name) {
  (void)apply(Edit::deactivateParam(p_objPath, p_name));
}

void ProvisionalTDF::activateOptObject(std::string const& p_path) {
  (void)apply(Edit::activateObject(p_path));
}

void ProvisionalTDF::deactivateOptObject(std::string const& p_path) {
  (void)apply(Edit::deactivateObject(p_path));
}

void ProvisionalTDF::addNewNamedObject(std::string const& p_path) {
  (void)apply(Edit::addObject(p_path));
}

void ProvisionalTDF::removeNamedObject(std::string const& p_path) {
  (void)apply(Edit::removeObject(p_path));
}

void ProvisionalTDF::duplicateNamedObject(std::string const& p_path, std::string const& p_newName) {
  (void)apply(Edit::duplicateObject(p_path, p_newName));
}

void ProvisionalTDF::renameNamedObject(std::string const& p_path, std::string const& p_newName) {
  (void)apply(Edit::renameObject(p_path, p_newName));
}

ProvisionalTDF::Mark ProvisionalTDF::mark() {
  return Mark(m_impl->mark());
}

void ProvisionalTDF::rollback(Mark p_mark) noexcept {
  m_impl->rollback(p_mark.m_number);
}

void ProvisionalTDF::release(Mark p_mark) noexcept {
  m_impl->release(p_mark.m_number);
}

// The walk.

DependencyAnalyser::HandlerStatus ProvisionalTDF::onBeginObject(ObjBeginInfo const* p_info) {
  return m_impl->onBeginObject(p_info);
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onBeginParam(std::string const& /*p_objPath*/,
                                                               std::string const& /*p_name*/) {
  return Continue;
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onParamCheck(ParamAvailInfo const* p_info) {
  return m_impl->onParamCheck(p_info);
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onChildCheck(ChildAvailInfo const* p_info) {
  return m_impl->onChildCheck(p_info);
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onEndObject(std::string const& p_path, bool p_required) {
  return m_impl->onEndObject(p_path, p_required);
}

// The getters.

std::string ProvisionalTDF::getActiveRoot() const {
  return m_impl->activeRoot();
}

ModelState const& ProvisionalTDF::getActiveTDFState() const noexcept {
  return m_impl->activeState();
}

/// The tree also has the objects above the active root, which are no part of the state.
bool ProvisionalTDF::hasObject(std::string const& p_path) const {
  return m_impl->isInitialised() && StringUtilities::isPathRootedAt(m_impl->activeRoot(), p_path) &&
         m_impl->outcome().active.hasObject(p_path);
}

bool ProvisionalTDF::hasParameter(std::string const& p_objPath, std::string const& p_name) const {
  return m_impl->outcome().active.hasParameter(p_objPath, p_name);
}

std::string const& ProvisionalTDF::getParamValue(std::string const& p_objPath, std::string const& p_name) const {
  return m_impl->outcome().active.getParameterValue(p_objPath, p_name);
}

std::vector<std::string> ProvisionalTDF::getAllowedParamValues(std::string const& p_objPath,
                                                               std::string const& p_name) const {
  return getAllowedValueData(p_objPath, p_name).allowedValues;
}

std::vector<std::string> ProvisionalTDF::getSubsetAllowedParamValues(std::string const& p_objPath,
                                                                     std::string const& p_name) const {
  // Only the active tree has the subset that is widened by the user's selections. A potential item has the rule's own
  // subset, which is not what it will offer.
  ParamAllowedValues const& active = m_impl->outcome().active.getAllowedValueData(p_objPath, p_name);
  return active.hasSubset ? active.subsetValues.vector() : std::vector<std::string>();
}

std::vector<std::string> ProvisionalTDF::getPathExpansion(std::string const& p_path,
                                                          std::string const& p_contextPath) const {
  if (!m_impl->isInitialised()) return {};
  ExpandablePath const pattern(nullptr, p_path, {false, true, true});
  return pattern.expand(TDFContext(p_contextPath), m_impl->evalContext());
}

DynamicTDF const& ProvisionalTDF::getActiveTree() const noexcept {
  return m_impl->outcome().active;
}

DynamicTDF const& ProvisionalTDF::getGuideTree() const noexcept {
  return m_impl->intent().guide;
}

ModelTDF const* ProvisionalTDF::getModelOfRules() const noexcept {
  return m_impl->isInitialised() ? m_impl->evalContext()->getDB() : nullptr;
}

ParamAllowedValues const& ProvisionalTDF::getAllowedValueData(std::string const& p_objPath,
                                                              std::string const& p_name) const {
  ParamAllowedValues const& active = m_impl->outcome().active.getAllowedValueData(p_objPath, p_name);
  return active.hasAllowedValues ? active : m_impl->outcome().offers.getAllowedValueData(p_objPath, p_name);
}

namespace {

std::optional<bool> decisionOf(ActivityState state) noexcept {
  if (state == ActivityState::Unset) return std::nullopt;
  return state == ActivityState::SetOn;
}

}  // namespace

std::optional<bool> ProvisionalTDF::getParamDecision(std::string const& p_objPath, std::string const& p_name) const {
  return decisionOf(m_impl->intent().decisions.ofParam(p_objPath, p_name));
}

std::optional<bool> ProvisionalTDF::getObjectDecision(std::string const& p_path) const {
  return decisionOf(m_impl->intent().decisions.ofObject(p_path));
}

std::vector<std::string> const& ProvisionalTDF::getEmptyParameters(bool p_typedOnly) const noexcept {
  return p_typedOnly ? m_impl->outcome().emptyTypedParams : m_impl->outcome().emptyParams;
}

bool ProvisionalTDF::isUserNamedTypeAvailable(std::string const& p_parentPath, std::string const& p_type) const {
  auto const& types = m_impl->outcome().userNamedTypes;
  return std::binary_search(types.begin(), types.end(), std::pair(p_parentPath, p_type));
}

std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getModParams() const noexcept {
  return m_impl->outcome().active.getModifiedParameters();
}

std::vector<std::string> const& ProvisionalTDF::getCreatedObjects() const noexcept {
  return m_impl->outcome().createdObjects;
}

std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getOverriddenRequests() const noexcept {
  return m_impl->outcome().writtenRequests;
}

/// As logged, including what became potential later in the same walk. Callers who draw new items rely on this order.
std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getNewlyAvailParams() const noexcept {
  return m_impl->outcome().active.getAddedParameters();
}

std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getNewlyUnavailParams() const noexcept {
  return m_impl->newlyUnavailParams();
}

std::vector<std::string> const& ProvisionalTDF::getDeletedObjects() const noexcept {
  return m_impl->outcome().active.getDeletedObjects();
}

std::map<std::string, std::pair<std::string, std::string>> const& ProvisionalTDF::getModBoundsParams() const noexcept {
  return m_impl->outcome().bounds.getUpdatedBounds();
}

std::map<std::string, std::string> const& ProvisionalTDF::getModQuantParams() const noexcept {
  return m_impl->outcome().quantities.getModifiedParams();
}

std::vector<std::string> const& ProvisionalTDF::getAvailPotObjects() const noexcept {
  return m_impl->outcome().offers.getObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getAvailPotParams() const noexcept {
  return m_impl->outcome().offers.getParams();
}

std::vector<std::string> const& ProvisionalTDF::getNewlyAvailPotObjects() const noexcept {
  return m_impl->outcome().offers.getAddedObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getNewlyAvailPotParams() const noexcept {
  return m_impl->outcome().offers.getAddedParams();
}

std::vector<std::string> const& ProvisionalTDF::getNewlyUnavailPotObjects() const noexcept {
  return m_impl->outcome().offers.getDeletedObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getNewlyUnavailPotParams() const noexcept {
  return m_impl->outcome().offers.getDeletedParams();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getModPotParams() const noexcept {
  return m_impl->outcome().offers.getChangedParams();
}

}  // namespace tarn
