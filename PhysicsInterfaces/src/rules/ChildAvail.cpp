#include <tarn/ChildAvail.h>

#include "rules/BetaGathering.h"

namespace tarn {

bool ChildAvail::evaluate(TDFContext const& context, EvalContext* evalContext) const {
  if (available && !available->evaluate(context, evalContext)) return false;
  if (!betaMessage.empty()) {
    if (auto* beta = betaTarget(evalContext, data_)) beta->gatherObjMessage(type, betaMessage);
  }
  return true;
}

void ChildAvail::evaluateAllowedNames(TDFContext const& context, EvalContext* evalContext,
                                      std::vector<std::string>& out) const {
  if (allowedNamesSource) out = allowedNamesSource->evaluate(context, evalContext).vector();
}

void ChildAvail::evaluateDefaultNames(TDFContext const& context, EvalContext* evalContext,
                                      std::vector<std::string>& out) const {
  if (defaultNamesSource) out = defaultNamesSource->evaluate(context, evalContext).vector();
}

}  // namespace tarn
