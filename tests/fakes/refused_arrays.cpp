#include "tests/fakes/refused_arrays.h"

#include <cstdlib>
#include <new>

namespace fakes {
std::atomic<std::size_t> refusedArrayBytes{0};
}

// The four belong together: what one makes another frees. In a file of their own, so that no caller sees through them.
void* operator new[](std::size_t size) {
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  const std::size_t refused = fakes::refusedArrayBytes;
  return refused != 0 && size >= refused ? nullptr : std::malloc(size == 0 ? 1 : size);
}
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
