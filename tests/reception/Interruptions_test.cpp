// Scans that do not run to their end: cancelled, failed, torn down or overtaken at every stage. Nothing waits for ever,
// no finished page is lost, and the next scan runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <ctime>

#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

// The processor clock, which the abort's time limit is measured with, can be moved on by the tests: the program is
// linked so that the core's calls of clock() come here.
extern "C" {
std::clock_t __real_clock();
std::clock_t __wrap_clock();
}
namespace {
std::atomic<std::clock_t> clockAdvance{0};
}
std::clock_t __wrap_clock() { return __real_clock() + clockAdvance; }

namespace reception_test {
namespace {

using fakes::MemoryDevice;
using namespace std::chrono_literals;

const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

ByteString page(unsigned pageNo) { return rawLines(drawPicture(6, 3, 24, pageNo), pageNo) + pageEnd(pageNo); }
ByteString pageBytes(unsigned pageNo) { return expectedBmp(drawPicture(6, 3, 24, pageNo)); }

// Whether the harness can run a scan of two pages from start to end.
void expectNextScanRuns(ScanHarness& harness, const std::string& after) {
  const Outcome outcome = harness.scan(kSettings, page(1) + page(2) + allPagesEnd());
  EXPECT_EQ(outcome.started, 0u) << after;
  EXPECT_EQ(outcome.last, ALLEND) << after;
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)})) << after;
}

long count(const std::vector<std::string>& names, const std::string& name) {
  return std::count(names.begin(), names.end(), name);
}

template <class Act>
std::chrono::milliseconds timeOf(Act act) {
  const auto start = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
}

// --- Cancelling -----------------------------------------------------------------------------------------------------

TEST(Cancel, AnAbortRightAfterTheStartIsNotLost) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::quietForEver()});
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(harness.start(kSettings), 0u);
    EXPECT_TRUE(harness.core.AbortScanning());
    const Outcome outcome = harness.collect();
    EXPECT_FALSE(outcome.isLate);
    EXPECT_EQ(outcome.last, XFERCANCELED);
    EXPECT_TRUE(outcome.deliveries.empty());
  }
  expectNextScanRuns(harness, "cancelled at once");
}

TEST(Cancel, InTheMiddleOfAPageKeepsTheFinishedOnes) {
  ScanHarness harness;
  harness.device.stream(
      {MemoryDevice::data(page(1) + page(2) + line(3, kColor, ByteString(18, 1))), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_TRUE(harness.core.AbortScanning());
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 1);
  EXPECT_EQ(harness.core.GetScanStatus(), READY);
  expectNextScanRuns(harness, "cancelled in the middle");
}

TEST(Cancel, BetweenTwoPagesKeepsTheFinishedOnes) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(page(1)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_EQ(harness.waitForStatusOtherThanReceiving(), XFERREADY);
  harness.core.AbortScanning();
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
}

TEST(Cancel, AfterTheEndIsHarmless) {
  ScanHarness harness;
  EXPECT_EQ(harness.scan(kSettings, page(1) + allPagesEnd()).last, ALLEND);
  harness.device.forgetCalls();
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_EQ(harness.core.GetScanStatus(), READY);
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 0);
  expectNextScanRuns(harness, "cancelled after the end");
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 0) << "an old wish does not reach a new scan";
}

TEST(Cancel, WithoutAScanSaysTrueAndSendsNothing) {
  ScanHarness harness;
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_TRUE(harness.device.frames().empty());
}

TEST(Cancel, TheEjectionIsTheMildestThatTheDeviceOffers) {
  const struct {
    std::uint8_t cancelSystem;  // bit 0 all, bit 1 one, bit 2 none
    const char* frame;
  } rows[] = {{7, "ABT\nEJCT=NO\n"},  {4, "ABT\nEJCT=NO\n"}, {3, "ABT\nEJCT=ONE\n"},
              {1, "ABT\nEJCT=ALL\n"}, {8, "ABT\n"},          {0, "ABT\n"}};
  for (const auto& row : rows) {
    ScanHarness harness;
    harness.device.answer("QDI", fakes::framed("QDI", fakes::tag(0x030F, {row.cancelSystem, 0}) + fakes::endTag()));
    harness.device.stream({MemoryDevice::quietForEver()});
    ASSERT_EQ(harness.start(kSettings), 0u);
    harness.core.AbortScanning();
    EXPECT_EQ(harness.collect().last, XFERCANCELED);
    EXPECT_EQ(harness.device.frames().back(), row.frame) << int{row.cancelSystem};
  }
}

TEST(Cancel, TheStopKeyOfTheDeviceCancelsToo) {
  ScanHarness harness;
  const Outcome outcome = harness.scan(kSettings, page(1) + line(2, kColor, ByteString(18, 1)) + stoppedByKey());
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 0);
  expectNextScanRuns(harness, "stop key");
}

TEST(Cancel, ReadingInsteadOfPollingGivesTheCancellation) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  harness.core.AbortScanning();
  EXPECT_EQ(harness.read().result, 0x01000000u);
  EXPECT_EQ(harness.read().result, 0x1010000Du) << "the scan is over";
}

TEST(Cancel, AnAbortThatTheDeviceDoesNotAnswerEndsAfterTenSecondsOfProcessorTime) {
  ScanHarness harness;
  harness.device.abortAnswer({});
  harness.device.stream(
      {MemoryDevice::data(page(1) + line(2, kColor, ByteString(18, 1))), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.AbortScanning();
  ASSERT_TRUE(harness.device.waitForMnemonic("ABT"));
  Outcome outcome = harness.collect(true, 250ms);
  EXPECT_TRUE(outcome.isLate) << "no answer yet, and the limit is not reached";
  clockAdvance += 10000001;
  EXPECT_EQ(harness.collect().last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
  EXPECT_FALSE(harness.device.IsOpen());
  expectNextScanRuns(harness, "unanswered abort");
}

TEST(Cancel, AnAbortCommandThatFailsIsNotSentAgain) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(page(1)), MemoryDevice::quietForEver()});
  harness.device.refuseAborts(true);
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.AbortScanning();
  ASSERT_TRUE(harness.device.waitForMnemonic("ABT"));
  clockAdvance += 10000001;  // no abort is pending, so that no limit runs
  Outcome outcome = harness.collect(true, 250ms);
  EXPECT_TRUE(outcome.isLate);
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 1);
  harness.device.refuseAborts(false);
  harness.core.AbortScanning();
  EXPECT_EQ(harness.collect().last, XFERCANCELED);
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 2);
}

// --- Failures -------------------------------------------------------------------------------------------------------

TEST(Failure, ADeviceErrorOnPageThreeKeepsPagesOneAndTwo) {
  const struct {
    std::uint8_t code;
    QSRSLT result;
  } rows[] = {{0x90, 0x50000001}, {0x91, 0x50000002}, {0x84, 0x50000007}, {0xB2, 0x5000000F}, {0x01, 0x500000FF}};
  ScanHarness harness;
  for (const auto& row : rows) {
    const Outcome outcome =
        harness.scan(kSettings, page(1) + page(2) + line(3, kColor, ByteString(18, 1)) + deviceError(row.code));
    EXPECT_FALSE(outcome.isLate);
    EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
    ASSERT_EQ(outcome.deliveries.size(), 3u);
    EXPECT_EQ(outcome.deliveries[2].pageNo, 3);
    EXPECT_EQ(outcome.result, row.result);
    EXPECT_EQ(outcome.last, XFERREADY);
    EXPECT_EQ(harness.read().result, 0x1010000Du);
  }
  expectNextScanRuns(harness, "device error");
}

TEST(Failure, ADeviceErrorThatNobodyAskedForYetWaitsForTheCallerToFetchThePages) {
  ScanHarness harness;
  harness.device.stream(page(1) + page(2) + deviceError(0x91));
  ASSERT_EQ(harness.start(kSettings), 0u);
  std::this_thread::sleep_for(50ms);
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
  EXPECT_EQ(outcome.result, 0x50000002u);
}

TEST(Failure, ADeviceErrorBeforeAnyPageIsTheFirstDelivery) {
  ScanHarness harness;
  const Outcome outcome = harness.scan(kSettings, deviceError(0x90));
  ASSERT_EQ(outcome.deliveries.size(), 1u);
  EXPECT_EQ(outcome.result, 0x50000001u);
  expectNextScanRuns(harness, "feeder empty");
}

TEST(Failure, AnUnknownRecordEndsTheScanAsAnOtherDeviceError) {
  for (const std::uint8_t code : ByteString{0x30, 0x70, 0x13, 0xFF}) {
    ScanHarness harness;
    const Outcome outcome = harness.scan(kSettings, page(1) + line(2, kColor, ByteString(18, 1)) + status(code));
    EXPECT_EQ(outcome.result, 0x500000FFu) << int{code};
    EXPECT_FALSE(outcome.isLate);
  }
}

TEST(Failure, ARecordWithoutAMeaningEndsTheScanWithItsOwnCode) {
  ScanHarness harness;
  const Outcome outcome = harness.scan(kSettings, page(1) + line(2, kColor, ByteString(18, 1)) + status(0x10));
  EXPECT_EQ(outcome.result, 0xD0u);
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(harness.scan(kSettings, status(0x10)).result, 0xD0u);
  expectNextScanRuns(harness, "0x10");
}

TEST(Failure, ATimeOutOfTheStreamIsAReceiveTimeOut) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(line(1, kColor, ByteString(18, 1))), MemoryDevice::timeOut()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_EQ(outcome.last, XFERREADY);
  EXPECT_EQ(outcome.result, 0x40401005u);
  expectNextScanRuns(harness, "time-out");
}

TEST(Failure, AFailedReadIsTheDevicesOwnCode) {
  ScanHarness harness;
  for (const auto& part : {MemoryDevice::failure(0x40500077), MemoryDevice::gone(0x40500055)}) {
    harness.device.stream({MemoryDevice::data(line(1, kColor, ByteString(18, 1))), part});
    const Outcome outcome = harness.scan(kSettings);
    EXPECT_EQ(outcome.last, XFERREADY);
    EXPECT_EQ(outcome.result, part.lastResult);
  }
  expectNextScanRuns(harness, "failed read");
}

TEST(Failure, AConnectionThatIsLostAfterTheLastPageDoesNotTouchAScanThatHasEnded) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(page(1) + allPagesEnd()), MemoryDevice::gone()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_EQ(outcome.last, ALLEND);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
}

TEST(Failure, ARecordThatFillsTheWholeBufferEndsTheScan) {
  ScanHarness harness;
  const ByteString head = pageStatus(0x01, 1) + ByteString{kColor, 0} + u32(0xA00000) + u32(0);
  std::vector<MemoryDevice::Part> parts{MemoryDevice::data(head)};
  for (int i = 0; i < 11; ++i) parts.push_back(MemoryDevice::data(ByteString(0x100000, 0x55)));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.result, 0x6040100Fu);
  expectNextScanRuns(harness, "full buffer");
}

TEST(Failure, ARecordThatJustFitsTheBufferIsTaken) {
  ScanHarness harness;
  const ByteString head = pageStatus(0x01, 1) + ByteString{kColor, 0} + u32(0xA00000 - 14) + u32(0);
  std::vector<MemoryDevice::Part> parts{MemoryDevice::data(head)};
  for (int i = 0; i < 10; ++i) parts.push_back(MemoryDevice::data(ByteString(0x100000 - (i == 9 ? 14 : 0), 0x55)));
  parts.push_back(MemoryDevice::data(pageEnd(1) + allPagesEnd()));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_EQ(outcome.last, ALLEND);
  ASSERT_EQ(outcome.deliveries.size(), 1u);
  EXPECT_EQ(outcome.deliveries[0].record.heightPixel, 1);
}

TEST(Failure, ATimerRestartRemovesTheUnfinishedPagesAndAnExtensionKeepsThem) {
  ScanHarness harness;
  const Outcome restarted =
      harness.scan(kSettings, page(1) + line(2, kColor, ByteString(18, 1)) + timer(0x50, 30) + page(2) + allPagesEnd());
  EXPECT_EQ(restarted.last, ALLEND);
  EXPECT_EQ(restarted.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
  const Outcome between = harness.scan(kSettings, page(1) + timer(0x51, 30) + page(2) + allPagesEnd());
  EXPECT_EQ(between.last, ALLEND) << "a timer record alone is no error";
  EXPECT_EQ(between.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
}

TEST(Failure, ATimerExtensionInTheMiddleOfAPageEndsThatPage) {
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(kSettings, page(1) + line(2, kColor, ByteString(18, 1)) + timer(0x51, 30) + page(3) + allPagesEnd());
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.last, ALLEND);
  ASSERT_EQ(outcome.deliveries.size(), 3u);
  EXPECT_EQ(outcome.deliveries[0].bytes, pageBytes(1));
  EXPECT_EQ(outcome.deliveries[1].record.data, nullptr);
  EXPECT_EQ(outcome.deliveries[2].bytes, pageBytes(3));
}

// --- Every device call in turn --------------------------------------------------------------------------------------

TEST(EveryCall, ThatFailsEndsTheScanInTimeAndTheNextScanRuns) {
  ScanHarness harness;
  const ByteString stream = page(1) + page(2) + allPagesEnd();
  ASSERT_EQ(harness.scan(kSettings, stream).last, ALLEND);
  const int calls = harness.device.calls();
  ASSERT_GE(calls, 10);  // Open, Q, QDI; Open, SSP, XSC; the stream
  for (const bool isGone : {false, true}) {
    for (int n = 1; n <= calls; ++n) {
      const std::string name = "call " + std::to_string(n) + (isGone ? " lost" : " failed");
      harness.core.UnInitialize();
      harness.connect();
      harness.device.forgetCalls();
      harness.device.failCall(n, isGone);
      const Outcome outcome = harness.scan(kSettings, stream);
      EXPECT_FALSE(outcome.isLate) << name;
      const QSRSLT told = outcome.started != 0 ? outcome.started : outcome.result;
      EXPECT_TRUE(told == MemoryDevice::kFailure || told == 0x40210012u) << name << std::hex << " gave " << told;
      harness.device.failCall(0);
      expectNextScanRuns(harness, name);
      if (HasFailure()) return;
    }
  }
}

TEST(EveryCall, ThatFindsSilenceEndsTheScanInTime) {
  for (const char* command : {"Q", "QDI", "SSP"}) {
    ScanHarness harness;
    harness.device.answer(command, {});
    harness.device.stream(allPagesEnd());
    const Outcome outcome = harness.scan(kSettings);
    EXPECT_EQ(outcome.started != 0 ? outcome.started : outcome.result, MemoryDevice::kTimeOut) << command;
  }
}

TEST(EveryCall, ThatIsRefusedByTheDeviceEndsTheScanWithItsByte) {
  ScanHarness harness;
  harness.device.answer("SSP", fakes::framed("SSP", {1}, 0x91));
  EXPECT_EQ(harness.scan(kSettings).result, 0x10240091u);
  harness.device.answer("SSP", fakes::framed("SSQ", {1}));
  EXPECT_EQ(harness.scan(kSettings).result, 0x10210043u);
  harness.device.answer("SSP", fakes::sspAnswer(300, 300));
  expectNextScanRuns(harness, "refused settings");
}

// --- Tearing down, and overtaking -----------------------------------------------------------------------------------

std::vector<ByteString> recordsOfTwoPages() {
  const Picture picture = drawPicture(6, 3, 24);
  return {pageSize(1, 6, 0),
          line(1, kColor, picture.lines[0]),
          line(1, kColor, picture.lines[1]),
          pageEnd(1),
          colorCheck(2, kColor),
          line(2, kColor, picture.lines[0]),
          ByteString{0x00, 0x01, 0x02},  // half a record
          {0x00, kColor},
          timer(0x50, 20)};
}

// Runs a scan that falls silent behind its first n records.
void startAndStall(ScanHarness& harness, std::size_t n) {
  const auto records = recordsOfTwoPages();
  std::vector<MemoryDevice::Part> parts;
  for (std::size_t i = 0; i < n; ++i) parts.push_back(MemoryDevice::data(records[i]));
  parts.push_back(MemoryDevice::quietForEver());
  harness.device.stream(parts);
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
}

TEST(TearDown, UnInitializeIsPromptAtEveryStage) {
  ScanHarness harness;
  for (std::size_t n = 0; n <= recordsOfTwoPages().size(); ++n) {
    startAndStall(harness, n);
    EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 2s) << n;
    EXPECT_FALSE(harness.device.IsOpen()) << n;
    EXPECT_EQ(harness.core.GetScanStatus(), READY);
    harness.connect();
    expectNextScanRuns(harness, "torn down after " + std::to_string(n) + " records");
  }
}

TEST(TearDown, DestroyingTheObjectIsPromptWhileAScanRuns) {
  for (std::size_t n = 0; n <= recordsOfTwoPages().size(); n += 3) {
    auto harness = std::make_unique<ScanHarness>();
    startAndStall(*harness, n);
    EXPECT_LT(timeOf([&] { harness.reset(); }), 2s) << n;
  }
}

TEST(TearDown, ANewStartOvertakesTheRunningScanAtEveryStage) {
  ScanHarness harness;
  for (std::size_t n = 0; n <= recordsOfTwoPages().size(); ++n) {
    startAndStall(harness, n);
    EXPECT_LT(timeOf([&] { expectNextScanRuns(harness, "overtaken after " + std::to_string(n)); }), 3s) << n;
  }
}

TEST(TearDown, ANewStartOvertakesAScanThatWaitsForItsCallerToFreePages) {
  auto settings = kSettings;
  settings.resolution = {600, 600};
  ByteString stream;
  for (unsigned n = 1; n <= 9; ++n) stream = stream + page(n);
  for (int round = 0; round < 3; ++round) {
    ScanHarness harness;
    harness.device.answer("SSP", fakes::sspAnswer(600, 600));
    harness.device.stream(stream + allPagesEnd());
    ASSERT_EQ(harness.start(settings), 0u);
    for (int n = 1; n <= 5; ++n) EXPECT_EQ(harness.read().result, 0u);
    std::this_thread::sleep_for(120ms);
    EXPECT_EQ(harness.core.GetScanStatus(), RECEIVING) << "five pages are held and the sixth has begun";
    if (round == 0) {
      EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 2s);
    } else if (round == 1) {
      harness.device.answer("SSP", fakes::sspAnswer(300, 300));
      EXPECT_LT(timeOf([&] { expectNextScanRuns(harness, "overtaken while it waits"); }), 3s);
    }  // round 2: destroyed while it waits
  }
}

TEST(TearDown, AnAbortWhileTheScanWaitsForFreePagesGoesOutAfterTheWait) {
  auto settings = kSettings;
  settings.resolution = {600, 600};
  ByteString stream;
  for (unsigned n = 1; n <= 9; ++n) stream = stream + page(n);
  ScanHarness harness;
  harness.device.answer("SSP", fakes::sspAnswer(600, 600));
  harness.device.stream({MemoryDevice::data(stream), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(settings), 0u);
  for (int n = 1; n <= 5; ++n) EXPECT_EQ(harness.read().result, 0u);
  std::this_thread::sleep_for(120ms);
  harness.core.AbortScanning();
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 0);
  for (int n = 1; n <= 5; ++n) harness.core.FreeImageData(n);
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.deliveries.size(), 4u);
  EXPECT_EQ(count(harness.device.mnemonics(), "ABT"), 1);
}

TEST(TearDown, PagesStayReadableAfterTheEndUntilTheNextStart) {
  ScanHarness harness;
  harness.device.stream(page(1) + page(2) + allPagesEnd());
  ASSERT_EQ(harness.start(kSettings), 0u);
  const Outcome outcome = harness.collect(false);
  ASSERT_EQ(outcome.last, ALLEND);
  for (const Delivery& delivery : outcome.deliveries) {
    EXPECT_EQ(ByteString(delivery.record.data, delivery.record.data + delivery.record.dataSize), delivery.bytes);
    harness.core.FreeImageData(delivery.pageNo);
    harness.core.FreeImageData(delivery.pageNo);
  }
  harness.core.FreeImageData(0);
  harness.core.FreeImageData(-1);
  harness.core.FreeImageData(99);
}

TEST(TearDown, ADeviceThatBlocksInSilenceIsWaitedForAndNoLonger) {
  ScanHarness harness;
  harness.device.blockInSilence(300);
  harness.device.stream({MemoryDevice::data(page(1)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 3s);
}

}  // namespace
}  // namespace reception_test
