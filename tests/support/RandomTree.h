#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/Error.h>

#include "journal/Journal.h"
#include "tree/DynamicTDFImpl.h"
#include "tree/TreeListener.h"

namespace tarn::test {

/// All that a tree holds.
struct TreeContent {
  explicit TreeContent(DynamicTDF const& tree) {
    auto const& store = DynamicTDFAccess::storeOf(tree);
    std::size_t count = 0;
    for (Node const* node = &store.root(); node != nullptr; node = node->nextBelow(store.root())) {
      ++count;
      take(*node, store.find(pathOf(*node)) == node);
    }
    if (count != store.size()) isConsistent = false;
    if (store.hasOtherwiseListed()) log = "some are listed otherwise\n";
    for (auto const& [path, values] : tree.getState("")) log += path + " " + std::to_string(values.size()) + "\n";
    logParams("added", tree.getAddedParameters());
    logParams("modified", tree.getModifiedParameters());
    logParams("deleted", tree.getDeletedParameters());
    for (std::string const& path : tree.getDeletedObjects()) log += "deleted object " + path + "\n";
  }
  friend bool operator==(TreeContent const&, TreeContent const&) = default;

  /// The hashes of an object and of the name of one of its parameters. The object itself has no name.
  using Key = std::pair<std::size_t, std::size_t>;
  [[nodiscard]] static Key keyOf(PathHash const& object, std::string_view name) noexcept {
    return {object.value(), PathHash(name).value()};
  }

  /// The objects in their order, with their children by type, and what is found of them by path.
  std::string objects;
  /// Values and allowed values of the parameters, and an empty entry for each object.
  std::map<Key, std::string> facts;
  std::string log;
  std::set<std::string> paths;
  /// Whether everything is found under its path or name, and is counted.
  bool isConsistent = true;

 private:
  using Node = DynamicTDFAccess::Node;

  [[nodiscard]] static std::string pathOf(Node const& node) {
    std::string path;
    for (Node const* at = &node; at->parent != nullptr; at = at->parent) {
      std::string component;
      at->appendFoundComponent(component);
      path.insert(0, component);
    }
    return path;
  }

  void take(Node const& node, bool isFound) {
    paths.insert(pathOf(node));
    if (!isFound) isConsistent = false;
    objects += pathOf(node) + ":";
    for (Node const& child : node.children) objects += " " + child.type + ":" + child.writtenName;
    for (Node const* child = node.children.last(); child != nullptr; child = child->previousSibling) {
      objects += " " + child->writtenName;
    }
    objects += " " + std::to_string(node.children.size()) + " children, by type";
    for (std::string_view const type : {"A", "A B", "B", "C"}) {
      node.children.visitOfType(type, [this](Node const& child) { objects += " " + child.writtenName; });
      objects += ";";
    }
    facts[keyOf(node.hash, "")];
    for (auto const& param : node.params) {
      ParamAllowedValues const& allowed = param.value.allowedValues();
      objects += "\n  " + param.name();
      std::string& fact = facts[keyOf(node.hash, param.name())];
      fact = param.value.value() + (param.value.hasAllowedValues() ? " of" : "");
      for (std::string const& value : allowed.allowedValues.vector()) fact += " " + value;
      if (node.params.find(param.name()) != &param.value) isConsistent = false;
    }
    objects += "\n";
  }
  void logParams(char const* kind, std::vector<DynamicTDF::ParamId> const& params) {
    for (auto const& [path, name] : params) log += std::string(kind) + " " + path + " " + name + "\n";
  }
};

/// Keeps which facts a tree reports as changed. It allocates nothing then, because a rollback must not.
class ToldChanges final : public TreeListener {
 public:
  void onParamSetChange(PathHash const& object, std::string_view name) noexcept override {
    keep(TreeContent::keyOf(object, name));
  }
  void onParamChange(PathHash const& object, std::string_view name) noexcept override {
    keep(TreeContent::keyOf(object, name));
  }
  void onObjectSetChange(PathHash const& /*parent*/, std::string_view /*type*/,
                         PathHash const& object) noexcept override {
    keep(TreeContent::keyOf(object, ""));
  }
  void clear() {
    told_.clear();
    told_.reserve(most);
  }

  [[nodiscard]] bool explain(TreeContent const& before, TreeContent const& after) const {
    std::set<TreeContent::Key> const told(told_.begin(), told_.end());
    return told_.size() < most && tells(told, before, after) && tells(told, after, before);
  }

 private:
  static constexpr std::size_t most = 100'000;

  void keep(TreeContent::Key const& key) noexcept {
    if (told_.size() < told_.capacity()) told_.push_back(key);
  }
  [[nodiscard]] static bool tells(std::set<TreeContent::Key> const& told, TreeContent const& a, TreeContent const& b) {
    return std::all_of(a.facts.begin(), a.facts.end(), [&](auto const& fact) {
      auto const other = b.facts.find(fact.first);
      return (other != b.facts.end() && other->second == fact.second) || told.contains(fact.first);
    });
  }

  std::vector<TreeContent::Key> told_;
};

/// A tree under random edits of every kind, with random marks that are rolled back or released.
class RandomTree {
 public:
  /// Runs an operation that may be made to fail, and returns whether it failed.
  using Attempting = std::function<bool(std::function<void()> const&)>;

  explicit RandomTree(unsigned seed) : random_(seed), tree_(seed % 3 == 0 ? derived() : plain()) {
    for (int i = 0; i < 30; ++i) source_.setParameter(path(), name(), value());
    for (int i = 0; i < 20; ++i) source_.createObject(path(), type(), "n" + std::to_string(i));
    source_.setParameter("/A", "choice", ParamAllowedValues({"1", "2"}, {}), "1");
    for (int i = upTo(40); i > 0; --i) editUnlessRefused();
    DynamicTDFAccess::attach(*tree_, journal_);
    DynamicTDFAccess::storeOf(*tree_).setListener(&told_);
  }

  int upTo(int limit) { return std::uniform_int_distribution<int>(0, limit)(random_); }

  /// One edit of any kind. It may throw what the tree throws.
  void edit() {
    switch (upTo(18)) {
      case 0:
        return tree_->deleteObject(path());
      case 1:
        return tree_->deleteObjectUnrecorded(path());
      case 2:
        return tree_->deleteParameter(path(), name());
      case 3:
        (void)tree_->createObject(path(), type(), upTo(1) == 0 ? "" : name());
        return;
      case 4:
        return tree_->copyBranch(&source_, path());
      case 5: {
        ModelState const part = source_.getState(path());
        return tree_->update(part.begin(), part.end(), upTo(1) == 0);
      }
      case 6:
        return tree_->setParameter(path(), name(), ParamAllowedValues({value(), value()}, {}), value());
      case 7:
        return tree_->resetChanges();
      case 8:
        return upTo(2) == 0 ? tree_->stopRecordingUpdates() : tree_->startRecordingUpdates();
      case 9:
        return upTo(3) == 0 ? load() : tree_->update(&source_, path());
      case 10:
        return addChildren();
      case 11:
        return removeChildren();
      case 12:
        return changeManyParameters();
      case 13:
        return tree_->setParameter(path() + "//", name(), value());  // cannot be read
      default:
        return tree_->setParameter(path(), name(), value());
    }
  }

  /// Random edits and marks. Returns the first difference between the content at a mark and after its rollback.
  [[nodiscard]] std::string differenceAfter(int steps, Attempting const& attempting, Attempting const& rollingBack) {
    for (int i = 0; i < steps; ++i) {
      int const kind = upTo(19);
      if (kind < 3 && marks_.size() < 4) {
        std::optional<Journal::Mark> mark;
        TreeContent const content(*tree_);
        if (!content.isConsistent) return "what the tree holds is not found, or is not counted";
        if (!attempting([&] { mark = journal_.mark(); })) marks_.push_back({*mark, content, loads_});
      } else if (kind < 5 && !marks_.empty()) {
        std::string const difference = rollBack(rollingBack);
        if (!difference.empty()) return difference;
      } else if (kind == 5 && !marks_.empty()) {
        auto const at = static_cast<std::size_t>(upTo(static_cast<int>(marks_.size()) - 1));
        journal_.release(marks_[at].mark);
        marks_.erase(marks_.begin() + static_cast<std::ptrdiff_t>(at), marks_.end());
      } else {
        (void)attempting([this] { editUnlessRefused(); });
      }
    }
    return marks_.empty() ? "" : rollBack(rollingBack);
  }

 private:
  struct Derived final : DynamicTDF {};

  static std::unique_ptr<DynamicTDF> plain() { return std::make_unique<DynamicTDF>(); }
  /// Mirrors in another way, because it may list other children than it has.
  static std::unique_ptr<DynamicTDF> derived() { return std::make_unique<Derived>(); }

  /// An edit that is refused may have been made in part.
  void editUnlessRefused() {
    try {
      edit();
    } catch (Error const&) {
    }
  }

  std::string rollBack(Attempting const& rollingBack) {
    auto const at = static_cast<std::size_t>(upTo(static_cast<int>(marks_.size()) - 1));
    auto const [mark, before, loads] = marks_[at];
    marks_.erase(marks_.begin() + static_cast<std::ptrdiff_t>(at), marks_.end());
    std::uint64_t const revision = tree_->getRevision();
    TreeContent const former(*tree_);
    told_.clear();
    (void)rollingBack([this, mark = mark] { journal_.rollback(mark); });
    TreeContent const now(*tree_);
    if (now.objects != before.objects) return "before:\n" + before.objects + "\nrolled back:\n" + now.objects;
    if (!now.isConsistent) return "what the tree holds after a rollback is not found, or is not counted";
    if (now.log != before.log) return "before:\n" + before.log + "\nrolled back:\n" + now.log;
    if (now.facts != before.facts) return "a value differs";
    for (std::string const& path : former.paths) {
      if (tree_->hasObject(path) != now.paths.contains(path)) return path + " is found by a kept look-up";
    }
    if (tree_->getRevision() < revision) return "the revision goes back";
    if (now.facts != former.facts && tree_->getRevision() == revision) return "the revision misses a change";
    // A load reports nothing.
    if (loads == loads_ && !told_.explain(former, now)) return "a change that the rollback made is not reported";
    return {};
  }

  std::string type() { return pick({"A", "A B", "B", "C"}); }
  std::string name() { return pick({"p", "q", "r", "A"}); }
  std::string value() { return pick({"0", "1,2", " ", "3"}); }
  std::string pick(std::vector<std::string> const& from) {
    return from[static_cast<std::size_t>(upTo(static_cast<int>(from.size()) - 1))];
  }
  std::string path() {
    std::string result;
    for (int depth = upTo(3); depth > 0; --depth) {
      result += "/" + type();
      if (upTo(2) == 0) result += ":" + pick({"x", "A", "B"});
    }
    return result;
  }

  void load() {
    ++loads_;
    if (upTo(1) == 0) return tree_->initialise(&source_, path());
    ModelState const state = source_.getState(path());
    tree_->initialise(state.begin(), state.end());
  }
  /// More than the number from which on children are kept by type.
  void addChildren() {
    std::string const parent = path();
    for (int i = upTo(24); i > 0; --i) (void)tree_->createObject(parent, type(), "n" + std::to_string(upTo(40)));
  }
  void removeChildren() {
    std::vector<std::string> children;
    tree_->getChildObjectPaths(path(), children);
    std::erase_if(children, [this](std::string const& /*child*/) { return upTo(2) == 0; });
    tree_->deleteObjects(children);
  }
  /// More than one chunk of a table holds.
  void changeManyParameters() {
    std::string const object = pick({"", "/A", "/B"});
    int const first = upTo(2) * 130;
    bool const adds = upTo(1) == 0;
    for (int i = upTo(260); i > 0; --i) {
      std::string const parameter = "m" + std::to_string(1000 + first + i);
      if (adds) {
        tree_->setParameter(object, parameter, "1");
      } else {
        tree_->deleteParameter(object, parameter);
      }
    }
  }

  std::mt19937 random_;
  DynamicTDF source_;
  Journal journal_;
  std::unique_ptr<DynamicTDF> tree_;
  ToldChanges told_;
  struct SetMark {
    Journal::Mark mark;
    TreeContent content;
    int loads;
  };
  std::vector<SetMark> marks_;
  int loads_ = 0;
};

}  // namespace tarn::test
