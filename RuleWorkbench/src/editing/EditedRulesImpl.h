#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <tarn/workbench/EditedRules.h>

#include "editing/RuleNames.h"

namespace tarn::workbench {

/// A part of a file when diagnostics were accepted.
struct AcceptedPart {
  std::uint64_t hash = 0;
  std::size_t firstLine = 0;
  std::size_t lastLine = 0;
};

/// The files of the rule base, and the names in them. Each question has its own source file.
class EditedRulesImpl {
 public:
  [[nodiscard]] EditedFile* find(std::string const& file) noexcept;
  /// The file with its parts read; null if there is none of that name.
  [[nodiscard]] EditedFile const* file(std::string const& name) const;
  [[nodiscard]] RuleNames const& names() const;
  void changed(EditedFile& file);
  void read(EditedFile& file) const;
  void readAll() const;

  EditedFiles files;
  std::size_t revision = 0;

  std::map<std::string, std::vector<AcceptedPart>> accepted;

 private:
  mutable std::unique_ptr<RuleNames> names_;
};

/// The first and last line of a part of a file.
[[nodiscard]] std::pair<std::size_t, std::size_t> linesOf(EditedFile const& file, Span span);

/// The diagnostics of texts, by file. Every text has an entry.
[[nodiscard]] EditorDiagnostics editorDiagnostics(std::vector<rules::RuleText> const& texts,
                                                  std::vector<rules::Diagnostic> const& diagnostics);

/// The values that a parameter is known to allow, in their order. Empty if the rules compute them or allow any.
[[nodiscard]] std::vector<std::string> allowedValuesOf(Definition const& parameter);

}  // namespace tarn::workbench
