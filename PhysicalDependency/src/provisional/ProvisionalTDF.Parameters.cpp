// How a walk handles parameters. Each value is worked out anew from rule, guide and decision; the old value in the
// active tree plays no part. There are four cases of an available parameter, each with its handler: whether it is
// wanted (G: by a decision of the user, or without a decision by the guide), and whether it has allowed values (AV).
//
// The guide is read and not written, except that it takes over overrides of the rules. So the value stays when the
// override no longer holds. Only parameters without allowed values have quantity types and bounds.

#include <algorithm>
#include <utility>

#include <tarn/ProvisionalTDFDB.h>
#include <tarn/StringUtilities.h>
#include <tarn/TARNAssertImpl.h>

#include "provisional/ProvisionalTDFImpl.h"
#include "provisional/ValueLists.h"

namespace tarn {

namespace {

/// Whether the override is in force, and its value.
using Override = std::pair<bool, std::string>;

/// Adds every allowed value that `list` lacks at its end, in byte order.
void completeList(std::vector<std::string> const& allowed, std::vector<std::string>& list) {
  std::vector<std::string> present = list;
  std::sort(present.begin(), present.end());
  std::vector<std::string> wanted = allowed;
  std::sort(wanted.begin(), wanted.end());
  for (std::string& value : wanted) {
    if (!std::binary_search(present.begin(), present.end(), value)) list.push_back(std::move(value));
  }
}

/// The types for which an editor marks a missing value. Others are choices, which show it by themselves.
bool isTypedInput(TDFParam::Type type) {
  switch (type) {
    case TDFParam::Integer:
    case TDFParam::IntegerList:
    case TDFParam::Real:
    case TDFParam::RealList:
    case TDFParam::String:
      return true;
    case TDFParam::Logical:
    case TDFParam::LogicalList:
    case TDFParam::StringList:
      return false;
  }
  return false;
}

}  // namespace

DependencyAnalyser::HandlerStatus ProvisionalTDF::Impl::onParamCheck(ParamAvailInfo const* p_info) {
  if (p_info->isAvailable()) {
    handleAvailableParam(p_info);
  } else {
    handleUnavailableParam(p_info);
  }
  return Continue;
}

void ProvisionalTDF::Impl::handleAvailableParam(ParamAvailInfo const* p_info) {
  std::string const& objPath = p_info->getObjPath();
  std::string const& name = p_info->getName();
  bool const hasAllowedValues = p_info->getAllowedValues().hasAllowedValues;
  bool isEmpty = false;
  if (isWantedByGuide(objPath, name)) {
    isEmpty = hasAllowedValues ? handle_G_AV_AvailParam(objPath, name, p_info)
                               : handle_G_NoAV_AvailParam(objPath, name, p_info);
  } else {
    isEmpty = hasAllowedValues ? handle_NoG_AV_AvailParam(objPath, name, p_info)
                               : handle_NoG_NoAV_AvailParam(objPath, name, p_info);
  }
  if (!isEmpty || m_probe.inTestNamedObject() || p_info->hasValidationRelaxed()) return;
  m_facts.addEmptyParam(objPath, name, isTypedInput(p_info->getType()));
}

/// The parameter is gone and not potential. Its value in the guide and the decision on it stay.
void ProvisionalTDF::Impl::handleUnavailableParam(ParamAvailInfo const* p_info) {
  m_facts.deleteParam(p_info->getObjPath(), p_info->getName());
}

bool ProvisionalTDF::Impl::handle_G_AV_AvailParam(std::string const& p_objPath, std::string const& p_name,
                                                  ParamAvailInfo const* p_info) {
  ParamAllowedValues allowed = p_info->getAllowedValues();
  bool const hasSubset = allowed.hasSubset;
  Override const override = p_info->hasValueOverride() ? p_info->getValueOverride(allowed) : Override();
  auto const& [isOverridden, overrideValue] = override;

  std::string value;
  if (!p_info->isListType()) {
    std::string const& candidate = isOverridden ? overrideValue : m_facts.getGuideValue(p_objPath, p_name);
    // A refused candidate stays in the guide and is back as soon as it is allowed.
    if (allowed.isAllowedValue(candidate, false)) {
      value = candidate;
      if (hasSubset) m_facts.rememberSubsetValue(p_objPath, p_name, value);
    }
  } else {
    std::vector<std::string> list;
    if (isOverridden) {
      list = StringUtilities::stringToVector(overrideValue, ',');
    } else {
      m_facts.getGuideValueAsList(p_objPath, p_name, list);
    }
    if (!allowed.allowsAnyValue) keepAllowedOnly(allowed.allowedValues, list);
    if (hasSubset) m_facts.rememberSubsetValues(p_objPath, p_name, list);
    // Only the counts decide: a list as long as the full one is left to the user, even if it names a value twice.
    if (p_info->isCompleteListRequired() && list.size() != allowed.allowedValues.size() && !allowed.allowsAnyValue) {
      completeList(allowed.allowedValues, list);
    }
    value = StringUtilities::vectorToString(list, ',');
  }

  if (hasSubset) {
    allowed = SubsetSelections::widenAllowedSubset(m_facts.getSubsetSelectionValues(p_objPath, p_name), allowed);
  }
  if (value.empty()) {
    if (!p_info->isRequired() && m_facts.getParamActivity(p_objPath, p_name) != ActivityState::SetOn) {
      // On offer until the guide's value is allowed or the user switches it on. A refused override does not reach the
      // guide here, so it cannot replace what the user entered.
      m_facts.addPotentialParam(p_objPath, p_name, allowed);
      return false;
    }
    value = p_info->getDefault(allowed);
  }
  if (isOverridden) m_facts.setGuideParam(p_objPath, p_name, overrideValue);
  return m_facts.updateParam(p_objPath, p_name, allowed, value);
}

bool ProvisionalTDF::Impl::handle_G_NoAV_AvailParam(std::string const& p_objPath, std::string const& p_name,
                                                    ParamAvailInfo const* p_info) {
  Override const override = p_info->hasValueOverride() ? p_info->getValueOverride() : Override();
  if (override.first) return updateFreeParam(p_objPath, p_name, override.second, true, p_info);

  // Copied, since what follows may write to the guide.
  std::string value = m_facts.getGuideValue(p_objPath, p_name);
  if (value.empty() && !m_facts.isParamInGuide(p_objPath, p_name)) {
    if (m_facts.getParamActivity(p_objPath, p_name) != ActivityState::SetOn) {
      // Readers of failure reports know this failure by this line number.
      TARNAssertImpl::assertFail("getParamActivity(p_objPath, p_name) == SetOn", "ProvisionalTDF", 1927);
    }
    if (p_info->hasDefault()) value = p_info->getDefault();
  }
  return updateFreeParam(p_objPath, p_name, value, false, p_info);
}

bool ProvisionalTDF::Impl::handle_NoG_AV_AvailParam(std::string const& p_objPath, std::string const& p_name,
                                                    ParamAvailInfo const* p_info) {
  // The rule's own subset: earlier selections widen the subset only of parameters that are wanted.
  ParamAllowedValues const& allowed = p_info->getAllowedValues();
  if (!p_info->isRequired()) {
    m_facts.addPotentialParam(p_objPath, p_name, allowed);
    return false;
  }
  auto [isOverridden, value] = p_info->getValueOverride(allowed);
  if (isOverridden) {
    m_facts.setGuideParam(p_objPath, p_name, value);
  } else {
    value = p_info->getDefault(allowed);
  }
  // A complete list consists of all allowed values, whatever was just written to the guide. The guide counts in the
  // next walk, where the parameter is wanted.
  if (p_info->isCompleteListRequired()) value = StringUtilities::vectorToString(allowed.allowedValues, ',');
  return m_facts.updateParam(p_objPath, p_name, allowed, value);
}

bool ProvisionalTDF::Impl::handle_NoG_NoAV_AvailParam(std::string const& p_objPath, std::string const& p_name,
                                                      ParamAvailInfo const* p_info) {
  if (!p_info->isRequired()) {
    m_facts.addPotentialParam(p_objPath, p_name);
    return false;
  }
  Override const override = p_info->hasValueOverride() ? p_info->getValueOverride() : Override();
  if (override.first) return updateFreeParam(p_objPath, p_name, override.second, true, p_info);
  return updateFreeParam(p_objPath, p_name, p_info->hasDefault() ? p_info->getDefault() : std::string(), false, p_info);
}

/// Sets a parameter that may take any text. The guide takes over an override as it is written to the active tree, so
/// with the units of its quantity.
bool ProvisionalTDF::Impl::updateFreeParam(std::string const& p_objPath, std::string const& p_name,
                                           std::string const& p_value, bool p_isOverride,
                                           ParamAvailInfo const* p_info) {
  std::string const value = m_facts.modifyQuantity(modelOfRules(), p_objPath, p_name, p_value, p_info);
  m_facts.updateBounds(p_objPath, p_name, p_info);
  if (p_isOverride) m_facts.setGuideParam(p_objPath, p_name, value);
  return m_facts.updateParam(p_objPath, p_name, value);
}

/// The model for the modifier. Its reads are followed like those of rules.
ModelTDF const* ProvisionalTDF::Impl::modelOfRules() const noexcept {
  return m_walk.isFollowing() ? m_walk.model() : m_provisionalDB.get();
}

bool ProvisionalTDF::Impl::isWantedByGuide(std::string const& p_objPath, std::string const& p_name) const {
  ActivityState const activity = m_facts.getParamActivity(p_objPath, p_name);
  if (activity != ActivityState::Unset) return activity == ActivityState::SetOn;
  return m_facts.isParamInGuide(p_objPath, p_name);
}

}  // namespace tarn
