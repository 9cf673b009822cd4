// The list of steps, and the blocks that hold them. A step is one block, so adding one needs no memory when a block is
// free. The steps are linked from the last to the first, which is the order in which they are undone. Both lists are
// taken apart block by block, because destroying a long one as a whole would recurse.

#include "journal/Journal.h"

namespace tarn {

Journal::Participant::~Participant() {
  if (journal_ == nullptr) return;
  Participant** place = &journal_->participants_;
  while (*place != this) place = &(*place)->next_;
  *place = next_;
}

Journal::~Journal() {
  forgetSteps();
  for (; participants_ != nullptr; participants_ = participants_->next_) participants_->journal_ = nullptr;
  while (free_ != nullptr) (void)takeFirst(free_);
}

Journal::Mark Journal::mark() {
  Mark const mark(position(), ++depth_);
  try {
    for (auto* store = participants_; store != nullptr; store = store->next_) store->noteAtMark(*this);
  } catch (...) {
    rollback(mark);
    throw;
  }
  return mark;
}

void Journal::rollback(Mark mark) noexcept {
  undoTo(mark.position_);
  depth_ = mark.depth_ - 1;
}

void Journal::release(Mark mark) noexcept {
  depth_ = mark.depth_ - 1;
  if (depth_ == 0) forgetSteps();
}

void Journal::undoTo(Position position) noexcept {
  while (last_.get() != position.last_) {
    std::unique_ptr<Block> block = takeFirst(last_);
    block->step->undo();
    freeBlock(std::move(block));
  }
}

void Journal::forgetSteps() noexcept {
  while (last_ != nullptr) freeBlock(takeFirst(last_));
}

/// Blocks beyond the reserve are used first. So the reserve is complete after each step that was added normally.
std::unique_ptr<Journal::Block> Journal::takeBlock() {
  if (!drawsFromReserve_) {
    for (; freeCount_ <= stepsSetAside; ++freeCount_) {
      auto block = std::make_unique<Block>();
      block->next = std::move(free_);
      free_ = std::move(block);
    }
  }
  if (free_ == nullptr) return std::make_unique<Block>();
  --freeCount_;
  return takeFirst(free_);
}

std::unique_ptr<Journal::Block> Journal::takeFirst(std::unique_ptr<Block>& list) noexcept {
  std::unique_ptr<Block> block = std::move(list);
  list = std::move(block->next);
  return block;
}

void Journal::freeBlock(std::unique_ptr<Block> block) noexcept {
  // Many more steps than usual came from one large change. Their memory is not kept.
  constexpr std::size_t many = 1024;
  block->clear();
  if (freeCount_ >= many) return;
  block->next = std::move(free_);
  free_ = std::move(block);
  ++freeCount_;
}

}  // namespace tarn
