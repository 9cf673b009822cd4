#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/Edit.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleReads.h>
#include <tarn/session/Item.h>

#include "session/RuledState.h"

namespace tarn::session {

/// All edits that can have to do with one item: those of the item, of everything that its rules may read, of everything
/// that the rules of those may read, and so on. Found from what rules say of their reads, so it holds in every state.
/// No edit of anything else changes the item.
class RelevantEdits {
 public:
  /// Goes through all rules once.
  RelevantEdits(PhysicsData const& rules, Item const& item);

  /// The edits of the present state, those nearest to the item first. `valuesOf` gives further values of a parameter.
  /// At most `most`; `isCutOff` then says that there are more.
  [[nodiscard]] std::vector<Edit> in(RuledState const& state,
                                     std::function<std::set<std::string> const*(Item const&)> const& valuesOf,
                                     std::size_t most, bool& isCutOff) const;

 private:
  struct ParamEntry {
    ObjDependDef const* object;
    ParamAvail const* entry;
    friend bool operator<(ParamEntry const& a, ParamEntry const& b) {
      return std::tie(a.object, a.entry) < std::tie(b.object, b.entry);
    }
  };
  struct ChildEntry {
    ObjDependDef const* parent;
    std::size_t place;
    friend bool operator<(ChildEntry const& a, ChildEntry const& b) {
      return std::tie(a.parent, a.place) < std::tie(b.parent, b.place);
    }
  };

  void add(ParamEntry entry);
  void add(ChildEntry entry);
  void addReadsOf(ParamEntry entry);
  void addReadsOf(ChildEntry entry);
  void addReads(ObjDependDef const& owner, RuleReads const& reads);
  void addTypesOf(PathPattern const& pattern);
  void addType(std::string const& type);
  void addOwners(ObjDependDef const& object);
  void addSelectors(ObjDependDef const& object);
  void addEverything();

  PhysicsData const& rules_;
  std::unordered_map<std::string_view, std::vector<ParamEntry>> paramsByName_;
  std::unordered_map<std::string_view, std::vector<ChildEntry>> childrenByType_;
  // In the order in which they were found: by distance from the item.
  std::vector<ParamEntry> params_;
  std::vector<ChildEntry> children_;
  std::set<ParamEntry> knownParams_;
  std::set<ChildEntry> knownChildren_;
  bool hasEverything_ = false;
};

}  // namespace tarn::session
