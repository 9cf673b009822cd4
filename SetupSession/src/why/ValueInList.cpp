// An explanation shows how a whole list came about. A question about one value needs less. The parts are followed from
// the list down, and each kind of part says which of its own parts count for the value.

#include "why/ValueInList.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include <tarn/PathUtils.h>

namespace tarn::session {

namespace {

using Operation = Explanation::Operation;
using Result = Explanation::Result;

constexpr auto none = static_cast<std::size_t>(-1);

/// Removes the parts that no part has as a child any more, and what only they have read.
void removeUnreached(Explanation& explanation) {
  auto& nodes = explanation.nodes;
  std::vector<std::size_t> newNode(nodes.size(), none);
  std::vector<std::size_t> newRead(explanation.reads.size(), none);
  std::vector<Explanation::Node> keptNodes;
  std::vector<ModelRead> keptReads;
  // Children come after their parent, so one pass finds all that are reached.
  std::vector<bool> isReached(nodes.size(), false);
  isReached.front() = true;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!isReached[i]) continue;
    for (std::size_t const child : nodes[i].children) isReached[child] = true;
    newNode[i] = keptNodes.size();
    for (std::size_t& read : nodes[i].reads) {
      if (newRead[read] == none) {
        newRead[read] = keptReads.size();
        keptReads.push_back(std::move(explanation.reads[read]));
      }
      read = newRead[read];
    }
    keptNodes.push_back(std::move(nodes[i]));
  }
  for (Explanation::Node& node : keptNodes) {
    for (std::size_t& child : node.children) child = newNode[child];
  }
  nodes = std::move(keptNodes);
  explanation.reads = std::move(keptReads);
}

class Follower {
 public:
  Follower(Explanation& explanation, std::string const& value)
      : nodes_(explanation.nodes), reads_(explanation.reads), value_(value) {}

  void follow() {
    std::vector<std::size_t> followed = {0};
    for (std::size_t i = 0; i < followed.size(); ++i) {
      std::vector<std::size_t> const lists = listsOf(nodes_[followed[i]]);
      followed.insert(followed.end(), lists.begin(), lists.end());
    }
    // A list comes after the one that it is a part of. So of several lists, each is cut down before one is chosen.
    for (auto list = followed.rbegin(); list != followed.rend(); ++list) cut(nodes_[*list]);
  }

 private:
  using Node = Explanation::Node;

  /// Whether a part that is a list, a text or a set of objects has the value. Empty when that is not known, because
  /// only the first items are kept.
  [[nodiscard]] std::optional<bool> has(std::size_t part) const {
    Result const& result = nodes_[part].result;
    if (result.kind == Result::Kind::Text) return result.text == value_;
    if (result.kind != Result::Kind::List) return std::nullopt;
    bool const isFound = std::find(result.items.begin(), result.items.end(), value_) != result.items.end();
    if (!isFound && result.itemCount > result.items.size()) return std::nullopt;
    return isFound;
  }

  /// The parts of a list that are lists themselves, and of which the value is asked.
  [[nodiscard]] static std::vector<std::size_t> listsOf(Node const& list) {
    if (list.operation == Operation::NamedRule) return list.children;
    // The condition, and the branch that it chose.
    bool const isBranch = list.operation == Operation::Choice && list.length != 0 && list.children.size() == 2;
    if (isBranch) return {list.children.back()};
    bool const isOfLists =
        list.operation == Operation::Function &&
        (list.name == "union" || list.name == "unique" || list.name == "intersection" || list.name == "difference");
    return isOfLists ? list.children : std::vector<std::size_t>();
  }

  /// Keeps what counts for the value.
  void cut(Node& list) {
    if (list.operation == Operation::ListOfItems) return keepItems(list);
    if (list.operation != Operation::Function) return;
    if (list.name == "union") return keepDecider(list, true);
    if (list.name == "intersection") return keepDecider(list, false);
    if (list.name == "difference") return cutDifference(list);
    if (list.name == "values") return keepWitness(list);
    if (list.name == "names" && list.children.size() == 1) keepObjects(nodes_[list.children.front()]);
  }

  /// The number of facts that a part has read.
  [[nodiscard]] std::size_t factsOf(std::size_t part) const {
    std::set<std::size_t> facts;
    std::vector<std::size_t> open = {part};
    while (!open.empty()) {
      Node const& node = nodes_[open.back()];
      open.pop_back();
      facts.insert(node.reads.begin(), node.reads.end());
      open.insert(open.end(), node.children.begin(), node.children.end());
    }
    return facts.size();
  }

  /// Keeps the items of a list with conditions that have this value, and those whose value is computed.
  void keepItems(Node& list) {
    auto const isOfValue = [&](Node const& item) {
      return item.operation != Operation::Literal || item.result.text == value_;
    };
    std::erase_if(list.children, [&](std::size_t const index) {
      Node const& item = nodes_[index];
      bool const isGuarded = item.operation == Operation::Choice && item.length == 0;
      if (!isGuarded) return !isOfValue(item);
      return item.children.size() > 1 && !isOfValue(nodes_[item.children[1]]);
    });
  }

  /// One argument that has the value, or does not have it, is enough: the one that needs the fewest facts. If there is
  /// none, all count.
  void keepDecider(Node& function, bool deciding) {
    std::size_t best = none;
    std::size_t fewest = none;
    for (std::size_t const child : function.children) {
      if (has(child) != deciding) continue;
      std::size_t const facts = factsOf(child);
      if (best != none && facts >= fewest) continue;
      best = child;
      fewest = facts;
    }
    if (best != none) function.children = {best};
  }

  void cutDifference(Node& difference) {
    if (difference.children.size() != 2) return;
    bool const isNotInFirst = has(difference.children[0]) == false;
    bool const isInSecond = has(difference.children[1]) == true;
    if (!isNotInFirst && !isInSecond) return;
    bool const isFirstEnough =
        isNotInFirst && (!isInSecond || factsOf(difference.children[0]) <= factsOf(difference.children[1]));
    difference.children = {difference.children[isFirstEnough ? 0 : 1]};
  }

  /// Keeps the objects with this name. The filter's objects give their names.
  void keepObjects(Node& filter) {
    if (filter.operation != Operation::Filter) return;
    std::erase_if(filter.children, [&](std::size_t const index) {
      Node const& condition = nodes_[index];
      return condition.result.kind == Result::Kind::Truth && PathUtils::lastName(condition.context) != value_;
    });
  }

  /// One parameter that has the value is enough. The objects that were looked through count in any case.
  void keepWitness(Node& values) {
    auto const isWitness = [&](std::size_t const index) {
      ModelRead const& read = reads_[index];
      return read.kind == ModelRead::Kind::Value && read.isPresent && read.value == value_;
    };
    auto const witness = std::find_if(values.reads.begin(), values.reads.end(), isWitness);
    if (witness == values.reads.end()) return;
    std::size_t const kept = *witness;
    std::erase_if(values.reads, [&](std::size_t const index) { return index != kept && reads_[index].isParameter(); });
  }

  std::vector<Node>& nodes_;
  std::vector<ModelRead> const& reads_;
  std::string const& value_;
};

}  // namespace

void keepWhatDecides(Explanation& explanation, std::string const& value) {
  if (explanation.nodes.empty()) return;
  Follower(explanation, value).follow();
  removeUnreached(explanation);
}

void keepUpTo(Explanation& explanation, std::string const& value) {
  auto& nodes = explanation.nodes;
  std::size_t list = 0;
  while (list < nodes.size() && nodes[list].operation == Operation::NamedRule && !nodes[list].children.empty()) {
    list = nodes[list].children.front();
  }
  if (list >= nodes.size() || nodes[list].operation != Operation::ListOfItems) return;
  auto& items = nodes[list].children;
  auto const found = std::find_if(items.begin(), items.end(), [&](std::size_t const index) {
    bool const isGuarded = nodes[index].operation == Operation::Choice && nodes[index].length == 0;
    return nodes[index].result.text == value && (!isGuarded || nodes[index].result.truth);
  });
  if (found != items.end()) items.erase(found + 1, items.end());
  removeUnreached(explanation);
}

}  // namespace tarn::session
