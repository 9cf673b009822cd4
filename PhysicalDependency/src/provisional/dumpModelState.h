#pragma once

#include <string>

#include <tarn/ModelState.h>

namespace tarn {

class ModelTDF;

/// Adds the content of `model` at and below `path` to `state`, objects without parameters included.
void dumpModelState(ModelTDF const& model, std::string const& path, ModelState& state);

/// `state`, which holds what stands at and below `from`, as it reads at `to`.
[[nodiscard]] ModelState withLeadingPathReplaced(ModelState state, std::string const& from, std::string const& to);

}  // namespace tarn
