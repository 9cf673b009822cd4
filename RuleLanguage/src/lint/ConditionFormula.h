#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tarn::rules {

/// A logical formula over variables with few values, and the search for values that make it true.
///
/// An atom says for each value of its variable, or for each pair of values of its two variables, whether it holds. The
/// nodes are numbers; a node must exist before another one uses it. The search assigns values one after the other and
/// gives up a partial assignment as soon as it decides the formula. A step is one evaluation of the formula with one
/// more value, or with another one. The number of steps is limited, so the search can end without an answer.
class ConditionFormula {
 public:
  using Node = std::size_t;
  using Variable = std::size_t;

  ConditionFormula() {
    // Most formulas are small.
    nodes_.reserve(32);
    parts_.reserve(32);
    sizes_.reserve(8);
  }

  /// A variable with `size` values, numbered from 0.
  Variable addVariable(std::size_t size);
  /// Reserves a variable whose number of values is set later, before the first search.
  Variable addVariable() { return addVariable(0); }
  void setSize(Variable variable, std::size_t size) { sizes_[variable] = size; }
  [[nodiscard]] std::size_t size(Variable variable) const { return sizes_[variable]; }
  [[nodiscard]] std::size_t variableCount() const noexcept { return sizes_.size(); }

  [[nodiscard]] Node constant(bool value);
  /// An atom over `variables`, one or two. Its table is set later, before the first search.
  [[nodiscard]] Node addAtom(std::span<Variable const> variables) { return add(Kind::Atom, variables); }
  [[nodiscard]] Node addAtom(Variable variable) { return addAtom(std::span<Variable const>(&variable, 1)); }
  /// `table` has an entry for each value of the first variable; with two, for each value of the second, in rows.
  void setTable(Node atom, std::vector<bool> const& table);
  [[nodiscard]] Node negation(Node operand) { return add(Kind::Not, std::span<Node const>(&operand, 1)); }
  [[nodiscard]] Node conjunction(std::span<Node const> operands) { return add(Kind::And, operands); }
  [[nodiscard]] Node disjunction(std::span<Node const> operands) { return add(Kind::Or, operands); }
  [[nodiscard]] Node conjunction(Node one, Node other) { return conjunction(std::array{one, other}); }
  [[nodiscard]] Node disjunction(Node one, Node other) { return disjunction(std::array{one, other}); }

  /// Marks in `marks` all variables that `node` depends on.
  void markVariables(Node node, std::vector<bool>& marks) const;

  /// The value of a variable with which the formula holds whatever its value is.
  static constexpr std::size_t anyValue = static_cast<std::size_t>(-1);

  /// Whether some values make all nodes true. Nothing when `steps`, which counts down, results in 0 before that is
  /// known. `found`, when it is not null, gets such values by variable when there are some.
  [[nodiscard]] std::optional<bool> isSatisfiable(std::span<Node const> nodes, std::size_t& steps,
                                                  std::vector<std::size_t>* found = nullptr) const;

 private:
  enum class Kind : std::uint8_t { Constant, Atom, Not, And, Or };
  enum class Truth : std::uint8_t { No, Yes, Open };
  struct Record {
    Kind kind;
    bool value = false;  // of a constant
    // The operands of an operator, or the variables of an atom, in `parts_`; and the table of an atom in `tables_`.
    std::size_t firstPart = 0;
    std::size_t partCount = 0;
    std::size_t firstEntry = 0;
    std::size_t entryCount = 0;
  };
  static constexpr std::size_t unset = anyValue;
  struct Search {
    std::vector<std::size_t> values;  // by variable
    std::size_t steps = 0;
    // A variable whose value would help, its atom, and whether the atom is wanted to hold.
    Variable open = unset;
    Node openAtom = 0;
    bool isWanted = true;
    // A decision stays until a value is taken back. An open part is open for one evaluation: a check that is
    // called in many places is one node.
    struct Known {
      std::size_t evaluation = 0;
      Truth truth = Truth::Open;
    };
    std::vector<Known> known;
    std::size_t evaluation = 0;
    struct Decided {
      Node node;
      std::size_t level;  // the number of values that were set
    };
    std::vector<Decided> decided;
    std::size_t level = 0;
  };

  [[nodiscard]] Node add(Kind kind, std::span<std::size_t const> parts);
  [[nodiscard]] std::span<std::size_t const> partsOf(Record const& record) const {
    return std::span(parts_).subspan(record.firstPart, record.partCount);
  }
  [[nodiscard]] Truth evaluate(Node node, bool isWanted, Search& search) const;
  [[nodiscard]] Truth evaluateNew(Node node, bool isWanted, Search& search) const;
  /// The value of the open variable to begin with: one with which its atom is as it is wanted.
  [[nodiscard]] std::size_t firstValue(Search const& search) const;
  [[nodiscard]] Truth evaluateAll(std::span<Node const> nodes, Search& search) const;
  [[nodiscard]] static Truth opposite(Truth truth) noexcept;

  std::vector<std::size_t> sizes_;
  std::vector<Record> nodes_;
  // Shared by all nodes, because a vector for each would cost more than the search.
  std::vector<std::size_t> parts_;
  std::vector<bool> tables_;
};

}  // namespace tarn::rules
