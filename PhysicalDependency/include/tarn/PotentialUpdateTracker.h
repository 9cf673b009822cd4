#pragma once

#include <map>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ParamAllowedValues.h>
#include <tarn/PotentialUpdateData.h>

namespace tarn {

class DynamicTDF;

/// Collects the potential items of one walk after another and tells how each differs from the walk before: what is
/// newly on offer, what no longer is, and what has other allowed values.
///
///     tracker.start();                        // a walk begins
///     tracker.addParam(objPath, name);        // for each potential item that it finds
///     tracker.synchWithTDF(&model);           // the walk is done, and has brought the model up to date
///     tracker.getAddedParams();
///
/// | before        | now                                             | told as                            |
/// |---------------|-------------------------------------------------|------------------------------------|
/// | not potential | potential                                       | added, also if the model held it   |
/// | potential     | potential                                       | nothing                            |
/// | potential     | potential, other allowed values (of parameters) | changed                            |
/// | potential     | not potential, and the model holds it           | nothing: it has been activated     |
/// | potential     | not potential, and the model does not hold it   | deleted                            |
///
/// Between `start` and `synchWithTDF` the comparison is empty, and outside of these two additions are ignored. The
/// first walk is compared with nothing, so all it finds is added. A walk that was started and never compared is carried
/// on by the next one: what it collected stays, unless it is cleared.
class TARN_EXPORT PotentialUpdateTracker {
 public:
  using Params = PotentialUpdateData::Params;

  /// Begins a walk: what the last one found becomes what this one is compared with. Does nothing while a walk is on.
  void start();

  /// @name What the walk finds
  /// See `PotentialUpdateData`. Ignored unless a walk is on.
  /// @{
  void addObject(std::string const& path);
  void addParam(std::string const& objPath, std::string const& name);
  void addParam(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowedValues);
  /// @}

  /// Removes what stands at and below `path` from what was found, at any time. If it is found no more by the end of the
  /// walk, it counts as gone.
  void clearObjectReferences(std::string const& path);

  /// Ends the walk and compares. `model` says which of the items that are no longer potential are present. Does nothing
  /// unless a walk is on.
  void synchWithTDF(DynamicTDF const* model);

  /// @name What the walk under way, or else the last one, found
  /// References stay valid as long as the tracker and show what comes.
  /// @{
  [[nodiscard]] bool hasObjPotentialChildren(std::string const& path) const;
  [[nodiscard]] std::vector<std::string> const& getObjects() const noexcept;
  [[nodiscard]] Params const& getParams() const noexcept;
  /// @}

  /// @name How the last walk differs from the one before
  /// Empty until the walk has been compared. Objects in byte order and each once; parameters by object path in byte
  /// order and as often as they were found. A reference is valid until the next `start`.
  /// @{
  [[nodiscard]] std::vector<std::string> const& getAddedObjects() const noexcept;
  [[nodiscard]] std::vector<std::string> const& getDeletedObjects() const noexcept;
  [[nodiscard]] Params const& getAddedParams() const noexcept;
  [[nodiscard]] Params const& getChangedParams() const noexcept;
  [[nodiscard]] Params const& getDeletedParams() const noexcept;
  /// The allowed values of a potential parameter, or an empty record.
  [[nodiscard]] ParamAllowedValues const& getAllowedValueData(std::string const& objPath,
                                                              std::string const& name) const;
  /// @}

 private:
  enum class State : int { Idle = 0, Collecting = 1, Synched = 2 };

  void synchParams(DynamicTDF const& model);
  void synchParamsOfObject(std::string const& objPath, DynamicTDF const& model);
  void synchObjects(DynamicTDF const& model);
  void clear();

  State state_ = State::Idle;
  PotentialUpdateData previous_;
  PotentialUpdateData current_;
  // The comparison; empty unless Synched.
  std::vector<std::string> addedObjects_;
  std::vector<std::string> deletedObjects_;
  Params addedParams_;
  Params changedParams_;
  Params deletedParams_;
};

}  // namespace tarn
