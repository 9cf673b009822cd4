// The objects of the editable tree by path. Creation makes an object together with all missing objects above it.
// Removal takes one object that has no children. The tree decides the order in which a subtree is removed, and what is
// logged.

#include "tree/DynamicTDFStore.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFPath.h>

#include "tree/SharedEmpty.h"
#include "tree/ShortTexts.h"

namespace tarn {

namespace {

/// Reads the part of `path` after its first `from` bytes, which are the path of an existing object and need not be read
/// again. A fault is reported for the whole path. "/" is accepted only as the whole path.
TDFPath readBelow(std::string const& path, std::size_t from) {
  try {
    if (path.size() - from > 1) return TDFPath(path.substr(from));
  } catch (Error const&) {
    // reported below
  }
  return TDFPath(path);
}

}  // namespace

DynamicTDF::NodeStore::NodeStore() {
  reset();
}

DynamicTDF::NodeStore::~NodeStore() {
  clear();
}

std::size_t DynamicTDF::NodeStore::foundPlace(std::string_view path) noexcept {
  constexpr std::uint64_t multiplier = 0x9e3779b97f4a7c15U;
  std::uint64_t end = 0;
  if (path.size() >= sizeof end) std::memcpy(&end, path.data() + path.size() - sizeof end, sizeof end);
  return static_cast<std::size_t>((end ^ path.size()) * multiplier >> (64U - foundBits));
}

DynamicTDF::Node* DynamicTDF::NodeStore::find(std::string_view path) const {
  std::atomic<Node*>& found = found_[foundPlace(path)];
  Node* const known = found.load(std::memory_order_relaxed);
  if (known != nullptr && isFoundUnder(*known, path)) return known;
  Node* const node = search(path);
  if (node != nullptr) found.store(node, std::memory_order_relaxed);
  return node;
}

DynamicTDF::Node* DynamicTDF::NodeStore::search(std::string_view path) const {
  PathHash const hash(path);
  for (Node* node = buckets_[bucketOf(hash)].get(); node != nullptr; node = node->nextInBucket.get()) {
    if (node->hash == hash && isFoundUnder(*node, path)) return node;
  }
  return nullptr;
}

bool DynamicTDF::NodeStore::isFoundUnder(Node const& node, std::string_view path) noexcept {
  for (Node const* at = &node; at->parent != nullptr; at = at->parent) {
    if (!at->takeComponent(path)) return false;
  }
  return path.empty();
}

DynamicTDF::Node::ParamVal const* DynamicTDF::NodeStore::findParam(std::string_view objPath,
                                                                   std::string_view name) const {
  Node const* const node = find(objPath);
  return node == nullptr ? nullptr : node->params.find(name);
}

ObjectHandle DynamicTDF::NodeStore::findObject(std::string_view path) const {
  Node const* const node = find(path);
  return node == nullptr ? ObjectHandle() : makeHandle(node);
}

ObjectHandle DynamicTDF::NodeStore::findSingleton(ObjectHandle const& parent, std::string_view type) const {
  ObjectHandle found;
  nodeOf(parent).children.visitOfType(type, [&](Node const& child) {
    if (child.writtenName.empty()) found = makeHandle(&child);
  });
  return found;
}

void DynamicTDF::NodeStore::getChildren(ObjectHandle const& parent, std::string_view type,
                                        std::vector<Child>& out) const {
  out.clear();
  nodeOf(parent).children.visitOfType(type, [&](Node const& child) {
    // A child that was written without a name is listed with one, but not found under it.
    out.push_back({child.name(), child.writtenName.empty() ? ObjectHandle() : makeHandle(&child)});
  });
}

std::string const* DynamicTDF::NodeStore::findParameterValue(ObjectHandle const& object, std::string_view name) const {
  Node::ParamVal const* const param = nodeOf(object).params.find(name);
  return param == nullptr ? nullptr : &param->value();
}

DynamicTDF::Node& DynamicTDF::NodeStore::create(std::string const& path, Node** present) {
  // Creation starts below the nearest existing ancestor. Mostly only the last component is missing.
  std::string_view known = path;
  Node* current = find(known);
  while (current == nullptr) {
    known = PathUtils::parentOf(known);
    current = find(known);
  }

  TDFPath const missing = readBelow(path, known.size());
  auto const before = positionInJournal();
  std::size_t begin = known.size();
  Node* const top = current;
  if (present != nullptr) *present = top;
  try {
    for (unsigned long long k = 0; k < missing.numComponent(); ++k) {
      std::size_t const end = std::min(path.find('/', begin + 1), path.size());
      std::string_view const component = std::string_view(path).substr(begin, end - begin);
      PathHash hash = current->hash;
      hash.append(component);
      current = &insert(current, hash, component);
      begin = end;
    }
  } catch (...) {
    takeBackCreation(*top, *current, before);
    throw;
  }
  return *current;
}

void DynamicTDF::NodeStore::takeBackCreation(Node const& kept, Node& made,
                                             std::optional<Journal::Position> const& before) noexcept {
  if (before) {
    journal_->undoTo(*before);
    return;
  }
  for (Node* node = &made; node != &kept;) {
    Node* const parent = node->parent;
    removeLeaf(*node, nullptr);
    node = parent;
  }
}

DynamicTDF::Node& DynamicTDF::NodeStore::findCreateChild(Node& parent, std::string_view component) {
  PathHash hash = parent.hash;
  hash.append(component);
  for (Node* node = buckets_[bucketOf(hash)].get(); node != nullptr; node = node->nextInBucket.get()) {
    if (node->hash == hash && node->parent == &parent && node->hasComponent(component)) return *node;
  }
  return insert(&parent, hash, component);
}

DynamicTDF::NodeStore::Removed* DynamicTDF::NodeStore::recordRemoval() {
  return journal() == nullptr ? nullptr : &journal()->add(Removed(*this));
}

void DynamicTDF::NodeStore::removeLeaf(Node& node, Removed* removed) noexcept {
  std::unique_ptr<Node> own = unlink(node);
  if (removed != nullptr) removed->take(std::move(own));
}

std::unique_ptr<DynamicTDF::Node> DynamicTDF::NodeStore::unlink(Node& node) noexcept {
  if (listener_ != nullptr) listener_->onObjectSetChange(node.parent->hash, node.type, node.hash);
  noteChange();
  withdrawHandles();
  forget(node);
  forgetLoad();
  node.parent->children.remove(node);
  std::unique_ptr<Node>* place = &buckets_[bucketOf(node.hash)];
  while (place->get() != &node) place = &(*place)->nextInBucket;
  std::unique_ptr<Node> own = std::move(*place);
  *place = std::move(own->nextInBucket);
  --size_;
  return own;
}

void DynamicTDF::NodeStore::link(std::unique_ptr<Node> node) noexcept {
  std::unique_ptr<Node>& bucket = buckets_[bucketOf(node->hash)];
  node->nextInBucket = std::move(bucket);
  bucket = std::move(node);
  ++size_;
}

/// Undoes the removal of an object. It still has its parameters, and its neighbours from then are its neighbours again.
void DynamicTDF::NodeStore::putBack(std::unique_ptr<Node> node) noexcept {
  Node& own = *node;
  noteChange();
  own.parent->children.putBack(own);
  link(std::move(node));
  if (listener_ == nullptr) return;
  listener_->onObjectSetChange(own.parent->hash, own.type, own.hash);
  for (auto const& param : own.params) listener_->onParamSetChange(own.hash, param.name());
}

DynamicTDF::NodeStore::Removed::~Removed() {
  while (last_ != nullptr) (void)takeBack();
}

void DynamicTDF::NodeStore::Removed::take(std::unique_ptr<Node> node) noexcept {
  node->nextInBucket = std::move(last_);
  last_ = std::move(node);
}

std::unique_ptr<DynamicTDF::Node> DynamicTDF::NodeStore::Removed::takeBack() noexcept {
  std::unique_ptr<Node> node = std::move(last_);
  last_ = std::move(node->nextInBucket);
  return node;
}

void DynamicTDF::NodeStore::Removed::operator()() noexcept {
  while (last_ != nullptr) store_->putBack(takeBack());
}

void DynamicTDF::NodeStore::reset() {
  if (Journal* const journal = this->journal()) {
    // A store of its own keeps the former objects.
    auto kept = std::make_unique<NodeStore>();
    NodeStore& former = *kept;
    journal->add([this, kept = std::move(kept)]() noexcept { swapContent(*kept); });
    swapContent(former);
    return;
  }
  // The new root is made before anything is removed, so without memory the objects stay.
  std::vector<std::unique_ptr<Node>> buckets(1);
  buckets.front() = std::make_unique<Node>(nullptr, PathHash(), sharedEmptyString(), "");
  noteChange();
  clear();
  names_.clear();
  buckets_.swap(buckets);
  root_ = buckets_.front().get();
  size_ = 1;
}

/// `component` has its leading "/".
DynamicTDF::Node& DynamicTDF::NodeStore::insert(Node* parent, PathHash const& hash, std::string_view component) {
  std::string_view const words = component.substr(1);
  std::size_t const colon = words.find(':');
  std::string_view const name = colon == std::string_view::npos ? std::string_view() : words.substr(colon + 1);
  if (size_ == buckets_.size()) grow();
  noteChange();
  forgetLoad();
  auto made = std::make_unique<Node>(parent, hash, names_.intern(words.substr(0, colon)), name);
  Node& node = *made;
  if (Journal* const journal = this->journal()) {
    auto step = journal->prepare([this, &node, grouped = parent->children.isAboutToGroup()]() noexcept {
      if (grouped) node.parent->children.ungroup();
      (void)unlink(node);
    });
    parent->children.append(node);
    journal->keep(std::move(step));
  } else {
    parent->children.append(node);
  }
  if (!node.listedAsFound) hasOtherwiseListed_ = true;
  link(std::move(made));
  if (listener_ != nullptr) listener_->onObjectSetChange(parent->hash, node.type, hash);
  return node;
}

std::size_t DynamicTDF::NodeStore::bucketOf(PathHash const& hash) const noexcept {
  return hash.value() & (buckets_.size() - 1);
}

void DynamicTDF::NodeStore::grow() {
  std::vector<std::unique_ptr<Node>> old(buckets_.size() * 2);
  old.swap(buckets_);
  for (std::unique_ptr<Node>& chain : old) {
    while (chain != nullptr) {
      std::unique_ptr<Node> node = std::move(chain);
      chain = std::move(node->nextInBucket);
      std::unique_ptr<Node>& bucket = buckets_[bucketOf(node->hash)];
      node->nextInBucket = std::move(bucket);
      bucket = std::move(node);
    }
  }
}

/// Exchanges the objects. The kept look-ups of both are lost.
void DynamicTDF::NodeStore::swapContent(NodeStore& other) noexcept {
  noteChange();
  names_.swap(other.names_);
  buckets_.swap(other.buckets_);
  std::swap(size_, other.size_);
  std::swap(hasOtherwiseListed_, other.hasOtherwiseListed_);
  std::swap(root_, other.root_);
  withdrawHandles();
  other.withdrawHandles();
  forgetLookUps();
  other.forgetLookUps();
}

void DynamicTDF::NodeStore::forgetLookUps() noexcept {
  forgetLoad();
  for (std::atomic<Node*>& found : found_) found.store(nullptr, std::memory_order_relaxed);
}

/// Removes the objects of each chain one by one. Destroying a chain as a whole would recurse for every object in it.
void DynamicTDF::NodeStore::clear() noexcept {
  withdrawHandles();
  for (std::unique_ptr<Node>& chain : buckets_) {
    while (chain != nullptr) chain = std::move(chain->nextInBucket);
  }
  size_ = 0;
  hasOtherwiseListed_ = false;
  root_ = nullptr;
  forgetLookUps();
}

/// Removes the kept look-ups of an object that is about to be removed.
void DynamicTDF::NodeStore::forget(Node const& node) noexcept {
  for (std::atomic<Node*>& found : found_) {
    if (found.load(std::memory_order_relaxed) == &node) found.store(nullptr, std::memory_order_relaxed);
  }
}

}  // namespace tarn
