#include "console/ChoiceList.h"

#include <gtest/gtest.h>

#include "console/CharacterLocale.h"

namespace tarn::tool {
namespace {

Completion of(std::vector<std::string> choices) {
  std::size_t const total = choices.size();
  return {"", std::move(choices), total};
}

TEST(ChoiceList, StandsInColumnsThatAreReadDownwards) {
  EXPECT_EQ(choiceList(of({"Domain Type", "Location", "Material", "Motion/", "Reference Pressure"}), 42),
            "Domain Type         Motion/\n"
            "Location            Reference Pressure\n"
            "Material\n");
}

TEST(ChoiceList, UsesTheWholeWidth) {
  EXPECT_EQ(choiceList(of({"po", "pp", "ps"}), 10), "po  pp  ps\n");
  EXPECT_EQ(choiceList(of({"po", "pp", "ps"}), 9), "po  ps\npp\n");
}

TEST(ChoiceList, OnATerminalNarrowerThanAChoiceHasOneOnALine) {
  EXPECT_EQ(choiceList(of({"Location", "Material"}), 3), "Location\nMaterial\n");
  EXPECT_EQ(choiceList(of({"Location", "Material"}), 0), "Location\nMaterial\n");
}

TEST(ChoiceList, CountsThoseThatAreNotNamed) {
  EXPECT_EQ(choiceList({"", {"Probe 1", "Probe 2"}, 100'000}, 80), "Probe 1  Probe 2\n... and 99998 more\n");
}

TEST(ChoiceList, IsAlignedByWhatCharactersTakeOnTheScreen) {
  CharacterLocale const locale;
  EXPECT_EQ(choiceList(of({"Größe", "水", "x", "y"}), 12), "Größe  x\n水     y\n");
}

TEST(ChoiceList, ShowsWhatWouldMoveTheCursorAsAQuestionMark) {
  CharacterLocale const locale;
  EXPECT_EQ(choiceList(of({"a\x1b[2J", "\xff\xfe", "\xe6\xb0"}), 3), "a?[2J\n??\n??\n");
}

}  // namespace
}  // namespace tarn::tool
