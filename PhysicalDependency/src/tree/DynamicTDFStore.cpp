// The flat side of the editable tree: which object stands at a path. Creation makes an object together with everything
// missing above it; removal takes one object that has no children. The order in which a subtree goes, and the log, are
// the tree's own business.

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

/// Puts `text` into `place`, and returns whether there was the memory. What look-ups keep only makes the next one
/// quicker, so without memory they keep nothing, and find what there is all the same: reading a tree does not fail.
bool keepText(std::string& place, std::string_view text) noexcept {
  try {
    place.assign(text);
    return true;
  } catch (...) {
    return false;
  }
}

/// What stands behind the first `from` bytes of `path`, which are the path of an object that exists and so need not be
/// read again. A fault is told of the whole path; only of that is "/" no fault.
TDFPath readBelow(std::string const& path, std::size_t from) {
  try {
    if (path.size() - from > 1) return TDFPath(path.substr(from));
  } catch (Error const&) {
    // told below
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
  Found& found = found_[foundPlace(path)];
  if (sameText(found.path, path) && found.node != nullptr) return found.node;
  Node* const node = search(path);
  if (node != nullptr) {
    found.node = nullptr;
    if (keepText(found.path, path)) found.node = node;
  }
  return node;
}

DynamicTDF::Node* DynamicTDF::NodeStore::search(std::string_view path) const {
  if (Node* const node = searchAround(path)) return lastSearched_ = node;
  PathHash const hash(path);
  for (Node* node = buckets_[bucketOf(hash)].get(); node != nullptr; node = node->nextInBucket.get()) {
    if (node->hash == hash && isFoundUnder(*node, path)) return lastSearched_ = node;
  }
  return nullptr;
}

/// Looks where a walk goes on from the object that was searched for last. In a large tree that saves what is dear: the
/// places of the index, and the objects that share them, are in no cache.
DynamicTDF::Node* DynamicTDF::NodeStore::searchAround(std::string_view path) const {
  if (lastSearched_ == nullptr) return nullptr;
  Node const* const parent = lastSearched_->parent;
  for (Node* const node : {lastSearched_->nextSibling, lastSearched_->children.first(),
                           parent == nullptr ? nullptr : parent->nextSibling}) {
    if (node != nullptr && isFoundUnder(*node, path)) return node;
  }
  return nullptr;
}

bool DynamicTDF::NodeStore::isFoundUnder(Node const& node, std::string_view path) const {
  // A landmark is set some steps above the object, so that it also serves those beside and a little above it.
  constexpr int stepsToNewLandmark = 8;
  constexpr int stepsThatAreFew = 2 * stepsToNewLandmark;

  std::string_view left = path;
  Node const* newLandmark = nullptr;
  std::size_t newLandmarkSize = 0;
  int steps = 0;
  for (Node const* at = &node; at->parent != nullptr; at = at->parent) {
    if (at == landmark_) {
      if (left != landmarkPath_) return false;
      left = {};
      break;
    }
    if (!at->takeComponent(left)) return false;
    if (++steps == stepsToNewLandmark) {
      newLandmark = at->parent;
      newLandmarkSize = left.size();
    }
  }
  if (!left.empty()) return false;
  if (steps > stepsThatAreFew) {
    landmark_ = nullptr;
    if (keepText(landmarkPath_, path.substr(0, newLandmarkSize))) landmark_ = newLandmark;
  }
  return true;
}

DynamicTDF::Node::ParamVal const* DynamicTDF::NodeStore::findParam(std::string_view objPath,
                                                                   std::string_view name) const {
  Node const* const node = find(objPath);
  return node == nullptr ? nullptr : node->params.find(name);
}

DynamicTDF::Node& DynamicTDF::NodeStore::create(std::string const& path, Node** present) {
  // The way down begins at the nearest ancestor that exists; most often all but the last component do.
  std::string_view known = path;
  Node* current = find(known);
  while (current == nullptr) {
    known = PathUtils::parentOf(known);
    current = find(known);
  }

  TDFPath const missing = readBelow(path, known.size());
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
    removeUpTo(*top, *current);
    throw;
  }
  return *current;
}

void DynamicTDF::NodeStore::removeUpTo(Node const& kept, Node& made) noexcept {
  for (Node* node = &made; node != &kept;) {
    Node* const parent = node->parent;
    removeLeaf(*node);
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

void DynamicTDF::NodeStore::removeLeaf(Node& node) noexcept {
  noteChange();
  forget(node);
  forgetLoad();
  node.parent->children.remove(node);
  std::unique_ptr<Node>* place = &buckets_[bucketOf(node.hash)];
  while (place->get() != &node) place = &(*place)->nextInBucket;
  *place = std::move(node.nextInBucket);
  --size_;
}

void DynamicTDF::NodeStore::reset() {
  // Made before anything goes: without memory the objects stay as they are.
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
  parent->children.append(*made);
  if (!made->listedAsFound) hasOtherwiseListed_ = true;
  std::unique_ptr<Node>& bucket = buckets_[bucketOf(hash)];
  made->nextInBucket = std::move(bucket);
  bucket = std::move(made);
  ++size_;
  return *bucket;
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

/// Takes the chains apart one by one: an object that goes with the rest of its chain would call itself for each.
void DynamicTDF::NodeStore::clear() noexcept {
  for (std::unique_ptr<Node>& chain : buckets_) {
    while (chain != nullptr) chain = std::move(chain->nextInBucket);
  }
  size_ = 0;
  hasOtherwiseListed_ = false;
  forgetLoad();
  root_ = nullptr;
  landmark_ = nullptr;
  lastSearched_ = nullptr;
  for (Found& found : found_) found.node = nullptr;
}

/// The object goes, and with it what was kept of look-ups that ended there.
void DynamicTDF::NodeStore::forget(Node const& node) const noexcept {
  if (&node == landmark_) landmark_ = nullptr;
  if (&node == lastSearched_) lastSearched_ = nullptr;
  for (Found& found : found_) {
    if (found.node == &node) found.node = nullptr;
  }
}

}  // namespace tarn
