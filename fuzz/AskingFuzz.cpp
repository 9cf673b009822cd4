// Bytes as a random rule base, a random model, and operations of a session with questions between them. Why and how
// agree with the state and leave every answer as it was; each way that is found leads to its goal. The laws are those
// of `SessionLaw.h`, which `SetupSessionTest` checks from seeds.
// `LawOfBytes.h` says which bytes are for what.

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/LawOfBytes.h"
#include "fuzz/support/Laws.h"

namespace {

constexpr int mostQuestions = 12;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size < 1) return 0;
  auto law = tarn::fuzz::sessionLawOf(data, size);
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
