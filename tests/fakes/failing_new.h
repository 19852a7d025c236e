// Memory that runs out: operator new of the whole program, replaced by failing_new.cpp, fails where a test says so.
#pragma once

namespace fakes {

enum class Threads { This, Every };
enum class Often { Once, ForEver };

// While it lives, the n-th allocation from 1 fails, or all from the n-th on. One object at a time.
class FailingNew {
 public:
  FailingNew(Threads threads, long n, Often often = Often::Once);
  ~FailingNew() { stop(); }
  FailingNew(const FailingNew&) = delete;
  FailingNew& operator=(const FailingNew&) = delete;

  // Whether an allocation has failed. From here on none does.
  bool stop();
};

// While it lives, this thread's allocations neither fail nor count.
class ExemptFromFailingNew {
 public:
  ExemptFromFailingNew();
  ~ExemptFromFailingNew();
  ExemptFromFailingNew(const ExemptFromFailingNew&) = delete;
  ExemptFromFailingNew& operator=(const ExemptFromFailingNew&) = delete;
};

}  // namespace fakes
