// Drives one page through one stage and waits for it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "image/ImageProcThread.h"

namespace fakes {

// Collects the page that the stage works on; null after ten seconds.
inline orvalle_scan_api::CImageData* collect(orvalle_scan_api::CImageProcThread_Base& stage) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (std::chrono::steady_clock::now() < limit) {
    if (auto* page = stage.GetResultImageData()) return page;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return nullptr;
}

// Settings of a scan at 300 dpi in both directions, which the device took over.
struct Settings {
  orvalle_scan_api::QS_SCANNER_PARAMETERS user{};
  orvalle_scan_api::QS_SCANNER_PARAMETERS device{};
  Settings() {
    using namespace orvalle_scan_api;
    user.resolution = device.resolution = {300, 300};
    user.colorType = device.colorType = COLORTYPE_COLOR24BIT;
    user.paperType = device.paperType = PAPERTYPE_A4;
    user.detectEndOfPage = device.detectEndOfPage = 1;
  }
};

}  // namespace fakes
