#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace tarn::tool {

/// The files of the web editor. They are read once, so no request makes the server open a file.
class EditorFiles {
 public:
  /// Reads the files in `folder` and below it whose types a page needs. Symbolic links are passed over. Throws a
  /// `Failure` if there is no index.html, if a file cannot be read, or if there is far more than a page needs.
  [[nodiscard]] static EditorFiles read(std::string const& folder);

  struct File {
    std::string bytes;
    /// For the header `Content-Type`.
    std::string type;
    /// The name has a hash of the bytes, as in "main-3K7QWX2A.js". So other bytes have another name.
    bool hasHash = false;
  };
  /// The file at a path of a URL, "/" for index.html. Null when there is none.
  [[nodiscard]] File const* find(std::string_view path) const;

 private:
  std::map<std::string, File, std::less<>> files_;
};

}  // namespace tarn::tool
