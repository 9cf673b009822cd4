// One rule database, read by several threads at once. Each test first computes the result of one thread, with a
// database of its own, so that no cache is filled when the threads begin. The preset `tsan` also finds races that
// happen to do no harm.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <latch>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/BasicPhysicsErrorLogger.h>
#include <tarn/BetaLoggingController.h>
#include <tarn/DynamicTDF.h>
#include <tarn/EvalContext.h>
#include <tarn/PathUtils.h>
#include <tarn/PhysicsValidator2.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/QuantityModifier.h>
#include <tarn/TDFChange.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/TDFContext.h>
#include <tarn/rules/RuleLoader.h>

#include "Places.h"

namespace tarn::rules {
namespace {

using testing::ElementsAre;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

using Transcript = std::vector<std::string>;
using Job = std::function<Transcript(PhysicsData const&)>;

/// The transcript of each job, each run on its own thread. The jobs begin together, so that their first look-ups
/// coincide.
std::vector<Transcript> onThreads(std::vector<Job> const& jobs, PhysicsData const& rules) {
  std::latch start(static_cast<std::ptrdiff_t>(jobs.size()));
  std::vector<std::future<Transcript>> running;
  running.reserve(jobs.size());
  for (Job const& job : jobs) {
    running.push_back(std::async(std::launch::async, [&start, &rules, &job] {
      start.arrive_and_wait();
      return job(rules);
    }));
  }
  std::vector<Transcript> said;
  said.reserve(jobs.size());
  for (auto& result : running) said.push_back(result.get());
  return said;
}

std::vector<Transcript> onOneThread(std::vector<Job> const& jobs, PhysicsData const& rules) {
  std::vector<Transcript> said;
  said.reserve(jobs.size());
  for (Job const& job : jobs) said.push_back(job(rules));
  return said;
}

/// Real parameters have the quantity types of the rules, which may depend on the model.
class QuantitiesOfRules final : public QuantityModifier {
 public:
  explicit QuantitiesOfRules(PhysicsData const& rules) noexcept : rules_(rules) {}

  [[nodiscard]] int getQuantityType(ModelTDF const* model, std::string const& objPath, std::string const& name,
                                    std::string& quantityType) const override {
    ParamValueDef const* const values = rules_.getParamValueDef(PathUtils::typePathOf(objPath), name, true);
    if (values == nullptr || !values->quantityType) return 0;
    EvalContext evaluation(model);
    quantityType = values->evaluateQuantityType(rules_.getRules(), TDFContext(objPath), &evaluation);
    return rules_.quantityTypes().contains(quantityType) ? 1 : 0;
  }
  [[nodiscard]] std::string getQuantityUnits(std::string const& quantityType, std::string const&) const override {
    return rules_.findQuantityType(quantityType)->firstUnit();
  }

 private:
  PhysicsData const& rules_;
};

void tell(Transcript& transcript, std::string const& what, std::vector<ProvisionalTDF::ParamId> const& params) {
  for (auto const& [path, name] : params) transcript.push_back(what + ' ' + path + '/' + name);
}

/// All that the last update of `state` came to.
void tellUpdate(Transcript& transcript, ProvisionalTDF const& state) {
  for (auto const& [path, params] : state.getActiveTDFState()) {
    for (auto const& [name, value] : params) {
      transcript.push_back(path + '/' + name + '=' + value);
      for (std::string const& allowed : state.getAllowedParamValues(path, name)) {
        transcript.push_back("  allowed " + allowed);
      }
    }
  }
  tell(transcript, "new", state.getNewlyAvailParams());
  tell(transcript, "modified", state.getModParams());
  tell(transcript, "gone", state.getNewlyUnavailParams());
  for (auto const& [path, name] : state.getAvailPotParams()) transcript.push_back("potential " + path + '/' + name);
  for (auto const& [path, bounds] : state.getModBoundsParams()) {
    transcript.push_back("bounds " + path + ": " + bounds.first + " to " + bounds.second);
  }
  for (auto const& [path, quantity] : state.getModQuantParams())
    transcript.push_back("measures " + path + ": " + quantity);
}

/// Edits the object at `root` of `model`, which belongs to the job, and records each update.
Job editing(ModelState model, std::string root, std::vector<std::string> edits) {
  return [model = std::move(model), root = std::move(root), edits = std::move(edits)](PhysicsData const& rules) {
    DynamicTDF base(false);
    base.initialise(model.begin(), model.end());
    QuantitiesOfRules const quantities(rules);
    ProvisionalTDF state(&rules, &quantities, root);
    state.initialise(&base, {});
    Transcript transcript;
    tellUpdate(transcript, state);
    for (std::string const& edit : edits) {
      TDFChange const change(edit);
      state.activeSetParam(change.getFullPath(), change.name, change.value);
      transcript.push_back("> " + edit);
      tellUpdate(transcript, state);
    }
    return transcript;
  };
}

/// Validates `models` in turn, so that the validator meets other models than the one it knows.
Job validating(std::vector<ModelState> models) {
  return [models = std::move(models)](PhysicsData const& rules) {
    BasicPhysicsErrorLogger findings;
    BetaLoggingController beta;
    PhysicsValidator2 validator(&rules);
    validator.setLogger(&findings);
    validator.setBetaLoggingController(&beta);
    Transcript transcript;
    for (ModelState const& model : models) {
      transcript.push_back("status " + std::to_string(validator.validate(PhysicsValidator2::ValAll, model, {"/Case"})));
      for (auto const& [path, message] : findings.getDependencyErrors()) transcript.push_back(path + ": " + message);
      for (std::string const& message : findings.getGlobalErrors()) transcript.push_back(message);
    }
    return transcript;
  };
}

/// Pipes of a district heating net. The rules contain everything that threads may create on first use: a list that is
/// long enough for an index, fixed and by name; a part that does not depend on the pipe and is kept, `count`; calls of
/// named rules; bounds and a quantity type that depend on the model; and a beta message.
constexpr char const* heatingRules = R"yaml(Rule Database: 1
Pertinent Roots: [Case]
Quantity Types:
  Mass Flow: {Units: [kg s^-1]}
  Volume Flow: {Units: [m^3 s^-1]}
Lists:
  nominal diameters: [DN15, DN20, DN25, DN32, DN40, DN50, DN65, DN80, DN100, DN125, DN150, DN200, DN250, DN300, DN350,
    DN400, DN450, DN500, DN600, DN700, DN800, DN900, DN1000]
Checks:
  net is large: count({/Case/Pipe:*}) > 2
  steam runs: "${/Case/Medium} == 'Steam' and not check('net is large')"
Objects:
  /Case:
    Parameters:
      Medium: {Parameter Type: String, Ordered Allowed String List: [Water, Steam], Default Value: Water, Required: yes}
    Children:
      Pipe: {Required: yes}
  /Case/Pipe:
    Parameters:
      Diameter:
        {Parameter Type: String, Value List Source: list('nominal diameters'), Default Value: DN100, Required: yes}
      Alloy:
        Parameter Type: String
        Required: yes
        Default Value: P235GH
        Ordered Allowed String List:
          [P195GH, P235GH, P265GH, P275NL1, P355N, P355NH, P460N, P460NH, 13CrMo4-5, 10CrMo9-10, 16Mo3, 14MoV6-3,
           X11CrMo5, X20CrMoV11-1, X10CrMoVNb9-1, 1.4301, 1.4306, 1.4307, 1.4401, 1.4404, 1.4541, 1.4571]
      Flow:
        Parameter Type: Real
        Required: yes
        Default Value: 1
        Quantity Type: "= if(${/Case/Medium} == 'Steam', 'Volume Flow', 'Mass Flow')"
        Lower Bound: 0
        Upper Bound: "= if(${/Case/Medium} == 'Steam', 5, 40) * count({/Case/Pipe:*})"
      Steam Trap:
        {Parameter Type: Logical, Available: check('steam runs'), Default Value: yes, Required: yes,
         Reason: Water needs no steam trap.}
      Leak Detection:
        {Parameter Type: Logical, Beta Message: Leak detection is tried out., Default Value: no}
Global Checks:
  large nets carry water:
    Check: check('net is large') implies ${/Case/Medium} == 'Water'
    Message: A large net carries water.
)yaml";

ModelState waterNet() {
  return {{"/Case", {{"Medium", "Water"}}},
          {"/Case/Pipe:feed", {{"Alloy", "P235GH"}, {"Diameter", "DN200"}, {"Flow", "12"}, {"Leak Detection", "yes"}}},
          {"/Case/Pipe:return", {{"Alloy", "P265GH"}, {"Diameter", "DN175"}, {"Flow", "12"}}},
          {"/Case/Pipe:bypass", {{"Alloy", "Lead"}, {"Diameter", "DN50"}, {"Flow", "1"}, {"Steam Trap", "yes"}}}};
}

ModelState steamNet() {
  return {{"/Case", {{"Medium", "Steam"}}},
          {"/Case/Pipe:main", {{"Alloy", "1.4571"}, {"Diameter", "DN1000"}, {"Flow", "3"}}}};
}

/// Threads are scheduled otherwise each time.
constexpr int rounds = 5;

TEST(RuleDatabaseThreads, StatesAndValidatorsOnFourThreadsFindWhatTheyFindOnOne) {
  ModelState oilNet = waterNet();
  oilNet["/Case"]["Medium"] = "Oil";
  std::vector<Job> const jobs = {
      editing(waterNet(), "/Case",
              {"/Case/Pipe:feed/Diameter=DN1000", "/Case/Medium=Steam", "/Case/Pipe:feed/Flow=90"}),
      editing(steamNet(), "/Case", {"/Case/Pipe:main/Alloy=1.4404", "/Case/Medium=Water", "/Case/Medium=Steam"}),
      validating({waterNet(), steamNet()}),
      validating({steamNet(), waterNet(), oilNet}),
  };
  std::vector<Transcript> const expected = onOneThread(jobs, *parseRules(heatingRules));
  ASSERT_THAT(expected[0], testing::IsSupersetOf({"/Case/Pipe:feed/Diameter=DN1000", "  allowed 1.4571",
                                                  "measures /Case/Pipe:feed/Flow: Volume Flow",
                                                  "bounds /Case/Pipe:feed/Flow: 0 to 15"}));
  ASSERT_THAT(expected[2], ElementsAre("status 1", StartsWith("/Case/Pipe:bypass: The parameter \"Alloy\""),
                                       StartsWith("/Case/Pipe:bypass: The parameter \"Steam Trap\""),
                                       "/Case/Pipe:feed/Leak Detection: Leak detection is tried out.",
                                       StartsWith("/Case/Pipe:return: The parameter \"Diameter\""), "status 1",
                                       StartsWith("/Case/Pipe:main: The parameter \"Steam Trap\"")));
  ASSERT_THAT(expected[3], testing::Contains("A large net carries water."));

  for (int round = 0; round < rounds; ++round) {
    auto const rules = parseRules(heatingRules);
    EXPECT_EQ(onThreads(jobs, *rules), expected);
  }
}

TEST(RuleDatabaseThreads, RuleFilesOfAWholeCaseServeFourThreadsAsWellAsOne) {
  std::string const folder = TARN_SOURCE_DIR "/examples/flow";
  auto const model = [&](std::string const& name) {
    return TDFChangeFile({folder + "/models/" + name}, {}, TDFChangeFile::Strict).toModelState();
  };
  std::vector<Job> const jobs = {
      editing(model("sound.tdf"), "/Case",
              {"/Case/Flow Regime=Laminar", "/Case/Analysis/Analysis Type=Transient", "/Case/Energy Equation=no"}),
      editing(model("faulty.tdf"), "/Case", {"/Case/Energy Equation=yes", "/Case/Speed Range=High Speed"}),
      validating({model("faulty.tdf"), model("sound.tdf")}),
      validating({model("sound.tdf"), model("early.tdf"), model("faulty.tdf")}),
  };
  std::vector<Transcript> const expected = onOneThread(jobs, *loadRules({folder + "/rules"}));
  ASSERT_THAT(expected[2], SizeIs(testing::Gt(5U)));

  auto const rules = loadRules({folder + "/rules"});
  EXPECT_EQ(onThreads(jobs, *rules), expected);
}

TEST(RuleDatabaseThreads, FourThreadsLoadRulesWithUnitsAndPatternsAtOnce) {
  Job const load = [](PhysicsData const&) {
    auto const rules = parseRules(
        "Rule Database: 1\n"
        "Quantity Types: {Time: {Units: [s, ms, min, widget]}, Length: {Units: [m, in]}}\n"
        "Objects:\n"
        "  /Chip: {Parameters: {Label: {Parameter Type: String, Pattern: '[A-Z]+'}}}\n");
    auto const* label = rules->getParamValueDef("/Chip", "Label", true);
    return Transcript{std::to_string(*rules->findQuantityType("Time")->numberOf("500 [ms]")),
                      std::to_string(*rules->findQuantityType("Length")->numberOf("2 [in]")),
                      rules->unitConverter()->convert(1, "kV", "V") ? "converts" : "does not convert",
                      label->pattern->matches("TX") && !label->pattern->matches("tx") ? "matches" : "does not match"};
  };
  Transcript const expected = {"0.500000", "0.050800", "converts", "matches"};
  EXPECT_THAT(onThreads({load, load, load, load}, PhysicsData()), testing::Each(expected));
}

TEST(RuleDatabaseThreads, EightThreadsMayBeTheFirstToSearchALongList) {
  for (int round = 0; round < rounds; ++round) {
    auto const rules = parseRules(heatingRules);
    // Handing the list on puts threads in order, and would hide what they do to it at once.
    std::latch haveList(8);
    std::vector<Job> const jobs(8, [&haveList](PhysicsData const& shared) {
      ParamValueDef const* const alloy = shared.getParamValueDef("/Case/Pipe", "Alloy", true);
      DynamicTDF const none(false);
      EvalContext evaluation(&none);
      SharedStrings const alloys = alloy->allowedValues->evaluate(TDFContext("/Case/Pipe:feed"), &evaluation);
      haveList.arrive_and_wait();
      Transcript said;
      for (char const* const asked : {"P195GH", "1.4571", "Lead"}) {
        said.push_back(std::string(asked) + (alloys.contains(asked) ? " is listed" : " is not listed"));
      }
      return said;
    });
    EXPECT_THAT(onThreads(jobs, *rules),
                testing::Each(ElementsAre("P195GH is listed", "1.4571 is listed", "Lead is not listed")));
  }
}

TEST(RuleDatabaseThreads, BetaMessagesReachTheControllerOfTheThreadThatCausedThem) {
  ModelState const tried = {{"/Case", {{"Medium", "Water"}}}, {"/Case/Pipe:feed", {{"Leak Detection", "yes"}}}};
  ModelState plain = tried;
  plain["/Case/Pipe:feed"].erase("Leak Detection");
  auto const isBeta = testing::Contains("/Case/Pipe:feed/Leak Detection: Leak detection is tried out.");

  for (int round = 0; round < rounds; ++round) {
    auto const rules = parseRules(heatingRules);
    auto const said = onThreads({validating({tried}), validating({plain}), validating({tried})}, *rules);
    EXPECT_THAT(said, ElementsAre(isBeta, Not(isBeta), isBeta));
  }
}

}  // namespace
}  // namespace tarn::rules
