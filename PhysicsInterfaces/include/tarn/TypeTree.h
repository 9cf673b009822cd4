#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>

namespace tarn {

/// The object types in a rule database as a tree: types with rules, types of child rules, and root types. Tools use it
/// to find out what the paths in rules can mean. A pattern is resolved over it as over a model in which one object
/// represents all objects of its type, so names in patterns do not count.
///
///     TypeTree const types(*rules);
///     types.resolve(PathPattern("../Boundary:*"), "/Case/Domain/Turbulence");  // {"/Case/Domain/Boundary"}
///
/// The tree keeps no reference to the rules. Several threads may read one tree at once.
class TARN_EXPORT TypeTree {
 public:
  /// Linear in the number of object types and of child entries.
  explicit TypeTree(PhysicsData const& data);

  /// Whether the rules mention the type. "", the root of a model, is one.
  [[nodiscard]] bool knows(std::string const& typePath) const { return children_.contains(typePath); }
  /// The last components of the types directly below, in the order of the rules. Empty for an unknown type. Valid as
  /// long as the tree.
  [[nodiscard]] std::vector<std::string> const& childTypes(std::string const& typePath) const;
  /// Every type path with its child types. Valid as long as the tree.
  [[nodiscard]] std::map<std::string, std::vector<std::string>> const& all() const noexcept { return children_; }

  /// The type paths of owners of rules from which a relative pattern can name anything. Perhaps also others. The
  /// pointers are valid as long as the tree.
  [[nodiscard]] std::vector<std::string const*> ownersOf(PathPattern const& pattern) const;
  /// The type paths that `pattern` can name when the owner of the rule has the type path `owner`. Costs the number of
  /// types that the pattern looks at; for `**` that is every type below.
  [[nodiscard]] std::set<std::string> resolve(PathPattern const& pattern, std::string const& owner) const;

 private:
  void add(std::string const& typePath);
  /// The type paths that end in `type` and are below one of `tops`.
  [[nodiscard]] std::set<std::string> atAnyDepth(std::set<std::string> const& tops, std::string const& type) const;

  std::map<std::string, std::vector<std::string>> children_;  // type path to child types, in the order of the rules
  std::map<std::string, std::vector<std::string>> byType_;    // last type to the type paths that end in it
};

}  // namespace tarn
