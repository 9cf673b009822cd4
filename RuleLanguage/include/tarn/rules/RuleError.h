#pragma once

#include <iosfwd>
#include <vector>

#include <tarn/Error.h>
#include <tarn/Export.h>
#include <tarn/rules/Diagnostic.h>

namespace tarn::rules {

/// Thrown by `loadRules` and `parseRules` when rule files contain errors. The message contains all of them as text, so
/// a program that only prints it shows its user everything:
///
///     try {
///       rules = tarn::rules::loadRules("flow.rules.yaml");
///     } catch (tarn::rules::RuleError const& error) {
///       for (auto const& one : error.diagnostics()) std::cerr << tarn::rules::format(one);
///     }
class TARN_EXPORT RuleError : public Error {
 public:
  /// `diagnostics` must not be empty.
  explicit RuleError(std::vector<Diagnostic> diagnostics);

  /// The errors of all files, without warnings, in the order of files and of positions in them. Never empty.
  [[nodiscard]] std::vector<Diagnostic> const& diagnostics() const noexcept { return diagnostics_; }

  /// Writes the diagnostics as `format` gives them, without the last line feed.
  void write(std::ostream& stream) const override;

 private:
  std::vector<Diagnostic> diagnostics_;
};

}  // namespace tarn::rules
