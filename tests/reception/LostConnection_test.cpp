// A device that goes away takes only the page in hand with it: pages that came whole are delivered first, however far
// they are in the stages and however late the caller fetches them.
#include <gtest/gtest.h>

#include "tests/reception/interrupted_scan.h"

namespace reception_test {
namespace {

using namespace std::chrono_literals;

class LostConnection : public BothGenerations {
 protected:
  static ByteString twoPagesAndAPart() { return page(GetParam(), 1) + page(GetParam(), 2) + startOf(GetParam(), 3); }

  ScanHarness harness{GetParam().generation()};
};
INSTANTIATE_TEST_SUITE_P(Generations, LostConnection, testing::ValuesIn(kGenerations), nameOfGeneration);

void expectTwoPagesThen(QSRSLT failure, const Outcome& outcome) {
  EXPECT_FALSE(outcome.isLate);
  EXPECT_EQ(outcome.pages(), twoPages());
  EXPECT_EQ(outcome.result, failure);
}

TEST_P(LostConnection, InThePageInHandKeepsThePagesBeforeIt) {
  for (int i = 0; i < 20; ++i) {
    harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
    expectTwoPagesThen(MemoryDevice::kFailure, harness.scan(kSettings));
  }
}

TEST_P(LostConnection, KeepsThePagesForACallerWhoComesLate) {
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  std::this_thread::sleep_for(300ms);
  expectTwoPagesThen(MemoryDevice::kFailure, harness.collect());
}

TEST_P(LostConnection, KeepsThePagesForACallerWhoWaitsInReadImageData) {
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::gone()});
  ASSERT_EQ(harness.start(kSettings), 0u);
  EXPECT_EQ(harness.read().bytes, pageBytes(1));
  EXPECT_EQ(harness.read().bytes, pageBytes(2));
  EXPECT_EQ(harness.read().result, MemoryDevice::kFailure);
}

TEST_P(LostConnection, OfASilentDeviceIsATimeOutBehindThePagesThatCame) {
  harness.device.stream({MemoryDevice::data(twoPagesAndAPart()), MemoryDevice::timeOut()});
  expectTwoPagesThen(QSRSLT_RECEIVE_TIME_OUT, harness.scan(kSettings));
}

TEST_P(LostConnection, BeforeAnyPageIsMetAtTheFirst) {
  harness.device.stream({MemoryDevice::gone()});
  const Outcome outcome = harness.scan(kSettings);
  EXPECT_TRUE(outcome.pages().empty());
  EXPECT_EQ(outcome.result, MemoryDevice::kFailure);
}

}  // namespace
}  // namespace reception_test
