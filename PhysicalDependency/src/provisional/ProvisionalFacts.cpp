// The facts of a provisional state. Each operation reads or writes one of them; what they mean for an item is decided
// by the handlers of the walk.

#include "provisional/ProvisionalFacts.h"

#include <algorithm>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/StringUtilities.h>

#include "incremental/FactMarks.h"
#include "journal/JournaledWrites.h"
#include "provisional/ParamKey.h"
#include "provisional/dumpModelState.h"
#include "trackers/TrackerAccess.h"
#include "tree/DynamicTDFImpl.h"

namespace tarn {

ProvisionalFacts::ProvisionalFacts(QuantityModifier const* modifier) : m_outcome(modifier) {
  attachTo(m_journal);
  DynamicTDFAccess::attach(m_intent.guide, m_journal);
  DynamicTDFAccess::attach(m_outcome.active, m_journal);
}

void ProvisionalFacts::noteAtMark(Journal& p_journal) {
  TrackerAccess::noteAtMark(m_outcome.bounds, p_journal);
  TrackerAccess::noteAtMark(m_outcome.quantities, p_journal);
}

// Intent: reading.

bool ProvisionalFacts::isParamInGuide(std::string const& p_objPath, std::string const& p_name) const {
  return m_intent.guide.hasParameter(p_objPath, p_name);
}

std::string const& ProvisionalFacts::getGuideValue(std::string const& p_objPath, std::string const& p_name) const {
  return m_intent.guide.getParameterValue(p_objPath, p_name);
}

void ProvisionalFacts::getGuideValueAsList(std::string const& p_objPath, std::string const& p_name,
                                           Strings& p_values) const {
  m_intent.guide.getParamValueAsList(p_objPath, p_name, p_values);
}

bool ProvisionalFacts::isObjectInGuide(std::string const& p_path) const {
  return m_intent.guide.hasObject(p_path);
}

void ProvisionalFacts::getGuideNames(std::string const& p_objPath, std::string const& p_type, Strings& p_names) const {
  m_intent.guide.getChildObjectNamesByType(p_objPath, p_type, p_names);
}

ActivityState ProvisionalFacts::getParamActivity(std::string const& p_objPath, std::string const& p_name) const {
  return m_intent.decisions.ofParam(p_objPath, p_name);
}

ActivityState ProvisionalFacts::getObjActivity(std::string const& p_objPath) const {
  return m_intent.decisions.ofObject(p_objPath);
}

ProvisionalFacts::Strings const& ProvisionalFacts::getSubsetSelectionValues(std::string const& p_objPath,
                                                                            std::string const& p_name) const {
  return m_intent.selections.getSubsetSelectionValues(p_objPath, p_name);
}

bool ProvisionalFacts::areDefaultNamesApplied(std::string const& p_key) const {
  return m_intent.defaultNamesApplied.contains(p_key);
}

// Intent: writing.

void ProvisionalFacts::setGuideParam(std::string const& p_objPath, std::string const& p_name,
                                     std::string const& p_value) {
  std::string const* const before = m_intent.guide.findParameterValue(p_objPath, p_name);
  if (!m_isTrying && (before == nullptr || *before != p_value)) {
    journaled::append(recording(), m_outcome.writtenRequests, {p_objPath, p_name});
  }
  m_intent.guide.setParameter(p_objPath, p_name, p_value);
}

void ProvisionalFacts::deleteGuideParam(std::string const& p_objPath, std::string const& p_name) {
  m_intent.guide.deleteParameter(p_objPath, p_name);
}

bool ProvisionalFacts::createGuideObject(std::string const& p_parentPath, std::string const& p_type,
                                         std::string const& p_name) {
  return m_intent.guide.createObject(p_parentPath, p_type, p_name);
}

void ProvisionalFacts::deleteGuideObject(std::string const& p_path) {
  m_intent.guide.deleteObject(p_path);
}

void ProvisionalFacts::deleteGuideObjects(std::string const& p_objPath, std::string const& p_type) {
  Strings paths;
  if (m_intent.guide.getChildObjectPathsByType(p_objPath, p_type, paths)) m_intent.guide.deleteObjects(paths);
}

void ProvisionalFacts::updateGuide(ModelState const& p_state) {
  m_intent.guide.update(p_state.begin(), p_state.end(), false);
}

void ProvisionalFacts::setParamActivity(std::string const& p_objPath, std::string const& p_name, bool p_on) {
  std::string const key = ParamKey{p_objPath, p_name}.text();  // first, since nothing after the write may fail
  m_intent.decisions.setParam(p_objPath, p_name, p_on, recording());
  ownFactWritten(key);
}

void ProvisionalFacts::setObjActivity(std::string const& p_path, bool p_on) {
  m_intent.decisions.setObject(p_path, p_on, recording());
  ownFactWritten(p_path);
}

void ProvisionalFacts::eraseFromOptActivityMaps(std::string const& p_path) {
  m_intent.decisions.eraseFromOptActivityMaps(p_path, recording(),
                                              [this](std::string const& key) { ownFactWritten(key); });
}

void ProvisionalFacts::rememberSubsetValue(std::string const& p_objPath, std::string const& p_name,
                                           std::string const& p_value) {
  if (m_intent.selections.rememberSubsetValue(p_objPath, p_name, p_value, recording())) {
    ownFactWritten(ParamKey{p_objPath, p_name}.text());
  }
}

void ProvisionalFacts::rememberSubsetValues(std::string const& p_objPath, std::string const& p_name,
                                            Strings const& p_values) {
  if (m_intent.selections.rememberSubsetValues(p_objPath, p_name, p_values, recording())) {
    ownFactWritten(ParamKey{p_objPath, p_name}.text());
  }
}

void ProvisionalFacts::setDefaultNamesApplied(std::string const& p_key) {
  journaled::append(recording(), m_intent.defaultNamesOfUpdate, p_key);
  journaled::emplace(recording(), m_intent.defaultNamesApplied, p_key);
  ownFactWritten(p_key);
}

void ProvisionalFacts::startWithGuide(std::unique_ptr<DynamicTDF> p_guide, bool p_hasBaseObject) noexcept {
  Journal::CannotFail const scope(m_journal);
  DynamicTDFAccess::attach(*p_guide, m_journal);
  m_intent.guide.swap(*p_guide);
  if (m_journal.isRecording()) {
    m_journal.add([this, former = std::move(p_guide)]() noexcept { m_intent.guide.swap(*former); });
  }
  journaled::Erasing erasing(recording(), m_intent.defaultNamesApplied);
  for (std::string const& key : m_intent.defaultNamesOfUpdate) {
    auto const applied = m_intent.defaultNamesApplied.find(key);
    if (applied != m_intent.defaultNamesApplied.end()) erasing.erase(applied);
  }
  journaled::assign(recording(), m_intent.defaultNamesOfUpdate, {});
  journaled::assign(recording(), m_intent.hasBaseObject, p_hasBaseObject);
}

// Outcome: reading.

bool ProvisionalFacts::hasActiveObject(std::string const& p_path) const {
  return m_outcome.active.hasObject(p_path);
}

void ProvisionalFacts::getActiveNames(std::string const& p_objPath, std::string const& p_type, Strings& p_names) const {
  m_outcome.active.getChildObjectNamesByType(p_objPath, p_type, p_names);
}

bool ProvisionalFacts::getActivePaths(std::string const& p_objPath, std::string const& p_type, Strings& p_paths) const {
  return m_outcome.active.getChildObjectPathsByType(p_objPath, p_type, p_paths);
}

bool ProvisionalFacts::isBarren(std::string const& p_path) const {
  if (!m_outcome.active.isObjectEmpty(p_path)) return false;
  if (m_marks == nullptr) return !m_outcome.offers.hasObjPotentialChildren(p_path);
  return m_isTrying ? !m_triedOffers.hasObjPotentialChildren(p_path) : m_ending->offers == 0;
}

void ProvisionalFacts::dumpActive(std::string const& p_path, ModelState& p_state) const {
  dumpModelState(m_outcome.active, p_path, p_state);
}

// Outcome: writing.

void ProvisionalFacts::createObject(std::string const& p_objPath, std::string const& p_type,
                                    std::string const& p_name) {
  if (m_outcome.active.createObject(p_objPath, p_type, p_name)) {
    // As the tree does, which knows a singleton under its type alone.
    bool const isSingleton = p_name.empty() || p_name == p_type;
    noteCreated(p_objPath + PathUtils::pathSeparator + p_type +
                (isSingleton ? std::string() : PathUtils::nameSeparator + p_name));
  }
  activeWritten();
}

void ProvisionalFacts::deleteObject(std::string const& p_path) {
  m_outcome.active.deleteObject(p_path);
  activeWritten();
}

void ProvisionalFacts::deleteObjects(Strings const& p_paths) {
  m_outcome.active.deleteObjects(p_paths);
  activeWritten();
}

void ProvisionalFacts::deleteObjectUnrecorded(std::string const& p_path) {
  m_outcome.active.deleteObjectUnrecorded(p_path);
  activeWritten();
}

void ProvisionalFacts::mirrorBranch(DynamicTDF const& p_base, std::string const& p_path) {
  bool const isNew = !m_outcome.active.hasObject(p_path);
  m_outcome.active.copyBranch(&p_base, p_path);
  if (isNew) noteCreated(p_path);
  activeWritten();
}

/// An object that is only tried is never published.
void ProvisionalFacts::noteCreated(std::string p_path) {
  if (!m_isTrying) journaled::append(recording(), m_outcome.createdObjects, std::move(p_path));
}

void ProvisionalFacts::deleteParam(std::string const& p_objPath, std::string const& p_name) {
  m_outcome.active.deleteParameter(p_objPath, p_name);
  activeWritten();
}

bool ProvisionalFacts::updateParam(std::string const& p_objPath, std::string const& p_name,
                                   std::string const& p_value) {
  m_outcome.active.setParameter(p_objPath, p_name, p_value);
  activeWritten();
  return StringUtilities::trimmed(p_value).empty();
}

bool ProvisionalFacts::updateParam(std::string const& p_objPath, std::string const& p_name,
                                   ParamAllowedValues const& p_allowed, std::string const& p_value) {
  m_outcome.active.setParameter(p_objPath, p_name, p_allowed, p_value);
  activeWritten();
  return StringUtilities::trimmed(p_value).empty();
}

void ProvisionalFacts::updateBounds(std::string const& p_objPath, std::string const& p_name,
                                    ParamAvailInfo const* p_info) {
  TrackerAccess::updateBounds(m_outcome.bounds, p_objPath, p_name, p_info, recording());
}

std::string ProvisionalFacts::modifyQuantity(ModelTDF const* p_view, std::string const& p_objPath,
                                             std::string const& p_name, std::string const& p_value,
                                             ParamAvailInfo const* p_info) {
  if (m_marks != nullptr && TrackerAccess::mayAnswerOtherwise(m_outcome.quantities, *p_info)) m_marks->repeatVisit();
  return TrackerAccess::modifyQuantity(m_outcome.quantities, p_view, p_objPath, p_name, p_value, p_info, recording());
}

void ProvisionalFacts::addPotentialObject(std::string const& p_path) {
  deleteObject(p_path);
  if (m_visit == nullptr) {
    m_outcome.offers.addObject(p_path);
  } else if (m_isTrying) {
    m_triedOffers.addObject(p_path);
  } else {
    m_visit->offeredObjects.push_back(p_path);
  }
}

void ProvisionalFacts::addPotentialParam(std::string const& p_objPath, std::string const& p_name) {
  deleteParam(p_objPath, p_name);
  if (m_visit == nullptr) {
    m_outcome.offers.addParam(p_objPath, p_name);
  } else if (m_isTrying) {
    m_triedOffers.addParam(p_objPath, p_name);
  } else {
    m_visit->offersParam = true;
  }
}

void ProvisionalFacts::addPotentialParam(std::string const& p_objPath, std::string const& p_name,
                                         ParamAllowedValues const& p_allowed) {
  deleteParam(p_objPath, p_name);
  if (m_visit == nullptr) {
    m_outcome.offers.addParam(p_objPath, p_name, p_allowed);
  } else if (m_isTrying) {
    m_triedOffers.addParam(p_objPath, p_name);
  } else {
    m_visit->offersParam = true;
    m_visit->allowed = p_allowed;
  }
}

void ProvisionalFacts::clearObjectReferences(std::string const& p_path) {
  if (m_visit == nullptr) m_outcome.offers.clearObjectReferences(p_path);
  m_triedOffers.clear();
}

void ProvisionalFacts::addEmptyParam(std::string const& p_objPath, std::string const& p_name, bool p_isTyped) {
  if (m_visit != nullptr) {
    m_visit->isEmpty = true;
    m_visit->isEmptyTyped = p_isTyped;
    return;
  }
  m_outcome.emptyParams.push_back(ParamKey{p_objPath, p_name}.text());
  if (p_isTyped) m_outcome.emptyTypedParams.push_back(m_outcome.emptyParams.back());
}

void ProvisionalFacts::addUserNamedType(std::string const& p_parentPath, std::string const& p_type) {
  if (m_visit != nullptr) {
    m_visit->offersName = true;
    return;
  }
  m_outcome.userNamedTypes.emplace_back(p_parentPath, p_type);
}

void ProvisionalFacts::publishChanges(bool p_on) noexcept {
  if (p_on) {
    m_outcome.active.startRecordingUpdates();
  } else {
    m_outcome.active.stopRecordingUpdates();
  }
  m_outcome.quantities.enable(p_on);
  m_isTrying = !p_on;
  if (m_marks != nullptr) m_marks->setMuted(!p_on);
}

// The frame of an update.

void ProvisionalFacts::beginUpdate(UpdateKind p_kind) {
  m_outcome.active.resetChanges();
  journaled::assign(recording(), m_outcome.createdObjects, {});
  journaled::assign(recording(), m_outcome.writtenRequests, {});
  TrackerAccess::reset(m_outcome.quantities, recording());
  TrackerAccess::reset(m_outcome.bounds, recording());
  if (p_kind == UpdateKind::FollowedWalk) {
    m_listings.beginChanges();
    return;
  }
  if (p_kind == UpdateKind::WithoutWalk && m_marks != nullptr) {
    m_listings.hide();
    return;
  }
  m_listings.beginAll();
  m_outcome.offers.start();
  m_outcome.emptyParams.clear();
  m_outcome.emptyTypedParams.clear();
  if (p_kind != UpdateKind::WithoutWalk) m_outcome.userNamedTypes.clear();
}

void ProvisionalFacts::completeUpdate() {
  if (m_marks != nullptr) {
    m_listings.complete();
    return;
  }
  m_outcome.offers.synchWithTDF(&m_outcome.active);
  std::sort(m_outcome.userNamedTypes.begin(), m_outcome.userNamedTypes.end());
}

void ProvisionalFacts::confirmDefaultNames() noexcept {
  Journal::CannotFail const scope(m_journal);
  if (!m_intent.defaultNamesOfUpdate.empty()) journaled::assign(recording(), m_intent.defaultNamesOfUpdate, {});
}

void ProvisionalFacts::abandonUpdate() noexcept {
  m_outcome.emptyParams.clear();
  m_outcome.emptyTypedParams.clear();
  std::sort(m_outcome.userNamedTypes.begin(), m_outcome.userNamedTypes.end());
}

void ProvisionalFacts::forgetBoundsAndQuantities() noexcept {
  Journal::CannotFail const scope(m_journal);
  TrackerAccess::forget(m_outcome.bounds, recording());
  TrackerAccess::forget(m_outcome.quantities, recording());
}

void ProvisionalFacts::follow(FactMarks* p_marks) noexcept {
  m_openMarks.follow(p_marks);
  m_marks = p_marks;
  DynamicTDFAccess::storeOf(m_outcome.active).setListener(p_marks == nullptr ? nullptr : &p_marks->activeListener());
  DynamicTDFAccess::storeOf(m_intent.guide).setListener(p_marks == nullptr ? nullptr : &p_marks->guideListener());
  if (p_marks != nullptr) return;
  m_listings.clear();
  m_visit = nullptr;
  m_ending = nullptr;
}

bool ProvisionalFacts::hasAmbiguousPaths() const noexcept {
  return DynamicTDFAccess::storeOf(m_outcome.active).hasOtherwiseListed() ||
         DynamicTDFAccess::storeOf(m_intent.guide).hasOtherwiseListed();
}

/// For a fact of an item that is not in a tree. The item is known by the key under which its decision is kept.
void ProvisionalFacts::ownFactWritten(std::string_view p_key) noexcept {
  if (m_marks != nullptr) m_marks->onOwnFact(p_key);
}

/// A rule may have read the fact that has just changed, so no kept result is valid any more. Most writes of a walk
/// change nothing.
void ProvisionalFacts::activeWritten() noexcept {
  std::uint64_t const revision = m_outcome.active.getRevision();
  if (revision == m_revision) return;
  m_revision = revision;
  m_keptResults.clear();
}

}  // namespace tarn
