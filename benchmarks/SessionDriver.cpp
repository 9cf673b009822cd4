// Times a session on the flat workload: one object with 13,000 options, or a chain of another size.
//
//     SessionDriver [PARAMETERS]     100,000 parameters if no number is given
//
// Prints `operation <tab> milliseconds of processor time`, one a line, and the ratios that sessions promise: a trial
// costs at most three times the edit, and undo at most as much as the edit. Each is a median. An edit switches an
// option off, or on again, on which ten others depend. The program ends with an error when an edit does not change
// exactly these.
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <tarn/ProvisionalTDF.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

#include "Measure.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

constexpr std::size_t chain = 10;

std::string nameOf(std::size_t parameter) {
  return "Option " + std::to_string(parameter);
}

/// Options in chains of eleven: each but the first is available while the one before it is true.
std::string rulesOf(std::size_t parameters) {
  std::string text = "Rule Database: 1\nPertinent Roots: [System]\nObjects:\n  /System:\n    Parameters:\n";
  for (std::size_t i = 0; i < parameters; ++i) {
    text += "      " + nameOf(i) +
            ":\n        Parameter Type: Logical\n        Required: Yes\n        Default Value: \"true\"\n";
    if (i % (chain + 1) != 0) text += "        Available: ${" + nameOf(i - 1) + "} == true\n";
  }
  return text;
}

void print(std::string const& what, double value) {
  std::cout << what << '\t' << value << std::endl;
}

void require(bool holds, std::string const& what) {
  if (!holds) throw std::runtime_error("session: " + what + "; times of it would mean nothing");
}

Edit switched(std::size_t number, std::size_t parameters) {
  std::size_t const chains = parameters / (chain + 1);
  std::size_t const option = number / 2 * 7919 % chains * (chain + 1);
  return Edit::setParam("/System", nameOf(option), number % 2 == 0 ? "false" : "true");
}

void run(std::size_t parameters) {
  auto const rules = rules::parseRules(rulesOf(parameters));
  session::Session::Opened opened;
  print("open", timed([&] { opened = session::Session::open(*rules, ModelState()); }));
  session::Session& session = *opened.session;
  constexpr double budget = 3000;

  std::size_t number = 0;
  auto const checked = [](session::EditResult const& result) {
    require(result.applied() && result.effect.values.size() == chain + 1, "an edit does not change what depends on it");
  };
  double const edit =
      medianOf([&] { return timed([&] { checked(session.edit(switched(number++, parameters))); }); }, budget);
  double const tried =
      medianOf([&] { return timed([&] { checked(session.tryEdit(switched(number, parameters))); }); }, budget);
  double const undo = medianOf(
      [&] {
        double const time = timed([&] { checked(*session.undo()); });
        checked(*session.redo());
        return time;
      },
      budget);
  double const look = medianOf(
      [&] {
        std::size_t const parameter = number++ * 7919 % parameters;
        return timed([&] { require(session.lookParam("/System", nameOf(parameter)).has_value(), "no record"); });
      },
      budget);
  double const below = medianOf(
      [&] {
        Edit const next = switched(number++, parameters);
        auto& state =
            const_cast<ProvisionalTDF&>(session.provisional());  // NOLINT(cppcoreguidelines-pro-type-const-cast)
        ProvisionalTDF::Mark const mark = state.mark();
        double const time = timed([&] { (void)state.apply(next); });
        state.rollback(mark);
        return time;
      },
      budget);
  print("edit", edit);
  print("try", tried);
  print("undo", undo);
  print("look", look);
  print("edit of the state below", below);
  print("try / edit", tried / edit);
  print("undo / edit", undo / edit);
  print("edit / edit of the state below", edit / below);
}

}  // namespace

int main(int argc, char** argv) try {
  run(argc > 1 ? countIn(argv[1]) : 100'000);
  return 0;
} catch (std::exception const& error) {
  std::cerr << "SessionDriver: " << error.what() << '\n';
  return 2;
}
