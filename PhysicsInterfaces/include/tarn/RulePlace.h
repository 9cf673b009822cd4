#pragma once

#include <tarn/TextPlace.h>

namespace tarn {

/// Where a rule is written.
using RulePlace = TextPlace;

}  // namespace tarn
