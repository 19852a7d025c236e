// A device that goes away takes only the page in hand with it: pages that came whole are delivered first, however far
// they are in the stages and however late the caller fetches them.
#include <gtest/gtest.h>

#include "tests/reception/scan_harness.h"
#include "tests/reception/scan_pictures.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;
using namespace std::chrono_literals;

const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

ByteString page(unsigned pageNo) { return rawLines(drawPicture(6, 3, 24, pageNo), pageNo) + pageEnd(pageNo); }
ByteString pageBytes(unsigned pageNo) { return expectedBmp(drawPicture(6, 3, 24, pageNo)); }
ByteString twoPagesAndAPart() { return page(1) + page(2) + line(3, kColor, drawPicture(6, 3, 24, 3).lines[0]); }

void expectTwoPagesThen(QSRSLT failure, const Outcome& outcome) {
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.pages(), (std::vector<ByteString>{pageBytes(1), pageBytes(2)}));
  EXPECT_EQ(outcome.result, failure);
}

TEST(LostConnection, InThePageInHandKeepsThePagesBeforeIt) {
  for (int i = 0; i < 20; ++i) {
    ScanHarness harness;
    harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
    expectTwoPagesThen(MemoryDevice::kFailure, harness.scan(kSettings));
  }
}

TEST(LostConnection, KeepsThePagesForACallerWhoComesLate) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  std::this_thread::sleep_for(300ms);
  expectTwoPagesThen(MemoryDevice::kFailure, harness.collect());
}

TEST(LostConnection, KeepsThePagesForACallerWhoWaitsInReadImageData) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  EXPECT_EQ(harness.read().bytes, pageBytes(1));
  EXPECT_EQ(harness.read().bytes, pageBytes(2));
  EXPECT_EQ(harness.read().result, MemoryDevice::kFailure);
}

TEST(LostConnection, OfASilentDeviceIsATimeOutBehindThePagesThatCame) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::timeOut()});
  expectTwoPagesThen(QSRSLT_RECEIVE_TIME_OUT, harness.scan(kSettings));
}

TEST(LostConnection, BeforeAnyPageIsMetAtTheFirst) {
  ScanHarness harness;
  harness.device.stream({MemoryDevice::gone()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_TRUE(outcome.pages().empty());
  EXPECT_EQ(outcome.result, MemoryDevice::kFailure);
}

}  // namespace
}  // namespace reception_test
