#include <tarn/ModelText.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>

#include <tarn/Error.h>
#include <tarn/TDFChangeFile.h>

#include "support/TemporaryFolder.h"

namespace tarn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

ModelText const pump("pump.tdf",
                     "# a pump\n"
                     "/Case/Flow Regime=Turbulent\n"
                     "/Case/Domain:rotor/Boundary:inlet/Kind=Inlet\n"
                     "/Case/Domain:rotor/Material=Water\n"
                     "Case:\n"
                     "  Domain: stator\n"
                     "    Material = Oil\n"
                     "    Interface: shaft\n"
                     "    END # Interface:shaft\n"
                     "  END # Domain:stator\n"
                     "END # Case:\n"
                     "/Case/Domain:rotor/Material=Air\n");

/// "line:column=value" of the occurrences of one item.
std::vector<std::string> occurrencesOf(ModelText const& text, std::string const& path,
                                       std::optional<std::string> const& name = {}) {
  std::vector<std::string> shown;
  auto const found = text.locate({{path, name}});
  for (auto const& [place, value] : found.front()) {
    shown.push_back(std::to_string(place.line()) + ':' + std::to_string(place.column()) + '=' + value);
  }
  return shown;
}

std::vector<std::string> faultsOf(std::string const& content) {
  std::vector<std::string> shown;
  ModelText const text("m", content);
  for (auto const& [line, column, reason] : text.faults()) {
    shown.push_back(std::to_string(line) + ':' + std::to_string(column) + ": " + reason);
  }
  return shown;
}

TEST(ModelText, GivesTheSameStateAsTheListOfItems) {
  std::string const content =
      "/B/x=1\n/A/y=2\n/A/y=3\n/A:A/\nA: b\n  z = 1\n  C:\n  END # C:\n  z = 4\nEND # A:b\nn = 5\n/A/x=0\n";
  EXPECT_EQ(ModelText("m", content).state(), TDFChangeFile({}, {content}, TDFChangeFile::Strict).toModelState());
}

TEST(ModelText, HasNoFaultsWhenAllLinesAreWellFormed) {
  EXPECT_THAT(pump.faults(), IsEmpty());
  EXPECT_EQ(pump.faultCount(), 0U);
}

TEST(ModelText, TellsAllMalformedLinesInTheOrderOfTheText) {
  EXPECT_THAT(faultsOf("Case:\n"
                       "/Case/Speed\n"
                       "  Width = 3\n"
                       "prose\n"),
              ElementsAre("1:1: the block is left open; close it with \"END # Case:\"",
                          "2:1: neither \"=\" in the line nor \"/\" at its end; write path/name=value, or path/ for an "
                          "object",
                          "4:1: neither \"=\" nor \":\" in the line; write name = value, Type: name or END # "
                          "Type:name"));
}

TEST(ModelText, LoadsWhatIsBetweenMalformedLines) {
  ModelState const expected = {{"/Case", {{"Speed", "3"}}}};
  EXPECT_EQ(ModelText("m", "prose\n/Case/Speed=3\n/Case/Width\n").state(), expected);
}

TEST(ModelText, KeepsTheFirstThousandFaultsAndCountsTheRest) {
  std::string content;
  for (int i = 0; i < 1001; ++i) content += "prose\n";
  ModelText const text("m", content);
  EXPECT_THAT(text.faults(), SizeIs(ModelText::mostFaults));
  EXPECT_EQ(text.faultCount(), 1001U);
}

TEST(ModelText, NamesTheParametersThatAreGivenMoreThanOnce) {
  ModelText const text("m", "/B/y=1\n/A/x=1\n/A/x=1\n/A/w=1\n/B/y=2\nB:\n  y = 3\nEND # B:\n/A/\n/A/\n");
  std::vector<ModelText::Item> const& repeated = text.repeated();
  ASSERT_THAT(repeated, SizeIs(2));
  EXPECT_EQ(repeated[0].path, "/A");
  EXPECT_EQ(repeated[0].name, "x");
  EXPECT_EQ(repeated[1].path, "/B");
  EXPECT_EQ(repeated[1].name, "y");
}

TEST(ModelText, LocatesAParameterByItsName) {
  EXPECT_THAT(occurrencesOf(pump, "/Case", "Flow Regime"), ElementsAre("2:7=Turbulent"));
}

TEST(ModelText, LocatesAParameterInABlock) {
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:stator", "Material"), ElementsAre("7:5=Oil"));
}

TEST(ModelText, LocatesEachLineThatGivesAParameter) {
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:rotor", "Material"), ElementsAre("4:20=Water", "12:20=Air"));
}

TEST(ModelText, LocatesAnObjectWhereItIsFirstMentioned) {
  EXPECT_THAT(occurrencesOf(pump, "/Case"), ElementsAre("2:2="));
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:rotor"), ElementsAre("3:7="));
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:rotor/Boundary:inlet"), ElementsAre("3:20="));
}

TEST(ModelText, LocatesAnObjectByTheLineThatOpensItsBlock) {
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:stator"), ElementsAre("6:3="));
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:stator/Interface:shaft"), ElementsAre("8:5="));
}

TEST(ModelText, LocatesNothingThatItDoesNotMention) {
  EXPECT_THAT(occurrencesOf(pump, "/Case/Domain:rot"), IsEmpty());
  EXPECT_THAT(occurrencesOf(pump, "/Case", "Speed"), IsEmpty());
  EXPECT_THAT(occurrencesOf(pump, ""), IsEmpty());
}

TEST(ModelText, LocatesManyItemsAtOnceInTheOrderTheyAreAskedFor) {
  auto const found = pump.locate({{"/Case/Domain:stator", "Material"}, {"/Case", {}}, {"/Case/Domain:stator", {}}});
  ASSERT_THAT(found, SizeIs(3));
  EXPECT_EQ(found[0].front().place.text(), "pump.tdf:7:5");
  EXPECT_EQ(found[1].front().place.text(), "pump.tdf:2:2");
  EXPECT_EQ(found[2].front().place.text(), "pump.tdf:6:3");
}

TEST(ModelText, CountsColumnsInCharacters) {
  EXPECT_THAT(occurrencesOf(ModelText("m", "/Fl\u00fcgel/H\u00f6he=3\r\n"), "/Fl\u00fcgel", "H\u00f6he"),
              ElementsAre("1:9=3"));
}

TEST(ModelText, LocatesTheFirstHundredLinesThatGiveAParameter) {
  std::string content;
  for (int i = 0; i < 101; ++i) content += "/Case/Speed=3\n";
  EXPECT_THAT(occurrencesOf(ModelText("m", content), "/Case", "Speed"), SizeIs(ModelText::mostOccurrences));
}

TEST(ModelText, LocatesAHundredThousandParametersInShortTime) {
  std::string content;
  std::vector<ModelText::Item> items;
  for (int i = 0; i < 100'000; ++i) {
    std::string const path = "/Case/Probe:" + std::to_string(i / 10);
    std::string const name = "Value " + std::to_string(i % 10);
    content.append(path).append("/").append(name).append("=1\n");
    items.push_back({path, name});
  }
  ModelText const text("m", content);
  auto const begin = std::chrono::steady_clock::now();
  auto const found = text.locate(items);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  EXPECT_EQ(found.front().front().place.line(), 1U);
  EXPECT_EQ(found.back().front().place.line(), 100'000U);
}

TEST(ModelText, ReadsAFile) {
  test::TemporaryFolder const folder("model-text");
  std::string const file = folder.path() / "pump.tdf";
  std::ofstream(file, std::ios::binary) << "\xEF\xBB\xBF/Case/Speed=3\r\n";
  ModelText const text = ModelText::read(file);
  EXPECT_EQ(text.source(), file);
  EXPECT_EQ(text.state(), (ModelState{{"/Case", {{"Speed", "3"}}}}));
  EXPECT_EQ(occurrencesOf(text, "/Case", "Speed"), std::vector<std::string>{"1:7=3"});
}

TEST(ModelText, ThrowsWhenAFileCannotBeRead) {
  EXPECT_THROW(static_cast<void>(ModelText::read("/no/such/pump.tdf")), FileError);
}

}  // namespace
}  // namespace tarn
