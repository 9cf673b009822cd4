#include <iostream>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

int main(int, char** argv) {
  auto const rules = tarn::rules::loadRules({argv[1]});
  auto const model = tarn::TDFChangeFile({argv[2]}, {}, tarn::TDFChangeFile::Strict).toModelState();

  tarn::BasicPhysicsErrorLogger findings;
  tarn::PhysicsValidator2 validator(rules.get());
  validator.setLogger(&findings);
  validator.validate(tarn::PhysicsValidator2::ValAll, model, {"/Case"});

  for (auto const& [path, message] : findings.getDependencyErrors()) std::cout << path << ": " << message << '\n';
  for (auto const& message : findings.getGlobalErrors()) std::cout << message << '\n';
}
