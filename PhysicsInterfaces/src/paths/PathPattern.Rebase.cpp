// Rebasing: one pattern as seen from the objects that another pattern names.

#include <tarn/PathPattern.h>

#include <algorithm>

namespace tarn {

PathPattern PathPattern::seenFrom(PathPattern const& base) const {
  if (start_ == Start::Root || start_ == Start::Owner) return *this;
  PathPattern result = base;
  if (start_ == Start::Nearest) {
    auto const isOfType = [&](Step const& step) {
      return (step.kind == StepKind::Child || step.kind == StepKind::ChildrenOfType) && step.type == startType_;
    };
    auto const isClear = [](Step const& step) {
      return step.kind == StepKind::Child || step.kind == StepKind::ChildrenOfType;
    };
    auto const nearest = std::find_if(result.steps_.rbegin(), result.steps_.rend(), isOfType);
    bool const clear = std::all_of(result.steps_.rbegin(), nearest, isClear);
    if (clear && nearest != result.steps_.rend()) {
      result.steps_.erase(nearest.base(), result.steps_.end());
    } else if (clear && result.start_ == Start::Context) {
      result = PathPattern();
      result.start_ = Start::Nearest;
      result.startType_ = startType_;
    } else {
      result = PathPattern();
      result.start_ = Start::Root;
      result.steps_ = {{StepKind::AnyDepth, {}, {}}, {StepKind::ChildrenOfType, startType_, {}}};
    }
  }
  result.steps_.insert(result.steps_.end(), steps_.begin(), steps_.end());
  result.classify();
  return result;
}

PathPattern PathPattern::withoutFirstStep() const {
  PathPattern result = *this;
  if (!result.steps_.empty()) result.steps_.erase(result.steps_.begin());
  result.classify();
  return result;
}

}  // namespace tarn
