#pragma once

#include <string>

#include <tarn/ModelState.h>

namespace tarn {

class ModelTDF;

/// Adds the content of `model` at and below `path` to `state`, objects without parameters included.
void dumpModelState(ModelTDF const& model, std::string const& path, ModelState& state);

/// Returns `state`, a branch of a model at `from`, with its paths changed to begin with `to`.
[[nodiscard]] ModelState withLeadingPathReplaced(ModelState state, std::string const& from, std::string const& to);

}  // namespace tarn
