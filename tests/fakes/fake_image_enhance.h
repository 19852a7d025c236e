// An enhancement module under a test's control: nothing to do, a prepared result, or a failure.
// Threads: set up before the stage starts, read after its page was collected.
#pragma once

#include <functional>
#include <vector>

#include "modules/ImageEnhance.h"

namespace fakes {

class FakeImageEnhance : public orvalle_scan_api::IImageEnhance {
 public:
  unsigned int processAnswer = 0;
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA result{};                    // without data: nothing to do
  std::vector<std::uint8_t> resultBmp;                                // where it is set, the result's data
  std::function<void(orvalle_scan_api::CImageDataStore*)> onProcess;  // runs on the worker

  int processes = 0;
  std::vector<std::uint8_t> seenBmp;
  orvalle_scan_api::PAGE_STORE_VIEW seenStore{};
  orvalle_scan_api::_IE_PARAM seenParam{};
  int seenAutoColorMode = -1;

  unsigned int Process(orvalle_scan_api::CImageDataStore* source, orvalle_scan_api::_IE_PARAM* parameters,
                       int autoColorMode) override {
    ++processes;
    seenStore = orvalle_scan_api::ViewPageStore(source);
    if (seenStore.data != nullptr) seenBmp.assign(seenStore.data, seenStore.data + seenStore.dataSize);
    seenParam = *parameters;
    seenAutoColorMode = autoColorMode;
    if (onProcess) onProcess(source);
    return processAnswer;
  }
  orvalle_scan_api::tagQS_SCAN_IMAGEDATA GetResult() override {
    if (!resultBmp.empty()) {
      result.data = resultBmp.data();
      result.dataSize = resultBmp.size();
    }
    return result;
  }
};

}  // namespace fakes
