// Bytes as model text, after a first byte that says which items of the rules have new names. The laws of migration
// hold for every text without malformed lines: the result is a model, migrating it again changes nothing, and values
// and comments stay.

#include <cstddef>
#include <cstdint>
#include <string>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>

#include "fuzz/support/Laws.h"
#include "support/MigrationLaw.h"

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
  if (size == 0) return 0;
  unsigned const bits = data[0];
  auto const rules = tarn::rules::parseRules(tarn::test::renamedPlant([&](std::string const& former) {
    // Each name has a bit of its own, by its length and first letter.
    return ((bits >> ((former.size() + static_cast<unsigned char>(former.front())) % 8U)) & 1U) != 0;
  }));
  std::string const text = tarn::fuzz::textOf(data + 1, size - 1);
  if (!tarn::ModelText("model.tdf", text).faults().empty()) return 0;
  std::string const law = tarn::test::brokenLawOfMigration(*rules, text);
  if (!law.empty()) tarn::fuzz::fail(law, text);
  return 0;
}
