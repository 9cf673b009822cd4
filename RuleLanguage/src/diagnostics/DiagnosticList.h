#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <tarn/rules/Diagnostic.h>

#include "diagnostics/Codes.h"
#include "diagnostics/SourceText.h"

namespace tarn::rules {

/// Collects diagnostics while files are read, and sorts them at the end.
class DiagnosticList {
 public:
  /// Keeps at most `limit` errors. Further ones are counted only.
  explicit DiagnosticList(std::size_t limit) : limit_(limit) {}

  /// Adds a diagnostic about a range of `source`. The severity is that of the code. The caller may add notes and a fix
  /// to the returned diagnostic until the next call.
  Diagnostic& add(Code code, SourceText const& source, SourceRange const& range, std::string message);
  /// Adds a diagnostic about a file or folder as a whole.
  void addAboutFile(Code code, std::string const& name, std::string message);

  /// Adds a further position to a diagnostic.
  static void note(Diagnostic& diagnostic, SourceText const& source, SourceRange const& range, std::string message);
  /// Names the cause of the last diagnostic that was added. Diagnostics with one code and one cause are one: the
  /// first in the order of the files is kept, with their number. Without a cause that holds for diagnostics with the
  /// same range and message: a part of a file that several aliases or templates refer to is read several times.
  void setCause(std::string cause);
  /// Gives a diagnostic its fix: replace `range` by `text`.
  static void fix(Diagnostic& diagnostic, SourceText const& source, SourceRange const& range, std::string text,
                  std::string title);

  [[nodiscard]] bool hasErrors() const noexcept { return errors_ > 0; }
  /// Further errors are only counted, so their positions need not be searched for.
  [[nodiscard]] bool isFull() const noexcept { return errors_ >= limit_; }
  [[nodiscard]] std::size_t errorCount() const noexcept { return errors_; }

  /// Removes the diagnostics for which `isAccepted` returns true, and returns their number.
  std::size_t removeIf(std::function<bool(Diagnostic const&)> const& isAccepted);
  using Severities = std::map<std::string, std::optional<Severity>, std::less<>>;
  /// Gives diagnostics the severities by code that `severities` has, and removes those that are off.
  void setSeverities(Severities const& severities);

  /// Hands over all diagnostics, in the order of `files` and of positions in them. Those with the same cause are given
  /// once. Warnings are included only when `warnings` is set. With more errors than the limit, a last diagnostic gives
  /// their number.
  [[nodiscard]] std::vector<Diagnostic> take(std::vector<std::string> const& files, bool warnings);

 private:
  std::size_t limit_;
  std::size_t errors_ = 0;
  std::vector<Diagnostic> list_;
  std::unordered_map<std::size_t, std::string> causes_;  // by index in `list_`; most have none
  Diagnostic surplus_;
  bool lastIsSurplus_ = false;
};

}  // namespace tarn::rules
