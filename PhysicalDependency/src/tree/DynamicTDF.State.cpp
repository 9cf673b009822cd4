// Taking the content of a branch as a state, which is in byte order of whole paths. Objects do not know their paths,
// and the order of the tree is not that order: `/A B` comes between `/A` and `/A/B`. So each object with children gives
// two things to put in order among its neighbours, itself as `A` and what is below it as `A/`. Those in byte order,
// each opened where it stands, give the paths in byte order: nothing that begins with `A/` can fall outside of it, and
// no neighbour's component has a "/" with which it could fall within.

#include <tarn/DynamicTDF.h>

#include <tarn/StringUtilities.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "tree/ChangeRecord.h"
#include "tree/DynamicTDFNode.h"
#include "tree/DynamicTDFStore.h"

namespace tarn {

class DynamicTDF::StateWalk {
 public:
  /// `path` is the one under which `top` is found.
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

  [[nodiscard]] ModelState release() { return std::move(state_); }

 private:
  struct Step {
    Node const* node;
    std::size_t parentSize;
    /// Whether the object itself is meant or all below it.
    bool below;
  };

  /// The object of path_ enters the state, if it has parameters.
  void take(Node const& node) {
    if (node.params.empty()) return;
    ObjectState& values = state_.try_emplace(state_.end(), path_)->second;
    for (auto const& param : node.params) values.try_emplace(values.end(), param.name(), param.value.value());
  }

  /// Puts the children of the object of path_ on the stack, the one that comes first on top.
  void open(Node const& node) {
    auto const from = static_cast<std::ptrdiff_t>(pending_.size());
    for (Node const* child = node.children.last(); child != nullptr; child = child->previousSibling) {
      if (!child->children.empty()) pending_.push_back({child, path_.size(), true});
      if (!child->params.empty()) pending_.push_back({child, path_.size(), false});
    }
    auto const comesLater = [](Step const& a, Step const& b) { return compare(a, b) > 0; };
    // A tree that was loaded from a state is nearly always in order already.
    if (!std::is_sorted(pending_.begin() + from, pending_.end(), comesLater)) {
      std::sort(pending_.begin() + from, pending_.end(), comesLater);
    }
  }

  /// As bytes, without putting the texts together.
  [[nodiscard]] static int compare(Step const& a, Step const& b) noexcept {
    if (a.node == b.node) return static_cast<int>(a.below) - static_cast<int>(b.below);
    auto const partsA = partsOf(a);
    auto const partsB = partsOf(b);
    // Types are pooled: most neighbours have the very same.
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
  // With a path all those above it are in the tree, so there is nothing below an object that is not there.
  Node const* const top = rootPath == "/" ? &nodes_->root() : nodes_->find(rootPath);
  return top == nullptr ? ModelState() : StateWalk(*top, top == &nodes_->root() ? std::string() : rootPath).release();
}

void DynamicTDF::refreshState(ModelState& state, std::string const& rootPath) const {
  auto const& added = changes_->addedParams();
  auto const& modified = changes_->modifiedParams();
  auto const& deleted = changes_->deletedParams();
  // Each entry of the log costs a look-up in tree and state, which is several times what a parameter costs in a state
  // that is made anew; objects have a handful of parameters. The log of an object that is found under another path than
  // it is listed under may tell of it by either.
  std::size_t const changes = added.size() + modified.size() + deleted.size();
  if (changes > nodes_->size() * 2 || nodes_->hasOtherwiseListed()) {
    state = getState(rootPath);
    return;
  }
  for (auto const* const list : {&added, &modified, &deleted}) {
    for (auto const& [objPath, name] : *list) refreshParameter(state, rootPath, objPath, name);
  }
}

void DynamicTDF::refreshParameter(ModelState& state, std::string const& rootPath, std::string const& objPath,
                                  std::string const& name) const {
  if (!StringUtilities::isPathRootedAt(rootPath, objPath)) return;
  // What is set under "/" goes to the root and is logged as it was set. The root itself answers to "" only.
  if (objPath == "/") return refreshParameter(state, rootPath, "", name);
  if (std::string const* const value = findParameterValue(objPath, name)) {
    state[objPath].insert_or_assign(name, *value);
  } else if (auto const object = state.find(objPath); object != state.end()) {
    object->second.erase(name);
    if (object->second.empty()) state.erase(object);
  }
}

}  // namespace tarn
