#pragma once

#include <map>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/PotentialUpdateData.h>

namespace tarn {

class DynamicTDF;

/// Collects the potential items of one walk after another and reports how each walk differs from the previous one:
/// which items are newly on offer, which no longer are, and which have other allowed values.
///
///     tracker.start();                        // a walk begins
///     tracker.addParam(objPath, name);        // for each potential item that it finds
///     tracker.synchWithTDF(&model);           // the walk has ended and has updated the model
///     tracker.getAddedParams();
///
/// | before        | now                                             | reported as                        |
/// |---------------|-------------------------------------------------|------------------------------------|
/// | not potential | potential                                       | added, even if the model held it   |
/// | potential     | potential                                       | nothing                            |
/// | potential     | potential, other allowed values (of parameters) | changed                            |
/// | potential     | not potential, and the model holds it           | nothing: it has been activated     |
/// | potential     | not potential, and the model does not hold it   | deleted                            |
///
/// Between `start` and `synchWithTDF` the comparison is empty. Outside of these two calls additions are ignored. The
/// first walk is compared with nothing, so everything it finds counts as added. When a walk was started and never
/// compared, the next one continues it: the items collected so far stay unless they are cleared.
class TARN_EXPORT PotentialUpdateTracker {
 public:
  using Params = PotentialUpdateData::Params;

  /// Begins a walk, which will be compared with what the last one found. Does nothing during a walk.
  void start();

  /// @name What the walk finds
  /// See `PotentialUpdateData`. Ignored outside a walk.
  /// @{
  void addObject(std::string const& path);
  void addParam(std::string const& objPath, std::string const& name);
  void addParam(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues);
  /// @}

  /// Removes the items at and below `path` from those found, at any time. An item that is not found again by the end of
  /// the walk counts as gone.
  void clearObjectReferences(std::string const& path);

  /// Ends the walk and compares it with the previous one. `model` shows which items that are no longer potential are
  /// present. Does nothing outside a walk.
  void synchWithTDF(DynamicTDF const* model);

  /// @name Items of the current walk, or of the last one
  /// References stay valid as long as the tracker and show later additions.
  /// @{
  /// See `PotentialUpdateData::hasObjPotentialChildren`, also for the root.
  [[nodiscard]] bool hasObjPotentialChildren(std::string const& path) const;
  [[nodiscard]] std::vector<std::string> const& getObjects() const noexcept;
  [[nodiscard]] Params const& getParams() const noexcept;
  /// @}

  /// @name How the last walk differs from the one before
  /// Empty until the walk has been compared. Objects come in byte order and each once. Parameters come by object path
  /// in byte order. Within one object, an added or deleted parameter comes as often as its walk found it and in that
  /// order; a changed one comes once, in name order. A reference is valid until the next `start`.
  /// @{
  [[nodiscard]] std::vector<std::string> const& getAddedObjects() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  [[nodiscard]] Params const& getAddedParams() const noexcept;
  [[nodiscard]] Params const& getChangedParams() const noexcept;
  [[nodiscard]] Params const& getDeletedParams() const noexcept;
  /// Returns the allowed values of a potential parameter, or an empty record.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;
  /// @}

 private:
  friend class FollowedOffers;  // for the library's own sources
  enum class State : int { Idle = 0, Collecting = 1, Synched = 2 };

  void synchParams(DynamicTDF const& model);
  void synchParamsOfObject(std::string const& objPath, DynamicTDF const& model);
  void synchObjects(DynamicTDF const& model);
  void clear();

  State state_ = State::Idle;
  PotentialUpdateData previous_;
  PotentialUpdateData current_;
  // The comparison. Empty unless Synched.
  std::vector<std::string> addedObjects_;
  std::vector<std::string> deletedObjects_;
  Params addedParams_;
  Params changedParams_;
  Params deletedParams_;
};

}  // namespace tarn
