#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <tarn/rules/RuleTexts.h>

#include "lint/EntryOrder.h"
#include "lint/LintContext.h"

namespace tarn::rules {

/// Warns of expressions that read what a walk decides only after the rule that reads it. Such a rule sees the state
/// from before an edit, so its result is one edit late.
///
/// The warning says which entries to move and where to. Applied to the file, that removes the warning and causes no
/// other one of this kind. Where no order avoids the warning, it says why: the shortest circle of entries that read
/// each other, or what is always decided first. It says neither when more than `EntryOrder::mostMoved` entries would
/// have to move, or when the search reaches a limit of `EntryOrder`.
class OrderLint {
 public:
  /// Compares all rules with each other. `context` must stay valid. Linear in the number of reads.
  OrderLint(LintContext& context, LintExtent extent);

  /// Adds the warnings about one of the uses of the rules.
  void check(ExpressionUse const& use);

 private:
  using Entry = EntryOrder::Entry;

  /// The parameters or the children of an object.
  struct List {
    ObjDependDef const* object;
    bool areChildren;
    EntryOrder order;
    // The entries that read a later one too early, by that one; those with a read of several types are left out.
    std::unordered_map<Entry, std::vector<Entry>> lateReaders = {};
    std::unordered_map<Entry, std::optional<EntryOrder::Move>> movesBeforeAll = {};  // by the entry that moves
  };
  /// The order in which a walk decides a rule and something that it reads.
  struct Relation {
    bool isLater = false;  // what is read is decided after the rule
    List* list = nullptr;  // its entries have this order; null when no list of entries decides it
    Entry reader = 0;
    Entry read = 0;
  };
  /// A read that comes too early.
  struct LateRead {
    Range range;
    std::string what;
    bool isOfItself = false;  // a rule of the parameter that is read
    std::vector<Relation> relations;
  };
  /// Why one entry reads another.
  struct Reason {
    ExpressionUse const* use;
    PathPattern objects;
    std::string parameter;  // empty for a set of objects
    Entry reader;
    Entry read;
  };
  struct Advice {
    std::string text;
    std::vector<std::pair<Item, std::string>> notes;
    std::vector<std::size_t> circle;  // indexes of reasons
    std::string cause;                // see `LintContext::setCause`
  };

  void collect(ExpressionUse const& use);
  /// The parameters and objects that an expression reads. Those of named rules are collected once: chains of them are
  /// long, and many rules call them.
  void addReads(Expression const& expression, Base const& base, RuleReads& reads);
  void collectParameter(ExpressionUse const& use, ObjDependDef const& object, RuleReads::Parameter const& read);
  void collectSet(ExpressionUse const& use, PathPattern const& set);
  static void noteLateReader(LateRead const& late);
  void addRead(Relation const& relation, bool isCertain, ExpressionUse const& use, PathPattern const& objects,
               std::string_view parameter);

  [[nodiscard]] Relation toOwnParameter(ExpressionUse const& use, ObjDependDef const& object, std::string const& name);
  [[nodiscard]] Relation toObject(ExpressionUse const& use, std::string const& target);
  [[nodiscard]] bool isDecidedByRules(std::string const& typePath) const;

  [[nodiscard]] List& listOf(ObjDependDef const& object, bool areChildren);
  [[nodiscard]] EntryPlace const* placeOf(List const& list, Entry entry) const;
  [[nodiscard]] static std::string const& nameOf(List const& list, Entry entry);

  /// Whether the rules have all that advice about a list depends on.
  [[nodiscard]] bool isComplete(List const& list) const noexcept;
  [[nodiscard]] Advice adviceFor(ExpressionUse const& use, LateRead const& late);
  /// The move of an entry before all that read it too early. Nothing when only one does, or when it is no smaller than
  /// moving these.
  [[nodiscard]] std::optional<EntryOrder::Move> moveBeforeAll(List& list, Entry read);
  [[nodiscard]] Advice adviceOf(List const& list, EntryOrder::Move const& move) const;
  [[nodiscard]] Advice adviceOfCircle(List const& list, std::vector<std::size_t> circle) const;

  LintContext& context_;
  LintExtent extent_;
  std::map<std::pair<ObjDependDef const*, bool>, List> lists_;
  std::vector<Reason> reasons_;
  std::unordered_map<NamedRule const*, RuleReads> readsOfNamed_;  // seen from the owner of the rule that calls them
  std::unordered_map<ExpressionUse const*, std::vector<LateRead>> late_;
  std::size_t totalSteps_ = 0;
};

}  // namespace tarn::rules
