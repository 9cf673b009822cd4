// Times the questions and edits of a session.
//
//     SessionDriver [PARAMETERS]     100,000 parameters if no number is given
//
// Prints `operation <tab> milliseconds of processor time`, one a line, and the ratios that sessions promise: a trial
// costs at most three times the edit, and undo at most as much as the edit. Each is a median. `SessionWorkload.h` says
// what an edit is.
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "Measure.h"
#include "SessionWorkload.h"

namespace {

using namespace tarn::benchmarks;

void print(std::string const& what, double value) {
  std::cout << what << '\t' << value << std::endl;
}

void run(std::size_t parameters) {
  std::unique_ptr<SessionWorkload> work;
  print("open, and a state without a session", timed([&] { work = std::make_unique<SessionWorkload>(parameters); }));
  constexpr double budget = 500;
  auto const measured = [&](auto const& operation) { return medianOf([&] { return timed(operation); }, budget); };

  double const edit = measured([&] { work->edit(); });
  double const tried = measured([&] { work->tryEdit(); });
  double const undo = medianOf(
      [&] {
        double const time = timed([&] { work->undo(); });
        work->redo();
        return time;
      },
      budget);
  double const below = medianOf(
      [&] {
        double time = 0;
        work->editBelow([&](auto const& onlyEdit) { time = timed(onlyEdit); });
        return time;
      },
      budget);
  print("edit", edit);
  print("try", tried);
  print("undo", undo);
  print("edit of a state without a session", below);
  print("look", measured([&] { work->look(); }));
  print("why", measured([&] { work->why(); }));
  for (auto const& [rule, name] : SessionWorkload::rulesOfAllCells()) {
    std::string const about = std::string(" at a rule about ") + std::to_string(work->cells()) + " objects: " + name;
    print("look" + about, measured([&, rule = rule] { work->lookOfAllCells(rule); }));
    print("why" + about, measured([&, rule = rule] { work->whyOfAllCells(rule); }));
  }
  print("try / edit", tried / edit);
  print("undo / edit", undo / edit);
  print("try / edit of a state without a session", tried / below);
  print("edit / edit of a state without a session", edit / below);
}

}  // namespace

int main(int argc, char** argv) try {
  run(argc > 1 ? countIn(argv[1]) : 100'000);
  return 0;
} catch (std::exception const& error) {
  std::cerr << "SessionDriver: " << error.what() << '\n';
  return 2;
}
