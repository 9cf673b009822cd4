#include <iostream>

#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Review.h>

int main(int, char** argv) {
  auto const rules = tarn::rules::loadRules({argv[1]});
  auto const model = tarn::TDFChangeFile({argv[2]}, {}, tarn::TDFChangeFile::Strict).toModelState();

  for (auto const& finding : tarn::session::Review(*rules).judge(model).list) {
    if (!finding.path.empty()) std::cout << finding.path << ": ";
    std::cout << finding.message << '\n';
  }
}
