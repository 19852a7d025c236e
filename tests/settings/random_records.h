// Settings and capabilities with anything in them: values that mean something, values beside them, and any bits at all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>

#include "scanner_capability.h"
#include "scanner_parameters.h"

namespace orvalle_scan_api {

class RandomRecords {
 public:
  explicit RandomRecords(unsigned seed) : random_(seed) {}

  std::uint32_t bits() { return static_cast<std::uint32_t>(random_()); }

  std::int32_t oneOf(std::initializer_list<std::int32_t> choices) {
    return *(choices.begin() + bits() % choices.size());
  }

  // Zero, one, a length of a page, the ends of the range, or a number of any magnitude and sign.
  std::int32_t number() {
    switch (bits() % 8) {
      case 0:
        return oneOf({0, 1, -1, INT32_MIN, INT32_MAX, INT32_MIN + 1});
      case 1:
      case 2:
        return static_cast<std::int32_t>(bits()) >> (bits() % 31);
      case 3:
        return -static_cast<std::int32_t>(bits() % 2000);
      case 4:
        return static_cast<std::int32_t>(bits() % 500);
      default:
        return static_cast<std::int32_t>(bits() % 45000);
    }
  }

  std::uint32_t dpi() {
    if (bits() % 8 == 0) return bits() >> (bits() % 32);
    return static_cast<std::uint32_t>(oneOf({75, 100, 150, 199, 200, 300, 300, 400, 600, 600, 1200, 2400, 0, 1}));
  }

  UNITTYPE unit() { return static_cast<UNITTYPE>(oneOf({0, 0, 0, 1, 1, 1, 2, 2, 2, 3, -1})); }

  PAPERSOURCESELECT source() { return static_cast<PAPERSOURCESELECT>(oneOf({1, 1, 2, 2, 3, 3, 0, 4, -1})); }

  // Any bits, then the fields that the conversions ask for with what they know how to tell apart.
  QS_SCANNER_PARAMETERS settings() {
    QS_SCANNER_PARAMETERS s;
    fill(s);
    s.resolution = {dpi(), dpi()};
    s.colorType = static_cast<COLORTYPE>(oneOf({0, 1, 1, 2, 3, 4, 5, 6, -1}));
    s.paperType = static_cast<PAPERTYPE>(bits() % 3 == 0 ? oneOf({0, 18, 23, 24, 26, 26, 26, -1, INT32_MAX, INT32_MIN})
                                                         : static_cast<std::int32_t>(bits() % 28));
    s.customPaperSize = {number(), number(), unit()};
    s.useScanArea = flag();
    s.scanArea = {number(), number(), number(), number(), unit()};
    s.duplexType = static_cast<DUPLEXTYPE>(oneOf({0, 0, 1, 2, 3, -1}));
    s.paperSource = source();
    s.autoDeskew = flag();
    s.autoThreshold = flag();
    s.threshold = static_cast<std::uint32_t>(bits() % 2 == 0 ? number() : oneOf({0, 1, 100, 254, 255}));
    s.removeBackground = {flag(), bits() % 2 == 0 ? number() : static_cast<std::int32_t>(bits() % 300)};
    s.smoothing.enable = rareFlag();
    s.colorDrop.enable = rareFlag();
    s.punchHoleRemoval.enable = rareFlag();
    s.carrierSheet = flag();
    s.plasticCard = flag();
    s.edgeCut = {flag(), number(), number(), number(), number(), unit()};
    s.blankPageRemoval.enable = flag();
    s.scanPageCount = number();
    s.quietScan = flag();
    s.multifeedDetect = flag();
    return s;
  }

  QS_SCANNER_CAPABILITY capability() {
    QS_SCANNER_CAPABILITY c;
    fill(c);
    c.generation = static_cast<SCANCMD_GENERATION>(oneOf({1, 2, 1, 2, 0}));
    auto& base = c.baseFunc;
    for (MARGIN* m : {&base.marginSize.flatbed, &base.marginSize.adfSimplex, &base.marginSize.adfDuplex,
                      &base.marginSize.cardslot}) {
      *m = {number(), number(), number(), number(), unit()};
      if (bits() % 4 == 0) *m = {0, 0, 0, 0, m->unit};
    }
    base.paperPosition = {oneOf({0, 1, 2}), oneOf({0, 1, 2}),     oneOf({0, 1, 2}),
                          oneOf({0, 1, 2}), oneOf({0, 1, 2, -1}), oneOf({0, 1, 2, 3})};
    base.errorSystem.feed = {cap(), flag(), flag(), flag()};
    c.imageProcFunc.supportCompresssionType.trueGray.jpeg = flag();
    auto& threshold = c.imageProcFunc.monoThreshold;
    threshold.manuanThresholdCap = cap();
    threshold.manualThresholdLevelMax = oneOf({254, 254, 255, 100, -1});
    threshold.manualThresholdLevelMin = oneOf({1, 1, 0, 100, -1});
    auto& advanced = c.advancedFunc;
    advanced.autoSize.deviceDetectSize.cap = cap();
    advanced.autoSize.deviceDetectSize.detectSystem = flag();
    advanced.autoSize.deviceDetectSize.detectOverScan = flag();
    advanced.carrierSheet.cap = cap();
    advanced.carrierSheet.skipOffsetSystem = oneOf({0, 1, 2});
    advanced.carrierSheet.offsetSizeMm.top = number();
    advanced.multifeedDetect = {cap(), oneOf({0, 1, 2}), number()};
    auto& ground = advanced.backgroundRemove;
    for (SUPPORTADJUSTLEVEL* s : {&ground.blackAndWhite, &ground.errorDiffusion, &ground.trueGray, &ground.color24bit})
      *s = {cap(), bits() % 4 == 0 ? number() : static_cast<std::int32_t>(bits() % 12)};
    advanced.deskew.cap = cap();
    advanced.deskew.systemType[0] = flag();
    advanced.blankRemoval.cap = cap();
    advanced.blankRemoval.levelCap = cap();
    advanced.autoColor.cap = cap();
    return c;
  }

 private:
  CAP cap() { return oneOf({0, 1, 2, 2, 2, 3}); }
  std::uint8_t flag() { return static_cast<std::uint8_t>(oneOf({0, 0, 0, 1, 1, 2, 255})); }
  std::uint8_t rareFlag() { return bits() % 8 == 0 ? flag() : std::uint8_t{0}; }
  template <class Record>
  void fill(Record& record) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&record);
    for (std::size_t i = 0; i < sizeof record; ++i) bytes[i] = static_cast<unsigned char>(bits());
  }

  std::mt19937 random_;
};

}  // namespace orvalle_scan_api
