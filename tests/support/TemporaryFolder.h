#pragma once

#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): mkdtemp is of POSIX

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

namespace tarn::test {

/// A new folder in the system's folder for temporary files. It is removed with all its content when the object is
/// destroyed.
class TemporaryFolder {
 public:
  /// The folder's name begins with `name`. Throws `std::system_error` when it cannot be created.
  explicit TemporaryFolder(std::string const& name) {
    std::string path = (std::filesystem::temp_directory_path() / name).string() + '-' + std::string(6, 'X');
    if (::mkdtemp(path.data()) == nullptr) throw std::system_error(errno, std::generic_category(), path);
    path_ = path;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(TemporaryFolder const&) = delete;
  TemporaryFolder& operator=(TemporaryFolder const&) = delete;

  [[nodiscard]] std::filesystem::path const& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tarn::test
