#pragma once

#include <cstddef>
#include <string>

#include "console/Completion.h"

namespace tarn::tool {

/// The choices of a completion as lines for a terminal: sorted downwards, in as many columns as fit in `width`. If not
/// all choices are listed, a last line says how many more there are. Widths are those of the current locale. A
/// character that it cannot show becomes "?".
[[nodiscard]] std::string choiceList(Completion const& completion, std::size_t width);

/// The number of terminal columns of the text in the current locale.
[[nodiscard]] std::size_t columnsOf(std::string const& text);

}  // namespace tarn::tool
