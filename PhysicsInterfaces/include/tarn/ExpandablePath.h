#pragma once

#include <string>
#include <vector>

#include <tarn/EvalContext.h>
#include <tarn/Export.h>
#include <tarn/PathPattern.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// Checks what a path pattern names. No implementation exists in this family; hand in null.
class DataVerifyInterface;

/// A path pattern that is expanded to the objects it matches in a model. See `PathPattern` for what it may hold.
class TARN_EXPORT ExpandablePath {
 public:
  /// How the expansion is made. Only the values false, true, true are in use, and they are what `expand` does: matches
  /// are objects, not parameters; they are objects that the model holds; and each is given once.
  struct Attributes {
    bool parameters;
    bool existing;
    bool unique;
  };

  /// Throws an `Error` when `pathPattern` is no pattern.
  ExpandablePath(DataVerifyInterface const* verifier, std::string const& pathPattern, Attributes attributes);

  /// The paths of the objects that match, seen from `context`, in the order of the model that `evalContext` reads.
  [[nodiscard]] std::vector<std::string> expand(TDFContext const& context, EvalContext* evalContext) const;

 private:
  PathPattern pattern_;
};

}  // namespace tarn
