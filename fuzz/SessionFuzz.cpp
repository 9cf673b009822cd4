// Bytes as a random rule base, a random model, and operations of a session: edits, batches, trials, renamings, undo and
// redo in any order. After each operation the laws of sessions hold, see `SessionLaw.h`; at the end every answer is
// that of a fresh session that makes the steps that remain.
// `LawOfBytes.h` says which bytes are for what. `SetupSessionTest` tests the same laws from seeds.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/LawOfBytes.h"
#include "fuzz/support/Laws.h"

namespace {

constexpr int mostOperations = 30;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 1) return 0;
  auto law = tarn::fuzz::sessionLawOf(data, size);
  if (!law.isOpen()) return 0;
  std::string broken;
  for (int i = 0; i < mostOperations && broken.empty() && law.hasBytes(); ++i) broken = law.step();
  if (broken.empty()) broken = law.compareWithFresh();
  if (!broken.empty()) tarn::fuzz::fail("a session is what its steps make it", broken + '\n' + law.text());
  return 0;
}
