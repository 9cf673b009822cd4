#include <iostream>

#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/ModelJudge.h>

int main(int, char** argv) {
  auto const rules = tarn::rules::loadRules({argv[1]});
  auto const model = tarn::TDFChangeFile({argv[2]}, {}, tarn::TDFChangeFile::Strict).toModelState();

  auto const findings = tarn::session::ModelJudge(*rules).judge(model);
  for (auto const& error : findings.dependency) std::cout << error.path << ": " << error.message << '\n';
  for (auto const& message : findings.global) std::cout << message << '\n';
  for (auto const& name : findings.unknown) std::cout << name.path << ": " << name.message << '\n';
  for (auto const& fault : findings.values) std::cout << fault.path << ": " << fault.message << '\n';
}
