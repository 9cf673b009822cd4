// The items that the user has switched on and off. Every walk looks up every available parameter, and usually there is
// no entry. So a look-up builds no key.

#include "provisional/ActivityDecisions.h"

namespace tarn {

namespace {

template <typename Map, typename Key>
ActivityState decisionIn(Map const& map, Key const& key) {
  auto const entry = map.find(key);
  if (entry == map.end()) return ActivityState::Unset;
  return entry->second ? ActivityState::SetOn : ActivityState::SetOff;
}

}  // namespace

ActivityState ActivityDecisions::ofParam(std::string const& objPath, std::string const& name) const {
  return decisionIn(optParamActivity_, ParamKey{objPath, name});
}

ActivityState ActivityDecisions::ofObject(std::string const& path) const {
  return decisionIn(optObjActivity_, path);
}

void ActivityDecisions::setParam(std::string const& objPath, std::string const& name, bool on) {
  optParamActivity_.insert_or_assign(ParamKey{objPath, name}.text(), on);
}

void ActivityDecisions::setObject(std::string const& path, bool on) {
  optObjActivity_.insert_or_assign(path, on);
}

void ActivityDecisions::eraseFromOptActivityMaps(std::string const& path,
                                                 std::function<void(std::string const&)> const& onErased) {
  eraseFromOptActivityMap(path, optParamActivity_, onErased);
  eraseFromOptActivityMap(path, optObjActivity_, onErased);
}

void ActivityDecisions::eraseFromOptActivityMap(std::string const& path, OptActivityMap& map,
                                                std::function<void(std::string const&)> const& onErased) {
  // In byte order, all keys that begin with `path` follow each other, and `path` itself comes first.
  auto const first = map.lower_bound(path);
  auto last = first;
  for (; last != map.end() && last->first.starts_with(path); ++last) {
    if (onErased != nullptr) onErased(last->first);
  }
  map.erase(first, last);
}

}  // namespace tarn
