#include <tarn/session/RuleQuantityModifier.h>

#include <algorithm>

#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFContext.h>

namespace tarn::session {

int RuleQuantityModifier::getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                          std::string& quantityType) const {
  ParamValueDef const* values = rules_->getParamValueDef(PathUtils::typePathOf(objPath), name, true);
  if (values == nullptr || !values->quantityType) return 0;
  EvalContext evaluation(model);
  std::string type = values->evaluateQuantityType(rules_->getRules(), TDFContext(objPath), &evaluation);
  if (!rules_->quantityTypes().contains(type)) return 0;
  quantityType = std::move(type);
  return 1;
}

std::string RuleQuantityModifier::getQuantityUnits(std::string const& quantityType, std::string const& units) const {
  auto const type = rules_->quantityTypes().find(quantityType);
  if (type == rules_->quantityTypes().end() || type->second.empty()) return units;
  auto const& listed = type->second;
  return std::find(listed.begin(), listed.end(), units) != listed.end() ? units : listed.front();
}

}  // namespace tarn::session
