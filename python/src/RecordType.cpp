#include "RecordType.h"

#include <stdexcept>
#include <string>

namespace tarn::python {

namespace py = pybind11;

namespace {

/// The module `tarn.records`. It is found once, because looking for a module may let other threads of Python run, and
/// record types are made where that must not happen.
py::handle& records() noexcept {
  static py::handle module;
  return module;
}

}  // namespace

void RecordType::findClasses() {
  records() = py::module_::import("tarn.records").release();
}

RecordType::RecordType(char const* name, std::initializer_list<char const*> fields) {
  py::object const type = records().attr(name);
  py::list const declared(type.attr("__dataclass_fields__"));
  bool isSame = declared.size() == fields.size();
  for (char const* field : fields) {
    isSame = isSame && py::str(declared[fields_.size()]).equal(py::str(field));
    fields_.push_back(py::reinterpret_steal<py::object>(PyUnicode_InternFromString(field)).release());
  }
  if (!isSame) throw std::logic_error(std::string("the fields of tarn.records.") + name + " are not as expected");
  type_ = py::object(type).release();
}

py::object RecordType::fill(py::object const* values, std::size_t count) const {
  if (count != fields_.size()) throw std::logic_error("a record has another number of fields");
  auto* const type = reinterpret_cast<PyTypeObject*>(type_.ptr());
  auto record = py::reinterpret_steal<py::object>(type->tp_alloc(type, 0));
  if (!record) throw py::error_already_set();
  for (std::size_t i = 0; i < count; ++i) {
    if (PyObject_GenericSetAttr(record.ptr(), fields_[i].ptr(), values[i].ptr()) != 0) throw py::error_already_set();
  }
  return record;
}

}  // namespace tarn::python
