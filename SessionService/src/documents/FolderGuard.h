#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tarn::service {

/// Keeps clients inside the folders that the user has named.
class FolderGuard {
 public:
  /// Throws a `FileError` for a folder that does not exist.
  explicit FolderGuard(std::vector<std::string> const& folders);

  [[nodiscard]] bool hasFolders() const noexcept { return !folders_.empty(); }
  /// The path without links and "..". A relative path starts at the first folder. The file may be missing, but not its
  /// folder. Throws a `ProtocolError` if the file is outside the folders or is not a regular file.
  [[nodiscard]] std::string resolve(std::string const& path) const;

 private:
  std::vector<std::filesystem::path> folders_;
};

}  // namespace tarn::service
