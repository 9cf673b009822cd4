#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <tarn/DependencyAnalyser.h>
#include <tarn/EvalContext.h>

#include "incremental/FactMarks.h"
#include "incremental/RecordedModel.h"
#include "incremental/WalkTree.h"
#include "provisional/Listings.h"

namespace tarn {

class DynamicTDF;
class ModelTDF;
class ObjDependency;
class PhysicsData;
class ProvisionalFacts;
class ProvisionalTDFDB;

/// The handlers that a walk of a provisional state calls. They mean the same as the hooks of `DependencyAnalyser`.
class WalkHandler {
 public:
  virtual DependencyAnalyser::HandlerStatus onBeginObject(ObjBeginInfo const* info) = 0;
  virtual DependencyAnalyser::HandlerStatus onParamCheck(ParamAvailInfo const* info) = 0;
  virtual DependencyAnalyser::HandlerStatus onChildCheck(ChildAvailInfo const* info) = 0;
  virtual DependencyAnalyser::HandlerStatus onEndObject(std::string const& path, bool required) = 0;
  /// Whether the last child entry has put an object into the tree only to try it.
  [[nodiscard]] virtual bool isTrying() const noexcept = 0;
  /// Walks a tried object and everything below it.
  virtual void walkTried(std::string const& path, EvalContext* context) = 0;

 protected:
  WalkHandler() = default;
  WalkHandler(WalkHandler const&) = default;
  WalkHandler& operator=(WalkHandler const&) = default;
  ~WalkHandler() = default;
};

/// Walks of a provisional state that visit only what changes concern, with the results of a walk of everything.
///
/// A walk of everything is a sequence of visits: of the begin and the end of an object, of an entry for a parameter or
/// for a type of children. Each reads facts and writes facts. If no fact that a visit has read or written has changed
/// since it last ran, it would change nothing and publish nothing, so it is left out. Every change marks the visits
/// that read or wrote the fact, see `FactMarks`. A marked visit that is still ahead runs in its place. One that the
/// walk has passed, or that runs, runs in the next walk: just as in a walk of everything, a rule sees the new values of
/// what comes before it and the old values of what comes after it.
///
/// Three kinds of visits are not marked by changes:
///
/// - The begin of an object does something only for an object without rules. It runs with all the rest of the object
///   when that is new, or has been deleted.
/// - The end of an object runs when anything has run in the object or below it.
/// - An object that is tried is part of the visit that tries it: whatever is read in it, this visit reads.
class AffectedWalk {
 public:
  /// All are used as long as this exists.
  AffectedWalk(ProvisionalFacts& facts, WalkHandler& handler, PhysicsData const& rules)
      : facts_(facts), handler_(handler), rules_(rules) {}
  AffectedWalk(AffectedWalk const&) = delete;
  AffectedWalk& operator=(AffectedWalk const&) = delete;

  /// Reads `view`, which reads `base` outside of the active root. Forgets everything.
  void attach(ProvisionalTDFDB const& view, ModelTDF const& base) noexcept;
  /// Whether the next walk may leave visits out.
  [[nodiscard]] bool isFollowing() const noexcept { return marks_.tree.root() != nullptr; }
  /// Walks from `root`: everything if walks are not followed yet. Throws what a hook or a rule throws; `forget` then.
  void run(std::string const& root);
  /// Ends the walk that was run, after its results were taken over.
  void complete() noexcept;
  /// Ends a walk that broke off, and forgets everything.
  void abandon() noexcept;
  /// The next walk is one of everything.
  void forget() noexcept;
  /// After a rollback: forgets everything if that could not be followed.
  void checkRollback() noexcept;
  /// The model that rules read in a walk.
  [[nodiscard]] ModelTDF const* model() const noexcept { return model_.get(); }

 private:
  struct OpenObject;

  void beginWalk(std::string const& root);
  void open(std::vector<std::unique_ptr<OpenObject>>& stack, WalkObject& object);
  [[nodiscard]] bool step(std::vector<std::unique_ptr<OpenObject>>& stack);
  void endObject(WalkObject& object);
  void visit(OpenObject& open, WalkObject::Entry entry);
  void visitParam(OpenObject& open, WalkObject::Entry entry);
  void visitChildren(OpenObject& open, WalkObject::Entry entry);
  void setContextValue(WalkObject& object, WalkObject::Entry entry, std::string const* value);
  void setChildren(WalkObject& object, WalkObject::Entry entry, std::string const& type, bool isSingleton,
                   std::vector<std::string> const& names);
  std::unique_ptr<WalkObject> newChild(WalkObject& parent, WalkObject::Entry entry, std::string const& path);
  struct FormerChildren;
  struct NewChildren;
  void restoreChildren(FormerChildren& former);
  void removeFromTree(WalkObject& top) noexcept;
  void keepLost(std::unique_ptr<WalkObject> object) noexcept;

  ProvisionalFacts& facts_;
  WalkHandler& handler_;
  PhysicsData const& rules_;

  FactMarks marks_;
  ProvisionalTDFDB const* view_ = nullptr;
  std::unique_ptr<RecordedModel> model_;
  std::unique_ptr<EvalContext> context_;
  /// The base model, if its changes can be seen, and its revision at the last walk.
  DynamicTDF const* base_ = nullptr;
  std::uint64_t baseRevision_ = 0;

  VisitResult result_;
  /// Objects that the running walk has dropped. The lists still refer to them.
  std::vector<std::unique_ptr<WalkObject>> dropped_;
  /// Objects that a rollback could not put back for lack of memory. Linked, because that needs none.
  std::unique_ptr<WalkObject> lost_;
};

}  // namespace tarn
