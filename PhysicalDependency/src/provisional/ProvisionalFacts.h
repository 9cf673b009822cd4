#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/EvalCache.h>
#include <tarn/ModelState.h>

#include "journal/Journal.h"
#include "provisional/Intent.h"
#include "provisional/Listings.h"
#include "provisional/Outcome.h"
#include "provisional/StateMarks.h"

namespace tarn {

class FactMarks;
class ModelTDF;
class ParamAllowedValues;
class ParamAvailInfo;
class QuantityModifier;

/// The ways in which an update brings the outcome up to date.
enum class UpdateKind {
  WithoutWalk,
  /// A walk of everything, which keeps nothing for the next one.
  FullWalk,
  /// A walk of everything, from which on walks are followed.
  FirstFollowedWalk,
  /// A walk of what changes concern.
  FollowedWalk
};

/// All facts of a provisional state: the user's requests (`Intent`) and the result of the rules for them (`Outcome`).
///
/// Walk handlers and edits read and write facts through this class only, one fact a call. So there is one place that
/// knows which facts a visit used, and that every change of a fact passes through. These things rely on that: while
/// walks are followed, every change marks the visits that it concerns, and what a visit offers is listed under that
/// visit; while they are not, the results that rules keep are dropped with every change of the active tree; recording
/// and quantities are switched off together for the probe; and what an update may leave half done is known.
///
/// The getters of the provisional state read `outcome()` between updates. They are not part of a visit.
class ProvisionalFacts final : public Journal::Participant {
 public:
  using Strings = std::vector<std::string>;

  explicit ProvisionalFacts(QuantityModifier const* modifier);

  /// Records all changes while a mark is open.
  [[nodiscard]] Journal& journal() noexcept { return m_journal; }

  /// @name Intent: reading
  /// @{
  [[nodiscard]] bool isParamInGuide(std::string const& p_objPath, std::string const& p_name) const;
  /// "" when the guide has no such parameter. Valid until the guide changes.
  [[nodiscard]] std::string const& getGuideValue(std::string const& p_objPath, std::string const& p_name) const;
  void getGuideValueAsList(std::string const& p_objPath, std::string const& p_name, Strings& p_values) const;
  [[nodiscard]] bool isObjectInGuide(std::string const& p_path) const;
  void getGuideNames(std::string const& p_objPath, std::string const& p_type, Strings& p_names) const;
  [[nodiscard]] ActivityState getParamActivity(std::string const& p_objPath, std::string const& p_name) const;
  [[nodiscard]] ActivityState getObjActivity(std::string const& p_objPath) const;
  /// Valid until more is remembered.
  [[nodiscard]] Strings const& getSubsetSelectionValues(std::string const& p_objPath, std::string const& p_name) const;
  [[nodiscard]] bool areDefaultNamesApplied(std::string const& p_key) const;
  [[nodiscard]] bool hasBaseObject() const noexcept { return m_intent.hasBaseObject; }
  /// @}

  /// @name Intent: writing
  /// @{
  void setGuideParam(std::string const& p_objPath, std::string const& p_name, std::string const& p_value);
  void deleteGuideParam(std::string const& p_objPath, std::string const& p_name);
  bool createGuideObject(std::string const& p_parentPath, std::string const& p_type, std::string const& p_name);
  /// Cannot fail while the journal does not record.
  void deleteGuideObject(std::string const& p_path);
  void deleteGuideObjects(std::string const& p_objPath, std::string const& p_type);
  void updateGuide(ModelState const& p_state);
  void setParamActivity(std::string const& p_objPath, std::string const& p_name, bool p_on);
  void setObjActivity(std::string const& p_path, bool p_on);
  void eraseFromOptActivityMaps(std::string const& p_path);
  void rememberSubsetValue(std::string const& p_objPath, std::string const& p_name, std::string const& p_value);
  void rememberSubsetValues(std::string const& p_objPath, std::string const& p_name, Strings const& p_values);
  void setDefaultNamesApplied(std::string const& p_key);
  /// Begins with another guide. The default names that an incomplete update has dealt with are to come again, because
  /// their objects go with the old guide.
  void startWithGuide(std::unique_ptr<DynamicTDF> p_guide, bool p_hasBaseObject) noexcept;
  /// @}

  /// @name Outcome: reading
  /// @{
  [[nodiscard]] bool hasActiveObject(std::string const& p_path) const;
  void getActiveNames(std::string const& p_objPath, std::string const& p_type, Strings& p_names) const;
  bool getActivePaths(std::string const& p_objPath, std::string const& p_type, Strings& p_paths) const;
  /// Whether the object holds nothing and has nothing on offer below it.
  [[nodiscard]] bool isBarren(std::string const& p_path) const;
  void dumpActive(std::string const& p_path, ModelState& p_state) const;
  /// @}

  /// @name Outcome: writing
  /// @{
  void createObject(std::string const& p_objPath, std::string const& p_type, std::string const& p_name);
  void deleteObject(std::string const& p_path);
  void deleteObjects(Strings const& p_paths);
  void deleteObjectUnrecorded(std::string const& p_path);
  void mirrorBranch(DynamicTDF const& p_base, std::string const& p_path);
  void deleteParam(std::string const& p_objPath, std::string const& p_name);
  /// Both return whether the value is empty.
  bool updateParam(std::string const& p_objPath, std::string const& p_name, std::string const& p_value);
  bool updateParam(std::string const& p_objPath, std::string const& p_name, ParamAllowedValues const& p_allowed,
                   std::string const& p_value);
  void updateBounds(std::string const& p_objPath, std::string const& p_name, ParamAvailInfo const* p_info);
  std::string modifyQuantity(ModelTDF const* p_view, std::string const& p_objPath, std::string const& p_name,
                             std::string const& p_value, ParamAvailInfo const* p_info);
  void addPotentialObject(std::string const& p_path);
  void addPotentialParam(std::string const& p_objPath, std::string const& p_name);
  void addPotentialParam(std::string const& p_objPath, std::string const& p_name, ParamAllowedValues const& p_allowed);
  void clearObjectReferences(std::string const& p_path);
  void addEmptyParam(std::string const& p_objPath, std::string const& p_name, bool p_isTyped);
  void addUserNamedType(std::string const& p_parentPath, std::string const& p_type);
  /// While off, the active tree does not record and quantity types are not tracked: for an object that is only tried.
  void publishChanges(bool p_on) noexcept;
  /// @}

  /// @name The frame of an update
  /// @{
  /// Forgets the changes of the last update, and the facts that the update finds again.
  void beginUpdate(UpdateKind p_kind);
  /// Determines the changes of the offers in this update, and sorts the named types.
  void completeUpdate();
  /// After a walk that was completed: its default names are no longer taken back.
  void confirmDefaultNames() noexcept;
  /// After an update that failed: no offers, no empty parameters, the named types in order.
  void abandonUpdate() noexcept;
  /// The next update reports all bounds and quantity types anew.
  void forgetBoundsAndQuantities() noexcept;
  /// @}

  /// @name Followed walks
  /// @{
  /// From now on, every change marks the visits that it concerns; null ends that. `p_marks` is used until then.
  void follow(FactMarks* p_marks) noexcept;
  /// Until the next call, the offers and the empty parameters are those of this visit. Null for no visit.
  void collectInto(VisitResult* p_result) noexcept { m_visit = p_result; }
  /// Until the next call, `isBarren` is asked about an object, which is this one unless one is tried. Null for none.
  void setEndingObject(WalkObject const* p_object) noexcept { m_ending = p_object; }
  [[nodiscard]] Listings& listings() noexcept { return m_listings; }
  /// Whether a path in one of the trees can be written in two ways. Then paths do not identify items.
  [[nodiscard]] bool hasAmbiguousPaths() const noexcept;
  /// @}

  /// @name Marks
  /// @{
  [[nodiscard]] StateMarks& marks() noexcept { return m_openMarks; }
  /// Null while no mark is open.
  [[nodiscard]] Journal* recording() noexcept { return m_journal.isRecording() ? &m_journal : nullptr; }
  /// @}

  [[nodiscard]] Outcome const& outcome() const noexcept { return m_outcome; }
  [[nodiscard]] Intent const& intent() const noexcept { return m_intent; }

  /// The results that rules keep. Enabled during a walk only; between walks the base model may change.
  [[nodiscard]] EvalCache& keptResults() noexcept { return m_keptResults; }

 private:
  void activeWritten() noexcept;
  void noteCreated(std::string p_path);
  void ownFactWritten(std::string_view p_key) noexcept;
  void noteAtMark(Journal& p_journal) override;

  /// Destroyed after what it records.
  Journal m_journal;
  Intent m_intent;
  Outcome m_outcome;

  // While walks are followed.
  FactMarks* m_marks = nullptr;
  Listings m_listings{m_outcome};
  StateMarks m_openMarks{m_journal, m_listings, m_outcome};
  VisitResult* m_visit = nullptr;
  WalkObject const* m_ending = nullptr;
  /// An object is tried, and these are the offers in it.
  bool m_isTrying = false;
  PotentialUpdateData m_triedOffers;

  EvalCache m_keptResults;
  /// The revision of the active tree when the results were last dropped.
  std::uint64_t m_revision = 0;
};

}  // namespace tarn
