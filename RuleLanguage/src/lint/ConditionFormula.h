#pragma once

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
    nodes_.reserve(8);
    sizes_.reserve(4);
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
  [[nodiscard]] Node addAtom(std::vector<Variable> variables);
  /// `table` has an entry for each value of the first variable; with two, for each value of the second, in rows.
  void setTable(Node atom, std::vector<bool> table) { nodes_[atom].table = std::move(table); }
  [[nodiscard]] Node negation(Node operand);
  [[nodiscard]] Node conjunction(std::vector<Node> operands);
  [[nodiscard]] Node disjunction(std::vector<Node> operands);

  [[nodiscard]] std::vector<Variable> const& variablesOf(Node atom) const { return nodes_[atom].variables; }
  /// Marks in `marks` all variables that `node` depends on.
  void markVariables(Node node, std::vector<bool>& marks) const;

  /// Whether some values make all nodes true. Nothing when `steps`, which counts down, results in 0 before that is
  /// known.
  [[nodiscard]] std::optional<bool> isSatisfiable(std::span<Node const> nodes, std::size_t& steps) const;

 private:
  enum class Kind : std::uint8_t { Constant, Atom, Not, And, Or };
  enum class Truth : std::uint8_t { No, Yes, Open };
  struct Record {
    Kind kind;
    bool value = false;                    // of a constant
    std::vector<Node> operands = {};       // of an operator
    std::vector<Variable> variables = {};  // of an atom
    std::vector<bool> table = {};
  };
  static constexpr std::size_t unset = static_cast<std::size_t>(-1);
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

  [[nodiscard]] Node add(Record record);
  [[nodiscard]] Truth evaluate(Node node, bool isWanted, Search& search) const;
  [[nodiscard]] Truth evaluateNew(Node node, bool isWanted, Search& search) const;
  /// The value of the open variable to begin with: one with which its atom is as it is wanted.
  [[nodiscard]] std::size_t firstValue(Search const& search) const;
  [[nodiscard]] Truth evaluateAll(std::span<Node const> nodes, Search& search) const;
  [[nodiscard]] static Truth opposite(Truth truth) noexcept;

  std::vector<std::size_t> sizes_;
  std::vector<Record> nodes_;
};

}  // namespace tarn::rules
