#include "reception/ReadThread_base.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <random>

#include "tests/reception/page_states.h"
#include "tests/reception/test_reader.h"

namespace reception_test {
namespace {

using fakes::ByteString;
using fakes::MemoryDevice;
using fakes::operator+;
using namespace std::chrono_literals;

// --- Start ----------------------------------------------------------------------------------------------------------

TEST(ReadThread, RefusesToStartWithoutACommandOrADevice) {
  ReaderBench bench;
  EXPECT_EQ(bench.reader.Start(bench.settings, nullptr, nullptr, &bench.error, bench.capability), 0x70401009u);
  EXPECT_EQ(bench.reader.Start(bench.settings, &bench.command, nullptr, &bench.error, bench.capability), 0x70401002u);
  EXPECT_FALSE(bench.reader.IsStarted());
}

TEST(ReadThread, IsLeftAloneByASecondStart) {
  ReaderBench bench;
  ReaderBench other;
  std::atomic<int> starts{0};
  bench.reader.onStart = [&] {
    ++starts;
    bench.reader.addPage();
    return 0u;
  };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.waitFor([&] { return starts == 1 && bench.reader.GetReadStatus(1) == RECEIVING; }));
  other.error.Set(State{.status = 0x40401005});
  EXPECT_EQ(bench.reader.Start(other.settings, &other.command, &other.device, &other.error, other.capability), 0u);
  std::this_thread::sleep_for(20ms);
  EXPECT_EQ(starts, 1);
  EXPECT_EQ(bench.reader.GetReadStatus(1), RECEIVING) << "its own status object stays";
}

TEST(ReadThread, StartsAgainAfterItsEndWithoutItsOldPages) {
  ReaderBench bench;
  std::atomic<unsigned> pagesAtStart{99};
  bench.reader.onStart = [&] {
    pagesAtStart = bench.reader.pageCount();
    bench.reader.addStartedPage();
    return 0u;
  };
  for (int run = 0; run < 3; ++run) {
    pagesAtStart = 99;
    ASSERT_EQ(bench.start(), 0u);
    ASSERT_TRUE(bench.waitFor([&] { return pagesAtStart != 99; }));
    EXPECT_EQ(pagesAtStart, 0u);
    bench.reader.End();
  }
}

TEST(ReadThread, AFailedStartIsTheFailureOfTheFirstPageAndClosesTheDevice) {
  ReaderBench bench;
  bench.openStream();
  bench.reader.onStart = [] { return QSRSLT{0x1010000C}; };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.waitFor([&] { return bench.reader.GetReadStatus(1) == XFERREADY; }));
  const SCANSTATUS status = bench.error.Get();
  EXPECT_EQ(status.status, 0x1010000Cu);
  EXPECT_TRUE(status.betweenPageErr);
  bool canceled = false;
  unsigned result = 0;
  EXPECT_EQ(bench.reader.GetScanData(1, &canceled, &result), nullptr);
  EXPECT_EQ(result, 0x1010000Cu);
  EXPECT_FALSE(canceled);
  EXPECT_TRUE(bench.waitFor([&] { return !bench.device.IsOpen(); }));
  EXPECT_TRUE(bench.reader.IsStarted()) << "until it is joined";
  bench.reader.End();
  EXPECT_EQ(bench.reader.GetReadStatus(1), READY);
}

TEST(ReadThread, AnExceptionOnItsThreadIsRecordedAndEndsNothingElse) {
  ReaderBench bench;
  bench.reader.onStart = []() -> QSRSLT { throw std::bad_alloc(); };
  ASSERT_EQ(bench.start(), 0u);
  EXPECT_TRUE(bench.waitFor([&] { return bench.reader.GetReadStatus(1) == XFERREADY; }));
  EXPECT_TRUE(bench.error.IsErrorOccurred());
  bench.reader.End();
}

// --- The pages in memory ---------------------------------------------------------------------------------------------

TEST(ReadThread, HoldsAsManyPagesAsTheResolutionAllows) {
  const struct {
    int paperType;
    unsigned dpiX, dpiY;
    DUPLEXTYPE duplex;
    unsigned pages;
  } rows[] = {{1, 300, 300, DUPLEXTYPE_SIMPLEX, 21},     {1, 75, 75, DUPLEXTYPE_SIMPLEX, 21},
              {1, 301, 301, DUPLEXTYPE_SIMPLEX, 13},     {1, 400, 400, DUPLEXTYPE_SIMPLEX, 13},
              {1, 401, 401, DUPLEXTYPE_SIMPLEX, 6},      {1, 600, 600, DUPLEXTYPE_LONG_EDGE, 6},
              {1, 601, 601, DUPLEXTYPE_SIMPLEX, 3},      {1, 1200, 1200, DUPLEXTYPE_LONG_EDGE, 4},
              {1, 1200, 1200, DUPLEXTYPE_SHORT_EDGE, 4}, {1, 1200, 300, DUPLEXTYPE_SIMPLEX, 21},
              {1, 400, 1200, DUPLEXTYPE_SIMPLEX, 13},    {23, 100, 100, DUPLEXTYPE_SIMPLEX, 3},
              {24, 100, 100, DUPLEXTYPE_LONG_EDGE, 4},   {23, 1200, 1200, DUPLEXTYPE_SHORT_EDGE, 4},
              {0, 200, 200, DUPLEXTYPE_LONG_EDGE, 21},   {26, 200, 200, DUPLEXTYPE_SIMPLEX, 21}};
  for (const auto& row : rows) {
    ReaderBench bench;
    bench.settings.paperType = static_cast<PAPERTYPE>(row.paperType);
    bench.settings.resolution = {row.dpiX, row.dpiY};
    bench.settings.duplexType = row.duplex;
    std::promise<unsigned> held;
    bench.reader.onStart = [&] {
      while (bench.reader.IsImageDataWritableCondition() && bench.reader.pageCount() < 50)
        bench.reader.addStartedPage();
      held.set_value(bench.reader.GetCountOfNotXferedImageData());
      return 0u;
    };
    ASSERT_EQ(bench.start(), 0u);
    EXPECT_EQ(held.get_future().get(), row.pages)
        << "paper " << row.paperType << " at " << row.dpiX << "x" << row.dpiY << " duplex " << row.duplex;
  }
}

TEST(ReadThread, CountsThePagesThatHoldMemoryAndThatTheCallerHasNotFreed) {
  ReaderBench bench;
  std::promise<void> added;
  std::promise<void> freed;
  std::promise<unsigned> before;
  std::promise<unsigned> after;
  bench.reader.onStart = [&] {
    for (int i = 0; i < 3; ++i) putInto(*bench.reader.addPage(), PageState::Finished);
    for (unsigned i = 1; i <= 3; ++i) bench.reader.pageAt(i)->Settle();
    bench.reader.addPage();  // has nothing yet
    before.set_value(bench.reader.GetCountOfNotXferedImageData());
    added.set_value();
    freed.get_future().wait();
    after.set_value(bench.reader.GetCountOfNotXferedImageData());
    return 0u;
  };
  ASSERT_EQ(bench.start(), 0u);
  added.get_future().wait();
  for (const unsigned pageNo : {2u, 2u, 0u, 9u}) bench.reader.FreeScanData(pageNo);
  freed.set_value();
  EXPECT_EQ(before.get_future().get(), 3u);
  EXPECT_EQ(after.get_future().get(), 2u);
}

TEST(ReadThread, RemovesPagesFromANumberOn) {
  const struct {
    unsigned pages, firstPage, left;
  } rows[] = {{5, 3, 2}, {5, 5, 4}, {5, 6, 5}, {5, 99, 5}, {5, 1, 0}, {5, 0, 0}, {0, 0, 0}, {0, 1, 0}};
  for (const auto& row : rows) {
    ReaderBench bench;
    std::promise<unsigned> left;
    bench.reader.onStart = [&] {
      for (unsigned i = 0; i < row.pages; ++i) bench.reader.addStartedPage();
      bench.reader.ClearImageDataFromArray(row.firstPage);
      left.set_value(bench.reader.pageCount());
      return 0u;
    };
    ASSERT_EQ(bench.start(), 0u);
    EXPECT_EQ(left.get_future().get(), row.left) << row.firstPage << " of " << row.pages;
  }
}

TEST(ReadThread, GivesUpThePagesThatHaveDataAndNoEnd) {
  ReaderBench bench;
  std::promise<void> done;
  bench.reader.onStart = [&] {
    bool found = true;
    bench.reader.TerminateDataReadProcess(&found);
    EXPECT_TRUE(found) << "no pages: left as it was";
    bench.reader.addPage();
    CImageData* finished = bench.reader.addStartedPage();
    finished->m_rawData.FinishWriteData(false, 0);
    CImageData* queued = bench.reader.addStartedPage();
    queued->HandOverToDecoder();
    found = false;
    bench.reader.TerminateDataReadProcess(&found);
    EXPECT_FALSE(found) << "nothing open";
    CImageData* open = bench.reader.addStartedPage();
    bench.reader.TerminateDataReadProcess(nullptr);
    EXPECT_FALSE(open->IsEmpty());
    bench.reader.TerminateDataReadProcess(&found);
    EXPECT_TRUE(found);
    EXPECT_TRUE(open->IsEmpty());
    EXPECT_EQ(open->m_rawData.GetStatus(), IMAGEDATA_DISCARDED);
    EXPECT_FALSE(finished->IsEmpty());
    EXPECT_FALSE(queued->IsEmpty());
    done.set_value();
    return 0u;
  };
  ASSERT_EQ(bench.start(), 0u);
  done.get_future().wait();
}

// --- Waiting for room ------------------------------------------------------------------------------------------------

// Fills the memory and waits for room; act runs on the caller's thread meanwhile.
template <class Act>
QSRSLT waitForRoom(ReaderBench& bench, Act act) {
  bench.settings.resolution = {1200, 1200};
  std::promise<void> full;
  std::promise<QSRSLT> result;
  bench.reader.onStart = [&] {
    while (bench.reader.IsImageDataWritableCondition()) {
      CImageData* page = bench.reader.addPage();
      putInto(*page, PageState::Finished);
      page->Settle();
    }
    full.set_value();
    result.set_value(bench.reader.WaitForImageDataWritableCondition());
    return 0u;
  };
  EXPECT_EQ(bench.start(), 0u);
  full.get_future().wait();
  act();
  return result.get_future().get();
}

TEST(ReadThread, WaitsForRoomUntilAPageIsFreed) {
  ReaderBench bench;
  EXPECT_EQ(waitForRoom(bench, [&] { bench.reader.FreeScanData(1); }), 0u);
}

TEST(ReadThread, WaitsForRoomUntilAFailureIsRecorded) {
  ReaderBench bench;
  EXPECT_EQ(waitForRoom(bench, [&] { bench.error.Set(State{.status = 0x30406003}); }), 0x30406003u);
}

TEST(ReadThread, WaitsForRoomUntilACancellationWhoseStatusIsNone) {
  ReaderBench bench;
  EXPECT_EQ(waitForRoom(bench, [&] { bench.error.Set(State{.canceled = true}); }), 0u);
}

TEST(ReadThread, WaitsForRoomNoLongerThanItsOwnEnd) {
  ReaderBench bench;
  EXPECT_EQ(waitForRoom(bench, [&] { bench.reader.End(); }), 0x01000000u);
}

TEST(ReadThread, DoesNotLookAtAnAbortWhileItWaitsForRoom) {
  ReaderBench bench;
  EXPECT_EQ(waitForRoom(bench,
                        [&] {
                          bench.reader.Abort();
                          std::this_thread::sleep_for(250ms);
                          EXPECT_TRUE(bench.calls.take().empty());
                          bench.reader.FreeScanData(1);
                        }),
            0u);
  EXPECT_TRUE(bench.waitFor([&] { return !bench.calls.take().empty(); })) << "it goes out after the wait";
}

// --- Aborting --------------------------------------------------------------------------------------------------------

TEST(ReadThread, SendsTheAbortOnceWithTheEjectionThatTheDeviceOffers) {
  const struct {
    int cap;
    int all, one, none;
    const char* call;
  } rows[] = {{2, 1, 1, 1, "command.AbortScanning 3"}, {2, 1, 1, 0, "command.AbortScanning 2"},
              {2, 1, 0, 0, "command.AbortScanning 1"}, {2, 0, 0, 0, "command.AbortScanning 0"},
              {1, 1, 1, 1, "command.AbortScanning 0"}, {0, 0, 0, 1, "command.AbortScanning 0"}};
  for (const auto& row : rows) {
    ReaderBench bench;
    bench.capability.baseFunc.cancelSystem = {row.cap, static_cast<FLAG>(row.all), static_cast<FLAG>(row.one),
                                              static_cast<FLAG>(row.none)};
    ASSERT_EQ(bench.start(), 0u);
    bench.reader.Abort();
    std::vector<std::string> calls;
    ASSERT_TRUE(bench.waitFor([&] { return !(calls = bench.calls.take()).empty(); }));
    EXPECT_EQ(calls, std::vector<std::string>{row.call});
    bench.reader.Abort();
    std::this_thread::sleep_for(20ms);
    EXPECT_TRUE(bench.calls.take().empty()) << "sent already";
  }
}

TEST(ReadThread, TakesAnAbortWithoutWaitingForTheCommandThatIsOnItsWay) {
  ReaderBench bench;
  std::promise<void> sending;
  std::promise<void> sent;
  bench.command.onAbort = [&, isFirst = true]() mutable {
    if (!std::exchange(isFirst, false)) return;
    sending.set_value();
    sent.get_future().wait();
  };
  bench.command.results["AbortScanning"] = 0x40500099;
  ASSERT_EQ(bench.start(), 0u);
  bench.reader.Abort();
  sending.get_future().wait();
  const auto start = std::chrono::steady_clock::now();
  bench.reader.Abort();
  EXPECT_LT(std::chrono::steady_clock::now() - start, 1s);
  sent.set_value();
  bench.calls.take();
  EXPECT_TRUE(bench.waitFor([&] { return !bench.calls.take().empty(); })) << "a second wish after a failed command";
}

// --- Reading ---------------------------------------------------------------------------------------------------------

TEST(ReadThread, ReadsNinetySecondsLongUntilTheDeviceSaysAnotherTime) {
  ReaderBench bench;
  bench.openStream();
  std::atomic<int> step{0};
  bench.reader.onStart = [&] {
    bench.reader.SetScanTimeOutSec(0);
    bench.reader.SetScanTimeOutSec(-5);
    return 0u;
  };
  bench.reader.onData = [&](const unsigned char*, std::size_t size) {
    bench.reader.SetScanTimeOutSec(30000);
    ++step;
    return size;
  };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  EXPECT_EQ(bench.device.lastTimeOutMs(), 90000);
  bench.reader.End();

  bench.device.stream(ByteString{1});
  bench.openStream();
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  EXPECT_EQ(step, 1);
  EXPECT_EQ(bench.device.lastTimeOutMs(), 30000) << "in milliseconds";
}

TEST(ReadThread, LosesAndRepeatsNoByteHoweverReadsAndRecordsAreCut) {
  for (unsigned seed = 0; seed < 40; ++seed) {
    std::mt19937 random(seed);
    const auto below = [&](unsigned n) { return static_cast<std::size_t>(random() % n); };
    ByteString stream;
    for (int i = 0; i < 3000; ++i) stream.push_back(static_cast<std::uint8_t>(random()));
    std::vector<MemoryDevice::Part> parts;
    for (std::size_t at = 0; at < stream.size();) {
      const std::size_t size = std::min(stream.size() - at, 1 + below(seed % 2 == 0 ? 5 : 300));
      const auto start = stream.begin() + static_cast<std::ptrdiff_t>(at);
      parts.push_back(MemoryDevice::data(ByteString(start, start + static_cast<std::ptrdiff_t>(size))));
      at += size;
    }
    ReaderBench bench;
    bench.device.stream(parts);
    bench.openStream();
    ByteString used;
    ByteString left;
    bench.reader.onData = [&](const unsigned char* bytes, std::size_t size) {
      const std::size_t taken = std::min(size, below(200));
      used.insert(used.end(), bytes, bytes + taken);
      left.assign(bytes + taken, bytes + size);
      return taken;
    };
    ASSERT_EQ(bench.start(), 0u);
    ASSERT_TRUE(bench.device.waitUntilQuiet());
    bench.reader.End();
    EXPECT_EQ(used + left, stream) << "seed " << seed;
  }
}

TEST(ReadThread, AsksForNoMoreThanTheRoomBehindWhatItCarries) {
  ReaderBench bench;
  bench.device.stream({MemoryDevice::data(ByteString(100, 1)), MemoryDevice::data(ByteString(50, 2)),
                       MemoryDevice::data(ByteString(7, 3))});
  bench.openStream();
  bench.reader.onData = [](const unsigned char*, std::size_t size) { return size == 150 ? 150 : std::size_t{0}; };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  bench.reader.End();
  const std::vector<unsigned> sizes = bench.device.askedSizes();
  ASSERT_GE(sizes.size(), 4u);
  EXPECT_EQ((std::vector<unsigned>(sizes.begin(), sizes.begin() + 4)),
            (std::vector<unsigned>{0xA00000, 0xA00000 - 100, 0xA00000, 0xA00000 - 7}));
}

TEST(ReadThread, ABufferThatIsFullAndOfNoUseEndsTheScan) {
  ReaderBench bench;
  bench.device.stream(ByteString(0xA00001, 1));
  bench.openStream();
  bench.reader.onData = [](const unsigned char*, std::size_t) { return std::size_t{0}; };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.waitFor([&] { return bench.error.IsErrorOccurred(); }));
  EXPECT_EQ(bench.error.Get().status, 0x6040100Fu);
  for (const unsigned size : bench.device.askedSizes()) EXPECT_GT(size, 0u);
}

TEST(ReadThread, AReadThatFailsWithoutACodeIsPassedOver) {
  ReaderBench bench;
  bench.device.stream({MemoryDevice::failure(0), MemoryDevice::data({1, 2})});
  bench.openStream();
  std::atomic<std::size_t> bytes{0};
  bench.reader.onData = [&](const unsigned char*, std::size_t size) { return bytes += size, size; };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  EXPECT_FALSE(bench.error.IsErrorOccurred());
  EXPECT_EQ(bytes, 2u);
}

TEST(ReadThread, AfterAFailureOfTheProgramItReadsOnAndDropsWhatComes) {
  ReaderBench bench;
  bench.device.stream({MemoryDevice::failure(0x10500001), MemoryDevice::data({1, 2})});
  bench.openStream();
  std::atomic<int> dispatches{0};
  bench.reader.onData = [&](const unsigned char*, std::size_t size) { return ++dispatches, size; };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.device.waitUntilQuiet());
  EXPECT_EQ(bench.error.Get().status, 0x10500001u);
  EXPECT_EQ(dispatches, 0);
}

TEST(ReadThread, AfterAConnectionErrorADeviceErrorOrACancellationItReadsNoMore) {
  for (const State& status : {State{.status = 0x40500001}, State{.deviceErr = 0x91}, State{.canceled = true}}) {
    ReaderBench bench;
    bench.openStream();
    ASSERT_EQ(bench.start(), 0u);
    ASSERT_TRUE(bench.device.waitUntilQuiet());
    bench.error.Set(status);
    std::this_thread::sleep_for(20ms);
    const int reads = bench.device.reads();
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(bench.device.reads(), reads);
    EXPECT_TRUE(bench.device.IsOpen());
    bench.reader.End();
    EXPECT_FALSE(bench.device.IsOpen()) << "closed when the thread ends";
  }
}

TEST(ReadThread, TheTimeOutOfAReadIsRecordedWithItsOwnCode) {
  ReaderBench bench;
  bench.device.stream({MemoryDevice::timeOut()});
  bench.openStream();
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.waitFor([&] { return bench.error.IsErrorOccurred(); }));
  EXPECT_EQ(bench.error.Get().status, 0x40401005u);
  EXPECT_TRUE(bench.error.IsConnectionErr());
  EXPECT_EQ(bench.reader.GetReadStatus(1), XFERREADY);
}

TEST(ReadThread, TheEscapeIsACopy) {
  const unsigned char bytes[] = {1, 2, 3};
  const std::unique_ptr<unsigned char[]> copy(TestReader::SaveDataToEscapeBuffer(bytes, 3));
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy.get(), bytes);
  EXPECT_TRUE(std::equal(bytes, bytes + 3, copy.get()));
}

}  // namespace
}  // namespace reception_test
