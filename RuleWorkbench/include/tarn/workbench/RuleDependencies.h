#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <tarn/Export.h>
#include <tarn/PhysicsData.h>
#include <tarn/TextPlace.h>

namespace tarn::workbench {

/// The kinds of entries of rules. The numbers are part of the interface.
enum class EntryKind : int { Parameter = 0, Child = 1, Check = 2, GlobalCheck = 3 };

/// "parameter", "child", "check" or "global-check". Valid until the program ends.
[[nodiscard]] TARN_EXPORT std::string_view entryKindName(EntryKind kind) noexcept;

/// An entry of the rules.
struct TARN_EXPORT GraphNode {
  EntryKind kind = EntryKind::Parameter;
  /// The object type that has the entry; "" for a global check.
  std::string typePath;
  /// The parameter, type of children or check.
  std::string entry;
  TextPlace place;
  /// How many steps lead to it from the entry that was asked for. 0 without one.
  std::size_t distance = 0;

  /// "/Case/Domain/Motion" for a parameter Motion of a domain. A global check is named by its entry.
  [[nodiscard]] std::string text() const;
};

/// One entry depends on another.
struct TARN_EXPORT GraphEdge {
  /// Indices of nodes: the rules of `reader` read what `read` decides.
  std::size_t reader = 0;
  std::size_t read = 0;
  /// The keys of the rules that read, in the order of the rules: "Available", "Default Value".
  std::vector<std::string> attributes;
};

/// Which entries of rules depend on which others.
struct TARN_EXPORT DependencyGraph {
  /// In the order of the rules, global checks last.
  std::vector<GraphNode> nodes;
  /// By reader, then by what is read. No two have both in common.
  std::vector<GraphEdge> edges;
  /// Entries within the depth that were left out, because there would be more than `GraphOptions::mostNodes`.
  std::size_t leftOut = 0;
};

struct TARN_EXPORT GraphOptions {
  /// Follow what an entry reads, and who reads it.
  bool followsReads = true;
  bool followsReaders = true;
  /// So many steps from the entry that is asked for.
  std::size_t depth = 1;
  std::size_t mostNodes = 1000;
};

/// All dependencies in a rule database. An entry depends on another when one of its rules may read what the other
/// decides: the value or existence of a parameter, or the existence of children. So it may depend on more than an
/// evaluation reads. The objects on the way to what is read are no dependencies of their own: a rule that reads the
/// boundaries of all domains depends on the boundaries. An entry with a `Context` depends on the parameter that selects
/// it. Rules that a program made depend on what they say that they read.
///
/// Made once, it answers any number of questions.
class TARN_EXPORT RuleDependencies {
 public:
  /// Linear in the size of the rules, times the number of object types that a path with `*` or `**` can mean.
  explicit RuleDependencies(PhysicsData const& rules);

  /// The entries around one entry. `path` names a parameter, a type of children or a check, "/Case/Domain/Motion";
  /// names of objects in it do not count. Empty when the rules have no such entry. Linear in the number of entries.
  [[nodiscard]] DependencyGraph around(std::string_view path, GraphOptions const& options = {}) const;
  /// All entries that have a dependency, up to `mostNodes`.
  [[nodiscard]] DependencyGraph whole(std::size_t mostNodes = 1000) const;

  /// The first entry with the name `path`, or the one whose path is most similar to `path`. "" when there is none.
  [[nodiscard]] std::string nearest(std::string_view path) const;

 private:
  [[nodiscard]] DependencyGraph of(std::vector<std::size_t> const& chosen) const;

  std::vector<GraphNode> nodes_;
  std::vector<GraphEdge> edges_;
  /// Indices of edges, by node.
  std::vector<std::vector<std::size_t>> reads_;
  std::vector<std::vector<std::size_t>> readers_;
};

}  // namespace tarn::workbench
