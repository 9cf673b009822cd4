#pragma once

#include <tarn/BetaLoggingController.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

namespace tarn {

/// Where the beta messages of an evaluation go: to the controller of the evaluation, else to the one that is attached
/// to the database, else nowhere (null).
inline BetaLoggingController* betaTarget(EvalContext const* evalContext, PhysicsData const* data) noexcept {
  if (evalContext != nullptr && evalContext->getBetaLoggingController() != nullptr) {
    return evalContext->getBetaLoggingController();
  }
  return data != nullptr ? data->attachedController() : nullptr;
}

}  // namespace tarn
