// Rule files: loading them from texts, and what is wrong with them.
#include "Rules.h"

#include <filesystem>
#include <optional>
#include <utility>

#include <pybind11/stl.h>

#include <tarn/rules/RuleError.h>

#include "Converter.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

using Source = std::pair<Text, Bytes>;

std::vector<std::filesystem::path> pathsOf(std::vector<Text> const& names) {
  std::vector<std::filesystem::path> paths;
  paths.reserve(names.size());
  for (Text const& name : names) paths.emplace_back(name.bytes);
  return paths;
}

std::vector<Source> readRuleFiles(std::vector<Text> const& names) {
  std::vector<std::filesystem::path> const paths = pathsOf(names);
  std::vector<Source> sources;
  try {
    for (rules::RuleText& text : rules::readRules(paths)) {
      sources.emplace_back(Text{std::move(text.source)}, Bytes{std::move(text.text)});
    }
  } catch (rules::RuleError const&) {
    // The error of a whole load also has what is wrong in the files that can be read.
    static_cast<void>(rules::loadRules(paths));
    throw;
  }
  return sources;
}

std::shared_ptr<Rules const> makeRules(std::vector<Source>&& sources) {
  std::vector<rules::RuleText> texts;
  texts.reserve(sources.size());
  for (auto& [source, text] : sources) texts.push_back({std::move(source.bytes), std::move(text.content)});
  return std::make_shared<Rules const>(std::move(texts));
}

std::vector<Text> rootTypesOf(Rules const& rules) {
  std::vector<Text> types;
  for (std::string const& type : rules.data->getPertinentGlobalCheckRoots()) types.push_back({type});
  return types;
}

py::object lintFiles(std::vector<Text> const& names) {
  rules::LintResult result;
  {
    py::gil_scoped_release const release;
    result = rules::lintRules(pathsOf(names));
  }
  return Converter()(result.diagnostics);
}

py::object lintText(Bytes const& text, Text const& source) {
  rules::LintResult result;
  {
    py::gil_scoped_release const release;
    result = rules::lintText(text.content, source.bytes);
  }
  return Converter()(result.diagnostics);
}

}  // namespace

void defineRules(py::module_& module) {
  using Unlocked = py::call_guard<py::gil_scoped_release>;
  py::class_<Rules, std::shared_ptr<Rules>>(module, "Rules")
      .def(py::init([](std::vector<Source> sources) {
             return std::const_pointer_cast<Rules>(makeRules(std::move(sources)));
           }),
           py::arg("sources"), Unlocked())
      .def("root_types", &rootTypesOf);
  module.def("read_rule_files", &readRuleFiles, py::arg("paths"), Unlocked());
  module.def("lint_files", &lintFiles, py::arg("paths"));
  module.def("lint_text", &lintText, py::arg("text"), py::arg("source"));
}

}  // namespace tarn::python
