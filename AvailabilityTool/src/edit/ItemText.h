#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/ObjectRecord.h>
#include <tarn/session/ParamRecord.h>
#include <tarn/session/Session.h>

#include "edit/ResultText.h"

namespace tarn::tool {

/// All about one parameter, as lines.
[[nodiscard]] std::string paramText(session::ParamRecord const& param, TextLook const& look);

/// An object and what is in it: its parameters, those on offer, those that are not available, and its children.
[[nodiscard]] std::string objectText(session::Session const& session, session::ObjectRecord const& object,
                                     TextLook const& look);

/// Where a value comes from: "set by you, step 3", "default". "" if it does not exist.
[[nodiscard]] std::string originText(session::ParamRecord const& param);

/// Which of the values that these edits have set are out of their bounds, as one sentence. "" if all are inside.
[[nodiscard]] std::string remarkOn(session::Session const& session, std::span<Edit const> edits);

/// Lines below the paths of their objects. Neighbours of the same path share it. A line that is empty shows the path
/// alone.
[[nodiscard]] std::string groupedText(std::vector<std::pair<std::string, std::string>> const& lines);

}  // namespace tarn::tool
