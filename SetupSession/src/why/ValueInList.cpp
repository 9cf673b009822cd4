// An explanation shows how a whole list came about. A question about one value needs less. The parts are followed from
// the list down, and each kind of part says which of its own parts count for the value.

#include "why/ValueInList.h"

#include <algorithm>
#include <cstddef>
#include <optional>
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
  Follower(Explanation& explanation, std::string const& value) : nodes_(explanation.nodes), value_(value) {}

  void follow() {
    open_.push_back(0);
    while (!open_.empty()) {
      std::size_t const next = open_.back();
      open_.pop_back();
      followPart(nodes_[next]);
    }
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

  void followPart(Node& part) {
    switch (part.operation) {
      case Operation::NamedRule:
        open_.insert(open_.end(), part.children.begin(), part.children.end());
        return;
      case Operation::ListOfItems:
        keepItems(part);
        return;
      case Operation::Choice:
        // The condition, and the branch that it chose.
        if (part.length != 0 && part.children.size() == 2) open_.push_back(part.children.back());
        return;
      case Operation::Function:
        if (part.name == "union") {
          keepDeciders(part, true);
        } else if (part.name == "intersection") {
          keepDeciders(part, false);
        } else if (part.name == "difference") {
          followDifference(part);
        } else if (part.name == "names" && part.children.size() == 1) {
          keepObjects(nodes_[part.children.front()]);
        }
        return;
      default:
        return;
    }
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

  /// One argument that has the value, or does not have it, is enough. If there is none, all count.
  void keepDeciders(Node& function, bool deciding) {
    for (std::size_t const child : function.children) {
      if (has(child) != deciding) continue;
      function.children = {child};
      break;
    }
    open_.insert(open_.end(), function.children.begin(), function.children.end());
  }

  void followDifference(Node& difference) {
    if (difference.children.size() == 2) {
      if (has(difference.children[0]) == false) {
        difference.children.pop_back();
      } else if (has(difference.children[1]) == true) {
        difference.children.erase(difference.children.begin());
      }
    }
    open_.insert(open_.end(), difference.children.begin(), difference.children.end());
  }

  /// Keeps the objects with this name. The filter's objects give their names.
  void keepObjects(Node& filter) {
    if (filter.operation != Operation::Filter) return;
    std::erase_if(filter.children, [&](std::size_t const index) {
      Node const& condition = nodes_[index];
      return condition.result.kind == Result::Kind::Truth && PathUtils::lastName(condition.context) != value_;
    });
  }

  std::vector<Node>& nodes_;
  std::string const& value_;
  std::vector<std::size_t> open_;
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
