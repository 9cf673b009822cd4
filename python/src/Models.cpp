// Model text and models as dictionaries, and the review of models.
#include "Models.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/stl.h>

#include <tarn/ModelTextRewrite.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Review.h>

#include "Converter.h"
#include "Errors.h"
#include "Rules.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

ModelText readText(Text source, Bytes content) {
  return {std::move(source.bytes), std::move(content.content)};
}

/// The state, and the items that are given more than once.
py::object parseModel(Text source, Bytes content) {
  std::optional<ModelText> text;
  {
    py::gil_scoped_release const release;
    text.emplace(readText(std::move(source), std::move(content)));
  }
  if (!text->faults().empty()) raiseModelError(*text);
  return Converter()(text->state());
}

Bytes writeModel(py::dict const& model, Bytes const& text, Rules const* rules) {
  ModelState const state = stateFrom(model);
  py::gil_scoped_release const release;
  return {rewriteModelText(text.content, state, rules != nullptr ? session::orderOfRules(*rules->data) : nullptr)};
}

/// A review that keeps its rules.
class Reviewer {
 public:
  Reviewer(std::shared_ptr<Rules> rules, std::vector<Text> const& roots, std::string const& phases, bool onlyValidator)
      : rules_(std::move(rules)), review_(*rules_->data, optionsOf(roots, phases, onlyValidator)) {}

  [[nodiscard]] py::object judgeText(Text source, Bytes content) const {
    std::optional<ModelText> text;
    session::Findings findings;
    {
      py::gil_scoped_release const release;
      text.emplace(readText(std::move(source), std::move(content)));
      if (text->faults().empty()) findings = review_.judge(*text);
    }
    if (!text->faults().empty()) raiseModelError(*text);
    return Converter()(findings);
  }

  [[nodiscard]] py::object judgeState(py::dict const& model) const {
    ModelState const state = stateFrom(model);
    session::Findings findings;
    {
      py::gil_scoped_release const release;
      findings = review_.judge(state);
    }
    return Converter()(findings);
  }

 private:
  static session::ReviewOptions optionsOf(std::vector<Text> const& roots, std::string const& phases,
                                          bool onlyValidator) {
    session::ReviewOptions options;
    for (Text const& root : roots) options.roots.push_back(root.bytes);
    if (phases == "dependency") {
      options.phases = PhysicsValidator2::ValDependency;
    } else if (phases == "global") {
      options.phases = PhysicsValidator2::ValGlobal;
    } else if (phases != "all") {
      throw py::value_error("phases is \"" + phases + "\"; give \"dependency\", \"global\" or \"all\"");
    }
    options.onlyValidator = onlyValidator;
    return options;
  }

  std::shared_ptr<Rules> rules_;
  session::Review review_;
};

}  // namespace

ModelState stateFrom(py::dict const& model) {
  ModelState state;
  for (auto const& [path, params] : model) {
    auto& object = state[py::cast<Text>(path).bytes];
    for (auto const& [name, value] : py::cast<py::dict>(params)) {
      object[py::cast<Text>(name).bytes] = py::cast<Text>(value).bytes;
    }
  }
  return state;
}

void defineModels(py::module_& module) {
  module.def("parse_model", &parseModel, py::arg("source"), py::arg("content"));
  module.def("write_model", &writeModel, py::arg("model"), py::arg("text"), py::arg("rules") = py::none());
}

void defineReview(py::module_& module) {
  py::class_<Reviewer>(module, "Reviewer")
      .def(py::init<std::shared_ptr<Rules>, std::vector<Text> const&, std::string const&, bool>(), py::arg("rules"),
           py::arg("roots"), py::arg("phases"), py::arg("only_validator"))
      .def("judge_text", &Reviewer::judgeText, py::arg("source"), py::arg("content"))
      .def("judge_state", &Reviewer::judgeState, py::arg("model"));
}

}  // namespace tarn::python
