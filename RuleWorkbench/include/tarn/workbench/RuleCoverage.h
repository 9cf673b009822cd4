#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/ModelState.h>
#include <tarn/PhysicsData.h>
#include <tarn/TextPlace.h>

namespace tarn::workbench {

/// The kinds of things that models can show of rules. The numbers are part of the interface. Later versions may add
/// kinds at the end.
enum class CoverageKind : int {
  /// An entry for a parameter or a type of children: available, and not available if the rules can make it so.
  Entry = 0,
  /// Each value of a `Context` for which an entry is live.
  Context = 1,
  /// A condition: true, and false.
  Condition = 2,
  /// An operand of a condition: it decided by being true, and by being false.
  Operand = 3,
  /// Each fixed allowed value: a parameter had it.
  AllowedValue = 4,
  /// Each branch of a default that depends on conditions.
  Default = 5,
  /// Each branch of an override, and no override.
  Override = 6,
  /// A bound of a value, or of a number of children: kept, and broken.
  Bound = 7,
  /// A check of an object or of the whole model: passed, and failed.
  Check = 8,
  /// A pattern: a text matched it, and one did not.
  Pattern = 9
};

/// "entry", "context", "condition", "operand", "allowed-value", "default", "override", "bound", "check" or "pattern".
/// Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view coverageKindName(CoverageKind kind) noexcept;

/// One thing that can turn out in several ways.
struct TARN_EXPORT CoverageItem {
  struct Outcome {
    /// "available", "true", "passed", or the value.
    std::string name;
    /// How often models have shown it.
    std::size_t times = 0;
  };

  CoverageKind kind = CoverageKind::Entry;
  /// The object type, and the parameter, type of children or check. "" for global checks and named rules.
  std::string typePath;
  std::string entry;
  /// The key of the rule in its file: "Available". For named rules "Checks", "Lists" or "Values".
  std::string attribute;
  /// The allowed value that a condition is about, under "Allowed String List Checks". Otherwise "".
  std::string value;
  /// The condition or operand as it is written. "" for the other kinds.
  std::string text;
  /// Where the rule is written. Not known for rules that a program made.
  TextPlace place;
  std::vector<Outcome> outcomes;

  [[nodiscard]] std::size_t seen() const noexcept;
  [[nodiscard]] bool isCovered() const noexcept { return seen() == outcomes.size(); }
};

/// Finds out how much of a rule database some models have shown: what was available and what was not, which conditions
/// held and which did not, which values and branches occurred. Rules that no model of the tests has shown are rules
/// that nobody has tested.
///
///     RuleCoverage coverage(*rules);
///     for (ModelState const& model : models) coverage.add(model);
///     for (CoverageItem const& item : coverage.items()) {
///       if (!item.isCovered()) std::cout << item.place.text() << '\n';
///     }
///
/// An entry that is not available by its `Context` is not evaluated, so its conditions are not counted then. Rules that
/// a program made are counted as far as they are conditions.
class TARN_EXPORT RuleCoverage {
 public:
  /// `rules` must outlive this.
  explicit RuleCoverage(PhysicsData const& rules);
  ~RuleCoverage();
  RuleCoverage(RuleCoverage&&) noexcept;
  RuleCoverage& operator=(RuleCoverage&&) noexcept;

  /// Walks a model from each object at its root that the rules look at. Throws what a rule throws. Costs a few walks of
  /// the whole model.
  void add(ModelState const& model);
  /// Adds the counts of `other`, which is about the same rules. So several threads can each have their own.
  void add(RuleCoverage const& other);

  /// Everything there is to show, in the order of the rules: object types, each with its parameters, children and
  /// checks; then global checks, then named rules. Linear in the size of the rules.
  [[nodiscard]] std::vector<CoverageItem> items() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// How many outcomes there are, and how many were seen.
struct TARN_EXPORT CoverageCount {
  std::size_t seen = 0;
  std::size_t all = 0;

  /// The part that was seen, in percent, rounded down: 100 only when all were seen. 100 when there are none.
  [[nodiscard]] std::size_t percent() const noexcept { return all == 0 ? 100 : seen * 100 / all; }
};

/// The count over `items` of one kind, and of all kinds. Linear in their number.
[[nodiscard]] TARN_EXPORT CoverageCount countOf(std::vector<CoverageItem> const& items, CoverageKind kind) noexcept;
[[nodiscard]] TARN_EXPORT CoverageCount countOf(std::vector<CoverageItem> const& items) noexcept;

}  // namespace tarn::workbench
