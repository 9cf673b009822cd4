#include "loading/RuleFileSet.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <system_error>

namespace tarn::rules {

namespace fs = std::filesystem;

namespace {

/// Reads a file to its end. On failure the reason comes back.
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

}  // namespace

void RuleFileSet::read(std::vector<fs::path> const& filesOrFolders, std::size_t maxFileSize,
                       DiagnosticList& diagnostics) {
  auto const refuse = [&](std::string const& name, std::string const& reason) {
    diagnostics.addAboutFile(name, "cannot read the rule file: " + reason);
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
    for (fs::directory_iterator entry(path, error), end; !error && entry != end; entry.increment(error)) {
      if (entry->path().filename().string().ends_with(".rules.yaml")) found.push_back(entry->path());
    }
    names.push_back(path.string());
    if (error) {
      refuse(path.string(), error.message());
    } else if (found.empty()) {
      diagnostics.addAboutFile(path.string(), "the folder holds no rule files; their names end in .rules.yaml");
      unreadable = true;
    }
    std::sort(found.begin(), found.end(),
              [](fs::path const& a, fs::path const& b) { return a.filename().string() < b.filename().string(); });
    for (auto const& file : found) readOne(file);
  }
  if (filesOrFolders.empty()) {
    diagnostics.addAboutFile("<rules>", "no rule file is named");
    unreadable = true;
  }
}

}  // namespace tarn::rules
