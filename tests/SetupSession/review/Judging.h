#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tarn/EvalContext.h>

#include "review/ReviewWalk.h"

namespace tarn::session::test {

/// The findings of one judge in and below `/Chip`.
template <typename Judge>
std::vector<Finding> findingsOf(PhysicsData const& rules, ModelTDF const& model) {
  EvalContext evaluation(&model);
  std::vector<Finding> findings;
  ReviewContext context = {rules, model, evaluation, findings};
  std::vector<std::unique_ptr<ReviewJudge>> judges;
  judges.push_back(std::make_unique<Judge>());
  ReviewWalk(context, std::move(judges)).from("/Chip");
  return findings;
}

/// The findings as lines: severity, code and sentence.
inline std::vector<std::string> linesOf(std::vector<Finding> const& findings) {
  std::vector<std::string> lines;
  for (Finding const& finding : findings) {
    lines.push_back(std::string(severityName(finding.severity)) + ' ' + std::string(describe(finding.code).name) +
                    ": " + finding.message);
  }
  return lines;
}

}  // namespace tarn::session::test
