// Takes the content of a branch as a state, which is in byte order of whole paths. Objects do not know their paths, and
// the order of the tree is a different one: `/A B` comes between `/A` and `/A/B`. So each object with children gives
// two entries to sort among its siblings: itself as `A`, and everything below it as `A/`. Sorted in byte order and
// opened in place, these give the paths in byte order: everything that begins with `A/` stays together, and no sibling
// can come between, because no component contains a "/".

#include "tree/DynamicTDFImpl.h"

#include <tarn/StringUtilities.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "journal/JournaledWrites.h"

namespace tarn {

class [[gnu::visibility("hidden")]] DynamicTDF::Impl::StateWalk {
 public:
  /// `path` is the path under which `top` is found.
  StateWalk(Node const& top, std::string path) : path_(std::move(path)) {
    take(top);
    open(top);
    while (!pending_.empty()) {
      Step const step = pending_.back();
      pending_.pop_back();
      path_.resize(step.parentSize);
      step.node->appendFoundComponent(path_);
      if (step.below) {
        open(*step.node);
      } else {
        take(*step.node);
      }
    }
  }

  [[nodiscard]] ModelState release() {
    return std::move(state_);
  }

 private:
  struct Step {
    Node const* node;
    std::size_t parentSize;
    /// True for everything below the object, false for the object itself.
    bool below;
  };

  /// Enters the object at path_ in the state, if it has parameters.
  void take(Node const& node) {
    if (node.params.empty()) return;
    ObjectState& values = state_.try_emplace(state_.end(), path_)->second;
    for (auto const& param : node.params) values.try_emplace(values.end(), param.name(), param.value.value());
  }

  /// Puts the children of the object at path_ on the stack, the first one on top.
  void open(Node const& node) {
    auto const from = static_cast<std::ptrdiff_t>(pending_.size());
    for (Node const* child = node.children.last(); child != nullptr; child = child->previousSibling) {
      if (!child->children.empty()) pending_.push_back({child, path_.size(), true});
      if (!child->params.empty()) pending_.push_back({child, path_.size(), false});
    }
    auto const comesLater = [](Step const& a, Step const& b) { return compare(a, b) > 0; };
    // A tree that was loaded from a state is mostly in order already.
    if (!std::is_sorted(pending_.begin() + from, pending_.end(), comesLater)) {
      std::sort(pending_.begin() + from, pending_.end(), comesLater);
    }
  }

  /// Compares as bytes, without composing the strings.
  [[nodiscard]] static int compare(Step const& a, Step const& b) noexcept {
    if (a.node == b.node) return static_cast<int>(a.below) - static_cast<int>(b.below);
    auto const partsA = partsOf(a);
    auto const partsB = partsOf(b);
    // Types are pooled, and most siblings share one.
    std::size_t const start = &a.node->type == &b.node->type ? 1 : 0;
    std::size_t i = start;
    std::size_t j = start;
    std::string_view textA = partsA[i];
    std::string_view textB = partsB[j];
    for (;;) {
      while (textA.empty() && i + 1 < partsA.size()) textA = partsA[++i];
      while (textB.empty() && j + 1 < partsB.size()) textB = partsB[++j];
      std::size_t const common = std::min(textA.size(), textB.size());
      if (common == 0) return static_cast<int>(textB.empty()) - static_cast<int>(textA.empty());
      if (int const order = textA.substr(0, common).compare(textB.substr(0, common)); order != 0) return order;
      textA.remove_prefix(common);
      textB.remove_prefix(common);
    }
  }

  [[nodiscard]] static std::array<std::string_view, 4> partsOf(Step const& step) noexcept {
    Node const& node = *step.node;
    return {node.type, node.writtenName.empty() ? "" : ":", node.writtenName, step.below ? "/" : ""};
  }

  std::string path_;
  std::vector<Step> pending_;
  ModelState state_;
};

ModelState DynamicTDF::getState(std::string const& rootPath) const {
  // Every object of the tree has all objects above it in the tree. So nothing can exist below a missing object.
  Node const* const top = rootPath == "/" ? &impl_->nodes_.root() : impl_->nodes_.find(rootPath);
  return top == nullptr ? ModelState()
                        : Impl::StateWalk(*top, top == &impl_->nodes_.root() ? std::string() : rootPath).release();
}

void DynamicTDF::refreshState(ModelState& state, std::string const& rootPath) const {
  DynamicTDFAccess::refreshState(*this, state, rootPath, nullptr);
}

namespace {

/// Each entry of the log costs a look-up in tree and state. That is several times the cost of a parameter in a new
/// state. Most objects have a handful of parameters, so few changes need no count of the parameters; one object may
/// have all.
bool isRebuiltFor(std::size_t changes, std::size_t objects, ModelState const& state) {
  if (changes <= objects * 2) return false;
  std::size_t params = 0;
  for (auto const& [path, object] : state) params += object.size();
  return changes > params / 4;
}

}  // namespace

void DynamicTDFAccess::refreshState(DynamicTDF const& tree, ModelState& state, std::string const& rootPath,
                                    Journal* journal) {
  DynamicTDF::Impl const& impl = *tree.impl_;
  auto const& added = impl.changes_.addedParams();
  auto const& modified = impl.changes_.modifiedParams();
  auto const& deleted = impl.changes_.deletedParams();
  // For an object that is found under another path than it is listed under, the log may hold either path.
  std::size_t const changes = added.size() + modified.size() + deleted.size();
  if (isRebuiltFor(changes, impl.nodes_.size(), state) || impl.nodes_.hasOtherwiseListed()) {
    journaled::assign(journal, state, tree.getState(rootPath));
    return;
  }
  for (auto const* const list : {&added, &modified, &deleted}) {
    for (auto const& [objPath, name] : *list) impl.refreshParameter(state, rootPath, objPath, name, journal);
  }
}

void DynamicTDF::Impl::refreshParameter(ModelState& state, std::string const& rootPath, std::string const& objPath,
                                        std::string const& name, Journal* journal) const {
  if (!StringUtilities::isPathRootedAt(rootPath, objPath)) return;
  // A parameter that is set under "/" goes to the root and is logged as it was set. The root itself answers to "" only.
  if (objPath == "/") return refreshParameter(state, rootPath, "", name, journal);
  if (Node::ParamVal const* const param = nodes_.findParam(objPath, name)) {
    ObjectState& object = journaled::emplace(journal, state, objPath, ObjectState()).first->second;
    auto const [entry, isNew] = journaled::emplace(journal, object, name, param->value());
    if (!isNew) journaled::assign(journal, entry->second, std::string(param->value()));
  } else if (auto const object = state.find(objPath); object != state.end()) {
    auto const entry = object->second.find(name);
    if (entry != object->second.end()) journaled::Erasing(journal, object->second).erase(entry);
    if (object->second.empty()) journaled::Erasing(journal, state).erase(object);
  }
}

}  // namespace tarn
