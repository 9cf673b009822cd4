#include "lint/ConditionFormula.h"

#include <algorithm>
#include <utility>

namespace tarn::rules {

ConditionFormula::Variable ConditionFormula::addVariable(std::size_t size) {
  sizes_.push_back(size);
  return sizes_.size() - 1;
}

ConditionFormula::Node ConditionFormula::add(Kind kind, std::span<std::size_t const> parts) {
  Record record{kind};
  record.firstPart = parts_.size();
  record.partCount = parts.size();
  parts_.insert(parts_.end(), parts.begin(), parts.end());
  nodes_.push_back(record);
  return nodes_.size() - 1;
}

ConditionFormula::Node ConditionFormula::constant(bool value) {
  Node const node = add(Kind::Constant, {});
  nodes_[node].value = value;
  return node;
}

void ConditionFormula::setTable(Node atom, std::vector<bool> const& table) {
  auto& record = nodes_[atom];
  // Tables are computed again with other values, mostly as many.
  if (table.size() > record.entryCount) {
    record.firstEntry = tables_.size();
    tables_.insert(tables_.end(), table.begin(), table.end());
  } else {
    std::copy(table.begin(), table.end(), tables_.begin() + static_cast<std::ptrdiff_t>(record.firstEntry));
  }
  record.entryCount = table.size();
}

void ConditionFormula::markVariables(Node node, std::vector<bool>& marks) const {
  std::vector<Node> open{node};
  while (!open.empty()) {
    auto const& record = nodes_[open.back()];
    open.pop_back();
    auto const parts = partsOf(record);
    if (record.kind == Kind::Atom) {
      for (Variable const variable : parts) marks[variable] = true;
    } else {
      open.insert(open.end(), parts.begin(), parts.end());
    }
  }
}

ConditionFormula::Truth ConditionFormula::opposite(Truth truth) noexcept {
  return truth == Truth::Open ? Truth::Open : truth == Truth::Yes ? Truth::No : Truth::Yes;
}

ConditionFormula::Truth ConditionFormula::evaluate(Node node, bool isWanted, Search& search) const {
  auto& known = search.known[node];
  if (known.truth != Truth::Open || known.evaluation == search.evaluation) return known.truth;
  known = {search.evaluation, evaluateNew(node, isWanted, search)};
  if (known.truth != Truth::Open) search.decided.push_back({node, search.level});
  return known.truth;
}

ConditionFormula::Truth ConditionFormula::evaluateNew(Node node, bool isWanted, Search& search) const {
  auto const& record = nodes_[node];
  switch (record.kind) {
    case Kind::Constant:
      return record.value ? Truth::Yes : Truth::No;
    case Kind::Atom: {
      std::size_t index = 0;
      for (Variable const variable : partsOf(record)) {
        if (search.values[variable] == unset) {
          if (search.open == unset) {
            search.open = variable;
            search.openAtom = node;
            search.isWanted = isWanted;
          }
          return Truth::Open;
        }
        index = index * sizes_[variable] + search.values[variable];
      }
      return tables_[record.firstEntry + index] ? Truth::Yes : Truth::No;
    }
    case Kind::Not:
      return opposite(evaluate(parts_[record.firstPart], !isWanted, search));
    case Kind::And:
    case Kind::Or: {
      Truth const deciding = record.kind == Kind::And ? Truth::No : Truth::Yes;
      bool isOpen = false;
      for (Node const operand : partsOf(record)) {
        Truth const truth = evaluate(operand, isWanted, search);
        if (truth == deciding) return deciding;
        isOpen |= truth == Truth::Open;
      }
      return isOpen ? Truth::Open : opposite(deciding);
    }
  }
  return Truth::Open;
}

ConditionFormula::Truth ConditionFormula::evaluateAll(std::span<Node const> nodes, Search& search) const {
  search.open = unset;
  ++search.evaluation;
  bool isOpen = false;
  for (Node const node : nodes) {
    Truth const truth = evaluate(node, true, search);
    if (truth == Truth::No) return Truth::No;
    isOpen |= truth == Truth::Open;
  }
  return isOpen ? Truth::Open : Truth::Yes;
}

std::size_t ConditionFormula::firstValue(Search const& search) const {
  auto const& atom = nodes_[search.openAtom];
  if (atom.partCount != 1) return 0;
  auto const begin = tables_.begin() + static_cast<std::ptrdiff_t>(atom.firstEntry);
  auto const end = begin + static_cast<std::ptrdiff_t>(atom.entryCount);
  auto const wanted = std::find(begin, end, search.isWanted);
  return wanted == end ? 0 : static_cast<std::size_t>(wanted - begin);
}

std::optional<bool> ConditionFormula::isSatisfiable(std::span<Node const> nodes, std::size_t& steps,
                                                    std::vector<std::size_t>* found) const {
  Search search;
  search.values.assign(sizes_.size(), unset);
  search.steps = steps;
  search.known.resize(nodes_.size());
  // The variables in the order of their assignment, each with the value that was tried first. The others follow it, in
  // a circle.
  struct Try {
    Variable variable;
    std::size_t first;
  };
  std::vector<Try> trail;
  auto const goBackTo = [&](std::size_t level) {
    while (!search.decided.empty() && search.decided.back().level >= level) {
      search.known[search.decided.back().node] = {};
      search.decided.pop_back();
    }
  };
  std::optional<bool> result;
  for (; search.steps > 0; --search.steps) {
    search.level = trail.size();
    Truth const truth = evaluateAll(nodes, search);
    if (truth == Truth::Yes) {
      result = true;
      break;
    }
    if (truth == Truth::Open && sizes_[search.open] > 0) {
      std::size_t const first = firstValue(search);
      trail.push_back({search.open, first});
      search.values[search.open] = first;
      continue;
    }
    // Go on with the next value of the last variable that has one.
    bool isNext = false;
    while (!trail.empty() && !isNext) {
      auto const [variable, first] = trail.back();
      goBackTo(trail.size());
      auto& value = search.values[variable];
      value = (value + 1) % sizes_[variable];
      isNext = value != first;
      if (isNext) break;
      value = unset;
      trail.pop_back();
    }
    if (!isNext) {
      result = false;
      break;
    }
  }
  steps = search.steps;
  if (found != nullptr && result.value_or(false)) *found = std::move(search.values);
  return result;
}

}  // namespace tarn::rules
