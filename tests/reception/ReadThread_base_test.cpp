#include "reception/ReadThread_base.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <random>

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

// --- The state of a page --------------------------------------------------------------------------------------------

enum class PageState { None, Open, Finished, Discarded, Canceled, Blank };

void putInto(CImageData& page, PageState state) {
  const unsigned char byte = 1;
  CImageDataStore& final = page.m_finalData;
  final.StartWriteData(300, 300, 1, 1, COLORTYPE_COLOR24BIT, 5, 2);
  if (state == PageState::Open) page.m_rawData.WriteDataBlock(&byte, 1);
  if (state == PageState::Finished || state == PageState::Discarded) final.WriteDataBlock(&byte, 1);
  if (state == PageState::Finished) final.FinishWriteData(false, 0);
  if (state == PageState::Discarded) final.FinishWriteData(true, 0);
  if (state == PageState::Canceled) final.CancelProc();
  if (state == PageState::Blank) page.SetIsBlankPage(true);
}

// The table of the states, first match wins. Once a failure or a cancellation is recorded no page is left waiting: a
// page that nothing will finish any more is answered too.
SCANAPISTATUS stateByTable(const State& s, unsigned pageNo, PageState page) {
  if (s.cancelPageNo == pageNo) return XFERCANCELED;
  if (s.canceled && s.cancelPageNo != 0 && pageNo >= s.cancelPageNo) return XFERCANCELED;
  if ((s.status & 0x40000000) != 0) return XFERREADY;
  if (page == PageState::Finished || page == PageState::Discarded || page == PageState::Canceled) return XFERREADY;
  if (page == PageState::Blank) return XFERREADY;
  const bool isOver = s.status != 0 || s.deviceErr != 0 || s.canceled;
  if (page == PageState::Open) {
    if (isOver) return s.canceled ? XFERCANCELED : XFERREADY;
    return s.errPageNo == pageNo ? XFERREADY : RECEIVING;
  }
  if (s.betweenPageErr && isOver) return XFERREADY;
  if (s.errPageNo == pageNo) return XFERREADY;
  if (s.scanFinished) return ALLEND;
  return isOver ? XFERREADY : RECEIVING;
}

TEST(ReadThread, TheStateOfAPageFollowsTheTable) {
  for (const PageState state : {PageState::None, PageState::Open, PageState::Finished, PageState::Discarded,
                                PageState::Canceled, PageState::Blank}) {
    ReaderBench bench;
    std::atomic<bool> ready{false};
    bench.reader.onStart = [&] {
      if (state != PageState::None) {
        for (int i = 0; i < 2; ++i) putInto(*bench.reader.addPage(), state);
      }
      ready = true;
      return 0u;
    };
    EXPECT_EQ(bench.reader.GetReadStatus(1), READY) << "not started";
    ASSERT_EQ(bench.start(), 0u);
    ASSERT_TRUE(bench.waitFor([&] { return ready.load(); }));
    for (const QSRSLT status : {0u, 0x40401005u, 0x1040100Bu, 0x01000000u}) {
      for (unsigned bits = 0; bits < 8; ++bits) {
        for (unsigned errPage = 0; errPage < 4; ++errPage) {
          for (unsigned cancelPage = 0; cancelPage < 4; ++cancelPage) {
            State s;
            s.status = status;
            s.betweenPageErr = (bits & 1) != 0;
            s.scanFinished = (bits & 2) != 0;
            s.canceled = (bits & 4) != 0;
            s.errPageNo = errPage;
            s.cancelPageNo = cancelPage;
            bench.error.Reset();
            bench.error.Set(s);
            EXPECT_EQ(bench.reader.GetReadStatus(2), stateByTable(s, 2, state))
                << "page state " << static_cast<int>(state) << std::hex << " status " << status << " between "
                << s.betweenPageErr << " finished " << s.scanFinished << " canceled " << s.canceled << " errPage "
                << errPage << " cancelPage " << cancelPage;
            if (HasFailure()) return;
          }
        }
      }
    }
  }
}

// --- Fetching a page ------------------------------------------------------------------------------------------------

// Asks for page 2 of two pages in the given state, with that outcome recorded.
struct Fetched {
  bool isPage = false;
  bool canceled = false;
  unsigned result = 0;
};
Fetched fetch(PageState state, const SCANSTATUS& status) {
  ReaderBench bench;
  std::atomic<bool> ready{false};
  bench.reader.onStart = [&] {
    if (state != PageState::None) {
      for (int i = 0; i < 2; ++i) putInto(*bench.reader.addPage(), state);
    }
    ready = true;
    return 0u;
  };
  EXPECT_EQ(bench.start(), 0u);
  EXPECT_TRUE(bench.waitFor([&] { return ready.load(); }));
  bench.error.Set(status);
  Fetched fetched;
  fetched.isPage = bench.reader.GetScanData(2, &fetched.canceled, &fetched.result) != nullptr;
  return fetched;
}

TEST(ReadThread, FetchingAPageGivesThePageOrTheOutcomeThatBelongsToIt) {
  const struct {
    const char* name;
    PageState state;
    State status;
    bool isPage;
    bool canceled;
    QSRSLT result;
  } rows[] = {
      {"finished", PageState::Finished, {}, true, false, 0},
      {"discarded", PageState::Discarded, {}, true, false, 0},
      {"blank", PageState::Blank, {}, true, false, 0},
      {"canceled before it came", PageState::None, {.cancelPageNo = 2, .canceled = true}, false, true, 0},
      {"canceled with the page in the array",
       PageState::Open,
       {.status = 0x01000000, .cancelPageNo = 2, .canceled = true},
       true,
       true,
       0},
      {"finished and canceled", PageState::Finished, {.cancelPageNo = 3, .canceled = true}, true, true, 0},
      {"a failure of the program", PageState::Open, {.status = 0x30401006}, false, false, 0x30401006},
      {"a failure of the program and the page finished",
       PageState::Finished,
       {.status = 0x30401006},
       false,
       false,
       0x30401006},
      {"a connection error and the page finished",
       PageState::Finished,
       {.status = 0x40401005},
       false,
       false,
       0x40401005},
      {"a device error on this page",
       PageState::Open,
       {.status = 0x1040100B, .errPageNo = 2, .deviceErr = 0x91},
       false,
       false,
       0x50000091},
      {"a device error on a later page",
       PageState::Finished,
       {.status = 0x1040100B, .errPageNo = 3, .deviceErr = 0x91},
       true,
       false,
       0},
      {"all pages ended before it", PageState::None, {.scanFinished = true}, false, false, 0x1010000D},
  };
  for (const auto& row : rows) {
    const Fetched fetched = fetch(row.state, row.status);
    EXPECT_EQ(fetched.isPage, row.isPage) << row.name;
    EXPECT_EQ(fetched.canceled, row.canceled) << row.name;
    EXPECT_EQ(fetched.result, row.result) << row.name << std::hex << " gave " << fetched.result;
  }
}

TEST(ReadThread, FetchingWithoutAScanOrWithANullArgumentGivesNothingAtOnce) {
  ReaderBench bench;
  bool canceled = false;
  unsigned result = 0;
  EXPECT_EQ(bench.reader.GetScanData(1, &canceled, &result), nullptr);
  ASSERT_EQ(bench.start(), 0u);
  EXPECT_EQ(bench.reader.GetScanData(1, nullptr, &result), nullptr);
  EXPECT_EQ(bench.reader.GetScanData(1, &canceled, nullptr), nullptr);
  EXPECT_EQ(result, 0u);
}

TEST(ReadThread, FetchingWaitsForThePage) {
  ReaderBench bench;
  std::atomic<CImageData*> page{nullptr};
  std::promise<void> finish;
  bench.reader.onStart = [&] {
    page = bench.reader.addPage();
    finish.get_future().wait();
    putInto(*page.load(), PageState::Finished);
    return 0u;
  };
  ASSERT_EQ(bench.start(), 0u);
  ASSERT_TRUE(bench.waitFor([&] { return page != nullptr; }));
  auto fetched = std::async(std::launch::async, [&] {
    bool canceled = false;
    unsigned result = 0;
    return bench.reader.GetScanData(1, &canceled, &result);
  });
  EXPECT_EQ(fetched.wait_for(150ms), std::future_status::timeout);
  finish.set_value();
  EXPECT_EQ(fetched.get(), page.load());
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
