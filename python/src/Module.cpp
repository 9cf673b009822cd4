// The module `tarn._tarn`: the libraries as the Python code of the package `tarn` needs them. Users see that code, not
// this module. _tarn.pyi declares everything that is defined here.
#include <pybind11/pybind11.h>

#include "Errors.h"
#include "RecordType.h"
#include "Rules.h"

PYBIND11_MODULE(_tarn, module) {
  using namespace tarn::python;
  module.doc() = "The libraries below the package tarn. Use the package instead.";
  RecordType::findClasses();
  translateErrors();
  defineRules(module);
  defineModels(module);
  defineReview(module);
  defineSession(module);
  module.attr("version") = TARN_VERSION;
}
