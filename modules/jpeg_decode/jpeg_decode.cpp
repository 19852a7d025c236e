#include "jpeg_decode.h"

#include <exception>

#include "page_decoder.h"

namespace jpeg_decode {
namespace {

using namespace orvalle_scan_api;

JPEGDECODESTATUS statusOf(Step step) {
  switch (step) {
    case Step::Done:
      return JPEGDECODE_OK;
    case Step::NeedInput:
      return JPEGDECODE_NEED_INPUT;
    case Step::NoMemory:
      return JPEGDECODE_LOW_MEMORY;
    case Step::Failed:
      break;
  }
  return JPEGDECODE_ERROR;
}

std::span<const std::uint8_t> bytesOf(const void* data, unsigned int size) {
  return {static_cast<const std::uint8_t*>(data), size};
}

}  // namespace

JPEGDECODESTATUS JpegDecode::DecodePage(const void* data, unsigned int size, tagQS_SCAN_IMAGEDATA* result) {
  EndPage();
  if (result != nullptr) *result = {};
  if (data == nullptr || size == 0 || result == nullptr) return JPEGDECODE_INVALID_PARAMETER;
  const Step step = decodePage(static_cast<const std::uint8_t*>(data), size, page_);
  if (step == Step::Done) *result = page_.describe();
  return statusOf(step);
}

void JpegDecode::EndPage() { page_.clear(); }

JPEGDECODESTATUS JpegDecode::OpenBand(const void* data, unsigned int size, JPEGBANDINFO* info) {
  CloseBand();
  if (info != nullptr) *info = {};
  if (data == nullptr || size == 0 || info == nullptr) return JPEGDECODE_INVALID_PARAMETER;
  Picture picture;
  Step step = Step::NoMemory;
  try {
    step = band_.emplace().open(bytesOf(data, size), picture);
  } catch (const std::exception&) {
  }
  if (step != Step::Done) {
    CloseBand();
    return statusOf(step);
  }
  info->resolutionX = static_cast<std::int32_t>(picture.dpiX);
  info->resolutionY = static_cast<std::int32_t>(picture.dpiY);
  info->bitPerPixel = static_cast<std::int32_t>(picture.bitsPerPixel);
  info->widthPixel = static_cast<std::int32_t>(picture.widthPx);
  info->heightPixel = static_cast<std::int32_t>(picture.heightPx);
  info->writeSizeSpan = kBandFeedBytes;
  return JPEGDECODE_OK;
}

JPEGDECODESTATUS JpegDecode::WriteBand(const void* data, unsigned int size) {
  if (!band_) return JPEGDECODE_NOT_OPENED;
  if (data == nullptr || size == 0) return JPEGDECODE_INVALID_PARAMETER;
  try {
    return band_->feed(bytesOf(data, size)) ? JPEGDECODE_OK : JPEGDECODE_WRITE_BAND;
  } catch (const std::exception&) {
    return JPEGDECODE_LOW_MEMORY;
  }
}

JPEGDECODESTATUS JpegDecode::ReadBandLine(void** line, unsigned int* size) {
  if (line != nullptr) *line = nullptr;
  if (size != nullptr) *size = 0;
  if (line == nullptr || size == nullptr) return JPEGDECODE_INVALID_PARAMETER;
  if (!band_) return JPEGDECODE_NOT_OPENED;
  std::span<std::uint8_t> bytes;
  const Step step = band_->nextLine(bytes);
  if (step != Step::Done) return statusOf(step);
  if (!bytes.empty()) *line = bytes.data();
  *size = static_cast<unsigned int>(bytes.size());
  return band_->finished() ? JPEGDECODE_OK : JPEGDECODE_MORE_LINES;
}

void JpegDecode::CloseBand() { band_.reset(); }

int JpegDecode::GetDecodeMode(unsigned int pixelDataSize) { return pixelDataSize <= kMaxPageModeBytes ? 1 : 2; }

}  // namespace jpeg_decode
