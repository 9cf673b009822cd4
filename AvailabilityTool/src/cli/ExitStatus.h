#pragma once

namespace tarn::tool {

/// The exit status of every subcommand. If several apply, the highest counts.
enum ExitStatus : int {
  NothingFound = 0,
  FindingsMade = 1,
  /// Wrong usage, or something that could not be read or written.
  Failed = 2
};

}  // namespace tarn::tool
