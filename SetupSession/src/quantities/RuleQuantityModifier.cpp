#include <tarn/session/RuleQuantityModifier.h>

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
  QuantityType const* const type = rules_->findQuantityType(quantityType);
  if (type == nullptr || type->units().empty() || type->find(units) != nullptr) return units;
  return type->firstUnit();
}

}  // namespace tarn::session
