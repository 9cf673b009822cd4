#pragma once

#include <string>
#include <vector>

#include <tarn/ModelState.h>
#include <tarn/ModelText.h>
#include <tarn/TDFChangeFile.h>
#include <tarn/session/ModelFile.h>

#include "cli/Failure.h"

namespace tarn::tool {

/// A model that could not be read or judged, with its malformed lines. There are none if something else failed. The
/// message has a line for each malformed line.
class ModelFailure : public Failure {
 public:
  using Failure::Failure;
  /// The malformed lines of `text`, which has some. `isModel`: the other lines give a model that can be reviewed, so
  /// the malformed lines are mistakes in model text, and not all of another kind of text.
  ModelFailure(ModelText const& text, bool isModel);

  [[nodiscard]] std::vector<ModelText::Fault> const& malformed() const noexcept { return malformed_; }
  /// How messages name the text that has the malformed lines.
  [[nodiscard]] std::string const& source() const noexcept { return source_; }

 private:
  std::string source_;
  std::vector<ModelText::Fault> malformed_;
};

/// The model in a file; "-" is the standard input. Throws a `ModelFailure` that says what to do if it cannot be read.
/// In strict mode, it has all malformed lines.
[[nodiscard]] ModelState readModelFile(std::string const& name, TDFChangeFile::InputMode mode);

/// The text of a model, possibly with malformed lines. Throws a `ModelFailure` if it cannot be read.
[[nodiscard]] ModelText readModelText(std::string const& name);

/// The file of a model that is to be edited and saved. Throws a `ModelFailure` if it cannot be read.
[[nodiscard]] session::ModelFile readEditedFile(std::string const& name);

}  // namespace tarn::tool
