#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ParamAllowedValues.h>
#include <tarn/PotentialUpdateTracker.h>

#include "journal/Journal.h"

namespace tarn {

class DynamicTDF;

/// Changes the potential items of a tracker one by one, instead of collecting them all in every walk. The tracker then
/// has the same items and the same changes as after a walk that collects them.
class FollowedOffers {
 public:
  /// Where the potential parameter is in the tracker's list.
  using Place = PotentialUpdateData::Params::iterator;

  /// Changes of parameters are recorded in `journal` while that records. Both are used as long as this exists.
  FollowedOffers(PotentialUpdateTracker& tracker, Journal& journal) noexcept : tracker_(tracker), journal_(journal) {}

  /// Begins the walk that starts to follow. It adds all items. The tracker's `start` has run.
  void beginAll() noexcept;
  /// Begins a later walk, instead of the tracker's `start`: the items of the last walk stay.
  void beginChanges();
  /// Instead of a walk: nothing is potential until the next walk, which then finds everything potential anew. Only what
  /// changes is found by visits, so the items are kept.
  void hide();

  /// @name Parameters
  /// `entry` is the place of the parameter in the rules of its object, and orders the potential parameters of an
  /// object. `allowed` is null for a parameter that is offered without allowed values.
  /// @{
  /// Adds a parameter before another one of the same object, or as the last one of the object. `place` becomes where it
  /// is, and is kept true by later calls and by rollbacks.
  void addParam(Place const* next, std::string const& objPath, std::uint32_t entry, std::string const& name,
                ParamAllowedValues const* allowed, Place& place);
  /// Keeps the parameter, with other allowed values.
  void changeParam(std::string const& objPath, std::uint32_t entry, std::string const& name,
                   ParamAllowedValues const* allowed);
  void removeParam(Place& place, std::uint32_t entry);
  /// @}

  /// The objects that one visit offers change from `before` to `after`. Their list is changed by the caller.
  void changeObjects(std::vector<std::string> const& before, std::vector<std::string> const& after);
  [[nodiscard]] std::vector<std::string>& objects() noexcept { return tracker_.current_.objects_; }

  /// Ends a walk of the second kind that broke off, after its changes were rolled back: the items of the walk before it
  /// are those with which the next walk compares.
  void abandonChanges() noexcept;
  /// Ends an update of any kind, instead of the tracker's `synchWithTDF`.
  void complete(DynamicTDF const& model);

 private:
  /// The state of a parameter before the walk, and whether it is potential now.
  struct ParamChange {
    std::string name;
    bool wasOffered = false;
    bool isOffered = false;
    ParamAllowedValues allowedBefore;
  };
  struct ObjectChange {
    bool wasOffered = false;
    bool isOffered = false;
  };

  void noteParam(std::string const& objPath, std::uint32_t entry, std::string const& name, bool wasOffered,
                 bool isOffered);
  using AllowedByName = std::map<std::string, ParamAllowedValues>;
  AllowedByName& allowedOf(std::string const& objPath);
  void setAllowed(std::string const& objPath, std::string const& name, ParamAllowedValues const& allowed);
  void eraseAllowed(std::string const& objPath, std::string const& name);

  [[nodiscard]] Journal* recording() noexcept { return journal_.isRecording() ? &journal_ : nullptr; }

  PotentialUpdateTracker& tracker_;
  Journal& journal_;
  void clearChanges();
  void showOrHide();

  /// The running walk changes items one by one, and what they were is noted.
  bool isChanging_ = false;
  /// The items are hidden, as the items of the walk before.
  bool isHidden_ = false;
  /// The items were hidden before the running walk.
  bool isAllNew_ = false;
  // The items that changed in this walk. Sorted as the tracker's lists are.
  std::map<std::pair<std::string, std::uint32_t>, ParamChange> params_;
  std::map<std::string, ObjectChange> objects_;
};

}  // namespace tarn
