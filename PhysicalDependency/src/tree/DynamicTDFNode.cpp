// One object of the editable tree: its component of the path, its links to parent, children and siblings, and the
// values of its parameters. The store owns the objects and finds them by path. The tree decides what is logged.

#include "tree/DynamicTDFNode.h"

#include <utility>

#include <tarn/PhysicsDepErrors.h>
#include <tarn/StringUtilities.h>
#include <tarn/UserMsg.h>

#include "tree/SharedEmpty.h"
#include "tree/ShortTexts.h"

namespace tarn {

namespace {

/// From this number on, children are also kept by type. A look-up by type costs about as much as comparing so many.
constexpr std::size_t manyChildren = 17;

}  // namespace

DynamicTDF::Node::Node(Node* parentNode, PathHash const& pathHash, std::string const& pooledType,
                       std::string_view nameInPath)
    : hash(pathHash),
      type(pooledType),
      writtenName(nameInPath),
      parent(parentNode),
      listedAsFound(parentNode == nullptr || (parentNode->listedAsFound && nameInPath != pooledType)) {}

bool DynamicTDF::Node::takeComponent(std::string_view& path) const noexcept {
  std::size_t const nameSize = writtenName.empty() ? 0 : 1 + writtenName.size();
  std::size_t const size = 1 + type.size() + nameSize;
  if (path.size() < size) return false;
  char const* const component = path.data() + (path.size() - size);
  char const* const behindType = component + 1 + type.size();
  if (nameSize != 0 && (*behindType != ':' || !sameBytes(behindType + 1, writtenName.data(), writtenName.size()))) {
    return false;
  }
  if (*component != '/' || !sameBytes(component + 1, type.data(), type.size())) return false;
  path.remove_suffix(size);
  return true;
}

bool DynamicTDF::Node::hasComponent(std::string_view component) const noexcept {
  return takeComponent(component) && component.empty();
}

std::string DynamicTDF::Node::path() const {
  auto const listsName = [](Node const& node) { return !node.writtenName.empty() && node.writtenName != node.type; };
  std::size_t size = 0;
  for (Node const* node = this; node->parent != nullptr; node = node->parent) {
    size += 1 + node->type.size() + (listsName(*node) ? 1 + node->writtenName.size() : 0);
  }
  std::string path(size, '/');
  auto const putBefore = [&](std::string_view text) {
    size -= text.size();
    path.replace(size, text.size(), text);
  };
  for (Node const* node = this; node->parent != nullptr; node = node->parent) {
    if (listsName(*node)) {
      putBefore(node->writtenName);
      putBefore(":");
    }
    putBefore(node->type);
    putBefore("/");
  }
  return path;
}

void DynamicTDF::Node::appendFoundComponent(std::string& path) const {
  path.append(1, '/').append(type);
  if (!writtenName.empty()) path.append(1, ':').append(writtenName);
}

void DynamicTDF::Node::appendListedComponent(std::string& path) const {
  path.append(1, '/').append(type);
  if (!writtenName.empty() && writtenName != type) path.append(1, ':').append(writtenName);
}

void DynamicTDF::Node::ChildList::append(Node& child) {
  // The groups come first: if memory runs out there, the list is unchanged.
  if (byType_ != nullptr) {
    appendTo(*byType_, child);
  } else if (isAboutToGroup()) {
    auto groups = std::make_unique<Groups>();
    for (Node& present : *this) appendTo(*groups, present);
    appendTo(*groups, child);
    byType_ = std::move(groups);
  }
  child.previousSibling = last_;
  child.nextSibling = nullptr;
  (last_ == nullptr ? first_ : last_->nextSibling) = &child;
  last_ = &child;
  ++size_;
}

void DynamicTDF::Node::ChildList::remove(Node& child) noexcept {
  if (byType_ != nullptr) removeFrom(*byType_, child);
  (child.previousSibling == nullptr ? first_ : child.previousSibling->nextSibling) = child.nextSibling;
  (child.nextSibling == nullptr ? last_ : child.nextSibling->previousSibling) = child.previousSibling;
  --size_;
}

void DynamicTDF::Node::ChildList::putBack(Node& child) noexcept {
  if (byType_ != nullptr) putBackIn(*byType_, child);
  (child.previousSibling == nullptr ? first_ : child.previousSibling->nextSibling) = &child;
  (child.nextSibling == nullptr ? last_ : child.nextSibling->previousSibling) = &child;
  ++size_;
}

bool DynamicTDF::Node::ChildList::isAboutToGroup() const noexcept {
  return byType_ == nullptr && size_ + 1 == manyChildren;
}

void DynamicTDF::Node::ChildList::appendTo(Groups& groups, Node& child) {
  Group& group = groups[child.type];
  child.previousOfType = group.last;
  child.nextOfType = nullptr;
  (group.last == nullptr ? group.first : group.last->nextOfType) = &child;
  group.last = &child;
}

void DynamicTDF::Node::ChildList::removeFrom(Groups& groups, Node& child) noexcept {
  // Removing a child in the middle of its group changes neither end, so the group need not be looked up.
  if (child.previousOfType != nullptr && child.nextOfType != nullptr) {
    child.previousOfType->nextOfType = child.nextOfType;
    child.nextOfType->previousOfType = child.previousOfType;
  } else {
    Group& group = groups.find(child.type)->second;
    (child.previousOfType == nullptr ? group.first : child.previousOfType->nextOfType) = child.nextOfType;
    (child.nextOfType == nullptr ? group.last : child.nextOfType->previousOfType) = child.previousOfType;
  }
}

void DynamicTDF::Node::ChildList::putBackIn(Groups& groups, Node& child) noexcept {
  Group& group = groups.find(child.type)->second;
  (child.previousOfType == nullptr ? group.first : child.previousOfType->nextOfType) = &child;
  (child.nextOfType == nullptr ? group.last : child.nextOfType->previousOfType) = &child;
}

bool DynamicTDF::Node::refill(ObjectState const& values, bool skipEmpty, NamePool& names) {
  auto present = params.begin();
  for (auto value = values.begin(); value != values.end(); ++value) {
    std::string_view const cleaned = StringUtilities::trimmed(value->second);
    if (skipEmpty && cleaned.empty()) continue;
    if (present == params.end() || !sameText(present->name(), value->first)) {
      // The parameters differ from the previous ones. That is rare, so all are made again.
      params = Params();
      params.reserve(values.size());
      for (auto const& [name, text] : values) {
        std::string_view const clean = StringUtilities::trimmed(text);
        if (!skipEmpty || !clean.empty()) params.insert(names.intern(name), ParamVal(clean));
      }
      params.makeIndex();
      return true;
    }
    ParamVal& param = params.valueAt(present);
    if (param.hasAllowedValues()) return false;
    param.setValue(cleaned);
    ++present;
  }
  while (present != params.end()) present = params.after(params.takeOut(present));
  params.makeIndex();
  return true;
}

DynamicTDF::Node const* DynamicTDF::Node::nextBelow(Node const& top) const noexcept {
  if (!children.empty()) return children.first();
  for (Node const* node = this; node != &top; node = node->parent) {
    if (node->nextSibling != nullptr) return node->nextSibling;
  }
  return nullptr;
}

ParamAllowedValues const& DynamicTDF::Node::ParamVal::allowedValues() const noexcept {
  return hasAllowedValues() ? *allowedValues_ : sharedEmptyAllowedValues();
}

void DynamicTDF::Node::ParamVal::setValue(std::string_view value) {
  value_.assign(value);
}

void DynamicTDF::Node::ParamVal::modifyValue(ParamAllowedValues const& allowedValues, std::string_view value) {
  if (!hasAllowedValues()) {
    throw physics_dep::invalidParamVal(
        "DynamicTDF::Node::ParamVal", "modifyValue",
        UserMsg("Attempt to modify an allowed value range in a parameter that is not already of 'allowed value' type.",
                nullptr),
        errorType::InvalidState);
  }
  setValue(value);
  // This comes last and cannot fail, because copies share their lists.
  *allowedValues_ = allowedValues;
}

}  // namespace tarn
