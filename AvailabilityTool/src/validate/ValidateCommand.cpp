// `zev validate`: several threads read and judge the models. One thread reports the findings, in the order of the
// models, as soon as the next ones are ready. So a long run prints its findings while it works, only the models that
// are being judged are in memory, and the output does not depend on the number of threads. A model that cannot be read
// is reported, and the others are still judged.
#include "validate/ValidateCommand.h"

#include <algorithm>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <utility>

#include <CLI/CLI.hpp>

#include <tarn/Error.h>
#include <tarn/PertinentRoots.h>
#include <tarn/StringUtilities.h>
#include <tarn/session/Review.h>
#include <tarn/workbench/RuleCoverage.h>

#include "cli/ChoiceOption.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/OrderedResults.h"
#include "cli/Output.h"
#include "cli/PathArgument.h"
#include "cli/Progress.h"
#include "cli/RuleFiles.h"
#include "coverage/CoverageOptions.h"
#include "reports/JsonReport.h"
#include "reports/SarifReport.h"
#include "reports/Summary.h"
#include "reports/TextReport.h"

namespace tarn::tool {

namespace {

enum class Format { Text, Json, Sarif };

struct ValidateOptions {
  std::vector<std::string> rules;
  std::vector<std::string> models;
  session::ReviewOptions review;
  Format format = Format::Text;
  Places places = Places::Hidden;
  bool failOnWarning = false;
  CoverageOptions coverage;
  std::size_t jobs = std::max(1U, std::thread::hardware_concurrency());
};

// The roots in canonical form. A root whose type the rules do not know is a wrong argument, whatever the models hold.
std::vector<std::string> checkedRoots(std::vector<std::string> const& roots, PhysicsData const& rules) {
  PertinentRoots const pertinent(rules);
  std::vector<std::string> checked;
  for (std::string const& root : roots) {
    TDFPath const path = pathArgument("--root", root);
    if (path.size() == 0 || !pertinent.hasType(path.getType(0))) {
      throw Failure("--root: the rules do not look at \"" + root + "\"; give an object of a type among: " +
                    StringUtilities::vectorToString(rules.getPertinentGlobalCheckRoots(), ','));
    }
    requireKnownType("--root", path.getFullPath(), rules);
    if (std::find(checked.begin(), checked.end(), path.getFullPath()) == checked.end()) {
      checked.push_back(path.getFullPath());
    }
  }
  return checked;
}

/// One model and how it was judged.
struct Judged {
  session::Findings findings;
  /// The coverage by this model, when it is asked for.
  std::optional<workbench::RuleCoverage> coverage;
};

/// Reads one model and judges it. `rules` are null when coverage is not asked for.
Judged judgeModel(session::Review const& review, PertinentRoots const& pertinent, PhysicsData const* rules,
                  std::string const& name) {
  ModelText const model = readModelText(name);
  if (!model.faults().empty()) throw ModelFailure(model, !pertinent.objectsIn(model.state()).empty());
  try {
    Judged judged{review.judge(model), std::nullopt};
    session::Findings const& findings = judged.findings;
    if (findings.missingRoots.empty()) {
      if (rules != nullptr) judged.coverage.emplace(*rules).add(model.state());
      return judged;
    }
    throw ModelFailure(name + ": the model has no object \"" + findings.missingRoots.front() +
                       "\"; give --root the path of one that it has");
  } catch (Error const& error) {
    throw ModelFailure(name + ": the validation stopped: " + error.getMessage());
  } catch (std::bad_alloc const&) {
    throw ModelFailure(name + ": there is not enough memory for this model");
  }
}

// Writes what was found in the models, in one format.
class Report {
 public:
  Report(ValidateOptions const& options, std::ostream& out) : options_(options), out_(out) {
    if (options_.format == Format::Sarif) log_.emplace(out_, sarifRules());
  }

  void add(std::string const& model, session::Findings const& findings) {
    if (options_.format == Format::Text) writeTextReport(out_, model, findings, options_.places);
    if (options_.format == Format::Json) writeJsonReport(out_, model, findings);
    if (log_) addToLog(*log_, model, findings);
  }

  void add(std::string const& model, ModelFailure const& failure) {
    if (options_.format == Format::Json) writeJsonFailure(out_, model, failure);
    if (log_) addToLog(*log_, model, failure);
  }

  void finish(int exitStatus) {
    if (log_) log_->finish(exitStatus);
  }

 private:
  ValidateOptions const& options_;
  std::ostream& out_;
  std::optional<SarifLog> log_;
};

int validate(ValidateOptions const& options, std::ostream& out, std::ostream& err) {
  if (std::count(options.models.begin(), options.models.end(), "-") > 1) {
    throw Failure("\"-\" is given twice, but the standard input can be read only once; give it once");
  }
  std::unique_ptr<PhysicsData> const rules = loadRuleFiles(options.rules, err);
  session::ReviewOptions reviewOptions = options.review;
  reviewOptions.roots = checkedRoots(reviewOptions.roots, *rules);
  PertinentRoots const pertinent(*rules);
  session::Review const review(*rules, std::move(reviewOptions));

  PhysicsData const* const covered = options.coverage.isOn() ? rules.get() : nullptr;
  OrderedResults<Judged> results(options.models.size(), options.jobs, [&](std::size_t i) {
    return judgeModel(review, pertinent, covered, options.models[i]);
  });
  Summary summary;
  workbench::RuleCoverage coverage(*rules);
  Report report(options, options.coverage.takesOutput() ? err : out);
  Progress progress(err, standardErrorIsTerminal(), options.models.size());
  for (std::string const& name : options.models) {
    progress.begin(name);
    try {
      Judged const judged = results.next();
      summary.add(judged.findings);
      if (judged.coverage) coverage.add(*judged.coverage);
      progress.hide();
      report.add(name, judged.findings);
    } catch (ModelFailure const& failure) {
      progress.hide();
      print(err, failure);
      summary.addFailure();
      report.add(name, failure);
    }
    flushResults(out);
  }
  int const status = summary.exitStatus(options.failOnWarning);
  report.finish(status);
  flushResults(out);
  err << "zev: " << summary.text() << '\n';
  if (options.coverage.isOn() && !reportCoverage(options.coverage, coverage, out, err)) {
    return std::max<int>(status, FindingsMade);
  }
  return status;
}

}  // namespace

void addValidateCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<ValidateOptions>();
  auto phases = std::make_shared<std::string>("all");
  auto format = std::make_shared<std::string>("text");
  auto failOn = std::make_shared<std::string>("error");
  auto places = std::make_shared<bool>(false);
  auto noPlaces = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand("validate", "Find what is wrong in models");
  addRulesOption(*command, options->rules);
  command
      ->add_option("--root", options->review.roots,
                   "Judge only these objects and everything below; default: all that the rules look at")
      ->type_name("OBJECT")
      ->allow_extra_args(false);
  addChoiceOption(*command, "--phase", *phases, {"dependency", "global", "all"},
                  "dependency, each object by itself; global, the model as a whole; or all, the default");
  command->add_flag("--only-validator", options->review.onlyValidator,
                    "Do not report unknown names, values of the wrong type and values out of bounds");
  addChoiceOption(*command, "--format", *format, {"text", "json", "sarif"},
                  "text, blocks for people, the default; json, one line for each model; or sarif, a SARIF log");
  CLI::Option* const withPlaces = command->add_flag(
      "--places", *places, "Begin each finding of the text with FILE:LINE:COLUMN; the default on a terminal");
  command->add_flag("--no-places", *noPlaces, "Do not show places; the default elsewhere")->excludes(withPlaces);
  addChoiceOption(*command, "--fail-on", *failOn, {"error", "warning"},
                  "The findings for which the exit status is 1; default: errors only");
  command
      ->add_option("-j,--jobs", options->jobs, "Judge up to N models at once; default: the number of processor cores")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, std::size_t{1000}).description(""));
  addCoverageOptions(*command, options->coverage);
  command->add_option("MODEL", options->models, "Files with model text; - is the standard input")
      ->type_name("")
      ->required();
  command->footer(
      "A model is text: one line for each parameter, or nested blocks as \"zev show\" prints them.\n"
      "          /Case/Domain:rotor/Material=Water\n"
      "A model with malformed lines is not judged; the lines are reported instead.\n"
      "Examples: zev validate --rules flow.rules.yaml pump.tdf fan.tdf\n"
      "          zev validate --rules rules/ --root /Case/Domain:rotor --format json - < pump.tdf\n"
      "Findings go to the standard output, and one line that sums them up to the standard error.\n"
      "After --rules, every further *.yaml and every folder with *.rules.yaml belongs to the rules. After --root, an\n"
      "argument that begins with / and is not a file is an object. The last argument is a MODEL if there is no other.\n"
      "Exit status: 0 no errors, 1 errors, with --fail-on warning also warnings, 2 wrong usage or a file that could "
      "not\n"
      "be read.");
  command->callback([options, phases, format, failOn, places, noPlaces, &chosen] {
    static std::map<std::string, PhysicsValidator2::ValType> const phaseOf = {
        {"dependency", PhysicsValidator2::ValDependency},
        {"global", PhysicsValidator2::ValGlobal},
        {"all", PhysicsValidator2::ValAll}};
    options->review.phases = phaseOf.at(*phases);
    options->format = *format == "json" ? Format::Json : *format == "sarif" ? Format::Sarif : Format::Text;
    bool const showPlaces = *places || (!*noPlaces && standardOutputIsTerminal());
    options->places = showPlaces ? Places::Shown : Places::Hidden;
    options->failOnWarning = *failOn == "warning";
    requireSound(options->coverage, options->format == Format::Text);
    chosen = [options](std::ostream& out, std::ostream& err) { return validate(*options, out, err); };
  });
}

std::vector<ListOption> validateListOptions() {
  return {{"--rules", looksLikeRules}, {"--root", looksLikeObject}};
}

}  // namespace tarn::tool
