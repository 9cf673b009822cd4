// The wording is part of what users rely on, so every text is compared whole.

#include "validation/ValidationMessages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tarn::ValidationMessages {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using List = std::vector<std::string>;

List numbered(std::string const& prefix, int count) {
  List items;
  for (int i = 1; i <= count; ++i) items.push_back(prefix + std::to_string(i));
  return items;
}

TEST(ValidationMessages, MissingParameter) {
  EXPECT_EQ(formatMissingParam("/Case/Domain:rotor", "Motion"),
            "The parameter \"Motion\" should exist in the object \"/Case/Domain:rotor\" but is not present.");
}

TEST(ValidationMessages, InvalidParameter) {
  EXPECT_EQ(formatInvalidParam("/Case/Domain:rotor", "Motion"),
            "The parameter \"Motion\" is present in the object \"/Case/Domain:rotor\" but it is not physically valid.");
}

TEST(ValidationMessages, InvalidValueShowsTheAllowedValuesShort) {
  EXPECT_EQ(formatInvalidValue("/Case", "Regime", List{"Laminar", "Turbulent"}, "Fast"),
            "The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This does not match any of the allowed "
            "values: \"Laminar, Turbulent\".");
  EXPECT_EQ(formatInvalidValue("/Case", "Regime", List{"a", "b", "c", "d", "e"}, "Fast"),
            "The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This does not match any of the allowed "
            "values: \"a, b, c, d, ...\".");
}

TEST(ValidationMessages, InvalidValueWithNoAllowedValues) {
  EXPECT_EQ(formatInvalidValue("/Case", "Regime", List{}, "Fast"),
            "The parameter \"Regime\" in \"/Case\" has the value \"Fast\". This does not match any of the allowed "
            "values: \"\".");
}

TEST(ValidationMessages, InvalidValuesOne) {
  EXPECT_EQ(formatInvalidValues("/Case", "Models", List{"k", "w"}, List{"x"}),
            "The parameter \"Models\" in \"/Case\" holds the following disallowed value: \"x\". (Allowed values are: "
            "\"k, w\".)");
}

TEST(ValidationMessages, InvalidValuesSeveralWhateverTheNumberOfAllowedOnes) {
  EXPECT_EQ(
      formatInvalidValues("/Case", "Models", List{"k"}, List{"x", "y"}),
      "The parameter \"Models\" in \"/Case\" holds the following disallowed values: \"x,y\". (Allowed values are: "
      "\"k\".)");
  EXPECT_EQ(formatInvalidValues("/Case", "Models", List{"a", "b", "c", "d", "e"}, List{"x"}),
            "The parameter \"Models\" in \"/Case\" holds the following disallowed value: \"x\". (Allowed values are: "
            "\"a, b, c, d, ...\".)");
}

TEST(ValidationMessages, EightyDisallowedValuesAreShownInFull) {
  List const disallowed = numbered("v", 80);
  std::string full = "v1";
  for (int i = 2; i <= 80; ++i) full += ",v" + std::to_string(i);
  EXPECT_EQ(formatInvalidValues("/Case", "Models", List{"k"}, disallowed),
            "The parameter \"Models\" in \"/Case\" holds the following disallowed values: \"" + full +
                "\". (Allowed values are: \"k\".)");
}

TEST(ValidationMessages, InvalidSingleton) {
  EXPECT_EQ(formatInvalidSingleton("/Case", "Solver"),
            "The object \"Solver\" is present in the object \"/Case\" but it is not physically valid.");
}

TEST(ValidationMessages, InvalidNamedObjectOne) {
  EXPECT_EQ(formatInvalidNamedObjs("/Case", "Domain", List{"rotor"}),
            "The object \"Domain: rotor\" is present in the object \"/Case\" but it is not physically valid.");
}

TEST(ValidationMessages, InvalidNamedObjectsSeveral) {
  EXPECT_EQ(formatInvalidNamedObjs("/Case", "Domain", List{"rotor", "stator"}),
            "Objects of type \"Domain\" (names: rotor,stator) are present in the object \"/Case\" but the existence of "
            "this type is not physically valid.");
}

TEST(ValidationMessages, InvalidNamesOne) {
  EXPECT_EQ(formatInvalidNames("/Case", "Domain", List{"rotor", "stator"}, List{"casing"}),
            "The object \"/Case\" contains the following object: \"casing\" whose name is not in the set of those "
            "allowed: \"rotor, stator\".");
}

TEST(ValidationMessages, InvalidNamesSeveral) {
  EXPECT_EQ(formatInvalidNames("/Case", "Domain", List{"a", "b", "c", "d", "e"}, List{"casing", "hub"}),
            "The object \"/Case\" contains the following objects: \"casing,hub\" whose names are not in the set of "
            "those allowed: \"a, b, c, d, ...\".");
}

TEST(ValidationMessages, MissingSingleton) {
  EXPECT_EQ(formatMissingSingleton("/Case", "Solver"),
            "There must be an object of type \"Solver\" in the object \"/Case\" but it does not exist.");
}

TEST(ValidationMessages, MissingNamedObjectOne) {
  EXPECT_EQ(formatMissingNamedObjs("/Case", "Domain", List{"rotor"}),
            "The object \"/Case\" does not contain the Domain object: \"rotor\", which must be present.");
}

TEST(ValidationMessages, MissingNamedObjectsSeveral) {
  EXPECT_EQ(formatMissingNamedObjs("/Case", "Domain", List{"rotor", "stator"}),
            "The object \"/Case\" does not contain the Domain objects: \"rotor,stator\", which must be present.");
}

TEST(ValidationMessages, AnEmptyListTakesThePlural) {
  EXPECT_EQ(formatMissingNamedObjs("/Case", "Domain", List{}),
            "The object \"/Case\" does not contain the Domain objects: \"\", which must be present.");
  EXPECT_EQ(
      formatInvalidNamedObjs("/Case", "Domain", List{}),
      "Objects of type \"Domain\" (names: ) are present in the object \"/Case\" but the existence of this type is "
      "not physically valid.");
}

TEST(ValidationMessages, AValueThatHoldsALaterTokenHasItFilled) {
  EXPECT_EQ(formatMissingParam("/Case", "Share %2 of flow"),
            "The parameter \"Share /Case of flow\" should exist in the object \"/Case\" but is not present.");
}

TEST(ValidationMessages, NoMessageLacksAToken) {
  testing::internal::CaptureStderr();
  List const one{"a"};
  List const two{"a", "b"};
  for (List const& list : {one, two}) {
    EXPECT_NE(formatInvalidValues("p", "n", list, list), "");
    EXPECT_NE(formatInvalidNamedObjs("p", "t", list), "");
    EXPECT_NE(formatInvalidNames("p", "t", list, list), "");
    EXPECT_NE(formatMissingNamedObjs("p", "t", list), "");
  }
  EXPECT_NE(formatMissingParam("p", "n"), "");
  EXPECT_NE(formatInvalidParam("p", "n"), "");
  EXPECT_NE(formatInvalidValue("p", "n", one, "v"), "");
  EXPECT_NE(formatInvalidSingleton("p", "t"), "");
  EXPECT_NE(formatMissingSingleton("p", "t"), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(ValidationMessages, AShortListShowsFourItemsAtMost) {
  EXPECT_EQ(shortList(List{}), "");
  EXPECT_EQ(shortList(List{"a"}), "a");
  EXPECT_EQ(shortList(List{"a", "b", "c"}), "a, b, c");
  EXPECT_EQ(shortList(List{"a", "b", "c", "d"}), "a, b, c, d");
  EXPECT_EQ(shortList(List{"a", "b", "c", "d", "e"}), "a, b, c, d, ...");
  EXPECT_EQ(shortList(numbered("v", 90)), "v1, v2, v3, v4, ...");
}

TEST(ValidationMessages, AShortListSeparatesAnEmptyFirstItem) {
  EXPECT_EQ(shortList(List{"", "b"}), ", b");
}

TEST(ValidationMessages, ASetDifferenceIsSortedAndHoldsEachItemOnce) {
  EXPECT_THAT(setDifferenceOf(List{"b", "a", "b", "ok", "A"}, List{"ok", "other"}), ElementsAre("A", "a", "b"));
  EXPECT_THAT(setDifferenceOf(List{"a"}, List{}), ElementsAre("a"));
  EXPECT_THAT(setDifferenceOf(List{}, List{"a"}), IsEmpty());
  EXPECT_THAT(setDifferenceOf(List{"a", "b"}, List{"b", "a", "a"}), IsEmpty());
}

TEST(ValidationMessages, ASetDifferenceFromASharedListIsTheSame) {
  EXPECT_THAT(setDifferenceOf(List{"b", "a", "b", "ok", "A"}, SharedStrings{"ok", "other"}),
              ElementsAre("A", "a", "b"));
  List items = numbered("v", 400);
  items.push_back("wrong");
  items.push_back("bad");
  EXPECT_THAT(setDifferenceOf(items, SharedStrings(numbered("v", 400))), ElementsAre("bad", "wrong"));
}

}  // namespace
}  // namespace tarn::ValidationMessages
