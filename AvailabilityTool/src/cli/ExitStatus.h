#pragma once

namespace tarn::tool {

/// What every subcommand ends with. Where several apply, the highest does.
enum ExitStatus : int {
  NothingFound = 0,
  FindingsMade = 1,
  /// Wrong usage, or something that could not be read or written.
  Failed = 2
};

}  // namespace tarn::tool
