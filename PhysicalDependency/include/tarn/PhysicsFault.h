#pragma once

#include <span>
#include <string>
#include <string_view>

#include <tarn/Export.h>
#include <tarn/SharedStrings.h>

namespace tarn {

/// A finding of `PhysicsValidator2` as data, for programs that need more than its sentence. All views are valid until
/// `PhysicsFaultObserver::onFault` returns.
struct TARN_EXPORT PhysicsFault {
  enum Kind : int {
    /// A required parameter is absent.
    MissingParameter,
    /// A parameter is present and not available.
    ParameterNotAvailable,
    /// A value, or an item of a list, is not allowed.
    ValueNotAllowed,
    /// A required child is absent: a singleton, or one or several names.
    MissingObject,
    /// Children of a type that is not available are present.
    ObjectNotAvailable,
    /// Children have names that are not allowed.
    ObjectNameNotAllowed,
    /// A global check failed.
    GlobalCheckFailed,
    /// A remark of the rule authors, which is not an error.
    BetaMessage
  };

  Kind kind = MissingParameter;
  /// The object that holds the item, or would hold it. "" for a global check.
  std::string_view path = {};
  /// The name of the parameter, the type of the children, or the name of the global check. For a beta message the last
  /// component of the item's path.
  std::string_view item = {};
  /// `ValueNotAllowed`: the whole value.
  std::string_view value = {};
  /// The items of a list that are not allowed, or the names of the children. Empty for a value that is not a list, and
  /// for a singleton.
  std::span<std::string const> wrong = {};
  /// The values or names that are allowed now.
  SharedStrings allowed = {};
  /// The sentence that the logger gets.
  std::string_view message = {};
};

/// Receives the findings of a `PhysicsValidator2` as data; see `PhysicsValidator2::setFaultObserver`.
class TARN_EXPORT PhysicsFaultObserver {
 public:
  virtual ~PhysicsFaultObserver();
  virtual void onFault(PhysicsFault const& fault) = 0;
};

}  // namespace tarn
