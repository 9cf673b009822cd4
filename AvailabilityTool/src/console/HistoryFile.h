#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tarn::tool {

/// The lines that were typed in earlier runs, oldest first, in a file that only its owner can read.
///
/// A line is written when it is typed. So several consoles can be open at once, and a console that is killed loses no
/// line. History is a convenience: if it cannot be read or written, the console works without it and says nothing.
class HistoryFile {
 public:
  /// The number of lines that are kept: the latest ones.
  static constexpr std::size_t maxLines = 1000;
  /// The maximum length in bytes of a line that is kept.
  static constexpr std::size_t longestLine = 4096;

  /// With an empty path, the history is empty and keeps nothing.
  explicit HistoryFile(std::filesystem::path path) : path_(std::move(path)) {}

  /// The path of the user's history. The arguments are the values of `XDG_STATE_HOME` and `HOME`, null if not set.
  /// Empty if neither is an absolute path.
  [[nodiscard]] static std::filesystem::path usualPath(char const* stateHome, char const* home);

  /// The lines of earlier runs. Shortens a file that has grown far beyond the limit.
  [[nodiscard]] std::vector<std::string> read() const;

  /// Adds a line of printable text. A line that is blank, too long or not printable is not kept.
  void add(std::string const& line) const;

 private:
  [[nodiscard]] static bool isKept(std::string const& line);
  void replace(std::vector<std::string> const& lines) const;

  std::filesystem::path path_;
};

}  // namespace tarn::tool
