// Stand-ins for the run-time modules: each hands every call on to the real module and adds up the processor time that
// the calling thread spends in it. Laid beside a copy of the core, they tell the modules' share of any host's scan.
//
// Where QS_TIMED_MODULES names a file, a stand-in that is unloaded appends a line: its name and its nanoseconds.
// Threads: as the modules' own interfaces say.
#pragma once

#include <dlfcn.h>

#include <atomic>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "thread_clock.h"

namespace timed {

class Meter {
 public:
  explicit Meter(const char* name) : name_(name) {}
  ~Meter() {
    const char* path = std::getenv("QS_TIMED_MODULES");
    std::FILE* file = path != nullptr ? std::fopen(path, "ae") : nullptr;
    if (file == nullptr) return;
    std::fprintf(file, "%s %" PRId64 "\n", name_, ns_.load());
    std::fclose(file);
  }

  // Carries the call out.
  template <typename Call>
  decltype(auto) during(Call call) {
    const Span span{ns_};
    return call();
  }

 private:
  struct Span {
    std::atomic<std::int64_t>& ns;
    const std::int64_t start = threadClockNs();
    ~Span() { ns += threadClockNs() - start; }
  };

  const char* const name_;
  std::atomic<std::int64_t> ns_{0};
};

// The object of the real module, and the module as long as the object lives.
template <typename Interface>
class Real {
 public:
  Real() {
    if (!library_) return;
    const auto create = reinterpret_cast<Interface* (*)()>(::dlsym(library_.get(), "CreateInstance"));
    if (create != nullptr) object_.reset(create());
  }
  bool isThere() const { return object_ != nullptr; }
  Interface* operator->() const { return object_.get(); }

 private:
  struct Closer {
    void operator()(void* library) const { ::dlclose(library); }
  };
  std::unique_ptr<void, Closer> library_{::dlopen(QS_REAL_MODULE, RTLD_NOW | RTLD_LOCAL)};
  std::unique_ptr<Interface> object_;  // ends before its code
};

// What a stand-in's CreateInstance gives: null where the real module cannot be had.
template <typename StandIn>
StandIn* create() {
  auto standIn = std::make_unique<StandIn>();
  return standIn->isThere() ? standIn.release() : nullptr;
}

}  // namespace timed
