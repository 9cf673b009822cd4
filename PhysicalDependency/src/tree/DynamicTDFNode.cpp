// One object of the editable tree: its links to parent, children and neighbours, and the values of its parameters. Who
// owns the objects and finds them by path is the store; what is logged is decided by the tree.

#include "tree/DynamicTDFNode.h"

#include <utility>

#include <tarn/PhysicsDepErrors.h>
#include <tarn/StringUtilities.h>
#include <tarn/UserMsg.h>

#include "tree/SharedEmpty.h"

namespace tarn {

DynamicTDF::Node::Node(NodeMap::const_iterator storeEntry, Node* parentNode, std::string const& objType,
                       std::string_view objName)
    : entry(storeEntry), type(objType), name(objName), parent(parentNode) {
  if (parent == nullptr) return;
  // Nearly every key is the composed path already. Both are made of the same words, but for names that equal their type
  // and stand in the key only, so comparing the lengths is enough.
  std::string const& above = parent->path();
  std::size_t const length = above.size() + 1 + type.size() + (type == name ? 0 : 1 + name.size());
  if (length == key().size()) return;
  std::string composed;
  composed.reserve(length);
  composed.append(above).append("/").append(type);
  if (type != name) composed.append(":").append(name);
  composedPath_ = std::make_unique<std::string const>(std::move(composed));
}

void DynamicTDF::Node::ChildList::append(Node& child) noexcept {
  child.previousSibling = last_;
  child.nextSibling = nullptr;
  (last_ == nullptr ? first_ : last_->nextSibling) = &child;
  last_ = &child;
}

void DynamicTDF::Node::ChildList::remove(Node& child) noexcept {
  (child.previousSibling == nullptr ? first_ : child.previousSibling->nextSibling) = child.nextSibling;
  (child.nextSibling == nullptr ? last_ : child.nextSibling->previousSibling) = child.previousSibling;
  child.previousSibling = nullptr;
  child.nextSibling = nullptr;
}

DynamicTDF::SetResult DynamicTDF::Node::setParamValue(std::string const& paramName, std::string_view value,
                                                      NamePool& names) {
  auto const place = params.lower_bound(paramName);
  if (place != params.end() && place->first.text() == paramName) {
    return place->second.setValue(value) ? SetResult::Modified : SetResult::Unchanged;
  }
  params.emplace_hint(place, PooledName(names.intern(paramName)), ParamVal(value));
  return SetResult::Added;
}

DynamicTDF::SetResult DynamicTDF::Node::setParamValue(std::string const& paramName,
                                                      ParamAllowedValues const& allowedValues, std::string_view value,
                                                      NamePool& names) {
  auto const place = params.lower_bound(paramName);
  if (place != params.end() && place->first.text() == paramName) {
    return place->second.modifyValue(allowedValues, value) ? SetResult::Modified : SetResult::Unchanged;
  }
  params.emplace_hint(place, PooledName(names.intern(paramName)), ParamVal(allowedValues, value));
  return SetResult::Added;
}

DynamicTDF::Node const* DynamicTDF::Node::nextBelow(Node const& top) const noexcept {
  if (!children.empty()) return children.first();
  for (Node const* node = this; node != &top; node = node->parent) {
    if (node->nextSibling != nullptr) return node->nextSibling;
  }
  return nullptr;
}

ParamAllowedValues const& DynamicTDF::Node::ParamVal::allowedValues() const noexcept {
  return hasAllowedValues() ? *extras_->allowedValues : sharedEmptyAllowedValues();
}

std::vector<std::string> const& DynamicTDF::Node::ParamVal::getValueAsList() const {
  if (!extras_) extras_ = std::make_unique<Extras>();
  if (!extras_->listValue) extras_->listValue = StringUtilities::splitValue(value_, ',');
  return *extras_->listValue;
}

bool DynamicTDF::Node::ParamVal::setValue(std::string_view value) {
  if (value_ == value) return false;
  value_.assign(value);
  if (extras_) extras_->listValue.reset();
  return true;
}

bool DynamicTDF::Node::ParamVal::modifyValue(ParamAllowedValues const& allowedValues, std::string_view value) {
  if (!hasAllowedValues()) {
    throw physics_dep::invalidParamVal(
        "DynamicTDF::Node::ParamVal", "modifyValue",
        UserMsg("Attempt to modify an allowed value range in a parameter that is not already of 'allowed value' type.",
                nullptr),
        errorType::InvalidState);
  }
  bool const allowedDiffer = !allowedValues.isEqualTo(*extras_->allowedValues);
  if (allowedDiffer) extras_->allowedValues = allowedValues;
  bool const valueDiffers = setValue(value);
  return allowedDiffer || valueDiffers;
}

}  // namespace tarn
