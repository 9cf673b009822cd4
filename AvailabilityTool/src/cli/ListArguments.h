#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn::tool {

/// An option with one or more values, and which arguments after the first are values of it.
struct ListOption {
  std::string name;
  std::function<bool(std::string const&)> takes;
};

/// Repeats the option before each further value of it. `--rules base.rules.yaml site.rules.yaml pump.tdf` becomes
/// `--rules base.rules.yaml --rules site.rules.yaml pump.tdf`, so the model is an argument of its own. `arguments` are
/// the name of a command and everything after it.
///
/// The argument directly after the option is always its value. The last argument of all is not a further value when
/// there is no other argument without an option: it is then what the command works on. An argument that is a value of
/// the option already is not a further one. Everything after "--" stays as it is.
[[nodiscard]] std::vector<std::string> divideListArguments(std::vector<std::string> const& arguments,
                                                           std::vector<ListOption> const& options);

/// Whether `argument` looks like rules: a name that ends in .yaml or .yml, or a folder that contains `*.rules.yaml`.
[[nodiscard]] bool looksLikeRules(std::string const& argument);

/// Whether `argument` looks like the path of an object: it begins with "/", and there is no file of that name.
[[nodiscard]] bool looksLikeObject(std::string const& argument);

}  // namespace tarn::tool
