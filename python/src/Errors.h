#pragma once

#include <string>

#include <pybind11/pybind11.h>

#include <tarn/ModelText.h>
#include <tarn/session/ModelFile.h>
#include <tarn/session/Session.h>

namespace tarn::python {

/// From here on, exceptions of the libraries become those of `tarn.errors`.
void translateErrors();

/// Each raises the exception of `tarn.errors` with that name. They need the interpreter lock.
[[noreturn]] void raiseModelError(ModelText const& text);
[[noreturn]] void raiseOpenError(session::OpenError const& error);
[[noreturn]] void raiseSaveError(session::SaveError const& error);

}  // namespace tarn::python
