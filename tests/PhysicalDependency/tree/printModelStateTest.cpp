// The block text of a state, to the character, and the law that it loads back to the state it was printed from.

#include <tarn/printModelState.h>

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/TDFChangeFile.h>

namespace tarn {
namespace {

std::string printed(ModelState const& state) {
  std::ostringstream stream;
  printModelState(state, stream);
  return stream.str();
}

TEST(printModelState, AnEmptyStateIsOneBlankLine) {
  EXPECT_EQ(printed({}), "\n");
}

TEST(printModelState, ASingletonWithANamedChildOpensAndClosesBothBlocks) {
  EXPECT_EQ(printed({{"/S/Z:n", {{"p", "v"}}}}),
            "\n"
            "S: \n"
            "  Z: n\n"
            "    p = v\n"
            "  END # Z:n\n"
            "END # S:\n");
}

TEST(printModelState, TheSecondObjectInAParentDoesNotOpenTheParentAgain) {
  EXPECT_EQ(printed({{"/Case/Domain:a", {{"Motion", "Rotating"}}}, {"/Case/Domain:b", {{"Motion", "Stationary"}}}}),
            "\n"
            "Case: \n"
            "  Domain: a\n"
            "    Motion = Rotating\n"
            "  END # Domain:a\n"
            "  Domain: b\n"
            "    Motion = Stationary\n"
            "  END # Domain:b\n"
            "END # Case:\n");
}

TEST(printModelState, ParametersComeInNameOrderAheadOfChildren) {
  EXPECT_EQ(printed({{"/Case", {{"b", "2"}, {"a", "1"}}}, {"/Case/Solver", {{"c", "3"}}}}),
            "\n"
            "Case: \n"
            "  a = 1\n"
            "  b = 2\n"
            "  Solver: \n"
            "    c = 3\n"
            "  END # Solver:\n"
            "END # Case:\n");
}

TEST(printModelState, SeveralLevelsAreClosedFromTheInnermost) {
  EXPECT_EQ(printed({{"/A/B:x/C", {{"p", "1"}}}, {"/D:y", {{"q", "2"}}}}),
            "\n"
            "A: \n"
            "  B: x\n"
            "    C: \n"
            "      p = 1\n"
            "    END # C:\n"
            "  END # B:x\n"
            "END # A:\n"
            "D: y\n"
            "  q = 2\n"
            "END # D:y\n");
}

TEST(printModelState, AnObjectDiffersFromOneOfTheSameNameAndAnotherType) {
  EXPECT_EQ(printed({{"/A:n/X", {{"p", "1"}}}, {"/B:n/X", {{"p", "1"}}}}),
            "\n"
            "A: n\n"
            "  X: \n"
            "    p = 1\n"
            "  END # X:\n"
            "END # A:n\n"
            "B: n\n"
            "  X: \n"
            "    p = 1\n"
            "  END # X:\n"
            "END # B:n\n");
}

TEST(printModelState, ParametersOfTheRootStandOutsideAllBlocks) {
  EXPECT_EQ(printed({{"", {{"Version", "3"}}}, {"/Case", {}}}),
            "\n"
            "Version = 3\n"
            "Case: \n"
            "END # Case:\n");
}

TEST(printModelState, AnEmptyValueLeavesTheBlankBehindTheSign) {
  EXPECT_EQ(printed({{"/Case", {{"Title", ""}}}}), "\nCase: \n  Title = \nEND # Case:\n");
}

TEST(printModelState, ABlockIsOpenedAgainBehindASiblingThatByteOrderPutsAheadOfItsChildren) {
  EXPECT_EQ(printed({{"/A", {{"p", "1"}}}, {"/A B", {{"p", "2"}}}, {"/A/C", {{"p", "3"}}}}),
            "\n"
            "A: \n"
            "  p = 1\n"
            "END # A:\n"
            "A B: \n"
            "  p = 2\n"
            "END # A B:\n"
            "A: \n"
            "  C: \n"
            "    p = 3\n"
            "  END # C:\n"
            "END # A:\n");
}

TEST(printModelState, ANameThatEqualsItsTypeIsNotWrittenAndTheTwoFormsShareABlock) {
  EXPECT_EQ(printed({{"/A/B", {{"p", "1"}}}, {"/A:A/C", {{"q", "2"}}}}),
            "\n"
            "A: \n"
            "  B: \n"
            "    p = 1\n"
            "  END # B:\n"
            "  C: \n"
            "    q = 2\n"
            "  END # C:\n"
            "END # A:\n");
}

TEST(printModelState, ANameThatEqualsItsTypeIsReadBackInTheShortForm) {
  ModelState const state{{"/Case/Domain:Domain", {{"Motion", "Rotating"}}}};
  EXPECT_EQ(printed(state),
            "\n"
            "Case: \n"
            "  Domain: \n"
            "    Motion = Rotating\n"
            "  END # Domain:\n"
            "END # Case:\n");
  ModelState const shortForm{{"/Case/Domain", {{"Motion", "Rotating"}}}};
  EXPECT_EQ(TDFChangeFile({}, {printed(state)}, TDFChangeFile::Strict).toModelState(), shortForm);
}

TEST(printModelState, APathThatCannotBeReadThrows) {
  std::ostringstream stream;
  EXPECT_THROW(printModelState({{"/A/:b", {}}}, stream), Error);
}

TEST(printModelState, AStreamThatHasFailedSwallowsTheText) {
  std::ostringstream stream;
  stream.setstate(std::ios::badbit);
  EXPECT_NO_THROW(printModelState({{"/Case", {{"a", "1"}}}}, stream));
  EXPECT_EQ(stream.str(), "");
}

TEST(printModelState, ALongTextIsTheSameAsItsLines) {
  ModelState state;
  std::string expected = "\nCase: \n";
  for (int i = 10000; i < 20000; ++i) {
    std::string const n = std::to_string(i);
    state["/Case/Domain:" + n]["Angular Velocity"] = n + " [rad/s]";
    expected += "  Domain: " + n + "\n    Angular Velocity = " + n + " [rad/s]\n  END # Domain:" + n + "\n";
  }
  expected += "END # Case:\n";
  EXPECT_TRUE(printed(state) == expected);
}

// --- what is printed loads back
// --------------------------------------------------------------------------------------------

/// The state without entries that hold no parameters and are implied by a path below them. They survive printing or
/// not: only a block that holds nothing at all says that there is an object.
ModelState withoutImpliedEntries(ModelState const& state) {
  ModelState result;
  for (auto const& [path, params] : state) {
    auto const below = state.lower_bound(path + "/");
    bool const implied = below != state.end() && below->first.compare(0, path.size() + 1, path + "/") == 0;
    if (!params.empty() || (!implied && !path.empty())) result.emplace(path, params);
  }
  return result;
}

ModelState loaded(std::string const& text) {
  return TDFChangeFile({}, {text}, TDFChangeFile::Strict).toModelState();
}

TEST(printModelState, OddButLegalTextsLoadBack) {
  ModelState const state{{"", {{"root parameter", "1"}}},
                         {"/Case", {{"Title", "a = b # c : d"}, {"not #1", ""}, {"END", "END # Case:"}}},
                         {"/Case/Domain", {{"Case", "Case:"}, {"Domain", "/Case/Domain=1"}}},
                         {"/Case/Domain:Case", {{"Material", "=Water="}}},
                         {"/Case/Domain:Domain 2/Boundary:inlet  with  blanks", {}},
                         {"/Case/Domain:\xc3\xa4\xc3\xb6\xc3\xbc \xe6\xb0\xb4",
                          {{"Gr\xc3\xb6\xc3\x9f"
                            "e",
                            "1 \xc2\xb5m"}}},
                         {"/Case/Domain:a.b-c#d'e\"f", {{"p,q", "x,,y"}, {"\"quoted\"", "'single'"}}},
                         {"/Case/END", {{"a", "b"}}},
                         {"/Case/Type with blanks:name # with sign", {{"a", "# not a comment"}}},
                         {"/Empty", {}}};
  EXPECT_EQ(loaded(printed(state)), state) << printed(state);
}

TEST(printModelState, RandomStatesLoadBack) {
  // No "=" in types and names, since a block line with one is read as a parameter.
  std::vector<std::string> const types{"Case", "Domain", "A", "A B", "A-B", "Boundary", "END", "x#y", "\xc3\xa4", "Z."};
  std::vector<std::string> const names{"Case", "A",    "inlet 1",      "0", "END # Case",
                                       "#1",   "a  b", "\xe6\xb0\xb4", "~", "!"};
  std::vector<std::string> const params{"p", "Material", "END", "a#b", "Flow Regime", "\xc3\xb6", "x.y", "a  b", "-"};
  std::vector<std::string> const values{"",           "Water",    "a=b",  "# x", "/A/B=c", "A: b",
                                        "1 [m s^-1]", "END # A:", "a,,b", "=",   ":",      "\xe6\xb0\xb4 a"};
  for (unsigned seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    auto const pick = [&](std::vector<std::string> const& from) {
      return from[std::uniform_int_distribution<std::size_t>(0, from.size() - 1)(random)];
    };
    auto const upTo = [&](int limit) { return std::uniform_int_distribution<int>(0, limit)(random); };
    ModelState state;
    for (int objects = upTo(30); objects > 0; --objects) {
      std::string path;
      for (int depth = upTo(4); depth > 0; --depth) {
        std::string const type = pick(types);
        std::string const name = upTo(1) == 0 ? type : pick(names);
        path += "/" + type + (name == type ? "" : ":" + name);
      }
      auto& params_ = state[path];
      for (int count = upTo(4); count > 0; --count) params_[pick(params)] = pick(values);
    }
    ASSERT_EQ(withoutImpliedEntries(loaded(printed(state))), withoutImpliedEntries(state)) << printed(state);
  }
}

}  // namespace
}  // namespace tarn
