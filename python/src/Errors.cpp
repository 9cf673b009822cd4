// From errors of the libraries to exceptions of Python.
#include "Errors.h"

#include <exception>
#include <sstream>

#include <tarn/Error.h>
#include <tarn/rules/RuleError.h>
#include <tarn/service/SessionJson.h>

#include "Converter.h"

namespace tarn::python {

namespace py = pybind11;

namespace {

template <typename... Arguments>
void set(char const* name, Arguments&&... arguments) {
  py::object const type = py::module_::import("tarn.errors").attr(name);
  py::object const error = type(std::forward<Arguments>(arguments)...);
  PyErr_SetObject(type.ptr(), error.ptr());
}

template <typename... Arguments>
[[noreturn]] void raise(char const* name, Arguments&&... arguments) {
  set(name, std::forward<Arguments>(arguments)...);
  throw py::error_already_set();
}

std::string messageOf(Error const& error) {
  std::ostringstream text;
  error.write(text);
  return text.str();
}

}  // namespace

void translateErrors() {
  // NOLINTNEXTLINE(performance-unnecessary-value-param): pybind11 wants this signature
  py::register_exception_translator([](std::exception_ptr thrown) {
    try {
      if (thrown) std::rethrow_exception(thrown);
    } catch (rules::RuleError const& error) {
      set("RuleError", textOf(messageOf(error)), Converter()(error.diagnostics()));
    } catch (Error const& error) {
      set("Error", textOf(messageOf(error)));
    }
  });
}

void raiseModelError(ModelText const& text) {
  raise("ModelError", textOf(text.source()), Converter()(text.faults()), text.faultCount());
}

void raiseOpenError(session::OpenError const& error) {
  Converter convert;
  raise("OpenError", convert(error.sentence), convert(service::openFaultName(error.fault)), convert(error.candidates));
}

void raiseSaveError(session::SaveError const& error) {
  Converter convert;
  raise("SaveError", convert(error.sentence), convert(service::saveFaultName(error.fault)));
}

}  // namespace tarn::python
