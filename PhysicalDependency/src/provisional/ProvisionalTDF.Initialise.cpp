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

/// What reads a base model, made ready before anything of the state changes.
struct ProvisionalTDF::Attachment {
  Attachment(std::string const& p_activeRoot, ModelTDF const* p_active, ModelTDF const* p_base)
      : view(std::make_unique<ProvisionalTDFDB>(p_activeRoot, p_active, p_base)),
        context(std::make_unique<EvalContext>(view.get())) {
    tree.initialise(p_base, p_activeRoot, true);
  }

  std::unique_ptr<ProvisionalTDFDB> view;
  std::unique_ptr<EvalContext> context;
  DynamicTDF tree{false};
};

void ProvisionalTDF::initialise(ModelTDF const* p_base, ModelState const& p_guideState) {
  DynamicTDF guide(false);
  initialiseGuideDB(p_base, p_guideState, guide);
  initialiseInternal(p_base, guide, m_hasBaseObject);
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
  DynamicTDF guide(false);
  initialiseGuideDB(p_base, guideState, guide);
  initialiseInternal(p_base, guide, false);
}

void ProvisionalTDF::baseUpdate(ModelTDF const* p_base) {
  if (!isInitialised()) return;
  Attachment attachment(m_activeRoot, &m_activeTDF, p_base);
  attach(attachment);
  updateActiveTDF(true);
}

void ProvisionalTDF::initialiseGuideDB(ModelTDF const* p_base, ModelState const& p_guideState,
                                       DynamicTDF& p_guide) const {
  p_guide.initialise(p_base, m_activeRoot, true);
  p_guide.update(p_guideState.begin(), p_guideState.end(), false);
}

/// Takes `p_guide` over. Half a start would be a state that has lost what the user entered, so all that can fail comes
/// before the first change, except for the update: that is due from then on.
void ProvisionalTDF::initialiseInternal(ModelTDF const* p_base, DynamicTDF& p_guide, bool p_hasBaseObject) {
  Attachment attachment(m_activeRoot, &m_activeTDF, p_base);
  TDFPath const root(m_activeRoot);
  if (root.numComponent() > 0) {  // the root of the tree is always there
    createObject(root.getParentPath(), root.getLastType(), root.isSingleton() ? std::string() : root.getLastName());
  }

  m_guideTDF.swap(p_guide);
  // The default objects that an update made which broke off go with the guide, so they are to come again.
  for (std::string const& key : m_defaultNamesOfUpdate) m_defaultNamesApplied.erase(key);
  m_defaultNamesOfUpdate.clear();
  m_hasBaseObject = p_hasBaseObject;
  attach(attachment);
  updateActiveTDF(true);
  if (m_logger == nullptr) return;

  m_logger->printString("\n\nBASE TDF BEGIN\n");
  ModelState base;
  dumpModelState(*p_base, "", base);
  m_logger->printState(base);
  m_logger->printString("\n\nBASE TDF END\n");
  logCommand("initialise", "<BASE TDF>");
}

/// Puts this state over the base model of `p_attachment`, which gets what was there before.
void ProvisionalTDF::attach(Attachment& p_attachment) noexcept {
  m_evalContext.swap(p_attachment.context);
  m_provisionalDB.swap(p_attachment.view);
  m_baseTDF.swap(p_attachment.tree);
}

/// Without a logger nothing is made, for nothing may fail any more: the edit is done.
void ProvisionalTDF::logCommand(std::string_view p_command, std::string_view p_argument) const {
  if (m_logger == nullptr) return;
  m_logger->printString(std::string("COMMAND: ").append(p_command).append(" ").append(p_argument));
  m_logger->printUpdates();
}

}  // namespace tarn
