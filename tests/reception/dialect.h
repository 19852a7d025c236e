// What both generations can say of a page, in the words of each, so that one test holds for both.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "include/scan_types.h"
#include "tests/reception/scan_pictures.h"
#include "tests/reception/stream_records_v1.h"

namespace reception_test {

class Dialect {
 public:
  explicit constexpr Dialect(orvalle_scan_api::SCANCMD_GENERATION generation) : generation_(generation) {}

  orvalle_scan_api::SCANCMD_GENERATION generation() const { return generation_; }
  bool isFirst() const { return generation_ == orvalle_scan_api::SCANCMD_GENERATION_1ST; }
  std::string name() const { return isFirst() ? "FirstGeneration" : "SecondGeneration"; }

  // Commands: what sets the scan up, what starts it, what stops it.
  std::string settingsMnemonic() const { return isFirst() ? "I" : "SSP"; }
  std::string startMnemonic() const { return isFirst() ? "X" : "XSC"; }
  std::string abortMnemonic() const { return isFirst() ? "R" : "ABT"; }
  ByteString settingsAnswer(unsigned dpiX, unsigned dpiY) const {
    return isFirst() ? fakes::iAnswer(dpiX, dpiY) : fakes::sspAnswer(dpiX, dpiY);
  }

  // Lines of a picture of that depth, and a piece of a JPEG of which heightPx lines have come by now.
  ByteString rawLine(int bits, unsigned pageNo, const ByteString& bytes) const {
    return isFirst() ? v1::line(header(bits), static_cast<int>(pageNo), bytes) : line(pageNo, format(bits), bytes);
  }
  ByteString packedLine(int bits, unsigned pageNo, const ByteString& bytes) const {
    const ByteString packed = packBits(bytes);
    return isFirst() ? v1::line(header(bits) | v1::kPackBits, static_cast<int>(pageNo), packed)
                     : line(pageNo, format(bits) | kPackBits, packed);
  }
  ByteString jpegBlock(int bits, unsigned pageNo, const ByteString& bytes, std::uint32_t heightPx) const {
    return isFirst() ? v1::line(v1::kJpeg, static_cast<int>(pageNo), bytes)
                     : block(pageNo, format(bits) | kJpeg, bytes, heightPx);
  }
  ByteString rawLines(const Picture& picture, unsigned pageNo = 1) const {
    ByteString records;
    for (const ByteString& bytes : picture.lines) records += rawLine(picture.bits, pageNo, bytes);
    return records;
  }
  ByteString packedLines(const Picture& picture, unsigned pageNo = 1) const {
    ByteString records;
    for (const ByteString& bytes : picture.lines) records += packedLine(picture.bits, pageNo, bytes);
    return records;
  }

  ByteString pageEnd(unsigned pageNo) const {
    return isFirst() ? v1::pageEnd(static_cast<int>(pageNo)) : reception_test::pageEnd(pageNo);
  }
  ByteString allPagesEnd() const { return isFirst() ? v1::allPagesEnd() : reception_test::allPagesEnd(); }
  // The scan was stopped at the device.
  ByteString stoppedByKey() const { return isFirst() ? v1::status(0x86) : reception_test::stoppedByKey(); }
  // Errors of the device, which reach the caller as 0x50000001 and 0x50000002.
  ByteString deviceError(std::uint8_t code) const {
    return isFirst() ? v1::status(code) : reception_test::deviceError(code);
  }
  ByteString feederEmpty() const { return deviceError(isFirst() ? 0xC2 : 0x90); }
  ByteString jam() const { return deviceError(isFirst() ? 0xC3 : 0x91); }

 private:
  static std::uint8_t header(int bits) { return bits == 24 ? v1::kColor : bits == 8 ? v1::kGray : v1::kMono; }
  static std::uint8_t format(int bits) { return bits == 24 ? kColor : bits == 8 ? kGray : kMono; }

  orvalle_scan_api::SCANCMD_GENERATION generation_;
};

inline constexpr Dialect kFirstGeneration{orvalle_scan_api::SCANCMD_GENERATION_1ST};
inline constexpr Dialect kSecondGeneration{orvalle_scan_api::SCANCMD_GENERATION_2ND};
inline constexpr Dialect kGenerations[] = {kFirstGeneration, kSecondGeneration};

// For tests that run once for each.
class BothGenerations : public testing::TestWithParam<Dialect> {};
inline void PrintTo(const Dialect& dialect, std::ostream* out) { *out << dialect.name(); }
inline std::string nameOfGeneration(const testing::TestParamInfo<Dialect>& info) { return info.param.name(); }

}  // namespace reception_test
