#include "core_host.h"

#include <dlfcn.h>

#include <chrono>
#include <cmath>
#include <stdexcept>
#include <thread>

namespace e2e {

using namespace orvalle_scan_api;

namespace {

constexpr std::chrono::milliseconds kPoll{10};
constexpr std::int32_t kNetwork = 2;

}  // namespace

void CoreHost::Closer::operator()(void* library) const { ::dlclose(library); }

std::string CoreHost::builtLibrary() { return QS_CORE_LIBRARY; }

CoreHost::CoreHost(const std::string& address, const std::string& library)
    : library_(::dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!library_) throw std::runtime_error(::dlerror());
  const auto create = reinterpret_cast<Core* (*)()>(::dlsym(library_.get(), "CreateInstance"));
  if (create == nullptr) throw std::runtime_error(library + " does not export CreateInstance");
  core_.reset(create());
  _QS_SELECT_DEVICE_INFO device{};
  device.connectionType = kNetwork;
  if (address.copy(device.primaryName, sizeof device.primaryName - 1) != address.size()) {
    throw std::runtime_error(address + " is too long");
  }
  if (!core_ || core_->Initialize() != QSRSLT_SUCCESS || core_->SelectDevice(device) != QSRSLT_SUCCESS) {
    throw std::runtime_error("the library cannot be used");
  }
}

CoreHost::~CoreHost() {
  if (core_) core_->UnInitialize();
}

QSRSLT CoreHost::scan(QS_SCANNER_PARAMETERS settings, const TakePage& take) {
  if (const QSRSLT result = core_->StartScanning(&settings); result != QSRSLT_SUCCESS) return result;
  for (;;) {
    switch (core_->GetScanStatus()) {
      case ALLEND:
        return QSRSLT_SUCCESS;
      case XFERCANCELED:
        return QSRSLT_CANCELED;
      case XFERREADY: {
        tagQS_SCAN_IMAGEDATA page{};
        int pageNo = 0;
        if (const QSRSLT result = core_->ReadImageData(&page, &pageNo); result != QSRSLT_SUCCESS) return result;
        take(page);
        core_->FreeImageData(pageNo);
        break;
      }
      default:
        std::this_thread::sleep_for(kPoll);
    }
  }
}

QS_SCANNER_PARAMETERS settingsFor(COLORTYPE color, int dpi, int paperWidth, int paperHeight, bool bothSides) {
  const auto px = [dpi](int hundredths) { return static_cast<int>(std::lround(hundredths * dpi / 2540.0)); };
  QS_SCANNER_PARAMETERS settings{};
  settings.resolution = {static_cast<std::uint32_t>(dpi), static_cast<std::uint32_t>(dpi)};
  settings.colorType = color;
  settings.paperType = PAPERTYPE_CUSTOM;
  settings.customPaperSize = {paperWidth, paperHeight, UNIT_MILLIMETER};
  settings.useScanArea = 1;
  settings.scanArea = {0, 0, px(paperWidth), px(paperHeight), UNIT_PIXEL};
  settings.paperSource = PAPERSOURCE_ADF;
  settings.duplexType = bothSides ? DUPLEXTYPE_LONG_EDGE : DUPLEXTYPE_SIMPLEX;
  return settings;
}

Picture pictureOf(const tagQS_SCAN_IMAGEDATA& page) {
  const bool isColor = page.bitPerPixel == 24;
  const auto lineBytes =
      (static_cast<std::size_t>(page.widthPixel) * static_cast<std::size_t>(page.bitPerPixel) + 7) / 8;
  if (page.pixelData == nullptr || page.pixelDataSize < lineBytes * static_cast<std::size_t>(page.heightPixel)) {
    throw std::runtime_error("a page without its pixels");
  }
  Picture picture(page.widthPixel, page.heightPixel, isColor ? 3 : 1, page.resolutionX);
  picture.bitsPerSample = page.bitPerPixel == 1 ? 1 : 8;
  for (int y = 0; y < picture.heightPx; ++y) {
    const std::uint8_t* from = page.pixelData + static_cast<std::size_t>(picture.heightPx - 1 - y) * lineBytes;
    std::uint8_t* to = picture.at(0, y);
    for (int x = 0; x < picture.widthPx; ++x) {
      if (isColor) {
        for (int c = 0; c < 3; ++c) to[3 * x + c] = from[3 * x + 2 - c];
      } else {
        to[x] = page.bitPerPixel == 8 ? from[x] : static_cast<std::uint8_t>((from[x / 8] >> (7 - x % 8) & 1) * 255);
      }
    }
  }
  return picture;
}

}  // namespace e2e
