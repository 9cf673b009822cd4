// Runs the questions and edits of a session, so that the processor's instructions can be counted. `tools/instructions
// --promises` runs this program and compares the counts with each other: the headers promise that a trial costs at most
// three times the edit, that undo costs at most as much as the edit, and that none of these, nor a look nor a proof,
// depends on the number of parameters.
#include <valgrind/callgrind.h>

#include <exception>
#include <functional>
#include <iostream>

#include "SessionWorkload.h"

namespace {

using tarn::benchmarks::SessionWorkload;

/// The instructions of `operation` become a dump of callgrind that bears the name. Those of `before` do not count.
void count(
    char const* name, std::function<void()> const& operation, std::function<void()> const& before = [] {}) {
  for (int warmUp = 0; warmUp < 2; ++warmUp) {
    before();
    operation();
  }
  before();
  CALLGRIND_START_INSTRUMENTATION;
  operation();
  CALLGRIND_STOP_INSTRUMENTATION;
  CALLGRIND_DUMP_STATS_AT(name);
}

void countAll() {
  SessionWorkload small(2'000);
  count("edit", [&] { small.edit(); });
  count("try an edit", [&] { small.tryEdit(); });
  count(
      "undo", [&] { small.undo(); }, [&] { small.edit(); });
  count("look at a parameter", [&] { small.look(); });
  count("why a parameter has its value", [&] { small.why(); });

  SessionWorkload large(20'000);
  count("edit, ten times the parameters", [&] { large.edit(); });
  count("try an edit, ten times the parameters", [&] { large.tryEdit(); });
  count(
      "undo, ten times the parameters", [&] { large.undo(); }, [&] { large.edit(); });
  count("look at a parameter, ten times the parameters", [&] { large.look(); });
  count("why a parameter has its value, ten times the parameters", [&] { large.why(); });
}

}  // namespace

int main() try {
  countAll();
  return 0;
} catch (std::exception const& error) {
  std::cerr << "SessionInstructions: " << error.what() << '\n';
  return 2;
}
