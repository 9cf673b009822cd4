// The start of the provisional state, and what it does when its base model changes. The start fills the guide; from
// then on the base model only feeds the rules and the children that are mirrored.

#include <memory>
#include <utility>

#include <tarn/EvalContext.h>
#include <tarn/ModelTDF.h>
#include <tarn/ProvTDFObserver.h>
#include <tarn/ProvisionalTDFDB.h>
#include <tarn/TDFPath.h>

#include "provisional/ProvisionalTDFImpl.h"
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

/// The objects that read a base model. They are complete before anything in the state changes.
struct ProvisionalTDF::Impl::Attachment {
  Attachment(std::string const& p_activeRoot, ModelTDF const* p_active, ModelTDF const* p_base, EvalCache* p_results)
      : view(std::make_unique<ProvisionalTDFDB>(p_activeRoot, p_active, p_base)),
        context(std::make_unique<EvalContext>(view.get(), p_results)),
        base(p_base) {
    tree.initialise(p_base, p_activeRoot, true);
  }

  std::unique_ptr<ProvisionalTDFDB> view;
  std::unique_ptr<EvalContext> context;
  ModelTDF const* base = nullptr;
  DynamicTDF tree{false};
};

void ProvisionalTDF::Impl::initialise(ModelTDF const* p_base, ModelState const& p_guideState) {
  initialiseInternal(p_base, makeGuide(p_base, p_guideState), m_facts.hasBaseObject());
}

void ProvisionalTDF::Impl::initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base,
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
  initialiseInternal(p_base, makeGuide(p_base, guideState), false);
}

void ProvisionalTDF::Impl::baseUpdate(ModelTDF const* p_base) {
  if (!isInitialised()) return;
  attach(std::make_unique<Attachment>(m_activeRoot, &outcome().active, p_base, &m_facts.keptResults()));
  updateActiveTDF(true);
}

std::unique_ptr<DynamicTDF> ProvisionalTDF::Impl::makeGuide(ModelTDF const* p_base,
                                                            ModelState const& p_guideState) const {
  auto guide = std::make_unique<DynamicTDF>(false);
  guide->initialise(p_base, m_activeRoot, true);
  guide->update(p_guideState.begin(), p_guideState.end(), false);
  return guide;
}

/// Takes `p_guide` over. Half a start would lose what the user entered. So everything that can fail comes before the
/// first change, except for the update, which is due from then on.
void ProvisionalTDF::Impl::initialiseInternal(ModelTDF const* p_base, std::unique_ptr<DynamicTDF> p_guide,
                                              bool p_hasBaseObject) {
  auto attachment = std::make_unique<Attachment>(m_activeRoot, &outcome().active, p_base, &m_facts.keptResults());
  TDFPath const root(m_activeRoot);
  if (root.numComponent() > 0) {  // the root of the tree is always there
    m_facts.createObject(root.getParentPath(), root.getLastType(),
                         root.isSingleton() ? std::string() : root.getLastName());
  }

  m_walk.forget();  // it follows the guide that goes
  m_facts.startWithGuide(std::move(p_guide), p_hasBaseObject);
  attach(std::move(attachment));
  updateActiveTDF(true);
  if (m_observer != nullptr) m_observer->onInitialised(*p_base);
}

/// Lets this state read the base model of `p_attachment`. Marks keep what was there before.
void ProvisionalTDF::Impl::attach(std::unique_ptr<Attachment> p_attachment) noexcept {
  exchange(*p_attachment);
  if (m_facts.recording() == nullptr) return;
  Journal::CannotFail const scope(m_facts.journal());
  m_facts.journal().add([this, former = std::move(p_attachment)]() noexcept { exchange(*former); });
}

void ProvisionalTDF::Impl::exchange(Attachment& p_attachment) noexcept {
  m_walk.forget();
  m_evalContext.swap(p_attachment.context);
  m_provisionalDB.swap(p_attachment.view);
  m_baseTDF.swap(p_attachment.tree);
  std::swap(m_base, p_attachment.base);
  if (m_base != nullptr) m_walk.attach(*m_provisionalDB, *m_base);
}

}  // namespace tarn
