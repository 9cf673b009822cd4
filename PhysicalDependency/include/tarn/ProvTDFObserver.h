#pragma once

#include <optional>

#include <tarn/Edit.h>
#include <tarn/Export.h>
#include <tarn/Refusal.h>

namespace tarn {

class ModelTDF;

/// Is called by a `ProvisionalTDF` right after it has started and after every edit. Derive from it to follow what
/// others do to a state; see `ProvisionalTDF::setObserver`.
///
/// At the time of a call the update is complete, and all getters of the state show it. An observer must not edit the
/// state that calls it. An exception that it throws reaches the caller of the edit. The edit itself is complete.
class TARN_EXPORT ProvTDFObserver {
 public:
  /// The state has been started over `base`, by `initialise` or `initialiseBasedOn`. The host owns `base`.
  virtual void onInitialised(ModelTDF const& base) = 0;
  /// An edit has been made, or it has been refused for a reason. Not called for an edit before the start, nor for one
  /// that ended in an exception.
  virtual void onEdit(Edit const& edit, std::optional<Refusal> refusal) = 0;

 protected:
  ProvTDFObserver() = default;
  ProvTDFObserver(ProvTDFObserver const&) = default;
  ProvTDFObserver& operator=(ProvTDFObserver const&) = default;
  ~ProvTDFObserver() = default;
};

}  // namespace tarn
