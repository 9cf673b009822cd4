#pragma once

#include <deque>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// A kind of files.
struct FileKind {
  /// The end of the names of those that are taken from a folder.
  std::string_view suffix;
  /// One of them, in messages: "rule file".
  std::string_view name;
  /// Several of them.
  std::string_view plural;
};

inline constexpr FileKind ruleFiles{".rules.yaml", "rule file", "rule files"};

/// Files of one kind, read into memory in their order.
struct SourceFileSet {
  std::deque<SourceText> sources;
  std::vector<std::string> names;  // of all files and folders, readable or not, for the order of diagnostics
  bool unreadable = false;

  /// Reads files, and from folders those of the kind, in the order of their names. A file that cannot be read is
  /// reported to `diagnostics`.
  void read(std::vector<std::filesystem::path> const& filesOrFolders, FileKind const& kind, std::size_t maxFileSize,
            DiagnosticList& diagnostics);
};

}  // namespace tarn::rules
