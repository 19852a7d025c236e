// The plain types that every record of the boundary is built from.
//
// All records are plain structures with natural alignment and no constructors, copied by value. Integers are in host
// byte order. Zero is the neutral value: a record that is cleared and then filled is well formed.
#pragma once

#include <cstdint>

namespace orvalle_scan_api {

// Result of an operation: 0 is success; see result_codes.h.
using QSRSLT = std::uint32_t;

// A yes-or-no byte that a host fills. 0 is no. Declared as a byte, not as bool, so that a host written in another
// language cannot put a value into it that C++ has no meaning for; any other value than 0 is yes.
using QSBOOL = std::uint8_t;

// Unit of a length. A device millimetre on the wire is 1/10 mm, a driver millimetre is 1/100 mm.
enum UNITTYPE : std::int32_t {
  UNIT_INCH = 0,        // 1/1000 inch
  UNIT_MILLIMETER = 1,  // 1/100 mm
  UNIT_PIXEL = 2,       // one pixel at the resolution in question
};

enum COLORTYPE : std::int32_t {
  COLORTYPE_AUTO = 0,            // 24 bits per pixel
  COLORTYPE_BLACKANDWHITE = 1,   // 1
  COLORTYPE_ERRORDIFFUSION = 2,  // 1
  COLORTYPE_TRUEGRAY = 3,        // 8
  COLORTYPE_COLOR256 = 4,        // 8
  COLORTYPE_COLOR24BIT = 5,      // 24
};

enum PAPERSOURCESELECT : std::int32_t {
  PAPERSOURCE_FLATBED = 1,  // any other value acts as this where a choice by source is made
  PAPERSOURCE_ADF = 2,      // automatic document feeder
  PAPERSOURCE_CARDSLOT = 3,
};

// Any non-zero value means both sides.
enum DUPLEXTYPE : std::int32_t {
  DUPLEXTYPE_SIMPLEX = 0,
  DUPLEXTYPE_LONG_EDGE = 1,   // bound on the long edge: the back stands upright as it is
  DUPLEXTYPE_SHORT_EDGE = 2,  // bound on the short edge: even pages are turned by 180 degrees
};

// Paper by name. Sizes are those of the paper table; 25 is not a paper.
enum PAPERTYPE : std::int32_t {
  PAPERTYPE_AUTO = 0,  // the device detects the size
  PAPERTYPE_A4 = 1,
  PAPERTYPE_LETTER = 2,
  PAPERTYPE_LEGAL = 3,
  PAPERTYPE_A3 = 4,
  PAPERTYPE_LEDGER = 5,
  PAPERTYPE_JISB4 = 6,
  PAPERTYPE_JISB5 = 7,
  PAPERTYPE_A5 = 8,
  PAPERTYPE_JISB6 = 9,
  PAPERTYPE_A6 = 10,
  PAPERTYPE_EXECUTIVE = 11,
  PAPERTYPE_PHOTO = 12,      // 4 by 6 inches
  PAPERTYPE_INDEXCARD = 13,  // 5 by 8 inches
  PAPERTYPE_PHOTOL = 14,     // 3.503 by 5 inches
  PAPERTYPE_PHOTO2L = 15,    // 5 by 7 inches
  PAPERTYPE_POSTCARD = 16,   // 100 by 148 mm
  PAPERTYPE_POSTCARD2 = 17,  // 148 by 200 mm
  PAPERTYPE_BCARD = 18,      // 90 by 60 mm; turned where the source is not the flatbed
  PAPERTYPE_BCARDV = 19,     // 60 by 90 mm
  PAPERTYPE_FOLIO = 20,
  PAPERTYPE_8_5X13_38 = 21,    // 8.5 by 13.38 inches
  PAPERTYPE_215X345 = 22,      // 215 by 345 mm
  PAPERTYPE_LONG_NARROW = 23,  // long paper, 4.25 inches wide
  PAPERTYPE_LONG = 24,         // long paper, 8.5 inches wide
  PAPERTYPE_CUSTOM = 26,       // customPaperSize holds the size
};

// Command generation of a device.
enum SCANCMD_GENERATION : std::int32_t {
  SCANCMD_GENERATION_UNKNOWN = 0,
  SCANCMD_GENERATION_1ST = 1,
  SCANCMD_GENERATION_2ND = 2,
};

// State of the next page, as GetScanStatus tells it.
enum SCANAPISTATUS : std::int32_t {
  READY = 0,         // no scan is running, or its thread has ended
  RECEIVING = 1,     // the next page is still on its way
  XFERREADY = 2,     // call ReadImageData: it delivers the next page, or the failure that belongs to it
  ALLEND = 3,        // every page has been transferred
  XFERCANCELED = 4,  // the scan was cancelled
};

// Why the enhancement of a page ended early.
enum IMAGEENHACETERMINATEREASON : std::int32_t {
  IMAGEENHANCE_NOT_TERMINATED = 0,
  IMAGEENHANCE_FAILED = 1,
  IMAGEENHANCE_STOPPED = 2,  // the enhancement stopped with 0x10701002
};

// A size, or a resolution in dots per inch. x is the main scan direction (width), y the feed direction.
struct AXIS {
  std::uint32_t x;
  std::uint32_t y;
};
static_assert(sizeof(AXIS) == 8);

// A position, which can be negative.
struct AXIS_SIGNED {
  std::int32_t x;
  std::int32_t y;
};
static_assert(sizeof(AXIS_SIGNED) == 8);

struct tagRECT {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16);

// A rectangle with its unit. Where only a size is meant, right and bottom carry it and left and top are 0.
struct SCANAREA {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
  UNITTYPE unit;
};
static_assert(sizeof(SCANAREA) == 20);

// A margin. Mind the order of the fields: it is not that of SCANAREA.
struct MARGIN {
  std::int32_t left;
  std::int32_t right;
  std::int32_t top;
  std::int32_t bottom;
  UNITTYPE unit;
};
static_assert(sizeof(MARGIN) == 20);

}  // namespace orvalle_scan_api
