#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "incremental/Fact.h"
#include "incremental/ReadRecorder.h"
#include "incremental/ReaderIndex.h"
#include "incremental/RecordedResults.h"
#include "incremental/WalkTree.h"
#include "journal/Journal.h"
#include "tree/TreeListener.h"

namespace tarn {

/// Marks the visits that a change concerns. Leaving out the others is safe if two things hold. Every read of a visit is
/// known: what its rules read is recorded, and what its handler reads belongs to its own item. And every change of a
/// fact comes here, and marks the visits that read it or wrote it.
///
/// The facts of an item, which its own visit reads and writes, are: for a parameter, its value in the guide and in the
/// active tree, the decision on it, and the remembered selections; for a type of children, the objects of this type in
/// the guide and in the active tree, the decisions on them, and whether its default names were dealt with.
///
/// The visit that runs is not marked because it writes its own item in the active tree: it does not read that. It is
/// marked when it writes anything else that it reads, or that a rule of it has read.
class FactMarks {
 public:
  FactMarks() = default;
  FactMarks(FactMarks const&) = delete;
  FactMarks& operator=(FactMarks const&) = delete;

  WalkTree tree;
  ReaderIndex readers;
  ReadRecorder recorder;
  RecordedResults results{recorder, readers};

  [[nodiscard]] TreeListener& activeListener() noexcept { return active_; }
  [[nodiscard]] TreeListener& guideListener() noexcept { return guide_; }

  /// @name The running visit
  /// @{
  void beginVisit(WalkObject& object, WalkObject::Entry entry);
  /// Keeps what the visit has read.
  void endVisit();
  [[nodiscard]] WalkObject* object() const noexcept { return object_; }
  [[nodiscard]] WalkObject::Entry entry() const noexcept { return entry_; }
  /// For a visit that tries an object, which nobody else sees. Changes of it in the trees mark nothing.
  void setMuted(bool isMuted) noexcept { isMuted_ = isMuted; }
  /// @}

  /// @name Marks of a state
  /// @{
  /// From now on, every change here and in the objects is recorded; null ends that.
  void recordIn(Journal* journal) noexcept {
    journal_ = journal;
    results.recordIn(journal);
  }
  /// While a rollback takes facts back, it marks nothing: the marks are taken back as well.
  void setRollingBack(bool isRollingBack) noexcept { isRollingBack_ = isRollingBack; }
  /// The reads of the visits in an object and below it are about to be forgotten.
  void recordReads(WalkObject& top);
  /// The object is about to be unmarked as a whole.
  void recordMarks(WalkObject& object);
  /// @}

  /// @name Changes
  /// @{
  /// A fact of an item that is in no tree: the decision on it, or what is remembered of it. `key` is the path of an
  /// object; or that of a parameter's object, "/" and its name; or that of a parent, "/" and the type of its children.
  void onOwnFact(std::string_view key) noexcept;
  /// The running visit runs again in the next walk.
  void repeatVisit() noexcept;
  /// Something outside of the active root may have changed.
  void onOutside() noexcept { change(factOf(FactKind::Outside, PathHash())); }
  void markVisit(WalkObject& object, WalkObject::Entry entry) noexcept;
  /// @}

  /// A change could not be followed, so the marks are incomplete.
  [[nodiscard]] bool isLost() const noexcept { return isLost_ || results.isLost(); }
  void lose() noexcept { isLost_ = true; }
  void clear() noexcept;

 private:
  /// A visit with more reads counts as reading any change. So what is kept for a visit has a limit.
  static constexpr std::size_t maxReads = 1024;

  class Active final : public TreeListener {
   public:
    explicit Active(FactMarks& marks) noexcept : marks_(marks) {}
    void onParamSetChange(PathHash const& object, std::string_view name) noexcept override;
    void onParamChange(PathHash const& object, std::string_view name) noexcept override;
    void onObjectSetChange(PathHash const& parent, std::string_view type, PathHash const& object) noexcept override;

   private:
    FactMarks& marks_;
  };

  class Guide final : public TreeListener {
   public:
    explicit Guide(FactMarks& marks) noexcept : marks_(marks) {}
    void onParamSetChange(PathHash const& object, std::string_view name) noexcept override;
    void onParamChange(PathHash const& object, std::string_view name) noexcept override;
    void onObjectSetChange(PathHash const& parent, std::string_view type, PathHash const& object) noexcept override;

   private:
    FactMarks& marks_;
  };

  struct FormerReads;
  struct FormerMarks;
  void recordReads(WalkObject& object, WalkObject::Entry entry);
  void markAll(WalkObject& object) noexcept;

  enum class Self { IsMarked, IsLeftOut };

  void change(Fact fact) noexcept;
  void changeAny() noexcept;
  [[nodiscard]] bool isOwnParam(PathHash const& object, std::string_view name) const noexcept;
  void markReader(ReaderIndex::Reader reader) noexcept;
  void markParam(PathHash const& object, std::string_view name, Self self) noexcept;
  void markChildren(PathHash const& object, std::string_view type, Self self) noexcept;
  [[nodiscard]] bool isMutedFor(PathHash const& object) const noexcept;
  void recordSafely(Fact fact) noexcept;
  void markAbove(std::string_view path) noexcept;
  void markItem(WalkObject& object, WalkObject::Entry entry, Self self) noexcept;

  Active active_{*this};
  Guide guide_{*this};

  WalkObject* object_ = nullptr;
  WalkObject::Entry entry_ = 0;
  /// The facts that changed while the visit ran.
  std::vector<Fact> changed_;
  std::vector<Fact> pending_;  // the kept results that were dropped and whose readers are still to be marked
  bool isMuted_ = false;
  bool isRollingBack_ = false;
  Journal* journal_ = nullptr;
  bool isLost_ = false;
  /// A visit counts as reading any change.
  bool isAnyRead_ = false;
};

}  // namespace tarn
