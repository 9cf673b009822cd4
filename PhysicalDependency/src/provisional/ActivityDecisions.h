#pragma once

#include <map>
#include <string>

#include "provisional/ParamKey.h"

namespace tarn {

/// The user's decision on an optional item. Without one, it is wanted if the guide holds it.
enum class ActivityState : int { Unset = 0, SetOn = 1, SetOff = 2 };

/// The decisions of the user on optional parameters and objects. They are about paths: they hold whether or not any
/// tree has such an item, and until another decision or `eraseFromOptActivityMaps`; nothing else brings an item back to
/// `Unset`.
class ActivityDecisions {
 public:
  [[nodiscard]] ActivityState ofParam(std::string const& objPath, std::string const& name) const;
  [[nodiscard]] ActivityState ofObject(std::string const& path) const;

  void setParam(std::string const& objPath, std::string const& name, bool on);
  void setObject(std::string const& path, bool on);

  /// Forgets the decisions on all items whose path begins with the text of `path`. That is meant for a named object and
  /// what is in it, but a text is a text: `/Case/Domain:a` takes the decisions on `/Case/Domain:ab` along, which are
  /// back to what the guide says from then on.
  void eraseFromOptActivityMaps(std::string const& path);

 private:
  using OptActivityMap = std::map<std::string, bool, ParamKeyOrder>;

  static void eraseFromOptActivityMap(std::string const& path, OptActivityMap& map);

  OptActivityMap optParamActivity_;
  OptActivityMap optObjActivity_;
};

}  // namespace tarn
