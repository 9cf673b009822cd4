#pragma once

#include <tarn/Export.h>

namespace tarn {

class PhysicsData;

/// What value rules need of the database they belong to. Had from `PhysicsData::getRules` and handed to the evaluating
/// operations of `ParamValueDef`; nothing else is done with it.
class TARN_EXPORT ModelRules {
 public:
  explicit ModelRules(PhysicsData const* data) noexcept : data_(data) {}
  [[nodiscard]] PhysicsData const* data() const noexcept { return data_; }

 private:
  PhysicsData const* data_;
};

}  // namespace tarn
