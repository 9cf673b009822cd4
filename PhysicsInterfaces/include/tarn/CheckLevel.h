#pragma once

namespace tarn {

/// How serious it is that a check of the rules fails.
enum class CheckLevel {
  /// The model must not be used as it is.
  Error,
  /// The model may be as it is, but someone should look at it.
  Warning
};

}  // namespace tarn
