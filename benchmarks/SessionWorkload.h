#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <tarn/DynamicTDF.h>
#include <tarn/PhysicsData.h>
#include <tarn/ProvisionalTDF.h>
#include <tarn/session/Session.h>

namespace tarn::benchmarks {

/// A session on a set-up with two thirds of its parameters in one object, where they form chains of eleven, and the
/// others in cells of two parameters each. Each parameter of a chain, but the first, is available while the one before
/// it is true. A last object has parameters whose rules look at all cells.
///
/// Each operation checks its answer before it returns, and throws a `std::logic_error` if it is not the expected one.
class SessionWorkload {
 public:
  /// With about so many parameters.
  explicit SessionWorkload(std::size_t parameters);

  /// Switches the first option of a chain off or, with every second call, on again. Ten others depend on it. Each pair
  /// of calls takes another chain.
  void edit();
  /// The edit that `edit` would make next, tried in a session. Each call takes another chain.
  void tryEdit();
  /// Takes the last edit back.
  void undo();
  void redo();
  /// The edit in the state below the session, without a session's answer, and a rollback. `onlyEdit` is called with the
  /// part of the work that is the edit.
  template <class OnlyEdit>
  void editBelow(OnlyEdit onlyEdit) {
    ProvisionalTDF::Mark const mark = below_->mark();
    Edit const next = nextEdit(number_++ * 2);
    onlyEdit([&] { (void)below_->apply(next); });
    below_->rollback(mark);
  }
  /// Each call looks at another option, or asks why it has its value.
  void look();
  void why();

  /// Rules that look at all cells.
  enum class Rule {
    /// `any`, decided by the first cell.
    AnyFirst,
    /// `any`, decided by the last cell.
    AnyLast,
    /// `all`, decided by the last cell.
    AllLast,
    /// `any` and `all` that each cell decides.
    AnyNone,
    AllHold,
    /// A number of cells.
    Count
  };
  static std::vector<std::pair<Rule, char const*>> const& rulesOfAllCells();
  /// Asks why the parameter with such a rule is available, or is not.
  void whyOfAllCells(Rule rule);
  void lookOfAllCells(Rule rule);

  [[nodiscard]] std::size_t cells() const noexcept { return cells_; }
  [[nodiscard]] session::Session const& session() const noexcept { return *session_; }

 private:
  [[nodiscard]] Edit nextEdit(std::size_t number) const;
  /// With everything switched on.
  [[nodiscard]] std::string nextOption();

  std::size_t options_;
  std::size_t cells_;
  std::unique_ptr<PhysicsData> rules_;
  std::unique_ptr<session::Session> session_;
  DynamicTDF base_{false};
  std::unique_ptr<ProvisionalTDF> below_;
  std::size_t number_ = 0;
};

}  // namespace tarn::benchmarks
