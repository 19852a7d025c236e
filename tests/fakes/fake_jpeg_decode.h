// A JPEG decoder under a test's control: hands out the picture or the band lines it was given.
// Threads: set up before the stage starts, read after its page was collected.
#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "modules/JpegDecode.h"

namespace fakes {

class FakeJpegDecode : public orvalle_scan_api::IJpegDecode {
 public:
  using Status = orvalle_scan_api::JPEGDECODESTATUS;
  struct BandStep {
    Status status;
    std::vector<std::uint8_t> line;  // empty: no line with this answer
  };

  int decodeMode = 1;
  Status pageStatus = orvalle_scan_api::JPEGDECODE_OK;
  std::vector<std::uint8_t> pageBmp;
  int pageBitPerPixel = 24;
  std::size_t pageDataSize = 0;  // 0: the size of pageBmp
  Status openStatus = orvalle_scan_api::JPEGDECODE_OK;
  orvalle_scan_api::JPEGBANDINFO bandInfo{};
  Status writeBandStatus = orvalle_scan_api::JPEGDECODE_OK;
  std::deque<BandStep> bandSteps;  // then: needs more input, no line
  std::function<void()> onDecode;  // runs on the worker, once for a page and with each feed of a band

  std::vector<unsigned> modeQuestions;
  std::vector<std::uint8_t> seenJpeg;
  std::vector<unsigned> fedSpans;
  int endPages = 0;
  int closeBands = 0;

  Status DecodePage(const void* data, unsigned int size, orvalle_scan_api::tagQS_SCAN_IMAGEDATA* result) override {
    see(data, size);
    result->data = pageBmp.empty() ? nullptr : pageBmp.data();
    result->dataSize = pageDataSize != 0 ? pageDataSize : pageBmp.size();
    result->bitPerPixel = pageBitPerPixel;
    return pageStatus;
  }
  void EndPage() override { ++endPages; }
  Status OpenBand(const void*, unsigned int size, orvalle_scan_api::JPEGBANDINFO* info) override {
    if (size == 0) return orvalle_scan_api::JPEGDECODE_INVALID_PARAMETER;
    *info = bandInfo;
    return openStatus;
  }
  Status WriteBand(const void* data, unsigned int size) override {
    fedSpans.push_back(size);
    see(data, size);
    return writeBandStatus;
  }
  Status ReadBandLine(void** line, unsigned int* size) override {
    *size = 0;
    if (bandSteps.empty()) return orvalle_scan_api::JPEGDECODE_NEED_INPUT;
    current_ = bandSteps.front();
    bandSteps.pop_front();
    *line = current_.line.data();
    *size = static_cast<unsigned>(current_.line.size());
    return current_.status;
  }
  void CloseBand() override { ++closeBands; }
  int GetDecodeMode(unsigned int pixelDataSize) override {
    modeQuestions.push_back(pixelDataSize);
    return decodeMode;
  }

 private:
  void see(const void* data, unsigned int size) {
    if (onDecode) onDecode();
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    seenJpeg.insert(seenJpeg.end(), bytes, bytes + size);
  }
  BandStep current_{};
};

}  // namespace fakes
