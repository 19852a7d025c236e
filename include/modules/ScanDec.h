// What the core requires of QsScanDecode.so, which turns received lines into lines of the page's depth.
//
// The module exports `extern "C" IScanDec* CreateInstance()`. Lines come top line first and leave top line first, never
// padded: (width * bits + 7) / 8 bytes. A set mono bit is white.
// Threads: one caller at a time, the line-decode worker; one Open to Close cycle serves one page.
#pragma once

#include <cstddef>
#include <type_traits>

#include "../scan_types.h"

namespace orvalle_scan_api {

// Data kind of a line.
inline constexpr std::int32_t kLineKindMono = 1;
inline constexpr std::int32_t kLineKindRed = 2;
inline constexpr std::int32_t kLineKindGreen = 3;
inline constexpr std::int32_t kLineKindBlue = 4;
inline constexpr std::int32_t kLineKindRgb = 5;  // R,G,B triples
inline constexpr std::int32_t kLineKindBgr = 6;  // B,G,R triples
inline constexpr std::int32_t kLineKindGray = 7;

// Compress code of a line or of a page.
inline constexpr std::int32_t kCompressNone = 2;
inline constexpr std::int32_t kCompressPackBits = 3;
inline constexpr std::int32_t kCompressJpeg = 5;

struct SCANDEC_OPEN {
  std::int32_t reservedFirst;  // 0
  std::int32_t nPageNum;       // always 1
  std::int32_t nInResoX;       // dots per inch; the output equals the input
  std::int32_t nInResoY;
  std::int32_t nOutResoX;
  std::int32_t nOutResoY;
  std::int32_t nColorType;  // 0x101, 0x102 one bit out; 0x208, 0x210 eight; 0x420 twenty-four
  std::size_t dwInLinePixCnt;
  std::size_t dwInHeightPixCnt;
  std::int32_t reservedOne;  // 1
  std::size_t reservedWord;  // 0
  std::uint8_t reservedByte;
  std::int32_t nBrightness;  // the device has already applied both
  std::int32_t nContrast;
  std::uint8_t reservedByte2;
  std::size_t dwOutLineByteCnt;  // bytes of one output line
  std::size_t reservedWord2;     // 0
  const char* reservedText;      // an empty text
  std::size_t dwWriteBuffSize;   // written by the decoder: bytes that the output buffer of one Write must hold
};
static_assert(std::is_standard_layout_v<SCANDEC_OPEN> && std::is_trivially_copyable_v<SCANDEC_OPEN>);
static_assert(offsetof(SCANDEC_OPEN, nColorType) == 24 && offsetof(SCANDEC_OPEN, dwInLinePixCnt) == 32);
static_assert(offsetof(SCANDEC_OPEN, nBrightness) == 68 && offsetof(SCANDEC_OPEN, dwOutLineByteCnt) == 80);
static_assert(offsetof(SCANDEC_OPEN, dwWriteBuffSize) == 104 && sizeof(SCANDEC_OPEN) == 112);

struct SCANDEC_WRITE {
  std::int32_t nInDataComp;       // compress code
  std::int32_t nInDataKind;       // data kind
  const std::uint8_t* pLineData;  // the input line; owned by the core
  std::size_t inSize;             // bytes at pLineData
  std::uint8_t* pWriteBuff;       // output lines go here; owned by the core, another place in each call
  std::size_t writeBuffSize;
  std::uint8_t reservedFlag;
  std::uint8_t reservedFlag2;
};
static_assert(std::is_standard_layout_v<SCANDEC_WRITE> && std::is_trivially_copyable_v<SCANDEC_WRITE>);
static_assert(offsetof(SCANDEC_WRITE, pWriteBuff) == 24 && sizeof(SCANDEC_WRITE) == 48);

class IScanDec {
 public:
  virtual ~IScanDec() = default;

  // Called with 0 at the start of a page. 1 is success.
  virtual unsigned char Open(int mode) = 0;

  // Takes the page's format and completes dwWriteBuffSize. 1 is success.
  virtual unsigned char SetOpenParam(SCANDEC_OPEN* param) = 0;

  // Consumes one line. Finished lines go to the output buffer; *outLines and *outBytes tell what it now holds, with
  // *outBytes = *outLines * dwOutLineByteCnt. 0 lines means that more input is needed. Negative means failure.
  virtual int Write(SCANDEC_WRITE* param, int* outLines, int* outBytes) = 0;

  // Flushes; 0 lines if there is nothing left.
  virtual int PageEnd(SCANDEC_WRITE* param, int* outLines, int* outBytes) = 0;

  virtual void Close() = 0;
};

}  // namespace orvalle_scan_api
