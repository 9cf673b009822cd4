#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelTDF.h>
#include <tarn/TDFContext.h>

namespace tarn {

/// A pattern that names objects of a model. Rules write it between braces.
///
///     Turbulence          the singleton child of that type        ..        the parent
///     Boundary:inlet      one named child                         /A/B      from the root of the model
///     Boundary:*          every child of the type                 ^Domain   the nearest object of that type, at the
///                                                                           context or above it
///     *                   every child                             @         the object that owns the rule
///     **                  any number of levels, also none
///
/// Steps are joined by "/". A relative pattern starts at the context object. A blank is part of a type or name, except
/// at its ends. "\" takes the next character as it is.
class TARN_EXPORT PathPattern {
 public:
  enum class Start { Context, Root, Nearest, Owner };
  enum class StepKind { Child, ChildrenOfType, AnyChild, AnyDepth, Parent };

  struct Step {
    StepKind kind;
    std::string type;  // of Child and ChildrenOfType
    std::string name;  // of Child; empty for a singleton
  };

  /// Why a text is not a pattern: the position of the mistake, and a message.
  struct Fault {
    std::size_t offset;
    std::size_t length;
    std::string message;
  };

  /// A pattern has at most this many steps; longer ones are refused.
  static constexpr std::size_t maxSteps = 1000;

  /// The pattern that names the context object itself.
  PathPattern() = default;

  /// Parses `text`. Throws an `Error` when it is not a pattern.
  explicit PathPattern(std::string_view text);

  /// Parses `text`. When it is not a pattern, fills `fault` and returns nothing.
  [[nodiscard]] static std::optional<PathPattern> parse(std::string_view text, Fault& fault);

  /// Parses a pattern whose last component is the name of a parameter. The name goes to `name`, the rest is returned.
  [[nodiscard]] static std::optional<PathPattern> parseParameter(std::string_view text, std::string& name,
                                                                 Fault& fault);

  [[nodiscard]] Start start() const noexcept { return start_; }
  /// The type after `^`; empty for other starts.
  [[nodiscard]] std::string const& startType() const noexcept { return startType_; }
  [[nodiscard]] std::vector<Step> const& steps() const noexcept { return steps_; }

  /// True when the pattern names at most one object, whatever the model holds.
  [[nodiscard]] bool isSingle() const noexcept { return single_; }
  /// True when the pattern names the same objects in every context: it starts at the root.
  [[nodiscard]] bool isAbsolute() const noexcept { return start_ == Start::Root; }

  /// Gives the path of the one object that the pattern names in `context`; the object need not exist. Returns false
  /// when there is no such path: the parent of the root, or no object of the type after `^`. Requires `isSingle()`.
  bool resolve(TDFContext const& context, std::string& path) const;

  /// The objects that the pattern matches in `model`, each once, in the order of the model. `Type:*` reads the model by
  /// `getChildObjectPathsByType`, `*` and `**` by `getChildObjectPaths`, depth first and parents before children. When
  /// steps lead to single objects, only the last of these steps is checked, by `hasObject`.
  [[nodiscard]] std::vector<std::string> expand(TDFContext const& context, ModelTDF const& model) const;

  /// Calls `holds` for the objects that `expand` returns, in their order, until it returns true. Returns whether it
  /// did. Further objects are not searched for, so the search is cheap when an early object is a match: `Type:*` reads
  /// the model by `anyChildOfType`. A pattern with a step up, with `**` or with more than 16 stars is expanded first.
  /// So only some of the matching objects may have been visited. `holds` may read the model, and must not change it.
  bool findIf(TDFContext const& context, ModelTDF const& model,
              std::function<bool(std::string const& path)> const& holds) const;

  /// One pattern for everything that this pattern names in the contexts of all objects that `base` names. It is
  /// relative to the same context as `base`. When `base` does not say what `^` means, the result names more objects,
  /// never fewer.
  [[nodiscard]] PathPattern seenFrom(PathPattern const& base) const;

  /// The same pattern without its first step. The pattern itself when it has no steps.
  [[nodiscard]] PathPattern withoutFirstStep() const;

  /// The pattern as text that parses back to it.
  [[nodiscard]] std::string text() const;

  /// The path of an object as the beginning of a pattern: characters that mean something in patterns are escaped, "/"
  /// and ":" still separate. So `escapedPath(path) + "/*"` names the children of exactly that object. "" for the root.
  [[nodiscard]] static std::string escapedPath(std::string_view path);

 private:
  void classify() noexcept;

  Start start_ = Start::Context;
  std::string startType_;
  std::vector<Step> steps_;
  bool single_ = true;
};

}  // namespace tarn
