// Matching: resolution to one path, and expansion over a model.
//
// Expansion works step by step on a list of candidates. A candidate from a listing is known to exist; the model is
// asked about any other only once, at the end. Candidates are made distinct after each step that can bring the same
// object twice, so that each step of `**/**` stays linear in the size of the model.

#include <tarn/PathPattern.h>

#include <algorithm>
#include <span>
#include <unordered_set>
#include <utility>

#include <tarn/PathUtils.h>

namespace tarn {

namespace {

void append(std::string& path, PathPattern::Step const& step) {
  path += '/';
  path += step.type;
  if (!step.name.empty()) {
    path += ':';
    path += step.name;
  }
}

bool toParent(std::string& path) {
  if (path.empty()) return false;
  path.resize(PathUtils::parentOf(path).size());
  return true;
}

struct Candidate {
  std::string path;
  bool known;  // the model listed it
};

bool lacksName(std::string const& path) noexcept {
  std::size_t const mark = path.find_last_of("/:");
  return mark == std::string::npos || path[mark] == '/';
}

void makeDistinct(std::vector<Candidate>& candidates) {
  std::unordered_set<std::string_view> seen;
  std::vector<Candidate> distinct;
  seen.reserve(candidates.size());
  distinct.reserve(candidates.size());  // the views into it must not move
  for (auto& candidate : candidates) {
    if (seen.contains(candidate.path)) continue;
    distinct.push_back(std::move(candidate));
    seen.insert(distinct.back().path);
  }
  candidates = std::move(distinct);
}

/// Replaces each candidate by itself and everything below it, depth first. An object that was reached before is not
/// walked again, because everything below it was reached as well.
void descend(std::vector<Candidate>& candidates, ModelTDF const& model) {
  std::vector<Candidate> result;
  std::unordered_set<std::string> seen;
  std::vector<Candidate> open;
  std::vector<std::string> children;
  for (auto& start : candidates) {
    open.push_back(std::move(start));
    while (!open.empty()) {
      Candidate next = std::move(open.back());
      open.pop_back();
      if (!seen.insert(next.path).second) continue;
      model.getChildObjectPaths(next.path, children);
      for (auto child = children.rbegin(); child != children.rend(); ++child) open.push_back({std::move(*child), true});
      result.push_back(std::move(next));
    }
  }
  candidates = std::move(result);
}

bool startPath(PathPattern const& pattern, TDFContext const& context, std::string& path) {
  switch (pattern.start()) {
    case PathPattern::Start::Root:
      path.clear();
      return true;
    case PathPattern::Start::Context:
      path = context.objPath();
      return true;
    case PathPattern::Start::Owner:
      path = context.ownerPath();
      return true;
    case PathPattern::Start::Nearest: {
      std::string_view nearest = context.objPath();
      while (!nearest.empty() && PathUtils::lastType(nearest) != pattern.startType()) {
        nearest = PathUtils::parentOf(nearest);
      }
      path = nearest;
      return !nearest.empty();
    }
  }
  return false;
}

/// A search calls itself once for each step with a star, and `holds` may search again. So that the stack suffices, it
/// is made only for patterns with few stars.
constexpr std::ptrdiff_t maxSearchedStars = 16;

bool isStar(PathPattern::Step const& step) {
  return step.kind == PathPattern::StepKind::ChildrenOfType || step.kind == PathPattern::StepKind::AnyChild;
}

/// Whether `holds` is true of an object that `steps`, which go down, lead to.
///
/// A model that has an object in both forms, /Case/Dom and /Case/Dom:Dom, lists the first path twice. It is visited
/// once.
bool findBelow(std::span<PathPattern::Step const> steps, Candidate at, ModelTDF const& model,
               std::function<bool(std::string const& path)> const& holds) {
  while (!steps.empty() && steps.front().kind == PathPattern::StepKind::Child) {
    append(at.path, steps.front());
    at.known = false;
    steps = steps.subspan(1);
  }
  if (steps.empty()) return (at.known || model.hasObject(at.path)) && holds(at.path);
  PathPattern::Step const& step = steps.front();
  steps = steps.subspan(1);
  auto const isFoundAt = [&](std::string const& child) {
    return steps.empty() ? holds(child) : findBelow(steps, {child, true}, model, holds);
  };
  if (step.kind == PathPattern::StepKind::ChildrenOfType) {
    std::size_t const sizeWithoutName = at.path.size() + 1 + step.type.size();
    bool isVisited = false;
    return model.anyChildOfType(at.path, step.type, [&](std::string const& child) {
      if (child.size() == sizeWithoutName && std::exchange(isVisited, true)) return false;
      return isFoundAt(child);
    });
  }
  std::vector<std::string> children;
  model.getChildObjectPaths(at.path, children);
  std::unordered_set<std::string_view> visited;
  return std::any_of(children.begin(), children.end(), [&](std::string const& child) {
    if (lacksName(child) && !visited.insert(child).second) return false;
    return isFoundAt(child);
  });
}

}  // namespace

bool PathPattern::resolve(TDFContext const& context, std::string& path) const {
  if (!startPath(*this, context, path)) return false;
  for (auto const& step : steps_) {
    if (step.kind == StepKind::Child) {
      append(path, step);
    } else if (!toParent(path)) {
      return false;
    }
  }
  return true;
}

std::vector<std::string> PathPattern::expand(TDFContext const& context, ModelTDF const& model) const {
  std::vector<std::string> result;
  std::vector<Candidate> candidates(1);
  if (!startPath(*this, context, candidates[0].path)) return result;
  candidates[0].known = false;

  bool mayRepeat = false;
  std::vector<std::string> found;
  for (auto const& step : steps_) {
    switch (step.kind) {
      case StepKind::Child:
        for (auto& candidate : candidates) {
          append(candidate.path, step);
          candidate.known = false;
        }
        break;
      case StepKind::Parent:
        std::erase_if(candidates, [](Candidate& candidate) {
          candidate.known = false;
          return !toParent(candidate.path);
        });
        makeDistinct(candidates);
        break;
      case StepKind::ChildrenOfType:
      case StepKind::AnyChild: {
        std::vector<Candidate> next;
        for (auto const& candidate : candidates) {
          if (step.kind == StepKind::AnyChild) {
            model.getChildObjectPaths(candidate.path, found);
          } else {
            model.getChildObjectPathsByType(candidate.path, step.type, found);
          }
          // A model that has an object in both forms, /Case/Dom and /Case/Dom:Dom, lists one path twice.
          mayRepeat = mayRepeat || std::count_if(found.begin(), found.end(), lacksName) > 1;
          for (auto& path : found) next.push_back({std::move(path), true});
        }
        candidates = std::move(next);
        break;
      }
      case StepKind::AnyDepth:
        descend(candidates, model);
        break;
    }
  }

  if (mayRepeat) makeDistinct(candidates);
  result.reserve(candidates.size());
  for (auto& candidate : candidates) {
    if (candidate.known || model.hasObject(candidate.path)) result.push_back(std::move(candidate.path));
  }
  return result;
}

bool PathPattern::findIf(TDFContext const& context, ModelTDF const& model,
                         std::function<bool(std::string const& path)> const& holds) const {
  auto const goesDown = [](Step const& step) { return step.kind == StepKind::Child || isStar(step); };
  if (!std::all_of(steps_.begin(), steps_.end(), goesDown) ||
      std::count_if(steps_.begin(), steps_.end(), isStar) > maxSearchedStars) {
    auto const paths = expand(context, model);
    return std::any_of(paths.begin(), paths.end(), holds);
  }

  Candidate start{{}, false};
  return startPath(*this, context, start.path) && findBelow(steps_, std::move(start), model, holds);
}

}  // namespace tarn
