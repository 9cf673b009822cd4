#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include <tarn/Export.h>

namespace tarn {

/// New names for items of a model. The keys are paths of the model as it is, without names that equal their types. A
/// path that is not in the text has no effect.
struct ModelTextNames {
  /// An object, and the last component of its new path: "Wall:hub" for "/Case/Boundary:hub". Paths below it follow.
  std::map<std::string, std::string, std::less<>> objects;
  /// A parameter by its object and its name, and the new name. Nothing: the parameter loses its lines.
  std::map<std::string, std::map<std::string, std::optional<std::string>, std::less<>>, std::less<>> params;
};

/// Returns model text in which items have other names. `TDFChangeFile` describes model text. Everything else is kept
/// byte for byte: values, comments, the order of lines, indentation, blanks around names, line ends, a byte order mark.
/// A name that equals its type is removed with its colon only where it is renamed.
///
/// The new names are not compared with the names of other items; the caller has to see that none is taken. Throws a
/// `ParseError` that names line and column if `text` is malformed. Linear in the length of the text, times the
/// logarithm of the number of names.
[[nodiscard]] TARN_EXPORT std::string renameInModelText(std::string_view text, ModelTextNames const& names);

}  // namespace tarn
