// What a user can do. An edit writes to the guide or to the decisions, never to the active tree, and then has the state
// updated; whether the rules make something of it shows in the result. An edit that does not apply is updated without a
// walk: its lists then tell of nothing, which is all that its caller learns.

#include <tarn/ProvisionalTDF.h>

#include <tarn/Error.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

#include "provisional/ActivityDecisions.h"

namespace tarn {

namespace {

/// Whether an object can have that path. Trees refuse others with an exception; to an edit it is merely one that does
/// not apply.
bool isObjectPath(std::string const& path) {
  try {
    TDFPath const parsed(path);
    return true;
  } catch (Error const&) {
    return false;
  }
}

}  // namespace

void ProvisionalTDF::activeSetParam(std::string const& p_objPath, std::string const& p_name,
                                    std::string const& p_value) {
  if (!isInitialised()) return;
  std::string const argument = p_objPath + "/" + p_name + " = " + p_value;
  bool const applies = isUnderActiveRoot(p_objPath) && isObjectPath(p_objPath);
  if (applies) m_guideTDF.setParameter(p_objPath, p_name, p_value);
  finishEdit(applies, "activeSetParam", argument);
}

void ProvisionalTDF::activateOptParam(std::string const& p_objPath, std::string const& p_name) {
  if (!isInitialised()) return;
  std::string const argument = p_objPath + "/" + p_name;
  bool const applies = isUnderActiveRoot(p_objPath);
  if (applies) m_activity->setParam(p_objPath, p_name, true);
  finishEdit(applies, "activateOptParam", argument);
}

void ProvisionalTDF::deactivateOptParam(std::string const& p_objPath, std::string const& p_name) {
  if (!isInitialised()) return;
  std::string const argument = p_objPath + "/" + p_name;
  bool const applies = isUnderActiveRoot(p_objPath);
  if (applies) {
    // The decision first, since it alone can fail.
    m_activity->setParam(p_objPath, p_name, false);
    // An empty value is no answer worth keeping: without it, switching on again gives the default.
    if (m_guideTDF.getParameterValue(p_objPath, p_name).empty()) m_guideTDF.deleteParameter(p_objPath, p_name);
  }
  finishEdit(applies, "deactivateOptParam", argument);
}

void ProvisionalTDF::activateOptObject(std::string const& p_path) {
  decideOnObject(p_path, true, "activateOptObject");
}

void ProvisionalTDF::deactivateOptObject(std::string const& p_path) {
  decideOnObject(p_path, false, "deactivateOptObject");
}

void ProvisionalTDF::decideOnObject(std::string const& p_path, bool p_on, char const* p_command) {
  if (!isInitialised()) return;
  std::string const argument = p_path;
  bool const applies = isUnderActiveRoot(p_path);
  if (applies) m_activity->setObject(p_path, p_on);
  finishEdit(applies, p_command, argument);
}

void ProvisionalTDF::addNewNamedObject(std::string const& p_path) {
  if (!isInitialised()) return;
  std::string const argument = p_path;
  bool const applies = isUnderActiveRoot(p_path) && isObjectPath(p_path) && createNamedGuideObject(p_path);
  finishEdit(applies, "addNewObject", argument);
}

void ProvisionalTDF::removeNamedObject(std::string const& p_path) {
  if (!isInitialised()) return;
  std::string const argument = p_path;
  bool const applies = isUnderActiveRoot(p_path) && deleteNamedGuideObject(p_path);
  finishEdit(applies, "removeObject", argument);
}

void ProvisionalTDF::duplicateNamedObject(std::string const& p_path, std::string const& p_newName) {
  if (!isInitialised()) return;
  std::string const argument = p_path + "->" + p_newName;
  bool const isInside = isInsideActiveRoot(p_path);
  if (isInside) completeBrokenUpdate();
  bool const applies = isInside && copyNamedGuideObject(p_path, p_newName);
  finishEdit(applies, "duplicateNamedObject", argument);
}

void ProvisionalTDF::renameNamedObject(std::string const& p_path, std::string const& p_newName) {
  if (!isInitialised()) return;
  std::string const argument = p_path + "->" + p_newName;
  bool const isInside = isInsideActiveRoot(p_path);
  if (isInside) completeBrokenUpdate();
  // An object that stands only by the rules can be copied and not be removed. The copy then waits for the next walk,
  // and the caller finds both objects after it.
  bool const applies = isInside && copyNamedGuideObject(p_path, p_newName) && deleteNamedGuideObject(p_path);
  finishEdit(applies, "renameNamedObject", argument);
}

bool ProvisionalTDF::isUnderActiveRoot(std::string const& p_path) const noexcept {
  return StringUtilities::isPathRootedAt(m_activeRoot, p_path);
}

bool ProvisionalTDF::isInsideActiveRoot(std::string const& p_path) const noexcept {
  return p_path != m_activeRoot && isUnderActiveRoot(p_path);
}

/// The argument is made before the edit's change of intent: callers hand in texts that they were given by reference,
/// and which the update sweeps away.
void ProvisionalTDF::finishEdit(bool p_applies, char const* p_command, std::string const& p_argument) {
  if (!p_applies) {
    try {
      completeBrokenUpdate();
    } catch (...) {
      // It is still due. Of that the caller knows since the edit that broke off, and this one changes nothing.
    }
  }
  updateActiveTDF(p_applies);
  // Behind the update, so that the summary shows what this edit did.
  logCommand(p_command, p_argument);
}

}  // namespace tarn
