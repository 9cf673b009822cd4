#pragma once

#include <map>
#include <string>

namespace tarn {
class ProvisionalTDF;
}

namespace tarn::tool {

/// The paths that a component of a path, or the name of a file, leads to.
struct Candidate {
  /// The path that ends here is of the kind that is searched.
  bool whole = false;
  /// There are paths of that kind below it.
  bool deeper = false;
};

/// The components that can follow a folder.
using Candidates = std::map<std::string, Candidate>;

/// The components after `folder` that begin with `start` and lead to a path of some kind. `folder` is the text of a
/// path up to and including a "/". Only one level is read, so the time is that of the result and of a search in the
/// state.
/// @{
[[nodiscard]] Candidates presentParameters(ProvisionalTDF const& state, std::string const& folder,
                                           std::string const& start);
[[nodiscard]] Candidates potentialParameters(ProvisionalTDF const& state, std::string const& folder,
                                             std::string const& start);
/// Linear in the number of potential objects.
[[nodiscard]] Candidates potentialObjects(ProvisionalTDF const& state, std::string const& folder,
                                          std::string const& start);
/// The active root and all objects below it, also those without parameters. `deeper` is set only if there is a single
/// candidate.
[[nodiscard]] Candidates presentObjects(ProvisionalTDF const& state, std::string const& folder,
                                        std::string const& start);
/// Files and folders. `folder` may be empty for the current folder. Hidden ones are included only if `start` begins
/// with a dot. A folder that cannot be read has no entries.
[[nodiscard]] Candidates files(std::string const& folder, std::string const& start);
/// @}

}  // namespace tarn::tool
