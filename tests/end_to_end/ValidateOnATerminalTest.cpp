// `zev validate` on a terminal, where it shows places by default.
#include <gtest/gtest.h>

#include <string>

#include "Places.h"
#include "end_to_end/Terminal.h"

namespace tarn::test {
namespace {

std::string const folder = TARN_SOURCE_DIR "/tests/end_to_end/data";

/// The first line after the name of the model.
std::string firstFindingOf(Terminal::Strings const& options) {
  Terminal::Strings arguments = {TARN_ZEV, "validate", "--rules", "flow.rules.yaml", "fan.tdf"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  Terminal terminal(folder, arguments, {});
  terminal.waitFor("fan.tdf:\r\n");
  std::string const line = terminal.waitFor("\r\n");
  EXPECT_EQ(terminal.waitForEnd(), 1);
  return line;
}

TEST(ValidateOnATerminal, BeginsAFindingWithItsPlace) {
  EXPECT_EQ(firstFindingOf({}), "fan.tdf:5:21: **Dependency error on path \"/Case/Domain:plenum\"");
}

TEST(ValidateOnATerminal, HidesPlacesWhenItIsToldTo) {
  EXPECT_EQ(firstFindingOf({"--no-places"}), "**Dependency error on path \"/Case/Domain:plenum\"");
}

}  // namespace
}  // namespace tarn::test
