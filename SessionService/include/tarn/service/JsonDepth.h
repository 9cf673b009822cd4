#pragma once

#include <cstddef>
#include <string_view>

#include <tarn/Export.h>

namespace tarn::service {

/// Whether lists and objects are nested deeper than `most` in a text, so that a hostile message is refused before it is
/// parsed. A text that is not JSON may get either answer. Linear in the text.
[[nodiscard]] TARN_EXPORT bool isDeeperThan(std::string_view text, std::size_t most) noexcept;

}  // namespace tarn::service
