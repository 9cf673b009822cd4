// The law of declared reads, over random expressions and models: `RuleReads` names everything that an evaluation reads
// from its model. Code that skips work because nothing has changed relies on that. The expressions call every function,
// with paths of every form.

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <tarn/PhysicsData.h>
#include <tarn/RecordingModel.h>
#include <tarn/RuleReads.h>
#include <tarn/rules/Query.h>
#include <tarn/rules/RuleFunction.h>
#include <tarn/rules/RuleLoader.h>

#include "expression/Functions.h"
#include "support/MapModel.h"

namespace tarn::rules::test {
namespace {

using tarn::test::MapModel;

constexpr std::string_view rulesText = R"yaml(Rule Database: 1
Quantity Types: {Length: {Units: [m, mm]}}
Values:
  limit: 3
  width: = ${A} + ${../B}
  nearest: = name({^Domain})
Lists:
  names: = names({/Case/Domain:*})
  parts: = names(filter({Part:*}, ${A} == 'x'))
  guarded: [u, {Value: v, When: "exists({../Domain:a})"}]
Checks:
  large: any({Part:*}, ${B} > ${@/B})
  calls: check('large') or size(list('parts')) > value('limit')
Objects:
  /Case:
    Parameters: {A: {Parameter Type: String}, B: {Parameter Type: Real, Quantity Type: Length}}
    Children: {Domain: {Coupled: yes}}
  /Case/Domain:
    Parameters: {A: {Parameter Type: String}, B: {Parameter Type: Real, Quantity Type: Length}, C: {Parameter Type: String List}}
    Children: {Part: {Coupled: yes}, Frame: {Singleton: yes, Coupled: yes}}
  /Case/Domain/Part:
    Parameters: {A: {Parameter Type: String}, B: {Parameter Type: Real, Quantity Type: Length}, C: {Parameter Type: Logical}}
    Children: {Frame: {Singleton: yes, Coupled: yes}}
  /Case/Domain/Frame:
    Parameters: {A: {Parameter Type: String}}
  /Case/Domain/Part/Frame:
    Parameters: {A: {Parameter Type: String}}
)yaml";

/// Random expressions of a wanted kind. They need not be right: the parser refuses those that are not.
class RandomExpressions {
 public:
  explicit RandomExpressions(unsigned seed) : random_(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

  /// A call of the function, with arguments of the kinds that it takes.
  std::string call(Function const& function, unsigned depth) {
    std::size_t const most = std::min<std::size_t>(function.most, function.least + 2);
    std::size_t const count = function.least + below(static_cast<unsigned>(most - function.least + 1));
    std::string text(function.name);
    text += '(';
    std::string name;
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) text += ", ";
      bool const isNamed = i == 0 && count > 1 && function.namesObject && below(2) == 0;
      if (isNamed) name = "x" + std::to_string(++names_);
      if (isNamed) text += name + " in ";
      text += argument(function.argument(i), depth);
      if (isNamed) named_.push_back(name);
    }
    if (!name.empty()) named_.pop_back();
    return text + ')';
  }

  std::string condition(unsigned depth) {
    switch (depth == 0 ? below(4) : below(9)) {
      case 0:
        return parameter(false);
      case 1:
        return parameter(false) + " == " + scalar(0);
      case 2:
        return "exists(" + (below(2) == 0 ? parameter(true) : set(0)) + ")";
      case 3:
        return scalar(0) + " in " + list(0);
      case 4:
        return "(" + condition(depth - 1) + " and " + condition(depth - 1) + ")";
      case 5:
        return "(" + condition(depth - 1) + " implies " + condition(depth - 1) + ")";
      case 6:
        return "not " + condition(depth - 1);
      case 7:
        return "(" + scalar(depth - 1) + " < " + number(depth - 1) + ")";
      default:
        return callWithResult(Kind::Truth, depth - 1);
    }
  }

  MapModel model() {
    MapModel result;
    fill(result, "/Case");
    for (char const* domain : {"/Case/Domain:a", "/Case/Domain:b"}) {
      fill(result, domain);
      for (unsigned i = below(4); i > 0; --i) {
        std::string const part = std::string(domain) + "/Part:p" + std::to_string(i);
        fill(result, part);
        if (below(2) == 0) fill(result, part + "/Frame");
      }
      if (below(2) == 0) fill(result, std::string(domain) + "/Frame");
    }
    return result;
  }

 private:
  std::string argument(Argument kind, unsigned depth) {
    unsigned const inner = depth == 0 ? 0 : depth - 1;
    switch (kind) {
      case Argument::Scalar:
      case Argument::Text:
        return scalar(inner);
      case Argument::Number:
        return number(inner);
      case Argument::Condition:
        return condition(inner);
      case Argument::List:
        return list(inner);
      case Argument::Objects:
        return set(inner);
      case Argument::ParameterOrObjects:
        return below(2) == 0 ? parameter(true) : set(inner);
      case Argument::Parameters:
        return parameter(true);
      case Argument::CheckName:
        return below(2) == 0 ? "'large'" : "'calls'";
      case Argument::ListName:
        return std::vector<std::string>{"'names'", "'parts'", "'guarded'"}[below(3)];
      case Argument::ValueName:
        return std::vector<std::string>{"'limit'", "'width'", "'nearest'"}[below(3)];
      case Argument::Pattern:
        return below(2) == 0 ? "'[a-z]+'" : parameter(false);
      case Argument::Branch:
        return scalar(inner);
    }
    return "0";
  }

  std::string callWithResult(Kind kind, unsigned depth) {
    std::vector<Function const*> found;
    for (auto const& function : functionTable()) {
      if (function.result == kind) found.push_back(&function);
    }
    return call(*found[below(static_cast<unsigned>(found.size()))], depth);
  }

  std::string scalar(unsigned depth) {
    switch (depth == 0 ? below(3) : below(6)) {
      case 0:
        return "'x'";
      case 1:
      case 2:
        return parameter(false);
      case 3:
        return number(depth - 1);
      case 4:
        return "(" + scalar(depth - 1) + " + " + scalar(depth - 1) + ")";
      default:
        return callWithResult(Kind::Text, depth - 1);
    }
  }

  std::string number(unsigned depth) {
    switch (depth == 0 ? below(2) : below(4)) {
      case 0:
        return "2";
      case 1:
        return parameter(false);
      case 2:
        return "(" + number(depth - 1) + " * " + number(depth - 1) + ")";
      default:
        return callWithResult(Kind::Number, depth - 1);
    }
  }

  std::string list(unsigned depth) {
    switch (depth == 0 ? below(3) : below(5)) {
      case 0:
        return "('x', 'a')";
      case 1:
        return parameter(false);
      case 2:
        return "list('names')";
      default:
        return callWithResult(Kind::List, depth - 1);
    }
  }

  std::string set(unsigned depth) {
    if (depth > 0 && below(3) == 0) return callWithResult(Kind::Objects, depth - 1);
    return "{" + objects(true) + "}";
  }

  std::string parameter(bool isOfMany) {
    std::string const path = below(3) == 0 ? std::string() : objects(isOfMany);
    return "${" + path + (path.empty() ? "" : "/") + "ABC"[below(3)] + "}";
  }

  std::string objects(bool areMany) {
    static std::vector<std::string> const single = {
        "..",      "@",       "^Domain", "^Case",          "/Case",     "Frame",
        "Part:p1", "@/Frame", "../..",   "/Case/Domain:b", "Part:none", "^Domain/Frame"};
    static std::vector<std::string> const many = {"Part:*",     "/Case/Domain:*", "*",    "**",
                                                  "/Case/**",   "../Domain:*",    "../*", "Part:*/Frame",
                                                  "**/Part:p1", "^Domain/Part:*"};
    std::string const begin =
        !named_.empty() && below(3) == 0 ? named_[below(static_cast<unsigned>(named_.size()))] : "";
    if (!begin.empty() && below(2) == 0) return begin;
    auto const& paths = areMany && below(3) != 0 ? many : single;
    auto const& path = paths[below(static_cast<unsigned>(paths.size()))];
    bool const isRelative = path.front() != '/' && path.front() != '^' && path.front() != '@';
    return begin.empty() || !isRelative ? path : begin + "/" + path;
  }

  void fill(MapModel& model, std::string const& path) {
    static std::vector<std::string> const values = {"x", "a", "2", "3 [mm]", "yes", "a, x", "", "p1"};
    model.add(path);
    for (char const* name : {"A", "B", "C"}) {
      if (below(4) != 0) model.set(path, name, values[below(static_cast<unsigned>(values.size()))]);
    }
  }

  std::mt19937 random_;
  std::vector<std::string> named_;
  unsigned names_ = 0;
};

/// The reads in one model that declared reads cover, seen from one object.
class Declared {
 public:
  Declared(RuleReads const& reads, TDFContext const& context, MapModel const& model)
      : reads_(reads), context_(context), model_(model), looked_(model, 100'000) {
    for (auto const& read : reads.parameters) (void)read.objects.expand(context, looked_);
    for (auto const& set : reads.objectSets) (void)set.expand(context, looked_);
  }

  [[nodiscard]] bool covers(ModelRead const& read) const {
    if (read.isParameter()) return coversParameter(read);
    // A search for the objects of a pattern asks for the same objects and lists.
    return std::any_of(looked_.reads().begin(), looked_.reads().end(),
                       [&](ModelRead const& asked) { return asked.isSameFact(read) || listsObject(asked, read); });
  }

 private:
  /// Whether a list of children shows if the object exists.
  [[nodiscard]] static bool listsObject(ModelRead const& list, ModelRead const& read) {
    bool const isList = list.kind == ModelRead::Kind::Children || list.kind == ModelRead::Kind::ChildrenOfType;
    if (!isList || read.kind != ModelRead::Kind::Object || read.object.empty()) return false;
    std::string const parent = read.object.substr(0, read.object.rfind('/'));
    bool const isOfType = read.object.compare(parent.size() + 1, list.name.size(), list.name) == 0;
    return list.object == parent && (list.kind == ModelRead::Kind::Children || isOfType);
  }

  /// Whether a declared pattern names the object. A parameter can be read of an object that does not exist, which the
  /// pattern names where it does.
  [[nodiscard]] bool coversParameter(ModelRead const& read) const {
    MapModel model = model_;
    if (!read.object.empty()) model.add(read.object);
    return std::any_of(reads_.parameters.begin(), reads_.parameters.end(), [&](RuleReads::Parameter const& declared) {
      if (declared.name != read.name) return false;
      auto const paths = declared.objects.expand(context_, model);
      return std::find(paths.begin(), paths.end(), read.object) != paths.end();
    });
  }

  RuleReads const& reads_;
  TDFContext const& context_;
  MapModel const& model_;
  RecordingModel looked_;
};

TEST(ReadsLaw, DeclaredReadsNameEverythingThatAnEvaluationReads) {
  constexpr unsigned seeds = 60;
  constexpr unsigned rounds = 3;
  constexpr std::size_t leastTaken = 4;
  auto const rules = parseRules(std::string(rulesText));
  std::size_t evaluations = 0;
  std::size_t readsSeen = 0;
  for (auto const& function : functionTable()) {
    std::size_t taken = 0;
    for (unsigned seed = 1; seed <= seeds; ++seed) {
      RandomExpressions random(seed);
      std::string const text = random.call(function, 1 + seed % 3);
      auto const parsed = parseQuery(text, *rules);
      if (!parsed.query) continue;
      ++taken;
      RuleReads reads;
      parsed.query->collectReads(reads);
      ASSERT_FALSE(reads.unknown) << text;
      for (unsigned round = 0; round < rounds; ++round) {
        auto const model = random.model();
        for (std::string const owner : {"/Case/Domain:a", "/Case/Domain:b", "/Case/Domain:a/Part:p1"}) {
          TDFContext const context(owner);
          RecordingModel recording(model, 100'000);
          EvalContext evalContext(&recording);
          (void)parsed.query->evaluate(context, &evalContext);
          ASSERT_FALSE(recording.isOverfull());
          Declared const declared(reads, context, model);
          for (auto const& read : recording.reads()) {
            ++readsSeen;
            ASSERT_TRUE(declared.covers(read))
                << "seed " << seed << ": " << text << "\nat " << owner << " reads " << read.object << " " << read.name
                << ", kind " << static_cast<int>(read.kind);
          }
          ++evaluations;
        }
      }
    }
    EXPECT_GE(taken, leastTaken) << function.name;
  }
  // The law was asked of enough.
  EXPECT_GT(evaluations, 10'000U);
  EXPECT_GT(readsSeen, 30'000U);
}

}  // namespace
}  // namespace tarn::rules::test
