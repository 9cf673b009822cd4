#include <tarn/session/Findings.h>

#include <algorithm>

namespace tarn::session {

std::size_t Findings::count(Severity severity) const noexcept {
  return static_cast<std::size_t>(
      std::count_if(list.begin(), list.end(), [severity](Finding const& one) { return one.severity == severity; }));
}

}  // namespace tarn::session
