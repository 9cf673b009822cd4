#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/ChildAvailInfo.h>
#include <tarn/Edit.h>
#include <tarn/ModelState.h>
#include <tarn/ObjBeginInfo.h>
#include <tarn/ParamAvailInfo.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/Refusal.h>

#include "provisional/AffectedWalk.h"
#include "provisional/NamedObjectProbe.h"
#include "provisional/ProvisionalFacts.h"

namespace tarn {

class EvalContext;
class ProvTDFObserver;
class ProvisionalTDFDB;

/// The work of a provisional state. Its sources are divided by concern, like the groups of operations below.
class [[gnu::visibility("hidden")]] ProvisionalTDF::Impl final : public WalkHandler {
 public:
  /// `p_owner` is the analyser whose walks this handles.
  Impl(ProvisionalTDF & p_owner, PhysicsData const& p_rules, QuantityModifier const* p_modifier,
       std::string const& p_activeRoot);
  ~Impl();
  Impl(Impl const&) = delete;
  Impl& operator=(Impl const&) = delete;

  void setObserver(ProvTDFObserver * p_observer) noexcept {
    m_observer = p_observer;
  }

  // The start: ProvisionalTDF.Initialise.cpp.
  void initialise(ModelTDF const* p_base, ModelState const& p_guideState);
  void initialiseBasedOn(std::string const& p_basedOnPath, ModelTDF const* p_base, ModelState const& p_guideState);
  void baseUpdate(ModelTDF const* p_base);
  [[nodiscard]] bool isInitialised() const noexcept {
    return m_evalContext != nullptr;
  }

  // Marks are known by their number: ProvisionalTDF.Update.cpp.
  [[nodiscard]] std::size_t mark();
  void rollback(std::size_t p_mark) noexcept;
  void release(std::size_t p_mark) noexcept;

  // Edits: ProvisionalTDF.Edits.cpp.
  std::optional<Refusal> apply(Edit const& p_edit);

  /// From now on, every update with a walk walks everything.
  void walkEverything(bool p_on) noexcept {
    m_walksEverything = p_on;
  }

  // The walk. All but the first always continue.
  HandlerStatus onBeginObject(ObjBeginInfo const* p_info) override;
  HandlerStatus onParamCheck(ParamAvailInfo const* p_info) override;
  HandlerStatus onChildCheck(ChildAvailInfo const* p_info) override;
  HandlerStatus onEndObject(std::string const& p_path, bool p_required) override;
  [[nodiscard]] bool isTrying() const noexcept override {
    return m_probe.inTestNamedObject();
  }
  void walkTried(std::string const& p_path, EvalContext* p_context) override;

  // The data that the getters return.
  [[nodiscard]] std::string const& activeRoot() const noexcept {
    return m_activeRoot;
  }
  [[nodiscard]] Outcome const& outcome() const noexcept {
    return m_facts.outcome();
  }
  [[nodiscard]] Intent const& intent() const noexcept {
    return m_facts.intent();
  }
  [[nodiscard]] ModelState const& activeState() const noexcept {
    return m_activeState;
  }
  [[nodiscard]] std::vector<ParamId> const& newlyUnavailParams() const noexcept {
    return m_newlyUnavailParams;
  }
  [[nodiscard]] EvalContext* evalContext() const noexcept {
    return m_evalContext.get();
  }

 private:
  using NameRange = ChildAvailInfo::NameRange;

  // The start.
  struct Attachment;
  [[nodiscard]] std::unique_ptr<DynamicTDF> makeGuide(ModelTDF const* p_base, ModelState const& p_guideState) const;
  void initialiseInternal(ModelTDF const* p_base, std::unique_ptr<DynamicTDF> p_guide, bool p_hasBaseObject);
  void attach(std::unique_ptr<Attachment> p_attachment) noexcept;
  void exchange(Attachment & p_attachment) noexcept;

  // Parameters: ProvisionalTDF.Parameters.cpp. The handlers of an available parameter are named after two facts:
  // whether the guide (G) wants it, and whether it has allowed values (AV). Each returns whether it left the parameter
  // in the active tree with an empty value.
  void handleAvailableParam(ParamAvailInfo const* p_info);
  void handleUnavailableParam(ParamAvailInfo const* p_info);
  bool handle_G_AV_AvailParam(std::string const& p_objPath, std::string const& p_name, ParamAvailInfo const* p_info);
  bool handle_G_NoAV_AvailParam(std::string const& p_objPath, std::string const& p_name, ParamAvailInfo const* p_info);
  bool handle_NoG_AV_AvailParam(std::string const& p_objPath, std::string const& p_name, ParamAvailInfo const* p_info);
  bool handle_NoG_NoAV_AvailParam(std::string const& p_objPath, std::string const& p_name,
                                  ParamAvailInfo const* p_info);
  bool updateFreeParam(std::string const& p_objPath, std::string const& p_name, std::string const& p_value,
                       bool p_isOverride, ParamAvailInfo const* p_info);
  [[nodiscard]] ModelTDF const* modelOfRules() const noexcept;
  [[nodiscard]] bool isWantedByGuide(std::string const& p_objPath, std::string const& p_name) const;

  // Children: ProvisionalTDF.Children.cpp.
  void handleAvailableChild(ChildAvailInfo const* p_info);
  void handleUnavailableChild(ChildAvailInfo const* p_info);
  void synchNamesOfGuide(std::string const& p_objPath, std::string const& p_type, NameRange p_defaultNames);
  void mirrorBaseChildren(std::string const& p_objPath, std::string const& p_type);
  bool createOrOfferObject(std::string const& p_path, std::string const& p_objPath, std::string const& p_type,
                           std::string const& p_name);
  void synchAllowedNamedObjects(std::string const& p_objPath, std::string const& p_type, NameRange p_names);
  void synchAllowedNamedOptObjs(std::string const& p_objPath, std::string const& p_type, NameRange p_names);
  void deleteDisallowedNamedObjects(std::string const& p_prefix, std::vector<std::string> const& p_existing,
                                    NameRange p_allowed);
  void applyDefaultNames(std::string const& p_key, std::vector<std::string> const& p_names);
  [[nodiscard]] bool includeOptionalObject(std::string const& p_path) const;

  // Edits. Each returns why nothing was done, if nothing was.
  [[nodiscard]] std::optional<Refusal> changeIntent(Edit const& p_edit);
  [[nodiscard]] std::optional<Refusal> createNamedGuideObject(std::string const& p_path);
  [[nodiscard]] std::optional<Refusal> makeCopy(std::string const& p_path, std::string const& p_newName,
                                                ModelState& p_copy);
  [[nodiscard]] std::optional<Refusal> deleteNamedGuideObject(std::string const& p_path);
  void deactivateParam(std::string const& p_objPath, std::string const& p_name);
  [[nodiscard]] bool isUnderActiveRoot(std::string const& p_path) const noexcept;
  void finishEdit(Edit const& p_edit, std::optional<Refusal> p_refusal);

  // The frame of an update: ProvisionalTDF.Update.cpp.
  void updateActiveTDF(bool p_analyse);
  [[nodiscard]] UpdateKind kindOfWalk() const noexcept;
  void walk(UpdateKind p_kind);
  void rememberStartState(UpdateKind p_kind);
  void extractUpdateInformation();
  void completeBrokenUpdate();
  void recoverFromBrokenUpdate() noexcept;

  // Constant after construction.
  ProvisionalTDF& m_owner;
  PhysicsData const& m_rules;
  std::string const m_activeRoot;

  ProvTDFObserver* m_observer = nullptr;

  // The user's requests, and the result of the rules for them.
  ProvisionalFacts m_facts;
  NamedObjectProbe m_probe{m_facts};

  // The base model under the active root, and the joint view that rules read. Made anew by baseUpdate.
  DynamicTDF m_baseTDF{false};
  std::unique_ptr<ProvisionalTDFDB> m_provisionalDB;
  std::unique_ptr<EvalContext> m_evalContext;
  ModelTDF const* m_base = nullptr;

  AffectedWalk m_walk{m_facts, *this, m_rules};
  bool m_walksEverything = false;

  // The data that the last update published in addition to the outcome. The state is brought up to date from the log of
  // the active tree, unless the last update broke off.
  ModelState m_activeState;
  bool m_isStateCurrent = false;
  std::vector<ParamId> m_newlyUnavailParams;
  /// The last update broke off, so the active tree is not the result of a walk.
  bool m_isWalkDue = false;
};

}  // namespace tarn
