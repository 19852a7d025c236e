// What a running process takes from the machine, as the kernel tells it.
#pragma once

#include <sys/types.h>

namespace e2e {

struct Figures {
  long residentKib = 0;
  long peakKib = 0;  // the largest residentKib so far
  int threads = 0;
  int descriptors = 0;
};

// All 0 once the process is gone.
Figures figuresOf(pid_t pid);

// Built with a sanitizer a program keeps what it has freed: its memory says nothing, and the sanitizer itself finds
// leaks.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kMemoryIsTelling = false;
#else
inline constexpr bool kMemoryIsTelling = true;
#endif

}  // namespace e2e
