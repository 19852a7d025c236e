// A scanning library without a device: pages and failures come from a script.
#pragma once

#include <unistd.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "ScanCoreApi.h"

namespace qsscan_test {

using namespace orvalle_scan_api;

// A whole BMP page in memory with unpadded lines, bottom first, and a picture of its own: byte i of the line y, counted
// from the top, is fakeByte(y, i).
inline std::uint8_t fakeByte(int y, std::size_t i) {
  return static_cast<std::uint8_t>(y * 7 + static_cast<int>(i) * 3);
}

struct FakePage {
  int widthPx = 40;
  int heightPx = 30;
  int bitsPerPixel = 24;
  int dpi = 300;
  bool blank = false;
  bool cutAtMaximum = false;

  std::size_t lineBytes() const { return (static_cast<std::size_t>(widthPx * bitsPerPixel) + 7) / 8; }
  std::size_t headerBytes() const { return 54 + (bitsPerPixel == 1 ? 8U : bitsPerPixel == 8 ? 1024U : 0U); }

  std::vector<std::uint8_t> file() const {
    std::vector<std::uint8_t> bytes(headerBytes() + lineBytes() * static_cast<std::size_t>(heightPx));
    bytes[0] = 'B';
    bytes[1] = 'M';
    for (int y = 0; y < heightPx; ++y) {
      std::uint8_t* line = bytes.data() + headerBytes() + static_cast<std::size_t>(heightPx - 1 - y) * lineBytes();
      for (std::size_t i = 0; i < lineBytes(); ++i) line[i] = fakeByte(y, i);
    }
    return bytes;
  }

  tagQS_SCAN_IMAGEDATA describe(std::vector<std::uint8_t>& bytes) const {
    tagQS_SCAN_IMAGEDATA image{};
    image.isBlankPage = blank;
    image.pageScanIsTerminated = cutAtMaximum;
    image.resolutionX = image.resolutionY = dpi;
    if (blank) return image;
    image.data = bytes.data();
    image.dataSize = bytes.size();
    image.pixelData = bytes.data() + headerBytes();
    image.pixelDataSize = static_cast<std::uint32_t>(bytes.size() - headerBytes());
    image.bitPerPixel = bitsPerPixel;
    image.widthPixel = widthPx;
    image.heightPixel = heightPx;
    image.widthBytes = static_cast<std::int32_t>(lineBytes());
    return image;
  }
};

// What happens once the pages of the script are used up.
enum class AfterPages { kAllEnd, kCanceled, kFailure, kSilence, kThreadGone, kEndsWhileAsked };

struct FakeScript {
  tagQS_SCANNER_CAPABILITY_VER1 capability{};
  QSRSLT initializeResult = 0;
  QSRSLT selectResult = 0;
  QSRSLT capabilityResult = 0;
  QSRSLT startResult = 0;
  bool adfInserted = false;
  std::vector<std::uint8_t> profile;  // empty: the device gives none
  std::vector<FakePage> pages;
  int pollsPerPage = 1;  // polls that say "receiving" before each page
  AfterPages after = AfterPages::kAllEnd;
  QSRSLT failure = 0;
  int pagesAfterAbort = 0;   // pages that still come after an abort was asked for
  bool deafToAbort = false;  // the abort is never answered
};

// Checks the calling order while it plays the script: a call out of order is noted in misuse().
class FakeScanCore : public IScanCoreApi {
 public:
  explicit FakeScanCore(FakeScript script) : script_(std::move(script)) {}

  QSRSLT Initialize() override {
    initialized_ = script_.initializeResult == 0;
    return script_.initializeResult;
  }
  void UnInitialize() override { initialized_ = false; }
  QSRSLT EnumerateDevice(_QS_SELECT_DEVICE_INFO**, int*) override { return QSRSLT_NO_ENUMERATION; }
  void ReleaseDeviceList() override {}
  QSRSLT SelectDevice(_QS_SELECT_DEVICE_INFO& info) override {
    selected_ = info;
    return script_.selectResult;
  }
  QSRSLT GetSelectedDevInfo(_QS_SELECT_DEVICE_INFO* info) override {
    *info = selected_;
    return 0;
  }
  bool CheckConnection() override { return script_.capabilityResult == 0; }
  QSRSLT QueryDeviceCapabilities(unsigned generation, void* capability) override {
    if (generation != 1 || !initialized_) misuse_ = "capabilities";
    if (script_.capabilityResult == 0) std::memcpy(capability, &script_.capability, sizeof script_.capability);
    return script_.capabilityResult;
  }
  QSRSLT GetIccProfile(void** data, int* size) override {
    ++profileQuestions_;
    if (script_.profile.empty()) return QSRSLT_WRONG_STATE;
    *data = const_cast<std::uint8_t*>(script_.profile.data());
    *size = static_cast<int>(script_.profile.size());
    return QSRSLT_SUCCESS;
  }
  QSRSLT GetPushScanParameter(unsigned, void*) override { return QSRSLT_NOT_PREPARED; }
  bool IsAdfInserted() override { return script_.adfInserted; }

  QSRSLT StartScanning(QS_SCANNER_PARAMETERS* parameters) override {
    parameters_ = *parameters;
    ++starts_;
    callingThread_ = std::this_thread::get_id();
    return script_.startResult;
  }

  SCANAPISTATUS GetScanStatus() override {
    checkThread();
    if (++polls_ <= script_.pollsPerPage) return RECEIVING;
    if (pageComes()) return XFERREADY;
    if (aborts_ > 0 && !script_.deafToAbort) return XFERCANCELED;
    switch (script_.after) {
      case AfterPages::kAllEnd:
        return ALLEND;
      case AfterPages::kCanceled:
        return XFERCANCELED;
      case AfterPages::kFailure:
      case AfterPages::kEndsWhileAsked:
        return XFERREADY;
      case AfterPages::kSilence:
        return RECEIVING;
      case AfterPages::kThreadGone:
        break;
    }
    return READY;
  }

  QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) override {
    checkThread();
    *pageNo = ++pageNo_;
    if (!pageComes()) return script_.after == AfterPages::kEndsWhileAsked ? QSRSLT_WRONG_STATE : script_.failure;
    if (aborts_ > 0) ++pagesSinceAbort_;
    if (!held_.empty()) misuse_ = "a second page while one is held";
    const FakePage& page = script_.pages[next_++];
    held_ = page.file();
    heldNo_ = pageNo_;
    *image = page.describe(held_);
    if (spoil_) spoil_(*image);
    polls_ = 0;
    return 0;
  }

  bool AbortScanning() override {
    checkThread();
    ++aborts_;
    return true;
  }

  void FreeImageData(int pageNo) override {
    checkThread();
    if (pageNo != heldNo_) misuse_ = "freed another page";
    std::fill(held_.begin(), held_.end(), std::uint8_t{0xDD});  // whoever still reads it shows
    held_.clear();
    heldNo_ = 0;
    ++freed_;
  }

  int GetCurrentReceivedLines(int) override { return 0; }
  QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() override { return {}; }

  void spoilPages(void (*spoil)(tagQS_SCAN_IMAGEDATA&)) { spoil_ = spoil; }

  const QS_SCANNER_PARAMETERS& parameters() const { return parameters_; }
  const _QS_SELECT_DEVICE_INFO& selected() const { return selected_; }
  const std::string& misuse() const { return misuse_; }
  int starts() const { return starts_; }
  int profileQuestions() const { return profileQuestions_; }
  int aborts() const { return aborts_; }
  int freed() const { return freed_; }

 private:
  bool pageComes() const {
    if (next_ >= script_.pages.size()) return false;
    return aborts_ == 0 || script_.deafToAbort || pagesSinceAbort_ < script_.pagesAfterAbort;
  }
  void checkThread() {
    if (std::this_thread::get_id() != callingThread_) misuse_ = "called from another thread during the scan";
  }

  const FakeScript script_;
  bool initialized_ = false;
  _QS_SELECT_DEVICE_INFO selected_{};
  QS_SCANNER_PARAMETERS parameters_{};
  std::thread::id callingThread_;
  std::size_t next_ = 0;
  int pageNo_ = 0;
  int polls_ = 0;
  std::atomic<int> aborts_ = 0;
  int pagesSinceAbort_ = 0;
  int heldNo_ = 0;
  std::vector<std::uint8_t> held_;
  int starts_ = 0;
  int profileQuestions_ = 0;
  int freed_ = 0;
  std::string misuse_;
  void (*spoil_)(tagQS_SCAN_IMAGEDATA&) = nullptr;
};

// A device with a bed and a duplex feeder, as a capability record tells it.
inline tagQS_SCANNER_CAPABILITY_VER1 officeCapability() {
  tagQS_SCANNER_CAPABILITY_VER1 c{};
  constexpr std::uint32_t kList[] = {100, 150, 200, 300, 400, 600, 1200};
  std::copy(std::begin(kList), std::end(kList), c.resolutionList);
  c.resolutionOptical = {{600, 600}, {600, 600}, {600, 600}};
  c.colorType = {1, 1, 1, 1, 1};
  c.autoColorFlag = 1;
  c.supportDocSizeMax = {{21590, 29700}, {21590, 35560}, {21590, 35560}, UNIT_MILLIMETER};
  c.deviceScanSizeMin = {{1, 1}, {5080, 5400}, {5080, 5400}, UNIT_MILLIMETER};
  c.longPaperLengthMax = {2, 300000, 0};
  c.paperSource = {{1, 1, 1, 0}, 0, 50};
  c.autoPaperSize = 2;
  c.monoThreshold = {1, 0, 2, 254, 1, 128};
  c.autoColor = {2, 255, 0, 127, 255, 0, 128};
  c.xferCount = 2;
  c.multifeed = 2;
  c.quietMode = 1;
  return c;
}

}  // namespace qsscan_test
