#include <tarn/TextPlace.h>

namespace tarn {

std::string const& TextPlace::source() const noexcept {
  static std::string const none;
  return source_ ? *source_ : none;
}

std::string TextPlace::text() const {
  if (!isKnown()) return {};
  return *source_ + ":" + std::to_string(line_) + ":" + std::to_string(column_);
}

}  // namespace tarn
