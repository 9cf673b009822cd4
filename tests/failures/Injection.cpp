// Replaces the program's operator new, so every allocation of the libraries and of the standard library passes here.
// Only allocations of the thread that attempts an operation are counted and fail.

#include "failures/Injection.h"

#include <cstdlib>

namespace tarn::test {

namespace {

struct Armed {
  bool allocation = false;
  bool hook = false;
  bool allBehind = false;
  bool reached = false;
  std::size_t passes = 0;

  /// Whether this call is to fail.
  bool strikes() noexcept {
    if (reached) return allBehind;
    if (passes-- != 0) return false;
    reached = true;
    return true;
  }
};

thread_local Armed armed;
thread_local std::ptrdiff_t live = 0;

void* allocate(std::size_t size) {
  if (armed.allocation && armed.strikes()) throw std::bad_alloc();
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  ++live;
  return memory;
}

void release(void* memory) noexcept {
  if (memory == nullptr) return;
  --live;
  std::free(memory);
}

}  // namespace

void mayFail() {
  if (armed.hook && armed.strikes()) throw Interruption();
}

std::ptrdiff_t liveAllocations() noexcept {
  return live;
}

Attempt::Scope::Scope(Attempt& attempt) noexcept : attempt_(attempt) {
  armed = {attempt.call_ == FailingCall::Allocation, attempt.call_ == FailingCall::Hook, attempt.allBehind_, false,
           attempt.passed_};
}

Attempt::Scope::~Scope() {
  attempt_.reached_ = armed.reached;
  armed = {};
}

}  // namespace tarn::test

void* operator new(std::size_t size) {
  return tarn::test::allocate(size);
}
void* operator new[](std::size_t size) {
  return tarn::test::allocate(size);
}
void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
  try {
    return tarn::test::allocate(size);
  } catch (std::bad_alloc const&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size, std::nothrow_t const& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept {
  tarn::test::release(memory);
}
void operator delete[](void* memory) noexcept {
  tarn::test::release(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  tarn::test::release(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  tarn::test::release(memory);
}
void operator delete(void* memory, std::nothrow_t const& /*tag*/) noexcept {
  tarn::test::release(memory);
}
void operator delete[](void* memory, std::nothrow_t const& /*tag*/) noexcept {
  tarn::test::release(memory);
}
