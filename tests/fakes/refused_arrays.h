// Arrays that are asked for without an exception, as the core asks for its large buffers, are refused on demand.
// Threads: the flag is thread-safe.
#pragma once

#include <atomic>
#include <cstddef>

namespace fakes {

// Arrays of so many bytes and more are refused; 0 refuses none.
extern std::atomic<std::size_t> refusedArrayBytes;

}  // namespace fakes
