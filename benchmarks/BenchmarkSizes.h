#pragma once

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <memory>

#include "CaseOperations.h"
#include "CaseWorkload.h"

namespace tarn::benchmarks {

/// Cases from a hundred parameters to a hundred thousand. Google Benchmark then fits how the time grows with them.
inline void overCaseSizes(benchmark::internal::Benchmark* benchmark) {
  for (std::int64_t const domains : {3, 30, 300, 3000}) benchmark->Arg(domains);
  benchmark->ArgName("domains")->Unit(benchmark::kMicrosecond)->Complexity();
}

/// The case that a benchmark asks for, made once for all benchmarks of a program. Tells Google Benchmark its size.
[[nodiscard]] inline CaseWorkload const& caseOf(benchmark::State& state) {
  static std::map<std::int64_t, std::unique_ptr<CaseWorkload>> workloads;
  auto& workload = workloads[state.range(0)];
  if (!workload) workload = std::make_unique<CaseWorkload>(static_cast<std::size_t>(state.range(0)));
  state.SetComplexityN(static_cast<std::int64_t>(workload->parameters()));
  return *workload;
}

[[nodiscard]] inline PhysicsData const* caseRules() {
  static std::unique_ptr<PhysicsData> const rules = loadCaseRules();
  return rules.get();
}

}  // namespace tarn::benchmarks
