// The dependencies between entries, from what each rule says that it may read.
#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>

#include <tarn/ObjDependDef.h>
#include <tarn/PathUtils.h>
#include <tarn/RuleAttributes.h>
#include <tarn/RuleReads.h>
#include <tarn/StringUtilities.h>
#include <tarn/TypeTree.h>
#include <tarn/workbench/RuleDependencies.h>

#include "coverage/Attributes.h"

namespace tarn::workbench {

namespace {

/// A rule of an entry, and its key.
using KeyedRule = std::pair<std::string_view, RuleExpression const*>;

std::vector<KeyedRule> rulesOf(ParamAvail const& entry) {
  std::vector<KeyedRule> rules = {{attributes::entry, entry.available.get()}};
  ParamValueDef const* const value = entry.valueDef();
  if (value == nullptr) return rules;
  if (value->allowedValueKind != ParamValueDef::NoAllowedValues) {
    rules.emplace_back(RuleAttributes::valueListSource, value->allowedValues.get());
    for (auto const& check : value->allowedValueChecks) {
      rules.emplace_back(RuleAttributes::allowedStringListChecks, check.second.get());
    }
    rules.emplace_back(RuleAttributes::subsetValueListSource, value->subset.get());
  }
  rules.emplace_back(RuleAttributes::defaultValue, value->defaultValue.get());
  for (auto const& [attribute, branches] :
       {std::pair{RuleAttributes::defaultValueCheckList, &value->defaultChecks},
        std::pair{RuleAttributes::valueOverrideCheckList, &value->overrideChecks}}) {
    for (auto const& branch : *branches) {
      rules.emplace_back(attribute, branch.when.get());
      rules.emplace_back(attribute, branch.value.get());
    }
  }
  rules.emplace_back(RuleAttributes::lowerBound, value->lowerBound.get());
  rules.emplace_back(RuleAttributes::upperBound, value->upperBound.get());
  rules.emplace_back(RuleAttributes::quantityType, value->quantityType.get());
  return rules;
}

std::vector<KeyedRule> rulesOf(ChildAvail const& entry) {
  return {{attributes::entry, entry.available.get()},
          {attributes::allowedNames, entry.allowedNamesSource.get()},
          {attributes::defaultNames, entry.defaultNamesSource.get()},
          {attributes::minimumCount, entry.minimumCount.get()},
          {attributes::maximumCount, entry.maximumCount.get()}};
}

std::vector<KeyedRule> rulesOf(ObjectCheck const& check) {
  return {{attributes::when, check.when.get()},
          {attributes::check, check.check.get()},
          {attributes::message, check.message.get()}};
}

/// The path of a parameter and that of a type of children look alike, and an object has no two of one name.
std::string keyOf(std::string const& typePath, std::string_view entry) {
  return typePath + '/' + std::string(entry);
}

/// Makes the nodes, and then the edges between them.
class Builder {
 public:
  Builder(PhysicsData const& rules, std::vector<GraphNode>& nodes, std::vector<GraphEdge>& edges)
      : rules_(rules), types_(rules), nodes_(nodes), edges_(edges) {}

  void build() {
    for (ObjDependDef const* object : rules_.objects()) addNodes(*object);
    for (std::string const& name : rules_.getGlobalCheckNames()) {
      nodes_.push_back({EntryKind::GlobalCheck, {}, name, rules_.getGlobalCheck(name, false)->rulePlace(), 0});
    }
    std::size_t node = 0;
    for (ObjDependDef const* object : rules_.objects()) addEdges(*object, node);
    for (std::string const& name : rules_.getGlobalCheckNames()) {
      addReads({}, {{attributes::check, rules_.getGlobalCheck(name, false)}});
      finish(node++);
    }
  }

 private:
  void addNodes(ObjDependDef const& object) {
    auto const add = [&](EntryKind kind, std::string const& entry, TextPlace const& place) {
      if (kind != EntryKind::Check) byPath_.emplace(keyOf(object.typePath(), entry), nodes_.size());
      nodes_.push_back({kind, object.typePath(), entry, place, 0});
    };
    for (auto const& param : object.params()) add(EntryKind::Parameter, param->name, param->rulePlace);
    for (auto const& child : object.children()) add(EntryKind::Child, child->type, child->rulePlace);
    for (auto const& check : object.checks()) add(EntryKind::Check, check->name, check->rulePlace);
  }

  void addEdges(ObjDependDef const& object, std::size_t& node) {
    std::string const& typePath = object.typePath();
    std::string selector;  // the context rule parameter before the entry
    auto const addContext = [&](std::vector<std::string> const& contexts) {
      if (!contexts.empty() && !selector.empty()) addEdge(keyOf(typePath, selector), attributes::context);
    };
    for (auto const& param : object.params()) {
      addContext(param->contexts);
      addReads(typePath, rulesOf(*param));
      finish(node++);
      if (param->contextRule) selector = param->name;
    }
    for (auto const& child : object.children()) {
      addContext(child->contexts);
      addReads(typePath, rulesOf(*child));
      finish(node++);
    }
    for (auto const& check : object.checks()) {
      addReads(typePath, rulesOf(*check));
      finish(node++);
    }
  }

  void addReads(std::string const& typePath, std::vector<KeyedRule> const& rules) {
    for (auto const& [attribute, rule] : rules) {
      if (rule == nullptr) continue;
      RuleReads reads;
      rule->collectReads(reads);
      for (auto const& parameter : reads.parameters) {
        for (std::string const& type : types_.resolve(parameter.objects, typePath)) {
          addEdge(keyOf(type, parameter.name), attribute);
        }
      }
      for (PathPattern const& objects : reads.objectSets) {
        for (std::string const& type : types_.resolve(objects, typePath)) addEdge(type, attribute);
      }
    }
  }

  void addEdge(std::string const& path, std::string_view attribute) {
    auto const read = byPath_.find(path);
    if (read == byPath_.end()) return;
    auto& keys = open_[read->second];
    if (std::find(keys.begin(), keys.end(), attribute) == keys.end()) keys.emplace_back(attribute);
  }

  /// All reads of the node are known.
  void finish(std::size_t node) {
    for (auto& [read, keys] : open_) edges_.push_back({node, read, std::move(keys)});
    open_.clear();
  }

  PhysicsData const& rules_;
  TypeTree types_;
  std::vector<GraphNode>& nodes_;
  std::vector<GraphEdge>& edges_;
  std::unordered_map<std::string, std::size_t> byPath_;
  std::map<std::size_t, std::vector<std::string>> open_;  // what the node reads, with the keys
};

}  // namespace

std::string_view entryKindName(EntryKind kind) noexcept {
  constexpr std::array<std::string_view, 4> names = {"parameter", "child", "check", "global-check"};
  return names[static_cast<std::size_t>(kind)];
}

std::string GraphNode::text() const {
  return kind == EntryKind::GlobalCheck ? entry : typePath + '/' + entry;
}

RuleDependencies::RuleDependencies(PhysicsData const& rules) {
  Builder(rules, nodes_, edges_).build();
  reads_.resize(nodes_.size());
  readers_.resize(nodes_.size());
  for (std::size_t i = 0; i < edges_.size(); ++i) {
    reads_[edges_[i].reader].push_back(i);
    readers_[edges_[i].read].push_back(i);
  }
}

DependencyGraph RuleDependencies::around(std::string_view path, GraphOptions const& options) const {
  std::string const typePath = PathUtils::typePathOf(path);
  auto const begin = std::find_if(nodes_.begin(), nodes_.end(), [&](GraphNode const& node) {
    return node.text() == typePath || node.text() == path;
  });
  if (begin == nodes_.end()) return {};
  std::map<std::size_t, std::size_t> distances;
  auto const start = static_cast<std::size_t>(begin - nodes_.begin());
  std::size_t leftOut = 0;
  // Each way by itself: the readers of what an entry reads are not of interest.
  auto const follow = [&](std::vector<std::vector<std::size_t>> const& edges, bool isForward) {
    std::deque<std::size_t> open = {start};
    std::map<std::size_t, std::size_t> seen = {{start, 0}};
    while (!open.empty()) {
      std::size_t const node = open.front();
      open.pop_front();
      std::size_t const distance = seen[node];
      bool const isRoom = distances.size() < options.mostNodes;
      if (isRoom || distances.contains(node)) {
        auto const [known, isNew] = distances.try_emplace(node, distance);
        if (!isNew) known->second = std::min(known->second, distance);
      } else {
        ++leftOut;
      }
      if (distance == options.depth) continue;
      for (std::size_t const edge : edges[node]) {
        std::size_t const next = isForward ? edges_[edge].read : edges_[edge].reader;
        if (seen.try_emplace(next, distance + 1).second) open.push_back(next);
      }
    }
  };
  distances.emplace(start, 0);
  if (options.followsReads) follow(reads_, true);
  if (options.followsReaders) follow(readers_, false);
  std::vector<std::size_t> chosen;
  chosen.reserve(distances.size());
  for (auto const& [node, distance] : distances) chosen.push_back(node);
  DependencyGraph graph = of(chosen);
  for (std::size_t i = 0; i < chosen.size(); ++i) graph.nodes[i].distance = distances[chosen[i]];
  graph.leftOut = leftOut;
  return graph;
}

DependencyGraph RuleDependencies::whole(std::size_t mostNodes) const {
  std::vector<std::size_t> chosen;
  std::size_t leftOut = 0;
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    if (reads_[i].empty() && readers_[i].empty()) continue;
    if (chosen.size() < mostNodes) {
      chosen.push_back(i);
    } else {
      ++leftOut;
    }
  }
  DependencyGraph graph = of(chosen);
  graph.leftOut = leftOut;
  return graph;
}

DependencyGraph RuleDependencies::of(std::vector<std::size_t> const& chosen) const {
  DependencyGraph graph;
  std::map<std::size_t, std::size_t> indices;
  for (std::size_t const node : chosen) {
    indices.emplace(node, graph.nodes.size());
    graph.nodes.push_back(nodes_[node]);
  }
  for (std::size_t const node : chosen) {
    for (std::size_t const edge : reads_[node]) {
      auto const read = indices.find(edges_[edge].read);
      if (read == indices.end()) continue;
      graph.edges.push_back({indices[node], read->second, edges_[edge].attributes});
    }
  }
  return graph;
}

std::string RuleDependencies::nearest(std::string_view path) const {
  std::vector<std::string> known;
  known.reserve(nodes_.size());
  for (GraphNode const& node : nodes_) {
    known.push_back(node.text());
    // A name alone, without the path of its object.
    if (node.entry == path) return known.back();
  }
  return StringUtilities::nearMatch(PathUtils::typePathOf(path), known);
}

}  // namespace tarn::workbench
