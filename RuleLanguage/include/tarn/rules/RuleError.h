#pragma once

#include <vector>

#include <tarn/Error.h>
#include <tarn/Export.h>
#include <tarn/rules/Diagnostic.h>

namespace tarn::rules {

/// Rule files that hold errors. The message is all of them as people read them.
class TARN_EXPORT RuleError : public Error {
 public:
  explicit RuleError(std::vector<Diagnostic> diagnostics);

  /// The errors of all files, in the order of files and of places in them. Never empty.
  [[nodiscard]] std::vector<Diagnostic> const& diagnostics() const noexcept { return diagnostics_; }

  /// The diagnostics, ready for a terminal.
  void write(std::ostream& stream) const override;

 private:
  std::vector<Diagnostic> diagnostics_;
};

}  // namespace tarn::rules
