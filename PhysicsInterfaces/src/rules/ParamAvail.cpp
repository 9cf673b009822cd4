#include <tarn/ParamAvail.h>

#include "rules/BetaGathering.h"

namespace tarn {

bool ParamAvail::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  if (available && !available->evaluate(context, evalContext)) return false;
  if (!betaMessage.empty()) {
    if (auto* beta = betaTarget(evalContext, data_)) beta->gatherParamMessage(name, betaMessage);
  }
  return true;
}

}  // namespace tarn
