#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include <tarn/ObjDependDef.h>
#include <tarn/ParamValueDef.h>
#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>
#include <tarn/RuleExpressions.h>
#include <tarn/RuleReads.h>
#include <tarn/session/Item.h>

#include "session/RuledState.h"

namespace tarn::session {

/// Adds what an expression may read; null reads nothing.
void collectReads(RuleExpression const* expression, RuleReads& reads);
/// Adds what may decide about the value of a parameter: its allowed values, default and override.
void collectReads(ParamValueDef const& value, RuleReads& reads);

/// Finds the parameters whose default, bounds, quantity type or override may have changed, because their rule reads
/// something that changed. The provisional state does not report this in full: it looks at a default only where there
/// is no value, and at everything else in the order of its walk.
class RuleReaders {
 public:
  enum class Part : int { Default, Bounds, Quantity, Override };
  struct Reader {
    Item item;
    Part part;
  };

  /// `rules` must outlive this object.
  explicit RuleReaders(PhysicsData const& rules);

  /// Whether the pattern names the object that owns the rule.
  [[nodiscard]] static bool namesOwnObject(PathPattern const& pattern) noexcept;

  /// The readers that an update may concern. Each operation appends parameters of present objects to `found`.
  class Search {
   public:
    Search(RuleReaders const& readers, RuledState const& state) noexcept : readers_(readers), state_(state) {}
    void paramChanged(std::string const& path, std::string const& name, std::vector<Reader>& found);
    /// An object came or went.
    void objectsChanged(std::vector<Reader>& found);
    /// For rules that do not say what they read.
    void anythingChanged(std::vector<Reader>& found);

   private:
    void addAll(std::vector<std::size_t> const& entries, std::vector<Reader>& found);

    RuleReaders const& readers_;
    RuledState const& state_;
    std::set<std::size_t> done_;
  };

 private:
  struct Entry {
    ObjDependDef const* object;
    std::string const* name;
    Part part;
  };
  struct ByName {
    /// Indices of those that read the parameter of their own object, and of those that read it elsewhere.
    std::vector<std::size_t> own;
    std::vector<std::size_t> any;
  };
  void add(Entry entry, RuleReads const& reads);

  std::vector<Entry> entries_;
  std::unordered_map<std::string, ByName> byName_;
  std::vector<std::size_t> ofObjects_;
  std::vector<std::size_t> unknown_;
};

}  // namespace tarn::session
