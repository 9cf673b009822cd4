#pragma once

#include <cstddef>
#include <vector>

#include <tarn/Explanation.h>

namespace tarn::session {

/// A part of an explanation that is asked about as a whole: a comparison, a test of existence, a parameter.
struct Leaf {
  std::size_t node;
  /// The truth that it would need for the whole to change. Its result is the opposite.
  bool wanted;
};

/// The comparison seen from its other side: `a < b` is `b > a`. Other operations stay as they are.
[[nodiscard]] constexpr Explanation::Operation mirrored(Explanation::Operation operation) noexcept {
  using Operation = Explanation::Operation;
  switch (operation) {
    case Operation::Less:
      return Operation::Greater;
    case Operation::LessEqual:
      return Operation::GreaterEqual;
    case Operation::Greater:
      return Operation::Less;
    case Operation::GreaterEqual:
      return Operation::LessEqual;
    default:
      return operation;
  }
}

/// The parts whose change could change the result of the node `whole`, in the order of the text. For a failing `and`
/// all of them have to change, for a failing `or` one.
[[nodiscard]] inline std::vector<Leaf> leavesOf(Explanation const& explanation, std::size_t whole = 0) {
  using Operation = Explanation::Operation;
  std::vector<Leaf> leaves;
  if (explanation.nodes.empty()) return leaves;
  std::vector<std::size_t> open{whole};
  while (!open.empty()) {
    std::size_t const index = open.back();
    open.pop_back();
    Explanation::Node const& node = explanation.nodes[index];
    bool const isOpened = node.operation == Operation::Not || node.operation == Operation::And ||
                          node.operation == Operation::Or || node.operation == Operation::Implies ||
                          node.operation == Operation::NamedRule;
    if (isOpened && !node.children.empty()) {
      open.insert(open.end(), node.children.rbegin(), node.children.rend());
    } else {
      leaves.push_back({index, !node.result.truth});
    }
  }
  return leaves;
}

}  // namespace tarn::session
