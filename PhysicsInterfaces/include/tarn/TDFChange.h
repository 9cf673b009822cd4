#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/TDFPath.h>

namespace tarn {

/// One item of model text: the path of an object, the name of a parameter and its value. As a `TDFPath`, it is the path
/// of the object.
class TARN_EXPORT TDFChange : public TDFPath {
 public:
  std::string name;
  std::string value;

  /// Parses `path/name=value`. The text is split at the first "="; white space around it and at the ends of the text is
  /// dropped. The path may be empty (`/name=value`), and the value too. A text `path/` is an object without parameters:
  /// name and value are then empty. Throws an `Error` for any other text, for a path that `TDFPath` refuses, and for a
  /// name that is empty or contains a ":".
  explicit TDFChange(std::string const& text);

  TDFChange(TDFPath path, std::string name, std::string value);
};

}  // namespace tarn
