// One sentence for everything outside, so that an answer says nothing about files that the client must not see.
#include "documents/FolderGuard.h"

#include <algorithm>
#include <system_error>

#include <tarn/Error.h>

#include "protocol/ProtocolError.h"

namespace tarn::service {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(std::string const& path) {
  throw ProtocolError(ErrorCode::OutsideFolders, "\"" + path + "\" is not a file in the folders that may be used");
}

bool isInside(fs::path const& folder, fs::path const& file) {
  return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

/// The path of a file that does not exist yet.
fs::path newFile(std::string const& given, fs::path const& path) {
  fs::path const name = path.filename();
  if (name.empty() || name == "." || name == "..") refuse(given);
  std::error_code failed;
  fs::path const parent = fs::canonical(path.parent_path(), failed);
  if (failed) refuse(given);
  fs::path resolved = parent / name;
  // A link to nothing: whoever writes to it makes a file somewhere else.
  if (fs::is_symlink(fs::symlink_status(resolved, failed))) refuse(given);
  return resolved;
}

}  // namespace

FolderGuard::FolderGuard(std::vector<std::string> const& folders) {
  for (std::string const& folder : folders) {
    std::error_code failed;
    fs::path resolved = fs::canonical(folder, failed);
    if (failed || !fs::is_directory(resolved, failed)) {
      throw FileError("FolderGuard", "FolderGuard", "\"" + folder + "\" is not a folder");
    }
    folders_.push_back(std::move(resolved));
  }
}

std::string FolderGuard::resolve(std::string const& path) const {
  if (folders_.empty() || path.empty() || path.find('\0') != std::string::npos) refuse(path);
  fs::path const whole = folders_.front() / path;  // an absolute path replaces the folder
  std::error_code failed;
  fs::path resolved = fs::canonical(whole, failed);
  if (failed) resolved = newFile(path, whole);
  if (std::none_of(folders_.begin(), folders_.end(),
                   [&](fs::path const& folder) { return isInside(folder, resolved); })) {
    refuse(path);
  }
  fs::file_status const status = fs::status(resolved, failed);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw ProtocolError(ErrorCode::FileFailed, "\"" + path + "\" is not a file");
  }
  return resolved.string();
}

}  // namespace tarn::service
