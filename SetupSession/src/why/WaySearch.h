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
#include "why/Prover.h"

namespace tarn::session {

/// Finds edits that may bring one state nearer to a goal: those that change a part of a rule in the way.
/// It goes from the goal to what its rules have read, and on to the rules of what is absent among that.
class Candidates {
 public:
  /// `sources` are those of the state to search from.
  Candidates(ProofSources const& sources, std::size_t most) : sources_(sources), state_(sources.state), most_(most) {}

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
  void openAbsence(Item const& item);
  void openPresence(Aim const& aim, Proof const& proof, std::size_t node);
  void ask(Aim const& aim);
  void openRules(ProofNode const& node);
  void openLeaf(Explanation const& explanation, std::size_t leaf, bool wanted);
  void openComparison(Explanation const& explanation, Explanation::Node const& node, bool wanted);
  void openSet(Explanation const& explanation, Explanation::Node const& node);
  /// Every parameter that a part has read takes other values.
  void openReads(Explanation const& explanation, std::size_t node);
  void changeObjects(ModelRead const& read);
  void setTo(Item const& item, std::string const& value);
  void setToOthers(Item const& item, std::string const& avoided);
  [[nodiscard]] std::vector<std::string> valuesOf(Item const& item) const;
  [[nodiscard]] std::string freeName(std::string const& parent, std::string const& type) const;
  [[nodiscard]] bool isFull() const noexcept { return edits_.size() >= most_; }

  ProofSources const& sources_;
  RuledState const& state_;
  std::size_t most_;
  std::vector<Edit> edits_;
  std::vector<Aim> aims_;
  std::set<Aim> known_;
  std::vector<Item> freeParams_;
};

}  // namespace tarn::session
