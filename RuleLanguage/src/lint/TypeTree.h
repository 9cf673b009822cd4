#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>

namespace tarn::rules {

/// The object types in a rule database as a tree: types with rules, types of child rules, and root types. Patterns are
/// resolved over it as over a model in which one object represents all objects of its type.
class TypeTree {
 public:
  explicit TypeTree(PhysicsData const& data);

  [[nodiscard]] bool knows(std::string const& typePath) const { return children_.contains(typePath); }
  [[nodiscard]] std::vector<std::string> const& childTypes(std::string const& typePath) const;
  [[nodiscard]] std::map<std::string, std::vector<std::string>> const& all() const noexcept { return children_; }

  /// The type paths of owners of rules from which a relative pattern can name anything. Perhaps also others.
  [[nodiscard]] std::vector<std::string const*> ownersOf(PathPattern const& pattern) const;
  /// The type paths that `pattern` can name when the owner of the rule has the type path `owner`.
  [[nodiscard]] std::set<std::string> resolve(PathPattern const& pattern, std::string const& owner) const;

 private:
  void add(std::string const& typePath);
  /// The type paths that end in `type` and are below one of `tops`.
  [[nodiscard]] std::set<std::string> atAnyDepth(std::set<std::string> const& tops, std::string const& type) const;

  std::map<std::string, std::vector<std::string>> children_;  // type path to child types, in the order of the rules
  std::map<std::string, std::vector<std::string>> byType_;    // last type to the type paths that end in it
};

}  // namespace tarn::rules
