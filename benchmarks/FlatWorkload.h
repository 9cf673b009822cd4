#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <tarn/ModelState.h>

namespace tarn::benchmarks {

/// A flat set-up: one object with 13,000 truth values that switch each other on, as configurations of large programs
/// have. `CaseWorkload` has many small objects with short rules; this one has one large object whose rules form chains
/// up to 65 deep.
///
///     FlatWorkload const workload;
///     workload.rules();          // the text of a rule file
///     workload.everythingOn();   // the one object, each parameter "true"
///
/// Each parameter but the 13 roots has a parent and is available only while the parent is true. Further reads, 3.7 a
/// rule on average and 340 at most, are evaluated but never change the outcome of an edit. So switching a parameter off
/// withdraws exactly what is below it. That is 21 parameters on average, none at the median, and 2,499 at most. The
/// numbers are the same on every machine; the constructor throws a `std::logic_error` when they are not.
///
/// Needs the standard library only.
class FlatWorkload {
 public:
  FlatWorkload();

  static constexpr std::size_t parameterCount = 13'000;

  /// The path of the object that holds all parameters.
  [[nodiscard]] static std::string object();
  /// The name of a parameter. Parents come before their children.
  [[nodiscard]] static std::string name(std::size_t parameter);

  /// A rule file; the parameters are in the order of their numbers.
  [[nodiscard]] std::string rules() const;
  [[nodiscard]] ModelState everythingOn() const;

  /// How many parameters change when this one is switched off while everything is on: itself and all below it.
  [[nodiscard]] std::size_t changesOf(std::size_t parameter) const { return subtreeSizes_.at(parameter); }

  /// The parameter of the nth edit. The first 13,000 edits name each parameter once, in an order that mixes small and
  /// large ones.
  [[nodiscard]] static std::size_t parameterOfEdit(std::size_t edit);

 private:
  struct Rule {
    std::size_t parent;              // `noParent` for a root
    std::vector<std::size_t> reads;  // one of them must hold; the last one holds whenever the parent does
  };
  static constexpr std::size_t noParent = parameterCount;

  class Generator;
  void addTrees(Generator& generator);
  void addReads(Generator& generator);
  void countSubtrees();
  void checkShape() const;

  std::vector<Rule> rules_;
  std::vector<std::size_t> depths_;  // 1 for a root
  std::vector<std::size_t> subtreeSizes_;
};

}  // namespace tarn::benchmarks
