#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

#include <tarn/PhysicsData.h>
#include <tarn/rules/RuleLoader.h>

namespace tarn::python {

/// A rule database and the texts that it was loaded from, so that it can be loaded again. Sessions and reviews share
/// the database. Nothing changes it, so any number of threads may use it.
struct Rules {
  explicit Rules(std::vector<rules::RuleText> sources) : texts(std::move(sources)), data(rules::parseRules(texts)) {}

  std::vector<rules::RuleText> texts;
  std::shared_ptr<PhysicsData const> data;
};

void defineRules(pybind11::module_& module);
void defineReview(pybind11::module_& module);
void defineModels(pybind11::module_& module);
void defineSession(pybind11::module_& module);

}  // namespace tarn::python
