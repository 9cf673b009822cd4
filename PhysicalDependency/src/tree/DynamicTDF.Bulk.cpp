// Loading a tree from a model or a state, merging into it, and mirroring a branch of another tree. Loading and merging
// only add and overwrite. Mirroring makes the branch equal and is the only one that deletes. All of them set parameters
// with the same two operations as single edits, so the log records them in the same way.
//
// The walks keep their own stacks, because a model may be of any depth.

#include "tree/DynamicTDFImpl.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "tree/DynamicTDFStateLoad.h"

namespace tarn {

namespace {

/// Returns whether the paths ascend from the first part to the last, so that no object occurs twice.
bool ascend(std::vector<DynamicTDF::StateRange> const& parts) {
  std::string const* last = nullptr;
  for (DynamicTDF::StateRange const& part : parts) {
    if (part.begin == part.end) continue;
    if (last != nullptr && part.begin->first <= *last) return false;
    last = &std::prev(part.end)->first;
  }
  return true;
}

}  // namespace

/// Makes one call skip empty values, if it asks for that or is made by a call that did. The mode ends also when the
/// load throws, so that a later `setParameter` stores an empty value again.
class [[gnu::visibility("hidden")]] DynamicTDF::Impl::SkipEmptyScope {
 public:
  SkipEmptyScope(Impl & tree, bool skipEmpty) noexcept : tree_(tree) {
    tree_.skipEmptyValues_ = tree_.skipEmptyValues_ || skipEmpty;
  }
  ~SkipEmptyScope() {
    tree_.skipEmptyValues_ = false;
  }
  SkipEmptyScope(SkipEmptyScope const&) = delete;
  SkipEmptyScope& operator=(SkipEmptyScope const&) = delete;

 private:
  Impl& tree_;
};

void DynamicTDF::initialise(ModelTDF const* model, std::string const& path, bool skipEmpty) {
  std::string top = path;  // copied, because the caller's string may belong to this tree
  impl_->clear();
  Impl::SkipEmptyScope const mode(*impl_, skipEmpty);
  impl_->setParameters(std::move(top), *model);
}

void DynamicTDF::initialise(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty) {
  initialise(std::vector<StateRange>{{begin, end}}, skipEmpty);
}

void DynamicTDF::initialise(std::vector<StateRange> const& parts, bool skipEmpty) {
  // Refilling is not recorded in a journal, which keeps the whole former content instead.
  bool const mayRefill = !impl_->changes_.isRecording() && impl_->nodes_.journal() == nullptr;
  if (mayRefill && impl_->refill(parts, skipEmpty)) return;
  impl_->clear();
  Impl::SkipEmptyScope const mode(*impl_, skipEmpty);
  std::vector<Node*> loaded;
  for (StateRange const& part : parts) {
    for (auto object = part.begin; object != part.end; ++object) {
      loaded.push_back(&impl_->setParameters(object->first, object->second));
    }
  }
  // `refill` gives an object exactly the parameters of one entry. So a load in which two entries may be of one object
  // is not remembered.
  if (!impl_->changes_.isRecording() && ascend(parts)) impl_->nodes_.rememberLoad(std::move(loaded));
}

void DynamicTDF::update(ModelTDF const* model, std::string const& path, bool skipEmpty) {
  Impl::SkipEmptyScope const mode(*impl_, skipEmpty);
  impl_->setParameters(path, *model);
}

void DynamicTDF::update(ModelState::const_iterator begin, ModelState::const_iterator end, bool skipEmpty) {
  Impl::SkipEmptyScope const mode(*impl_, skipEmpty);
  for (; begin != end; ++begin) impl_->setParameters(begin->first, begin->second);
}

/// Loads one object and everything below it, parents before children, and children in the order in which the model
/// lists them. The model is asked for the children of an object only after the object's own parameters are set, because
/// the model may be a view that reads this tree.
///
/// The objects of another tree are followed from parent to child, so that only the top is looked up. A derived class
/// may answer otherwise than its tree, so it is asked.
void DynamicTDF::Impl::setParameters(std::string topPath, ModelTDF const& model) {
  auto const* const tree = typeid(model) == typeid(DynamicTDF) ? dynamic_cast<DynamicTDF const*>(&model) : nullptr;
  NodeStore const* const nodes = tree == nullptr || tree->impl_.get() == this ? nullptr : &tree->impl_->nodes_;
  struct Pending {
    std::string path;
    Node const* source;  // null for an object that the model is asked for
    Node* parent;        // of the new object, known if `source` is
  };
  std::vector<Pending> pending;
  pending.push_back({std::move(topPath), nullptr, nullptr});
  std::vector<std::string> names;
  std::vector<std::string> children;
  while (!pending.empty()) {
    auto const [objPath, knownSource, parent] = std::move(pending.back());
    pending.pop_back();
    Node const* const source = knownSource != nullptr || nodes == nullptr ? knownSource : nodes->find(objPath);
    if (source != nullptr) {
      Node& node = parent == nullptr
                       ? findCreateNode(objPath)
                       : nodes_.findCreateChild(*parent, std::string_view(objPath).substr(objPath.rfind('/')));
      if (node.params.empty()) node.params.reserve(source->params.size());
      for (auto const& param : source->params) doSetParameter(objPath, param.name(), param.value.value(), node);
      node.params.makeIndex();
      std::string const listed = source->listedAsFound ? objPath : source->path();
      for (Node const* child = source->children.last(); child != nullptr; child = child->previousSibling) {
        // An object that is listed under another path than its own is looked up under that, and is not found.
        bool const isFound = source->listedAsFound && child->listedAsFound;
        pending.push_back({childPath(listed, *child), isFound ? child : nullptr, isFound ? &node : nullptr});
      }
      continue;
    }
    names.clear();
    model.getParameterNames(objPath, names);
    Node& node = findCreateNode(objPath);
    if (node.params.empty()) node.params.reserve(names.size());
    for (std::string const& name : names) doSetParameter(objPath, name, model.getParameterValue(objPath, name), node);
    node.params.makeIndex();

    model.getChildObjectPaths(objPath, children);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      pending.push_back({std::move(*child), nullptr, nullptr});
    }
  }
}

DynamicTDF::Node& DynamicTDF::Impl::setParameters(std::string const& objPath, ObjectState const& values) {
  Node& node = findCreateNode(objPath);
  if (node.params.empty()) node.params.reserve(values.size());
  for (auto const& [name, value] : values) doSetParameter(objPath, name, value, node);
  node.params.makeIndex();
  return node;
}

/// Returns false when the tree has to be rebuilt.
bool DynamicTDF::Impl::refill(std::vector<StateRange> const& parts, bool skipEmpty) {
  DynamicTDFStateLoad load(nodes_, skipEmpty);
  for (StateRange const& part : parts) {
    for (auto object = part.begin; object != part.end; ++object) {
      if (!load.take(object->first, object->second)) return false;
    }
  }
  return load.isComplete();
}

void DynamicTDF::copyBranch(DynamicTDF const* source, std::string const& path) {
  if (source == this) return;
  if (Node const* const sourceNode = source->impl_->nodes_.find(path)) {
    impl_->copyNodeAndChildren(*this, *sourceNode);
  } else {
    impl_->deleteNodeAndChildren(std::string(path));
  }
}

/// Mirrors `sourceTop` and everything below it. The parameters of an object come first, then its children in the order
/// of the source, and last the deletion of those of its children that the source lacks.
void DynamicTDF::Impl::copyNodeAndChildren(DynamicTDF const& self, Node const& sourceTop) {
  // A derived class may list other children than the tree holds. Only the listed ones may become obsolete. So it is
  // asked, and the objects that it names are looked up by path: one of them may be any object of this tree.
  bool const isDerived = typeid(self) != typeid(DynamicTDF);
  std::vector<std::vector<std::string>> listedObsolete;  // of the objects from the top down to the current one

  // The listed path of the current object. Only its components change on the way.
  std::string path = sourceTop.path();
  Node const* sourceNode = &sourceTop;
  Node* targetNode = nullptr;  // not valid on the way up in a derived tree
  auto const enter = [&](Node const& source, Node& target) {
    sourceNode = &source;
    targetNode = &target;
    copyNodeParameters(source, target, path);
    if (isDerived) listedObsolete.push_back(listedChildrenNotIn(self, source, path));
  };
  auto const enterChild = [&](Node const& child, Node* targetParent) {
    std::size_t const parentSize = path.size();
    child.appendListedComponent(path);
    enter(child, isDerived ? findCreateNode(path)
                           : nodes_.findCreateChild(*targetParent, std::string_view(path).substr(parentSize)));
  };

  enter(sourceTop, findCreateNode(path));
  for (;;) {
    if (!sourceNode->children.empty()) {
      enterChild(*sourceNode->children.first(), targetNode);
      continue;
    }
    // Go up until an object has a sibling that comes next. The objects of a pair have the same path, so their parents
    // are a pair too.
    for (;;) {
      Node* targetParent = nullptr;
      if (isDerived) {
        for (std::string const& child : listedObsolete.back()) deleteObject(child);
        listedObsolete.pop_back();
      } else {
        deleteObsoleteChildren(*sourceNode, *targetNode, path);
        targetParent = targetNode->parent;
      }
      if (sourceNode == &sourceTop) return;
      path.resize(path.rfind('/'));
      if (sourceNode->nextSibling != nullptr) {
        enterChild(*sourceNode->nextSibling, targetParent);
        break;
      }
      sourceNode = sourceNode->parent;
      targetNode = targetParent;
    }
  }
}

/// Returns the paths that `self` lists as children of `path` and that no child of `sourceNode` has, in byte order.
std::vector<std::string> DynamicTDF::Impl::listedChildrenNotIn(DynamicTDF const& self, Node const& sourceNode,
                                                               std::string const& path) {
  std::vector<std::string> listed;
  self.getChildObjectPaths(path, listed);
  std::sort(listed.begin(), listed.end());
  listed.erase(std::unique(listed.begin(), listed.end()), listed.end());
  std::vector<std::string> wanted;
  wanted.reserve(sourceNode.children.size());
  for (Node const& child : sourceNode.children) wanted.push_back(childPath(path, child));
  std::sort(wanted.begin(), wanted.end());
  std::vector<std::string> obsolete;
  std::set_difference(listed.begin(), listed.end(), wanted.begin(), wanted.end(), std::back_inserter(obsolete));
  return obsolete;
}

void DynamicTDF::Impl::copyNodeParameters(Node const& sourceNode, Node& targetNode, std::string const& objPath) {
  for (auto const& entry : sourceNode.params) {
    std::string const& name = entry.name();
    Node::ParamVal const& param = entry.value;
    // The record decides, not the type of the parameter. So a parameter of allowed value type that was set with an
    // empty record reaches the target as a plain value.
    if (param.allowedValues().hasAllowedValues) {
      doSetParameter(objPath, name, param.allowedValues(), param.value(), targetNode);
    } else {
      doSetParameter(objPath, name, param.value(), targetNode);
    }
  }

  auto sourceParam = sourceNode.params.begin();
  for (auto param = targetNode.params.begin(); param != targetNode.params.end();) {
    while (sourceParam != sourceNode.params.end() && sourceParam->name() < param->name()) ++sourceParam;
    if (sourceParam != sourceNode.params.end() && sourceParam->name() == param->name()) {
      ++param;
    } else {
      param = eraseParam(objPath, targetNode, param);
    }
  }
}

/// Deletes the children here that the source lacks, in byte order of their paths. `path` is that of both objects. This
/// does what the listing of the children would, without making their paths.
void DynamicTDF::Impl::deleteObsoleteChildren(Node const& sourceNode, Node const& targetNode, std::string const& path) {
  // Mostly the two have the same children in the same order.
  auto const same = [](Node const& a, Node const& b) { return a.type == b.type && a.name() == b.name(); };
  if (std::equal(sourceNode.children.begin(), sourceNode.children.end(), targetNode.children.begin(),
                 targetNode.children.end(), same)) {
    return;
  }
  auto const sortedComponents = [](Node::ChildList const& children) {
    std::vector<std::string> components;
    components.reserve(children.size());
    for (Node const& child : children) child.appendListedComponent(components.emplace_back());
    std::sort(components.begin(), components.end());
    return components;
  };
  auto const wanted = sortedComponents(sourceNode.children);
  auto const present = sortedComponents(targetNode.children);
  std::vector<std::string_view> obsolete;
  std::set_difference(present.begin(), present.end(), wanted.begin(), wanted.end(), std::back_inserter(obsolete));
  for (std::string_view const component : obsolete) deleteObject(std::string(path).append(component));
}

void DynamicTDF::Impl::clear() {
  auto const before = nodes_.positionInJournal();
  nodes_.reset();
  try {
    changes_.clear(nodes_.journal());
  } catch (...) {
    nodes_.journal()->undoTo(*before);  // it alone can fail to keep the log
    throw;
  }
}

}  // namespace tarn
