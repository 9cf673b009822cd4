#include <tarn/TypeTree.h>

#include <algorithm>

#include <tarn/PathUtils.h>

namespace tarn {

TypeTree::TypeTree(PhysicsData const& data) {
  children_[""];
  for (auto const& root : data.getPertinentGlobalCheckRoots()) add("/" + root);
  for (auto const* object : data.objects()) {
    add(object->typePath());
    for (auto const& child : object->children()) add(object->typePath() + "/" + child->type);
  }
}

void TypeTree::add(std::string const& typePath) {
  // From the top, so that each parent lists its children in the order in which the rules name them.
  for (std::size_t end = typePath.find('/', 1);; end = typePath.find('/', end + 1)) {
    std::string const path = typePath.substr(0, end);
    if (children_.try_emplace(path).second) {
      auto const parent = std::string(PathUtils::parentOf(path));
      children_[parent].push_back(path.substr(parent.size() + 1));
      byType_[children_[parent].back()].push_back(path);
    }
    if (end == std::string::npos) return;
  }
}

std::vector<std::string> const& TypeTree::childTypes(std::string const& typePath) const {
  static std::vector<std::string> const none;
  auto const found = children_.find(typePath);
  return found == children_.end() ? none : found->second;
}

std::set<std::string> TypeTree::atAnyDepth(std::set<std::string> const& tops, std::string const& type) const {
  std::set<std::string> found;
  auto const candidates = byType_.find(type);
  if (candidates == byType_.end()) return found;
  for (auto const& path : candidates->second) {
    std::string top(PathUtils::parentOf(path));
    while (!top.empty() && !tops.contains(top)) top.resize(PathUtils::parentOf(top).size());
    if (tops.contains(top)) found.insert(path);
  }
  return found;
}

std::vector<std::string const*> TypeTree::ownersOf(PathPattern const& pattern) const {
  std::vector<std::string const*> owners;
  auto const add = [&](std::string const& path) {
    auto const found = children_.find(path);
    if (found != children_.end()) owners.push_back(&found->first);
  };
  auto const ofType = [&](std::string const& type) -> std::vector<std::string> const& {
    static std::vector<std::string> const none;
    auto const found = byType_.find(type);
    return found == byType_.end() ? none : found->second;
  };
  bool const isOwn = pattern.start() == PathPattern::Start::Context || pattern.start() == PathPattern::Start::Owner;
  if (pattern.start() == PathPattern::Start::Nearest) {
    // From an object below, the nearest one of the type leads to the same.
    for (auto const& path : ofType(pattern.startType())) add(path);
  } else if (isOwn && !pattern.steps().empty() &&
             (pattern.steps().front().kind == PathPattern::StepKind::Child ||
              pattern.steps().front().kind == PathPattern::StepKind::ChildrenOfType)) {
    for (auto const& path : ofType(pattern.steps().front().type)) add(std::string(PathUtils::parentOf(path)));
  } else {
    for (auto const& entry : children_) owners.push_back(&entry.first);
  }
  return owners;
}

std::set<std::string> TypeTree::resolve(PathPattern const& pattern, std::string const& owner) const {
  std::set<std::string> current;
  switch (pattern.start()) {
    case PathPattern::Start::Root:
      current.insert("");
      break;
    case PathPattern::Start::Context:
    case PathPattern::Start::Owner:
      current.insert(owner);
      break;
    case PathPattern::Start::Nearest: {
      std::string_view nearest = owner;
      while (!nearest.empty() && PathUtils::lastType(nearest) != pattern.startType()) {
        nearest = PathUtils::parentOf(nearest);
      }
      if (nearest.empty()) return {};
      current.emplace(nearest);
      break;
    }
  }
  auto const& steps = pattern.steps();
  for (std::size_t i = 0; i < steps.size(); ++i) {
    auto const& step = steps[i];
    // The usual form, without a look at everything that is below.
    if (step.kind == PathPattern::StepKind::AnyDepth && i + 1 < steps.size() &&
        (steps[i + 1].kind == PathPattern::StepKind::Child ||
         steps[i + 1].kind == PathPattern::StepKind::ChildrenOfType)) {
      current = atAnyDepth(current, steps[++i].type);
      continue;
    }
    std::set<std::string> next;
    for (auto const& path : current) {
      switch (step.kind) {
        case PathPattern::StepKind::Child:
        case PathPattern::StepKind::ChildrenOfType:
          if (auto child = path + "/" + step.type; knows(child)) next.insert(std::move(child));
          break;
        case PathPattern::StepKind::AnyChild:
          for (auto const& type : childTypes(path)) next.insert(path + "/" + type);
          break;
        case PathPattern::StepKind::AnyDepth:
          // Everything below a path has it and a "/" for its beginning.
          next.insert(path);
          for (auto below = children_.lower_bound(path + "/"); below != children_.end(); ++below) {
            if (!below->first.starts_with(path + "/")) break;
            next.insert(below->first);
          }
          break;
        case PathPattern::StepKind::Parent:
          if (!path.empty()) next.emplace(PathUtils::parentOf(path));
          break;
      }
    }
    current = std::move(next);
  }
  return current;
}

}  // namespace tarn
