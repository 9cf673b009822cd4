#include "Text.h"

namespace tarn::python {

namespace py = pybind11;

std::string bytesOf(py::handle text) {
  auto const encoded =
      py::reinterpret_steal<py::bytes>(PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
  if (!encoded) throw py::error_already_set();
  return encoded;
}

py::str textOf(std::string_view bytes) {
  auto text = py::reinterpret_steal<py::str>(
      PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape"));
  if (!text) throw py::error_already_set();
  return text;
}

std::string withoutLineEnd(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace tarn::python
