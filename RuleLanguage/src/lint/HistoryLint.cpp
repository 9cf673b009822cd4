// Former names that lead nowhere, and deprecated items that rules still need.

#include "lint/HistoryLint.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>

#include "expression/Nodes.h"

namespace tarn::rules {

namespace {

namespace attributes = RuleAttributes;

bool has(std::vector<std::string> const& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

class HistoryLint {
 public:
  explicit HistoryLint(LintContext& context) : context_(context) {}

  void run() {
    for (auto const* object : context_.data().objects()) {
      noteDeprecated(*object);
      auto const found = context_.rules().objectPlaces().find(object->typePath());
      if (found == context_.rules().objectPlaces().end()) continue;
      ObjectPlaces const& places = found->second;
      for (std::size_t i = 0; i < object->params().size(); ++i)
        checkParam(*object, *object->params()[i], places.params[i]);
      for (std::size_t i = 0; i < object->children().size(); ++i) {
        checkChild(*object, *object->children()[i], places.children[i]);
      }
    }
    checkRoots();
    context_.setTaken({});
    if (hasDeprecated_) {
      for (auto const& use : context_.rules().uses()) checkReads(use);
    }
  }

 private:
  void noteDeprecated(ObjDependDef const& object) {
    auto const isDeprecated = [](auto const& entry) { return !entry->history.deprecated.empty(); };
    hasDeprecated_ = hasDeprecated_ || !object.history.deprecated.empty() ||
                     std::any_of(object.params().begin(), object.params().end(), isDeprecated) ||
                     std::any_of(object.children().begin(), object.children().end(), isDeprecated);
  }

  void checkParam(ObjDependDef const& object, ParamAvail const& param, EntryPlace const& place) {
    checkEntry(
        param.name, param.history, param.required && !param.available, place,
        [&](std::string const& name) -> ItemHistory const* {
          auto const* other = object.findParam(name);
          return other != nullptr ? &other->history : nullptr;
        },
        [&](std::string const& name) -> std::string const* {
          auto const* other = object.findRenamedParam(name);
          return other != nullptr && other != &param ? &other->name : nullptr;
        });
  }

  void checkChild(ObjDependDef const& object, ChildAvail const& child, EntryPlace const& place) {
    checkEntry(
        child.type, child.history, child.required && !child.available, place,
        [&](std::string const& name) -> ItemHistory const* {
          auto const* other = object.findChild(name);
          return other != nullptr ? &other->history : nullptr;
        },
        [&](std::string const& name) -> std::string const* {
          auto const* other = object.findRenamedChild(name);
          return other != nullptr && other != &child ? &other->type : nullptr;
        });
    if (auto const names = place.attribute("Renamed Names"); names && child.singleton) {
      context_.warn(Code::NoEffect, names, "Renamed Names has no effect on a singleton, which has no name");
    }
  }

  /// `present` gives the history of the item that has a name now, `claimed` the item that has it as a former name.
  template <typename Present, typename Claimed>
  void checkEntry(std::string const& name, ItemHistory const& history, bool required, EntryPlace const& place,
                  Present const& present, Claimed const& claimed) {
    context_.setTaken(place.taken);
    if (!history.deprecated.empty() && required) {
      context_.warn(Code::DeprecatedRequired, place.attribute(attributes::deprecated),
                    "the item is deprecated, but every model must have it; remove 'Required', or say when it is "
                    "available");
    }
    auto const given = place.attribute(attributes::renamedFrom);
    if (auto const message = place.attribute(attributes::renameMessage);
        message && !given && history.formerNames.empty()) {
      if (!place.attribute("Renamed Names")) {
        context_.warn(Code::NoEffect, message, "Rename Message has no effect without Renamed From");
      }
    }
    if (given) checkFormerNames(name, history, given, present, claimed);
  }

  template <typename Present, typename Claimed>
  void checkFormerNames(std::string const& name, ItemHistory const& history, Item const& given, Present const& present,
                        Claimed const& claimed) {
    for (auto const& former : history.formerNames) {
      Item const item = placeOf(given, former);
      if (former == name) {
        context_.warn(Code::FormerNameInUse, item,
                      "the former name " + inQuotes(former) + " is the name of the item itself");
      } else if (auto const* other = present(former); other != nullptr && has(other->formerNames, name)) {
        context_.warn(Code::FormerNameInUse, item,
                      inQuotes(name) + " and " + inQuotes(former) +
                          " are each the former name of the other, so neither is renamed in a model");
      } else if (other != nullptr) {
        context_.warn(Code::FormerNameInUse, item,
                      "the former name " + inQuotes(former) +
                          " is still the name of another item here, so no model is renamed; remove one of the two");
      } else if (auto const* first = claimed(former)) {
        context_.warn(Code::FormerNameClaimedTwice, item,
                      inQuotes(former) + " is a former name of " + inQuotes(*first) +
                          " as well, and models are renamed to that; keep it at one of the two");
      }
    }
  }

  /// The former name in the list, or the whole value when there is only one.
  static Item placeOf(Item const& given, std::string const& name) {
    for (auto const* child : given.node->children) {
      if (child->value == name) return {given.source, child};
    }
    return given;
  }

  /// Object types at the root of a model have their history in their own entries.
  void checkRoots() {
    std::unordered_map<std::string, ObjDependDef const*> claims;
    for (auto const* object : context_.data().objects()) {
      auto const& path = object->typePath();
      if (path.rfind('/') != 0) continue;
      auto const found = context_.rules().objectPlaces().find(path);
      if (found == context_.rules().objectPlaces().end()) continue;
      context_.setTaken({});
      for (auto const& former : object->history.formerNames) {
        auto const [claim, isNew] = claims.try_emplace(former, object);
        if (context_.data().getObjDependDef("/" + former, true) != nullptr) {
          context_.warn(Code::FormerNameInUse, found->second.name,
                        "the former name " + inQuotes(former) +
                            " is still the name of another item here, so no model is renamed; remove one of the two");
        } else if (!isNew) {
          context_.warn(Code::FormerNameClaimedTwice, found->second.name,
                        inQuotes(former) + " is a former name of " + inQuotes(claim->second->typePath()) +
                            " as well, and models are renamed to that; keep it at one of the two");
        }
      }
    }
  }

  // Rules that read deprecated items

  /// The message of the deprecated object at a type path, or of one above it. Null when there is none.
  std::string const* deprecatedObject(std::string_view typePath) const {
    for (; !typePath.empty(); typePath = PathUtils::parentOf(typePath)) {
      std::string const parentPath(PathUtils::parentOf(typePath));
      auto const* parent = context_.data().getObjDependDef(parentPath, true);
      auto const* child = parent != nullptr ? parent->findChild(PathUtils::lastType(typePath)) : nullptr;
      if (child != nullptr && !child->history.deprecated.empty()) return &child->history.deprecated;
      if (!parentPath.empty()) continue;
      auto const* root = context_.data().getObjDependDef(std::string(typePath), true);
      if (root != nullptr && !root->history.deprecated.empty()) return &root->history.deprecated;
    }
    return nullptr;
  }

  /// Whether the rule itself belongs to a deprecated item, so that it goes when the item goes.
  bool isOfDeprecated(ExpressionUse const& use) const {
    if (use.typePath().empty()) return false;
    if (deprecatedObject(use.typePath()) != nullptr) return true;
    auto const* object = context_.data().getObjDependDef(use.typePath(), true);
    if (object == nullptr) return false;
    if (use.kind == EntryKind::Parameter) {
      auto const* param = object->findParam(use.entry());
      return param != nullptr && !param->history.deprecated.empty();
    }
    auto const* child = use.kind == EntryKind::Child ? object->findChild(use.entry()) : nullptr;
    return child != nullptr && !child->history.deprecated.empty();
  }

  void checkReads(ExpressionUse const& use) {
    std::vector<PathUse> paths;
    use.compiled->expression->collectPaths(paths, PathPattern());
    if (paths.empty() || isOfDeprecated(use)) return;
    for (auto const& path : paths) {
      auto const typePaths = context_.resolve(use, path.pattern);
      for (auto const& typePath : *typePaths) {
        std::string const* message = deprecatedObject(typePath);
        std::string what = message != nullptr ? typePath : std::string();
        if (message == nullptr && !path.parameter.empty()) {
          auto const* object = context_.data().getObjDependDef(typePath, true);
          auto const* param = object != nullptr ? object->findParam(path.parameter) : nullptr;
          if (param != nullptr && !param->history.deprecated.empty()) {
            message = &param->history.deprecated;
            what = typePath + "/" + path.parameter;
          }
        }
        if (message == nullptr) continue;
        context_.warn(Code::ReadsDeprecated, use, path.range, what + " is deprecated: " + *message);
        break;
      }
    }
  }

  LintContext& context_;
  bool hasDeprecated_ = false;
};

}  // namespace

void checkHistory(LintContext& context) {
  HistoryLint(context).run();
}

}  // namespace tarn::rules
