#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <tarn/PhysicsData.h>
#include <tarn/QuantityType.h>

#include "expression/Issue.h"

// How the numbers in expressions get their quantity types. This is settled once, after all rules are read: afterwards
// an evaluation converts a number with a pointer that it already has.

namespace tarn::rules {

class QuantityLiteral;

/// Exists while the rule for a quantity type is evaluated on this thread. Meanwhile the numbers of parameters count
/// alone, without their units: the rule may compare the parameter whose type it gives, which would ask for its type
/// again, without end. Results of that time differ from others and are not kept.
class DeterminingQuantityType {
 public:
  DeterminingQuantityType() noexcept;
  ~DeterminingQuantityType();
  DeterminingQuantityType(DeterminingQuantityType const&) = delete;
  DeterminingQuantityType& operator=(DeterminingQuantityType const&) = delete;
  [[nodiscard]] static bool isActive() noexcept;

 private:
  bool const wasActive_;
};

/// The quantity types of all parameters with one name.
struct ParameterQuantity {
  /// The type of all of them; null when they differ, or when some have none or compute it.
  QuantityType const* sure = nullptr;
  /// The one type that some of them have; null when there is none or more than one.
  QuantityType const* likely = nullptr;
  /// When `sure` is null: the type of each that has one. A null type is computed at each evaluation.
  std::unordered_map<ParamValueDef const*, QuantityType const*> each;
};

/// Knows the quantity types of the parameters of a whole rule database, by the names of the parameters.
class QuantityIndex {
 public:
  /// Reads all objects of `data`, which must be complete and outlive the index.
  explicit QuantityIndex(PhysicsData const& data);

  /// Null when no parameter of that name has a quantity type.
  [[nodiscard]] std::shared_ptr<ParameterQuantity const> of(std::string const& parameter) const;
  [[nodiscard]] PhysicsData const& data() const noexcept { return data_; }
  /// The name of a quantity type of the database, for messages.
  [[nodiscard]] std::string const& nameOf(QuantityType const& type) const;

 private:
  PhysicsData const& data_;
  std::unordered_map<std::string, std::shared_ptr<ParameterQuantity const>> byName_;
};

/// Binds one expression: gives its nodes their quantity types and its quantities their conversions.
class QuantityBinding {
 public:
  /// `index` must stay valid.
  explicit QuantityBinding(QuantityIndex const& index) : index_(index) {}

  /// Binds a whole expression and returns what is wrong with its quantities, in the order of their positions. Called
  /// rules must be bound already.
  [[nodiscard]] std::vector<Issue> bind(Expression& expression);

  // For the nodes.
  [[nodiscard]] QuantityIndex const& index() const noexcept { return index_; }
  /// Adds a literal that gets its conversion from its neighbours or, if none has a type, at the end.
  void open(QuantityLiteral& literal) { open_.push_back(&literal); }
  void report(Issue issue) { issues_.push_back(std::move(issue)); }

 private:
  QuantityIndex const& index_;
  std::vector<QuantityLiteral*> open_;
  std::vector<Issue> issues_;
};

/// The units of a type as a sentence lists them: "[V], [mV]"; the first ten.
[[nodiscard]] std::string listedUnits(QuantityType const& type);

}  // namespace tarn::rules
