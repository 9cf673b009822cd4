#include "serve/EditorFiles.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <ios>
#include <system_error>
#include <utility>

#include "cli/Failure.h"

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t mostFiles = 1000;
constexpr std::uintmax_t mostBytes = std::uintmax_t{32} << 20U;

constexpr std::array<std::pair<std::string_view, std::string_view>, 9> types{{
    {".html", "text/html; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".png", "image/png"},
    {".ico", "image/x-icon"},
    {".woff2", "font/woff2"},
    {".txt", "text/plain; charset=utf-8"},
    {".webmanifest", "application/manifest+json"},
}};

std::string_view typeOf(std::string_view extension) {
  for (auto const& [known, type] : types) {
    if (known == extension) return type;
  }
  return {};
}

/// "main-3K7QWX2A" ends with a hash as the bundler writes it.
bool endsWithHash(std::string_view stem) {
  constexpr std::size_t digits = 8;
  if (stem.size() <= digits || stem[stem.size() - digits - 1] != '-') return false;
  stem.remove_prefix(stem.size() - digits);
  return std::all_of(stem.begin(), stem.end(), [](char c) { return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); });
}

std::string bytesOf(fs::path const& path, std::uintmax_t size) {
  std::string bytes(size, '\0');
  std::ifstream stream(path, std::ios::binary);
  if (!stream.read(bytes.data(), static_cast<std::streamsize>(size))) {
    throw Failure("cannot read \"" + path.string() + "\" of the web editor");
  }
  return bytes;
}

}  // namespace

EditorFiles EditorFiles::read(std::string const& folder) {
  EditorFiles editor;
  std::uintmax_t bytes = 0;
  std::error_code failed;
  for (fs::recursive_directory_iterator entry(folder, failed), end; !failed && entry != end; entry.increment(failed)) {
    fs::path const& path = entry->path();
    std::string_view const type = typeOf(path.extension().string());
    if (type.empty() || entry->symlink_status(failed).type() != fs::file_type::regular) continue;
    auto const size = entry->file_size(failed);
    if (failed) break;
    bytes += size;
    if (editor.files_.size() >= mostFiles || bytes > mostBytes) {
      throw Failure("\"" + folder + "\" has more files than a web editor; give the folder of its page");
    }
    std::string const name = '/' + path.lexically_relative(folder).generic_string();
    editor.files_[name] = {bytesOf(path, size), std::string(type), endsWithHash(path.stem().string())};
  }
  if (failed) throw Failure("cannot read the folder \"" + folder + "\" of the web editor: " + failed.message());
  if (editor.find("/") == nullptr) {
    throw Failure("there is no index.html in \"" + folder + "\"; give the folder of a built web editor");
  }
  return editor;
}

EditorFiles::File const* EditorFiles::find(std::string_view path) const {
  auto const found = files_.find(path == "/" ? "/index.html" : path);
  return found == files_.end() ? nullptr : &found->second;
}

}  // namespace tarn::tool
