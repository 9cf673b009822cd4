#include <tarn/service/JsonDepth.h>

namespace tarn::service {

bool isDeeperThan(std::string_view text, std::size_t most) noexcept {
  std::size_t depth = 0;
  bool isInString = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    char const c = text[i];
    if (isInString) {
      if (c == '\\') ++i;
      if (c == '"') isInString = false;
    } else if (c == '"') {
      isInString = true;
    } else if (c == '[' || c == '{') {
      if (++depth > most) return true;
    } else if ((c == ']' || c == '}') && depth > 0) {
      --depth;
    }
  }
  return false;
}

}  // namespace tarn::service
