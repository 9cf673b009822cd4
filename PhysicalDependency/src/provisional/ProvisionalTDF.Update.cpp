// The frame of an update: forget what the last one changed, walk, collect what this one changed. The collaborators know
// what the changes are measured against: the active tree logs from its last reset on, the trackers remember the last
// walk.

#include <algorithm>
#include <string_view>
#include <typeinfo>
#include <utility>

#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/OperationTimer.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDFDB.h>

#include "journal/JournaledWrites.h"
#include "provisional/KeepingResults.h"
#include "provisional/ProvisionalTDFImpl.h"
#include "tree/DynamicTDFImpl.h"

namespace tarn {

void ProvisionalTDF::Impl::updateActiveTDF(bool p_analyse) {
  try {
    OperationTimer timer("ProvisionalTDF::updateActiveTDF");
    UpdateKind const kind = p_analyse ? kindOfWalk() : UpdateKind::WithoutWalk;
    rememberStartState(kind);
    if (p_analyse) {
      timer.enterSection("analyse");
      walk(kind);
    }
    timer.enterSection("extract updates");
    extractUpdateInformation();
  } catch (...) {
    recoverFromBrokenUpdate();
    throw;
  }
  m_walk.complete();
  if (!p_analyse) return;
  m_isWalkDue = false;
  m_facts.confirmDefaultNames();
}

/// A derived class may have hooks of its own, and beta messages are given whenever a rule is evaluated. So these see
/// every visit of every walk.
UpdateKind ProvisionalTDF::Impl::kindOfWalk() const noexcept {
  bool const needsEveryVisit =
      m_walksEverything || m_rules.attachedController() != nullptr || typeid(m_owner) != typeid(ProvisionalTDF);
  if (needsEveryVisit) return UpdateKind::FullWalk;
  return m_walk.isFollowing() ? UpdateKind::FollowedWalk : UpdateKind::FirstFollowedWalk;
}

void ProvisionalTDF::Impl::walk(UpdateKind p_kind) {
  if (p_kind != UpdateKind::FullWalk) {
    m_walk.run(m_activeRoot);
    return;
  }
  // During the walk the facts drop them whenever the active tree changes. Before it, the host may have changed the base
  // model without notice, so a walk begins with none.
  m_facts.keptResults().clear();
  KeepingResults const results(m_facts.keptResults());
  m_owner.analyse(m_activeRoot, m_evalContext.get());
}

void ProvisionalTDF::Impl::walkTried(std::string const& p_path, EvalContext* p_context) {
  m_owner.analyse(p_path, p_context);
}

/// Comes before an update without a walk, which would otherwise publish what a broken update has left in the active
/// tree, and before edits that copy from there.
void ProvisionalTDF::Impl::completeBrokenUpdate() {
  if (!m_isWalkDue) return;
  updateActiveTDF(true);
  // Nobody reads the lists of this update. So the edit reports bounds and quantity types once more.
  m_facts.forgetBoundsAndQuantities();
  m_walk.forget();
}

void ProvisionalTDF::Impl::rememberStartState(UpdateKind p_kind) {
  if (p_kind == UpdateKind::FullWalk) m_walk.forget();
  m_facts.beginUpdate(p_kind);
  journaled::assign(m_facts.recording(), m_newlyUnavailParams, {});
  m_probe.clearPath();
}

void ProvisionalTDF::Impl::extractUpdateInformation() {
  // Not current while it is being changed.
  bool const wasStateCurrent = std::exchange(m_isStateCurrent, false);
  DynamicTDF const& active = outcome().active;
  if (wasStateCurrent) {
    DynamicTDFAccess::refreshState(active, m_activeState, m_activeRoot, m_facts.recording());
  } else {
    journaled::assign(m_facts.recording(), m_activeState, active.getState(m_activeRoot));
  }
  m_isStateCurrent = true;
  m_facts.completeUpdate();

  m_newlyUnavailParams = active.getDeletedParameters();
  if (m_newlyUnavailParams.empty()) return;
  // Parameters that are on offer now have not been lost.
  ParamsByObject const& potential = outcome().offers.getAddedParams();
  std::vector<std::pair<std::string_view, std::string_view>> onOffer(potential.begin(), potential.end());
  std::sort(onOffer.begin(), onOffer.end());
  std::erase_if(m_newlyUnavailParams, [&onOffer](ParamId const& param) {
    return std::binary_search(onOffer.begin(), onOffer.end(),
                              std::pair<std::string_view, std::string_view>(param.first, param.second));
  });
}

std::size_t ProvisionalTDF::Impl::mark() {
  std::size_t const number = m_facts.marks().mark();
  try {
    m_facts.journal().add([this, isCurrent = m_isStateCurrent, isDue = m_isWalkDue]() noexcept {
      m_isStateCurrent = isCurrent;
      m_isWalkDue = isDue;
    });
  } catch (...) {
    m_facts.marks().release(number);
    throw;
  }
  return number;
}

void ProvisionalTDF::Impl::rollback(std::size_t p_mark) noexcept {
  if (p_mark >= m_facts.marks().open()) return;
  m_facts.marks().rollback(p_mark);
  m_walk.checkRollback();
}

void ProvisionalTDF::Impl::release(std::size_t p_mark) noexcept {
  if (p_mark < m_facts.marks().open()) m_facts.marks().release(p_mark);
}

/// Makes the state usable again after an exception has ended an update somewhere in the middle: no probe, recording and
/// quantity tracker on, the named types in order.
///
/// The potential items found so far are forgotten. The tracker would carry a walk that was not compared into the next
/// one, which would list those items twice. They are forgotten first, so that removing the probe needs no memory.
/// Bounds and quantity types are forgotten because nobody reads the lists that would have reported them.
void ProvisionalTDF::Impl::recoverFromBrokenUpdate() noexcept {
  Journal::CannotFail const scope(m_facts.journal());
  m_walk.abandon();
  m_facts.clearObjectReferences(std::string());
  if (m_probe.inTestNamedObject()) m_probe.deleteTestNamedObject();
  m_facts.forgetBoundsAndQuantities();
  journaled::assign(m_facts.recording(), m_activeState, {});
  m_isStateCurrent = false;
  m_isWalkDue = true;
  journaled::assign(m_facts.recording(), m_newlyUnavailParams, {});
  m_facts.abandonUpdate();
}

}  // namespace tarn
