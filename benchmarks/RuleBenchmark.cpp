// Rules: the loading of rule files, and the evaluation of each kind of expression.
#include <ctime>
#include <string>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/EvalCache.h>
#include <tarn/EvalContext.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>

#include "BenchmarkSizes.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

/// Rules of a domain that have the condition as that of a parameter, beside all that conditions speak of.
std::string rulesWith(std::string const& condition) {
  return "Rule Database: 1\n"
         "Lists:\n"
         "  eddy models: [k-epsilon, SST]\n"
         "Checks:\n"
         "  flow is turbulent: ${/Case/Flow Regime} == 'Turbulent'\n"
         "Objects:\n"
         "  /Case:\n"
         "    Parameters:\n"
         "      Flow Regime: {Parameter Type: String}\n"
         "    Children:\n"
         "      Domain: {}\n"
         "  /Case/Domain:\n"
         "    Parameters:\n"
         "      Motion: {Parameter Type: String}\n"
         "      Buoyant: {Parameter Type: Logical}\n"
         "      Gravity: {Parameter Type: Real}\n"
         "      Notes: {Parameter Type: String}\n"
         "      Probe:\n"
         "        Available: \"" +
         condition +
         "\"\n"
         "        Parameter Type: String\n"
         "    Children:\n"
         "      Turbulence: {Singleton: yes, Coupled: yes}\n"
         "      Boundary: {}\n"
         "  /Case/Domain/Turbulence:\n"
         "    Parameters:\n"
         "      Model: {Parameter Type: String}\n"
         "  /Case/Domain/Boundary:\n"
         "    Parameters:\n"
         "      Kind: {Parameter Type: String}\n"
         "      Temperature: {Parameter Type: Real}\n";
}

/// A condition that holds in every domain of the case, and is evaluated in one of them.
void evaluateCondition(benchmark::State& state, std::string const& condition) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  auto const rules = rules::parseRules(rulesWith(condition));
  ParamAvail const* const probe = rules->getObjDependDef("/Case/Domain", true)->findParam("Probe");
  TDFContext const context("/Case/Domain:d1");
  EvalContext evalContext(&tree);
  for (auto _ : state) {
    if (!probe->evaluate(context, &evalContext)) state.SkipWithError("the condition does not hold");
  }
}

struct NamedCondition {
  char const* name;
  char const* condition;
};

/// These read a fixed number of objects, whatever the size of the case.
NamedCondition const localConditions[] = {
    {"own value", "${Motion} == 'Rotating'"},
    {"value of the case", "${/Case/Flow Regime} == 'Turbulent'"},
    {"value of the parent", "${../Flow Regime} == 'Turbulent'"},
    {"value of a child", "${Turbulence/Model} != 'Inviscid'"},
    {"value of the nearest", "${^Case/Flow Regime} == 'Turbulent'"},
    {"logical value", "${Buoyant}"},
    {"two values", "${Motion} != ${/Case/Flow Regime}"},
    {"number", "${Gravity} > 9"},
    {"arithmetic", "(${Gravity} * 2 - 1) / 4 + 3 > 5"},
    {"membership", "${Motion} in ('Stationary', 'Rotating')"},
    {"and or not", "not (${Motion} == 'Stationary') and (${Gravity} < 1 or ${Buoyant})"},
    {"existence", "exists(${Gravity}) and exists({Turbulence})"},
    {"named check", "check('flow is turbulent')"},
    {"named list", "not (${Turbulence/Model} in list('eddy models')) or ${Buoyant}"},
    {"texts", "starts_with(${Notes}, 'note') and contains(lower(${Notes}), ' for d')"},
    {"count of children", "count({Boundary:*}) == 5"},
    {"any of children", "any({Boundary:*}, ${Kind} == 'Wall')"},
};

/// These look at the whole case.
NamedCondition const globalConditions[] = {
    {"any that is found last", "not any({/Case/Domain:*/Boundary:*}, ${Kind} == 'Opening')"},
    {"count", "count({/Case/Domain:*/Boundary:*}, ${Kind} == 'Inlet') > 1"},
    {"values", "size(unique(values(${/Case/Domain:*/Boundary:*/Kind}))) == 3"},
    {"sum", "sum(values(${/Case/Domain:*/Gravity})) > 9"},
    {"any depth", "exists({/Case/**/Boundary:*})"},
};

std::string allowedValueRules() {
  return "Rule Database: 1\n"
         "Checks:\n"
         "  time passes: ${/Case/Time Dependence} == 'Transient'\n"
         "Objects:\n"
         "  /Case:\n"
         "    Parameters:\n"
         "      Time Dependence: {Parameter Type: String}\n"
         "      Fixed: {Parameter Type: String, Ordered Allowed String List: [k-epsilon, SST, LES]}\n"
         "      Checked:\n"
         "        Parameter Type: String\n"
         "        Ordered Allowed String List: [k-epsilon, SST, LES]\n"
         "        Allowed String List Checks: {LES: \"not check('time passes')\"}\n"
         "      Computed:\n"
         "        Parameter Type: String\n"
         "        Value List Source: names({/Case/Domain:*})\n"
         "    Children:\n"
         "      Domain: {}\n"
         "  /Case/Domain: {}\n";
}

void evaluateAllowedValues(benchmark::State& state, std::string const& parameter, std::size_t expected) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  auto const rules = rules::parseRules(allowedValueRules());
  ParamValueDef const* const values = rules->getParamValueDef("/Case", parameter, true);
  TDFContext const context("/Case");
  EvalContext evalContext(&tree);
  if (expected == 0) expected = static_cast<std::size_t>(state.range(0));
  for (auto _ : state) {
    if (values->evaluateAllowedValues(rules->getRules(), context, &evalContext).allowedValues.size() != expected) {
      state.SkipWithError("other values are allowed");
    }
  }
}

/// A rule file of that many parameters, as a generator would write it.
std::string largeRules(std::size_t parameters) {
  std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n";
  for (std::size_t i = 0; i < parameters; ++i) {
    std::string const number = std::to_string(i);
    if (i % 20 == 0) {
      text += "  /Case/Device " + number + ":\n    Parameters:\n      Kind:\n        Required: yes\n        " +
              "Parameter Type: String\n        Ordered Allowed String List: [Fan, Pump, Valve]\n";
      continue;
    }
    text += "      Setting " + number + ":\n        Available: ${Kind} in ('Fan', 'Pump')\n        " +
            "Parameter Type: Real\n        Default Value: " + number + "\n        Lower Bound: 0\n";
  }
  return text;
}

void loadRuleText(benchmark::State& state) {
  std::string const text = largeRules(static_cast<std::size_t>(state.range(0)));
  std::size_t const types = static_cast<std::size_t>(state.range(0) + 19) / 20;
  for (auto _ : state) {
    if (rules::parseRules(text)->objects().size() != types) state.SkipWithError("object types are missing");
  }
  state.SetComplexityN(state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(loadRuleText)
    ->ArgName("parameters")
    ->RangeMultiplier(10)
    ->Range(100, 100000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

void lintRuleText(benchmark::State& state) {
  std::string const text = largeRules(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    for (rules::Diagnostic const& diagnostic : rules::lintText(text).diagnostics) {
      if (diagnostic.severity == rules::Severity::Error) state.SkipWithError("the rules hold an error");
    }
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(lintRuleText)
    ->ArgName("parameters")
    ->RangeMultiplier(10)
    ->Range(100, 10000)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

/// `piece(i)` for each number below `count`, one after the other.
template <typename Piece>
std::string repeated(std::size_t count, Piece const& piece) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += piece(std::to_string(i));
  return text;
}

std::string const caseWithParameters =
    "Objects:\n  /Case:\n    Parameters:\n      Title: {Parameter Type: String, Ordered Allowed String List: [one, "
    "two]}\n";

/// A form of rules of which real ones are made, with about that many entries.
struct Shape {
  char const* name;
  std::string (*rules)(std::size_t entries);
};

Shape const shapes[] = {
    {"many parameters of many types",
     [](std::size_t n) {
       std::string text = "Rule Database: 1\nPertinent Roots: [Case]\nObjects:\n  /Case:\n    Children:\n";
       text += repeated(
           n / 20, [](std::string const& i) { return "      Device " + i + ": {Singleton: yes, Coupled: yes}\n"; });
       return text + repeated(n / 20, [](std::string const& i) {
                return "  /Case/Device " + i +
                       ":\n    Parameters:\n      Kind: {Required: yes, Parameter Type: String, Ordered Allowed String "
                       "List: [Fan, Pump, Valve]}\n" +
                       repeated(19, [](std::string const& j) {
                         return "      Setting " + j + ":\n        Available: ${Kind} in ('Fan', 'Pump')\n        " +
                                "Parameter Type: Real\n        Default Value: " + j + "\n        Lower Bound: 0\n";
                       });
              });
     }},
    {"many parameters in many contexts",
     [](std::size_t n) {
       std::size_t const contexts = 1000;
       return "Rule Database: 1\nPertinent Roots: [Case]\n" + caseWithParameters +
              "      Kind: {Context Rule: yes, Parameter Type: String, Ordered Allowed String List: [" +
              repeated(contexts, [](std::string const& i) { return "k" + i + ", "; }) + "last]}\n" +
              repeated(n, [&](std::string const& i) {
                return "      P" + i + ": {Context: k" + std::to_string(std::stoul(i) % contexts) +
                       ", Parameter Type: Real}\n";
              });
     }},
    {"many named checks over many object types",
     [](std::size_t n) {
       return "Rule Database: 1\nPertinent Roots: [Case]\nChecks:\n" +
              repeated(n / 2, [](std::string const& i) { return "  c" + i + ": ${Kind} == '" + i + "'\n"; }) +
              "Objects:\n  /Case:\n    Children:\n" +
              repeated(n / 2, [](std::string const& i) { return "      T" + i + ": {Coupled: yes}\n"; }) +
              repeated(n / 2, [](std::string const& i) {
                return "  /Case/T" + i +
                       ":\n    Parameters:\n      Kind: {Parameter Type: String}\n      Size: {Parameter Type: Real, " +
                       "Available: check('c" + i + "')}\n";
              });
     }},
    {"one list in many places",
     [](std::size_t n) {
       return "Rule Database: 1\nPertinent Roots: [Case]\nLists:\n  sizes: [" +
              repeated(100, [](std::string const& i) { return "s" + i + ", "; }) + "last]\n" + caseWithParameters +
              repeated(n, [](std::string const& i) {
                return "      P" + i +
                       ": {Parameter Type: String, Value List Source: list('sizes'), Default Value: last}\n";
              });
     }},
    {"long chains of named checks",
     [](std::size_t n) {
       std::size_t const length = 90;
       return "Rule Database: 1\nPertinent Roots: [Case]\nChecks:\n" +
              repeated(n / (2 * length),
                       [&](std::string const& chain) {
                         return repeated(length, [&](std::string const& i) {
                           std::size_t const before = std::stoul(i);
                           return "  c" + chain + " " + i + ": " +
                                  (before == 0 ? "${Title} == 'one'\n"
                                               : "check('c" + chain + " " + std::to_string(before - 1) + "')\n");
                         });
                       }) +
              caseWithParameters + repeated(n / 2, [&](std::string const& i) {
                std::size_t const number = std::stoul(i);
                return "      P" + i + ": {Parameter Type: Real, Available: check('c" +
                       std::to_string(number / length % (n / (2 * length))) + " " + std::to_string(number % length) +
                       "')}\n";
              });
     }},
    {"values with 10,000 allowed strings",
     [](std::size_t n) {
       std::size_t const values = 10'000;
       return "Rule Database: 1\nPertinent Roots: [Case]\n" + caseWithParameters +
              repeated(n / values, [&](std::string const& i) {
                return "      P" + i + ": {Parameter Type: String, Ordered Allowed String List: [" +
                       repeated(values, [](std::string const& j) { return "v" + j + ", "; }) +
                       "last], Default Value: last}\n      Q" + i + ": {Parameter Type: Real, Available: \"${P" + i +
                       "} == 'v77' or ${P" + i + "} in ('v1', 'v2')\"}\n";
              });
     }},
};

/// How many times as long as loading lint takes.
void lintAgainstLoading(benchmark::State& state, Shape const& shape) {
  std::string const text = shape.rules(static_cast<std::size_t>(state.range(0)));
  std::clock_t loading = 0;
  std::clock_t linting = 0;
  for (auto _ : state) {
    auto const begin = std::clock();
    if (rules::parseRules(text) == nullptr) state.SkipWithError("the rules cannot be loaded");
    auto const between = std::clock();
    rules::LintOptions options;
    options.severities["unused-name"] = std::nullopt;  // generated rules have names that nothing uses
    auto const diagnostics = rules::lintText(text, "<rules>", options).diagnostics;
    linting += std::clock() - between;
    loading += between - begin;
    if (!diagnostics.empty())
      state.SkipWithError(("the rules are not sound: " + rules::format(diagnostics[0])).c_str());
  }
  state.counters["times loading"] = static_cast<double>(linting) / static_cast<double>(loading);
}

void registerEvaluations() {
  for (Shape const& shape : shapes) {
    std::string const name = std::string("lint and load/") + shape.name;
    benchmark::RegisterBenchmark(name.c_str(), lintAgainstLoading, shape)
        ->ArgName("entries")
        ->Arg(10'000)
        ->Arg(100'000)
        ->Unit(benchmark::kMillisecond);
  }
  for (NamedCondition const& condition : localConditions) {
    std::string const name = std::string("evaluate/") + condition.name;
    benchmark::RegisterBenchmark(name.c_str(), evaluateCondition, condition.condition)->ArgName("domains")->Arg(300);
  }
  for (NamedCondition const& condition : globalConditions) {
    std::string const name = std::string("evaluate/") + condition.name;
    benchmark::RegisterBenchmark(name.c_str(), evaluateCondition, condition.condition)->Apply(overCaseSizes);
  }
  benchmark::RegisterBenchmark("allowed values/fixed", evaluateAllowedValues, "Fixed", 3)->ArgName("domains")->Arg(300);
  benchmark::RegisterBenchmark("allowed values/checked", evaluateAllowedValues, "Checked", 2)
      ->ArgName("domains")
      ->Arg(300);
  benchmark::RegisterBenchmark("allowed values/computed", evaluateAllowedValues, "Computed", 0)->Apply(overCaseSizes);
}

// As the macro of Google Benchmark does it: before main begins.
[[maybe_unused]] bool const registered = (registerEvaluations(), true);

}  // namespace
