#include <tarn/ObjectCheck.h>

namespace tarn {

bool ObjectCheck::passes(TDFContext const& context, EvalContext* evalContext) const {
  if (when && !when->evaluate(context, evalContext)) return true;
  return !check || check->evaluate(context, evalContext);
}

std::string ObjectCheck::evaluateMessage(TDFContext const& context, EvalContext* evalContext) const {
  return message ? message->evaluate(context, evalContext) : std::string();
}

}  // namespace tarn
