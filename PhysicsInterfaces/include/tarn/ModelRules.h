#pragma once

#include <tarn/Export.h>

namespace tarn {

class PhysicsData;

/// Gives value rules access to their database. `PhysicsData::getRules` returns it; pass it to the evaluating operations
/// of `ParamValueDef`. It has no other use.
class TARN_EXPORT ModelRules {
 public:
  explicit ModelRules(PhysicsData const* data) noexcept : data_(data) {}
  [[nodiscard]] PhysicsData const* data() const noexcept { return data_; }

 private:
  PhysicsData const* data_;
};

}  // namespace tarn
