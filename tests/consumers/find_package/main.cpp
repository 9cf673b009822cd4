#include <iostream>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Review.h>

int main(int, char** argv) {
  auto const rules = tarn::rules::loadRules(argv[1]);
  auto const model = tarn::ModelText::read(argv[2]);
  for (auto const& [line, column, reason] : model.faults()) std::cout << "line " << line << ": " << reason << '\n';
  if (!model.faults().empty()) return 2;

  auto const findings = tarn::session::Review(*rules).judge(model);
  for (auto const& finding : findings.list) {
    if (!finding.path.empty()) std::cout << finding.path << ": ";
    std::cout << finding.message << '\n';
  }
  return findings.any() ? 1 : 0;
}
