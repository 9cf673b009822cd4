#include "cli/ChoiceOption.h"

namespace tarn::tool {

CLI::Option* addChoiceOption(CLI::App& command, std::string const& name, std::string& value,
                             std::vector<std::string> const& choices, std::string const& description) {
  // Without a description of its own, the check would add the choices to the help a second time.
  return command.add_option(name, value, description)
      ->type_name(CLI::detail::join(choices, "|"))
      ->check(CLI::IsMember(choices).description(""));
}

}  // namespace tarn::tool
