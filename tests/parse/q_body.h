// Q bodies of the first generation, spelled byte by byte: the layout and the defaults stand here a second time.
#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "parse/ParseCmdRes_v1.h"

struct QField {
  int offset;
  int bytes;
  int byDefault;
};
inline constexpr QField kQFields[] = {
    {0, 1, 11},    {1, 1, 0},     {2, 1, 31},    {3, 2, 0},     {5, 2, 0},     {7, 2, 0},     {9, 2, 0},
    {11, 1, 4},    {12, 1, 1},    {13, 1, 1},    {14, 1, 1},    {15, 1, 2},    {16, 1, 1},    {17, 1, 8},
    {18, 1, 0},    {19, 1, 0},    {20, 1, 0},    {21, 4, 0},    {25, 1, 1},    {26, 1, 1},    {27, 2, 2100},
    {29, 2, 3496}, {31, 2, 2100}, {33, 2, 3496}, {35, 2, 2100}, {37, 2, 3496}, {39, 2, 1440}, {41, 2, 1440},
    {43, 2, 1440}, {45, 2, 1440}, {47, 2, 30},   {49, 2, 30},   {51, 1, 0},    {52, 1, 2},    {53, 1, 1},
    {54, 2, 1200}, {56, 2, 2400}, {58, 2, 1200}, {60, 2, 2400}, {62, 2, 1200}, {64, 2, 2400}, {66, 1, 15},
    {67, 2, 50},   {69, 3, 0},    {72, 1, 0},
};

// The offsets that tests change.
namespace q {
inline constexpr int kVersion = 0, kColorType = 2, kFlatbedPosition = 13, kAdfPosition = 15, kScanFunc = 17;
inline constexpr int kLongPaper = 18, kMultifeed = 19, kCarrierSheet = 20, kRemoveBackground = 26;
inline constexpr int kFlatbedMax = 27, kAdfMax = 31, kDuplexMax = 35, kAdfMin = 39, kDuplexMin = 43;
inline constexpr int kMarginX = 47, kMarginY = 49, kLandscape = 51, kCardPosition = 52;
inline constexpr int kFlatbedOptical = 54, kAdfOptical = 58, kDuplexOptical = 62, kStackCapacity = 67;
}  // namespace q

using QBytes = std::vector<unsigned char>;

// All 73 bytes, holding the defaults, with some of them changed.
class QBody {
 public:
  QBody() : bytes(73) {
    for (const QField& field : kQFields) {
      if (field.bytes == 1) {
        set8(field.offset, field.byDefault);
      } else {
        set16(field.offset, field.byDefault);
      }
    }
  }
  QBody& set8(int offset, int value) {
    bytes[static_cast<std::size_t>(offset)] = static_cast<unsigned char>(value);
    return *this;
  }
  QBody& set16(int offset, int value) { return set8(offset, value & 0xFF).set8(offset + 1, value >> 8); }
  // A pair of words.
  QBody& setXY(int offset, int x, int y) { return set16(offset, x).set16(offset + 2, y); }

  QBytes bytes;
};

// An exact copy, so that a read behind the body is found out.
inline std::unique_ptr<unsigned char[]> exactCopy(const QBytes& bytes) {
  std::unique_ptr<unsigned char[]> copy(new unsigned char[bytes.size()]);
  std::copy(bytes.begin(), bytes.end(), copy.get());
  return copy;
}

inline orvalle_scan_api::QS_SCANNER_CAPABILITY parseQ(const QBytes& bytes) {
  const auto copy = exactCopy(bytes);
  return orvalle_scan_api::CParseCmdRes_v1().ParseDeviceInfoResponse(copy.get(), static_cast<long>(bytes.size()));
}
