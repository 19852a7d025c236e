#include "api/ScanError.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

namespace orvalle_scan_api {
namespace {

SCANSTATUS withStatus(QSRSLT status) {
  SCANSTATUS next{};
  next.status = status;
  return next;
}

void expectEqual(const SCANSTATUS& is, const SCANSTATUS& should, const char* where) {
  EXPECT_EQ(is.status, should.status) << where;
  EXPECT_EQ(is.lastReceivePageNo, should.lastReceivePageNo) << where;
  EXPECT_EQ(is.errPageNo, should.errPageNo) << where;
  EXPECT_EQ(is.cancelPageNo, should.cancelPageNo) << where;
  EXPECT_EQ(is.deviceErr, should.deviceErr) << where;
  EXPECT_EQ(is.betweenPageErr, should.betweenPageErr) << where;
  EXPECT_EQ(is.scanFinished, should.scanFinished) << where;
  EXPECT_EQ(is.canceled, should.canceled) << where;
}

// Reads the present record, changes it and writes it back, as every writer does.
template <class Change>
void change(CScanError& error, Change how) {
  SCANSTATUS status = error.Get();
  how(status);
  error.Set(status);
}

TEST(ScanError, StartsWithoutAFailure) {
  CScanError error;
  expectEqual(error.Get(), SCANSTATUS{}, "new");
  EXPECT_FALSE(error.IsErrorOccurred());
  EXPECT_FALSE(error.IsDeviceErr());
  EXPECT_FALSE(error.IsPcErr());
  EXPECT_FALSE(error.IsConnectionErr());
  EXPECT_FALSE(error.IsCanceled());
  EXPECT_FALSE(error.IsAllPageEnd());
}

TEST(ScanError, KeepsTheFirstStatus) {
  CScanError error;
  error.Set(withStatus(0x10403003));
  error.Set(withStatus(0x40401005));
  error.Set(withStatus(0));
  EXPECT_EQ(error.Get().status, 0x10403003u);
}

TEST(ScanError, ALowerErrorPageReplacesAHigherOneWhileNoStatusIsStored) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.errPageNo = 5; });
  EXPECT_EQ(error.Get().errPageNo, 5u);
  change(error, [](SCANSTATUS& s) { s.errPageNo = 3; });
  EXPECT_EQ(error.Get().errPageNo, 3u);
  change(error, [](SCANSTATUS& s) { s.errPageNo = 7; });
  EXPECT_EQ(error.Get().errPageNo, 3u);
  change(error, [](SCANSTATUS& s) { s.errPageNo = 3; });
  EXPECT_EQ(error.Get().errPageNo, 3u);
  change(error, [](SCANSTATUS& s) { s.errPageNo = 0; });
  EXPECT_EQ(error.Get().errPageNo, 0u);
  change(error, [](SCANSTATUS& s) { s.errPageNo = 0xFFFFFFFF; });
  EXPECT_EQ(error.Get().errPageNo, 0xFFFFFFFFu) << "a stored 0 takes anything";
}

TEST(ScanError, TheErrorPageStaysOnceAStatusIsStored) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.errPageNo = 5; });
  error.Set(withStatus(0x10403003));  // its page 0 is still taken: the gate was open at entry
  change(error, [](SCANSTATUS& s) { s.errPageNo = 3; });
  EXPECT_EQ(error.Get().errPageNo, 0u);

  CScanError other;
  change(other, [](SCANSTATUS& s) {
    s.errPageNo = 5;
    s.status = 0x10403003;
  });
  change(other, [](SCANSTATUS& s) { s.errPageNo = 3; });
  EXPECT_EQ(other.Get().errPageNo, 5u);
}

TEST(ScanError, TheSetThatBringsTheFirstStatusBringsItsOtherFieldsToo) {
  CScanError error;
  const SCANSTATUS first{0x1040100B, 2, 3, 0, 0x91, true, true, false};
  error.Set(first);
  expectEqual(error.Get(), first, "first failure");
}

TEST(ScanError, TheLastPageReceivedOnlyRises) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.lastReceivePageNo = 4; });
  change(error, [](SCANSTATUS& s) { s.lastReceivePageNo = 2; });
  EXPECT_EQ(error.Get().lastReceivePageNo, 4u);
}

TEST(ScanError, ADeviceErrorIsOverwrittenAlsoByNoneWhileNoStatusIsStored) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.deviceErr = 0x91; });
  EXPECT_TRUE(error.IsDeviceErr());
  EXPECT_TRUE(error.IsErrorOccurred());
  EXPECT_FALSE(error.IsPcErr());
  change(error, [](SCANSTATUS& s) { s.deviceErr = 0; });
  EXPECT_FALSE(error.IsErrorOccurred());
}

TEST(ScanError, BetweenPagesAndFinishedStayOnceSet) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.betweenPageErr = s.scanFinished = true; });
  change(error, [](SCANSTATUS& s) { s.betweenPageErr = s.scanFinished = false; });
  EXPECT_TRUE(error.Get().betweenPageErr);
  EXPECT_TRUE(error.IsAllPageEnd());
}

TEST(ScanError, ACancellationAfterAFailureIsTakenAndTheStatusIsNot) {
  CScanError error;
  error.Set(withStatus(0x1040100B));
  SCANSTATUS cancel = withStatus(0x01000000);
  cancel.canceled = true;
  cancel.cancelPageNo = 4;
  error.Set(cancel);
  EXPECT_TRUE(error.IsCanceled());
  EXPECT_EQ(error.Get().cancelPageNo, 4u);
  EXPECT_EQ(error.Get().status, 0x1040100Bu);
}

TEST(ScanError, TheFirstCancellationWins) {
  CScanError error;
  SCANSTATUS cancel{};
  cancel.canceled = true;
  cancel.cancelPageNo = 4;
  error.Set(cancel);
  cancel.cancelPageNo = 2;
  error.Set(cancel);
  error.Set(SCANSTATUS{});
  EXPECT_TRUE(error.IsCanceled());
  EXPECT_EQ(error.Get().cancelPageNo, 4u);
}

TEST(ScanError, TheCancelPageIsTakenEvenBeforeACancellation) {
  CScanError error;
  change(error, [](SCANSTATUS& s) { s.cancelPageNo = 9; });
  EXPECT_FALSE(error.IsCanceled());
  EXPECT_EQ(error.Get().cancelPageNo, 9u);
}

TEST(ScanError, ACancellationInStatusCountsAsAnError) {
  CScanError error;
  error.Set(withStatus(0x01000000));
  EXPECT_TRUE(error.IsErrorOccurred());
  EXPECT_TRUE(error.IsPcErr());
  EXPECT_FALSE(error.IsConnectionErr());
  EXPECT_FALSE(error.IsCanceled()) << "the flag alone says so";
}

TEST(ScanError, AConnectionErrorIsBitThirtyOfTheStatus) {
  const struct {
    QSRSLT status;
    bool isConnection;
  } rows[] = {{0x40401005, true},  {0x10401001, false}, {0x50000002, true},  {0x6040100F, true},  {0x7010000A, true},
              {0x30401006, false}, {0x01000000, false}, {0x20100006, false}, {0x80000000, false}, {0xC0000000, true}};
  for (const auto& row : rows) {
    CScanError error;
    error.Set(withStatus(row.status));
    EXPECT_EQ(error.IsConnectionErr(), row.isConnection) << std::hex << row.status;
    EXPECT_TRUE(error.IsPcErr()) << std::hex << row.status;
  }
}

TEST(ScanError, ResetClearsEverythingAndLeavesTheLockUsable) {
  CScanError error;
  error.Set(SCANSTATUS{0x1040100B, 2, 3, 4, 0x91, true, true, true});
  error.Reset();
  expectEqual(error.Get(), SCANSTATUS{}, "reset");
  EXPECT_FALSE(error.IsCanceled());
  error.Set(withStatus(0x40401005));
  EXPECT_EQ(error.Get().status, 0x40401005u);
}

// The merge, written out again from its rules.
void mergeByRules(SCANSTATUS& stored, const SCANSTATUS& next) {
  if (stored.status == 0) {
    if (next.status != 0) stored.status = next.status;
    if (next.lastReceivePageNo > stored.lastReceivePageNo) stored.lastReceivePageNo = next.lastReceivePageNo;
    if (static_cast<std::uint32_t>(stored.errPageNo - 1) >= next.errPageNo) stored.errPageNo = next.errPageNo;
    stored.deviceErr = next.deviceErr;
    if (!stored.betweenPageErr) stored.betweenPageErr = next.betweenPageErr;
    if (!stored.scanFinished) stored.scanFinished = next.scanFinished;
  }
  if (!stored.canceled) {
    stored.canceled = next.canceled;
    stored.cancelPageNo = next.cancelPageNo;
  }
}

TEST(ScanError, AnySequenceOfSetsKeepsTheFirstStatusAndTheFirstCancellation) {
  std::mt19937 engine(1);
  const auto random = [&] { return static_cast<std::uint32_t>(engine()); };
  const auto oneOf = [&](unsigned n) { return random() % n == 0; };
  for (int sequence = 0; sequence < 2000; ++sequence) {
    CScanError error;
    SCANSTATUS model{};
    QSRSLT firstStatus = 0;
    std::uint32_t firstCancelPage = 0;
    bool canceled = false;
    for (int step = 0; step < 12; ++step) {
      SCANSTATUS next{};
      if (oneOf(4)) next.status = random() | 1;
      next.lastReceivePageNo = random() % 6;
      next.errPageNo = random() % 6;
      next.cancelPageNo = random() % 6;
      next.deviceErr = oneOf(4) ? static_cast<std::uint16_t>(random()) : std::uint16_t{0};
      next.betweenPageErr = oneOf(3);
      next.scanFinished = oneOf(3);
      next.canceled = oneOf(4);
      if (firstStatus == 0) firstStatus = next.status;
      if (!canceled && next.canceled) {
        canceled = true;
        firstCancelPage = next.cancelPageNo;
      }
      error.Set(next);
      mergeByRules(model, next);
      const SCANSTATUS now = error.Get();
      expectEqual(now, model, "model");
      EXPECT_EQ(now.status, firstStatus);
      EXPECT_EQ(now.canceled, canceled);
      EXPECT_EQ(error.IsCanceled(), canceled);
      if (canceled) {
        EXPECT_EQ(now.cancelPageNo, firstCancelPage);
      }
      EXPECT_EQ(error.IsErrorOccurred(), model.status != 0 || model.deviceErr != 0);
      EXPECT_EQ(error.IsDeviceErr(), model.deviceErr != 0);
      EXPECT_EQ(error.IsPcErr(), model.status != 0 && model.deviceErr == 0);
      EXPECT_EQ(error.IsAllPageEnd(), model.scanFinished);
      if (HasFailure()) return;
    }
  }
}

TEST(ScanError, WritersOnManyThreadsLeaveOneOfTheirFailures) {
  for (int round = 0; round < 50; ++round) {
    CScanError error;
    std::vector<std::thread> writers;
    for (unsigned i = 1; i <= 4; ++i) {
      writers.emplace_back([&error, i] {
        change(error, [i](SCANSTATUS& s) {
          s.status = 0x10400000 + i;
          s.errPageNo = i;
        });
        change(error, [i](SCANSTATUS& s) {
          s.canceled = true;
          s.cancelPageNo = i;
        });
      });
    }
    while (!error.IsCanceled()) std::this_thread::yield();
    for (std::thread& writer : writers) writer.join();
    const SCANSTATUS status = error.Get();
    EXPECT_EQ(status.status, 0x10400000 + status.errPageNo);
    EXPECT_TRUE(status.cancelPageNo >= 1 && status.cancelPageNo <= 4);
  }
}

}  // namespace
}  // namespace orvalle_scan_api
