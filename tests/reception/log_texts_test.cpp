// What the read thread and the readers write into the log, and at which level.
#include <gtest/gtest.h>

#include "tests/fakes/moved_clock.h"
#include "tests/foundation/expect_log.h"
#include "tests/reception/dialect.h"
#include "tests/reception/scan_harness.h"

namespace reception_test {
namespace {

using fakes::MemoryDevice;
using namespace foundation_test;

// Before any case hides /tmp, in which this program and its modules may lie.
[[maybe_unused]] const bool kModulesAreLoaded = (keepModulesLoaded(), true);

const Picture kPicture = drawPicture(6, 3, 24);
const QS_SCANNER_PARAMETERS kSettings = settingsFor(6, 3, 24);

ByteString page(unsigned pageNo) { return rawLines(kPicture, pageNo) + pageEnd(pageNo); }

std::vector<Messages> levelsOf(const std::vector<MemoryDevice::Part>& stream) {
  return messagesByLevel([&] {
    ScanHarness harness;
    harness.device.stream(stream);
    harness.scan(kSettings);
    harness.core.UnInitialize();
  });
}

TEST(LogTexts, OfACleanScan) {
  const ByteString stream = page(1) + pageSize(2, 6, 0) + colorCheck(2, kColor) + rawLines(kPicture, 2) +
                            blankPageEnd(2) + rawLines(kPicture, 3) + tooLongPageEnd(3);
  const auto levels = levelsOf(
      {MemoryDevice::data(stream), MemoryDevice::data({0x00}), MemoryDevice::quiet(2), MemoryDevice::data({0x20})});
  expectAtLevel(levels, 1, std::to_string(stream.size()) + " bytes data received");
  expectAtLevel(levels, 1, "1 bytes data received");
  expectAtLevel(levels, 2, "0 bytes received");
  expectAtLevel(levels, 0, "Escape 1 bytes data");
  expectAtLevel(levels, 0, "DispatchDataInfo status = 0");
  expectAtLevel(levels, 0, "DispatchDataInfo status = 1");
  expectAtLevel(levels, 0, "DispatchStatusCode status = 0x4");
  expectAtLevel(levels, 0, "DispatchStatusCode status = 0x3");
  expectAtLevel(levels, 1, "Status = Page End. Page No = 1");
  expectAtLevel(levels, 1, "Status = White Page End. Page No = 2");
  expectAtLevel(levels, 1, "Status = Page End. Page No = 2");
  expectAtLevel(levels, 1, "Status = Device Max Length Page End. Page No = 3");
  expectAtLevel(levels, 1, "Status = All Page End");
  expectAtLevel(levels, 1, "Read Thread loop end");
  expectAtLevel(levels, 1, "Close Device Access");
  expectAtLevel(levels, 2, "Finished return XFERREADY. finishstatus = 2");
  expectAtLevel(levels, 2, "Blank Page return XFERREADY");
  expectAtLevel(levels, 2, "All Page End return ALLEND");
  expectAtLevel(levels, 2, "finalStatus = 2");
  expectAtLevel(levels, 2, "Blank page");
  expectAtLevel(levels, 2, "Free [1]the page");
  EXPECT_EQ(countOf(levels[2], "Status = Page End. Page No = 3"), 0);
  for (const char* operation : {"ThreadProc", "StartScan", "Start"}) {
    expectStartAtLevel(levels, 1, std::string(">>>>> ") + operation + " >>>>>");
  }
}

TEST(LogTexts, OfAPollBeforeAnyPage) {
  const auto levels = messagesByLevel([] {
    ScanHarness harness;
    harness.device.stream({MemoryDevice::quietForEver()});
    harness.start(kSettings);
    EXPECT_EQ(harness.core.GetScanStatus(), RECEIVING);
    harness.core.UnInitialize();
  });
  expectAtLevel(levels, 2, "Receiving return RECEIVING");
}

TEST(LogTexts, OfFailures) {
  auto levels = levelsOf({MemoryDevice::data(page(1) + pageStatus(0x73, 2) + deviceError(0x91))});
  expectAtLevel(levels, 0, "Received failed code = 0x2");
  expectAtLevel(levels, 1, "Device error code = 0x91");
  expectAtLevel(levels, 1, "ErrCode = 1342177282, Canclled = 0");
  expectAtLevel(levels, 2, "BetweenPage return XFERREADY");

  levels = levelsOf({MemoryDevice::data(status(0x30))});
  expectAtLevel(levels, 0, "Read unknown data");

  levels = levelsOf({MemoryDevice::data(status(0x10))});
  expectAtLevel(levels, 1, "Other stauts status = 0x0");

  levels = levelsOf({MemoryDevice::timeOut()});
  expectAtLevel(levels, 1, "Receive Time out occured");
  expectAtLevel(levels, 2, "connection error return XFERREADY");

  levels = levelsOf({MemoryDevice::failure(0x40500010)});
  expectAtLevel(levels, 0, "Error occurred during receive data. ret = 1078984720(7)");
}

TEST(LogTexts, OfTimers) {
  const auto levels = levelsOf(
      {MemoryDevice::data(page(1) + rawLines(kPicture, 2) + timer(0x50, 30) + timer(0x51, 31) + allPagesEnd())});
  expectAtLevel(levels, 1, "Scan timeout postpone. time = 30[sec]");
  expectAtLevel(levels, 1, "Scan timeout postpone. time = 31[sec]");
  expectAtLevel(levels, 1, "Delete noncomplete scan images. last page no = 1");
  EXPECT_EQ(countOfStart(levels[2], "Delete noncomplete scan images."), 1);
}

TEST(LogTexts, OfARefusedSetting) {
  const auto levels = messagesByLevel([] {
    ScanHarness harness;
    harness.device.answer("SSP", fakes::framed("SSP", {1}, 0x91));
    harness.scan(kSettings);
  });
  expectAtLevel(levels, 0, "Get Device Param failed");
}

TEST(LogTexts, OfAnAbort) {
  const auto levels = messagesByLevel([] {
    ScanHarness harness;
    harness.device.stream({MemoryDevice::data(page(1)), MemoryDevice::quietForEver()});
    harness.start(kSettings);
    harness.core.AbortScanning();
    harness.collect();
  });
  expectAtLevel(levels, 1, "Abort Trigger is true");
  expectAtLevel(levels, 1, "Cancel response code = 0x0");
  expectAtLevel(levels, 2, "cancel return XFERCANCELED");
  EXPECT_EQ(countOf(levels[1], "Abort Trigger is true"), 1);

  const auto unanswered = messagesByLevel([] {
    ScanHarness harness;
    harness.device.abortAnswer({});
    harness.device.stream({MemoryDevice::quietForEver()});
    harness.start(kSettings);
    harness.core.AbortScanning();
    harness.device.waitForMnemonic("ABT");
    while (harness.core.GetScanStatus() == RECEIVING) fakes::clockAdvance += fakes::kAbortLimitPassed;
  });
  expectAtLevel(unanswered, 1, "Abort Time out occured");

  const auto key = levelsOf({MemoryDevice::data(stoppedByKey())});
  expectAtLevel(key, 1, "Cancel response code = 0x1");
}

TEST(LogTexts, OfTheFirstGeneration) {
  const ByteString stream = kFirstGeneration.rawLines(kPicture) + v1::pageEnd(1);
  auto levels = messagesByLevel([&] {
    ScanHarness harness(SCANCMD_GENERATION_1ST);
    harness.device.stream({MemoryDevice::data(stream), MemoryDevice::data({v1::kColor, 3}), MemoryDevice::quiet(),
                           MemoryDevice::data({0, 2, 0, 0, 1, 0, 9}), MemoryDevice::data(v1::allPagesEnd())});
    expectEnded(harness.scan(kSettings), 2, "first generation");
    harness.core.UnInitialize();
  });
  expectAtLevel(levels, 1, std::to_string(stream.size()) + " bytes data received");
  expectAtLevel(levels, 0, "Escape 2 bytes data");
  expectAtLevel(levels, 1, "Set lastReceivePageNo = 1");
  expectAtLevel(levels, 1, "Read Thread loop end");
  expectStartAtLevel(levels, 1, ">>>>> StartScan >>>>>");

  levels = messagesByLevel([] {
    ScanHarness harness(SCANCMD_GENERATION_1ST);
    harness.device.answer("I", {0x91, 1, 0, 0});
    harness.scan(kSettings);
  });
  expectAtLevel(levels, 0, "Get Device Param failed");
}

}  // namespace
}  // namespace reception_test
