#pragma once

#include <tarn/BoolFromEnvironment.h>
#include <tarn/EvalCache.h>

namespace tarn {

/// Lets rules keep results for the time of one walk, unless the environment forbids it.
class KeepingResults {
 public:
  explicit KeepingResults(EvalCache& results) : results_(results) {
    results_.enable(!BoolFromEnvironment("TARN_PHYSVAL_DONTUSECACHE"));
  }
  ~KeepingResults() { results_.enable(false); }
  KeepingResults(KeepingResults const&) = delete;
  KeepingResults& operator=(KeepingResults const&) = delete;

 private:
  EvalCache& results_;
};

}  // namespace tarn
