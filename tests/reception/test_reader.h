// A read thread whose generation is the test: what StartScan and the dispatcher do is given as functions, which run on
// the read thread, and the protected operations of the base are open to them.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

#include "reception/ReadThread_base.h"
#include "tests/fakes/FakeCompanions.h"
#include "tests/fakes/MemoryDevice.h"
#include "tests/reception/keep_modules.h"

namespace reception_test {

using namespace orvalle_scan_api;

class TestReader final : public CReadThread_base {
 public:
  ~TestReader() override { End(); }

  std::function<QSRSLT()> onStart = [] { return QSRSLT{0}; };
  // Returns how many bytes it used; the others are escaped.
  std::function<std::size_t(const unsigned char* bytes, std::size_t size)> onData =
      [](const unsigned char*, std::size_t size) { return size; };

  using CReadThread_base::ClearImageDataFromArray;
  using CReadThread_base::GetCountOfNotXferedImageData;
  using CReadThread_base::IsImageDataWritableCondition;
  using CReadThread_base::m_pDevAcs;
  using CReadThread_base::m_userParam;
  using CReadThread_base::pageAt;
  using CReadThread_base::pageCount;
  using CReadThread_base::SaveDataToEscapeBuffer;
  using CReadThread_base::SetScanTimeOutSec;
  using CReadThread_base::TerminateDataReadProcess;
  using CReadThread_base::WaitForImageDataWritableCondition;

  CImageData* addPage() {
    auto page = std::make_unique<CImageData>();
    page->SetPageNo(pageCount() + 1);
    CImageData* added = page.get();
    appendPage(std::move(page));
    return added;
  }
  // A page that has one byte of data.
  CImageData* addStartedPage() {
    CImageData* page = addPage();
    const unsigned char byte = 1;
    page->m_pCurrentStore->WriteDataBlock(&byte, 1);
    return page;
  }

  QSRSLT GetColorProfile(void**, int*, int) override { return 0x1010000D; }

 private:
  QSRSLT StartScan() override { return onStart(); }
  QSRSLT DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                              unsigned int* escapeSize) override {
    const std::size_t used = onData(bytes, size);
    if (used < size) {
      *escapeSize = static_cast<unsigned int>(size - used);
      *escape = SaveDataToEscapeBuffer(bytes + used, *escapeSize);
    }
    return 0;
  }
  QSRSLT ConvertDeviceErrorToQSRSLT(unsigned short deviceError) override { return 0x50000000u + deviceError; }
};

// A scan status of which only some fields are named.
struct State {
  QSRSLT status = 0;
  std::uint32_t errPageNo = 0;
  std::uint32_t cancelPageNo = 0;
  std::uint16_t deviceErr = 0;
  bool betweenPageErr = false;
  bool scanFinished = false;
  bool canceled = false;

  operator SCANSTATUS() const {
    return {status, 0, errPageNo, cancelPageNo, deviceErr, betweenPageErr, scanFinished, canceled};
  }
};

// A running TestReader with what it needs. The device is opened and streams when the test gives it a stream.
struct ReaderBench {
  fakes::CallList calls;
  fakes::FakeScanCommand command{calls};
  fakes::MemoryDevice device;
  CScanError error;
  QS_SCANNER_PARAMETERS settings{};
  QS_SCANNER_CAPABILITY capability{};
  TestReader reader;  // ends before what it uses

  ReaderBench() {
    keepModulesLoaded();
    settings.resolution = {300, 300};
  }

  // From StartScan on, reads give the device's stream.
  void openStream() {
    _DEV_IDENTIFIER id{0, 1, "memory"};
    device.Open(id);
    device.Write("\x1BXSC\n\x80", 6, 0);
  }
  QSRSLT start() { return reader.Start(settings, &command, &device, &error, capability); }

  // Waits until the read thread has been through StartScan.
  template <class Condition>
  bool waitFor(Condition holds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > end) return false;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
  }
};

}  // namespace reception_test
