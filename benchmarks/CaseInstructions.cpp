// Runs the most frequent operations of users on a small case, so that the processor's instructions can be counted.
// Other work on the machine does not disturb this measure of speed. `tools/instructions` runs this program, and its
// header explains the use of the counts.
//
//     CaseInstructions               each operation, counted when it runs under callgrind
//     CaseInstructions --compiler    prints what compiled it
//
// Each operation runs before it is counted, so that what happens only once in the life of a program is not in the
// count: the first use of a static object, the heap's first growth.
#include <valgrind/callgrind.h>

#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "CaseOperations.h"
#include "CaseWorkload.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

constexpr std::string_view compiler =
#ifdef __clang__
    "clang " __clang_version__;
#else
    "g++ " __VERSION__;
#endif

/// The instructions of `operation` become a dump of callgrind that bears the name.
void count(char const* name, std::function<void()> const& operation) {
  operation();
  operation();
  CALLGRIND_START_INSTRUMENTATION;
  operation();
  CALLGRIND_STOP_INSTRUMENTATION;
  CALLGRIND_DUMP_STATS_AT(name);
}

void countAll() {
  CaseWorkload const workload(25);
  auto const rules = loadCaseRules();
  checkCounts(workload, rules.get());

  RepeatedValidation validation(rules.get(), workload.valid());
  count("validate a changed case", [&] { validation.validateChanged(); });
  count("validate an unchanged case", [&] { validation.validateUnchanged(); });

  RepeatedEditing editing(rules.get(), workload, workload.valid());
  count("edit a boundary", [&] { editing.editOneBoundary(); });

  std::string const text = CaseWorkload::modelText(workload.valid());
  count("read model text", [&] {
    ModelState const model = TDFChangeFile({}, {text}, TDFChangeFile::Strict).toModelState();
    if (model.size() != workload.objects()) throw std::logic_error("model text is not read as a whole");
  });

  std::ifstream file(caseRulesFile());
  std::string const ruleText(std::istreambuf_iterator<char>(file), {});
  count("load rules", [&] {
    if (rules::parseRules(ruleText)->objects().size() != 5) throw std::logic_error("object types are missing");
  });
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc == 2 && argv[1] == std::string_view("--compiler")) {
      std::cout << compiler << '\n';
      return 0;
    }
    if (argc != 1) throw std::invalid_argument("the only argument is --compiler");
    countAll();
    return 0;
  } catch (std::exception const& error) {
    std::cerr << "CaseInstructions: " << error.what() << '\n';
    return 2;
  }
}
