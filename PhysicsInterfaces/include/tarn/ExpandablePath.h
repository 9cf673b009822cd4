#pragma once

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/PathPattern.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// Verifies what a path pattern names. There is no implementation in this library; pass null.
class DataVerifyInterface;

/// A path pattern that can be expanded to the objects that it matches in a model. `PathPattern` defines its syntax.
class TARN_EXPORT ExpandablePath {
 public:
  /// How to expand. Only the values false, true, true are in use, and `expand` always works that way: it returns
  /// objects, not parameters; only objects that the model holds; and each object once.
  struct Attributes {
    bool parameters;
    bool existing;
    bool unique;
  };

  /// Throws an `Error` when `pathPattern` cannot be parsed.
  ExpandablePath(DataVerifyInterface const* verifier, std::string const& pathPattern, Attributes attributes);

  /// Returns the paths of the objects that match, in the order of the model of `evalContext`. A relative pattern starts
  /// at `context`.
  [[nodiscard]] std::vector<std::string> expand(TDFContext const& context, EvalContext* evalContext) const;

 private:
  PathPattern pattern_;
};

}  // namespace tarn
