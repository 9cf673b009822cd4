#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn::tool {

/// An option that takes one value or more, and which arguments behind the first it takes.
struct ListOption {
  std::string name;
  std::function<bool(std::string const&)> takes;
};

/// Writes the option again before each further value that it takes, so that
/// `--rules base.rules.yaml site.rules.yaml pump.tdf` becomes
/// `--rules base.rules.yaml --rules site.rules.yaml pump.tdf`, and the model is left to be an argument of its own.
/// `arguments` are the name of a command and what stands behind it.
///
/// The value right behind the option always belongs to it. Of the further ones, the last argument of all does not when
/// no other argument stands free: it is then what the command is about. Everything behind "--" is left alone.
[[nodiscard]] std::vector<std::string> divideListArguments(std::vector<std::string> const& arguments,
                                                           std::vector<ListOption> const& options);

/// Whether `argument` looks like rules: a name that ends in .yaml or .yml, or a folder that holds `*.rules.yaml`.
[[nodiscard]] bool looksLikeRules(std::string const& argument);

/// Whether `argument` looks like the path of an object: it begins with "/", and there is no file of that name.
[[nodiscard]] bool looksLikeObject(std::string const& argument);

}  // namespace tarn::tool
