#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/session/How.h>
#include <tarn/session/Item.h>

#include "session/RuledState.h"
#include "why/Choices.h"
#include "why/Prover.h"

namespace tarn::session {

/// Finds edits that may bring one state nearer to a goal: those that change a part of a rule in the way.
/// It goes from the goal to what its rules have read, and on to the rules of what is absent among that.
class Candidates {
 public:
  /// `sources` are those of the state to search from.
  Candidates(ProofSources const& sources, std::size_t most)
      : sources_(sources), state_(sources.state), choices_(sources.state), most_(most) {}

  [[nodiscard]] std::vector<Edit> towards(Goal const& goal);
  /// Parameters in the way that can have any number or text.
  [[nodiscard]] std::vector<Item> const& freeParams() const noexcept { return freeParams_; }

 private:
  /// An item that should be present, have another value, or be absent.
  struct Aim {
    Item item;
    std::optional<std::string> value;
    bool isAbsence = false;
    friend bool operator<(Aim const& a, Aim const& b) {
      return std::tie(a.item, a.value, a.isAbsence) < std::tie(b.item, b.value, b.isAbsence);
    }
  };

  void add(Edit edit);
  void aimAt(Aim aim);
  void open(Aim const& aim);
  [[nodiscard]] bool openValue(Aim const& aim);
  void openOverride(Item const& item);
  void openAbsence(Item const& item);
  void openPresence(Aim const& aim, Proof const& proof, std::size_t node);
  void ask(Aim const& aim);
  /// `value` is a value that the result should have, or hold.
  void openRules(ProofNode const& node, std::string const& value = {});
  void openExplanation(Explanation const& explanation, std::string const& value);
  void openLeaf(Explanation const& explanation, std::size_t leaf, bool wanted);
  void openComparison(Explanation const& explanation, Explanation::Node const& node, bool wanted);
  /// Changes numbers that one side of a comparison is computed from, so that the side reaches `target`.
  void openArithmetic(Explanation const& explanation, std::size_t side, std::string const& target);
  void openSet(Explanation const& explanation, Explanation::Node const& node, std::string const& name = {});
  /// Every parameter that a part has read takes other values; parameters that can have any text take `texts`.
  void openReads(Explanation const& explanation, std::size_t node, std::vector<std::string> const& texts = {});
  /// `name` is that of an object that should be there; "" for any.
  void changeObjects(ModelRead const& read, std::string const& name = {});
  void setTo(Item const& item, std::string const& value);
  void setToOthers(Item const& item, std::vector<std::string> const& texts);
  void noteFree(Item const& item);
  [[nodiscard]] bool isFull() const noexcept { return edits_.size() >= most_; }

  ProofSources const& sources_;
  RuledState const& state_;
  Choices choices_;
  std::size_t most_;

  std::vector<Edit> edits_;
  std::vector<Aim> aims_;
  std::set<Aim> known_;
  std::vector<Item> freeParams_;
};

}  // namespace tarn::session
