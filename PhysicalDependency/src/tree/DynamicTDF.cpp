// Reading and single edits of the editable tree, and its change log. A read finds the object in the store and asks it.
// An edit changes the object together with its entry in the log. DynamicTDF.Bulk.cpp loads, merges and mirrors,
// DynamicTDF.State.cpp takes the state. The DynamicTDFStore and DynamicTDFNode sources hold the objects.

#include "tree/DynamicTDFImpl.h"

#include <tarn/StringUtilities.h>

#include <optional>
#include <typeinfo>
#include <utility>

#include "tree/SharedEmpty.h"

namespace tarn {

struct DynamicTDF::Impl::AddedParam {
  void operator()() noexcept {
    tree->tellParamSet(*node, *name);
    tree->nodes_.noteChange();
    node->params.takeBack(inserted);
  }

  Impl* tree;
  Node* node;
  std::string const* name;
  Node::Params::Inserted inserted;
};

struct DynamicTDF::Impl::ChangedParam {
  void operator()() noexcept {
    tree->nodes_.noteChange();
    *node->params.find(*name) = std::move(before);
    tree->tellParam(*node, *name);
  }

  Impl* tree;
  Node* node;
  std::string const* name;
  Node::ParamVal before;
};

struct DynamicTDF::Impl::ErasedParam {
  void operator()() noexcept {
    std::string const& name = erased->entry.name();
    tree->nodes_.noteChange();
    node->params.putBack(*std::move(erased));
    tree->tellParamSet(*node, name);
  }

  Impl* tree;
  Node* node;
  /// Empty until the parameter is erased.
  std::optional<Node::Params::Erased> erased;
};

DynamicTDF::DynamicTDF(bool recordUpdates) : impl_(std::make_unique<Impl>(recordUpdates)) {}

DynamicTDF::~DynamicTDF() = default;

ObjectReader const* DynamicTDF::objectReader() const noexcept {
  return typeid(*this) == typeid(DynamicTDF) ? &impl_->nodes_ : nullptr;
}

void DynamicTDF::swap(DynamicTDF& other) noexcept {
  impl_.swap(other.impl_);
}

bool DynamicTDF::hasObject(std::string const& path) const {
  return impl_->nodes_.find(path) != nullptr;
}

bool DynamicTDF::hasParameter(std::string const& paramPath) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return hasParameter(objPath, name);
}

bool DynamicTDF::hasParameter(std::string const& objPath, std::string const& name) const {
  return impl_->nodes_.findParam(objPath, name) != nullptr;
}

std::string const& DynamicTDF::getObjectName(std::string const& path) const {
  Node const* const node = impl_->nodes_.find(path);
  return node == nullptr ? sharedEmptyString() : node->name();
}

std::string const& DynamicTDF::getObjectType(std::string const& path) const {
  Node const* const node = impl_->nodes_.find(path);
  return node == nullptr ? sharedEmptyString() : node->type;
}

std::string const& DynamicTDF::getParameterValue(std::string const& paramPath) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return getParameterValue(objPath, name);
}

std::string const& DynamicTDF::getParameterValue(std::string const& objPath, std::string const& name) const {
  Node::ParamVal const* const param = impl_->nodes_.findParam(objPath, name);
  return param == nullptr ? sharedEmptyString() : param->value();
}

std::string const* DynamicTDF::findParameterValue(std::string const& objPath, std::string const& name) const {
  Node::ParamVal const* const param = impl_->nodes_.findParam(objPath, name);
  return param == nullptr ? nullptr : &param->value();
}

bool DynamicTDF::getParamValueAsList(std::string const& paramPath, std::vector<std::string>& out) const {
  std::string objPath;
  std::string name;
  StringUtilities::splitPathName(paramPath, &objPath, &name);
  return getParamValueAsList(objPath, name, out);
}

bool DynamicTDF::getParamValueAsList(std::string const& objPath, std::string const& name,
                                     std::vector<std::string>& out) const {
  out.clear();
  if (Node::ParamVal const* const param = impl_->nodes_.findParam(objPath, name))
    out = StringUtilities::splitValue(param->value(), ',');
  return !out.empty();
}

bool DynamicTDF::getParameterNames(std::string const& path, std::vector<std::string>& out) const {
  Node const* const node = impl_->nodes_.find(path);
  if (node == nullptr) return false;
  out.clear();
  out.reserve(node->params.size());
  for (auto const& param : node->params) out.push_back(param.name());
  return true;
}

bool DynamicTDF::getChildObjectPaths(std::string const& path, std::vector<std::string>& out) const {
  out.clear();
  if (Node const* const node = impl_->nodes_.find(path)) {
    std::string const listed = node->listedAsFound ? std::string() : node->path();
    out.reserve(node->children.size());
    for (Node const& child : node->children) out.push_back(Impl::childPath(node->listedAsFound ? path : listed, child));
  }
  return !out.empty();
}

bool DynamicTDF::getChildObjectNamesByType(std::string const& path, std::string const& type,
                                           std::vector<std::string>& out) const {
  out.clear();
  if (Node const* const node = impl_->nodes_.find(path)) {
    node->children.visitOfType(type, [&](Node const& child) { out.push_back(child.name()); });
  }
  return !out.empty();
}

bool DynamicTDF::getChildObjectPathsByType(std::string const& path, std::string const& type,
                                           std::vector<std::string>& out) const {
  out.clear();
  if (Node const* const node = impl_->nodes_.find(path)) {
    std::string const listed = node->listedAsFound ? std::string() : node->path();
    node->children.visitOfType(
        type, [&](Node const& child) { out.push_back(Impl::childPath(node->listedAsFound ? path : listed, child)); });
  }
  return !out.empty();
}

bool DynamicTDF::anyChildOfType(std::string const& path, std::string const& type,
                                std::function<bool(std::string const& child)> const& visit) const {
  // A derived class may list other children.
  if (objectReader() == nullptr) return ModelTDF::anyChildOfType(path, type, visit);
  Node const* const node = impl_->nodes_.find(path);
  if (node == nullptr) return false;
  std::string child = node->listedAsFound ? path : node->path();
  std::size_t const parentSize = child.size();
  return node->children.anyOfType(type, [&](Node const& next) {
    child.resize(parentSize);
    next.appendListedComponent(child);
    return visit(child);
  });
}

ParamAllowedValues const& DynamicTDF::getAllowedValueData(std::string const& objPath, std::string const& name) const {
  Node::ParamVal const* const param = impl_->nodes_.findParam(objPath, name);
  return param == nullptr ? sharedEmptyAllowedValues() : param->allowedValues();
}

bool DynamicTDF::isObjectEmpty(std::string const& path) const {
  Node const* const top = impl_->nodes_.find(path);
  if (top == nullptr) return true;
  for (Node const* node = top; node != nullptr; node = node->nextBelow(*top)) {
    if (!node->params.empty()) return false;
  }
  return true;
}

bool DynamicTDF::createObject(std::string const& parentPath, std::string const& type, std::string const& name) {
  std::string path;
  path.reserve(parentPath.size() + type.size() + name.size() + 2);
  path.append(parentPath).append("/").append(type);
  if (!name.empty() && name != type) path.append(":").append(name);
  if (impl_->nodes_.find(path) != nullptr) return false;
  impl_->nodes_.create(path);
  return true;
}

void DynamicTDF::deleteObject(std::string const& path) {
  impl_->deleteObject(path);
}

void DynamicTDF::deleteObjects(std::vector<std::string> const& paths) {
  // The caller's list may be the log of this tree, which grows during the loop.
  for (std::size_t i = 0, count = paths.size(); i < count; ++i) deleteObject(paths[i]);
}

void DynamicTDF::deleteObjectUnrecorded(std::string const& path) {
  if (impl_->changes_.isRecording()) {
    impl_->deleteNodeAndChildren(std::string(path));
  } else {
    impl_->deleteNodeAndChildren(path);
  }
}

void DynamicTDF::deleteParameter(std::string const& objPath, std::string const& name) {
  Node* const node = impl_->nodes_.find(objPath);
  if (node == nullptr) return;
  if (auto const param = node->params.at(name); param != node->params.end()) impl_->eraseParam(objPath, *node, param);
}

void DynamicTDF::setParameter(std::string const& objPath, std::string const& name, std::string const& value) {
  impl_->changeObject(objPath, [&](Node& node) { impl_->doSetParameter(objPath, name, value, node); });
}

void DynamicTDF::setParameter(std::string const& objPath, std::string const& name,
                              ParamAllowedValues const& allowedValues, std::string const& value) {
  impl_->changeObject(objPath, [&](Node& node) { impl_->doSetParameter(objPath, name, allowedValues, value, node); });
}

std::uint64_t DynamicTDF::getRevision() const noexcept {
  return impl_->nodes_.revision();
}

void DynamicTDF::startRecordingUpdates() {
  impl_->changes_.setRecording(true);
}

void DynamicTDF::stopRecordingUpdates() {
  impl_->changes_.setRecording(false);
}

void DynamicTDF::resetChanges() {
  impl_->changes_.clear(impl_->nodes_.journal());
}

std::vector<DynamicTDF::ParamId> const& DynamicTDF::getAddedParameters() const noexcept {
  return impl_->changes_.addedParams();
}

std::vector<DynamicTDF::ParamId> const& DynamicTDF::getDeletedParameters() const noexcept {
  return impl_->changes_.deletedParams();
}

std::vector<DynamicTDF::ParamId> const& DynamicTDF::getModifiedParameters() const noexcept {
  return impl_->changes_.modifiedParams();
}

std::vector<std::string> const& DynamicTDF::getDeletedObjects() const noexcept {
  return impl_->changes_.deletedObjects();
}

void DynamicTDF::Impl::noteAtMark(Journal& journal) {
  changes_.noteAtMark(journal);
  journal.add([this, has = nodes_.hasOtherwiseListed()]() noexcept { nodes_.setOtherwiseListed(has); });
}

std::string DynamicTDF::Impl::childPath(std::string const& parentPath, Node const& child) {
  std::string path;
  path.reserve(parentPath.size() + child.type.size() + child.writtenName.size() + 2);
  path.append(parentPath);
  child.appendListedComponent(path);
  return path;
}

DynamicTDF::Node& DynamicTDF::Impl::findCreateNode(std::string const& path) {
  Node* const node = nodes_.find(path);
  return node == nullptr ? nodes_.create(path) : *node;
}

/// Changes one object. A missing object is created, and removed again if the change fails.
template <class Change>
void DynamicTDF::Impl::changeObject(std::string const& path, Change const& change) {
  if (Node* const node = nodes_.find(path)) return change(*node);
  Node* present = nullptr;
  auto const before = nodes_.positionInJournal();
  Node& made = nodes_.create(path, &present);
  try {
    change(made);
  } catch (...) {
    nodes_.takeBackCreation(*present, made, before);
    throw;
  }
}

/// Adds a parameter that the object does not have yet.
template <class... Initial>
void DynamicTDF::Impl::addParameter(std::string const& objPath, std::string const& name, Node& node,
                                    Initial const&... initial) {
  Node::ParamVal param(initial...);
  nodes_.noteChange();
  nodes_.forgetLoad();
  std::string const& pooled = nodes_.names().intern(name);
  Journal* const journal = nodes_.journal();
  Journal::Prepared<AddedParam> step;
  if (journal != nullptr) step = journal->prepare(AddedParam{this, &node, &pooled, {}});
  // Recorded first, because the caller's strings may be values of this object, which move when it gets another one.
  changes_.recordAdded(objPath, pooled);
  try {
    auto const inserted = node.params.insert(pooled, std::move(param));
    if (step) step->inserted = inserted;
  } catch (...) {
    changes_.takeBackAdded();
    throw;
  }
  if (step) journal->keep(std::move(step));
  tellParamSet(node, pooled);
}

/// Erases a parameter and enters that in the log. Returns the position of the next one.
DynamicTDF::Node::Params::Iterator DynamicTDF::Impl::eraseParam(std::string const& objPath, Node& node,
                                                                Node::Params::Iterator param) {
  Journal* const journal = nodes_.journal();
  Journal::Prepared<ErasedParam> step;
  if (journal != nullptr) step = journal->prepare(ErasedParam{this, &node, std::nullopt});
  // Recorded first, because the caller's string may belong to the parameter that is erased.
  changes_.recordDeleted(objPath, param->name());
  tellParamSet(node, param->name());
  nodes_.noteChange();
  Node::Params::Erased erased = node.params.takeOut(param);
  auto const next = node.params.after(erased);
  if (step) {
    step->erased.emplace(std::move(erased));
    journal->keep(std::move(step));
  }
  return next;
}

void DynamicTDF::Impl::deleteObject(std::string const& path) {
  if (!changes_.isRecording()) {
    deleteNodeAndChildren(path);
    return;
  }
  // The caller's string may be deleted with the object, for example a parameter that names its own object.
  std::string top = path;
  changes_.makeRoomForDeletedObject();
  if (deleteNodeAndChildren(top)) changes_.recordDeletedObject(std::move(top));
}

/// Deletes the object at `path` with everything below it, and returns whether there was one. While neither log nor
/// journal records it cannot fail. While the log does not record, the string may be deleted with the object.
bool DynamicTDF::Impl::deleteNodeAndChildren(std::string const& path) {
  Node* const top = nodes_.find(path);
  if (top == nullptr || top == &nodes_.root()) return false;

  NodeStore::Removed* const removed = nodes_.recordRemoval();
  // Leaves first, and the last child before the first: readers of the log see this order.
  for (Node* node = top;;) {
    while (!node->children.empty()) node = node->children.last();
    bool const isTop = node == top;
    if (changes_.isRecording() && !node->params.empty()) {
      std::string const composed = isTop ? std::string() : node->path();
      std::size_t const logged = changes_.deletedParams().size();
      try {
        for (auto const& param : node->params) changes_.recordDeleted(isTop ? path : composed, param.name());
      } catch (...) {
        changes_.takeBackDeleted(logged);  // this object still exists
        throw;
      }
    }
    Node* const parent = node->parent;
    if (nodes_.listener() != nullptr) {
      for (auto const& param : node->params) tellParamSet(*node, param.name());
    }
    nodes_.removeLeaf(*node, removed);
    if (isTop) return true;
    node = parent;
  }
}

/// Changes a value and enters the change in the log: both or neither.
template <class Change>
void DynamicTDF::Impl::recordingModified(std::string const& objPath, std::string const& name, Node& node,
                                         Node::ParamVal const& param, Change const& change) {
  Journal* const journal = nodes_.journal();
  Journal::Prepared<ChangedParam> step;
  if (journal != nullptr) {
    step = journal->prepare(ChangedParam{this, &node, &nodes_.names().intern(name), param.copy()});
  }
  nodes_.noteChange();
  changes_.recordModified(objPath, name);
  try {
    change();
  } catch (...) {
    changes_.takeBackModified();
    throw;
  }
  if (step) journal->keep(std::move(step));
  tellParam(node, name);
}

void DynamicTDF::Impl::tellParam(Node const& node, std::string_view name) const noexcept {
  if (nodes_.listener() != nullptr) nodes_.listener()->onParamChange(node.hash, name);
}

void DynamicTDF::Impl::tellParamSet(Node const& node, std::string_view name) const noexcept {
  if (nodes_.listener() != nullptr) nodes_.listener()->onParamSetChange(node.hash, name);
}

void DynamicTDF::Impl::doSetParameter(std::string const& objPath, std::string const& name, std::string const& value,
                                      Node& node) {
  std::string_view const cleaned = StringUtilities::trimmed(value);
  if (skipEmptyValues_ && cleaned.empty()) return;
  if (Node::ParamVal* const param = node.params.find(name)) {
    if (param->value() != cleaned) {
      recordingModified(objPath, name, node, *param, [&] { param->setValue(cleaned); });
    }
  } else {
    addParameter(objPath, name, node, cleaned);
  }
}

void DynamicTDF::Impl::doSetParameter(std::string const& objPath, std::string const& name,
                                      ParamAllowedValues const& allowedValues, std::string const& value, Node& node) {
  std::string_view const cleaned = StringUtilities::trimmed(value);
  if (skipEmptyValues_ && cleaned.empty()) return;
  if (Node::ParamVal* const param = node.params.find(name)) {
    if (!param->hasAllowedValues() || param->value() != cleaned || !param->allowedValues().isEqualTo(allowedValues)) {
      recordingModified(objPath, name, node, *param, [&] { param->modifyValue(allowedValues, cleaned); });
    }
  } else {
    addParameter(objPath, name, node, allowedValues, cleaned);
  }
}

}  // namespace tarn
