#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <tarn/ParamAllowedValues.h>

#include "incremental/WalkOrder.h"
#include "incremental/WalkTree.h"
#include "provisional/Outcome.h"
#include "trackers/FollowedOffers.h"

namespace tarn {

/// The contribution of one visit to the lists that a whole walk makes up.
struct VisitResult {
  bool offersParam = false;
  /// Empty for a parameter that is offered without allowed values.
  std::optional<ParamAllowedValues> allowed;
  bool isEmpty = false;
  bool isEmptyTyped = false;
  std::vector<std::string> offeredObjects;
  bool offersName = false;
};

/// Keeps the lists of an outcome up to date visit by visit: what is on offer, the parameters without a value, and the
/// types of which a user may add an object. After each walk they are as if a walk of everything had made them.
class Listings {
 public:
  explicit Listings(Outcome& outcome) noexcept : outcome_(outcome), offers_(outcome.offers, journal_) {}
  Listings(Listings const&) = delete;
  Listings& operator=(Listings const&) = delete;

  /// Begins the walk that makes the lists. They are empty.
  void beginAll() noexcept;
  /// Begins a later walk, which changes them.
  void beginChanges();
  /// Takes over the result of a visit that has run.
  void set(WalkObject& object, WalkObject::Entry entry, VisitResult const& result);
  /// Takes all results of an object and everything below it away.
  void removeAll(WalkObject& top);
  /// Ends a walk from `root` that broke off. The next walk is compared with the last one that was completed. The named
  /// types are those that were found until then: in all visits before `broken`, or in all if that has no object.
  void abandon(WalkObject* root, VisitRef broken) noexcept;
  /// Ends a walk: the lists are up to date. Objects that were removed may go after that.
  void complete();
  /// Instead of a walk: the lists are empty until the next walk, which then finds everything on offer anew. The named
  /// types stay.
  void hide();
  void clear() noexcept;

  /// @name Marks
  /// While a mark is open, everything that is changed here and in the objects of the walk is recorded.
  /// @{
  [[nodiscard]] Journal::Mark mark();
  /// `stillOpen` is the number of marks that are open after it.
  void rollback(Journal::Mark mark, std::size_t stillOpen) noexcept;
  void release(Journal::Mark mark, std::size_t stillOpen) noexcept;
  /// Null while no mark is open.
  [[nodiscard]] Journal* recording() noexcept { return openMarks_ == 0 ? nullptr : &journal_; }
  /// @}

 private:
  using NamedType = std::pair<std::string, std::string>;

  void setParam(WalkObject& object, WalkObject::Entry entry, VisitResult const& result);
  void setChildren(WalkObject& object, WalkObject::Entry entry, VisitResult const& result);
  void setOffer(WalkObject& object, WalkObject::Entry entry, VisitResult const& result);
  void list(WalkOrder& order, std::vector<std::string>& texts, VisitRef visit, std::vector<std::string> now);
  void changeNamedTypes();
  void collectNamedTypes(WalkObject& root, VisitRef end);
  void countOffers(WalkObject& object, std::size_t before, std::size_t after);
  void showOrHide();

  Outcome& outcome_;
  /// Records the running walk of changes, so that it can break off, and everything while marks are open.
  Journal journal_;
  std::size_t openMarks_ = 0;
  std::optional<Journal::Mark> beforeWalk_;
  FollowedOffers offers_;
  bool isChanging_ = false;
  WalkOrder offeredObjects_;
  WalkOrder emptyParams_;
  WalkOrder emptyTypedParams_;
  std::vector<NamedType> addedTypes_;
  std::vector<NamedType> removedTypes_;
  /// The empty parameters while the lists are hidden.
  bool isHidden_ = false;
  std::vector<std::string> hiddenParams_;
  std::vector<std::string> hiddenTypedParams_;
};

}  // namespace tarn
