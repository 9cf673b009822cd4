#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <tarn/SharedStrings.h>

#include "expression/Expression.h"

namespace tarn::rules {

/// A condition as tests in a row. Each test says which one comes next, or what the result is. `a and (b or not c)` is
///
///     0: a    true: 1      false: does not hold
///     1: b    true: holds  false: 2
///     2: c    true: does not hold  false: holds
///
/// The result is that of `Expression::truth`, and the same operands are evaluated in the same order. But an evaluation
/// reads a few bytes that lie next to each other, and not nodes all over the memory. Most conditions consist of tests
/// of parameters of the object itself, which need no node at all. Every other operand is evaluated as a node.
class FlatCondition {
 public:
  /// Holds always.
  FlatCondition() = default;
  /// `condition` must outlive this.
  explicit FlatCondition(Expression const& condition);

  [[nodiscard]] bool holds(Frame const& frame) const;

 private:
  struct Test {
    enum Kind : std::uint8_t {
      /// The parameter of the context object is true.
      IsTrue,
      /// The parameter of the context object has the text.
      HasText,
      /// The parameter of the context object has one of the texts.
      HasOneOf,
      /// The node holds.
      Node
    };

    std::string parameter;
    std::string const* text = nullptr;
    SharedStrings const* texts = nullptr;
    Expression const* node = nullptr;
    // The next tests.
    std::uint32_t ifTrue = 0;
    std::uint32_t ifFalse = 0;
    Kind kind = Node;
  };
  class Maker;

  // Beyond every test.
  static constexpr std::uint32_t holding = 0xffff'ffff;
  static constexpr std::uint32_t notHolding = 0xffff'fffe;

  [[nodiscard]] static bool passes(Test const& test, Frame const& frame);

  std::vector<Test> tests_;
};

}  // namespace tarn::rules
