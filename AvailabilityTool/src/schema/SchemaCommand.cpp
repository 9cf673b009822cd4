// `zev schema`: prints the JSON Schema of a kind of files, for editors, or of the messages of `zev serve`.
#include "schema/SchemaCommand.h"

#include <memory>
#include <ostream>
#include <string>

#include <CLI/CLI.hpp>

#include <tarn/service/ProtocolSchema.h>
#include <tarn/workbench/Schemas.h>

#include "cli/ExitStatus.h"

namespace tarn::tool {

void addSchemaCommand(CLI::App& app, Command& chosen) {
  auto kind = std::make_shared<std::string>("rules");
  CLI::App* command = app.add_subcommand("schema", "Print the JSON Schema of rule files, tests of rules or messages");
  command
      ->add_option(
          "KIND", *kind,
          "rules, for rule files, the default; tests, for tests of rules; or protocol,\nfor the messages of zev serve")
      ->type_name("")
      ->check(CLI::IsMember({"rules", "tests", "protocol"}).description(""));
  command->footer(
      "Editors that know YAML complete keys and mark mistakes of form with it. Mistakes in expressions and names are\n"
      "found by \"zev lint\".\n"
      "Example: zev schema rules > rules.schema.json\n"
      "Exit status: 0, or 2 for wrong usage.");
  command->callback([kind, &chosen] {
    chosen = [kind](std::ostream& out, std::ostream& /*err*/) {
      out << (*kind == "tests"      ? workbench::ruleTestsSchema()
              : *kind == "protocol" ? service::protocolSchema()
                                    : workbench::ruleFileSchema());
      return static_cast<int>(NothingFound);
    };
  });
}

}  // namespace tarn::tool
