// A host of the scanning library within the test's own process: it loads the core and scans, as any program does it.
// Bound to the thread that made it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ScanCoreApi.h"
#include "picture.h"

namespace e2e {

class CoreHost {
 public:
  // Loads the library that was built with this test, or the one at that path, and selects the TCP device. Throws
  // std::runtime_error.
  explicit CoreHost(const std::string& address, const std::string& library = builtLibrary());
  ~CoreHost();
  CoreHost(const CoreHost&) = delete;
  CoreHost& operator=(const CoreHost&) = delete;

  static std::string builtLibrary();

  // Scans until the device has no more pages; each goes to take, in order, and is freed afterwards. 0, or the library's
  // result code.
  using TakePage = std::function<void(const orvalle_scan_api::tagQS_SCAN_IMAGEDATA&)>;
  orvalle_scan_api::QSRSLT scan(orvalle_scan_api::QS_SCANNER_PARAMETERS settings, const TakePage& take);

 private:
  using Core = orvalle_scan_api::IScanCoreApi;
  struct Closer {
    void operator()(void* library) const;
  };
  std::unique_ptr<void, Closer> library_;
  std::unique_ptr<Core> core_;  // ends before the library
};

// Settings for paper of that size, in hundredths of a millimetre, all of it scanned.
orvalle_scan_api::QS_SCANNER_PARAMETERS settingsFor(orvalle_scan_api::COLORTYPE color, int dpi, int paperWidth,
                                                    int paperHeight, bool bothSides);

// The page top line first, in grey or R,G,B. Throws std::runtime_error where the page contradicts itself.
Picture pictureOf(const orvalle_scan_api::tagQS_SCAN_IMAGEDATA& page);

}  // namespace e2e
