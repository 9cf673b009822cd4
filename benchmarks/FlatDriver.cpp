// Times this library on the flat workload: 13,000 options in one object, with rules in chains.
//
//     FlatDriver [EDITS]     1,000 edits if no number is given; a tenth of them is also made with full walks
//
// Prints `operation <tab> milliseconds of processor time`, one a line. An edit switches an option off or on again and
// reads every getter. The program ends with an error when an edit does not change exactly what the workload says. So it
// never prints the time of wrong work.
#include <algorithm>
#include <exception>
#include <iostream>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/rules/RuleLoader.h>

#include "CaseOperations.h"
#include "FlatWorkload.h"
#include "Measure.h"
#include "support/FullWalks.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

void print(std::string const& what, double value) {
  std::cout << what << '\t' << value << std::endl;
}

void require(bool holds, std::string const& what) {
  if (!holds) throw std::runtime_error("flat workload: " + what + "; times of it would mean nothing");
}

/// Switches an option off, or on again, and returns the milliseconds.
double edit(ProvisionalTDF& state, FlatWorkload const& workload, std::size_t option, bool on) {
  EditCounts counts;
  std::string const name = FlatWorkload::name(option);
  double const time = timed([&] {
    state.activeSetParam(FlatWorkload::object(), name, on ? "true" : "false");
    counts = readAllGetters(state, FlatWorkload::object(), name);
  });
  // The option itself is not counted.
  EditCounts expected;
  (on ? expected.added : expected.removed) = workload.changesOf(option) - 1;
  require(counts == expected, name + " does not change what depends on it");
  return time;
}

/// The same operation with full walks has the same name with this at its end.
constexpr char const* suffixes[] = {"", ", full walk"};

/// Prints the medians of starts in turns.
void printStarts(PhysicsData const* rules, DynamicTDF const& base) {
  constexpr std::size_t starts = 7;
  std::vector<double> times[2];
  for (std::size_t i = 0; i < 2 * starts; ++i) {
    ProvisionalTDF state(rules, FlatWorkload::object());
    test::forceFullWalks(state, i % 2 == 1);
    times[i % 2].push_back(timed([&] { state.initialise(&base, {}); }));
  }
  for (std::size_t i = 0; i < 2; ++i) print(std::string("start") + suffixes[i], median(std::move(times[i])));
}

void run(std::size_t edits) {
  FlatWorkload const workload;
  std::unique_ptr<PhysicsData> database;
  print("load rules", timed([&] { database = rules::parseRules(workload.rules()); }));

  ModelState model = workload.everythingOn();
  BasicPhysicsErrorLogger logger;
  PhysicsValidator2 validator(database.get());
  validator.setLogger(&logger);
  std::string& last = model.at(FlatWorkload::object()).at(FlatWorkload::name(FlatWorkload::parameterCount - 1));
  print("validate",
        medianOf(
            [&] {
              last = last == "true" ? "false" : "true";
              return timed([&] { validator.validate(PhysicsValidator2::ValAll, model, {FlatWorkload::object()}); });
            },
            400));
  require(logger.getDependencyErrors().empty(), "something is found in a sound model");

  last = "true";
  DynamicTDF base(false);
  base.initialise(model.begin(), model.end());
  printStarts(database.get(), base);
  for (std::string const suffix : suffixes) {
    double const before = heapBytes();
    ProvisionalTDF state(database.get(), FlatWorkload::object());
    test::forceFullWalks(state, !suffix.empty());
    state.initialise(&base, {});
    print("bytes a parameter" + suffix, (heapBytes() - before) / static_cast<double>(FlatWorkload::parameterCount));

    std::vector<double> times;
    std::size_t const count = suffix.empty() ? edits : std::max<std::size_t>(edits / 10, 2);
    for (std::size_t i = 0; i < count; ++i) {
      times.push_back(edit(state, workload, FlatWorkload::parameterOfEdit(i / 2), i % 2 == 1));
    }
    print("edit, mean" + suffix, std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(count));
    print("edit, median" + suffix, median(std::move(times)));
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    if (argc > 2) throw std::invalid_argument("usage: FlatDriver [EDITS]");
    run(argc == 2 ? countIn(argv[1]) : 1000);
    return 0;
  } catch (std::exception const& error) {
    std::cerr << "FlatDriver: " << error.what() << '\n';
    return 2;
  }
}
