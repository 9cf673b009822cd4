// Models and their text: paths, look-up and insertion in the tree, the reading of model text.
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/TDFPath.h>

#include "BenchmarkSizes.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

void parsePath(benchmark::State& state) {
  std::string path;
  for (std::int64_t i = 0; i < state.range(0); ++i) path += "/Domain:rotor blade " + std::to_string(i);
  for (auto _ : state) {
    TDFPath parsed(path);
    benchmark::DoNotOptimize(parsed);
  }
  state.SetComplexityN(state.range(0));
}
BENCHMARK(parsePath)->ArgName("components")->RangeMultiplier(4)->Range(2, 512)->Complexity();

void copyPath(benchmark::State& state) {
  TDFPath const path("/Case/Domain:rotor/Boundary:inlet");
  for (auto _ : state) {
    TDFPath copy(path);
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(copyPath);

/// Every parameter of the case, in an order that no cache foresees.
std::vector<std::pair<std::string, std::string>> scatteredParameters(ModelState const& model) {
  std::vector<std::pair<std::string, std::string>> parameters;
  for (auto const& [object, values] : model) {
    for (auto const& [name, value] : values) parameters.emplace_back(object, name);
  }
  // A stride that shares no factor with the number reaches each parameter once.
  std::vector<std::pair<std::string, std::string>> scattered;
  std::size_t stride = parameters.size() * 5 / 8 + 1;
  while (std::gcd(stride, parameters.size()) != 1) ++stride;
  for (std::size_t i = 0; i < parameters.size(); ++i) scattered.push_back(parameters[i * stride % parameters.size()]);
  return scattered;
}

void lookUpParameter(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  auto const parameters = scatteredParameters(model);
  std::size_t next = 0;
  for (auto _ : state) {
    auto const& [object, name] = parameters[next];
    if (tree.getParameterValue(object, name).empty()) state.SkipWithError("a parameter is not found");
    next = next + 1 == parameters.size() ? 0 : next + 1;
  }
}
BENCHMARK(lookUpParameter)->Apply(overCaseSizes)->Unit(benchmark::kNanosecond);

void changeParameter(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  auto const parameters = scatteredParameters(model);
  std::string const values[] = {"1", "2"};
  std::size_t next = 0;
  std::size_t value = 0;
  for (auto _ : state) {
    auto const& [object, name] = parameters[next];
    tree.setParameter(object, name, values[value]);
    if (++next == parameters.size()) {
      next = 0;
      value = 1 - value;
    }
  }
}
BENCHMARK(changeParameter)->Apply(overCaseSizes)->Unit(benchmark::kNanosecond);

void listChildren(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  std::vector<std::string> children;
  for (auto _ : state) {
    tree.getChildObjectPathsByType("/Case", "Domain", children);
    if (children.size() != static_cast<std::size_t>(state.range(0))) state.SkipWithError("domains are missing");
  }
}
BENCHMARK(listChildren)->Apply(overCaseSizes);

/// With the end of the tree, which the case takes with it.
void fillTree(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  for (auto _ : state) {
    DynamicTDF tree;
    tree.initialise(model.begin(), model.end());
    if (tree.getAddedParameters().size() != caseOf(state).parameters()) state.SkipWithError("parameters are missing");
  }
}
BENCHMARK(fillTree)->Apply(overCaseSizes);

void readTree(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  DynamicTDF tree(false);
  tree.initialise(model.begin(), model.end());
  for (auto _ : state) {
    if (tree.getState("").size() != model.size()) state.SkipWithError("objects are missing");
  }
}
BENCHMARK(readTree)->Apply(overCaseSizes);

void readModelText(benchmark::State& state) {
  std::string const text = CaseWorkload::modelText(caseOf(state).valid());
  std::size_t const parameters = caseOf(state).parameters();
  for (auto _ : state) {
    TDFChangeFile const file({}, {text}, TDFChangeFile::Strict);
    if (static_cast<std::size_t>(file.end() - file.begin()) != parameters) state.SkipWithError("lines are missing");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(readModelText)->Apply(overCaseSizes);

void readModelTextAsState(benchmark::State& state) {
  ModelState const& model = caseOf(state).valid();
  std::string const text = CaseWorkload::modelText(model);
  for (auto _ : state) {
    if (TDFChangeFile({}, {text}, TDFChangeFile::Strict).toModelState().size() != model.size()) {
      state.SkipWithError("objects are missing");
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(readModelTextAsState)->Apply(overCaseSizes);

}  // namespace
