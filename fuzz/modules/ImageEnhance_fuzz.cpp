// Pages and enhancement records of every kind: a failure, nothing to do, or a page of which every byte can be read.
// Input: the record as it lies in memory, the page's depth, sides, damage and mode, then its pixels, repeated as
// needed.
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/touch.h"
#include "modules/ImageEnhance.h"
#include "tests/fakes/test_bmp.h"

using namespace orvalle_scan_api;

extern "C" IImageEnhance* CreateInstance();

namespace {

// Any byte but 0 and 1 in a flag is no value of bool.
void makeFlags(_IE_PARAM& param, const std::uint8_t* bytes) {
  bool* const flags[] = {&param.doFirstEnhance, &param.doAutoTone,       &param.doSmoothing,     &param.doThickText,
                         &param.doColorDrop,    &param.doDotTextCombine, &param.doEdgeEnhance,   &param.doPunchHole,
                         &param.doToneAdjust,   &param.doNoiseRemoval,   &param.doLineRemoval,   &param.doAutoThreshold,
                         &param.doAutoRotate,   &param.doEdgeFill,       &param.edgeFill.isPixel};
  for (bool* flag : flags) {
    const auto at = reinterpret_cast<std::uint8_t*>(flag) - reinterpret_cast<std::uint8_t*>(&param);
    *flag = bytes[at] % 2 != 0;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kHead = sizeof(_IE_PARAM) + 5;
  if (size <= kHead || size > 20000) return 0;
  _IE_PARAM param;
  std::memcpy(&param, data, sizeof param);
  makeFlags(param, data);
  param.colorClass = static_cast<std::int32_t>(static_cast<std::uint32_t>(param.colorClass) % 6);
  const std::uint8_t* const head = data + sizeof(_IE_PARAM);
  const int bits = head[0] % 3 == 0 ? 1 : head[0] % 3 == 1 ? 8 : 24;
  const int width = 1 + head[1];
  const int height = 1 + head[2];

  fakes::ByteVector pixels(fakes::lineBytesOf(width, bits) * static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < pixels.size(); ++i) pixels[i] = data[kHead + i % (size - kHead)];
  fakes::ByteVector bmp = fakes::makeBmp(width, height, bits, pixels);
  if (head[3] < 54) bmp[head[3]] = head[4];
  PAGE_STORE_VIEW store{};
  store.data = bmp.data();
  store.dataSize = store.blockSize = static_cast<std::uint32_t>(bmp.size());
  store.resolutionX = head[4] * 5;
  store.resolutionY = head[3] * 5;

  const std::unique_ptr<IImageEnhance> enhance(CreateInstance());
  const unsigned code = enhance->Process(reinterpret_cast<CImageDataStore*>(&store), &param, head[4] % 3);
  const tagQS_SCAN_IMAGEDATA image = enhance->GetResult();
  touchAll(image.data, image.dataSize);
  if (code != 0 && image.data != nullptr) __builtin_trap();
  if (image.data == nullptr) return 0;
  const auto lineBytes = static_cast<std::size_t>(image.widthPixel * image.bitPerPixel + 7) / 8;
  if (image.pixelDataSize != lineBytes * static_cast<std::size_t>(image.heightPixel)) __builtin_trap();
  if (image.pixelData + image.pixelDataSize != image.data + image.dataSize) __builtin_trap();
  return 0;
}
