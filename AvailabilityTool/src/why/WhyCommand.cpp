// `zev why`: why an item of a model is as it is, or why a value is not allowed, as a proof. `zev how`: edits that make
// it otherwise. The answers are those of the editor's commands of the same names.
#include "why/WhyCommand.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <tarn/service/FindingJson.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/ProofJson.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/How.h>
#include <tarn/session/Proof.h>
#include <tarn/session/Refused.h>
#include <tarn/session/WrittenItem.h>

#include "cli/ChoiceOption.h"
#include "cli/EmptyPath.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/RuleFiles.h"
#include "cli/ShellWord.h"
#include "edit/EditArguments.h"
#include "edit/ResultText.h"
#include "edit/ShownText.h"
#include "session/OpenedSession.h"
#include "why/Asked.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

struct WhyOptions {
  SessionArguments arguments;
  std::string asked;
  std::size_t depth = 1;
  bool asJson = false;
};

/// One question of a command line: the session, and what was asked about.
class Question {
 public:
  Question(WhyOptions const& options, std::string command, std::ostream& out, std::ostream& err)
      : options_(options), command_(std::move(command)), out_(out), err_(err), opened_(options.arguments, err) {
    Asked asked = dividedAtEquals(options.asked);
    goal_.value = std::move(asked.value);
    session::KnownItem known = session::knownItem(opened_.session(), asked.path);
    refused_ = std::move(known.refused);
    if (!known.item) {
      if (refused_->code == session::RefusalCode::Unreadable) throw Failure(harmless(refused_->sentence));
      return;
    }
    hasItem_ = true;
    goal_.item = std::move(*known.item);
    if (goal_.value && !goal_.item.isParam()) {
      throw Failure('"' + shortened(goal_.item.text()) +
                    "\" is an object, and has no value; give the path of a parameter before the \"=\"");
    }
  }

  [[nodiscard]] session::Session& session() { return opened_.session(); }
  [[nodiscard]] session::Goal const& goal() const { return goal_; }
  /// Whether the rules know the item.
  [[nodiscard]] bool hasItem() const { return hasItem_; }

  /// The command line with another question.
  [[nodiscard]] std::string line(std::string const& command, session::Goal const& goal,
                                 std::string const& rest = {}) const {
    return commandLine(command, options_.arguments, shellWord(goalText(goal)) + rest);
  }

  [[nodiscard]] Json head() const {
    Json json = {{"schema", service::sessionJsonSchema},
                 {"model", options_.arguments.model},
                 {"root", opened_.session().root()}};
    if (!hasItem_) return json;
    json.update(service::itemAsJson(goal_.item));
    if (goal_.value) json["value"] = *goal_.value;
    return json;
  }

  /// The command line with the item that was probably meant.
  [[nodiscard]] std::optional<std::string> nearest() const {
    if (!refused_ || !refused_->nearest) return std::nullopt;
    Edit const& edit = *refused_->nearest;
    session::Item item{edit.path, std::nullopt};
    if (!edit.name.empty()) item.name = edit.name;
    // A value says that a parameter was meant.
    if (goal_.value && !item.isParam()) return std::nullopt;
    return line(command_, {std::move(item), goal_.value});
  }

  /// Shows a command line, unless a terminal would not show it as it is.
  void propose(char const* what, std::string const& line) const {
    if (harmless(line) == line) err_ << "  " << what << ": " << line << '\n';
  }

  /// Says that the rules know no such item, and what was probably meant.
  [[nodiscard]] int sayUnknown() const {
    auto const proposal = nearest();
    if (options_.asJson) {
      Json json = head();
      json["refused"] = {{"code", refusalName(refused_->code)}, {"sentence", refused_->sentence}};
      json["message"] = refused_->sentence;
      if (proposal) json["command"] = *proposal;
      out_ << service::jsonLine(json) << '\n';
      return FindingsMade;
    }
    err_ << "zev: " << harmless(refused_->sentence) << '\n';
    if (!refused_->possible.empty()) err_ << "  " << possibleText(*refused_) << '\n';
    if (proposal) propose("nearest", *proposal);
    return FindingsMade;
  }

 private:
  WhyOptions const& options_;
  std::string command_;
  std::ostream& out_;
  std::ostream& err_;
  OpenedSession opened_;
  session::Goal goal_;
  bool hasItem_ = false;
  /// Why there is no item of this path; also if the rules know it.
  std::optional<session::Refused> refused_;
};

int why(WhyOptions const& options, std::ostream& out, std::ostream& err) {
  Question question(options, "zev why", out, err);
  if (!question.hasItem()) return question.sayUnknown();
  session::Proof const proof = proofOf(question.session(), question.goal(), options.depth);
  ValueRemarks const remarks = remarksOn(question.session(), question.goal(), proof);
  std::string const text = whyText(proof, remarks, std::numeric_limits<std::size_t>::max());
  if (options.asJson) {
    Json json = question.head();
    json["message"] = firstLine(text);
    if (remarks.refused) json["refused"] = service::refusedAsJson(*remarks.refused);
    if (!remarks.findings.empty()) json["findingsGained"] = service::jsonList(remarks.findings, service::findingAsJson);
    json["proof"] = service::proofAsJson(proof);
    out << service::jsonLine(json) << '\n';
    return NothingFound;
  }
  out << text;
  auto const nearest = question.nearest();
  if (nearest) question.propose("nearest", *nearest);
  if (proof.hidden > 0) {
    question.propose("more",
                     question.line("zev why", question.goal(), " --depth " + std::to_string(options.depth + 1)));
  }
  if (!nearest && isWorthHow(proof)) question.propose("next", question.line("zev how", question.goal()));
  return NothingFound;
}

/// A command line that makes the edits of a way.
std::string editLine(SessionArguments const& arguments, std::vector<Edit> const& made) {
  std::string edits;
  for (Edit const& edit : made) edits += (edits.empty() ? "" : " ") + argumentText(edit);
  return commandLine("zev edit", arguments, edits);
}

int how(WhyOptions const& options, std::ostream& out, std::ostream& err) {
  Question question(options, "zev how", out, err);
  if (!question.hasItem()) return question.sayUnknown();
  session::HowResult const result = question.session().how(question.goal());
  bool const isReached = result.answer == session::HowAnswer::AlreadySo || result.answer == session::HowAnswer::Found;
  int const status = isReached ? NothingFound : FindingsMade;
  if (options.asJson) {
    Json json = question.head();
    json["message"] = firstLine(textOf(result));
    json.update(service::howAsJson(result));
    for (std::size_t i = 0; i < result.ways.size(); ++i) {
      json["ways"][i]["command"] = editLine(options.arguments, result.ways[i].edits);
    }
    out << service::jsonLine(json) << '\n';
    return status;
  }
  out << howText(result, [&](std::vector<Edit> const& edits) {
    std::string const line = editLine(options.arguments, edits);
    return harmless(line) == line ? std::vector<std::string>{line} : std::vector<std::string>();
  });
  return status;
}

void requireItem(std::string const& text) {
  Asked const asked = dividedAtEquals(text);
  if (!asked.path.empty()) return;
  bool const hasValue = asked.value.has_value();
  throw emptyPath("ITEM", hasValue, hasValue ? "PATH=VALUE" : "PATH or PATH=VALUE, or . for the object that is edited");
}

/// The options that both commands have.
CLI::App* addCommand(CLI::App& app, std::string const& name, std::string const& help,
                     std::shared_ptr<WhyOptions> const& options, std::shared_ptr<std::string> const& format) {
  CLI::App* command = app.add_subcommand(name, help);
  addRulesOption(*command, options->arguments.rules);
  command
      ->add_option("--root", options->arguments.root,
                   "The object that is edited, with everything below it; default: the only\none that the rules look at")
      ->type_name("OBJECT");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object on a line");
  command->add_option("MODEL", options->arguments.model, "A file with model text; - is the standard input")
      ->type_name("")
      ->required();
  command->add_option("ITEM", options->asked, "A parameter or an object, or a parameter and a value for it")
      ->type_name("PATH[=VALUE]")
      ->required();
  return command;
}

}  // namespace

void addWhyCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<WhyOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command = addCommand(app, "why", "Explain why an item of a model is as it is", options, format);
  constexpr std::size_t deepest = 1000;
  command->add_option("--depth", options->depth, "Explain what the rules have read as well, so many levels; default: 1")
      ->type_name("N")
      ->check(CLI::Range(std::size_t{1}, deepest).description(""));
  command->footer(
      "Says why an object is there or not, why a parameter is there or not and has its value, and with =VALUE why the\n"
      "value is allowed or not. The answer has the rule and its place, the values that decided, and their origin.\n"
      "A path without a / in front starts at the root object. The first = of PATH=VALUE ends the path.\n"
      "Examples: zev why --rules rules/ pump.tdf 'Domain:rotor/Angular Velocity'\n"
      "          zev why --rules rules/ pump.tdf Domain:rotor/Motion=Swinging\n"
      "Exit status: 0 the question is answered, 1 there is no such item, 2 wrong usage or a file that could not be\n"
      "read.");
  command->callback([options, format, &chosen] {
    requireItem(options->asked);
    options->asJson = *format == "json";
    chosen = [options](std::ostream& out, std::ostream& err) { return why(*options, out, err); };
  });
}

void addHowCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<WhyOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command =
      addCommand(app, "how", "Find edits after which an item is there, or has a value", options, format);
  command->footer(
      "Finds the shortest sequences of edits, up to three, that reach this. Each was tried, says which values would "
      "no\n"
      "longer be in force, and has a command line that makes it. If none is found, the answer says what was tried and\n"
      "what blocks.\n"
      "A path without a / in front starts at the root object. The first = of PATH=VALUE ends the path.\n"
      "Examples: zev how --rules rules/ pump.tdf 'Domain:rotor/Angular Velocity'\n"
      "          zev how --rules rules/ pump.tdf 'Flow Regime=Laminar'\n"
      "Exit status: 0 a way was found, or it is so already, 1 no way was found, or there is no such item, 2 wrong "
      "usage\n"
      "or a file that could not be read.");
  command->callback([options, format, &chosen] {
    requireItem(options->asked);
    options->asJson = *format == "json";
    chosen = [options](std::ostream& out, std::ostream& err) { return how(*options, out, err); };
  });
}

}  // namespace tarn::tool
