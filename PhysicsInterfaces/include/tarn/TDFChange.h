#pragma once

#include <string>

#include <tarn/Export.h>
#include <tarn/TDFPath.h>

namespace tarn {

/// One item of model text: an object's path, the name of a parameter and its value. Use it as a `TDFPath` for the path
/// of the object.
class TARN_EXPORT TDFChange : public TDFPath {
 public:
  std::string name;
  std::string value;

  /// Parses `path/name=value`. The first "=" divides; white space around it and at the ends of the text is dropped; the
  /// path may be empty (`/name=value`), and so may the value. A text `path/` is an object that holds no parameters:
  /// name and value are empty. Throws an `Error` for a text that is neither, for a path that `TDFPath` refuses, and for
  /// a name that is empty or holds a ":".
  explicit TDFChange(std::string const& text);

  TDFChange(TDFPath path, std::string name, std::string value);
};

}  // namespace tarn
