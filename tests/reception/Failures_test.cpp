// Scans that fail, also at every single device call: the caller learns it in time, and the next scan runs.
#include <gtest/gtest.h>

#include "tests/reception/interrupted_scan.h"

namespace reception_test {
namespace {

using namespace std::chrono_literals;

class Failure : public BothGenerations {
 protected:
  const Dialect& dialect() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Generations, Failure, testing::ValuesIn(kGenerations), nameOfGeneration);

TEST_P(Failure, ADeviceErrorOnPageThreeKeepsPagesOneAndTwo) {
  struct Row {
    std::uint8_t code;
    QSRSLT result;
  };
  const Row first[] = {
      {0xC2, 0x50000001}, {0xC3, 0x50000002}, {0xEF, 0x50000015}, {0x87, 0x500000FF}, {0x81, 0x500000FF}};
  const Row second[] = {
      {0x90, 0x50000001}, {0x91, 0x50000002}, {0x84, 0x50000007}, {0xB2, 0x5000000F}, {0x01, 0x500000FF}};
  ScanHarness harness(dialect().generation());
  for (const Row& row : dialect().isFirst() ? first : second) {
    const Outcome outcome = harness.scan(
        kSettings, page(dialect(), 1) + page(dialect(), 2) + startOf(dialect(), 3) + dialect().deviceError(row.code));
    EXPECT_FALSE(outcome.isLate);
    EXPECT_EQ(outcome.pages(), twoPages());
    ASSERT_EQ(outcome.deliveries.size(), 3u);
    EXPECT_EQ(outcome.deliveries[2].pageNo, 3);
    EXPECT_EQ(outcome.result, row.result);
    EXPECT_EQ(outcome.last, XFERREADY);
    EXPECT_EQ(harness.read().result, 0x1010000Du);
  }
  expectNextScanRuns(harness, dialect(), "device error");
}

TEST_P(Failure, ADeviceErrorThatNobodyAskedForYetWaitsForTheCallerToFetchThePages) {
  ScanHarness harness(dialect().generation());
  harness.device.stream(page(dialect(), 1) + page(dialect(), 2) + dialect().jam());
  ASSERT_EQ(harness.start(kSettings), 0u);
  std::this_thread::sleep_for(50ms);
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.pages(), twoPages());
  EXPECT_EQ(outcome.result, 0x50000002u);
}

TEST_P(Failure, ADeviceErrorBeforeAnyPageIsTheFirstDelivery) {
  ScanHarness harness(dialect().generation());
  const Outcome outcome = harness.scan(kSettings, dialect().feederEmpty());
  ASSERT_EQ(outcome.deliveries.size(), 1u);
  EXPECT_EQ(outcome.result, 0x50000001u);
  expectNextScanRuns(harness, dialect(), "feeder empty");
}

TEST(FailureOfTheSecond, AnUnknownRecordEndsTheScanAsAnOtherDeviceError) {
  for (const std::uint8_t code : ByteString{0x30, 0x70, 0x13, 0xFF}) {
    ScanHarness harness;
    const Outcome outcome =
        harness.scan(kSettings, page(kSecondGeneration, 1) + startOf(kSecondGeneration, 2) + status(code));
    EXPECT_EQ(outcome.result, 0x500000FFu) << int{code};
    EXPECT_FALSE(outcome.isLate);
  }
}

TEST(FailureOfTheSecond, ARecordWithoutAMeaningEndsTheScanWithItsOwnCode) {
  ScanHarness harness;
  const Outcome outcome =
      harness.scan(kSettings, page(kSecondGeneration, 1) + startOf(kSecondGeneration, 2) + status(0x10));
  EXPECT_EQ(outcome.result, 0xD0u);
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(harness.scan(kSettings, status(0x10)).result, 0xD0u);
  expectNextScanRuns(harness, kSecondGeneration, "0x10");
}

TEST_P(Failure, ATimeOutOfTheStreamIsAReceiveTimeOut) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(startOf(dialect(), 1)), MemoryDevice::timeOut()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_EQ(outcome.last, XFERREADY);
  EXPECT_EQ(outcome.result, 0x40401005u);
  expectNextScanRuns(harness, dialect(), "time-out");
}

TEST_P(Failure, AFailedReadIsTheDevicesOwnCode) {
  ScanHarness harness(dialect().generation());
  for (const auto& part : {MemoryDevice::failure(0x40500077), MemoryDevice::gone(0x40500055)}) {
    harness.device.stream({MemoryDevice::data(startOf(dialect(), 1)), part});
    const Outcome outcome = harness.scan(kSettings);
    EXPECT_EQ(outcome.last, XFERREADY);
    EXPECT_EQ(outcome.result, part.lastResult);
  }
  expectNextScanRuns(harness, dialect(), "failed read");
}

TEST_P(Failure, AConnectionThatIsLostAfterTheLastPageDoesNotTouchAScanThatHasEnded) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(page(dialect(), 1) + dialect().allPagesEnd()), MemoryDevice::gone()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_EQ(outcome.last, ALLEND);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
}

TEST(FailureOfTheSecond, ARecordThatFillsTheWholeBufferEndsTheScan) {
  ScanHarness harness;
  const ByteString head = pageStatus(0x01, 1) + ByteString{kColor, 0} + u32(0xA00000) + u32(0);
  std::vector<MemoryDevice::Part> parts{MemoryDevice::data(head)};
  for (int i = 0; i < 11; ++i) parts.push_back(MemoryDevice::data(ByteString(0x100000, 0x55)));
  harness.device.stream(parts);
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.result, 0x6040100Fu);
  expectNextScanRuns(harness, kSecondGeneration, "full buffer");
}

TEST(FailureOfTheSecond, ARecordThatJustFitsTheBufferIsTaken) {
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

TEST(FailureOfTheSecond, ATimerRestartRemovesTheUnfinishedPagesAndAnExtensionKeepsThem) {
  ScanHarness harness;
  const Outcome restarted = harness.scan(kSettings, page(kSecondGeneration, 1) + startOf(kSecondGeneration, 2) +
                                                        timer(0x50, 30) + page(kSecondGeneration, 2) + allPagesEnd());
  EXPECT_EQ(restarted.last, ALLEND);
  EXPECT_EQ(restarted.pages(), twoPages());
  const Outcome between = harness.scan(
      kSettings, page(kSecondGeneration, 1) + timer(0x51, 30) + page(kSecondGeneration, 2) + allPagesEnd());
  EXPECT_EQ(between.last, ALLEND) << "a timer record alone is no error";
  EXPECT_EQ(between.pages(), twoPages());
}

TEST(FailureOfTheSecond, ATimerExtensionInTheMiddleOfAPageEndsThatPage) {
  ScanHarness harness;
  const Outcome outcome = harness.scan(kSettings, page(kSecondGeneration, 1) + startOf(kSecondGeneration, 2) +
                                                      timer(0x51, 30) + page(kSecondGeneration, 3) + allPagesEnd());
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.last, ALLEND);
  ASSERT_EQ(outcome.deliveries.size(), 3u);
  EXPECT_EQ(outcome.deliveries[0].bytes, pageBytes(1));
  EXPECT_EQ(outcome.deliveries[1].record.data, nullptr);
  EXPECT_EQ(outcome.deliveries[2].bytes, pageBytes(3));
}

// --- Every device call in turn --------------------------------------------------------------------------------------

class EveryCall : public Failure {
 protected:
  // Two pages, each of whose records comes in a read of its own.
  std::vector<MemoryDevice::Part> stream() const {
    std::vector<MemoryDevice::Part> parts;
    for (const unsigned n : {1u, 2u}) {
      for (const ByteString& line : drawPicture(6, 3, 24, n).lines) {
        parts.push_back(MemoryDevice::data(dialect().rawLine(24, n, line)));
      }
      parts.push_back(MemoryDevice::data(dialect().pageEnd(n)));
    }
    parts.push_back(MemoryDevice::data(dialect().allPagesEnd()));
    return parts;
  }
};
INSTANTIATE_TEST_SUITE_P(Generations, EveryCall, testing::ValuesIn(kGenerations), nameOfGeneration);

TEST_P(EveryCall, ThatFailsEndsTheScanInTimeAndTheNextScanRuns) {
  ScanHarness harness(dialect().generation());
  harness.device.stream(stream());
  expectEnded(harness.scan(kSettings), 2, "clean");
  const int calls = harness.device.calls();
  ASSERT_GE(calls, 15);  // Open, the capabilities, the settings, the start, nine parts of the stream
  for (const bool isGone : {false, true}) {
    for (int n = 1; n <= calls; ++n) {
      const std::string name = "call " + std::to_string(n) + (isGone ? " lost" : " failed");
      harness.core.UnInitialize();
      harness.connect();
      harness.device.forgetCalls();
      harness.device.failCall(n, isGone);
      harness.device.stream(stream());
      const Outcome outcome = harness.scan(kSettings);
      EXPECT_FALSE(outcome.isLate) << name;
      const QSRSLT told = outcome.started != 0 ? outcome.started : outcome.result;
      EXPECT_TRUE(told == MemoryDevice::kFailure || told == 0x40210012u) << name << std::hex << " gave " << told;
      const std::vector<ByteString> pages = outcome.pages();
      const std::vector<ByteString> whole = twoPages();
      EXPECT_TRUE(pages.size() <= 2 && std::equal(pages.begin(), pages.end(), whole.begin())) << name;
      // The pages whose ends came before the failing read, which is one of the last nine.
      EXPECT_EQ(pages.size(), n > calls - 1 ? 2u : n > calls - 5 ? 1u : 0u) << name;
      harness.device.failCall(0);
      expectNextScanRuns(harness, dialect(), name);
      if (HasFailure()) return;
    }
  }
}

TEST_P(EveryCall, ThatFindsSilenceEndsTheScanInTime) {
  for (const std::string& command : {std::string("Q"), std::string("QDI"), dialect().settingsMnemonic()}) {
    if (dialect().isFirst() && command == "QDI") continue;
    ScanHarness harness(dialect().generation());
    harness.device.answer(command, {});
    harness.device.stream(dialect().allPagesEnd());
    const Outcome outcome = harness.scan(kSettings);
    EXPECT_EQ(outcome.started != 0 ? outcome.started : outcome.result, MemoryDevice::kTimeOut) << command;
  }
}

TEST_P(EveryCall, ThatIsRefusedByTheDeviceEndsTheScanWithItsByte) {
  ScanHarness harness(dialect().generation());
  const ByteString refusal = dialect().isFirst() ? ByteString{0x91, 1, 0, 0} : fakes::framed("SSP", {1}, 0x91);
  harness.device.answer(dialect().settingsMnemonic(), refusal);
  EXPECT_EQ(harness.scan(kSettings).result, 0x10240091u);
  if (!dialect().isFirst()) {
    harness.device.answer("SSP", fakes::framed("SSQ", {1}));
    EXPECT_EQ(harness.scan(kSettings).result, 0x10210043u);
  }
  harness.device.answer(dialect().settingsMnemonic(), dialect().settingsAnswer(300, 300));
  expectNextScanRuns(harness, dialect(), "refused settings");
}

}  // namespace
}  // namespace reception_test
