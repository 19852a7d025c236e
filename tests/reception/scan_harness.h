// A whole scan: the facade, a device played from memory, the real image modules beside the test program, and a caller
// that behaves as a host should. Every wait has an end.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "api/ScanProtocol.h"
#include "tests/fakes/MemoryDevice.h"
#include "tests/reception/keep_modules.h"

namespace reception_test {

using namespace orvalle_scan_api;

inline _QS_SELECT_DEVICE_INFO memoryDeviceInfo() {
  _QS_SELECT_DEVICE_INFO info{};
  info.connectionType = 1;
  std::strcpy(info.primaryName, "memory");
  return info;
}

// Settings for a page of that size and depth at 300 dpi, which may end early.
inline QS_SCANNER_PARAMETERS settingsFor(int widthPx, int heightPx, int bits) {
  QS_SCANNER_PARAMETERS settings{};
  settings.resolution = {300, 300};
  settings.colorType = bits == 24 ? COLORTYPE_COLOR24BIT : bits == 8 ? COLORTYPE_TRUEGRAY : COLORTYPE_BLACKANDWHITE;
  settings.paperType = PAPERTYPE_A4;
  settings.useScanArea = 1;
  settings.scanArea = {0, 0, widthPx, heightPx, UNIT_PIXEL};
  settings.paperSource = PAPERSOURCE_FLATBED;
  settings.detectEndOfPage = 1;
  return settings;
}

// One answer of ReadImageData.
struct Delivery {
  int pageNo = 0;
  QSRSLT result = 0;
  tagQS_SCAN_IMAGEDATA record{};
  fakes::ByteString bytes;
};

struct Outcome {
  QSRSLT started = 0;
  std::vector<Delivery> deliveries;
  SCANAPISTATUS last = READY;  // the status that ended the loop
  QSRSLT result = 0;           // the failure that ended the loop, 0 when a status did
  bool isLate = false;         // the loop was given up

  std::vector<fakes::ByteString> pages() const {
    std::vector<fakes::ByteString> all;
    for (const Delivery& delivery : deliveries) {
      if (delivery.result == 0) all.push_back(delivery.bytes);
    }
    return all;
  }
};

// The scan ran to its end and delivered so many pages, in their order.
inline void expectEnded(const Outcome& outcome, std::size_t pages, const std::string& name) {
  EXPECT_EQ(outcome.started, 0u) << name;
  EXPECT_FALSE(outcome.isLate) << name;
  EXPECT_EQ(outcome.last, ALLEND) << name;
  EXPECT_EQ(outcome.result, 0u) << name;
  ASSERT_EQ(outcome.deliveries.size(), pages) << name;
  for (std::size_t i = 0; i < pages; ++i) EXPECT_EQ(outcome.deliveries[i].pageNo, static_cast<int>(i) + 1) << name;
}

class ScanHarness {
 public:
  explicit ScanHarness(SCANCMD_GENERATION generation = SCANCMD_GENERATION_2ND) : device(generation) {
    keepModulesLoaded();
    connect();
  }

  // Injection, initialisation and selection; also after UnInitialize.
  void connect() {
    core.SetDeviceAccess(&device);
    EXPECT_EQ(core.Initialize(), 0u);
    _QS_SELECT_DEVICE_INFO info = memoryDeviceInfo();
    EXPECT_EQ(core.SelectDevice(info), 0u);
  }

  QSRSLT start(QS_SCANNER_PARAMETERS settings) { return core.StartScanning(&settings); }

  // The caller's loop. freesPages false leaves the pages with the library.
  Outcome collect(bool freesPages = true, std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    Outcome outcome;
    const auto end = std::chrono::steady_clock::now() + limit;
    while (std::chrono::steady_clock::now() < end) {
      outcome.last = core.GetScanStatus();
      if (outcome.last == RECEIVING) {
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        continue;
      }
      if (outcome.last != XFERREADY) return outcome;
      outcome.deliveries.push_back(read());
      const Delivery& delivery = outcome.deliveries.back();
      outcome.result = delivery.result;
      if (delivery.result != 0) return outcome;
      if (freesPages) core.FreeImageData(delivery.pageNo);
    }
    outcome.isLate = true;
    return outcome;
  }

  Delivery read() {
    Delivery delivery;
    delivery.result = core.ReadImageData(&delivery.record, &delivery.pageNo);
    if (delivery.result == 0 && delivery.record.data != nullptr) {
      delivery.bytes.assign(delivery.record.data, delivery.record.data + delivery.record.dataSize);
    }
    return delivery;
  }

  Outcome scan(const QS_SCANNER_PARAMETERS& settings) {
    Outcome refused;
    refused.started = start(settings);
    return refused.started != 0 ? refused : collect();
  }

  Outcome scan(const QS_SCANNER_PARAMETERS& settings, const fakes::ByteString& stream) {
    device.stream(stream);
    return scan(settings);
  }

  SCANAPISTATUS waitForStatusOtherThanReceiving() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    SCANAPISTATUS status = RECEIVING;
    while (status == RECEIVING && std::chrono::steady_clock::now() < end) {
      status = core.GetScanStatus();
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return status;
  }

  fakes::MemoryDevice device;
  CScanProtocol core;  // ends before the device
};

}  // namespace reception_test
