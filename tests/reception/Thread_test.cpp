#include "reception/Thread.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <system_error>

#include "reception/WriteReadMutex.h"
#include "tests/fakes/failing_new.h"

namespace orvalle_scan_api {
namespace {

using namespace std::chrono_literals;

// Runs until it is told to end, or returns by itself at once.
class Worker : public CThread_Base {
 public:
  explicit Worker(bool returnsByItself = false) : returnsByItself_(returnsByItself) {}
  ~Worker() { End(); }

  using CThread_Base::Start;
  using CThread_Base::ThreadProcEntry;

  void waitForRuns(int count) {
    while (runs_ < count) std::this_thread::yield();
  }
  bool sawStopAtEntry() const { return sawStopAtEntry_; }
  int runs() const { return runs_; }
  int ends() const { return ends_; }
  bool stopFlag() const { return m_end; }

 private:
  void ThreadProc() override {
    sawStopAtEntry_ = m_end.load();
    ++runs_;
    while (!returnsByItself_ && !m_end) std::this_thread::sleep_for(100us);
    ++ends_;
  }

  const bool returnsByItself_;
  std::atomic<bool> sawStopAtEntry_{false};
  std::atomic<int> runs_{0};
  std::atomic<int> ends_{0};
};

TEST(Thread, RunsItsProcedureUntilEnd) {
  Worker worker;
  EXPECT_FALSE(worker.IsStarted());
  EXPECT_TRUE(worker.Start());
  EXPECT_TRUE(worker.IsStarted());
  worker.waitForRuns(1);
  EXPECT_EQ(worker.ends(), 0);
  worker.End();
  EXPECT_EQ(worker.ends(), 1);
  EXPECT_FALSE(worker.IsStarted());
}

TEST(Thread, CountsAsStartedAfterItsProcedureReturnedUntilItIsJoined) {
  Worker worker(true);
  worker.Start();
  while (worker.ends() == 0) std::this_thread::yield();
  EXPECT_TRUE(worker.IsStarted());
  worker.End();
  EXPECT_FALSE(worker.IsStarted());
}

TEST(Thread, EndTwiceIsHarmless) {
  Worker worker;
  worker.Start();
  worker.End();
  worker.End();
  EXPECT_FALSE(worker.IsStarted());
}

TEST(Thread, EndOnOneThatIsNotStartedOnlySetsTheFlag) {
  Worker worker;
  worker.End();
  EXPECT_TRUE(worker.stopFlag());
  EXPECT_FALSE(worker.IsStarted());
  EXPECT_EQ(worker.runs(), 0);
}

TEST(Thread, StartsAgainAfterEndWithTheStopFlagClear) {
  Worker worker;
  for (int run = 1; run <= 3; ++run) {
    EXPECT_TRUE(worker.Start());
    worker.waitForRuns(run);
    EXPECT_FALSE(worker.sawStopAtEntry());
    EXPECT_FALSE(worker.stopFlag());
    worker.End();
    EXPECT_EQ(worker.ends(), run);
  }
}

TEST(Thread, ForceEndLetsARunningThreadFinishAlone) {
  Worker worker;
  worker.Start();
  worker.waitForRuns(1);
  worker.ForceEnd();
  EXPECT_FALSE(worker.IsStarted());
  while (worker.ends() == 0) std::this_thread::yield();
  std::this_thread::sleep_for(1ms);  // the detached thread's last steps
}

TEST(Thread, TheStaticEntryRunsTheProcedureOfAnObjectAndIgnoresNull) {
  Worker worker(true);
  Worker::ThreadProcEntry(nullptr);
  Worker::ThreadProcEntry(static_cast<CThread_Base*>(&worker));
  EXPECT_EQ(worker.runs(), 1);
}

// In a process of its own: a process that had threads keeps their stacks for the next one.
[[noreturn]] void startWithoutMemory() {
  Worker worker;
  rlimit none{};
  getrlimit(RLIMIT_AS, &none);
  none.rlim_cur = 1;  // no room for another stack
  setrlimit(RLIMIT_AS, &none);
  try {
    worker.Start();
  } catch (const std::system_error& failure) {
    std::fprintf(stderr, "%s, started %d\n", failure.what(), worker.IsStarted());
    std::_Exit(3);
  }
  std::_Exit(4);
}

TEST(ThreadDeathTest, ReportsACreationThatFailed) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer itself needs the memory that this test takes away";
#endif
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(startWithoutMemory(), testing::ExitedWithCode(3), "thread constructor failed.*started 0");
}

// The caller joins first; forgetting it is not survived.
TEST(ThreadDeathTest, StartingOneThatIsNotJoinedEndsTheProcess) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      {
        Worker worker(true);
        worker.Start();
        worker.Start();
      },
      "terminate called");
}

TEST(Thread, AThreadThatHasNoMemoryIsOneThatCouldNotBeMade) {
  Worker worker;
  fakes::FailingNew failing(fakes::Threads::This, 1);
  try {
    worker.Start();
    ADD_FAILURE() << "it has started";
  } catch (const std::system_error& failure) {
    failing.stop();
    EXPECT_EQ(std::string(failure.what()).rfind("thread constructor failed", 0), 0u) << failure.what();
    EXPECT_EQ(failure.code(), std::errc::not_enough_memory);
  }
  EXPECT_FALSE(worker.IsStarted());
  EXPECT_TRUE(worker.Start());
}

TEST(Thread, ADestroyedObjectHasJoinedItsThread) {
  std::atomic<bool> isOver{false};
  {
    struct Slow : CThread_Base {
      explicit Slow(std::atomic<bool>& over) : over_(over) { Start(); }
      ~Slow() { End(); }
      void ThreadProc() override {
        while (!m_end) std::this_thread::yield();
        over_ = true;
      }
      std::atomic<bool>& over_;
    } slow(isOver);
  }
  EXPECT_TRUE(isOver);
}

TEST(Thread, TheTwoHalvesOfTheMutexPairAreIndependent) {
  CWriteReadMutex_Base pair;
  pair.LockWriteMutex();
  pair.LockReadMutex();  // would wait for ever if it were one lock
  pair.UnlockReadMutex();
  pair.UnlockWriteMutex();
  { CWriteReadMutex_Base::WriteGuard guard(pair); }
  pair.LockWriteMutex();  // would wait for ever if the guard had kept it
  pair.UnlockWriteMutex();
}

TEST(Thread, TheWriteHalfKeepsWritersApart) {
  CWriteReadMutex_Base pair;
  int count = 0;
  std::thread other([&] {
    for (int i = 0; i < 10000; ++i) {
      CWriteReadMutex_Base::WriteGuard guard(pair);
      ++count;
    }
  });
  for (int i = 0; i < 10000; ++i) {
    pair.LockWriteMutex();
    ++count;
    pair.UnlockWriteMutex();
  }
  other.join();
  EXPECT_EQ(count, 20000);
}

}  // namespace
}  // namespace orvalle_scan_api
