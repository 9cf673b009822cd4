#pragma once

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// The files of a rule base, read into memory in their order.
struct RuleFileSet {
  std::deque<SourceText> sources;
  std::vector<std::string> names;  // of all files and folders, readable or not, for the order of diagnostics
  bool unreadable = false;

  /// Reads files, and from folders their files `*.rules.yaml`. A file that cannot be read is reported to `diagnostics`.
  void read(std::vector<std::filesystem::path> const& filesOrFolders, std::size_t maxFileSize,
            DiagnosticList& diagnostics);
};

}  // namespace tarn::rules
