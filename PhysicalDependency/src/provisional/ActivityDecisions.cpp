// The items that the user has switched on and off. Every walk looks up every available parameter, and usually there is
// no entry. So a look-up builds no key.

#include "provisional/ActivityDecisions.h"

#include <utility>

#include "journal/JournaledWrites.h"

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

void ActivityDecisions::setParam(std::string const& objPath, std::string const& name, bool on, Journal* journal) {
  set(optParamActivity_, ParamKey{objPath, name}.text(), on, journal);
}

void ActivityDecisions::setObject(std::string const& path, bool on, Journal* journal) {
  set(optObjActivity_, path, on, journal);
}

void ActivityDecisions::set(OptActivityMap& map, std::string key, bool on, Journal* journal) {
  auto const [entry, isNew] = journaled::emplace(journal, map, std::move(key), on);
  if (!isNew) journaled::assign(journal, entry->second, on);
}

void ActivityDecisions::eraseFromOptActivityMaps(std::string const& path, Journal* journal,
                                                 std::function<void(std::string const&)> const& onErased) {
  eraseFromOptActivityMap(path, optParamActivity_, journal, onErased);
  eraseFromOptActivityMap(path, optObjActivity_, journal, onErased);
}

void ActivityDecisions::eraseFromOptActivityMap(std::string const& path, OptActivityMap& map, Journal* journal,
                                                std::function<void(std::string const&)> const& onErased) {
  // In byte order, all keys that begin with `path` follow each other, and `path` itself comes first.
  journaled::Erasing erasing(journal, map);
  auto entry = map.lower_bound(path);
  while (entry != map.end() && entry->first.starts_with(path)) {
    if (onErased != nullptr) onErased(entry->first);
    entry = erasing.erase(entry);
  }
}

}  // namespace tarn
