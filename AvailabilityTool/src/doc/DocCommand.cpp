// `zev doc`: a reference of rules for people, as a page or as Markdown.
#include "doc/DocCommand.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string>
#include <system_error>
#include <vector>

#include <CLI/CLI.hpp>

#include <tarn/workbench/RuleReference.h>

#include "cli/ChoiceOption.h"
#include "cli/ExitStatus.h"
#include "cli/Failure.h"
#include "cli/Output.h"
#include "cli/RuleFiles.h"

namespace tarn::tool {

namespace {

namespace fs = std::filesystem;

struct DocArguments {
  std::vector<std::string> rules;
  std::string format = "html";
  std::string out;
  std::string title;
};

void writeFile(fs::path const& file, DocArguments const& arguments, PhysicsData const& rules,
               workbench::ReferenceFormat format) {
  std::error_code failed;
  fs::create_directories(file.parent_path(), failed);
  if (failed && fs::exists(arguments.out)) {
    throw Failure('"' + arguments.out + "\" is a file; --out is the folder for the reference");
  }
  if (failed) throw Failure("cannot make the folder \"" + arguments.out + '"' + becauseOf(failed.value()));
  errno = 0;
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  if (stream) writeRuleReference(stream, rules, format, arguments.title);
  stream.close();
  if (!stream) throw Failure("cannot write \"" + file.string() + '"' + becauseOf(errno));
}

int doc(DocArguments const& arguments, std::ostream& out, std::ostream& err) {
  auto const rules = loadRuleFiles(arguments.rules, err);
  bool const isHtml = arguments.format == "html";
  auto const format = isHtml ? workbench::ReferenceFormat::Html : workbench::ReferenceFormat::Markdown;
  if (arguments.out.empty()) {
    writeRuleReference(out, *rules, format, arguments.title);
    return NothingFound;
  }
  fs::path const file = fs::path(arguments.out) / (isHtml ? "index.html" : "index.md");
  writeFile(file, arguments, *rules, format);
  err << "zev: \"" << file.string() << "\" is written.\n";
  return NothingFound;
}

}  // namespace

void addDocCommand(CLI::App& app, Command& chosen) {
  auto arguments = std::make_shared<DocArguments>();
  CLI::App* command = app.add_subcommand("doc", "Write a reference of rules for people");
  addRulesOption(*command, arguments->rules);
  addChoiceOption(*command, "--format", arguments->format, {"html", "markdown"},
                  "html, a page that needs no other file, the default; or markdown");
  command
      ->add_option("--out", arguments->out,
                   "Write index.html or index.md to this folder; default: to the standard output")
      ->type_name("FOLDER");
  command->add_option("--title", arguments->title, "The heading; default: the types at the root of a model")
      ->type_name("TEXT");
  command->footer(
      "The reference has every object type with its parameters, children and checks: descriptions, types, units,\n"
      "allowed values, bounds, defaults, conditions in words and as they are written, and links to what an entry\n"
      "depends on and to what reads it. The page has a search. The same rules give the same bytes.\n"
      "Examples: zev doc --rules rules/ > rules.html\n"
      "          zev doc --rules rules/ --format markdown --out reference/\n"
      "Exit status: 0, or 2 for wrong usage, rules that could not be read, or a file that could not be written.");
  command->callback([arguments, &chosen] {
    chosen = [arguments](std::ostream& out, std::ostream& err) { return doc(*arguments, out, err); };
  });
}

}  // namespace tarn::tool
