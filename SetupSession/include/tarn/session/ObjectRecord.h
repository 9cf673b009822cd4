#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/RulePlace.h>
#include <tarn/SharedStrings.h>
#include <tarn/session/Waiting.h>

namespace tarn::session {

/// Everything about one object, as it is now.
struct TARN_EXPORT ObjectRecord {
  std::string path;
  std::string type;
  /// The name; that of an object without a name is its type. "" for the root of the model.
  std::string name;
  /// As the rules describe the object, or else the entry in its parent; "" when they do not.
  std::string description;
  /// As in `ParamRecord`, from the entry in the parent.
  std::string group;
  std::string label;
  bool advanced = false;
  bool required = false;
  /// There is at most one object of this type in its parent, without a name.
  bool singleton = false;
  /// The object can be edited. False when it is taken from the model as it is.
  bool editable = true;

  /// The object is in the result.
  bool present = false;
  /// The object is not present, and the user can switch it on.
  bool offered = false;
  /// Objects of this type are available in the parent now.
  bool available = false;
  /// The `Reason` of the rule, when the object is not available. "" when it gives none.
  std::string reason;
  std::optional<bool> decision;
  /// Set when the object was asked for and is not present.
  std::optional<Waiting> waiting;
  /// The object is in the model that was opened.
  bool inModel = false;

  /// The number of its present parameters and of its present children.
  std::size_t params = 0;
  std::size_t children = 0;

  /// Where the rules write the entry of the type in its parent, and where they begin to describe the object.
  RulePlace rule;
  RulePlace content;
};

/// One type of children of an object, as it is now.
struct TARN_EXPORT ChildTypeRecord {
  std::string type;
  std::string description;
  std::string group;
  std::string label;
  bool advanced = false;
  bool required = false;
  bool singleton = false;
  bool editable = true;
  bool available = false;
  std::string reason;
  /// The user can add an object of the type and choose its name.
  bool canAdd = false;
  /// The names that objects of the type can have. Empty when any name will do.
  std::optional<SharedStrings> allowedNames;
  /// The paths of the children of the type, in the order of the model.
  std::vector<std::string> present;
  /// The paths of the children that the user can switch on, in the order of the rules.
  std::vector<std::string> offered;
  RulePlace rule;
};

}  // namespace tarn::session
