// Scans that are torn down or overtaken at every stage.
#include <gtest/gtest.h>

#include "tests/reception/interrupted_scan.h"

namespace reception_test {
namespace {

using namespace std::chrono_literals;

class TearDown : public BothGenerations {
 protected:
  const Dialect& dialect() const { return GetParam(); }
};
INSTANTIATE_TEST_SUITE_P(Generations, TearDown, testing::ValuesIn(kGenerations), nameOfGeneration);

// The second of the two breaks off; a record in pieces and something else of the generation follow.
std::vector<ByteString> recordsOfTwoPages(const Dialect& dialect) {
  const Picture picture = drawPicture(6, 3, 24);
  std::vector<ByteString> records{dialect.rawLine(24, 1, picture.lines[0]), dialect.rawLine(24, 1, picture.lines[1]),
                                  dialect.pageEnd(1), dialect.packedLine(24, 2, picture.lines[0])};
  const ByteString whole = dialect.rawLine(24, 2, picture.lines[1]);
  records.emplace_back(whole.begin(), whole.begin() + 3);
  records.emplace_back(whole.begin() + 3, whole.end());
  if (dialect.isFirst()) {
    records.push_back(dialect.rawLine(24, 4, picture.lines[2]));
    records.push_back(v1::whiteLine(4));
  } else {
    records.push_back(pageSize(2, 6, 0));
    records.push_back(timer(0x50, 20));
  }
  return records;
}

// Runs a scan that falls silent behind its first n records.
void startAndStall(ScanHarness& harness, const Dialect& dialect, std::size_t n) {
  const auto records = recordsOfTwoPages(dialect);
  std::vector<MemoryDevice::Part> parts;
  for (std::size_t i = 0; i < n; ++i) parts.push_back(MemoryDevice::data(records[i]));
  parts.push_back(MemoryDevice::quietForEver());
  harness.device.stream(parts);
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
}

TEST_P(TearDown, UnInitializeIsPromptAtEveryStage) {
  ScanHarness harness(dialect().generation());
  for (std::size_t n = 0; n <= recordsOfTwoPages(dialect()).size(); ++n) {
    startAndStall(harness, dialect(), n);
    EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 2s) << n;
    EXPECT_FALSE(harness.device.IsOpen()) << n;
    EXPECT_EQ(harness.core.GetScanStatus(), READY);
    harness.connect();
    expectNextScanRuns(harness, dialect(), "torn down after " + std::to_string(n) + " records");
  }
}

TEST_P(TearDown, DestroyingTheObjectIsPromptWhileAScanRuns) {
  for (std::size_t n = 0; n <= recordsOfTwoPages(dialect()).size(); n += 3) {
    auto harness = std::make_unique<ScanHarness>(dialect().generation());
    startAndStall(*harness, dialect(), n);
    EXPECT_LT(timeOf([&] { harness.reset(); }), 2s) << n;
  }
}

TEST_P(TearDown, ANewStartOvertakesTheRunningScanAtEveryStage) {
  ScanHarness harness(dialect().generation());
  for (std::size_t n = 0; n <= recordsOfTwoPages(dialect()).size(); ++n) {
    startAndStall(harness, dialect(), n);
    EXPECT_LT(timeOf([&] { expectNextScanRuns(harness, dialect(), "overtaken after " + std::to_string(n)); }), 3s) << n;
  }
}

TEST_P(TearDown, ANewStartOvertakesAScanThatWaitsForItsCallerToFreePages) {
  auto settings = kSettings;
  settings.resolution = {600, 600};
  ByteString stream;
  for (unsigned n = 1; n <= 9; ++n) stream = stream + page(dialect(), n);
  for (int round = 0; round < 3; ++round) {
    ScanHarness harness(dialect().generation());
    harness.device.answer(dialect().settingsMnemonic(), dialect().settingsAnswer(600, 600));
    harness.device.stream(stream + dialect().allPagesEnd());
    ASSERT_EQ(harness.start(settings), 0u);
    for (int n = 1; n <= 5; ++n) EXPECT_EQ(harness.read().result, 0u);
    std::this_thread::sleep_for(120ms);
    EXPECT_EQ(harness.core.GetScanStatus(), RECEIVING) << "five pages are held and the sixth has begun";
    if (round == 0) {
      EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 2s);
    } else if (round == 1) {
      harness.device.answer(dialect().settingsMnemonic(), dialect().settingsAnswer(300, 300));
      EXPECT_LT(timeOf([&] { expectNextScanRuns(harness, dialect(), "overtaken while it waits"); }), 3s);
    }  // round 2: destroyed while it waits
  }
}

TEST_P(TearDown, AnAbortWhileTheScanWaitsForFreePagesGoesOutAfterTheWait) {
  auto settings = kSettings;
  settings.resolution = {600, 600};
  ByteString stream;
  for (unsigned n = 1; n <= 9; ++n) stream = stream + page(dialect(), n);
  ScanHarness harness(dialect().generation());
  harness.device.answer(dialect().settingsMnemonic(), dialect().settingsAnswer(600, 600));
  harness.device.stream({MemoryDevice::data(stream), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(settings), 0u);
  for (int n = 1; n <= 5; ++n) EXPECT_EQ(harness.read().result, 0u);
  std::this_thread::sleep_for(120ms);
  harness.core.AbortScanning();
  std::this_thread::sleep_for(150ms);
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 0);
  for (int n = 1; n <= 5; ++n) harness.core.FreeImageData(n);
  const Outcome outcome = harness.collect();
  EXPECT_EQ(outcome.last, XFERCANCELED);
  EXPECT_EQ(outcome.deliveries.size(), 4u);
  EXPECT_EQ(count(harness.device.mnemonics(), dialect().abortMnemonic()), 1);
}

TEST_P(TearDown, PagesStayReadableAfterTheEndUntilTheNextStart) {
  ScanHarness harness(dialect().generation());
  harness.device.stream(page(dialect(), 1) + page(dialect(), 2) + dialect().allPagesEnd());
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

TEST_P(TearDown, ADeviceThatBlocksInSilenceIsWaitedForAndNoLonger) {
  ScanHarness harness(dialect().generation());
  harness.device.blockInSilence(300);
  harness.device.stream({MemoryDevice::data(page(dialect(), 1)), MemoryDevice::quietForEver()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  ASSERT_TRUE(harness.device.waitUntilQuiet());
  EXPECT_LT(timeOf([&] { harness.core.UnInitialize(); }), 3s);
}

}  // namespace
}  // namespace reception_test
