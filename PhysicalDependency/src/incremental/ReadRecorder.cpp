#include "incremental/ReadRecorder.h"

#include <algorithm>

namespace tarn {

bool ReadRecorder::closeKept(void const* rule, std::vector<Fact>& reads) {
  auto const opened =
      std::find_if(open_.rbegin(), open_.rend(), [rule](Open const& open) { return open.rule == rule; });
  if (opened == open_.rend()) return false;
  auto const begin = reads_.begin() + static_cast<std::ptrdiff_t>(opened->begin);
  reads.assign(begin, reads_.end());
  reads_.erase(begin, reads_.end());
  open_.erase(std::prev(opened.base()), open_.end());
  makeUnique(reads);
  return true;
}

std::vector<Fact>& ReadRecorder::uniqueReads() {
  makeUnique(reads_);
  return reads_;
}

void makeUnique(std::vector<Fact>& facts) {
  if (facts.size() < 2) return;
  std::sort(facts.begin(), facts.end());
  facts.erase(std::unique(facts.begin(), facts.end()), facts.end());
}

}  // namespace tarn
