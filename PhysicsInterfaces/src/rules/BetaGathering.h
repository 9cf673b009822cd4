#pragma once

#include <tarn/BetaLoggingController.h>
#include <tarn/EvalContext.h>
#include <tarn/PhysicsData.h>

namespace tarn {

/// The controller that collects the beta messages of an evaluation: that of the evaluation, otherwise the one that is
/// attached to the database, otherwise null.
inline BetaLoggingController* betaTarget(EvalContext const* evalContext, PhysicsData const* data) noexcept {
  if (evalContext != nullptr && evalContext->getBetaLoggingController() != nullptr) {
    return evalContext->getBetaLoggingController();
  }
  return data != nullptr ? data->attachedController() : nullptr;
}

}  // namespace tarn
