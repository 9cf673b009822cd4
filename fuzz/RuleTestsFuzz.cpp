// Any bytes as a file of tests of rules: it is read, or refused with diagnostics, and what was read is run with the
// rules of a pump. Each failure has a place in the file and says what was expected and what is. A second run gives the
// same. Models in files are left out, because a name could be that of a device.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <tarn/rules/RuleLoader.h>
#include <tarn/workbench/RuleTests.h>

#include "fuzz/support/Laws.h"

namespace {

constexpr char const* pumpRules = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types:
  Angular Velocity: {Units: [rad s^-1]}
Objects:
  /Case:
    Parameters:
      Title: {Parameter Type: String}
    Children:
      Domain: {Coupled: yes, Maximum Count: 3}
      Meter: {Available: "count({/Case/Domain:*}) > 1", Allowed Names: "= names({/Case/Domain:*})"
}
  /Case/Domain:
    Parameters:
      Motion:
        Parameter Type: String
        Required: yes
        Ordered Allowed String List: [Stationary, Rotating]
        Default Value: Stationary
      Angular Velocity:
        Available: ${Motion} == 'Rotating'
        Required: yes
        Parameter Type: Real
        Quantity Type: Angular Velocity
        Default Value: 0 [rad s^-1]
  /Case/Meter: {}
)yaml";

std::string textOf(tarn::workbench::TestResult const& result) {
  std::string text = std::to_string(result.expectations);
  for (auto const& failure : result.failures) {
    text += '\n' + failure.place.text() + '\n' + failure.subject + '\n' + failure.expected + '\n' + failure.actual +
            '\n' + failure.because;
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  using tarn::fuzz::require;
  static std::unique_ptr<tarn::PhysicsData> const rules = tarn::rules::parseRules(pumpRules);
  std::string const text = tarn::fuzz::textOf(data, size);
  if (text.find("File") != std::string::npos) return 0;
  tarn::workbench::TestLimits limits;
  limits.yamlNodes = 2'000;
  limits.errors = 50;
  auto const tests = tarn::workbench::RuleTests::parse(text, "fuzz", {}, limits);
  for (auto const& diagnostic : tests.diagnostics()) {
    require(!diagnostic.message.empty() && !format(diagnostic).empty(), "a diagnostic has a message", text);
  }
  for (std::size_t i = 0; i < tests.size(); ++i) {
    require(tests.place(i).line() >= 1 && !tests.name(i).empty(), "a test has a name and a place", text);
    auto const result = tests.run(i, *rules);
    for (auto const& failure : result.failures) {
      require(failure.place.isKnown(), "a failure has a place", text);
      require(!failure.expected.empty() && !failure.actual.empty(), "a failure says what was expected and what is",
              text);
      require(failure.expected != failure.actual, "a failure differs from what was expected", text);
    }
    require(textOf(result) == textOf(tests.run(i, *rules)), "a second run gives the same", text);
  }
  return 0;
}
