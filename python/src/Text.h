#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

namespace tarn::python {

/// A text of a model or of rules as Python gives it: a `str`. Bytes that are not UTF-8 are lone surrogates on the side
/// of Python, as in the names of files there. So every text survives the way to Python and back.
struct Text {
  std::string bytes;
};

/// The bytes of a `str`. Throws what Python raises for a lone surrogate that means no byte.
[[nodiscard]] std::string bytesOf(pybind11::handle text);
[[nodiscard]] pybind11::str textOf(std::string_view bytes);

/// A text that ends with a line end, without it: `print` adds one.
[[nodiscard]] std::string withoutLineEnd(std::string text);

/// `bytes` objects, for whole files.
struct Bytes {
  std::string content;
};

}  // namespace tarn::python

namespace pybind11::detail {

template <>
struct type_caster<tarn::python::Text> {
  PYBIND11_TYPE_CASTER(tarn::python::Text, const_name("str"));

  bool load(handle source, bool /*convert*/) {
    if (PyUnicode_Check(source.ptr()) == 0) return false;
    value.bytes = tarn::python::bytesOf(source);
    return true;
  }

  static handle cast(tarn::python::Text const& text, return_value_policy /*policy*/, handle /*parent*/) {
    return tarn::python::textOf(text.bytes).release();
  }
};

template <>
struct type_caster<tarn::python::Bytes> {
  PYBIND11_TYPE_CASTER(tarn::python::Bytes, const_name("bytes"));

  bool load(handle source, bool /*convert*/) {
    if (PyBytes_Check(source.ptr()) == 0) return false;
    value.content.assign(PyBytes_AS_STRING(source.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(source.ptr())));
    return true;
  }

  static handle cast(tarn::python::Bytes const& text, return_value_policy /*policy*/, handle /*parent*/) {
    return bytes(text.content).release();
  }
};

}  // namespace pybind11::detail
