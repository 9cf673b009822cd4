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

/// A pattern that names objects of a model, as rules write it between braces.
///
///     Turbulence          the singleton child of that type        ..        the parent
///     Boundary:inlet      one named child                         /A/B      from the root of the model
///     Boundary:*          every child of the type                 ^Domain   the nearest object of that type at or
///     above
///     *                   every child                             @         the object that owns the rule
///     **                  any number of levels, none included
///
/// Steps are joined by "/". A relative pattern starts at the context object. A blank is part of a name, but not at the
/// ends of a type or name; "\" takes the next character as it is.
class TARN_EXPORT PathPattern {
 public:
  enum class Start { Context, Root, Nearest, Owner };
  enum class StepKind { Child, ChildrenOfType, AnyChild, AnyDepth, Parent };

  struct Step {
    StepKind kind;
    std::string type;  // of Child and ChildrenOfType
    std::string name;  // of Child; empty for a singleton
  };

  /// What is wrong with a text that is no pattern, and where in it.
  struct Fault {
    std::size_t offset;
    std::size_t length;
    std::string message;
  };

  /// At most this many steps.
  static constexpr std::size_t maxSteps = 1000;

  /// The context object itself.
  PathPattern() = default;

  /// Parses `text`. Throws an `Error` when it is no pattern.
  explicit PathPattern(std::string_view text);

  /// Parses `text`; on failure nothing is returned and `fault` is filled.
  [[nodiscard]] static std::optional<PathPattern> parse(std::string_view text, Fault& fault);

  /// Parses a pattern whose last component is the name of a parameter, and divides the two.
  [[nodiscard]] static std::optional<PathPattern> parseParameter(std::string_view text, std::string& name,
                                                                 Fault& fault);

  [[nodiscard]] Start start() const noexcept { return start_; }
  /// The type that `^` names; empty for other starts.
  [[nodiscard]] std::string const& startType() const noexcept { return startType_; }
  [[nodiscard]] std::vector<Step> const& steps() const noexcept { return steps_; }

  /// True when the pattern names at most one object, whatever the model holds.
  [[nodiscard]] bool isSingle() const noexcept { return single_; }
  /// True when the objects named are the same in every context: the pattern starts at the root.
  [[nodiscard]] bool isAbsolute() const noexcept { return start_ == Start::Root; }

  /// The path of the one object that a single pattern names in `context`, whether the model holds it or not. Returns
  /// false when there is none: the parent of the root, or no object of the type that `^` names. `isSingle` is required.
  bool resolve(TDFContext const& context, std::string& path) const;

  /// The objects that the pattern matches in `model`, each once, in the order of the model. `Type:*` is read by
  /// `getChildObjectPathsByType`, `*` and `**` by `getChildObjectPaths`, depth first with parents before children; of
  /// steps to a single object only the last is asked for, by `hasObject`.
  [[nodiscard]] std::vector<std::string> expand(TDFContext const& context, ModelTDF const& model) const;

  /// Asks about the objects that `expand` gives, in their order, until `holds` does; returns whether it did. What lies
  /// behind is not looked for, so the question whether there is one such object is cheap where the first one is. An
  /// object may be asked about twice when the model lists it twice.
  bool findIf(TDFContext const& context, ModelTDF const& model,
              std::function<bool(std::string const& path)> const& holds) const;

  /// What the pattern names when it is used in the context of each object that `base` names, as one pattern seen from
  /// where `base` is seen. Where `^` cannot be told from the components of `base`, the result names more, never less.
  [[nodiscard]] PathPattern seenFrom(PathPattern const& base) const;

  /// The pattern as text that parses back to it.
  [[nodiscard]] std::string text() const;

 private:
  void classify() noexcept;

  Start start_ = Start::Context;
  std::string startType_;
  std::vector<Step> steps_;
  bool single_ = true;
};

}  // namespace tarn
