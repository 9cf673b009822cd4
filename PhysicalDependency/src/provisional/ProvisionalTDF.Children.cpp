// What a walk does to child objects, and what the user's edits do to the named ones. The hook for a child entry settles
// which objects of that type the active tree has; right behind it the walk asks for them and enters exactly those.
//
// A required type has the names of its rule or, where the rule leaves them open, those of the guide. An optional type
// that is coupled has those of them that are wanted, and the others are potential. One that is not coupled is no part
// of the edit: it is mirrored whole from the base model and not entered.

#include <tarn/ProvisionalTDF.h>

#include <new>
#include <string_view>
#include <utility>

#include <tarn/PathUtils.h>
#include <tarn/PotentialUpdateTracker.h>
#include <tarn/TDFPath.h>

#include "provisional/ActivityDecisions.h"
#include "provisional/NamedObjectProbe.h"
#include "provisional/ValueLists.h"
#include "provisional/dumpModelState.h"

namespace tarn {

namespace {

std::string singletonPath(std::string const& objPath, std::string const& type) {
  return objPath + PathUtils::pathSeparator + type;
}

/// What the paths of all named objects of a type begin with.
std::string namedPrefix(std::string const& objPath, std::string const& type) {
  return singletonPath(objPath, type) + PathUtils::nameSeparator;
}

/// Where the name of the last component begins, or npos when it has none.
std::size_t beginOfName(std::string const& path) {
  auto const colon = path.rfind(':');
  auto const slash = path.rfind('/');
  bool const isNamed = colon != std::string::npos && (slash == std::string::npos || colon > slash);
  return isNamed ? colon + 1 : std::string::npos;
}

std::size_t sizeOf(ChildAvailInfo::NameRange const& names) {
  return static_cast<std::size_t>(names.second - names.first);
}

}  // namespace

DependencyAnalyser::HandlerStatus ProvisionalTDF::onBeginObject(ObjBeginInfo const* p_info) {
  std::string const& path = p_info->getObjPath();
  if (!p_info->isValid() && m_activeTDF.hasObject(path)) {
    deleteObject(path);
    return Continue;
  }
  bool const isPartOfTheEdit = p_info->isRequired() || path == m_activeRoot || p_info->isCoupled();
  return isPartOfTheEdit ? Continue : SkipObject;
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onChildCheck(ChildAvailInfo const* p_info) {
  if (p_info->isAvailable()) {
    handleAvailableChild(p_info);
  } else {
    handleUnavailableChild(p_info);
  }
  return Continue;
}

DependencyAnalyser::HandlerStatus ProvisionalTDF::onEndObject(std::string const& p_path, bool p_required) {
  auto const isBarren = [this, &p_path] {
    return m_activeTDF.isObjectEmpty(p_path) && !m_potentialTracker->hasObjPotentialChildren(p_path);
  };
  if (m_probe->isTestNamedObjectPath(p_path)) {
    if (!isBarren()) {
      TDFPath const probe(p_path);
      m_userNamedTypes.emplace_back(probe.getParentPath(), probe.getLastType());
    }
    m_probe->deleteTestNamedObject();
  } else if (p_required && isBarren()) {
    // A container for which the rules have nothing now. It comes and goes with every walk, which is no news to anyone.
    m_activeTDF.deleteObjectUnrecorded(p_path);
  }
  return Continue;
}

void ProvisionalTDF::handleAvailableChild(ChildAvailInfo const* p_info) {
  std::string const& objPath = p_info->getObjPath();
  std::string const& type = p_info->getType();
  if (p_info->isRequired()) {
    if (p_info->isSingleton()) {
      createObject(objPath, type, "");
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
    m_guideTDF.getChildObjectNamesByType(objPath, type, names);
    synchAllowedNamedOptObjs(objPath, type, {names.begin(), names.end()});
  }
}

/// Gone, and not potential. The guide stays as it is.
void ProvisionalTDF::handleUnavailableChild(ChildAvailInfo const* p_info) {
  std::vector<std::string> paths;
  if (m_activeTDF.getChildObjectPathsByType(p_info->getObjPath(), p_info->getType(), paths)) {
    m_activeTDF.deleteObjects(paths);
  }
}

/// A required type whose names are up to the user. It starts with the rule's default names, once: whether they are used
/// or there are objects already, from then on the user's removals stand, down to the last object.
void ProvisionalTDF::synchNamesOfGuide(std::string const& p_objPath, std::string const& p_type,
                                       NameRange p_defaultNames) {
  std::vector<std::string> names;
  m_guideTDF.getChildObjectNamesByType(p_objPath, p_type, names);
  if (p_defaultNames.first != p_defaultNames.second) {
    std::string const key = singletonPath(p_objPath, p_type);
    if (!m_defaultNamesApplied.contains(key)) {
      bool const areUsed = names.empty();
      if (areUsed) names.assign(p_defaultNames.first, p_defaultNames.second);
      m_defaultNamesOfUpdate.push_back(key);
      // Ahead of the objects: a default that no object can be called ends one walk, and not every one from then on.
      m_defaultNamesApplied.insert(key);
      if (areUsed) createDefaultGuideObjects(key, names);
    }
  }
  synchAllowedNamedObjects(p_objPath, p_type, {names.begin(), names.end()});
  // A probe inside a probe would not end it: one answers for the type that is asked about.
  if (names.empty() && !m_probe->inTestNamedObject()) m_probe->createTestNamedObject(p_objPath, p_type);
}

/// An optional type that is not coupled: what the base model has, and nothing else.
void ProvisionalTDF::mirrorBaseChildren(std::string const& p_objPath, std::string const& p_type) {
  std::vector<std::string> active;
  m_activeTDF.getChildObjectPathsByType(p_objPath, p_type, active);
  if (!m_hasBaseObject) {  // a new object has nothing to mirror
    m_activeTDF.deleteObjects(active);
    return;
  }
  std::vector<std::string> base;
  m_baseTDF.getChildObjectPathsByType(p_objPath, p_type, base);
  for (std::string const& path : base) m_activeTDF.copyBranch(&m_baseTDF, path);
  m_activeTDF.deleteObjects(sortedDifference(active, base));
  // The guide has no say over these, so what it took from the base model at the start goes.
  std::vector<std::string> guide;
  if (m_guideTDF.getChildObjectPathsByType(p_objPath, p_type, guide)) m_guideTDF.deleteObjects(guide);
}

/// Of one optional coupled object: creates it if it is wanted, else makes it potential. Returns whether it is wanted.
bool ProvisionalTDF::createOrOfferObject(std::string const& p_path, std::string const& p_objPath,
                                         std::string const& p_type, std::string const& p_name) {
  bool const isWanted = includeOptionalObject(p_path);
  if (isWanted) {
    createObject(p_objPath, p_type, p_name);
  } else {
    addPotentialObject(p_path);
  }
  return isWanted;
}

void ProvisionalTDF::synchAllowedNamedObjects(std::string const& p_objPath, std::string const& p_type,
                                              NameRange p_names) {
  for (auto name = p_names.first; name != p_names.second; ++name) createObject(p_objPath, p_type, *name);
  std::vector<std::string> existing;
  m_activeTDF.getChildObjectNamesByType(p_objPath, p_type, existing);
  // All of the names exist now, so when there are no more objects than names there is nothing that is not allowed.
  if (existing.size() > sizeOf(p_names)) {
    deleteDisallowedNamedObjects(namedPrefix(p_objPath, p_type), existing, p_names);
  }
}

void ProvisionalTDF::synchAllowedNamedOptObjs(std::string const& p_objPath, std::string const& p_type,
                                              NameRange p_names) {
  std::string const prefix = namedPrefix(p_objPath, p_type);
  std::size_t potential = 0;
  for (auto name = p_names.first; name != p_names.second; ++name) {
    if (!createOrOfferObject(prefix + *name, p_objPath, p_type, *name)) ++potential;
  }
  std::vector<std::string> existing;
  m_activeTDF.getChildObjectNamesByType(p_objPath, p_type, existing);
  if (existing.size() + potential > sizeOf(p_names)) deleteDisallowedNamedObjects(prefix, existing, p_names);
}

void ProvisionalTDF::deleteDisallowedNamedObjects(std::string const& p_prefix,
                                                  std::vector<std::string> const& p_existing, NameRange p_allowed) {
  for (std::string const& name : sortedDifference(p_existing, {p_allowed.first, p_allowed.second})) {
    deleteObject(p_prefix + name);
  }
}

/// Puts a named object into the guide. False when it is there already and when the path is not one of a named object: a
/// name that equals the type, or none, would be read as a singleton's.
bool ProvisionalTDF::createNamedGuideObject(std::string const& p_path) {
  auto const nameBegin = beginOfName(p_path);
  if (nameBegin == std::string::npos) return false;
  auto const slash = p_path.rfind('/');
  auto const typeBegin = slash == std::string::npos ? 0 : slash + 1;
  std::string const type = p_path.substr(typeBegin, nameBegin - 1 - typeBegin);
  std::string const name = p_path.substr(nameBegin);
  if (name.empty() || name == type) return false;
  return m_guideTDF.createObject(std::string(PathUtils::parentOf(p_path)), type, name);
}

/// Of the type of `p_key`. Without memory none of them is made, and they are still to come: some of them would be taken
/// for a choice of the user.
void ProvisionalTDF::createDefaultGuideObjects(std::string const& p_key, std::vector<std::string> const& p_names) {
  std::vector<std::string> paths;
  std::size_t made = 0;
  try {
    paths.reserve(p_names.size());
    for (std::string const& name : p_names) paths.push_back(p_key + PathUtils::nameSeparator + name);
    for (; made < paths.size(); ++made) createNamedGuideObject(paths[made]);
  } catch (std::bad_alloc const&) {
    while (made > 0) m_guideTDF.deleteObject(paths[--made]);
    m_defaultNamesApplied.erase(p_key);
    throw;
  }
}

bool ProvisionalTDF::deleteNamedGuideObject(std::string const& p_path) {
  if (beginOfName(p_path) == std::string::npos || !m_guideTDF.hasObject(p_path)) return false;
  m_guideTDF.deleteObject(p_path);
  m_activity->eraseFromOptActivityMaps(p_path);
  return true;
}

/// Puts a copy of an object into the guide, as it stands in the active tree, so with all values in force. False when
/// there is no such object, it has no name, or the new name is taken or cannot be one.
bool ProvisionalTDF::copyNamedGuideObject(std::string const& p_path, std::string const& p_newName) {
  if (!m_activeTDF.hasObject(p_path)) return false;
  TDFPath copy(p_path);
  if (copy.isSingleton() || copy.getLastName() == p_newName) return false;
  if (p_newName.empty() || p_newName == copy.getLastType() || p_newName.find_first_of("/:") != std::string::npos) {
    return false;
  }
  copy.setName(copy.size() - 1, p_newName);
  if (m_activeTDF.hasObject(copy.getFullPath())) return false;

  ModelState original;
  dumpModelState(m_activeTDF, p_path, original);
  ModelState const state = withLeadingPathReplaced(std::move(original), p_path, copy.getFullPath());
  // The highest object that is made on the way.
  std::string made;
  for (std::string path = copy.getFullPath(); !m_guideTDF.hasObject(path); path = PathUtils::parentOf(path)) {
    made = path;
  }
  try {
    m_guideTDF.update(state.begin(), state.end(), false);
  } catch (...) {
    m_guideTDF.deleteObject(made);  // half a copy would be taken for the whole
    throw;
  }
  return true;
}

ActivityState ProvisionalTDF::getObjActivity(std::string const& p_objPath) const {
  return m_activity->ofObject(p_objPath);
}

bool ProvisionalTDF::includeOptionalObject(std::string const& p_path) const {
  ActivityState const activity = getObjActivity(p_path);
  if (activity != ActivityState::Unset) return activity == ActivityState::SetOn;
  return m_guideTDF.hasObject(p_path);
}

void ProvisionalTDF::createObject(std::string const& p_objPath, std::string const& p_type, std::string const& p_name) {
  m_activeTDF.createObject(p_objPath, p_type, p_name);
}

void ProvisionalTDF::deleteObject(std::string const& p_path) {
  m_activeTDF.deleteObject(p_path);
}

void ProvisionalTDF::addPotentialObject(std::string const& p_path) {
  deleteObject(p_path);
  m_potentialTracker->addObject(p_path);
}

}  // namespace tarn
