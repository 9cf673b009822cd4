// The flat side of the editable tree: which object stands at a path. Creation makes an object together with everything
// missing above it; removal takes one object that has no children. The order in which a subtree goes, and the log, are
// the tree's own business.

#include "tree/DynamicTDFStore.h"

#include <tarn/Error.h>
#include <tarn/PathUtils.h>
#include <tarn/TDFPath.h>

namespace tarn {

namespace {

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
  root_ = &insert("", nullptr, "", "");
}

DynamicTDF::Node* DynamicTDF::NodeStore::find(std::string_view path) const {
  auto const place = index_.find(path);
  return place == index_.end() ? nullptr : place->second;
}

DynamicTDF::Node::ParamVal const* DynamicTDF::NodeStore::findParam(std::string_view objPath,
                                                                   std::string_view name) const {
  Node const* const node = find(objPath);
  if (node == nullptr) return nullptr;
  auto const place = node->params.find(name);
  return place == node->params.end() ? nullptr : &place->second;
}

DynamicTDF::Node& DynamicTDF::NodeStore::create(std::string const& path) {
  // The way down begins at the nearest ancestor that exists; most often all but the last component do.
  std::string_view known = path;
  Node* current = find(known);
  while (current == nullptr) {
    known = PathUtils::parentOf(known);
    current = find(known);
  }

  TDFPath const missing = readBelow(path, known.size());
  std::size_t end = known.size();
  for (unsigned long long k = 0; k < missing.numComponent(); ++k) {
    end = path.find('/', end + 1);
    current = &insert(std::string_view(path).substr(0, end), current, missing.getType(k), missing.getName(k));
  }
  return *current;
}

void DynamicTDF::NodeStore::removeLeaf(Node& node) {
  node.parent->children.remove(node);
  index_.erase(node.key());
  nodes_.erase(node.entry);
}

void DynamicTDF::NodeStore::reset() {
  index_.clear();
  nodes_.clear();
  names_.clear();
  root_ = &insert("", nullptr, "", "");
}

DynamicTDF::Node& DynamicTDF::NodeStore::insert(std::string_view path, Node* parent, std::string_view type,
                                                std::string_view name) {
  // A state comes in the order of this map, so the place to try first is the end.
  auto const place = nodes_.try_emplace(nodes_.end(), std::string(path));
  place->second = std::make_unique<Node>(place, parent, names_.intern(type), name);
  Node& node = *place->second;
  index_.emplace(place->first, &node);
  if (parent != nullptr) parent->children.append(node);
  return node;
}

}  // namespace tarn
