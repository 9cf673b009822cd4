// The provisional state: how it comes to be and what it answers. The start stands in ProvisionalTDF.Initialise.cpp, the
// frame of an update in .Update.cpp, the user's edits in .Edits.cpp, and what a walk under the rules does to parameters
// and children in .Parameters.cpp and .Children.cpp.
//
// Everything rests on one idea. Intent (guide and decisions) and result (active tree) are kept apart: edits change
// intent only, and each walk works the result out anew from intent and rules, never from the old result. So no edit has
// to undo another, and what the rules take away comes back by itself.

#include <tarn/ProvisionalTDF.h>

#include <algorithm>

#include <tarn/BoundsTracker.h>
#include <tarn/EvalContext.h>
#include <tarn/ExpandablePath.h>
#include <tarn/ModifiedQuantityTracker.h>
#include <tarn/PathUtils.h>
#include <tarn/PotentialUpdateTracker.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/TDFContext.h>

#include "provisional/ActivityDecisions.h"
#include "provisional/NamedObjectProbe.h"
#include "provisional/SubsetSelections.h"

namespace tarn {

namespace {

/// "/" is another way to write the root, but not one that trees and views know.
std::string canonicalRoot(std::string const& path) {
  return path == PathUtils::pathSeparator ? std::string() : path;
}

}  // namespace

ProvisionalTDF::ProvisionalTDF(PhysicsData const* p_data, std::string const& p_activeRoot)
    : ProvisionalTDF(p_data, nullptr, p_activeRoot) {}

ProvisionalTDF::ProvisionalTDF(PhysicsData const* p_data, QuantityModifier const* p_modifier,
                               std::string const& p_activeRoot)
    : DependencyAnalyser(p_data),
      m_activeRoot(canonicalRoot(p_activeRoot)),
      // Of guide and base nobody reads a log, which would grow with every edit.
      m_guideTDF(false),
      m_activity(std::make_unique<ActivityDecisions>()),
      m_subsetSelections(std::make_unique<SubsetSelections>()),
      m_baseTDF(false),
      m_activeTDF(true),
      m_boundsTracker(std::make_unique<BoundsTracker>()),
      m_quantityTracker(std::make_unique<ModifiedQuantityTracker>(p_modifier)),
      m_potentialTracker(std::make_unique<PotentialUpdateTracker>()),
      m_probe(std::make_unique<NamedObjectProbe>(m_activeTDF, m_guideTDF, *m_potentialTracker, *m_quantityTracker)) {}

ProvisionalTDF::~ProvisionalTDF() = default;

std::string const& ProvisionalTDF::getParamValue(std::string const& p_objPath, std::string const& p_name) const {
  return m_activeTDF.getParameterValue(p_objPath, p_name);
}

std::vector<std::string> ProvisionalTDF::getAllowedParamValues(std::string const& p_objPath,
                                                               std::string const& p_name) const {
  ParamAllowedValues const& active = m_activeTDF.getAllowedValueData(p_objPath, p_name);
  return active.hasAllowedValues ? active.allowedValues
                                 : m_potentialTracker->getAllowedValueData(p_objPath, p_name).allowedValues;
}

std::vector<std::string> ProvisionalTDF::getSubsetAllowedParamValues(std::string const& p_objPath,
                                                                     std::string const& p_name) const {
  // Only the active tree knows a subset that is widened by what the user selected; the potential items have the rule's
  // own, which is not what will be offered.
  ParamAllowedValues const& active = m_activeTDF.getAllowedValueData(p_objPath, p_name);
  return active.hasSubset ? active.subsetValues : SharedStrings();
}

std::vector<std::string> ProvisionalTDF::getPathExpansion(std::string const& p_path,
                                                          std::string const& p_contextPath) const {
  if (!isInitialised()) return {};
  ExpandablePath const pattern(nullptr, p_path, {false, true, true});
  return pattern.expand(TDFContext(p_contextPath), m_evalContext.get());
}

bool ProvisionalTDF::isUserNamedTypeAvailable(std::string const& p_parentPath, std::string const& p_type) const {
  return std::binary_search(m_userNamedTypes.begin(), m_userNamedTypes.end(), std::pair(p_parentPath, p_type));
}

std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getModParams() const noexcept {
  return m_activeTDF.getModifiedParameters();
}

/// As logged, with what became potential later in the same walk: callers who draw new items as they come find their
/// order here.
std::vector<ProvisionalTDF::ParamId> const& ProvisionalTDF::getNewlyAvailParams() const noexcept {
  return m_activeTDF.getAddedParameters();
}

std::vector<std::string> const& ProvisionalTDF::getDeletedObjects() const noexcept {
  return m_activeTDF.getDeletedObjects();
}

std::map<std::string, std::pair<std::string, std::string>> const& ProvisionalTDF::getModBoundsParams() const noexcept {
  return m_boundsTracker->getUpdatedBounds();
}

std::map<std::string, std::string> const& ProvisionalTDF::getModQuantParams() const noexcept {
  return m_quantityTracker->getModifiedParams();
}

std::vector<std::string> const& ProvisionalTDF::getAvailPotObjects() const noexcept {
  return m_potentialTracker->getObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getAvailPotParams() const noexcept {
  return m_potentialTracker->getParams();
}

std::vector<std::string> const& ProvisionalTDF::getNewlyAvailPotObjects() const noexcept {
  return m_potentialTracker->getAddedObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getNewlyAvailPotParams() const noexcept {
  return m_potentialTracker->getAddedParams();
}

std::vector<std::string> const& ProvisionalTDF::getNewlyUnavailPotObjects() const noexcept {
  return m_potentialTracker->getDeletedObjects();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getNewlyUnavailPotParams() const noexcept {
  return m_potentialTracker->getDeletedParams();
}

ProvisionalTDF::ParamsByObject const& ProvisionalTDF::getModPotParams() const noexcept {
  return m_potentialTracker->getChangedParams();
}

}  // namespace tarn
