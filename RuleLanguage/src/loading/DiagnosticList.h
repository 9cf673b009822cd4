#pragma once

#include <string>
#include <vector>

#include <tarn/rules/Diagnostic.h>

#include "loading/SourceText.h"

namespace tarn::rules {

/// Gathers diagnostics while files are read and puts them in order at the end.
class DiagnosticList {
 public:
  explicit DiagnosticList(std::size_t limit) : limit_(limit) {}

  /// Adds one about `length` characters from `place` in `source`. The returned reference is for adding notes and is
  /// valid until the next call.
  Diagnostic& add(Severity severity, SourceText const& source, Place place, std::size_t length, std::string message);
  /// The one that was added last, for adding notes.
  [[nodiscard]] Diagnostic& newest() noexcept { return list_.empty() ? surplus_ : list_.back(); }
  /// Adds one about a file or folder as a whole.
  void addAboutFile(std::string const& name, std::string message);

  /// A further place for a diagnostic.
  static void note(Diagnostic& diagnostic, SourceText const& source, Place place, std::size_t length,
                   std::string message);

  [[nodiscard]] bool hasErrors() const noexcept { return errors_ > 0; }
  /// No more errors are kept, only counted: their places need not be looked for.
  [[nodiscard]] bool isFull() const noexcept { return errors_ >= limit_; }
  [[nodiscard]] std::size_t errorCount() const noexcept { return errors_; }

  /// All of them, in the order of `files` and of places in them, each once; with warnings only when `warnings` is set.
  /// Beyond the limit the last one says how many errors there were.
  [[nodiscard]] std::vector<Diagnostic> take(std::vector<std::string> const& files, bool warnings);

 private:
  std::size_t limit_;
  std::size_t errors_ = 0;
  std::vector<Diagnostic> list_;
  Diagnostic surplus_;
};

}  // namespace tarn::rules
