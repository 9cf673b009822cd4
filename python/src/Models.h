#pragma once

#include <pybind11/pybind11.h>

#include <tarn/ModelState.h>

namespace tarn::python {

/// A state from a dictionary of paths and dictionaries of names and values. Throws a `TypeError` of Python for anything
/// but texts.
[[nodiscard]] ModelState stateFrom(pybind11::dict const& model);

}  // namespace tarn::python
