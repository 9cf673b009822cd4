// Times this library on the case: the program to profile, and what `side_by_side` compares with other systems.
//
//     CaseDriver DOMAINS                      checks all counts, then times every operation
//     CaseDriver DOMAINS OPERATION [TIMES]    repeats one operation, for a profiler; 20 times if nothing else is said
//     CaseDriver rules FILE                   times the loading of a rule file
//     CaseDriver list                         names the operations
//
// Prints `operation <tab> milliseconds of processor time`, the median of many runs, one a line. The program ends with
// an error when a result differs from the case. So it never prints the time of wrong work.
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>

#include "CaseOperations.h"
#include "CaseWorkload.h"
#include "Measure.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

/// One run of an operation, which returns its milliseconds. The input is made once, when the operation is chosen.
using Run = std::function<double()>;

struct Operation {
  char const* name;
  std::function<Run(CaseWorkload const&, PhysicsData const*)> prepare;
};

Run validation(PhysicsData const* rules, ModelState const& model, void (RepeatedValidation::*validate)()) {
  auto const validation = std::make_shared<RepeatedValidation>(rules, model);
  validation->validateChanged();
  return [=] { return timed([&] { (*validation.*validate)(); }); };
}

template <auto Edit, Updates How>
Run editing(CaseWorkload const& workload, PhysicsData const* rules) {
  auto const editing = std::make_shared<RepeatedEditing>(rules, workload, workload.valid(), How);
  return [=] { return timed([&] { (*editing.*Edit)(); }); };
}

template <Updates How>
Run starting(CaseWorkload const& workload, PhysicsData const* rules) {
  return [=, &workload] { return RepeatedEditing(rules, workload, workload.valid(), How).startTime(); };
}

std::vector<Operation> operations() {
  return {
      {"validate",
       [](CaseWorkload const& workload, PhysicsData const* rules) {
         return validation(rules, workload.valid(), &RepeatedValidation::validateChanged);
       }},
      {"validate faulty",
       [](CaseWorkload const& workload, PhysicsData const* rules) {
         return validation(rules, workload.faulty(), &RepeatedValidation::validateChanged);
       }},
      {"validate unchanged",
       [](CaseWorkload const& workload, PhysicsData const* rules) {
         return validation(rules, workload.valid(), &RepeatedValidation::validateUnchanged);
       }},
      // The least that a validator does to find out whether a model equals its copy of the last one.
      {"compare",
       [](CaseWorkload const& workload, PhysicsData const*) -> Run {
         return [one = inOrder(workload.valid()), other = workload.valid()] {
           bool same = false;
           double const time = timed([&] { same = one == other; });
           if (!same) throw std::logic_error("a model differs from its copy");
           return time;
         };
       }},
      {"edit local", editing<&RepeatedEditing::editOneBoundary, Updates::Affected>},
      {"edit local, full walk", editing<&RepeatedEditing::editOneBoundary, Updates::Full>},
      {"try local", editing<&RepeatedEditing::tryOneBoundary, Updates::Affected>},
      {"edit global", editing<&RepeatedEditing::editWholeCase, Updates::Affected>},
      {"edit global, full walk", editing<&RepeatedEditing::editWholeCase, Updates::Full>},
      {"try global", editing<&RepeatedEditing::tryWholeCase, Updates::Affected>},
      {"start", starting<Updates::Affected>},
      {"start, full walk", starting<Updates::Full>},
      // With the base model, as a host has to fill it.
      {"begin editing",
       [](CaseWorkload const& workload, PhysicsData const* rules) -> Run {
         return [=, &workload] {
           std::optional<RepeatedEditing> editing;
           return timed([&] { editing.emplace(rules, workload, workload.valid()); });
         };
       }},
      {"read text",
       [](CaseWorkload const& workload, PhysicsData const*) -> Run {
         return [text = CaseWorkload::modelText(workload.valid())] {
           std::optional<TDFChangeFile> file;
           return timed([&] { file.emplace(std::vector<std::string>(), std::vector{text}, TDFChangeFile::Strict); });
         };
       }},
      {"read text as state",
       [](CaseWorkload const& workload, PhysicsData const*) -> Run {
         return [text = CaseWorkload::modelText(workload.valid())] {
           ModelState state;
           return timed([&] { state = TDFChangeFile({}, {text}, TDFChangeFile::Strict).toModelState(); });
         };
       }},
      {"load rules",
       [](CaseWorkload const&, PhysicsData const*) -> Run {
         return [] {
           std::unique_ptr<PhysicsData> rules;
           return timed([&] { rules = loadCaseRules(); });
         };
       }},
  };
}

void print(std::string const& what, double value) {
  std::cout << what << '\t' << value << std::endl;
}

/// Whether many edits in a row leave speed and memory unchanged. The first edits of every inlet come before, so that
/// all that is kept once is there.
void printManyEdits(CaseWorkload const& workload, PhysicsData const* rules) {
  constexpr std::size_t edits = 10'000;
  RepeatedEditing editing(rules, workload, workload.valid());
  auto const thousand = [&] {
    return timed([&] {
             for (std::size_t i = 0; i < 1000; ++i) editing.editOneBoundary();
           }) /
           1000;
  };
  for (std::size_t domain = 0; domain < workload.domains(); ++domain) {
    editing.editOneBoundary();
    editing.editOneBoundary();
  }
  double const atFirst = thousand();
  double const bytes = heapBytes();
  double atLast = 0;
  for (std::size_t i = 0; i < edits / 1000; ++i) atLast = thousand();
  print("many edits, at first", atFirst);
  print("many edits, at last", atLast);
  print("many edits, more bytes", heapBytes() - bytes);
}

int run(std::vector<std::string> const& arguments) {
  if (arguments.size() == 1 && arguments[0] == "list") {
    for (Operation const& operation : operations()) std::cout << operation.name << '\n';
    return 0;
  }
  if (arguments.size() == 2 && arguments[0] == "rules") {
    print("load rules of the file", medianOf(
                                        [&] {
                                          std::unique_ptr<PhysicsData> rules;
                                          return timed([&] { rules = rules::loadRules({arguments[1]}); });
                                        },
                                        1500));
    return 0;
  }
  if (arguments.empty() || arguments.size() > 3) {
    std::cerr << "usage: CaseDriver DOMAINS [OPERATION [TIMES]] | rules FILE | list\n";
    return 2;
  }

  CaseWorkload const workload(countIn(arguments[0]));
  auto const rules = loadCaseRules();
  if (arguments.size() == 1) checkCounts(workload, rules.get());
  bool known = arguments.size() == 1;
  for (Operation const& operation : operations()) {
    if (arguments.size() == 1) {
      print(operation.name, medianOf(operation.prepare(workload, rules.get()), 400));
    } else if (arguments[1] == operation.name) {
      known = true;
      Run const once = operation.prepare(workload, rules.get());
      std::vector<double> times(arguments.size() == 3 ? countIn(arguments[2]) : 20);
      for (double& time : times) time = once();
      print(operation.name, median(times));
    }
  }
  if (!known) throw std::invalid_argument("no operation '" + arguments[1] + "'; see CaseDriver list");
  if (arguments.size() == 1) {
    print("parameters", static_cast<double>(workload.parameters()));
    print("bytes a parameter", RepeatedEditing(rules.get(), workload, workload.valid()).bytesPerParameter());
    printManyEdits(workload, rules.get());
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + 1, argv + argc});
  } catch (std::exception const& error) {
    std::cerr << "CaseDriver: " << error.what() << '\n';
    return 2;
  }
}
