// `zev migrate`: gives the items of models the names that the rules have now.
#include "migrate/MigrateCommand.h"

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <nlohmann/json.hpp>

#include <tarn/service/JsonText.h>
#include <tarn/service/SessionJson.h>
#include <tarn/session/Migration.h>
#include <tarn/session/ModelFile.h>

#include "cli/ChoiceOption.h"
#include "cli/Counted.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/ModelFiles.h"
#include "cli/RuleFiles.h"
#include "edit/ShownText.h"

namespace tarn::tool {

namespace {

using Json = nlohmann::ordered_json;
using session::Migration;
using session::MigrationEntry;
using session::MigrationFate;

struct MigrateOptions {
  std::vector<std::string> rules;
  std::vector<std::string> models;
  std::string out;
  bool inPlace = false;
  bool overwrite = false;
  bool dryRun = false;
  bool asJson = false;
};

Json entryAsJson(MigrationEntry const& entry) {
  Json json = {{"fate", session::migrationFateName(entry.fate)}, {"path", entry.path}};
  if (entry.name) json["name"] = *entry.name;
  json["newName"] = entry.newName;
  if (entry.name) json["value"] = entry.value;
  if (entry.fate == MigrationFate::ValueChanged) json["newValue"] = entry.newValue;
  if (entry.fate == MigrationFate::Taken && entry.name) json["otherValue"] = entry.otherValue;
  if (entry.place.isKnown()) json["place"] = {{"line", entry.place.line()}, {"column", entry.place.column()}};
  if (entry.rule.isKnown()) json["rule"] = entry.rule.text();
  json["message"] = sentenceOf(entry);
  return json;
}

/// The whole run over all models.
class MigrateRun {
 public:
  MigrateRun(MigrateOptions const& options, std::ostream& out, std::ostream& err)
      : options_(options), out_(out), err_(err), rules_(loadRuleFiles(options.rules, err)) {}

  int run() {
    for (std::string const& model : options_.models) {
      try {
        migrateOne(model);
      } catch (Failure const& failure) {
        ++failures_;
        err_ << "zev: " << harmless(failure.what()) << '\n';
      }
    }
    sum();
    if (failures_ > 0) return Failed;
    return open_ > 0 ? FindingsMade : NothingFound;
  }

 private:
  void migrateOne(std::string const& name) {
    session::ModelFile file = readEditedFile(name);
    ModelText const text = file.text();
    if (!text.faults().empty()) throw ModelFailure(text, true);
    Migration const migration = session::migrate(*rules_, text, file.bytes());
    std::optional<std::string> const written = save(file, migration);
    // With the model on the standard output, the report goes where messages go.
    std::ostream& report = written == "-" ? err_ : out_;
    for (MigrationEntry const& entry : migration.entries) ++(entry.isOpen() ? open_ : done_);
    if (options_.asJson) {
      Json json = {{"schema", service::sessionJsonSchema}, {"model", name}};
      if (options_.dryRun) json["dryRun"] = true;
      json["changed"] = migration.changesText();
      json["entries"] = service::jsonList(migration.entries, entryAsJson);
      if (written) json["written"] = *written;
      report << service::jsonLine(json) << '\n';
      return;
    }
    for (MigrationEntry const& entry : migration.entries) {
      report << (entry.place.isKnown() ? harmless(entry.place.text()) : harmless(name)) << ": "
             << harmless(sentenceOf(entry)) << '\n';
    }
  }

  /// The name of the file that was written, if one was.
  std::optional<std::string> save(session::ModelFile& file, Migration const& migration) {
    if (options_.dryRun) return std::nullopt;
    std::optional<session::SaveError> error;
    if (options_.inPlace) {
      if (!migration.changesText()) return std::nullopt;
      error = file.saveText(migration.text);
    } else if (options_.out == "-") {
      out_ << migration.text;
      return options_.out;
    } else {
      auto other = session::ModelFile::named(options_.out);
      error = other.saveText(migration.text, options_.overwrite ? session::Overwrite::Yes : session::Overwrite::No);
    }
    if (!error) {
      ++written_;
      return options_.inPlace ? file.name() : options_.out;
    }
    if (error->fault != session::SaveFault::FileChanged) throw Failure(error->sentence);
    throw Failure(options_.inPlace
                      ? '"' + file.name() +
                            "\" has been changed by someone else since it was read; nothing was written, run again"
                      : '"' + options_.out + "\" is there already; give another name, or --overwrite to replace it");
  }

  void sum() const {
    err_ << "zev: " << counted(options_.models.size() - failures_, "model") << " read; ";
    if (done_ + open_ == 0) {
      err_ << "nothing to rename";
    } else {
      err_ << counted(done_, "item") << (options_.dryRun ? " would be renamed" : " renamed");
      if (open_ > 0) err_ << ", " << open_ << " left for you";
    }
    if (written_ > 0) err_ << "; " << counted(written_, "file") << " written";
    err_ << ".\n";
  }

  MigrateOptions const& options_;
  std::ostream& out_;
  std::ostream& err_;
  std::unique_ptr<PhysicsData> rules_;
  std::size_t done_ = 0;
  std::size_t open_ = 0;
  std::size_t written_ = 0;
  std::size_t failures_ = 0;
};

/// Throws a `CLI::ValidationError` for options that do not go together.
void check(MigrateOptions const& options) {
  int const targets = (options.out.empty() ? 0 : 1) + (options.inPlace ? 1 : 0) + (options.dryRun ? 1 : 0);
  if (targets != 1) {
    throw CLI::ParseError("give one of --in-place, --out FILE and --dry-run", CLI::ExitCodes::ValidationError);
  }
  if (!options.out.empty() && options.models.size() > 1) {
    throw CLI::ValidationError("--out", "it is for one model; give --in-place for several");
  }
  for (std::string const& model : options.models) {
    if (model != "-" || !options.inPlace) continue;
    throw CLI::ValidationError("--in-place",
                               "the model comes from the standard input and has no file; give --out FILE");
  }
  if (options.overwrite && options.out.empty()) {
    throw CLI::ValidationError("--overwrite", "it says what becomes of an existing --out FILE; give that as well");
  }
}

}  // namespace

void addMigrateCommand(CLI::App& app, Command& chosen) {
  auto options = std::make_shared<MigrateOptions>();
  auto format = std::make_shared<std::string>("text");
  CLI::App* command = app.add_subcommand("migrate", "Give models the names that the rules have now");
  addRulesOption(*command, options->rules);
  command->add_option("MODEL", options->models, "Files with model text; - is the standard input")
      ->type_name("")
      ->required();
  command->add_flag("--in-place", options->inPlace, "Write each model to its own file");
  command->add_option("--out", options->out, "Write the model to a new file; - is the standard output")
      ->type_name("FILE");
  command->add_flag("--overwrite", options->overwrite, "Let --out replace a file that is there");
  command->add_flag("--dry-run", options->dryRun, "Write nothing, and say what would be done");
  addChoiceOption(*command, "--format", *format, {"text", "json"},
                  "text, for people, the default; or json, one object a model on a line");
  command->footer(
      "Items get their new names where the rules have Renamed From or Renamed Names. Everything else of a model is\n"
      "kept byte for byte, except values that must mean a renamed object. An item that cannot be renamed keeps its\n"
      "name, and a line says why.\n"
      "Examples: zev migrate --rules rules/ --dry-run models/*.tdf\n"
      "          zev migrate --rules rules/ --in-place models/*.tdf\n"
      "Exit status: 0 everything was renamed or nothing had to be, 1 something is left for you, 2 wrong usage or\n"
      "a file that could not be read or written.");
  command->callback([options, format, &chosen] {
    options->asJson = *format == "json";
    check(*options);
    chosen = [options](std::ostream& out, std::ostream& err) { return MigrateRun(*options, out, err).run(); };
  });
}

}  // namespace tarn::tool
