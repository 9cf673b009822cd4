#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tarn/PathPattern.h>
#include <tarn/PhysicsData.h>
#include <tarn/TDFParam.h>
#include <tarn/TypeTree.h>

#include "diagnostics/DiagnosticList.h"
#include "diagnostics/NearMatch.h"
#include "loading/RuleIndex.h"
#include "yaml/ScalarText.h"

namespace tarn::rules {

/// The index of each entry of an object in the lists of the object.
struct EntryPositions {
  std::unordered_map<std::string_view, std::size_t> params;
  std::unordered_map<std::string_view, std::size_t> children;
  std::vector<std::size_t> contextRules;                       // the context rules among `params`
  std::unordered_map<std::string_view, std::size_t> contexts;  // each of their values, and the first that can have it
  std::size_t firstContextRule = std::string::npos;
  std::size_t firstOpenContextRule = std::string::npos;  // the first whose values are not all known

  /// The index, or one after the last when there is no such entry.
  [[nodiscard]] static std::size_t indexIn(std::unordered_map<std::string_view, std::size_t> const& positions,
                                           std::string_view name);
};

/// Shared by all checks of the linter: the rules, indexes over them that are made when first needed, and the function
/// that reports problems.
class LintContext {
 public:
  /// All arguments must stay valid.
  LintContext(RuleIndex const& rules, PhysicsData const& data, DiagnosticList& diagnostics);

  [[nodiscard]] RuleIndex const& rules() const noexcept { return rules_; }
  [[nodiscard]] PhysicsData const& data() const noexcept { return data_; }
  [[nodiscard]] TypeTree const& types() const noexcept { return types_; }
  [[nodiscard]] HintBudget& hints() noexcept { return hints_; }

  /// The number of warnings so far, also of those that are later found to have one cause.
  [[nodiscard]] std::size_t warningCount() const noexcept { return warningCount_; }
  /// From now on warnings are about an entry that its object takes by this `Use`, and get a note with its place. Empty:
  /// about an entry of the object itself.
  void setTaken(Item const& taken) { taken_ = taken; }
  /// Adds a warning about a whole scalar or list. The reference is valid until the next warning.
  Diagnostic& warn(Code code, Item const& item, std::string message);
  /// Adds a warning about a part of an expression.
  Diagnostic& warn(Code code, ExpressionUse const& use, Range range, std::string message,
                   std::optional<Replacement> const& fix = std::nullopt);
  /// Adds a warning about an item that a rule takes from another place, with a note where the rule does so.
  Diagnostic& warnWithUse(Code code, Item const& item, std::string message, ExpressionUse const& use, Range range);
  /// Whether a comparison inside `range` was reported that cannot be meant. Its consequences are not reported too.
  [[nodiscard]] bool hasFaultInside(ExpressionUse const& use, Range range) const;
  /// The same anywhere in the body of a named rule.
  [[nodiscard]] bool hasFault(NamedRule const& rule) const;
  /// Names the cause of the last warning, see `DiagnosticList::setCause`.
  void setCause(std::string cause) { diagnostics_.setCause(std::move(cause)); }
  /// Gives a warning a fix that writes `replacement` instead of `text`, where `text` is the whole of a scalar or an
  /// item of a list. Does nothing when `replacement` is empty or the text is written in another way.
  static void fixText(Diagnostic& warning, Item const& item, std::string_view text, std::string_view replacement);

  using TypePaths = std::shared_ptr<std::set<std::string> const>;
  /// The type paths that a pattern in an expression can name. A named rule can be called from every object, so every
  /// type is tried as its owner. Results that do not depend on the owner are kept, because many rules share them.
  [[nodiscard]] TypePaths resolve(ExpressionUse const& use, PathPattern const& pattern);

  /// The rules of a parameter in all objects that a pattern can name.
  struct RulesOfParameter {
    std::vector<ParamValueDef const*> all;
    /// All are of one type, and none limits the values.
    bool areFree = true;
  };
  /// Computed once for a path that many rules share, see `resolve`.
  [[nodiscard]] std::shared_ptr<RulesOfParameter const> rulesOf(ExpressionUse const& use, PathPattern const& pattern,
                                                                std::string const& parameter);

  /// A named check, list or value of this name; null when there is none.
  [[nodiscard]] NamedRule const* namedRule(std::string const& name);
  /// A warning says that this rule was probably meant. That nothing uses it then follows from the mistake.
  void setMeant(NamedRule const& rule) { meant_.insert(&rule); }
  [[nodiscard]] bool isMeant(NamedRule const& rule) const { return meant_.contains(&rule); }

  /// The allowed values, when they are written out in the entry, in lists that it names, or in an expression over such
  /// lists. Null when they depend on a model, when there are none, and when they are advice only.
  [[nodiscard]] SharedStrings const* writtenValues(ParamValueDef const& def);

  /// The named list that the allowed values come from; null when they are written in another way.
  [[nodiscard]] static NamedRule const* namedValues(ParamValueDef const& def);
  /// The item of a named list, where its items are written one by one; the whole of the list otherwise. Linear in the
  /// length of the list.
  [[nodiscard]] Item placeInList(NamedRule const& list, std::string_view text) const;
  /// Whether all items of a named list were found to be of a type, so that they need not be looked at again.
  [[nodiscard]] bool isKnownAsSound(NamedRule const& list, TDFParam::Type type) const {
    return soundLists_.contains({&list, type});
  }
  void setSound(NamedRule const& list, TDFParam::Type type) { soundLists_.insert({&list, type}); }
  /// The last warning is about a value that a named list lacks. The list may be at fault, so such warnings are reported
  /// together.
  void setCauseIsList(Diagnostic& warning, NamedRule const& list, std::string_view lacking);

  /// The first name that is written out in a named list and that no object can have; null when there is none. Computed
  /// once per list, because many children may use it.
  [[nodiscard]] std::string const* impossibleNameIn(NamedRule const& list);

  /// Computed once per object: rules are compared with each other, and an object may have a hundred thousand.
  [[nodiscard]] EntryPositions const& positionsOf(ObjDependDef const& object);

 private:
  /// The object types that have a parameter of this name, in the order of their type paths.
  [[nodiscard]] std::vector<ObjDependDef const*> const& objectsWith(std::string const& parameter);

  RuleIndex const& rules_;
  PhysicsData const& data_;
  TypeTree types_;
  HintBudget hints_;
  std::unordered_map<ObjDependDef const*, EntryPositions> positions_;
  std::unordered_map<std::string, TypePaths> resolved_;
  std::unordered_map<std::string, std::shared_ptr<RulesOfParameter const>> rulesOf_;  // by pattern and parameter
  // Made when first needed.
  std::unordered_map<std::string_view, std::vector<ObjDependDef const*>> objectsWith_;
  std::unordered_map<std::string_view, NamedRule const*> namedRules_;
  std::unordered_set<NamedRule const*> meant_;
  std::unordered_map<NamedRule const*, std::string const*> impossibleNames_;
  std::unordered_map<Expression const*, std::unique_ptr<SharedStrings>> constantLists_;  // null: depends on a model
  std::unordered_map<YamlNode const*, std::vector<Range>> faults_;  // by the scalar of the expression
  std::set<std::pair<NamedRule const*, TDFParam::Type>> soundLists_;
  // Two walks, so that the search for a fix does not throw back the search for the next warning.
  ScalarWalk walk_;
  ScalarWalk fixWalk_;
  Item taken_;
  std::size_t warningCount_ = 0;
  TypePaths own_;  // the last set with the type path of a rule's own object alone
  DiagnosticList& diagnostics_;
};

/// The conditions that are sound in the object whose rules are being looked at. Entries of an object often share a
/// condition, which means the same in each of them, so it is looked at once. Only the last object is remembered,
/// because the rules come object by object.
class SoundConditions {
 public:
  [[nodiscard]] bool contains(ExpressionUse const& use) const {
    return use.objectName == object_ && sound_.contains(use.compiled.get());
  }
  /// Does nothing for an expression that is not a condition of an object: its meaning also depends on its entry.
  void add(ExpressionUse const& use);

 private:
  YamlNode const* object_ = nullptr;
  std::unordered_set<Compiled const*> sound_;
};

}  // namespace tarn::rules
