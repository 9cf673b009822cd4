// The frame of an update: forget what the last one changed, walk, collect what this one changed. What the changes are
// measured against is in the collaborators: the active tree logs from its last reset on, the trackers remember the walk
// before.

#include <tarn/ProvisionalTDF.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include <tarn/BoundsTracker.h>
#include <tarn/EvalContext.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/OperationTimer.h>
#include <tarn/PotentialUpdateTracker.h>

#include "provisional/NamedObjectProbe.h"

namespace tarn {

void ProvisionalTDF::updateActiveTDF(bool p_analyse) {
  try {
    OperationTimer timer("ProvisionalTDF::updateActiveTDF");
    rememberStartState(p_analyse);
    if (p_analyse) {
      timer.enterSection("analyse");
      analyse(m_activeRoot, m_evalContext.get());
    }
    timer.enterSection("extract updates");
    extractUpdateInformation();
  } catch (...) {
    recoverFromBrokenUpdate();
    throw;
  }
  if (!p_analyse) return;
  m_isWalkDue = false;
  m_defaultNamesOfUpdate.clear();
}

/// Ahead of an update without a walk, which would else publish what a broken one has left in the active tree, and of
/// edits that copy from there.
void ProvisionalTDF::completeBrokenUpdate() {
  if (!m_isWalkDue) return;
  updateActiveTDF(true);
  // Nobody reads what this update tells. So the edit tells it once more.
  forgetBoundsAndQuantities();
}

void ProvisionalTDF::rememberStartState(bool p_analyse) {
  m_activeTDF.resetChanges();
  m_potentialTracker->start();
  m_newlyUnavailParams.clear();
  m_quantityTracker->reset();
  m_boundsTracker->reset();
  m_emptyParams.clear();
  m_emptyTypedParams.clear();
  m_probe->clearPath();
  // Only a walk can fill it again.
  if (p_analyse) m_userNamedTypes.clear();
}

void ProvisionalTDF::extractUpdateInformation() {
  // Not while it is being changed.
  bool const wasStateCurrent = std::exchange(m_isStateCurrent, false);
  if (wasStateCurrent) {
    m_activeTDF.refreshState(m_activeState, m_activeRoot);
  } else {
    m_activeState = m_activeTDF.getState(m_activeRoot);
  }
  m_isStateCurrent = true;
  m_potentialTracker->synchWithTDF(&m_activeTDF);
  m_newlyUnavailParams = m_activeTDF.getDeletedParameters();

  if (!m_newlyUnavailParams.empty()) {
    // What is on offer now has not been lost.
    ParamsByObject const& potential = m_potentialTracker->getAddedParams();
    std::vector<std::pair<std::string_view, std::string_view>> onOffer(potential.begin(), potential.end());
    std::sort(onOffer.begin(), onOffer.end());
    std::erase_if(m_newlyUnavailParams, [&onOffer](ParamId const& param) {
      return std::binary_search(onOffer.begin(), onOffer.end(),
                                std::pair<std::string_view, std::string_view>(param.first, param.second));
    });
  }
  std::sort(m_userNamedTypes.begin(), m_userNamedTypes.end());
}

/// Makes the state usable again after an exception has left an update where it stood: no probe, recording and quantity
/// tracker on, the named types in order. What had been found potential is forgotten, for the tracker carries a walk
/// that was not compared on into the next one, where those items would stand twice; forgotten first, so that there is
/// nothing left for the probe to do that needs memory. Bounds and quantity types are forgotten because the lists that
/// would have told of them are not read.
void ProvisionalTDF::recoverFromBrokenUpdate() noexcept {
  m_potentialTracker->clearObjectReferences(std::string());
  if (m_probe->inTestNamedObject()) m_probe->deleteTestNamedObject();
  forgetBoundsAndQuantities();
  m_activeState.clear();
  m_isStateCurrent = false;
  m_isWalkDue = true;
  m_newlyUnavailParams.clear();
  m_emptyParams.clear();
  m_emptyTypedParams.clear();
  std::sort(m_userNamedTypes.begin(), m_userNamedTypes.end());
}

void ProvisionalTDF::forgetBoundsAndQuantities() noexcept {
  m_boundsTracker->forget();
  m_quantityTracker->forget();
}

}  // namespace tarn
