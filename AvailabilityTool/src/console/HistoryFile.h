#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn::tool {

/// The lines that were typed in earlier runs, oldest first, in a file that only its owner can read.
///
/// A line is written when it is typed, so several consoles can be open at a time and none is lost by one that is
/// killed. History is a convenience: where it cannot be read or written, the console goes on without it and says
/// nothing.
class HistoryFile {
 public:
  /// Of more lines than this the latest are kept.
  static constexpr std::size_t maxLines = 1000;
  /// A line with more bytes is not kept.
  static constexpr std::size_t longestLine = 4096;

  /// An empty path is a history that holds nothing and keeps nothing.
  explicit HistoryFile(std::filesystem::path path) : path_(std::move(path)) {}

  /// Where the history of the user is kept, from the values of `XDG_STATE_HOME` and `HOME`; null for those not set.
  /// Empty when neither names a folder by its full path.
  [[nodiscard]] static std::filesystem::path usualPath(char const* stateHome, char const* home);

  /// The lines of earlier runs. A file that has grown far beyond the limit is cut down on this occasion.
  [[nodiscard]] std::vector<std::string> read() const;

  /// Adds a line. Kept are lines of printable text; one that is blank, or too long, is not.
  void add(std::string const& line) const;

 private:
  [[nodiscard]] static bool isKept(std::string const& line);
  void replace(std::vector<std::string> const& lines) const;

  std::filesystem::path path_;
};

}  // namespace tarn::tool
