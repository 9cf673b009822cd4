#pragma once

#include <array>
#include <cstddef>
#include <string>

#include <tarn/session/Findings.h>

namespace tarn::tool {

/// Counts the findings of a run over models.
class Summary {
 public:
  void add(session::Findings const& findings) noexcept;
  /// A model could not be judged.
  void addFailure() noexcept { ++failures_; }

  /// 0, 1 or 2, see `ExitStatus`. Warnings count as findings only with `failOnWarning`.
  [[nodiscard]] int exitStatus(bool failOnWarning = false) const noexcept;

  /// One line: "3 models, 1 with findings: 2 dependency errors, 1 unknown name." Kinds without findings are left out.
  [[nodiscard]] std::string text() const;

 private:
  std::size_t models_ = 0;
  std::size_t withFindings_ = 0;
  std::size_t failures_ = 0;
  std::array<std::size_t, static_cast<std::size_t>(session::FindingKind::Beta)> errors_ = {};  // by kind
  std::size_t warnings_ = 0;
  std::size_t beta_ = 0;
  std::size_t passedOver_ = 0;
};

}  // namespace tarn::tool
