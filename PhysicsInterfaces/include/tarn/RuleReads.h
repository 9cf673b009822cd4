#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PathPattern.h>

namespace tarn {

/// What an expression reads of the model: values of parameters, and the existence and number of objects. Tools build on
/// it: explanation, linting, skipping what cannot have changed.
struct TARN_EXPORT RuleReads {
  struct Parameter {
    PathPattern objects;  // seen from the object that owns the rule
    std::string name;
  };

  std::vector<Parameter> parameters;
  std::vector<PathPattern> objectSets;
  /// The name, type or path of the context object is used, so the result differs from object to object even when
  /// nothing of the model is read.
  bool contextIdentity = false;

  [[nodiscard]] bool readsModel() const noexcept { return !parameters.empty() || !objectSets.empty(); }
  /// True when the result is the same in every context.
  [[nodiscard]] bool isContextFree() const noexcept;
};

}  // namespace tarn
