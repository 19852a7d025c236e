#include "tests/fakes/failing_new.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

enum Scope { kNoThread, kThisThread, kEveryThread };

std::atomic<Scope> scope{kNoThread};
std::atomic<long> untilFailure{0};
std::atomic<bool> failsOnce{true};
thread_local bool isFailingThread = false;
thread_local int exemptions = 0;

bool failsNow() {
  const Scope now = scope;
  if (now == kNoThread || exemptions > 0 || (now == kThisThread && !isFailingThread)) return false;
  const long left = --untilFailure;
  return left == 0 || (left < 0 && !failsOnce);
}

void* allocate(std::size_t bytes) { return failsNow() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes); }

void* allocateOrThrow(std::size_t bytes) {
  void* const block = allocate(bytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

}  // namespace

// Every form, since a sanitizer brings its own of each that is missing.
void* operator new(std::size_t bytes) { return allocateOrThrow(bytes); }
void* operator new[](std::size_t bytes) { return allocateOrThrow(bytes); }
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept { return allocate(bytes); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }

namespace fakes {

FailingNew::FailingNew(Threads threads, long n, Often often) {
  isFailingThread = true;
  untilFailure = n;
  failsOnce = often == Often::Once;
  scope = threads == Threads::This ? kThisThread : kEveryThread;
}

bool FailingNew::stop() {
  scope = kNoThread;
  isFailingThread = false;
  return untilFailure <= 0;
}

ExemptFromFailingNew::ExemptFromFailingNew() { ++exemptions; }
ExemptFromFailingNew::~ExemptFromFailingNew() { --exemptions; }

}  // namespace fakes
