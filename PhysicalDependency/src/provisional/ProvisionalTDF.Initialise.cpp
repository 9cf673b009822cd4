// The start of the provisional state, and what it does when its base model changes. The start fills the guide; from
// then on the base model only feeds the rules and the children that are mirrored.

#include <tarn/ProvisionalTDF.h>

#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/TDFPath.h>

#include "provisional/dumpModelState.h"

namespace tarn {

namespace {

/// Whether both are named objects of one type and parent: the same up to the last ":".
bool areNamedAlike(std::string const& a, std::string const& b) {
  auto const endOfA = a.rfind(':');
  auto const endOfB = b.rfind(':');
  return endOfA != std::string::npos && endOfB != std::string::npos && a.compare(0, endOfA, b, 0, endOfB) == 0;
}

}  // namespace

void ProvisionalTDF::initialise(ModelTDF const* p_base, ModelState const& p_guideState) {
  initialiseGuideDB(p_base, p_guideState);
  initialiseInternal(p_base);
}

void ProvisionalTDF::initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base,
                                       ModelState const& p_guideState) {
  if (!areNamedAlike(p_basedOnPath, m_activeRoot) || !p_base->hasObject(p_basedOnPath) ||
      p_base->hasObject(m_activeRoot)) {
    initialise(p_base, p_guideState);
    return;
  }
  ModelState original;
  dumpModelState(*p_base, p_basedOnPath, original);
  ModelState guideState = withLeadingPathReplaced(std::move(original), p_basedOnPath, m_activeRoot);
  // Where both have an object, that of the original stays whole.
  guideState.insert(p_guideState.begin(), p_guideState.end());
  initialiseGuideDB(p_base, guideState);
  m_hasBaseObject = false;
  initialiseInternal(p_base);
}

void ProvisionalTDF::baseUpdate(ModelTDF const* p_base) {
  if (isInitialised()) attachBase(p_base);
}

void ProvisionalTDF::initialiseGuideDB(ModelTDF const* p_base, ModelState const& p_guideState) {
  m_guideTDF.initialise(p_base, m_activeRoot, true);
  m_guideTDF.update(p_guideState.begin(), p_guideState.end(), false);
}

void ProvisionalTDF::initialiseInternal(ModelTDF const* p_base) {
  TDFPath const root(m_activeRoot);
  if (root.numComponent() > 0) {  // the root of the tree is always there
    createObject(root.getParentPath(), root.getLastType(), root.isSingleton() ? std::string() : root.getLastName());
  }
  attachBase(p_base);
  if (m_logger == nullptr) return;

  m_logger->printString("\n\nBASE TDF BEGIN\n");
  ModelState base;
  dumpModelState(*p_base, "", base);
  m_logger->printState(base);
  m_logger->printString("\n\nBASE TDF END\n");
  logCommand("initialise", "<BASE TDF>");
}

/// Puts this state over `p_base` and updates it.
void ProvisionalTDF::attachBase(ModelTDF const* p_base) {
  // The context reads the view, so the new one is there before the old one goes.
  auto view = std::make_unique<ProvisionalTDFDB>(m_activeRoot, &m_activeTDF, p_base);
  m_evalContext = std::make_unique<EvalContext>(view.get());
  m_provisionalDB = std::move(view);
  m_baseTDF.initialise(p_base, m_activeRoot, true);
  updateActiveTDF(true);
}

void ProvisionalTDF::logCommand(std::string const& p_command, std::string const& p_argument) const {
  if (m_logger == nullptr) return;
  m_logger->printString("COMMAND: " + p_command + " " + p_argument);
  m_logger->printUpdates();
}

}  // namespace tarn
