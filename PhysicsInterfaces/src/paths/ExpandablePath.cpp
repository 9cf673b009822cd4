#include <tarn/ExpandablePath.h>

namespace tarn {

ExpandablePath::ExpandablePath(DataVerifyInterface const* /*verifier*/, std::string const& pathPattern,
                               Attributes /*attributes*/)
    : pattern_(pathPattern) {}

std::vector<std::string> ExpandablePath::expand(TDFContext const& context, EvalContext* evalContext) const {
  return pattern_.expand(context, *evalContext->getDB());
}

}  // namespace tarn
