#include "console/LineBuffer.h"

namespace tarn::tool {

LineBuffer::int_type LineBuffer::underflow() {
  try {
    std::optional<std::string> next = source_();
    if (!next) return traits_type::eof();
    line_ = std::move(*next);
    line_ += '\n';
  } catch (...) {
    return traits_type::eof();
  }
  setg(line_.data(), line_.data(), line_.data() + line_.size());
  return traits_type::to_int_type(line_.front());
}

}  // namespace tarn::tool
