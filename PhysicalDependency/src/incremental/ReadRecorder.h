#pragma once

#include <cstddef>
#include <vector>

#include "incremental/Fact.h"

namespace tarn {

/// Collects what the running visit reads. Within it, the evaluation of a result that rules keep can be opened and
/// closed; its reads then are those of the result and not of the visit. Evaluations nest.
class ReadRecorder {
 public:
  void begin() noexcept {
    reads_.clear();
    open_.clear();
    isRecording_ = true;
  }
  void end() noexcept { isRecording_ = false; }
  [[nodiscard]] bool isRecording() const noexcept { return isRecording_; }

  void record(Fact fact) {
    if (!isRecording_) return;
    // Rules often read the same fact several times in a row. Reads before a result was opened are not its reads.
    std::size_t const begin = open_.empty() ? 0 : open_.back().begin;
    if (reads_.size() == begin || reads_.back() != fact) reads_.push_back(fact);
  }

  void openKept(void const* rule) {
    if (isRecording_) open_.push_back({rule, reads_.size()});
  }
  /// Moves the reads since the opening of `rule` to `reads`. Evaluations that were opened since then, and broke off,
  /// are taken as part of it. Returns false when it was not opened.
  bool closeKept(void const* rule, std::vector<Fact>& reads);

  /// The reads of the visit, each once. Valid until the next visit begins.
  [[nodiscard]] std::vector<Fact>& uniqueReads();

 private:
  struct Open {
    void const* rule;
    std::size_t begin;
  };

  bool isRecording_ = false;
  std::vector<Fact> reads_;
  std::vector<Open> open_;
};

/// Sorts the facts and drops repetitions.
void makeUnique(std::vector<Fact>& facts);

}  // namespace tarn
