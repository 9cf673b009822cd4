// `zev edit`. With edits on the command line it makes them as one, says what became of them, and saves the model.
// Without them it is the editor for people.
#include "edit/EditCommand.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <tarn/Error.h>
#include <tarn/ModelTextRewrite.h>
#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/RuleFiles.h"
#include "cli/ShellWord.h"
#include "edit/EditArguments.h"
#include "edit/ItemText.h"
#include "edit/ResultText.h"
#include "edit/RunEditor.h"
#include "edit/ShownText.h"
#include "session/OpenedSession.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;

struct EditOptions {
  SessionArguments arguments;
  std::vector<EditArgument> edits;
  /// The file to write; "-" is the standard output. Empty: none.
  std::string out;
  bool inPlace = false;
  bool overwrite = false;
  bool dryRun = false;
  bool followReferences = false;
  bool asJson = false;

  [[nodiscard]] session::References references() const {
    return followReferences ? session::References::Follow : session::References::Stay;
  }
};

/// The whole command line with other edits: it can be copied and run.
std::string commandLineOf(EditOptions const& options, std::vector<Edit> const& edits) {
  std::string rest;
  for (Edit const& edit : edits) rest += (rest.empty() ? "" : " ") + argumentText(edit);
  if (!options.out.empty()) rest += " --out " + shellWord(options.out);
  if (options.inPlace) rest += " --in-place";
  if (options.overwrite) rest += " --overwrite";
  if (options.dryRun) rest += " --dry-run";
  if (options.followReferences) rest += " --follow-references";
  if (options.asJson) rest += " --format json";
  return commandLine("zev edit", options.arguments, rest);
}

/// Saves the result where the options say. Returns the name of the file, or nothing if there was nothing to write to.
std::optional<std::string> save(EditOptions const& options, OpenedSession& opened, std::ostream& out) {
  session::ModelFile& file = *opened.file();
  ModelTextOrder const order = session::orderOfRules(opened.rules());
  ModelState const result = opened.session().result();
  std::optional<session::SaveError> error;
  if (options.inPlace) {
    error = file.save(result, order);
  } else if (options.out == "-") {
    out << rewriteModelText(file.bytes(), result, order);
    return options.out;
  } else if (!options.out.empty()) {
    error =
        file.saveAs(options.out, result, order, options.overwrite ? session::Overwrite::Yes : session::Overwrite::No);
  } else {
    return std::nullopt;
  }
  if (!error) return file.name();
  std::string message = error->sentence;
  if (error->fault == session::SaveFault::FileChanged && !options.inPlace) {
    message = '"' + options.out + "\" is there already; give another name, or --overwrite to replace it";
  } else if (error->fault == session::SaveFault::FileChanged) {
    message = '"' + options.arguments.model +
              "\" has been changed by someone else since it was read; nothing was written, run again";
  }
  throw Failure(message);
}

void writeFindings(std::ostream& out, std::string const& title, std::vector<session::Finding> const& findings) {
  if (findings.empty()) return;
  out << title << '\n';
  for (session::Finding const& finding : findings) {
    out << "    " << severityName(finding.severity) << ": " << harmless(finding.message) << '\n';
  }
}

/// The fate of one of several edits, as the end of its line.
std::string fateOf(Edit const& edit, session::Effect const& effect) {
  bool const isOfParam = edit.kind == Edit::Kind::SetParam || edit.kind == Edit::Kind::ActivateParam;
  for (session::WaitingChange const& change : effect.waiting) {
    bool const isOfEdit = change.item.path == edit.path && change.item.name.has_value() == isOfParam &&
                          (!isOfParam || *change.item.name == edit.name);
    if (isOfEdit && change.after) return "   waits: " + whyWaiting(*change.after);
  }
  if (edit.kind != Edit::Kind::SetParam) return {};
  for (session::ValueChange const& change : effect.values) {
    if (change.path != edit.path || change.name != edit.name || !change.before) continue;
    return "   was " + (change.before->empty() ? "without a value" : shortened(*change.before));
  }
  return {};
}

/// Whether a renaming caused the edit.
bool isFollowed(Edit const& edit, session::EditResult const& result) {
  return std::any_of(result.followed.begin(), result.followed.end(), [&](session::FollowedReference const& followed) {
    return edit == Edit::setParam(followed.item.path, *followed.item.name, followed.after);
  });
}

/// The items that the model or the edits ask for and that are not in force, so that a file does not have them. Items
/// that were switched off are not meant to be in the file.
std::vector<session::Waiting> leftOut(session::Session const& session) {
  std::vector<session::Waiting> waiting = session.waiting();
  std::erase_if(waiting,
                [](session::Waiting const& waits) { return waits.reason == session::WaitingReason::SwitchedOff; });
  return waiting;
}

class EditRun {
 public:
  EditRun(EditOptions const& options, std::ostream& out, std::ostream& err)
      : options_(options), out_(out), err_(err), opened_(options.arguments, err) {
    for (EditArgument const& edit : options.edits) edits_.push_back(editOf(edit, opened_.session()));
  }

  int run() {
    std::size_t const left = countLeft();
    session::TryResult tried;
    if (options_.dryRun) {
      tried = opened_.session().tryWithFindings(edits_, options_.references());
    } else {
      tried.result = opened_.session().edit(edits_, options_.references());
    }
    if (tried.result.refused) proposal_ = workingLine(*tried.result.refused);
    std::optional<std::string> written;
    if (tried.result.applied() && !options_.dryRun) written = save(options_, opened_, out_);
    // With the model on the standard output, the report goes where messages go.
    std::ostream& report = written == "-" ? err_ : out_;
    if (options_.asJson) {
      writeJson(report, tried, written);
    } else {
      writeText(report, tried);
    }
    sayWhatWasWritten(tried.result, written);
    if (left > 0) {
      err_ << "zev: " << counted(left, "value") << (left == 1 ? " names" : " name")
           << " a renamed object and would follow it with --follow-references.\n";
    }
    return tried.result.applied() ? NothingFound : FindingsMade;
  }

 private:
  /// The whole command line with the nearest possible edits instead of those that were refused. Nothing if that would
  /// be refused as well.
  [[nodiscard]] std::optional<std::string> workingLine(session::Refused refused) {
    std::vector<Edit> edits = edits_;
    // An edit may have two slips, in its name and in its value.
    std::size_t const mostSlips = 2 * edits.size();
    for (std::size_t slip = 0; slip < mostSlips && refused.nearest && refused.index < edits.size(); ++slip) {
      edits[refused.index] = *refused.nearest;
      session::EditResult const tried = opened_.session().tryEdits(edits, options_.references());
      if (tried.applied()) return commandLineOf(options_, edits);
      refused = *tried.refused;
    }
    return std::nullopt;
  }

  /// The number of values that would follow a renaming, and are not asked to.
  [[nodiscard]] std::size_t countLeft() {
    bool const renames = std::any_of(edits_.begin(), edits_.end(),
                                     [](Edit const& edit) { return edit.kind == Edit::Kind::RenameObject; });
    if (!renames || options_.followReferences) return 0;
    return opened_.session().tryEdits(edits_, session::References::Follow).followed.size();
  }

  void writeText(std::ostream& report, session::TryResult const& tried) const {
    session::EditResult result = tried.result;
    ResultTextOptions options;
    options.isOpen = true;
    options.done = options_.dryRun ? "would be done" : "done";
    options.step = 0;
    options.given = edits_.size();
    if (result.applied() && !options_.dryRun) options.remark = remarkOn(opened_.session(), edits_);
    if (result.refused) {
      if (!proposal_) result.refused->nearest.reset();
      options.command = [this](Edit const& /*nearest*/) { return proposal_.value_or(""); };
      if (edits_.size() > 1) {
        report << "edit " << result.refused->index + 1 << " of " << edits_.size() << ": "
               << harmless(argumentText(result.refused->edit)) << '\n';
      }
    }
    if (!result.refused && edits_.size() > 1) {
      for (Edit const& edit : result.made) {
        if (isFollowed(edit, result)) continue;  // listed below
        report << harmless(argumentText(edit)) << fateOf(edit, result.effect) << '\n';
      }
    }
    report << resultText(result, options);
    writeFindings(report, "findings that would come", tried.findingsGained);
    writeFindings(report, "findings that would go", tried.findingsLost);
  }

  void writeJson(std::ostream& report, session::TryResult const& tried,
                 std::optional<std::string> const& written) const {
    session::EditResult const& result = tried.result;
    Json json = {{"schema", service::sessionJsonSchema}};
    json["model"] = options_.arguments.model;
    json["root"] = opened_.session().root();
    if (options_.dryRun) json["dryRun"] = true;
    json.update(options_.dryRun ? service::tryResultAsJson(tried) : service::editResultAsJson(result));
    if (proposal_) json["command"] = *proposal_;
    if (written) {
      json["written"] = *written;
      json["notSaved"] = service::jsonList(leftOut(opened_.session()), service::waitingAsJson);
    }
    report << service::jsonLine(json) << '\n';
  }

  void sayWhatWasWritten(session::EditResult const& result, std::optional<std::string> const& written) const {
    if (!written) {
      char const* why = result.refused    ? "nothing was written"
                        : options_.dryRun ? "nothing was written, because this was a dry run"
                                          : "nothing was written; give --in-place or --out FILE to save the model";
      err_ << "zev: " << why << ".\n";
      return;
    }
    if (*written != "-") err_ << "zev: \"" << *written << "\" is saved.\n";
    std::vector<session::Waiting> const waiting = leftOut(opened_.session());
    if (waiting.empty()) return;
    err_ << "zev: " << counted(waiting.size(), "item") << (waiting.size() == 1 ? " waits" : " wait")
         << " and could not be saved: model text has no place for what is not in force.\n";
    constexpr std::size_t mostListed = 20;
    for (std::size_t i = 0; i < std::min(waiting.size(), mostListed); ++i) {
      session::Waiting const& waits = waiting[i];
      err_ << "  " << shortened(waits.item.text()) << (waits.value ? " = " + shortened(*waits.value) : "") << "   "
           << whyWaiting(waits) << '\n';
    }
    if (waiting.size() > mostListed) err_ << "  ... and " << waiting.size() - mostListed << " more\n";
  }

  EditOptions const& options_;
  std::ostream& out_;
  std::ostream& err_;
  OpenedSession opened_;
  std::vector<Edit> edits_;
  std::optional<std::string> proposal_;
};

/// Throws a `CLI::ValidationError` for options that do not go together.
void check(EditOptions const& options) {
  if (options.edits.empty()) {
    if (!options.out.empty() || options.inPlace || options.dryRun || options.overwrite || options.asJson ||
        options.followReferences) {
      throw CLI::ValidationError("edit", "no edit is given; give one such as --set PATH=VALUE");
    }
    if (options.arguments.model == "-") {
      throw CLI::ValidationError("MODEL", "the standard input has the commands, so the model must be in a file");
    }
    return;
  }
  if (options.arguments.model.empty()) {
    throw CLI::ValidationError("MODEL", "no model is given; give the file to edit, or - for the standard input");
  }
  if (options.inPlace && !options.out.empty()) {
    throw CLI::ValidationError("--in-place", "it cannot be combined with --out; give one of them");
  }
  if (options.inPlace && options.arguments.model == "-") {
    throw CLI::ValidationError("--in-place",
                               "the model comes from the standard input and has no file; give --out FILE");
  }
  bool const renames = std::any_of(options.edits.begin(), options.edits.end(), [](EditArgument const& edit) {
    return edit.option == EditArgument::Option::Rename;
  });
  if (options.followReferences && !renames) {
    throw CLI::ValidationError("--follow-references", "it says what becomes of a --rename; give that as well");
  }
  if (options.overwrite && options.out.empty()) {
    throw CLI::ValidationError("--overwrite", "it says what becomes of an existing --out FILE; give that as well");
  }
}

}  // namespace

void addEditCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<EditOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command = app.add_subcommand("edit", "Edit a model: by edits on the command line, or in a dialogue");
  addRulesOption(*command, options->arguments.rules);
  command->add_option("MODEL", options->arguments.model, "A file with model text; - is the standard input")
      ->type_name("");
  command
      ->add_option("--root", options->arguments.root,
                   "The object to edit, with everything below it; default: the only\none that the rules look at")
      ->type_name("OBJECT");
  addEditOptions(*command);
  command->add_flag("--follow-references", options->followReferences,
                    "Let the values that name an object follow its --rename, and list them");
  command->add_option("--out", options->out, "Write the edited model to a new file; - is the standard output")
      ->type_name("FILE");
  command->add_flag("--in-place", options->inPlace, "Write the edited model to its own file");
  command->add_flag("--overwrite", options->overwrite, "Let --out replace a file that is there");
  command->add_flag("--dry-run", options->dryRun, "Write nothing, and say which findings would come and go");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object on a line");
  command->footer(
      "Without edits, commands are read from the standard input; \"help\" lists them.\n"
      "All edits are made, or none. A saved model keeps everything else byte for byte.\n"
      "A path without a / in front starts at the root object. The first = of PATH=VALUE ends the path.\n"
      "Examples: zev edit --rules rules/ pump.tdf --set 'Flow Regime=Laminar' --in-place\n"
      "          zev edit --rules rules/ pump.tdf --add Domain:new --set Domain:new/Location=NEW --dry-run\n"
      "Exit status: 0 the edits were made, 1 one was refused and nothing was written, 2 wrong usage or a file\n"
      "that could not be read or written.");
  command->callback([options, format, command, &chosen] {
    options->edits = editArguments(*command);
    options->asJson = *format == "json";
    check(*options);
    chosen = [options](std::ostream& out, std::ostream& err) {
      if (!options->edits.empty()) return EditRun(*options, out, err).run();
      OpenedSession opened(options->arguments, err);
      return runEditor(opened.session(), opened.file(), session::orderOfRules(opened.rules()), out, err);
    };
  });
}

}  // namespace tarn::tool
