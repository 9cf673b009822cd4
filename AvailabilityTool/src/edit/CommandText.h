#pragma once

#include <string>

#include <tarn/Edit.h>

namespace tarn::tool {

/// The command of `zev edit` that makes an edit: `set /Case/Flow Regime = Laminar`.
[[nodiscard]] std::string commandText(Edit const& edit);

/// Whether a command with this text can be typed on one line and reaches the edit unchanged.
[[nodiscard]] bool isTypeable(Edit const& edit);

}  // namespace tarn::tool
