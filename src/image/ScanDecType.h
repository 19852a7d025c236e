// What data kinds and compress codes mean.
#pragma once

#include <cstdint>

#include "modules/ScanDec.h"

namespace orvalle_scan_api {

class CScanDecType {
 public:
  static bool IsNonCompress(std::uint32_t code) { return code == kCompressNone; }
  static bool IsPackBitsCompress(std::uint32_t code) { return code == kCompressPackBits; }
  static bool IsJpegCompress(std::uint32_t code) { return code == kCompressJpeg; }

  // 0 for a kind outside 1 to 7.
  static int GetBppFromDataType(std::uint32_t kind) {
    constexpr int kBits[] = {1, 24, 24, 24, 24, 24, 8};
    return kind >= 1 && kind <= 7 ? kBits[kind - 1] : 0;
  }
};

}  // namespace orvalle_scan_api
