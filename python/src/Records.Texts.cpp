// Plain values, lists that records share, and models.
#include "Converter.h"

#include <cmath>

#include "RecordType.h"

namespace tarn::python {

namespace py = pybind11;

py::object Converter::operator()(double number) {
  if (!std::isfinite(number)) return py::none();
  return py::float_(number);
}

py::object Converter::operator()(SharedStrings const& strings) {
  if (strings.empty()) return py::tuple();
  py::object& list = shared_[strings.vector().data()];
  if (!list) list = (*this)(strings.vector());
  return list;
}

py::object Converter::operator()(TextPlace const& place) {
  static RecordType const type("Place", {"file", "line", "column"});
  if (!place.isKnown()) return py::none();
  Converter& convert = *this;
  return type.make(convert(place.source()), convert(place.line()), convert(place.column()));
}

py::object Converter::operator()(ModelState const& state) {
  py::dict model;
  for (auto const& [path, params] : state) {
    py::dict object;
    for (auto const& [name, value] : params) object[textOf(name)] = textOf(value);
    model[textOf(path)] = object;
  }
  return model;
}

py::object Converter::operator()(ModelText::Fault const& fault) {
  static RecordType const type("ModelFault", {"line", "column", "reason"});
  Converter& convert = *this;
  return type.make(convert(fault.line), convert(fault.column), convert(fault.reason));
}

}  // namespace tarn::python
