// The flat side of the editable tree: which object stands at a path. Creation makes an object together with everything
// missing above it; removal takes one object that has no children. The order in which a subtree goes, and the log, are
// the tree's own business.

#include "tree/DynamicTDFStore.h"

#include <tarn/TDFPath.h>

namespace tarn {

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
  TDFPath const parsed(path);
  std::string_view const full = parsed.getFullPath();

  // What is there already is most often all but the last component, so the way down begins at the nearest ancestor that
  // exists; all above that one exist with it.
  auto k = parsed.numComponent();
  std::size_t end = full.size();
  Node* current = find(full);
  while (current == nullptr) {
    --k;
    end = full.rfind('/', end - 1);
    current = find(full.substr(0, end));
  }
  for (; k < parsed.numComponent(); ++k) {
    end = full.find('/', end + 1);
    current = &insert(full.substr(0, end), current, parsed.getType(k), parsed.getName(k));
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
  root_ = &insert("", nullptr, "", "");
}

DynamicTDF::Node& DynamicTDF::NodeStore::insert(std::string_view path, Node* parent, std::string_view type,
                                                std::string_view name) {
  // A state comes in the order of this map, so the place to try first is the end.
  auto const place = nodes_.try_emplace(nodes_.end(), std::string(path));
  place->second = std::make_unique<Node>(place, parent, type, name);
  Node& node = *place->second;
  index_.emplace(place->first, &node);
  if (parent != nullptr) parent->children.append(node);
  return node;
}

}  // namespace tarn
