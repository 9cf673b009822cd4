// Bytes as a random rule base, a random model, and operations of a session with questions between them. Why and how
// agree with the state and leave every answer as it was; each way that is found leads to its goal. The laws are those
// of `SessionLaw.h`, which `SetupSessionTest` checks from seeds.
//
// The first byte, times sixteen, is the number of bytes for the rules and the model. The remaining bytes are for the
// operations and the questions.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/support/Laws.h"
#include "support/SessionLaw.h"

namespace {

using tarn::test::RandomNumbers;
using tarn::test::SessionLaw;

constexpr int mostQuestions = 12;
constexpr int bytesOfACount = 16;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 1) return 0;
  std::size_t const ofRules = std::min<std::size_t>(std::size_t{data[0]} * bytesOfACount, size - 1);
  std::uint8_t const* const operations = data + 1 + ofRules;

  SessionLaw law(RandomNumbers(std::vector<std::uint8_t>(data + 1, operations)),
                 RandomNumbers(std::vector<std::uint8_t>(operations, data + size)));
  std::string broken;
  for (int i = 0; i < mostQuestions && law.isOpen() && broken.empty() && law.hasBytes(); ++i) {
    try {
      broken = law.step();
      if (broken.empty()) broken = law.ask();
    } catch (tarn::test::RuleFault const&) {
      (void)law.openAnew();
    }
  }
  if (!broken.empty()) tarn::fuzz::fail("why and how agree with the state", broken + '\n' + law.text());
  return 0;
}
