// How a walk handles child objects. The hook for a child entry decides which objects of that type the active tree has.
// Right after the hook, the walk asks for them and enters exactly those.
//
// A required type has the names of its rule, or those of the guide if the rule leaves them open. An optional type that
// is coupled has those of these names that are wanted; the others are potential. A type that is not coupled is not part
// of the edit: it is mirrored whole from the base model and not entered.

#include <new>
#include <string_view>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/TDFPath.h>

#include "provisional/ProvisionalTDFImpl.h"
#include "provisional/ValueLists.h"

namespace tarn {

namespace {

std::string singletonPath(std::string const& objPath, std::string const& type) {
  return objPath + PathUtils::pathSeparator + type;
}

/// The beginning of the paths of all named objects of a type.
std::string namedPrefix(std::string const& objPath, std::string const& type) {
  return singletonPath(objPath, type) + PathUtils::nameSeparator;
}

std::size_t sizeOf(ChildAvailInfo::NameRange const& names) {
  return static_cast<std::size_t>(names.second - names.first);
}

}  // namespace

DependencyAnalyser::HandlerStatus ProvisionalTDF::Impl::onBeginObject(ObjBeginInfo const* p_info) {
  std::string const& path = p_info->getObjPath();
  if (!p_info->isValid() && m_facts.hasActiveObject(path)) {
    m_facts.deleteObject(path);
    return Continue;
  }
  bool const isPartOfTheEdit = p_info->isRequired() || path == m_activeRoot || p_info->isCoupled();
  return isPartOfTheEdit ? Continue : SkipObject;
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::Impl::onChildCheck(ChildAvailInfo const* p_info) {
  if (p_info->isAvailable()) {
    handleAvailableChild(p_info);
  } else {
    handleUnavailableChild(p_info);
  }
  return Continue;
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::Impl::onEndObject(std::string const& p_path, bool p_required) {
  if (m_probe.isTestNamedObjectPath(p_path)) {
    if (!m_facts.isBarren(p_path)) {
      TDFPath const probe(p_path);
      m_facts.addUserNamedType(probe.getParentPath(), probe.getLastType());
    }
    m_probe.deleteTestNamedObject();
  } else if (p_required && m_facts.isBarren(p_path)) {
    // A container for which the rules have nothing now. It comes and goes with every walk, so this is not reported.
    m_facts.deleteObjectUnrecorded(p_path);
  }
  return Continue;
}

void ProvisionalTDF::Impl::handleAvailableChild(ChildAvailInfo const* p_info) {
  std::string const& objPath = p_info->getObjPath();
  std::string const& type = p_info->getType();
  if (p_info->isRequired()) {
    if (p_info->isSingleton()) {
      m_facts.createObject(objPath, type, "");
    } else if (p_info->hasAllowedNames()) {
      synchAllowedNamedObjects(objPath, type, p_info->getAllowedNames());
    } else {
      synchNamesOfGuide(objPath, type, p_info->getDefaultNames());
    }
  } else if (!p_info->isCoupled()) {
    mirrorBaseChildren(objPath, type);
  } else if (p_info->isSingleton()) {
    createOrOfferObject(singletonPath(objPath, type), objPath, type, "");
  } else if (p_info->hasAllowedNames()) {
    synchAllowedNamedOptObjs(objPath, type, p_info->getAllowedNames());
  } else {
    std::vector<std::string> names;
    m_facts.getGuideNames(objPath, type, names);
    synchAllowedNamedOptObjs(objPath, type, {names.begin(), names.end()});
  }
}

/// Gone, and not potential. The guide stays as it is.
void ProvisionalTDF::Impl::handleUnavailableChild(ChildAvailInfo const* p_info) {
  std::vector<std::string> paths;
  if (m_facts.getActivePaths(p_info->getObjPath(), p_info->getType(), paths)) {
    m_facts.deleteObjects(paths);
  }
}

/// A required type whose names are the user's choice. It starts with the rule's default names, once. After that, also
/// if there were objects already and the names were not used, the user can remove every object for good.
void ProvisionalTDF::Impl::synchNamesOfGuide(std::string const& p_objPath, std::string const& p_type,
                                             NameRange p_defaultNames) {
  std::vector<std::string> names;
  m_facts.getGuideNames(p_objPath, p_type, names);
  if (p_defaultNames.first != p_defaultNames.second) {
    std::string const key = singletonPath(p_objPath, p_type);
    if (!m_facts.areDefaultNamesApplied(key)) {
      bool const areUsed = names.empty();
      if (areUsed) names.assign(p_defaultNames.first, p_defaultNames.second);
      applyDefaultNames(key, areUsed ? names : std::vector<std::string>());
    }
  }
  synchAllowedNamedObjects(p_objPath, p_type, {names.begin(), names.end()});
  // No probe inside a probe: it would never end, and the outer one answers for the type in question.
  if (names.empty() && !m_probe.inTestNamedObject()) m_probe.createTestNamedObject(p_objPath, p_type);
}

/// An optional type that is not coupled has exactly the objects of the base model.
void ProvisionalTDF::Impl::mirrorBaseChildren(std::string const& p_objPath, std::string const& p_type) {
  std::vector<std::string> active;
  m_facts.getActivePaths(p_objPath, p_type, active);
  if (!m_facts.hasBaseObject()) {  // a new object has nothing to mirror
    m_facts.deleteObjects(active);
    return;
  }
  std::vector<std::string> base;
  m_baseTDF.getChildObjectPathsByType(p_objPath, p_type, base);
  for (std::string const& path : base) m_facts.mirrorBranch(m_baseTDF, path);
  m_facts.deleteObjects(sortedDifference(active, base));
  // The guide does not decide on these, so the objects that it took from the base model at the start are removed.
  m_facts.deleteGuideObjects(p_objPath, p_type);
}

/// Creates an optional coupled object if it is wanted, and makes it potential otherwise. Returns whether it is wanted.
bool ProvisionalTDF::Impl::createOrOfferObject(std::string const& p_path, std::string const& p_objPath,
                                               std::string const& p_type, std::string const& p_name) {
  bool const isWanted = includeOptionalObject(p_path);
  if (isWanted) {
    m_facts.createObject(p_objPath, p_type, p_name);
  } else {
    m_facts.addPotentialObject(p_path);
  }
  return isWanted;
}

void ProvisionalTDF::Impl::synchAllowedNamedObjects(std::string const& p_objPath, std::string const& p_type,
                                                    NameRange p_names) {
  for (auto name = p_names.first; name != p_names.second; ++name) m_facts.createObject(p_objPath, p_type, *name);
  std::vector<std::string> existing;
  m_facts.getActiveNames(p_objPath, p_type, existing);
  // All of the names exist now. So if there are no more objects than names, all of them are allowed.
  if (existing.size() > sizeOf(p_names)) {
    deleteDisallowedNamedObjects(namedPrefix(p_objPath, p_type), existing, p_names);
  }
}

void ProvisionalTDF::Impl::synchAllowedNamedOptObjs(std::string const& p_objPath, std::string const& p_type,
                                                    NameRange p_names) {
  std::string const prefix = namedPrefix(p_objPath, p_type);
  std::size_t potential = 0;
  for (auto name = p_names.first; name != p_names.second; ++name) {
    if (!createOrOfferObject(prefix + *name, p_objPath, p_type, *name)) ++potential;
  }
  std::vector<std::string> existing;
  m_facts.getActiveNames(p_objPath, p_type, existing);
  if (existing.size() + potential > sizeOf(p_names)) deleteDisallowedNamedObjects(prefix, existing, p_names);
}

void ProvisionalTDF::Impl::deleteDisallowedNamedObjects(std::string const& p_prefix,
                                                        std::vector<std::string> const& p_existing,
                                                        NameRange p_allowed) {
  for (std::string const& name : sortedDifference(p_existing, {p_allowed.first, p_allowed.second})) {
    m_facts.deleteObject(p_prefix + name);
  }
}

/// Makes objects of the default names of the type `p_key`, once. Without memory it makes none of them, and they are
/// made in a later walk: some of them alone would look like a choice of the user.
void ProvisionalTDF::Impl::applyDefaultNames(std::string const& p_key, std::vector<std::string> const& p_names) {
  Journal& journal = m_facts.journal();
  Journal::Mark const before = journal.mark();
  try {
    m_facts.setDefaultNamesApplied(p_key);
    for (std::string const& name : p_names) (void)createNamedGuideObject(p_key + PathUtils::nameSeparator + name);
  } catch (std::bad_alloc const&) {
    journal.rollback(before);
    throw;
  } catch (...) {
    // A default that cannot be a name ends one walk, and not all later ones as well.
    journal.release(before);
    throw;
  }
  journal.release(before);
}

bool ProvisionalTDF::Impl::includeOptionalObject(std::string const& p_path) const {
  ActivityState const activity = m_facts.getObjActivity(p_path);
  if (activity != ActivityState::Unset) return activity == ActivityState::SetOn;
  return m_facts.isObjectInGuide(p_path);
}

}  // namespace tarn
