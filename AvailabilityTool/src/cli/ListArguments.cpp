// Separates the values of `--rules PATH...` and `--root OBJECT...` from the MODEL arguments after them. The command
// line parser can give such an option either one value or all that follow. Here the form of each argument decides.
#include "cli/ListArguments.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>

namespace tarn::tool {

namespace fs = std::filesystem;

std::vector<std::string> divideListArguments(std::vector<std::string> const& arguments,
                                             std::vector<ListOption> const& options) {
  std::vector<std::string> result;
  result.reserve(arguments.size() + 4);
  ListOption const* open = nullptr;  // the option whose values come now
  bool first = false;                // its first value comes next
  std::vector<std::string> values;   // of the open option
  bool anyFree = false;              // after the name of the command
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    std::string const& argument = arguments[i];
    if (argument == "--") {
      result.insert(result.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i), arguments.end());
      break;
    }
    bool const last = i + 1 == arguments.size();
    // Nothing is meant twice: `zev test --rules plant plant` names a folder with rules and tests.
    bool const isNew = std::find(values.begin(), values.end(), argument) == values.end();
    if (open && first) {
      first = false;
      values = {argument};
    } else if (argument.size() > 1 && argument.front() == '-') {
      auto const found = std::find_if(options.begin(), options.end(),
                                      [&](ListOption const& option) { return option.name == argument; });
      open = found == options.end() ? nullptr : &*found;
      first = open != nullptr;
    } else if (open && isNew && open->takes(argument) && (anyFree || !last)) {
      result.push_back(open->name);
      values.push_back(argument);
    } else {
      // The value of another option counts as free here. The only consequence is that the last argument is then judged
      // by its form alone.
      open = nullptr;
      anyFree = anyFree || i > 0;
    }
    result.push_back(argument);
  }
  return result;
}

bool looksLikeRules(std::string const& argument) {
  if (argument.ends_with(".yaml") || argument.ends_with(".yml")) return true;
  std::error_code error;
  if (!fs::is_directory(argument, error)) return false;
  for (fs::directory_iterator entry(argument, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().filename().string().ends_with(".rules.yaml")) return true;
  }
  return false;
}

bool looksLikeObject(std::string const& argument) {
  std::error_code error;
  return argument.starts_with('/') && !fs::exists(argument, error);
}

}  // namespace tarn::tool
