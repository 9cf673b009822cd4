#pragma once

#include <functional>
#include <map>
#include <string>

#include "journal/Journal.h"
#include "provisional/ParamKey.h"

namespace tarn {

/// The user's decision on an optional item. Without one, it is wanted if the guide holds it.
enum class ActivityState : int { Unset = 0, SetOn = 1, SetOff = 2 };

/// The decisions of the user on optional parameters and objects. They belong to paths, so they hold whether or not any
/// tree has such an item. A decision holds until the next decision on the same item or until
/// `eraseFromOptActivityMaps`; nothing else brings an item back to `Unset`.
class ActivityDecisions {
 public:
  [[nodiscard]] ActivityState ofParam(std::string const& objPath, std::string const& name) const;
  [[nodiscard]] ActivityState ofObject(std::string const& path) const;

  /// A change is recorded in `journal`, unless that is null.
  void setParam(std::string const& objPath, std::string const& name, bool on, Journal* journal = nullptr);
  void setObject(std::string const& path, bool on, Journal* journal = nullptr);

  /// Forgets the decisions on all items whose path begins with the characters of `path`: on a named object and what is
  /// in it, but also on its siblings with a longer name. For `/Case/Domain:a` the decisions on `/Case/Domain:ab` go,
  /// too, and the guide decides on them from then on. Callers rely on this comparison of characters.
  /// Calls `onErased`, if given, with the key of each of them: the path, or the path of the object, "/" and the name.
  void eraseFromOptActivityMaps(std::string const& path, Journal* journal = nullptr,
                                std::function<void(std::string const&)> const& onErased = nullptr);

 private:
  using OptActivityMap = std::map<std::string, bool, ParamKeyOrder>;

  static void set(OptActivityMap& map, std::string key, bool on, Journal* journal);
  static void eraseFromOptActivityMap(std::string const& path, OptActivityMap& map, Journal* journal,
                                      std::function<void(std::string const&)> const& onErased);

  OptActivityMap optParamActivity_;
  OptActivityMap optObjActivity_;
};

}  // namespace tarn
