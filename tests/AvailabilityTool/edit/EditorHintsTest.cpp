// Every command that the editor proposes can be typed, over random dialogues: edits, questions and slips, with several
// rule bases. With TARN_EDITOR_HINTS_COMMANDS each dialogue has that many commands instead of 60, and
// TARN_EDITOR_HINTS_SEED is the first seed.
#include "edit/Editor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <tarn/ModelText.h>
#include <tarn/rules/RuleLoader.h>
#include <tarn/session/Session.h>

#include "Places.h"

namespace tarn::tool {
namespace {

using session::ChildTypeRecord;
using session::Session;

char const* const plantRules = R"yaml(Rule Database: 1
Pertinent Roots: [Plant]
Quantity Types:
  Length: {Units: [m, mm]}
Objects:
  /Plant:
    Parameters:
      Mode: {Required: yes, Parameter Type: String, Ordered Allowed String List: [Batch, Steady], Default Value: Batch}
      Batches: {Available: "${Mode} == 'Batch'", Parameter Type: Integer, Default Value: 3, Lower Bound: 1}
      Fill Level: {Parameter Type: Real, Quantity Type: Length, Upper Bound: "3 [m]"}
      Feed Tank: {Parameter Type: String, Value List Source: "names({/Plant/Tank:*})"}
    Children:
      Tank: {Required: yes, Minimum Count: 0}
      Gauge: {Required: yes, Allowed Names: "= list('gauges')"}
      Lid: {Singleton: yes, Coupled: yes}
      Alarm: {Singleton: yes, Coupled: yes, Available: "exists({/Plant/Lid})"}
  /Plant/Tank:
    Parameters:
      Height: {Required: yes, Parameter Type: Real, Quantity Type: Length, Default Value: "2 [m]"}
      Lining: {Available: "${/Plant/Mode} == 'Steady'", Parameter Type: Logical}
    Children:
      Valve: {Required: yes, Minimum Count: 0}
  /Plant/Tank/Valve:
    Parameters:
      Opening: {Required: yes, Parameter Type: Real, Default Value: 0.5, Lower Bound: 0, Upper Bound: 1}
  /Plant/Gauge:
    Parameters:
      Place: {Required: yes, Parameter Type: String, Default Value: wall}
  /Plant/Lid:
    Parameters:
      Colour: {Parameter Type: String, Ordered Allowed String List: [red, blue]}
  /Plant/Alarm:
    Parameters:
      Delay: {Required: yes, Parameter Type: Real, Default Value: 1}
Lists:
  gauges: "= if(${/Plant/Mode} == 'Batch', ('low', 'high'), ('low', 'middle', 'high'))"
)yaml";

char const* const plantModel =
    "/Plant/Mode=Batch\n/Plant/Tank:north/Height=3 [m]\n/Plant/Tank:south/Valve:v1/Opening=1\n";

unsigned numberFrom(char const* variable, unsigned otherwise) {
  char const* const text = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe)
  return text != nullptr ? static_cast<unsigned>(std::stoul(text)) : otherwise;
}

struct Base {
  std::unique_ptr<PhysicsData> rules;
  ModelText model;
};

Base baseOf(std::string const& name) {
  if (name == "plant") return {rules::parseRules(plantRules), ModelText("plant.tdf", plantModel)};
  std::filesystem::path const folder = std::filesystem::path(TARN_SOURCE_DIR) / "examples" / name;
  std::string const model = name == "flow" ? "sound.tdf" : "house.tdf";
  return {rules::loadRules(folder / "rules"), ModelText::read((folder / "models" / model).string())};
}

/// An editor whose input is not a terminal, so that its answers have no colours and are not divided into lines.
class Dialogue {
 public:
  explicit Dialogue(Base const& base)
      : session_(Session::open(*base.rules, base.model).session),
        screen_(out_, out_, false),
        editor_(*session_, std::nullopt, {}, screen_, nullptr) {}

  Outcome run(std::string const& command) {
    out_.str({});
    return editor_.run(command);
  }
  [[nodiscard]] std::string answer() const { return out_.str(); }
  [[nodiscard]] Session& session() { return *session_; }

 private:
  std::unique_ptr<Session> session_;
  std::ostringstream out_;
  Screen screen_;
  Editor editor_;
};

/// The commands that an answer proposes, each list to be typed in its order.
std::vector<std::vector<std::string>> proposedIn(std::string const& answer) {
  std::regex const proposal(
      "(?:  nearest: |next: )(.*)|\"((?:effects|quit|help|set|on|off|add|remove|copy|rename|list|show|waiting|diff|"
      "findings)(?: [^\"]*)?)\"");
  std::vector<std::vector<std::string>> proposed;
  std::istringstream lines(answer);
  std::string line;
  bool isWay = false;
  while (std::getline(lines, line)) {
    bool const begins = line == "type:" || line == "or:";
    if (begins) proposed.emplace_back();
    if (isWay && line.starts_with("  ")) proposed.back().push_back(line.substr(2));
    isWay = begins || (isWay && line.starts_with("  "));
    if (isWay) continue;
    for (std::sregex_iterator at(line.begin(), line.end(), proposal), end; at != end; ++at) {
      proposed.push_back({(*at)[1].matched ? (*at)[1] : (*at)[2]});
    }
  }
  return proposed;
}

class Typist {
 public:
  Typist(unsigned seed, Session const& session) : random_(seed) {
    std::vector<std::string> open = {session.root()};
    while (!open.empty()) {
      std::string const path = std::move(open.back());
      open.pop_back();
      objects_.push_back(path);
      for (std::string const& name : session.params(path)) {
        params_.push_back(path + '/' + name);
        auto const record = session.lookParam(path, name);
        if (!record) continue;
        if (record->value) values_.insert(*record->value);
        for (std::string const& choice : record->allowed.allowedValues) values_.insert(choice);
      }
      for (ChildTypeRecord const& type : session.childTypes(path)) {
        open.insert(open.end(), type.present.begin(), type.present.end());
        if (type.present.empty()) objects_.push_back(path + '/' + type.type + (type.singleton ? "" : ":new"));
      }
    }
    for (char const* value :
         {"", "3", "-1", "3,5", "1e400", "5 [m]", "2 mm", "7 [furlong]", "yes", "a b", "a=b", "x,y"}) {
      values_.insert(value);
    }
  }

  std::string command() {
    switch (below(20)) {
      case 0:
      case 1:
      case 2:
      case 3:
      case 4:
        return "set " + path() + " = " + value();
      case 5:
        return "on " + path();
      case 6:
        return "off " + path();
      case 7:
        return "add " + path();
      case 8:
        return "remove " + path();
      case 9:
        return "copy " + path() + " = " + name();
      case 10:
        return "rename " + path() + " = " + name();
      case 11:
        return "show " + path();
      case 12:
        return (below(2) == 0 ? "list " : "go ") + path();
      case 13:
        return "why " + path() + (below(2) == 0 ? "" : " = " + value());
      case 14:
        return "how " + path() + (below(2) == 0 ? "" : " = " + value());
      case 15:
        return "try " + command();
      case 16:
        return withSlip(command());
      case 17:
        return below(2) == 0 ? "undo" : "redo";
      case 18:
        return "find " + path();
      default:
        return oneOf({"effects", "effects al", "effects new", "waitin", "mine x", "diff",          "quit now",
                      "undoo",   "redo x",     "exit",        "cd ..",  "ls",     "rm Tank:north", "search e",
                      "?",       "go ..",      "go",          "set",    "add",    "help all"});
    }
  }

 private:
  unsigned below(std::size_t limit) { return static_cast<unsigned>(random_() % limit); }
  std::string oneOf(std::vector<std::string> const& texts) { return texts[below(texts.size())]; }

  std::string path() {
    std::string path = oneOf(below(3) != 0 ? params_ : objects_);
    std::string const root = objects_.front() + '/';
    if (below(3) == 0 && path.starts_with(root)) path.erase(0, root.size());
    std::size_t const colon = path.find(':');
    if (below(8) == 0 && colon != std::string::npos) {
      path.replace(colon + 1, path.find('/', colon) - colon - 1, name());
    }
    return below(4) == 0 ? withSlip(path) : path;
  }
  std::string value() {
    std::string const value = *std::next(values_.begin(), below(values_.size()));
    return below(5) == 0 ? withSlip(value) : value;
  }
  std::string name() { return oneOf({"new", "north", "south", "a b", "a=b", "a/b", "", "upper", "Tank"}); }

  std::string withSlip(std::string text) {
    if (text.empty()) return "x";
    std::size_t const place = below(text.size());
    switch (below(5)) {
      case 0:
        return text.erase(place, 1);
      case 1:
        return text.insert(place, 1, "abc/: =x"[below(8)]);
      case 2:
        std::transform(text.begin(), text.end(), text.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
        return text;
      case 3:
        if (place > 0) std::swap(text[place - 1], text[place]);
        return text;
      default:
        return text + oneOf({":x", "/", "s", "/Height"});
    }
  }

  std::mt19937 random_;
  std::vector<std::string> objects_;
  std::vector<std::string> params_;
  std::set<std::string> values_;
};

bool isDone(Outcome outcome) {
  return outcome == Outcome::Done || outcome == Outcome::Quit || outcome == Outcome::QuitUnsaved;
}

class EditorHints : public testing::TestWithParam<std::string> {
 protected:
  /// A dialogue in the state that these commands lead to.
  static std::unique_ptr<Dialogue> after(Base const& base, std::vector<std::string> const& done) {
    auto dialogue = std::make_unique<Dialogue>(base);
    for (std::string const& command : done) (void)dialogue->run(command);
    return dialogue;
  }
};

TEST_P(EditorHints, WorkWhenTyped) {
  Base const base = baseOf(GetParam());
  unsigned const commands = numberFrom("TARN_EDITOR_HINTS_COMMANDS", 60);
  unsigned const first = numberFrom("TARN_EDITOR_HINTS_SEED", 1);
  std::size_t typed = 0;
  for (unsigned seed = first; seed < first + 3; ++seed) {
    std::vector<std::string> done;
    Typist typist(seed, Dialogue(base).session());
    auto dialogue = after(base, done);
    for (unsigned i = 0; i < commands; ++i) {
      std::string const command = typist.command();
      Outcome const outcome = dialogue->run(command);
      if (outcome == Outcome::Done) done.push_back(command);
      for (std::vector<std::string> const& lines : proposedIn(dialogue->answer())) {
        // The commands for folded effects follow the edit; all others come instead of the command.
        bool const isOfEffect = lines.front().starts_with("effects");
        std::vector<std::string> before = done;
        if (outcome == Outcome::Done && !isOfEffect) before.pop_back();
        auto const again = after(base, before);
        for (std::string const& line : lines) {
          EXPECT_TRUE(isDone(again->run(line))) << line << '\n'
                                                << again->answer() << "proposed after " << command << '\n'
                                                << dialogue->answer() << "seed " << seed;
          ++typed;
        }
      }
      constexpr std::size_t longest = 20;
      if (done.size() == longest || isDone(outcome) != (outcome == Outcome::Done)) {
        done.clear();
        dialogue = after(base, done);
      }
    }
  }
  EXPECT_GT(typed, commands / 3);
}

INSTANTIATE_TEST_SUITE_P(Of, EditorHints, testing::Values("plant", "flow", "heating"),
                         [](auto const& base) { return base.param; });

}  // namespace
}  // namespace tarn::tool
