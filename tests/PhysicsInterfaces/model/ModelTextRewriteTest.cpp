#include <tarn/ModelTextRewrite.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <tarn/Error.h>
#include <tarn/ModelText.h>

namespace {

using tarn::ModelState;
using tarn::ModelText;
using tarn::rewriteModelText;

std::string const pump =
    "# Pump 7, second try\n"
    "Case:\n"
    "  Flow Regime   = Turbulent\n"
    "  Time Step     = 1e-3 [s]\n"
    "\n"
    "  # the impeller\n"
    "  Domain: rotor\n"
    "    Motion = Rotating   \n"
    "    # measured in March\n"
    "    Angular Velocity = 120.50 [rad/s]\n"
    "  END # Domain:rotor\n"
    "  Domain: stator\n"
    "  END # Domain:stator\n"
    "END # Case:\n";

ModelState stateOf(std::string const& text) {
  ModelText const read("<test>", text);
  EXPECT_EQ(read.faultCount(), 0U) << text;
  return read.state();
}

std::string withChange(std::string const& text, void (*change)(ModelState&)) {
  ModelState state = stateOf(text);
  change(state);
  return rewriteModelText(text, state);
}

std::string replaced(std::string text, std::string const& from, std::string const& to) {
  std::size_t const at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

TEST(ModelTextRewrite, AnUnchangedStateKeepsEveryByte) {
  for (std::string const& text :
       {pump, std::string("\xEF\xBB\xBF# made by hand\r\n/Case/A=1\r\n\t/Case/B = 2 \r\n/Case/Domain:x/\r\nTitle=none"),
        std::string(), std::string("# nothing here"), std::string("/A:A/B=1\n")}) {
    EXPECT_EQ(rewriteModelText(text, stateOf(text)), text);
  }
}

TEST(ModelTextRewrite, AChangedValueIsReplacedInItsLine) {
  EXPECT_EQ(withChange(pump,
                       [](ModelState& state) {
                         state["/Case/Domain:rotor"]["Motion"] = "Stationary";
                         state["/Case"]["Time Step"] = "0.002 [s]";
                       }),
            replaced(replaced(pump, "Motion = Rotating   ", "Motion = Stationary   "), "1e-3 [s]", "0.002 [s]"));
}

TEST(ModelTextRewrite, AValueComesAndGoesWithTheBlanksOfItsLine) {
  EXPECT_EQ(rewriteModelText("/Case/A = \n/Case/B=\n/Case/C =\n/Case/D = 4\n",
                             {{"/Case", {{"A", "1"}, {"B", "2"}, {"C", "3"}, {"D", ""}}}}),
            "/Case/A = 1\n/Case/B=2\n/Case/C = 3\n/Case/D = \n");
}

TEST(ModelTextRewrite, OfAParameterGivenTwiceTheFirstLineCounts) {
  std::string const text = "/Case/A=1\n/Case/B=2\n/Case/A=3\n";
  EXPECT_EQ(rewriteModelText(text, {{"/Case", {{"A", "5"}, {"B", "2"}}}}), "/Case/A=5\n/Case/B=2\n/Case/A=3\n");
  EXPECT_EQ(rewriteModelText(text, {{"/Case", {{"B", "2"}}}}), "/Case/B=2\n");
}

TEST(ModelTextRewrite, ANewParameterIsWrittenNextToThoseOfItsObject) {
  EXPECT_EQ(withChange(pump,
                       [](ModelState& state) {
                         state["/Case"]["Gravity"] = "9.81 [m/s^2]";
                         state["/Case/Domain:rotor"]["Axis"] = "z";
                         state["/Case/Domain:stator"]["Title"] = "casing";
                       }),
            replaced(replaced(replaced(pump, "Turbulent\n", "Turbulent\n  Gravity       = 9.81 [m/s^2]\n"),
                              "    # measured in March\n    Angular Velocity = 120.50 [rad/s]\n",
                              "    # measured in March\n    Angular Velocity = 120.50 [rad/s]\n    Axis = z\n"),
                     "  Domain: stator\n", "  Domain: stator\n    Title = casing\n"));
}

TEST(ModelTextRewrite, ANewParameterFollowsAGivenOrder) {
  std::vector<std::string> const rules = {"Motion", "Axis", "Angular Velocity", "Level"};
  auto const order = [&rules](std::string const& /*path*/, std::string const& name) {
    return static_cast<std::size_t>(std::find(rules.begin(), rules.end(), name) - rules.begin());
  };
  std::string const text = "# the impeller\n/D:r/Angular Velocity=1\n/D:r/Other=2\n";
  ModelState state = stateOf(text);
  state["/D:r"]["Axis"] = "z";
  state["/D:r"]["Motion"] = "Rotating";
  state["/D:r"]["Level"] = "3";
  EXPECT_EQ(rewriteModelText(text, state, order),
            "/D:r/Motion=Rotating\n/D:r/Axis=z\n# the impeller\n/D:r/Angular Velocity=1\n/D:r/Level=3\n/D:r/Other=2\n");
}

TEST(ModelTextRewrite, AnObjectThatIsGoneTakesItsBlockWithIt) {
  EXPECT_EQ(withChange(pump, [](ModelState& state) { state.erase("/Case/Domain:rotor"); }),
            "# Pump 7, second try\n"
            "Case:\n"
            "  Flow Regime   = Turbulent\n"
            "  Time Step     = 1e-3 [s]\n"
            "\n"
            "  # the impeller\n"
            "  Domain: stator\n"
            "  END # Domain:stator\n"
            "END # Case:\n");
  EXPECT_EQ(rewriteModelText("# a\n/Case/D:x/\n# b\n/Case/D:x/E:y/P=1\n/Case/Q=2\n", {{"/Case", {{"Q", "2"}}}}),
            "# a\n# b\n/Case/Q=2\n");
}

TEST(ModelTextRewrite, AnObjectThatLosesItsParametersIsStillThere) {
  EXPECT_EQ(rewriteModelText("/Case/D:x/P=1\n/Case/D:y/P=2\n", {{"/Case/D:x", {}}, {"/Case/D:y", {{"P", "2"}}}}),
            "/Case/D:x/\n/Case/D:y/P=2\n");
  EXPECT_EQ(withChange(pump, [](ModelState& state) { state["/Case/Domain:rotor"].clear(); }),
            replaced(replaced(pump, "    Motion = Rotating   \n", ""), "    Angular Velocity = 120.50 [rad/s]\n", ""));
}

TEST(ModelTextRewrite, ANewObjectIsABlockAfterThoseOfItsType) {
  EXPECT_EQ(withChange(pump,
                       [](ModelState& state) {
                         state["/Case/Domain:inlet"]["Motion"] = "Stationary";
                         state["/Case/Domain:inlet/Boundary:in"]["Kind"] = "Inlet";
                         state["/Case/Domain:inlet/Heat"];
                         state["/Case/Output"]["Every"] = "10";
                         state["/Library"]["Path"] = "lib";
                       }),
            replaced(pump, "  END # Domain:stator\nEND # Case:\n",
                     "  END # Domain:stator\n"
                     "  Domain: inlet\n"
                     "    Motion = Stationary\n"
                     "    Boundary: in\n"
                     "      Kind = Inlet\n"
                     "    END # Boundary:in\n"
                     "    Heat:\n"
                     "    END # Heat:\n"
                     "  END # Domain:inlet\n"
                     "  Output:\n"
                     "    Every = 10\n"
                     "  END # Output:\n"
                     "END # Case:\n"
                     "Library:\n"
                     "  Path = lib\n"
                     "END # Library:\n"));
}

TEST(ModelTextRewrite, ANewObjectIsWrittenLineByLineWhereTheModelIs) {
  EXPECT_EQ(rewriteModelText("/Case/A=1\r\n/Case/D:x/P=1\r\n/Case/D:x/E:e/P=1\r\n/Case/Z:z/P=1",
                             {{"/Case", {{"A", "1"}}},
                              {"/Case/D:x", {{"P", "1"}}},
                              {"/Case/D:x/E:e", {{"P", "1"}}},
                              {"/Case/D:y", {{"P", "1"}, {"Q", "2"}}},
                              {"/Case/D:y/E:e", {}},
                              {"/Case/Z:z", {{"P", "1"}}},
                              {"/Other", {{"B", "3"}}}}),
            "/Case/A=1\r\n/Case/D:x/P=1\r\n/Case/D:x/E:e/P=1\r\n/Case/D:y/P=1\r\n/Case/D:y/Q=2\r\n/Case/D:y/E:e/\r\n"
            "/Case/Z:z/P=1\r\n/Other/B=3\r\n");
}

TEST(ModelTextRewrite, AnEmptyTextGetsBlocks) {
  EXPECT_EQ(rewriteModelText("", {{"", {{"Title", "none"}}}, {"/Case", {{"A", "1"}}}, {"/Case/D:x", {}}}),
            "/Title=none\nCase:\n  A = 1\n  D: x\n  END # D:x\nEND # Case:\n");
}

TEST(ModelTextRewrite, AnAbsoluteLineInARemovedBlockStays) {
  EXPECT_EQ(rewriteModelText("D: x\n  P = 1\n  /E/Q=2\nEND # D:x\n", {{"/E", {{"Q", "2"}}}}), "  /E/Q=2\n");
}

TEST(ModelTextRewrite, NamesThatEqualTheirTypesAreNoNames) {
  EXPECT_EQ(rewriteModelText("/Case:Case/A=1\n", {{"/Case", {{"A", "1"}, {"B", "2"}}}}),
            "/Case:Case/A=1\n/Case:Case/B=2\n");
}

TEST(ModelTextRewrite, WhatTextCannotHoldIsRefused) {
  auto const messageFor = [](ModelState const& state) -> std::string {
    try {
      return rewriteModelText("/Case/A=1\n", state);
    } catch (tarn::Error const& error) {
      return error.getMessage();
    }
  };
  std::string const remedy =
      " cannot be written as model text; a value cannot hold a line end or white space at its ends, and a name cannot "
      "hold a sign of the text such as \"=\"";
  EXPECT_EQ(messageFor({{"/Case", {{"A", "1\n2"}}}}), "the value \"1?2\" of the parameter \"/Case/A\"" + remedy);
  EXPECT_EQ(messageFor({{"/Case", {{"A", " 1"}}}}), "the value \" 1\" of the parameter \"/Case/A\"" + remedy);
  EXPECT_EQ(messageFor({{"/Case", {{"A", "1"}, {"B=C", "2"}}}}),
            "the value \"2\" of the parameter \"/Case/B=C\"" + remedy);
}

TEST(ModelTextRewrite, AMalformedTextIsRefusedWithItsPlace) {
  try {
    (void)rewriteModelText("/Case/A=1\n  Domain rotor\n", {});
    FAIL();
  } catch (tarn::ParseError const& error) {
    EXPECT_TRUE(error.getMessage().starts_with("2:3: ")) << error.getMessage();
  }
}

// Random texts and states, so that blocks, lines, comments and repeated parameters meet in all ways.

class RandomText {
 public:
  explicit RandomText(unsigned seed) : random_(seed) {}

  ModelState state() {
    ModelState state;
    for (std::size_t i = below(8); i > 0; --i) {
      auto& params = state[path()];
      for (std::size_t k = below(4); k > 0; --k) params[pick({"A", "B", "Long Name", "Z"})] = value();
    }
    return state;
  }

  std::string text() {
    std::string const usual = below(4) == 0 ? "\r\n" : "\n";
    // Editors of several systems may have worked on one file.
    bool const isMixed = below(8) == 0;
    std::string end = usual;
    std::string text = below(8) == 0 ? "\xEF\xBB\xBF" : "";
    std::vector<std::string> open;
    for (std::size_t i = below(30); i > 0; --i) {
      if (isMixed) end = pick({"\n", "\r\n"});
      std::string const indent(open.size() * (1 + below(3)), below(4) == 0 ? '\t' : ' ');
      switch (below(8)) {
        case 0:
          text += pick({"# a comment", "", "   "}) + end;
          break;
        case 1:
        case 2: {
          open.push_back(component());
          std::size_t const colon = std::min(open.back().find(':'), open.back().size());
          std::string const name = open.back().substr(std::min(colon + 1, open.back().size()));
          text += indent + open.back().substr(0, colon) + ": " + name + end;
          break;
        }
        case 3:
          if (!open.empty()) text += closing(open) + end;
          break;
        case 4:
          text += path() + "/" + end;
          break;
        case 5:
          text += path() + "/" + pick({"A", "B", "Z"}) + pick({"=", " = ", "= "}) + value() + end;
          break;
        default:
          text += indent + pick({"A", "B", "Long Name"}) + pick({"=", " = ", "    = ", "\t=\t"}) + value() +
                  pick({"", " ", "\t"}) + end;
      }
    }
    while (!open.empty()) text += closing(open) + end;
    if (below(4) == 0 && text.size() > 3 && text.ends_with(end)) text.resize(text.size() - end.size());
    return text;
  }

 private:
  std::size_t below(std::size_t end) { return random_() % end; }
  std::string pick(std::vector<std::string> const& from) { return from[below(from.size())]; }
  std::string component() { return pick({"Case", "Domain:a", "Domain:b", "Case B", "Heat", "Heat:Heat"}); }
  std::string value() { return pick({"1", "2.50", "", "two words"}); }
  std::string path() {
    std::string path;
    for (std::size_t i = 1 + below(3); i > 0; --i) path += '/' + component();
    return path;
  }
  static std::string closing(std::vector<std::string>& open) {
    std::string text = "END # " + open.back();
    if (open.back().find(':') == std::string::npos) text += ':';
    open.pop_back();
    return text;
  }

  std::mt19937 random_;
};

std::vector<std::string> linesOf(std::string const& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t const end = std::min(text.find('\n', begin), text.size() - 1) + 1;
    lines.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return lines;
}

// The operation checks by itself that the result gives the state. So this looks at what it must keep.
TEST(ModelTextRewrite, RandomTextsBecomeRandomStatesAndBack) {
  for (unsigned seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomText random(seed);
    std::string const text = random.text();
    ModelState const before = stateOf(text);
    // An object that is spelt in two ways may have two values. The state of the text has both; a state of the library,
    // which names objects in one way, has one.
    bool const isSpeltInOneWay = text.find("Heat:") == std::string::npos;
    if (isSpeltInOneWay) {
      ASSERT_EQ(rewriteModelText(text, before), text);
    }
    ModelState const state = random.state();
    std::string const changed = rewriteModelText(text, state);
    ASSERT_EQ(rewriteModelText(changed, state), changed) << text;
    ASSERT_EQ(rewriteModelText(changed, stateOf(changed)), changed) << text;
    ASSERT_NO_THROW((void)rewriteModelText(changed, before)) << text;
  }
}

TEST(ModelTextRewrite, OneRandomChangeTouchesNoOtherLine) {
  for (unsigned seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    RandomText random(seed);
    std::string const text = random.text();
    ModelState state = stateOf(text);
    auto& params = state["/Case"];
    params["A"] = "changed";
    std::vector<std::string> const before = linesOf(text);
    std::vector<std::string> const after = linesOf(rewriteModelText(text, state));
    std::size_t same = 0;
    for (std::size_t a = 0, b = 0; a < before.size(); ++a) {
      std::size_t const at = static_cast<std::size_t>(
          std::find(after.begin() + static_cast<std::ptrdiff_t>(b), after.end(), before[a]) - after.begin());
      if (at == after.size()) continue;
      b = at + 1;
      ++same;
    }
    // One line changes its value, or one is new, possibly with the two lines of a block, and the last one may get a
    // line end.
    ASSERT_GE(same + 2, before.size()) << text;
    ASSERT_LE(after.size(), before.size() + 3) << text;
  }
}

}  // namespace
