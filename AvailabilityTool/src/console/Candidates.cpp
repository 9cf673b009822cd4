// Finds what can come next in a path, in the edited state and in the file system. The model is not walked: its lists
// are sorted by object path, so everything below an object can be skipped.
#include "console/Candidates.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include <tarn/Error.h>
#include <tarn/PathPattern.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>
#include <tarn/TDFPath.h>

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;

/// The object of `folder`: "" for "/".
std::string objectOf(std::string const& folder) {
  return folder.substr(0, folder.size() - 1);
}

/// Adds the components after `folder` that lead to the keys of `byObject`, which are sorted object paths.
template <typename Map>
void addWaysTo(Map const& byObject, std::string const& folder, std::string const& start, Candidates& out) {
  std::string const wanted = folder + start;
  for (auto at = byObject.lower_bound(wanted); at != byObject.end() && at->first.starts_with(wanted);) {
    auto const end = at->first.find('/', folder.size());
    bool const isObject = end == std::string::npos;
    std::string const component = at->first.substr(folder.size(), isObject ? end : end - folder.size());
    out[component].deeper = true;
    // In byte order all paths below the component are adjacent; they come before its name with the next character.
    constexpr char behindSlash = '/' + 1;
    at = isObject ? byObject.upper_bound(at->first) : byObject.lower_bound(folder + component + behindSlash);
  }
}

std::vector<std::string> childrenOf(ProvisionalTDF const& state, std::string const& path) {
  try {
    return state.getPathExpansion(PathPattern::escapedPath(path) + "/*", "");
  } catch (Error const&) {  // the text is not a path, so nothing is below it
    return {};
  }
}

}  // namespace

Candidates presentParameters(ProvisionalTDF const& state, std::string const& folder, std::string const& start) {
  ModelState const& active = state.getActiveTDFState();
  Candidates found;
  addWaysTo(active, folder, start, found);
  if (auto const object = active.find(objectOf(folder)); object != active.end()) {
    for (auto at = object->second.lower_bound(start); at != object->second.end() && at->first.starts_with(start);
         ++at) {
      found[at->first].whole = true;
    }
  }
  return found;
}

Candidates potentialParameters(ProvisionalTDF const& state, std::string const& folder, std::string const& start) {
  auto const& potential = state.getAvailPotParams();
  Candidates found;
  addWaysTo(potential, folder, start, found);
  auto const [first, last] = potential.equal_range(objectOf(folder));
  for (auto at = first; at != last; ++at) {
    if (at->second.starts_with(start)) found[at->second].whole = true;
  }
  return found;
}

Candidates potentialObjects(ProvisionalTDF const& state, std::string const& folder, std::string const& start) {
  std::string const wanted = folder + start;
  Candidates found;
  for (std::string const& path : state.getAvailPotObjects()) {
    if (!path.starts_with(wanted)) continue;
    auto const end = path.find('/', folder.size());
    if (end == std::string::npos) {
      found[path.substr(folder.size())].whole = true;
    } else {
      found[path.substr(folder.size(), end - folder.size())].deeper = true;
    }
  }
  return found;
}

Candidates presentObjects(ProvisionalTDF const& state, std::string const& folder, std::string const& start) {
  std::string const root = TDFPath(state.getActiveRoot()).getFullPath();
  std::string const object = objectOf(folder);
  Candidates found;
  for (std::string const& child : childrenOf(state, object)) {
    // Above the root only the path to the root is offered. Its siblings belong to the model and are not edited.
    bool const inside = StringUtilities::isPathRootedAt(root, child);
    if (!inside && !StringUtilities::isPathRootedAt(child, root)) continue;
    std::string const component = child.substr(object.size() + 1);
    if (component.starts_with(start)) found[component] = {inside, !inside};
  }
  if (found.size() == 1) {
    auto& [component, only] = *found.begin();
    if (only.whole) only.deeper = !childrenOf(state, folder + component).empty();
  }
  return found;
}

Candidates files(std::string const& folder, std::string const& start) {
  Candidates found;
  std::error_code error;
  fs::directory_iterator entry(folder.empty() ? fs::path(".") : fs::path(folder), error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::string const name = entry->path().filename().string();
    if (!name.starts_with(start) || (name.starts_with('.') && start.empty())) continue;
    std::error_code unknown;
    bool const isFolder = entry->is_directory(unknown);
    found[name] = {!isFolder, isFolder};
  }
  return found;
}

}  // namespace tarn::tool
