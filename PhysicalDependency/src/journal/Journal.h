#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace tarn {

/// The steps that take a state back to a mark. A state is spread over several stores, and all of them write to one
/// journal.
///
///     Journal::Mark const before = journal.mark();
///     apply(edit);                                  // each store adds the step that undoes a write, beside the write
///     look();
///     journal.rollback(before);                     // exactly as before, including the order of children
///
/// Marks nest. A mark is open until it is rolled back or released, and that also ends all marks that were set after it.
/// Releasing the outermost mark forgets all steps. While no mark is open nothing is recorded, and a write costs one
/// comparison more than without a journal.
///
/// A rollback cannot fail. It allocates nothing: what a write removes is kept in the step and is put back as it was.
/// The steps are undone in reverse order, so each finds the state that its write left. A step must not add steps.
///
/// Writers. A store adds the step before it writes, or prepares it, writes, and then keeps it. So when memory runs out
/// for the step, the write has not happened. Where a write must not fail, use `CannotFail`.
///
/// Memory grows with the writes since the outermost mark, by one block of `blockSize` bytes and what a write removed.
/// The blocks are used again. The destructor forgets the steps and undoes nothing.
class Journal {
 public:
  /// The limit for what a step holds, in bytes.
  static constexpr std::size_t blockSize = 192;

  /// A store that notes at each mark what its writes do not record: flags, and the lengths of lists that only grow.
  class Participant {
   public:
    Participant(Participant const&) = delete;
    Participant& operator=(Participant const&) = delete;
    /// From now on, the journal asks at each mark. To be called once.
    void attachTo(Journal& journal) noexcept {
      journal_ = &journal;
      next_ = std::exchange(journal.participants_, this);
    }
    /// Adds steps that take the store back to what it holds now. When it throws, the mark is not set.
    virtual void noteAtMark(Journal& journal) = 0;

   protected:
    Participant() = default;
    virtual ~Participant();

   private:
    friend class Journal;
    Journal* journal_ = nullptr;
    Participant* next_ = nullptr;
  };

 private:
  struct Step {
    Step() = default;
    Step(Step const&) = delete;
    Step& operator=(Step const&) = delete;
    virtual ~Step() = default;
    virtual void undo() noexcept = 0;
  };

  template <class Undo>
  struct StepOf final : Step {
    explicit StepOf(Undo&& own) noexcept : undoWrite(std::move(own)) {}
    void undo() noexcept override { undoWrite(); }

    Undo undoWrite;
  };

  /// The memory of one step. The steps form a list from the last to the first, and the free blocks another one.
  struct Block {
    Block() = default;
    Block(Block const&) = delete;
    Block& operator=(Block const&) = delete;
    ~Block() { clear(); }
    void clear() noexcept {
      if (step != nullptr) std::destroy_at(std::exchange(step, nullptr));
    }

    std::unique_ptr<Block> next;
    Step* step = nullptr;
    alignas(std::max_align_t) std::array<std::byte, blockSize> bytes;
  };

 public:
  /// A position between two steps. Valid until the step before it is undone or forgotten.
  class Position {
   public:
    friend bool operator==(Position const&, Position const&) = default;

   private:
    friend class Journal;
    explicit Position(Block const* last) noexcept : last_(last) {}

    Block const* last_;
  };

  class Mark {
   private:
    friend class Journal;
    Mark(Position position, std::size_t depth) noexcept : position_(position), depth_(depth) {}

    Position position_;
    std::size_t depth_;
  };

  /// A step that is made but not in the journal yet. Dropping it undoes nothing.
  template <class Undo>
  class Prepared {
   public:
    /// No step.
    Prepared() = default;
    [[nodiscard]] explicit operator bool() const noexcept { return block_ != nullptr; }
    [[nodiscard]] Undo& operator*() const noexcept { return static_cast<StepOf<Undo>*>(block_->step)->undoWrite; }
    [[nodiscard]] Undo* operator->() const noexcept { return &**this; }

   private:
    friend class Journal;
    explicit Prepared(std::unique_ptr<Block> block) noexcept : block_(std::move(block)) {}

    std::unique_ptr<Block> block_;
  };

  /// While one exists, adding a step does not fail, up to `stepsSetAside` steps. For what must be done after a failure.
  /// The next step outside such a scope sets as many aside again.
  class CannotFail {
   public:
    explicit CannotFail(Journal& journal) noexcept : journal_(journal), before_(journal.drawsFromReserve_) {
      journal_.drawsFromReserve_ = true;
    }
    ~CannotFail() { journal_.drawsFromReserve_ = before_; }
    CannotFail(CannotFail const&) = delete;
    CannotFail& operator=(CannotFail const&) = delete;

   private:
    Journal& journal_;
    bool const before_;
  };
  static constexpr std::size_t stepsSetAside = 32;

  Journal() = default;
  Journal(Journal const&) = delete;
  Journal& operator=(Journal const&) = delete;
  ~Journal();

  /// Sets a mark inside all open ones. Without memory it throws and sets none.
  [[nodiscard]] Mark mark();
  /// Takes the state back to the mark and ends it.
  void rollback(Mark mark) noexcept;
  /// Ends the mark and keeps what was done since.
  void release(Mark mark) noexcept;

  /// Whether a mark is open. Only then may a step be added.
  [[nodiscard]] bool isRecording() const noexcept { return depth_ != 0; }

  /// Adds a step. `undo` is called at most once, by a rollback. Returns the journal's own copy, which may be given what
  /// the write removes.
  template <class Undo>
  Undo& add(Undo undo) {
    Prepared<Undo> step = prepare(std::move(undo));
    Undo& own = *step;
    keep(std::move(step));
    return own;
  }

  /// Makes a step for a write that may fail.
  template <class Undo>
  [[nodiscard]] Prepared<Undo> prepare(Undo undo) {
    static_assert(sizeof(StepOf<Undo>) <= blockSize, "a step keeps what is larger by a pointer");
    static_assert(alignof(StepOf<Undo>) <= alignof(std::max_align_t));
    static_assert(std::is_nothrow_move_constructible_v<Undo>);
    static_assert(std::is_nothrow_invocable_v<Undo&>, "a rollback does not fail");
    std::unique_ptr<Block> block = takeBlock();
    block->step = ::new (block->bytes.data()) StepOf<Undo>(std::move(undo));
    return Prepared<Undo>(std::move(block));
  }
  template <class Undo>
  void keep(Prepared<Undo> step) noexcept {
    step.block_->next = std::move(last_);
    last_ = std::move(step.block_);
  }

  /// Calls `write`, and adds the step `undo` unless `journal` is null. When one of them throws, neither has happened.
  template <class Write, class Undo>
  static void perform(Journal* journal, Write const& write, Undo undo) {
    Prepared<Undo> step;
    if (journal != nullptr) step = journal->prepare(std::move(undo));
    write();
    if (step) journal->keep(std::move(step));
  }

  /// Calls `change` inside a mark. When it throws, its writes are rolled back.
  template <class Change>
  void makeWhole(Change const& change) {
    Mark const before = mark();
    try {
      change();
    } catch (...) {
      rollback(before);
      throw;
    }
    release(before);
  }

  /// For an operation that takes back its own half when it fails: `undoTo` undoes all steps that were added after
  /// `position` was asked for. Both are for use inside one mark.
  [[nodiscard]] Position position() const noexcept { return Position(last_.get()); }
  void undoTo(Position position) noexcept;

 private:
  [[nodiscard]] std::unique_ptr<Block> takeBlock();
  [[nodiscard]] static std::unique_ptr<Block> takeFirst(std::unique_ptr<Block>& list) noexcept;
  void freeBlock(std::unique_ptr<Block> block) noexcept;
  void forgetSteps() noexcept;

  Participant* participants_ = nullptr;
  std::size_t depth_ = 0;
  std::unique_ptr<Block> last_;

  /// While a mark is open, these are the reserve of `CannotFail`.
  std::unique_ptr<Block> free_;
  std::size_t freeCount_ = 0;
  bool drawsFromReserve_ = false;
};

}  // namespace tarn
