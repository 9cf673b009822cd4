#pragma once

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// The files that make up a rule database, read into memory in their order.
struct RuleFileSet {
  std::deque<SourceText> sources;
  std::vector<std::string> names;  // of all files that were to be read, for the order of diagnostics
  bool unreadable = false;

  /// Reads files and, of folders, their `*.rules.yaml`. What cannot be read goes to `diagnostics`.
  void read(std::vector<std::filesystem::path> const& filesOrFolders, std::size_t maxFileSize,
            DiagnosticList& diagnostics);
};

}  // namespace tarn::rules
