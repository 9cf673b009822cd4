#include "yaml/SourceFileSet.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <string_view>
#include <system_error>

namespace tarn::rules {

namespace fs = std::filesystem;

namespace {

/// Reads a file to its end. Returns the reason when that fails, otherwise the empty text.
std::string readFile(fs::path const& path, std::size_t maxFileSize, std::string& text) {
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return errno != 0 ? std::strerror(errno) : "it cannot be opened";
  std::vector<char> buffer(1 << 16);
  while (stream) {
    stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
    text.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
    if (text.size() > maxFileSize) return "it is larger than " + std::to_string(maxFileSize) + " bytes";
  }
  if (stream.bad()) return errno != 0 ? std::strerror(errno) : "it cannot be read to its end";
  return {};
}

/// Adds the files of a folder whose names end with `suffix`. Returns the reason when that fails, otherwise the empty
/// text.
///
/// It does not use a directory iterator: the one of g++ 12 builds paths in functions that are noexcept, so it ends the
/// program when memory runs out.
std::string listFiles(fs::path const& path, std::string_view suffix, std::vector<fs::path>& found) {
  struct Closer {
    void operator()(DIR* folder) const noexcept { ::closedir(folder); }
  };
  std::unique_ptr<DIR, Closer> const folder(::opendir(path.c_str()));
  if (folder == nullptr) return std::strerror(errno);
  for (;;) {
    errno = 0;
    dirent const* const entry = ::readdir(folder.get());
    if (entry == nullptr) return errno != 0 ? std::strerror(errno) : std::string();
    if (std::string_view(entry->d_name).ends_with(suffix)) found.push_back(path / entry->d_name);
  }
}

}  // namespace

void SourceFileSet::read(std::vector<fs::path> const& filesOrFolders, FileKind const& kind, std::size_t maxFileSize,
                         DiagnosticList& diagnostics) {
  std::string const what(kind.name);
  auto const refuse = [&](std::string const& name, std::string const& reason) {
    diagnostics.addAboutFile(Code::UnreadableFile, name, "cannot read the " + what + ": " + reason);
    unreadable = true;
  };
  auto const readOne = [&](fs::path const& path) {
    std::string const name = path.string();
    names.push_back(name);
    std::string text;
    auto const reason = readFile(path, maxFileSize, text);
    if (reason.empty()) {
      sources.emplace_back(name, std::move(text));
    } else {
      refuse(name, reason);
    }
  };

  for (auto const& path : filesOrFolders) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
      readOne(path);
      continue;
    }
    std::vector<fs::path> found;
    std::string const reason = listFiles(path, kind.suffix, found);
    names.push_back(path.string());
    if (!reason.empty()) {
      refuse(path.string(), reason);
    } else if (found.empty()) {
      diagnostics.addAboutFile(Code::NoRuleFiles, path.string(),
                               "the folder contains no " + std::string(kind.plural) + "; their names must end in " +
                                   std::string(kind.suffix));
      unreadable = true;
    }
    std::sort(found.begin(), found.end(),
              [](fs::path const& a, fs::path const& b) { return a.filename().string() < b.filename().string(); });
    for (auto const& file : found) readOne(file);
  }
  if (filesOrFolders.empty()) {
    diagnostics.addAboutFile(Code::NoRuleFiles, "<rules>", "no " + what + " is given");
    unreadable = true;
  }
}

}  // namespace tarn::rules
