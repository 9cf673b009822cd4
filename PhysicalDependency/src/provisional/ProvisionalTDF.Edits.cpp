// The edits of a user. An edit writes to the guide or to the decisions, never to the active tree, and then has the
// state updated. The result shows whether the rules make something of it. A refused edit is updated without a walk, so
// its lists are empty.

#include <string_view>

#include <tarn/PathUtils.h>
#include <tarn/ProvTDFObserver.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

#include "provisional/ProvisionalTDFImpl.h"
#include "provisional/dumpModelState.h"

namespace tarn {

namespace {

/// Where the name of the last component begins, or npos when it has none.
std::size_t beginOfName(std::string const& path) {
  auto const colon = path.rfind(':');
  auto const slash = path.rfind('/');
  bool const isNamed = colon != std::string::npos && (slash == std::string::npos || colon > slash);
  return isNamed ? colon + 1 : std::string::npos;
}

}  // namespace

std::optional<Refusal> ProvisionalTDF::Impl::apply(Edit const& p_edit) {
  if (!isInitialised()) return Refusal::NotInitialised;
  std::optional<Refusal> refusal = Refusal::OutsideActiveRoot;
  if (isUnderActiveRoot(p_edit.path)) refusal = changeIntent(p_edit);
  finishEdit(p_edit, refusal);
  return refusal;
}

/// The path is known to be at or below the active root. When this throws, nothing has changed.
std::optional<Refusal> ProvisionalTDF::Impl::changeIntent(Edit const& p_edit) {
  switch (p_edit.kind) {
    case Edit::Kind::SetParam:
      m_facts.setGuideParam(p_edit.path, p_edit.name, p_edit.value);
      return std::nullopt;
    case Edit::Kind::ActivateParam:
      m_facts.setParamActivity(p_edit.path, p_edit.name, true);
      return std::nullopt;
    case Edit::Kind::DeactivateParam:
      deactivateParam(p_edit.path, p_edit.name);
      return std::nullopt;
    case Edit::Kind::ActivateObject:
      m_facts.setObjActivity(p_edit.path, true);
      return std::nullopt;
    case Edit::Kind::DeactivateObject:
      m_facts.setObjActivity(p_edit.path, false);
      return std::nullopt;
    case Edit::Kind::AddObject:
      return createNamedGuideObject(p_edit.path);
    case Edit::Kind::RemoveObject:
      return deleteNamedGuideObject(p_edit.path);
    case Edit::Kind::DuplicateObject:
    case Edit::Kind::RenameObject: {
      ModelState copy;
      auto refusal = makeCopy(p_edit.path, p_edit.name, copy);
      if (refusal) return refusal;
      m_facts.journal().makeWhole([&] {
        m_facts.updateGuide(copy);
        // An object that only the rules ask for can be copied but not removed. The copy then waits for the next walk,
        // after which the caller finds both objects.
        if (p_edit.kind == Edit::Kind::RenameObject) refusal = deleteNamedGuideObject(p_edit.path);
      });
      return refusal;
    }
  }
  return std::nullopt;
}

void ProvisionalTDF::Impl::deactivateParam(std::string const& p_objPath, std::string const& p_name) {
  m_facts.journal().makeWhole([&] {
    m_facts.setParamActivity(p_objPath, p_name, false);
    // An empty value is no answer worth keeping: without it, switching on again gives the default.
    if (m_facts.getGuideValue(p_objPath, p_name).empty()) m_facts.deleteGuideParam(p_objPath, p_name);
  });
}

/// Puts a named object into the guide. A name that equals the type, or an empty one, would be read as a singleton's.
std::optional<Refusal> ProvisionalTDF::Impl::createNamedGuideObject(std::string const& p_path) {
  auto const nameBegin = beginOfName(p_path);
  if (nameBegin == std::string::npos || nameBegin == p_path.size()) return Refusal::NotNamed;
  auto const slash = p_path.rfind('/');
  auto const typeBegin = slash == std::string::npos ? 0 : slash + 1;
  std::string const type = p_path.substr(typeBegin, nameBegin - 1 - typeBegin);
  std::string const name = p_path.substr(nameBegin);
  if (name == type) return Refusal::NameEqualsType;
  bool const isNew = m_facts.createGuideObject(std::string(PathUtils::parentOf(p_path)), type, name);
  return isNew ? std::nullopt : std::optional(Refusal::AlreadyAskedFor);
}

std::optional<Refusal> ProvisionalTDF::Impl::deleteNamedGuideObject(std::string const& p_path) {
  bool const isInGuide = m_facts.isObjectInGuide(p_path);
  if (!isInGuide && !m_facts.hasActiveObject(p_path)) return Refusal::NoSuchObject;
  if (beginOfName(p_path) == std::string::npos) return Refusal::NotNamed;
  if (!isInGuide) return Refusal::StandsByTheRules;
  m_facts.journal().makeWhole([&] {
    m_facts.deleteGuideObject(p_path);
    m_facts.eraseFromOptActivityMaps(p_path);
  });
  return std::nullopt;
}

/// Fills `p_copy` with a copy of a named object as it is in the active tree, so with all values in force.
std::optional<Refusal> ProvisionalTDF::Impl::makeCopy(std::string const& p_path, std::string const& p_newName,
                                                      ModelState& p_copy) {
  if (p_path == m_activeRoot) return Refusal::IsActiveRoot;
  completeBrokenUpdate();
  if (!m_facts.hasActiveObject(p_path)) return Refusal::NoSuchObject;
  TDFPath copy(p_path);
  if (copy.isSingleton()) return Refusal::NotNamed;
  if (p_newName.empty() || p_newName.find_first_of("/:") != std::string::npos) return Refusal::NameUnreadable;
  if (p_newName == copy.getLastType()) return Refusal::NameEqualsType;
  if (copy.getLastName() == p_newName) return Refusal::NameTaken;
  copy.setName(copy.size() - 1, p_newName);
  std::string const copyPath = copy.getFullPath();
  if (m_facts.hasActiveObject(copyPath)) return Refusal::NameTaken;

  ModelState original;
  m_facts.dumpActive(p_path, original);
  p_copy = withLeadingPathReplaced(std::move(original), p_path, copyPath);
  return std::nullopt;
}

bool ProvisionalTDF::Impl::isUnderActiveRoot(std::string const& p_path) const noexcept {
  return StringUtilities::isPathRootedAt(m_activeRoot, p_path);
}

void ProvisionalTDF::Impl::finishEdit(Edit const& p_edit, std::optional<Refusal> p_refusal) {
  if (p_refusal) {
    try {
      completeBrokenUpdate();
    } catch (...) {
      // It is still due. The caller has known that since the edit that broke off, and this edit changes nothing.
    }
  }
  updateActiveTDF(!p_refusal);
  // After the update, so that the getters show what this edit did.
  if (m_observer != nullptr) m_observer->onEdit(p_edit, p_refusal);
}

}  // namespace tarn
