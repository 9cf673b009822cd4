// The whole library on a whole case: the walk, validation, editing.
#include <set>
#include <string>

#include <tarn/DependencyAnalyser.h>
#include <tarn/EvalContext.h>

#include "BenchmarkSizes.h"

namespace {

using namespace tarn;
using namespace tarn::benchmarks;

/// As `caseOf`, with every count checked before the first time that a size is used.
CaseWorkload const& checkedCaseOf(benchmark::State& state) {
  CaseWorkload const& workload = caseOf(state);
  static std::set<std::size_t> checked;
  if (checked.insert(workload.domains()).second) checkCounts(workload, caseRules());
  return workload;
}

/// The walk by itself: everything is evaluated and nothing is done with it.
class Walk final : public DependencyAnalyser {
 public:
  explicit Walk(PhysicsData const* rules) : DependencyAnalyser(rules) {}

  std::size_t countAvailable(ModelTDF const* model) {
    available_ = 0;
    EvalContext context(model);
    analyse("/Case", &context);
    return available_;
  }

 private:
  HandlerStatus onBeginObject(ObjBeginInfo const*) override { return Continue; }
  HandlerStatus onBeginParam(std::string const&, std::string const&) override { return Continue; }
  HandlerStatus onParamCheck(ParamAvailInfo const* info) override {
    available_ += info->isAvailable();
    return Continue;
  }
  HandlerStatus onChildCheck(ChildAvailInfo const*) override { return Continue; }
  HandlerStatus onEndObject(std::string const&, bool) override { return Continue; }

  std::size_t available_ = 0;
};

void walk(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  DynamicTDF tree(false);
  tree.initialise(workload.valid().begin(), workload.valid().end());
  Walk walk(caseRules());
  for (auto _ : state) {
    if (walk.countAvailable(&tree) != workload.parameters()) state.SkipWithError("parameters are missing");
  }
}
BENCHMARK(walk)->Apply(overCaseSizes);

void validateAnew(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  for (auto _ : state) {
    BasicPhysicsErrorLogger logger;
    PhysicsValidator2 validator(caseRules());
    validator.setLogger(&logger);
    if (validator.validate(PhysicsValidator2::ValAll, workload.valid(), {"/Case"}) !=
        PhysicsValidator2::ValStatusClean) {
      state.SkipWithError("something is found in the sound case");
    }
  }
}
BENCHMARK(validateAnew)->Apply(overCaseSizes);

void validateChanged(benchmark::State& state) {
  RepeatedValidation validation(caseRules(), checkedCaseOf(state).valid());
  for (auto _ : state) validation.validateChanged();
}
BENCHMARK(validateChanged)->Apply(overCaseSizes);

void validateFaulty(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  RepeatedValidation validation(caseRules(), workload.faulty());
  for (auto _ : state) validation.validateChanged();
  if (validation.findings() != workload.findings()) state.SkipWithError("other things are found");
}
BENCHMARK(validateFaulty)->Apply(overCaseSizes);

void validateUnchanged(benchmark::State& state) {
  RepeatedValidation validation(caseRules(), checkedCaseOf(state).valid());
  validation.validateChanged();
  for (auto _ : state) validation.validateUnchanged();
}
BENCHMARK(validateUnchanged)->Apply(overCaseSizes);

void beginEditing(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  double bytes = 0;
  for (auto _ : state) {
    RepeatedEditing editing(caseRules(), workload, workload.valid());
    bytes = editing.bytesPerParameter();
  }
  state.counters["bytes a parameter"] = bytes;
}
BENCHMARK(beginEditing)->Apply(overCaseSizes);

void editOneBoundary(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  RepeatedEditing editing(caseRules(), workload, workload.valid());
  for (auto _ : state) {
    if (editing.editOneBoundary().added == 0) state.SkipWithError("the edit adds nothing");
  }
}
BENCHMARK(editOneBoundary)->Apply(overCaseSizes);

void editWholeCase(benchmark::State& state) {
  CaseWorkload const& workload = checkedCaseOf(state);
  RepeatedEditing editing(caseRules(), workload, workload.valid());
  for (auto _ : state) {
    EditCounts const counts = editing.editWholeCase();
    if (counts.added + counts.removed == 0) state.SkipWithError("the edit changes nothing");
  }
}
BENCHMARK(editWholeCase)->Apply(overCaseSizes);

}  // namespace
