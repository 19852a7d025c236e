#include "apps/qsscan/page_fetcher.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "fake_scan_core.h"
#include "made_profile.h"

namespace {

using namespace std::chrono_literals;
using namespace qsscan_test;
using qsscan::FetchOutcome;
using qsscan::Page;
using qsscan::PageFetcher;
using qsscan::PageQueue;

using End = FetchOutcome::End;

struct Fetched {
  FetchOutcome outcome;
  std::vector<Page> pages;
};

// Runs the fetcher on its thread and takes the pages here; onPage sees each one.
Fetched run(FakeScanCore& core, int pageLimit = 0, const std::function<void(PageFetcher&, const Page&)>& onPage = {},
            const std::function<void(PageFetcher&)>& atStart = {}, bool wantProfile = false) {
  PageQueue queue(2, 1 << 20);
  QS_SCANNER_PARAMETERS settings{};
  settings.resolution = {300, 300};
  settings.wantColorProfile = wantProfile;
  PageFetcher fetcher(core, settings, queue, pageLimit);
  std::thread thread([&] { fetcher.run(); });
  if (atStart) atStart(fetcher);
  Fetched result;
  Page page;
  for (PageQueue::Pop got; (got = queue.pop(page, 10s)) != PageQueue::Pop::kClosed;) {
    if (got != PageQueue::Pop::kPage) {
      ADD_FAILURE() << "the fetcher hangs";
      std::abort();
    }
    if (onPage) onPage(fetcher, page);
    result.pages.push_back(page);
  }
  thread.join();
  result.outcome = fetcher.outcome();
  EXPECT_EQ(core.misuse(), "");
  return result;
}

FakeScript threePages() {
  FakeScript script;
  script.pages = {{8, 4, 24, 300}, {9, 5, 8, 200}, {10, 6, 1, 600}};
  return script;
}

TEST(PageFetcher, TheProfileIsAskedForOnceAndGoesWithEveryPage) {
  FakeScript script = threePages();
  script.profile = colorProfile();
  FakeScanCore core(script);
  const Fetched result = run(core, 0, {}, {}, true);
  ASSERT_EQ(result.pages.size(), 3u);
  for (const Page& page : result.pages) {
    ASSERT_NE(page.profile, nullptr);
    EXPECT_EQ(page.profile->bytes, script.profile);
  }
  EXPECT_NE(result.pages[0].fittingProfile(), nullptr) << "a colour page";
  EXPECT_EQ(result.pages[1].fittingProfile(), nullptr) << "a grey page";
  EXPECT_EQ(core.profileQuestions(), 1);
  EXPECT_FALSE(result.outcome.profileIsMissing);
}

TEST(PageFetcher, AProfileThatIsNoneIsToldAsMissing) {
  for (const std::size_t bytes : {0, 500}) {
    FakeScript script = threePages();
    script.profile.assign(bytes, 7);
    FakeScanCore core(script);
    const Fetched result = run(core, 0, {}, {}, true);
    EXPECT_TRUE(result.outcome.profileIsMissing);
    ASSERT_EQ(result.pages.size(), 3u);
    EXPECT_EQ(result.pages[0].profile, nullptr);
  }
}

TEST(PageFetcher, WithoutTheWishNoProfileIsAskedFor) {
  FakeScript script = threePages();
  script.profile = colorProfile();
  FakeScanCore core(script);
  EXPECT_EQ(run(core).pages.at(0).profile, nullptr);
  EXPECT_EQ(core.profileQuestions(), 0);
}

TEST(PageFetcher, TakesEveryPageCopiesItAndFreesIt) {
  FakeScanCore core(threePages());
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFinished);
  EXPECT_EQ(result.outcome.pages, 3);
  ASSERT_EQ(result.pages.size(), 3u);
  EXPECT_EQ(core.freed(), 3);
  EXPECT_EQ(core.aborts(), 0);
  EXPECT_EQ(result.pages[1].number, 2);
  EXPECT_EQ(result.pages[1].widthPx, 9);
  EXPECT_EQ(result.pages[2].dpiX, 600);
  for (const Page& page : result.pages) {
    for (int y = 0; y < page.heightPx; ++y) {
      for (std::size_t i = 0; i < page.lineBytes; ++i) ASSERT_EQ(page.line(y)[i], fakeByte(y, i));
    }
  }
}

TEST(PageFetcher, AScanOfNoPagesEndsWell) {
  FakeScanCore core(FakeScript{});
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFinished);
  EXPECT_EQ(result.outcome.pages, 0);
}

TEST(PageFetcher, AFailedStartEndsTheScanWithItsCode) {
  FakeScript script = threePages();
  script.startResult = QSRSLT_NOT_PREPARED;
  FakeScanCore core(script);
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFailed);
  EXPECT_EQ(result.outcome.result, QSRSLT_NOT_PREPARED);
}

TEST(PageFetcher, AFailureKeepsThePagesBeforeIt) {
  FakeScript script = threePages();
  script.after = AfterPages::kFailure;
  script.failure = 0x50000002;
  FakeScanCore core(script);
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFailed);
  EXPECT_EQ(result.outcome.result, 0x50000002u);
  EXPECT_EQ(result.pages.size(), 3u);
  EXPECT_EQ(core.freed(), 3);
}

TEST(PageFetcher, TheStopKeyIsACancellation) {
  for (const AfterPages after : {AfterPages::kCanceled, AfterPages::kFailure}) {
    FakeScript script = threePages();
    script.after = after;
    script.failure = QSRSLT_CANCELED;
    FakeScanCore core(script);
    const Fetched result = run(core);
    EXPECT_EQ(result.outcome.end, End::kCancelled);
    EXPECT_EQ(result.outcome.result, QSRSLT_CANCELED);
    EXPECT_EQ(result.pages.size(), 3u);
  }
}

TEST(PageFetcher, AnEndThatComesWhileAPageIsAskedForIsNoFailure) {
  FakeScript script = threePages();
  script.after = AfterPages::kEndsWhileAsked;
  FakeScanCore core(script);
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFinished);
  EXPECT_EQ(result.outcome.pages, 3);
}

TEST(PageFetcher, BlankPagesAreCountedFreedAndLeftOut) {
  FakeScript script = threePages();
  script.pages[1].blank = true;
  FakeScanCore core(script);
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.pages, 2);
  EXPECT_EQ(result.outcome.blankPages, 1);
  ASSERT_EQ(result.pages.size(), 2u);
  EXPECT_EQ(result.pages[1].number, 3);
  EXPECT_EQ(core.freed(), 3);
}

TEST(PageFetcher, APageThatCannotBeEndsTheScan) {
  FakeScanCore core(threePages());
  core.spoilPages([](tagQS_SCAN_IMAGEDATA& image) { image.heightPixel = 1 << 30; });
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kBadPage);
  EXPECT_EQ(core.freed(), 1);
}

TEST(PageFetcher, AThreadThatIsGoneWithoutAWordIsAFailure) {
  FakeScript script = threePages();
  script.after = AfterPages::kThreadGone;
  FakeScanCore core(script);
  const Fetched result = run(core);
  EXPECT_EQ(result.outcome.end, End::kFailed);
  EXPECT_EQ(result.outcome.result, QSRSLT_WRONG_STATE);
}

TEST(PageFetcher, AbortIsAskedForAtEachPollWhilePagesStillComeAndAreKept) {
  FakeScript script;
  script.pages.assign(100, FakePage{8, 4, 8});
  script.pollsPerPage = 3;
  script.pagesAfterAbort = 2;
  FakeScanCore core(script);
  const Fetched result = run(core, 0, [](PageFetcher& fetcher, const Page& page) {
    if (page.number == 3) fetcher.requestAbort();
  });
  EXPECT_EQ(result.outcome.end, End::kCancelled);
  EXPECT_GE(result.pages.size(), 5u);
  EXPECT_LE(result.pages.size(), 9u) << "the queue may hold a few when the abort is asked for";
  EXPECT_EQ(static_cast<int>(result.pages.size()), result.outcome.pages);
  EXPECT_EQ(core.freed(), result.outcome.pages);
  EXPECT_GE(core.aborts(), 5) << "at each poll";
}

TEST(PageFetcher, ADeviceThatIgnoresTheAbortIsGivenUp) {
  FakeScript script = threePages();
  script.after = AfterPages::kSilence;
  script.deafToAbort = true;
  FakeScanCore core(script);
  const auto start = std::chrono::steady_clock::now();
  const Fetched result = run(core, 0, {}, [](PageFetcher& fetcher) { fetcher.requestAbort(); });
  const auto spent = std::chrono::steady_clock::now() - start;
  EXPECT_EQ(result.outcome.end, End::kCancelled);
  EXPECT_TRUE(result.outcome.isGivenUp);
  EXPECT_EQ(result.pages.size(), 3u);
  EXPECT_GE(spent, PageFetcher::kAbortPatience);
  EXPECT_LT(spent, PageFetcher::kAbortPatience + 5s);
}

TEST(PageFetcher, DiscardDropsThePagesThatStillCome) {
  FakeScript script;
  script.pages.assign(100, FakePage{8, 4, 8});
  script.deafToAbort = true;  // all of them still come
  FakeScanCore core(script);
  const Fetched result = run(core, 0, [](PageFetcher& fetcher, const Page&) { fetcher.requestDiscard(); });
  EXPECT_LE(result.pages.size(), 4u);
  EXPECT_EQ(core.freed(), 100);
  EXPECT_GE(core.aborts(), 1);
}

TEST(PageFetcher, AFullQueueStillLetsTheAbortOut) {
  FakeScript script;
  script.pages.assign(100, FakePage{8, 4, 8});
  FakeScanCore core(script);
  bool first = true;
  const Fetched result = run(core, 0, [&](PageFetcher& fetcher, const Page&) {
    if (!std::exchange(first, false)) return;
    std::this_thread::sleep_for(200ms);  // the queue fills and the fetcher waits
    fetcher.requestAbort();
    const auto until = std::chrono::steady_clock::now() + 5s;
    while (core.aborts() == 0 && std::chrono::steady_clock::now() < until) std::this_thread::sleep_for(1ms);
    EXPECT_GT(core.aborts(), 0) << "no abort went out while the queue was full";
  });
  EXPECT_EQ(result.outcome.end, End::kCancelled);
  EXPECT_LE(result.pages.size(), 5u);
}

TEST(PageFetcher, APageLimitEndsTheScanAndDropsWhatComesTooMuch) {
  FakeScript script;
  script.pages.assign(10, FakePage{8, 4, 8});
  script.pagesAfterAbort = 1;
  FakeScanCore core(script);
  const Fetched result = run(core, 4);
  EXPECT_EQ(result.pages.size(), 4u);
  EXPECT_EQ(result.outcome.pages, 4);
  EXPECT_EQ(core.freed(), 5);
  EXPECT_GE(core.aborts(), 1);
}

}  // namespace
