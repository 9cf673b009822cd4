#pragma once

#include <cstddef>
#include <string>

#include "console/Completion.h"

namespace tarn::tool {

/// The choices of a completion as lines of text for a terminal: sorted downwards in as many columns as `width` has room
/// for, and when not all are named a line that tells how many more there are. Widths are those of the current locale;
/// what it cannot show becomes "?".
[[nodiscard]] std::string choiceList(Completion const& completion, std::size_t width);

/// How many columns of a terminal the text takes, in the current locale.
[[nodiscard]] std::size_t columnsOf(std::string const& text);

}  // namespace tarn::tool
