// Bytes as a random rule base with everything that rules can say, random models and a session. Two states go through
// the session: one visits only what an edit concerns, the other walks everything. They show, publish and keep the same
// after every step.
//
// The first byte, times sixteen, is the number of bytes for the rules and the models. The remaining bytes are for the
// session. When rules need more than their bytes, they take them from a fixed sequence. A seed of `FailuresTest` tests
// the same law without bytes.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/support/Laws.h"
#include "support/EqualWalks.h"

namespace {

using tarn::test::EqualWalks;
using tarn::test::RandomNumbers;
using tarn::test::RandomRuleBase;
using tarn::test::Session;

constexpr int mostSteps = 40;
constexpr int bytesOfACount = 16;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 1) return 0;
  std::size_t const ofRules = std::min<std::size_t>(std::size_t{data[0]} * bytesOfACount, size - 1);
  std::uint8_t const* const steps = data + 1 + ofRules;

  RandomRuleBase random(RandomNumbers(std::vector<std::uint8_t>(data + 1, steps)));
  random.continueWith(RandomNumbers(std::vector<std::uint8_t>(steps, data + size)));
  Session session{random.start(), {}};
  EqualWalks walks(session.start, nullptr, false);
  std::string broken = walks.brokenByStart();
  for (int i = 0; i < mostSteps && broken.empty() && random.hasBytes(); ++i) {
    session.steps.push_back(random.nextStep(walks.state()));
    broken = walks.make(session.steps.back());
  }
  if (broken.empty()) broken = walks.brokenAtEnd();
  if (!broken.empty())
    tarn::fuzz::fail("a walk of what is concerned equals a walk of everything", explained(session, nullptr));
  return 0;
}
