#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <utility>
#include <vector>

#include <pybind11/pybind11.h>

namespace tarn::python {

/// A class of `tarn.records`, and its fields in their order. The classes are frozen, so their `__init__` sets each
/// field through Python code. This fills the fields directly, which takes a tenth of the time.
///
/// A record type is a constant of the program. It keeps its class alive for ever, because it may be destroyed after the
/// interpreter.
class RecordType {
 public:
  /// Finds the module of the classes, before the first record type is made.
  static void findClasses();

  /// Needs the interpreter lock. Throws if the class has other fields: that would be a fault of this package.
  RecordType(char const* name, std::initializer_list<char const*> fields);

  template <typename... Values>
  [[nodiscard]] pybind11::object make(Values&&... values) const {
    std::array<pybind11::object, sizeof...(Values)> const list{pybind11::object(std::forward<Values>(values))...};
    return fill(list.data(), list.size());
  }

 private:
  [[nodiscard]] pybind11::object fill(pybind11::object const* values, std::size_t count) const;

  pybind11::handle type_;
  std::vector<pybind11::handle> fields_;
};

}  // namespace tarn::python
