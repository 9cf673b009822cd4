#pragma once

#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PathPattern.h>

namespace tarn {

/// The reads that the evaluation of an expression may make: values of parameters, the existence and number of objects,
/// the name of its context. Explanation, lint, and everything that skips work because nothing has changed depend on it.
/// So it must name at least what the evaluation reads; it may name more.
struct TARN_EXPORT RuleReads {
  struct Parameter {
    /// The objects whose parameter is read. A relative pattern starts at the object that owns the rule.
    PathPattern objects;
    std::string name;
  };

  std::vector<Parameter> parameters;
  /// The objects whose existence is read.
  std::vector<PathPattern> objectSets;
  /// The name, type or path of the context object is read. So the result differs from object to object, even if nothing
  /// is read from the model.
  bool contextIdentity = false;
  /// The evaluation may read anything: the model, the context, and things outside the model that change between two
  /// evaluations. The lists of the other members are then incomplete. An expression with unknown reads is evaluated
  /// whenever its value is needed.
  bool unknown = false;

  /// The reads of an expression that reads exactly one parameter of the object that owns the rule.
  [[nodiscard]] static RuleReads ofOwnParameter(std::string name);

  /// Adds all reads of `other`.
  void add(RuleReads const& other);

  /// Whether the evaluation may read the model.
  [[nodiscard]] bool readsModel() const noexcept { return unknown || !parameters.empty() || !objectSets.empty(); }
  /// Whether the result is the same in every context. Never true with unknown reads.
  [[nodiscard]] bool isContextFree() const noexcept;
};

}  // namespace tarn
