// The two questions of the caller's thread: the state of page n, and page n itself.
#include <gtest/gtest.h>

#include <chrono>
#include <future>

#include "tests/reception/page_states.h"
#include "tests/reception/test_reader.h"

namespace reception_test {
namespace {

using namespace std::chrono_literals;

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

}  // namespace
}  // namespace reception_test
