// Bytes as a random rule base, a random model, and operations of a session: edits, batches, trials, renamings, undo and
// redo in any order. After each operation the laws of sessions hold, see `SessionLaw.h`; at the end every answer is
// that of a fresh session that makes the steps that remain.
//
// The first byte, times sixteen, is the number of bytes for the rules and the model. The remaining bytes are for the
// operations. `SetupSessionTest` tests the same laws from seeds.

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

constexpr int mostOperations = 30;
constexpr int bytesOfACount = 16;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 1) return 0;
  std::size_t const ofRules = std::min<std::size_t>(std::size_t{data[0]} * bytesOfACount, size - 1);
  std::uint8_t const* const operations = data + 1 + ofRules;

  SessionLaw law(RandomNumbers(std::vector<std::uint8_t>(data + 1, operations)),
                 RandomNumbers(std::vector<std::uint8_t>(operations, data + size)));
  if (!law.isOpen()) return 0;
  std::string broken;
  for (int i = 0; i < mostOperations && broken.empty() && law.hasBytes(); ++i) broken = law.step();
  if (broken.empty()) broken = law.compareWithFresh();
  if (!broken.empty()) tarn::fuzz::fail("a session is what its steps make it", broken + '\n' + law.text());
  return 0;
}
