// Scans that are cancelled: no finished page is lost, nothing waits for ever, and the next scan runs.
#include <gtest/gtest.h>

#include "tests/reception/interrupted_scan.h"

namespace reception_test {
namespace {

using namespace std::chrono_literals;

class Cancel : public BothGenerations {
 protected:
  const Dialect& dialect() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Generations, Cancel, testing::ValuesIn(kGenerations), nameOfGeneration);

TEST_P(Cancel, AnAbortRightAfterTheStartIsNotLost) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::quietForEver()});
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(harness.start(kSettings), 0u);
    EXPECT_TRUE(harness.core.AbortScanning());
    const Outcome outcome = harness.collect();
    EXPECT_FALSE(outcome.isLate);
    EXPECT_EQ(outcome.last, XFERCANCELED);
    EXPECT_TRUE(outcome.deliveries.empty());
  }
  expectNextScanRuns(harness, dialect(), "cancelled at once");
}

TEST_P(Cancel, InTheMiddleOfAPageKeepsTheFinishedOnes) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(page(dialect(), 1) + page(dialect(), 2) + startOf(dialect(), 3)),
                         MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_TRUE(harness.core.AbortScanning());
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), twoPages());
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 1);
  EXPECT_EQ(harness.core.GetScanStatus(), READY);
  expectNextScanRuns(harness, dialect(), "cancelled in the middle");
}

TEST_P(Cancel, BetweenTwoPagesKeepsTheFinishedOnes) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(page(dialect(), 1)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_EQ(harness.waitForStatusOtherThanReceiving(), XFERREADY);
  harness.core.AbortScanning();
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
}

TEST_P(Cancel, AfterTheEndIsHarmless) {
  ScanHarness harness(dialect().generation());
  EXPECT_EQ(harness.scan(kSettings, page(dialect(), 1) + dialect().allPagesEnd()).last, ALLEND);
  harness.device.forgetCalls();
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_EQ(harness.core.GetScanStatus(), READY);
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 0);
  expectNextScanRuns(harness, dialect(), "cancelled after the end");
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 0) << "an old wish does not reach a new scan";
}

TEST_P(Cancel, WithoutAScanSaysTrueAndSendsNothing) {
  ScanHarness harness(dialect().generation());
  EXPECT_TRUE(harness.core.AbortScanning());
  EXPECT_TRUE(harness.device.frames().empty());
}

TEST(CancelOfTheSecond, TheEjectionIsTheMildestThatTheDeviceOffers) {
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

TEST_P(Cancel, TheStopKeyOfTheDeviceCancelsToo) {
  ScanHarness harness(dialect().generation());
  const Outcome outcome =
      harness.scan(kSettings, page(dialect(), 1) + startOf(dialect(), 2) + dialect().stoppedByKey());
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 0);
  expectNextScanRuns(harness, dialect(), "stop key");
}

TEST_P(Cancel, ReadingInsteadOfPollingGivesTheCancellation) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  harness.core.AbortScanning();
  EXPECT_EQ(harness.read().result, 0x01000000u);
  EXPECT_EQ(harness.read().result, 0x1010000Du) << "the scan is over";
}

// Whoever reads without polling gets the page in hand without its data, and the cancellation at the next poll.
TEST_P(Cancel, ThePageInHandIsHandedOutEmptyToACallerWhoDoesNotPoll) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(page(dialect(), 1) + startOf(dialect(), 2)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  EXPECT_EQ(harness.read().bytes, pageBytes(1));
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.AbortScanning();
  const Delivery inHand = harness.read();
  EXPECT_EQ(inHand.result, 0u);
  EXPECT_EQ(inHand.pageNo, 2);
  EXPECT_EQ(inHand.record.data, nullptr);
  EXPECT_EQ(harness.core.GetScanStatus(), XFERCANCELED);
  expectNextScanRuns(harness, dialect(), "read while it is cancelled");
}

TEST_P(Cancel, AnAbortThatTheDeviceDoesNotAnswerEndsAfterTenSecondsOfProcessorTime) {
  ScanHarness harness(dialect().generation());
  harness.device.abortAnswer({});
  harness.device.stream({MemoryDevice::data(page(dialect(), 1) + startOf(dialect(), 2)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.AbortScanning();
  ASSERT_TRUE(harness.device.waitForMnemonic(dialect().abortMnemonic()));
  Outcome outcome = harness.collect(true, 250ms);
  EXPECT_TRUE(outcome.isLate) << "no answer yet, and the limit is not reached";
  clockAdvance += kAbortLimitPassed;
  EXPECT_EQ(harness.collect().last, XFERCANCELED);
  EXPECT_EQ(outcome.pages(), std::vector<ByteString>{pageBytes(1)});
  EXPECT_FALSE(harness.device.IsOpen());
  expectNextScanRuns(harness, dialect(), "unanswered abort");
}

TEST_P(Cancel, AnAbortCommandThatFailsIsNotSentAgain) {
  ScanHarness harness(dialect().generation());
  harness.device.stream({MemoryDevice::data(page(dialect(), 1)), MemoryDevice::quietForEver()});
  harness.device.refuseAborts(true);
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  harness.core.AbortScanning();
  ASSERT_TRUE(harness.device.waitForMnemonic(dialect().abortMnemonic()));
  clockAdvance += kAbortLimitPassed;  // no abort is pending, so that no limit runs
  Outcome outcome = harness.collect(true, 250ms);
  EXPECT_TRUE(outcome.isLate);
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 1);
  harness.device.refuseAborts(false);
  harness.core.AbortScanning();
  EXPECT_EQ(harness.collect().last, XFERCANCELED);
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 2);
}

}  // namespace
}  // namespace reception_test
