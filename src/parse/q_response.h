// A Q body as the reader leaves it: the device's values unchanged, in the order of the wire, without gaps.
#pragma once

#include <cstdint>

namespace orvalle_scan_api {

// Lengths are 1/10 mm, resolutions dots per inch.
struct __attribute__((packed)) QCMDRESPONSE {
  std::uint8_t version;            //  0  command version
  std::uint8_t kept1;              //  1
  std::uint8_t colorType;          //  2  bits: black and white, error diffusion, grey, 256 colours, 24 bits
  std::uint16_t kept3;             //  3
  std::uint16_t kept5;             //  5
  std::uint16_t kept7;             //  7
  std::uint16_t kept9;             //  9
  std::uint8_t kept11;             // 11
  std::uint8_t kept12;             // 12
  std::uint8_t flatbedPositionX;   // 13
  std::uint8_t flatbedPositionY;   // 14
  std::uint8_t adfPositionX;       // 15
  std::uint8_t adfPositionY;       // 16
  std::uint8_t scanFunc;           // 17  bits: edges, document size, corners, feeder deskew, flatbed deskew
  std::uint8_t longPaper;          // 18  0 none, 1 long paper, others support without a length
  std::uint8_t multifeed;          // 19  non-zero: detection
  std::uint8_t carrierSheet;       // 20  bit 0
  std::uint32_t kept21;            // 21
  std::uint8_t kept25;             // 25
  std::uint8_t removeBackground;   // 26  non-zero: removal
  std::uint16_t flatbedMaxX;       // 27  non-zero: the device has a flatbed
  std::uint16_t flatbedMaxY;       // 29
  std::uint16_t adfMaxX;           // 31  non-zero: the device has a feeder
  std::uint16_t adfMaxY;           // 33
  std::uint16_t duplexMaxX;        // 35  non-zero: the feeder scans both sides
  std::uint16_t duplexMaxY;        // 37
  std::uint16_t adfMinX;           // 39
  std::uint16_t adfMinY;           // 41
  std::uint16_t duplexMinX;        // 43
  std::uint16_t duplexMinY;        // 45
  std::uint16_t marginX;           // 47  left and right, every source
  std::uint16_t marginY;           // 49  top and bottom, every source
  std::uint8_t landscape;          // 51  non-zero: in the feeder
  std::uint8_t cardPositionX;      // 52
  std::uint8_t cardPositionY;      // 53
  std::uint16_t flatbedOpticalX;   // 54
  std::uint16_t flatbedOpticalY;   // 56
  std::uint16_t adfOpticalX;       // 58
  std::uint16_t adfOpticalY;       // 60
  std::uint16_t duplexOpticalX;    // 62
  std::uint16_t duplexOpticalY;    // 64
  std::uint8_t kept66;             // 66
  std::uint16_t adfStackCapacity;  // 67  sheets
  std::uint8_t kept69[3];          // 69
  std::uint8_t kept72;             // 72

  bool hasFlatbed() const { return flatbedMaxX != 0; }
  bool hasFeeder() const { return adfMaxX != 0; }
  bool scansBothSides() const { return duplexMaxX != 0; }
};
static_assert(sizeof(QCMDRESPONSE) == 73);

}  // namespace orvalle_scan_api
