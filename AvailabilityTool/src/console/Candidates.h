#pragma once

#include <map>
#include <string>

namespace tarn {
class ProvisionalTDF;
}

namespace tarn::tool {

/// What a component of a path, or the name of a file, is good for.
struct Candidate {
  /// The path that ends here is one that was looked for.
  bool whole = false;
  /// There are such paths below it.
  bool deeper = false;
};

/// Components that can stand behind a folder. No two are alike.
using Candidates = std::map<std::string, Candidate>;

/// The components behind `folder` that begin with `start` and lead to a path of some kind. `folder` is the text of a
/// path up to and including a "/". Only one level is looked at, so the cost is that of what is returned, and of a
/// search in what the state holds.
/// @{
[[nodiscard]] Candidates presentParameters(ProvisionalTDF const& state, std::string const& folder,
                                           std::string const& start);
[[nodiscard]] Candidates potentialParameters(ProvisionalTDF const& state, std::string const& folder,
                                             std::string const& start);
/// Linear in the number of potential objects.
[[nodiscard]] Candidates potentialObjects(ProvisionalTDF const& state, std::string const& folder,
                                          std::string const& start);
/// The active root and what is below it, with objects that hold no parameters. `deeper` is told only where a single
/// candidate is left.
[[nodiscard]] Candidates presentObjects(ProvisionalTDF const& state, std::string const& folder,
                                        std::string const& start);
/// Files and folders of the file system, where `folder` may be empty: the current folder. Hidden ones only where
/// `start` has their dot. A folder that cannot be read holds nothing.
[[nodiscard]] Candidates files(std::string const& folder, std::string const& start);
/// @}

}  // namespace tarn::tool
