// Gives the libraries input that was made to be a burden, in three sizes. The counts of the processor's instructions
// show whether the work grows in proportion to the input. `tools/instructions --growth` runs this program and judges
// the counts.
//
//     GrowthInstructions               each kind of input, counted when it runs under callgrind
//     GrowthInstructions --quadratic   only one kind, whose work grows with the square of its size
//     GrowthInstructions KIND          only that one, for a profiler
//
// For each kind three sizes are counted: almost nothing, the size in the table, and twice that size. The sizes are as
// small as possible while a square still shows.
#include <valgrind/callgrind.h>

#include <cstddef>
#include <exception>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/Edit.h>
#include <tarn/ModelText.h>
#include <tarn/ProvTDFDriver.h>
#include <tarn/ProvTDFLogger.h>
#include <tarn/ProvTDFPrinter.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Review.h>

#include "reports/JsonReport.h"
#include "reports/SarifReport.h"
#include "reports/TextReport.h"
#include "support/Redirected.h"

namespace {

using namespace tarn;

using Work = std::function<void()>;

struct Kind {
  char const* name;
  std::size_t size;
  /// Makes the work on an input of a size. Making the input is not counted.
  std::function<Work(std::size_t)> prepare;
};

void require(bool holds, char const* what) {
  if (!holds) throw std::logic_error(what);
}

// ------------------------------------------------------------------------------------------------------------- texts

std::string number(std::size_t i) {
  std::string const digits = std::to_string(i);
  return std::string(7 - digits.size(), '0') + digits;
}

/// `piece(i)` for each number below `count`, one after the other.
template <typename Piece>
std::string repeated(std::size_t count, Piece const& piece) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += piece(i);
  return text;
}

/// "a, b, c" of as many numbered names.
std::string listed(std::size_t count, std::string const& name) {
  return repeated(count, [&](std::size_t i) { return (i == 0 ? "" : ", ") + name + number(i); });
}

std::string const header = "Rule Database: 1\nPertinent Roots: [Case]\n";

/// Rules of one object, with `parameters` as the lines of its parameters.
std::string caseWith(std::string const& parameters) {
  return header + "Objects:\n  /Case:\n    Parameters:\n      Title: {Parameter Type: String}\n" + parameters;
}

std::string parameter(std::string const& name, std::string const& attributes) {
  return "      " + name + ": {" + attributes + "}\n";
}

/// Rules of as many object types below the case, each with one parameter "Name".
std::string objectTypes(std::size_t count) {
  return repeated(count, [](std::size_t i) {
    return "  /Case/T" + number(i) + ":\n    Parameters:\n" + parameter("Name", "Parameter Type: String");
  });
}

/// A domain and its boundaries, as little of them as judging takes.
std::string const flowRules = header + R"yaml(
Objects:
  /Case:
    Parameters:
      Flow Regime: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Laminar, Turbulent], Default Value: Laminar}
      Regions: {Parameter Type: String List}
    Children:
      Domain: {}
  /Case/Domain:
    Parameters:
      Motion: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Resting, Rotating], Default Value: Resting}
      Angular Velocity: {Available: "${Motion} == 'Rotating'", Required: yes, Parameter Type: Real, Lower Bound: '0 [rad/s]'}
      Partner: {Parameter Type: String, Value List Source: "names({/Case/Domain:*})"}
    Children:
      Boundary: {}
      Turbulence: {Available: "${^Case/Flow Regime} == 'Turbulent'", Required: yes, Singleton: yes, Coupled: yes}
  /Case/Domain/Boundary:
    Parameters:
      Location: {Required: yes, Parameter Type: String}
  /Case/Domain/Turbulence:
    Parameters:
      Model: {Required: yes, Parameter Type: String, Ordered Allowed String List: [SST, LES], Default Value: SST}
Global Checks:
  somewhere:
    Check: not any({/Case/**/Boundary:*}, ${Location} == 'nowhere')
    Message: A boundary is nowhere.
)yaml";

// -------------------------------------------------------------------------------------------------------------- works

/// Loading rules that are sound.
Work load(std::string text) {
  return [text = std::move(text)] { require(rules::parseRules(text) != nullptr, "no rules"); };
}

/// Lints rules, sound or not. Generated rules have names that nothing uses, and that is no matter here.
Work lint(std::string text, bool expectsNothing = false) {
  return [text = std::move(text), expectsNothing] {
    rules::LintOptions options;
    options.severities["unused-name"] = std::nullopt;
    rules::LintResult const result = rules::lintText(text, "<rules>", options);
    if (result.diagnostics.empty() != expectsNothing) {
      throw std::logic_error("rules are not as sound as they should be: " + rules::format(result.diagnostics));
    }
  };
}

/// Reading a model and all that `zev validate` finds and writes of it.
Work judge(std::string const& ruleText, std::string model) {
  std::shared_ptr<PhysicsData const> const rules = rules::parseRules(ruleText);
  return [rules, model = std::move(model)] {
    ModelText const text("model.tdf", model);
    require(text.faults().empty(), "a line is malformed");
    session::Findings const findings = session::Review(*rules).judge(text);
    std::ostringstream out;
    tool::writeTextReport(out, "model.tdf", findings, tool::Places::Shown);
    tool::writeJsonReport(out, "model.tdf", findings);
    tool::SarifLog log(out, tool::sarifRules());
    tool::addToLog(log, "model.tdf", findings);
    log.finish(0);
  };
}

/// Reading a model, and an edited object that begins with it and is printed.
Work edit(std::string const& ruleText, std::string model) {
  std::shared_ptr<PhysicsData const> const rules = rules::parseRules(ruleText);
  return [rules, model = std::move(model)] {
    ModelState const given = TDFChangeFile({}, {model}, TDFChangeFile::Strict).toModelState();
    DynamicTDF base(false);
    base.initialise(given.begin(), given.end(), false);
    ProvisionalTDF state(rules.get(), nullptr, "/Case");
    state.initialise(&base, {});
    std::ostringstream out;
    ProvTDFPrinter const printer(&state, &out);
    printer.printState();
    printer.printUpdates();
    require(!out.str().empty(), "nothing is printed");
  };
}

/// Edits the title of a case. Making the state and its first walks are not counted.
Work editAgain(std::string const& ruleText, std::string const& model) {
  struct Edited {
    std::shared_ptr<PhysicsData const> rules;
    DynamicTDF base{false};
    std::unique_ptr<ProvisionalTDF> state;
    bool isOdd = false;
  };
  auto const edited = std::make_shared<Edited>();
  edited->rules = rules::parseRules(ruleText);
  ModelState const given = TDFChangeFile({}, {model}, TDFChangeFile::Strict).toModelState();
  edited->base.initialise(given.begin(), given.end(), false);
  edited->state = std::make_unique<ProvisionalTDF>(edited->rules.get(), nullptr, "/Case");
  edited->state->initialise(&edited->base, {});
  edited->state->baseUpdate(&edited->base);  // rules that look ahead settle
  return [edited] {
    edited->isOdd = !edited->isOdd;
    auto const refusal = edited->state->apply(Edit::setParam("/Case", "Title", edited->isOdd ? "odd" : "even"));
    require(!refusal && edited->state->getModParams().size() == 1, "the edit changes more or less than the title");
  };
}

/// Reads model text with faults, which are reported one by one.
Work readLeniently(std::string model) {
  return [model = std::move(model)] {
    test::Captured const errors(std::cerr);
    (void)TDFChangeFile({}, {model}, TDFChangeFile::Lenient).toModelState();
    require(!errors.text().empty(), "no fault is reported");
  };
}

/// Runs the console on these lines.
Work command(std::string lines) {
  std::shared_ptr<PhysicsData const> const rules = rules::parseRules(flowRules);
  return [rules, lines = std::move(lines)] {
    DynamicTDF const base(false);
    ProvisionalTDF state(rules.get(), nullptr, "/Case");
    state.initialise(&base, {});
    test::Dialogue const dialogue(lines);
    ProvTDFLogger printer(&state, "stdout");
    state.setLogger(&printer);
    ProvTDFDriver(true, true, "/Case", rules.get(), &printer, &state).waitInput();
    state.setLogger(nullptr);
  };
}

// -------------------------------------------------------------------------------------------------------------- kinds

std::vector<Kind> kindsOfRules() {
  auto const times = [](std::size_t n, std::string const& text) {
    return repeated(n, [&](std::size_t) { return text; });
  };
  return {
      {"YAML nested in flow form, refused", 4'000,
       [=](std::size_t n) { return lint(header + "Objects: " + std::string(n, '[') + '\n'); }},
      {"YAML nested in block form, refused", 4'000,
       [=](std::size_t n) { return lint(header + "Objects:\n  " + times(n, "- ") + "a\n"); }},
      {"YAML that is nothing but openings", 20'000,
       [=](std::size_t n) { return lint(header + times(n, "? ") + '\n'); }},
      {"aliases of a long list", 40,
       [=](std::size_t n) {
         return load(caseWith(
             parameter("Base", "Parameter Type: String, Ordered Allowed String List: &all [" + listed(50, "m") + "]") +
             repeated(n, [](std::size_t i) {
               return parameter("P" + number(i), "Parameter Type: String, Ordered Allowed String List: *all");
             })));
       }},
      {"aliases that multiply, refused", 30,
       [=](std::size_t n) {
         return lint(header + "x0: &x0 [a, b]\n" + repeated(n, [](std::size_t i) {
                       std::string const last = "*x" + std::to_string(i);
                       std::string const next = "x" + std::to_string(i + 1);
                       return next + ": &" + next + " [" + last + ", " + last + "]\n";
                     }));
       }},
      {"a long comment", 30'000, [=](std::size_t n) { return load(caseWith("# " + std::string(n, 'x') + '\n')); }},
      {"a long text in quotes", 3'000,
       [=](std::size_t n) {
         return load(caseWith(parameter("P", "Parameter Type: String, Description: \"" + times(n, "\\u00e4 ") + '"')));
       }},
      {"keys that are given again and again", 150,
       [=](std::size_t n) { return lint(caseWith(times(n, parameter("Speed", "Parameter Type: Real")))); }},
      {"keys that do not exist", 150,
       [=](std::size_t n) {
         return lint(
             caseWith(repeated(n, [](std::size_t i) { return parameter("P" + number(i), "Paramter Tipe: 1"); })));
       }},
      {"a long allowed list", 600,
       [=](std::size_t n) {
         return lint(caseWith(parameter("Material", "Parameter Type: String, Ordered Allowed String List: [" +
                                                        listed(n, "Steel ") + "], Default Value: Steel 0000000")),
                     true);
       }},
      {"an allowed list with a check for each value", 100,
       [=](std::size_t n) {
         return lint(
             caseWith("      Material:\n        Parameter Type: String\n        Ordered Allowed String List: [" +
                      listed(n, "Steel ") + "]\n        Allowed String List Checks:\n" +
                      repeated(n,
                               [](std::size_t i) {
                                 return "          Steel " + number(i) + ": ${Title} == '" + number(i) + "'\n";
                               })),
             true);
       }},
      {"many object types", 60,
       [=](std::size_t n) {
         std::string text = caseWith("    Children:\n");
         text += repeated(n, [](std::size_t i) { return "      T" + number(i) + ": {Coupled: yes}\n"; });
         return lint(text + objectTypes(n), true);
       }},
      {"object types far down", 20,
       [=](std::size_t n) {
         std::string const path = "/Case" + times(100, "/T");
         return lint(header + "Objects:\n" + repeated(n, [&](std::size_t i) {
                       return "  " + path + number(i) + ":\n    Description: far down\n";
                     }));
       }},
      {"a type of many parameters that read each other", 80,
       [=](std::size_t n) {
         return lint(caseWith(repeated(n,
                                       [](std::size_t i) {
                                         return parameter("P" + number(i),
                                                          "Parameter Type: String, Default Value: \"= ${" +
                                                              (i == 0 ? "Title" : "P" + number(i - 1)) + "}\"");
                                       })),
                     true);
       }},
      // So many that the search for the names that were meant is given up within the smaller one already.
      {"reads of parameters that do not exist", 750,
       [=](std::size_t n) {
         return lint(caseWith(repeated(n, [](std::size_t i) {
           return parameter("P" + number(i), "Parameter Type: Real, Default Value: \"= ${Slip " + number(i) + "}\"");
         })));
       }},
      {"calls of checks that do not exist", 750,
       [=](std::size_t n) {
         return lint(header + "Checks:\n" + repeated(n, [](std::size_t i) {
                       return "  c" + number(i) + ": check('slip " + number(i) + "')\n";
                     }));
       }},
      {"a long expression", 400,
       [=](std::size_t n) {
         return load(caseWith(parameter(
             "P", "Parameter Type: Real, Available: \"${Title} == 'x'" + times(n, " or ${Title} == 'y'") + '"')));
       }},
      {"a long list in an expression", 500,
       [=](std::size_t n) {
         return load(caseWith(
             parameter("P", "Parameter Type: Real, Available: \"${Title} in ('x'" + times(n, ", 'yyyy'") + ")\"")));
       }},
      {"an expression of nothing but signs", 8'000,
       [=](std::size_t n) {
         return lint(caseWith(parameter("P", "Parameter Type: Real, Available: \"1 " + std::string(n, '-') + '"')));
       }},
      {"expressions nested up to the limit", 48,
       [=](std::size_t n) {
         std::string const nested = std::string(n, '(') + "${Title} == 'x'" + std::string(n, ')');
         return load(caseWith(repeated(20, [&](std::size_t i) {
           return parameter("P" + number(i), "Parameter Type: Real, Available: \"" + nested + '"');
         })));
       }},
      {"expressions nested beyond the limit", 4'000,
       [=](std::size_t n) {
         return lint(caseWith(parameter("P", "Parameter Type: Real, Available: \"" + std::string(n, '(') + '"')));
       }},
      {"a path in a rule up to the limit", 490,
       [=](std::size_t n) {
         std::string const path = times(n, "../");
         return load(caseWith(repeated(20, [&](std::size_t i) {
           return parameter("P" + number(i), "Parameter Type: Real, Available: \"exists({" + path + "A})\"");
         })));
       }},
      {"chains of named checks up to the limit", 48,
       [=](std::size_t n) {
         return load(header + "Checks:\n" + repeated(3, [&](std::size_t chain) {
                       std::string const name = "c" + number(chain) + "x";
                       return "  " + name + "0: ${Title} == 'x'\n" + repeated(n, [&](std::size_t i) {
                                return "  " + name + std::to_string(i + 1) + ": check('" + name + std::to_string(i) +
                                       "')\n";
                              });
                     }));
       }},
      {"a circle of named checks, refused", 80,
       [=](std::size_t n) {
         return lint(header + "Checks:\n" + repeated(n, [&](std::size_t i) {
                       return "  c" + number(i) + ": check('c" + number((i + 1) % n) + "')\n";
                     }));
       }},
      {"named checks that each call many", 30,
       [=](std::size_t n) {
         // As many calls as there are characters: each of the callers calls all of the called.
         return load(header + "Checks:\n" +
                     repeated(20, [](std::size_t i) { return "  called" + number(i) + ": ${Title} == 'x'\n"; }) +
                     repeated(n, [](std::size_t i) {
                       return "  c" + number(i) + ": \"true" +
                              repeated(20, [](std::size_t j) { return " and check('called" + number(j) + "')"; }) +
                              "\"\n";
                     }));
       }},
      {"many global checks", 60,
       [=](std::size_t n) {
         return load(header + "Global Checks:\n" + repeated(n, [](std::size_t i) {
                       return "  g" + number(i) + ": {Check: \"exists({/Case})\", Message: There is no case.}\n";
                     }));
       }},
      {"many contexts of one parameter", 250,
       [=](std::size_t n) {
         return load(
             caseWith(parameter("Kind", "Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [" +
                                            listed(n, "k") + "]") +
                      parameter("Speed", "Context: [" + listed(n, "k") + "], Parameter Type: Real")));
       }},
      {"many parameters in many contexts", 100,
       [=](std::size_t n) {
         return lint(
             caseWith(parameter("Kind", "Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [" +
                                            listed(n, "k") + "]") +
                      repeated(n,
                               [](std::size_t i) {
                                 return parameter("P" + number(i), "Context: k" + number(i) + ", Parameter Type: Real");
                               })),
             true);
       }},
      {"many named checks over many object types", 60,
       [=](std::size_t n) {
         return lint(
             header + "Checks:\n" +
                 repeated(n, [](std::size_t i) { return "  c" + number(i) + ": ${Name} == '" + number(i) + "'\n"; }) +
                 "Objects:\n  /Case:\n    Children:\n" +
                 repeated(n, [](std::size_t i) { return "      T" + number(i) + ": {Coupled: yes}\n"; }) +
                 objectTypes(n),
             true);
       }},
      {"many paths through all objects over many object types", 60,
       [=](std::size_t n) {
         return lint(
             header + "Checks:\n" +
                 repeated(
                     n, [](std::size_t i) { return "  c" + number(i) + ": exists({/Case/**/T" + number(i) + "})\n"; }) +
                 "Objects:\n  /Case:\n    Children:\n" +
                 repeated(n,
                          [](std::size_t i) { return "      T" + number(i) + ": {Singleton: yes, Coupled: yes}\n"; }) +
                 objectTypes(n),
             true);
       }},
      {"many slips in one line of a rule file", 100,
       [=](std::size_t n) {
         return lint(header + "Objects: {/Case: {Parameters: {" +
                     repeated(n, [](std::size_t i) { return "P" + number(i) + ": {Slip: 1}, "; }) + "}}}\n");
       }},
      // make.
      {"many slips in one expression", 100,
       [=](std::size_t n) {
         return lint(caseWith(parameter("P", "Parameter Type: Real, Available: \"true" + repeated(n, [](std::size_t i) {
                                               return " and ${Slip " + number(i) + "} == 'x'";
                                             }) + '"')));
       }},
      {"many values by condition", 100,
       [=](std::size_t n) {
         return lint(caseWith("      Speed:\n        Parameter Type: Real\n        Value Override Check List:\n" +
                              repeated(n,
                                       [](std::size_t i) {
                                         return "          - {When: \"${Title} == '" + number(i) + "'\", Value: 1}\n";
                                       })),
                     true);
       }},
  };
}

std::vector<Kind> kindsOfModels() {
  auto const domains = [](std::size_t n, std::string const& prefix) {
    return "/Case/Flow Regime=Laminar\n" +
           repeated(n, [&](std::size_t i) { return "/Case/Domain:" + prefix + number(i) + "/Motion=Resting\n"; });
  };
  return {
      {"many objects in one parent", 80, [=](std::size_t n) { return judge(flowRules, domains(n, "d")); }},
      {"many objects, read as blocks", 80,
       [=](std::size_t n) {
         return judge(flowRules, "Case:\n  Flow Regime = Laminar\n" + repeated(n, [](std::size_t i) {
                                   return "  Domain: d" + number(i) + "\n    Motion = Resting\n  END # Domain:d" +
                                          number(i) + '\n';
                                 }) + "END # Case:\n");
       }},
      {"many objects, edited", 100, [=](std::size_t n) { return edit(flowRules, domains(n, "d")); }},
      {"names that begin alike for a long way", 50,
       [=](std::size_t n) { return judge(flowRules, domains(n, std::string(200, 'd'))); }},
      {"names that begin alike for a long way, edited", 50,
       [=](std::size_t n) { return edit(flowRules, domains(n, std::string(200, 'd'))); }},
      {"names that are the beginnings of others", 100,
       [=](std::size_t n) {
         // In groups, so that the text grows with the number of objects and not with its square.
         return judge(flowRules, "/Case/Flow Regime=Laminar\n" + repeated(n, [](std::size_t i) {
                                   return "/Case/Domain:" + number(i / 20) + std::string(i % 20, 'x') +
                                          "/Motion=Resting\n";
                                 }));
       }},
      {"many boundaries of one domain", 100,
       [=](std::size_t n) {
         return judge(flowRules, domains(1, "d") + repeated(n, [](std::size_t i) {
                                   return "/Case/Domain:d0000000/Boundary:b" + number(i) + "/Location=inlet\n";
                                 }));
       }},
      {"required objects that are missing", 50,
       [=](std::size_t n) { return judge(flowRules, "/Case/Flow Regime=Turbulent\n" + domains(n, "d").substr(26)); }},
      {"values that are not allowed", 60,
       [=](std::size_t n) {
         return judge(flowRules, "/Case/Flow Regime=Laminar\n" + repeated(n, [](std::size_t i) {
                                   return "/Case/Domain:d" + number(i) + "/Motion=Flying\n";
                                 }));
       }},
      {"objects that the rules do not know", 60,
       [=](std::size_t n) {
         return judge(flowRules, domains(1, "d") + repeated(n, [](std::size_t i) {
                                   return "/Case/Domian" + number(i) + ":d/Motion=Resting\n";
                                 }));
       }},
      {"parameters that the rules do not know", 750,  // as above, beyond where it is given up
       [=](std::size_t n) {
         return judge(
             caseWith(repeated(n, [](std::size_t i) { return parameter("P" + number(i), "Parameter Type: Real"); })),
             repeated(n, [](std::size_t i) { return "/Case/Slip " + number(i) + "=1\n"; }));
       }},
      {"a parameter given again and again", 2'000,
       [=](std::size_t n) {
         return judge(flowRules, domains(1, "d") + repeated(n, [](std::size_t) {
                                   return "/Case/Domain:d0000000/Motion=Rotating\n";
                                 }));
       }},
      {"an object opened again and again", 1'000,
       [=](std::size_t n) {
         return judge(flowRules, "Case:\nFlow Regime = Laminar\n" + repeated(n, [](std::size_t) {
                                   return "Domain: d\nMotion = Resting\nEND # Domain:d\n";
                                 }) + "END # Case:\n");
       }},
      // A path of a depth holds as many objects, and their paths together have its square of characters.
      {"objects far down", 20,
       [=](std::size_t n) {
         return judge(flowRules, repeated(n, [](std::size_t i) {
                        std::string path = "/Case/Domain:" + number(i);
                        for (int depth = 0; depth < 50; ++depth) path += "/Part";
                        return path + "/Motion=Resting\n";
                      }));
       }},
      {"many parameters far down", 500,
       [=](std::size_t n) {
         return judge(flowRules, "Case:\n" + repeated(300, [](std::size_t) { return "A: x\n"; }) +
                                     repeated(n, [](std::size_t i) { return "P" + number(i) + " = 1\n"; }) +
                                     repeated(300, [](std::size_t) { return "END # A:x\n"; }) + "END # Case:\n");
       }},
      {"a long value", 50'000,
       [=](std::size_t n) { return judge(flowRules, "/Case/Flow Regime=" + std::string(n, 'x') + '\n'); }},
      {"a long value, edited", 400'000,
       [=](std::size_t n) { return edit(flowRules, "/Case/Regions=" + std::string(n, 'x') + '\n'); }},
      {"a long list as a value", 60'000,
       [=](std::size_t n) {
         return judge(flowRules, "/Case/Flow Regime=Laminar\n/Case/Regions=" + listed(n, "r") + '\n');
       }},
      {"a long list held against a long allowed list", 500,
       [=](std::size_t n) {
         return judge(caseWith(parameter("Regions", "Parameter Type: String List, Ordered Allowed String List: [" +
                                                        listed(n, "r") + "]")),
                      "/Case/Regions=" + listed(n, "r") + ", " + listed(n, "s") + '\n');
       }},
      {"a long complete list held against the whole of it", 800,
       [=](std::size_t n) {
         return judge(caseWith(parameter("Regions",
                                         "Parameter Type: String List, Complete List Required: yes, Ordered "
                                         "Allowed String List: [" +
                                             listed(n, "r") + "]")),
                      "/Case/Regions=" + listed(n, "r") + '\n');
       }},
      {"a long list held against a long allowed list, edited", 1'000,
       [=](std::size_t n) {
         return edit(caseWith(parameter("Regions", "Parameter Type: String List, Ordered Allowed String List: [" +
                                                       listed(n, "r") + "]")),
                     "/Case/Regions=" + listed(n, "r") + ", " + listed(n, "s") + '\n');
       }},
      {"a long list that is named again and again", 60'000,
       [=](std::size_t n) {
         return judge(flowRules, "/Case/Regions=" + repeated(n, [](std::size_t) { return "same, "; }) + "same\n");
       }},
      {"a type of many parameters, all there", 200,
       [=](std::size_t n) {
         return judge(
             caseWith(repeated(n, [](std::size_t i) { return parameter("P" + number(i), "Parameter Type: Real"); })),
             repeated(n, [](std::size_t i) { return "/Case/P" + number(i) + "=1\n"; }));
       }},
      {"a type of many parameters, all missing", 100,
       [=](std::size_t n) {
         return judge(
             caseWith(repeated(
                 n, [](std::size_t i) { return parameter("P" + number(i), "Required: yes, Parameter Type: Real"); })),
             "/Case/Title=none\n");
       }},
      {"a type of many parameters, edited", 300,
       [=](std::size_t n) {
         return edit(caseWith(repeated(n,
                                       [](std::size_t i) {
                                         return parameter("P" + number(i),
                                                          "Required: yes, Parameter Type: Real, Default Value: 1");
                                       })),
                     "/Case/Title=none\n");
       }},
      {"a type of many optional parameters, edited", 400,
       [=](std::size_t n) {
         return edit(
             caseWith(repeated(n, [](std::size_t i) { return parameter("P" + number(i), "Parameter Type: Real"); })),
             "/Case/Title=none\n");
       }},
      {"calls of named checks that double from level to level", 2'000,
       [=](std::size_t n) {
         std::string text = header + "Checks:\n  c0: ${Title} == 'x'\n";
         std::size_t level = 0;
         for (std::size_t calls = 1; calls < n; calls *= 2, ++level) {
           std::string const last = "check('c" + std::to_string(level) + "')";
           text += "  c" + std::to_string(level + 1) + ": " + last + " or " + last + "\n";
         }
         return judge(text + "Objects:\n  /Case:\n    Parameters:\n      Title: {Parameter Type: String, Available: " +
                          "check('c" + std::to_string(level) + "')}\n",
                      "/Case/Title=y\n");
       }},
      {"lines that are faulty", 600,
       [=](std::size_t n) {
         return readLeniently(repeated(n, [](std::size_t i) { return "no line " + number(i) + '\n'; }));
       }},
      {"blocks that are never closed", 450,
       [=](std::size_t n) { return readLeniently(repeated(n, [](std::size_t) { return "A:\n"; })); }},
      {"blocks beyond the limit", 1'000,
       [=](std::size_t n) { return readLeniently(repeated(n + 1000, [](std::size_t) { return "A:\n"; })); }},
      {"ends of blocks that are not open", 200,
       [=](std::size_t n) {
         return readLeniently(repeated(n, [](std::size_t i) { return "A:\nEND # B" + number(i) + ":\n"; }));
       }},
      {"lines of the console", 60,
       [=](std::size_t n) {
         return command(repeated(n, [](std::size_t) { return "pp /Case/Flow Regime\nunknown\nsp\nh\n"; }));
       }},
      {"a long line of the console", 20'000,
       [=](std::size_t n) {
         return command("unknown " + std::string(n, ',') + "\nsp /Case/Flow Regime=" + std::string(n, 'x') + '\n');
       }},
  };
}

/// Edits of a case with many domains, by the kind of rule that every domain has.
std::vector<Kind> kindsOfEdits() {
  auto const kind = [](char const* name, std::string const& parameter, std::string const& child = {},
                       std::string const& objects = {}) {
    std::string const rules =
        header + "Checks:\n  all rest: all({/Case/Domain:*}, ${Motion} == 'Resting')\n" +
        "Lists:\n  domains: = names({/Case/Domain:*})\n" +
        "Objects:\n"
        "  /Case:\n"
        "    Parameters:\n"
        "      Title: {Required: yes, Parameter Type: String, Default Value: none}\n"
        "    Children:\n"
        "      Domain: {Required: yes}\n"
        "  /Case/Domain:\n"
        "    Parameters:\n"
        "      Motion: {Required: yes, Context Rule: yes, Parameter Type: String, Ordered Allowed "
        "String List: [Resting, Rotating], Default Value: Resting}\n"
        "      Speed: {Required: yes, Parameter Type: Real, Default Value: 1}\n" +
        parameter + (child.empty() ? "" : "    Children:\n" + child) + objects;
    return Kind{name, 100, [rules](std::size_t n) {
                  return editAgain(rules, "/Case/Title=none\n" + repeated(n, [](std::size_t i) {
                                            return "/Case/Domain:d" + number(i) + "/Motion=Resting\n";
                                          }));
                }};
  };
  std::string const source =
      "  /Case/Domain/Source:\n    Parameters:\n      Power: {Required: yes, Parameter Type: Real, Default Value: 1}\n";
  return {
      kind("edited: plain parameters", parameter("P", "Required: yes, Parameter Type: Real, Default Value: 1")),
      kind("edited: parameters on offer", parameter("P", "Parameter Type: Real")),
      kind("edited: a condition on a parameter", parameter("P", "Parameter Type: Real, Available: \"${Speed} > 2\"")),
      kind("edited: a condition on all domains",
           parameter("P", "Parameter Type: Real, Available: \"all({/Case/Domain:*}, ${Motion} == 'Resting')\"")),
      kind("edited: a count of domains",
           parameter("P", "Parameter Type: Real, Available: \"count({/Case/Domain:*}, ${Speed} > 0) > 1\"")),
      kind("edited: a search through all objects",
           parameter("P", "Parameter Type: Real, Available: \"exists({/Case/**/Source:*})\"")),
      kind("edited: a named check", parameter("P", "Parameter Type: Real, Available: \"check('all rest')\"")),
      kind("edited: a context", parameter("P", "Parameter Type: Real, Context: Rotating")),
      kind("edited: names of all domains on offer",
           parameter("P", "Parameter Type: String, Value List Source: \"names({/Case/Domain:*})\"")),
      kind("edited: names of all domains, present",
           parameter("P", "Required: yes, Parameter Type: String, Value List Source: \"names({/Case/Domain:*})\"")),
      kind("edited: names of all domains from a named list",
           parameter("P", "Required: yes, Parameter Type: String, Value List Source: \"list('domains')\"")),
      kind("edited: a subset of the names of all domains",
           parameter("P",
                     "Required: yes, Parameter Type: String, Value List Source: \"names({/Case/Domain:*})\", "
                     "Subset Value List Source: \"names(filter({/Case/Domain:*}, ${Motion} == 'Resting'))\"")),
      kind("edited: a default from all domains", parameter("P",
                                                           "Required: yes, Parameter Type: Real, Default Value: \"= "
                                                           "max(values(${/Case/Domain:*/Speed}))\"")),
      kind("edited: bounds from all domains",
           parameter("P",
                     "Required: yes, Parameter Type: Real, Default Value: 1, Upper Bound: \"= "
                     "sum(values(${/Case/Domain:*/Speed}))\"")),
      kind("edited: an override by all domains",
           "      P:\n        Required: yes\n        Parameter Type: Real\n        Value Override Check List:\n"
           "          - {When: \"any({/Case/Domain:*}, ${Motion} == 'Rotating')\", Value: 2}\n"
           "        Default Value: 1\n"),
      kind("edited: a child by a condition on all domains", "",
           "      Source: {Required: yes, Singleton: yes, Available: \"check('all rest')\"}\n", source),
      kind("edited: children with closed names", "", "      Source: {Required: yes, Allowed Names: [a, b]}\n", source),
      kind("edited: children on offer", "", "      Source: {Coupled: yes, Allowed Names: [a, b]}\n", source),
      kind("edited: children of which there are none", "", "      Source: {Required: yes}\n", source),
      kind("edited: children that are mirrored", "", "      Source: {}\n", source),
  };
}

/// The kind that the check of growth must reject.
std::vector<Kind> quadratic() {
  return {{"a square", 1'000, [](std::size_t n) -> Work {
             return [n] {
               std::size_t volatile sum = 0;
               for (std::size_t i = 0; i < n * n; ++i) sum = sum + i;
             };
           }}};
}

void count(Kind const& kind) {
  bool isFirst = true;
  for (std::size_t const size : {std::size_t{2}, kind.size, 2 * kind.size}) {
    Work const work = kind.prepare(size);
    if (isFirst) work();  // what happens only once in the life of a program
    isFirst = false;
    std::string const name = std::string(kind.name) + ": " + std::to_string(size);
    CALLGRIND_TOGGLE_COLLECT;
    work();
    CALLGRIND_TOGGLE_COLLECT;
    CALLGRIND_DUMP_STATS_AT(name.c_str());
  }
}

}  // namespace

int main(int argc, char** argv) {
  char const* current = "";
  try {
    std::vector<Kind> kinds = kindsOfRules();
    for (Kind& kind : kindsOfModels()) kinds.push_back(std::move(kind));
    for (Kind& kind : kindsOfEdits()) kinds.push_back(std::move(kind));
    if (argc == 2 && argv[1] == std::string_view("--quadratic")) kinds = quadratic();
    for (Kind const& kind : kinds) {
      current = kind.name;
      if (argc < 2 || argv[1][0] == '-' || argv[1] == std::string_view(kind.name)) count(kind);
    }
    return 0;
  } catch (std::exception const& error) {
    std::cerr << "GrowthInstructions: " << current << ": " << error.what() << '\n';
    return 2;
  }
}
