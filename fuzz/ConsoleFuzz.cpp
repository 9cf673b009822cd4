// Any bytes as input of a user at the console. Every line is executed or refused, no exception ends the loop, the state
// is intact afterwards, and the same lines give the same text again. The output is discarded, and commands that take a
// file find only those of a temporary folder.

#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvTDFDriver.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/StringUtilities.h>
#include <tarn/rules/RuleLoader.h>

#include "fuzz/support/Laws.h"
#include "support/EditLaws.h"
#include "support/Redirected.h"
#include "support/TemporaryFolder.h"

namespace {

using tarn::fuzz::require;
using tarn::test::Redirected;

constexpr char const* rules = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types:
  Speed: {Units: [m/s, km/h]}
Objects:
  /Case:
    Parameters:
      Regime:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Laminar, Turbulent]
        Default Value: Turbulent
    Children:
      Domain: {Required: yes}
  /Case/Domain:
    Parameters:
      Motion:
        Required: yes
        Context Rule: yes
        Parameter Type: String
        Ordered Allowed String List: [Still, Turning]
        Default Value: Still
      Speed:
        Context: Turning
        Required: yes
        Parameter Type: Real
        Quantity Type: Speed
        Default Value: 1 [m/s]
        Lower Bound: 0 [m/s]
      Title:
        Parameter Type: String
      Fluids:
        Parameter Type: String List
        Ordered Allowed String List: [Water, Air, Oil]
        Subset Value List Source: if(${Motion} == 'Still', ('Water',), ('Water', 'Air'))
        Default Value: Water
      Material:
        Required: yes
        Parameter Type: String
        Value List Source: if(exists({Heat}), ('Steel', 'Iron'), ('Steel',))
        Value Override Check List:
          - {When: "${Title} == 'Iron'", Value: Iron}
    Children:
      Heat:
        Singleton: yes
        Coupled: yes
      Wall:
        Required: yes
        Default Names: [hub]
      Port:
        Coupled: yes
        Allowed Names: [in, out]
      Probe: {}
  /Case/Domain/Heat:
    Parameters:
      Model: {Required: yes, Parameter Type: String, Default Value: Thermal}
  /Case/Domain/Wall:
    Parameters:
      Kind:
        Required: yes
        Parameter Type: String
        Ordered Allowed String List: [Smooth, Rough]
      Height:
        Available: ${Kind} == 'Rough'
        Required: yes
        Parameter Type: Real
  /Case/Domain/Port:
    Parameters:
      Flow: {Required: yes, Parameter Type: Real}
  /Case/Domain/Probe:
    Parameters:
      Place: {Parameter Type: Real List}
Global Checks:
  walls:
    Check: count({/Case/Domain:*/Wall:*}) < 4
    Message: "= 'Too many walls: ' + join(names({/Case/Domain:*/Wall:*}), ', ')"
)yaml";

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> models = {{
    {"turning", "/Case/Regime=Laminar\n/Case/Domain:d/Motion=Turning\n/Case/Domain:d/Wall:tip/Kind=Rough\n"},
    {"probed",
     "Case:\n  Domain: d\n    Probe: p\n      Place = 1,2,3\n    END # Probe:p\n  END # Domain:d\nEND # Case:\n"},
    {"malformed", "/Case/Domain:d/Title=x\n/Case//Domain=\nDomain: d\n  Title\nEND # Wall:\n/Case/Regime=Odd\n"},
}};

/// The model files that the commands find. It goes with the program.
class ModelFolder {
 public:
  ModelFolder() {
    for (auto const& [file, text] : models) std::ofstream(folder_.path() / file) << text;
  }
  /// Where a command looks for a file of that name. Without separators no name leads out of the folder.
  [[nodiscard]] std::string operator[](std::string name) const {
    std::erase(name, '/');
    return (folder_.path() / name).string();
  }

 private:
  tarn::test::TemporaryFolder folder_{"console-fuzz"};
};

/// The input, with all file names moved into the folder.
std::string confined(std::string_view typed, ModelFolder const& folder) {
  std::string lines;
  for (std::string const& line : tarn::fuzz::linesOf(typed)) {
    std::string const text = tarn::StringUtilities::removeWhitespace(line);
    std::size_t blank = 0;
    while (blank < text.size() && !tarn::StringUtilities::isSpace(text[blank])) ++blank;
    std::string const command = text.substr(0, blank);
    bool const takesFile = command == "l" || command == "lb" || command == "vf";
    std::string const file = tarn::StringUtilities::removeWhitespace(text.substr(blank));
    lines += takesFile && !file.empty() ? command + ' ' + folder[file] : line;
    lines += '\n';
  }
  return lines;
}

/// All that is printed for the lines. Broken laws of the state are put into `broken`.
std::string dialogue(tarn::PhysicsData const& data, std::string const& lines, bool strict, std::string& broken) {
  std::istringstream input(lines);
  std::ostringstream output;
  std::ostringstream complaints;
  Redirected const in(std::cin, input.rdbuf());
  Redirected const out(std::cout, output.rdbuf());
  Redirected const err(std::cerr, complaints.rdbuf());

  tarn::DynamicTDF base(false);
  base.setParameter("/Case", "Regime", "Turbulent");
  base.setParameter("/Case/Domain:d", "Title", "Pump");
  tarn::ProvisionalTDF state(&data, "/Case/Domain:d");
  {
    tarn::ProvTDFLogger printer(&state, "stdout");
    state.setLogger(&printer);
    state.initialise(&base, {});
    tarn::ProvTDFDriver driver(strict, false, "/Case", &data, &printer, &state);
    driver.waitInput();
    state.setLogger(nullptr);
    broken = tarn::test::laws::brokenByState(tarn::test::StateSnapshot(state), state);
  }
  return output.str() + complaints.str();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  static ModelFolder const folder;
  static auto const database = tarn::rules::parseRules(rules);
  std::string const typed = tarn::fuzz::textOf(data, size);
  std::string const lines = confined(typed, folder);
  bool const strict = size % 2 == 0;

  std::string broken;
  std::string const first = dialogue(*database, lines, strict, broken);
  require(broken.empty(), broken, typed);
  require(dialogue(*database, lines, strict, broken) == first, "the same lines give the same text", typed);
  require(first.find("# END PROVISIONAL TDF LOGGING") != std::string::npos, "the printer ends what it began", typed);
  return 0;
}
