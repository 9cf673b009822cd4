#pragma once

#include <tarn/ProvisionalTDF.h>

#include "provisional/ProvisionalTDFImpl.h"

namespace tarn {

/// Operations of a provisional state that are not for its users.
struct ProvisionalTDFAccess {
  /// Makes every update from now on a walk of everything, or lets it leave out what no change concerns. The results are
  /// the same; tests compare them.
  static void walkEverything(ProvisionalTDF& state, bool on) noexcept { state.m_impl->walkEverything(on); }
};

}  // namespace tarn
