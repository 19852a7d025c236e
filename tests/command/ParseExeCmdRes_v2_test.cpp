#include "command/ParseExeCmdRes_v2.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;

namespace {

using Bytes = std::vector<unsigned char>;

// The status codes again: fields in wire order (p page, f format, d data, s size, t timer), what the record is, and
// how it is logged.
struct CodeRow {
  int code;
  const char* fields;
  char kind;  // i image, s stop, n info, f failure, t timer, - nothing
  int number;
  int level;
  const char* words;
};
const CodeRow kCodes[] = {
    {0x00, "p", 'i', 0, 2, "white line data"},
    {0x01, "pfd", 'i', 1, 2, "line data"},
    {0x02, "pfd", 'i', 2, 2, "block data"},
    {0x10, "", '-', 0, 0, nullptr},
    {0x11, "ps", 'n', 0, 2, "width and height size info"},
    {0x12, "pf", 'n', 1, 2, "result of color number check info"},
    {0x20, "", 'i', 3, 1, "all page end"},
    {0x21, "p", 'i', 4, 1, "1 page end"},
    {0x22, "p", 'i', 5, 1, "blank 1 page end"},
    {0x23, "p", 'i', 6, 1, "1 page too long end"},
    {0x40, "", 's', 0, 1, "scan stop by cancel command"},
    {0x41, "", 's', 1, 1, "scan stop by stop-key"},
    {0x50, "t", 't', 0, 1, "timer restart"},
    {0x51, "t", 't', 1, 1, "timer extend"},
    {0x71, "ps", 'f', 0, 1, "fail in detect of document size"},
    {0x72, "p", 'f', 1, 1, "fail in color auto check"},
    {0x73, "p", 'f', 2, 1, "fail in remove blank page check"},
    {0x74, "p", 'f', 3, 1, "fail in analize deskew"},
};
const CodeRow* rowOf(int code) {
  for (const CodeRow& row : kCodes) {
    if (row.code == code) return &row;
  }
  return nullptr;
}
bool has(const CodeRow& row, char field) { return std::string(row.fields).find(field) != std::string::npos; }

void put(Bytes& bytes, std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

constexpr int kPage = 0x8201;
constexpr int kFormat = 0x95;
constexpr std::uint32_t kHeight = 0x89ABCDEF;
constexpr std::uint32_t kWidthPx = 0xFEDCBA98;
constexpr std::uint32_t kHeightPx = 0x81828384;
constexpr int kSeconds = 0xC0A1;

Bytes record(const CodeRow& row, const Bytes& data = {1, 2, 3}) {
  Bytes bytes = {0, static_cast<unsigned char>(row.code)};
  for (const char* field = row.fields; *field != 0; ++field) {
    if (*field == 'p') put(bytes, kPage, 2);
    if (*field == 'f') put(bytes, kFormat | 0x7700, 2);
    if (*field == 't') put(bytes, kSeconds, 2);
    if (*field == 's') put(bytes, kWidthPx, 4), put(bytes, kHeightPx, 4);
    if (*field == 'd') {
      put(bytes, static_cast<std::uint32_t>(data.size()), 4);
      put(bytes, kHeight, 4);
      bytes.insert(bytes.end(), data.begin(), data.end());
    }
  }
  return bytes;
}

// One parse over an exact copy, so that a read behind the bytes is found out.
struct Parsed {
  explicit Parsed(const Bytes& source) : size(source.size()), bytes(new unsigned char[source.size()]) {
    std::copy(source.begin(), source.end(), bytes.get());
    value = CParseExeCmdRes_v2().ParseXSCcmdImageDataInfo(bytes.get(), size, &header, &result, &next);
  }
  std::ptrdiff_t nextAt() const { return next - bytes.get(); }
  std::ptrdiff_t dataAt() const { return header.data - bytes.get(); }

  std::size_t size;
  std::unique_ptr<unsigned char[]> bytes;
  IMAGE_HEADER header;
  PARSE_RESULT result;
  unsigned char* next = nullptr;
  int value;
};

Bytes prefix(const Bytes& bytes, std::size_t size) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}

// Everything that a record tells, as one line.
std::string told(const IMAGE_HEADER& h, const PARSE_RESULT& r) {
  std::string text;
  const auto add = [&](const char* name, long long value) { text += name + std::to_string(value) + " "; };
  add("image", r.isImageRecord), add("type", h.dataType), add("dir", h.direction), add("compress", h.compress);
  add("color", h.color), add("page", h.pageNo), add("size", h.dataSize), add("sofar", h.heightSoFar);
  add("w", h.widthPixel), add("h", h.heightPixel), add("stop", r.isStop), add("kind", r.stopKind);
  add("info", r.isInfo), add("kind", r.infoKind), add("fail", r.isFail), add("kind", r.failKind);
  add("timer", r.isTimer), add("kind", r.timerKind), add("seconds", r.timerSeconds);
  add("error", r.isError), add("code", r.errorCode);
  for (std::uint32_t i = 0; i < h.dataSize; ++i) text += std::to_string(h.data[i]) + ",";
  return text;
}

}  // namespace

TEST(ParseExeCmdRes_v2, EveryStatusCodeIsReadAsItsTableSays) {
  for (int code = 0; code < 256; ++code) {
    SCOPED_TRACE(code);
    const CodeRow* row = rowOf(code);
    LogCapture log;
    if (row == nullptr) {
      Bytes bytes(64, 0);
      bytes[1] = static_cast<unsigned char>(code);
      EXPECT_EQ(Parsed(bytes).value, 1);
      EXPECT_EQ(Parsed(prefix(bytes, 2)).value, 1);
      continue;
    }
    const Bytes bytes = record(*row);
    Bytes followed = bytes;
    followed.insert(followed.end(), {0, 0x20});
    for (const Bytes& source : {bytes, followed}) {
      const Parsed parsed(source);
      const auto& [isImage, isStop, stopKind, isInfo, infoKind, isFail, failKind, isTimer, timerKind, seconds, isError,
                   errorCode] = parsed.result;
      EXPECT_EQ(parsed.value, 0);
      EXPECT_EQ(parsed.nextAt(), static_cast<std::ptrdiff_t>(bytes.size()));
      EXPECT_EQ(isImage, row->kind == 'i');
      EXPECT_EQ(isStop, row->kind == 's');
      EXPECT_EQ(isInfo, row->kind == 'n');
      EXPECT_EQ(isFail, row->kind == 'f');
      EXPECT_EQ(isTimer, row->kind == 't');
      EXPECT_FALSE(isError);
      EXPECT_EQ(errorCode, 0);
      EXPECT_EQ(parsed.header.dataType, row->kind == 'i' ? static_cast<std::uint32_t>(row->number) : 0u);
      EXPECT_EQ(stopKind, row->kind == 's' ? row->number : 0);
      EXPECT_EQ(infoKind, row->kind == 'n' ? row->number : 0);
      EXPECT_EQ(failKind, row->kind == 'f' ? row->number : 0);
      EXPECT_EQ(timerKind, row->kind == 't' ? row->number : 0);
      EXPECT_EQ(seconds, row->kind == 't' ? kSeconds : 0);
      EXPECT_EQ(parsed.header.pageNo, has(*row, 'p') ? std::uint32_t{kPage} : 0u);
      EXPECT_EQ(parsed.header.direction, has(*row, 'f') ? 1u : 0u);
      EXPECT_EQ(parsed.header.compress, has(*row, 'f') ? IMAGE_COMPRESS_JPEG : IMAGE_COMPRESS_NONE);
      EXPECT_EQ(parsed.header.color, has(*row, 'f') ? 3 : 0);
      EXPECT_EQ(parsed.header.dataSize, has(*row, 'd') ? 3u : 0u);
      EXPECT_EQ(parsed.header.heightSoFar, has(*row, 'd') ? kHeight : 0u);
      EXPECT_EQ(parsed.header.widthPixel, has(*row, 's') ? kWidthPx : 0u);
      EXPECT_EQ(parsed.header.heightPixel, has(*row, 's') ? kHeightPx : 0u);
      EXPECT_EQ(parsed.dataAt(), has(*row, 'd') ? 14 : 0);
    }
    if (row->words == nullptr) {
      EXPECT_TRUE(log.lines.empty()) << log.all();
    } else {
      char line[200];
      std::snprintf(line, sizeof line, "%sXSC Status Code = 0x%02x : Status is [ %s ]", code >= 0x70 ? "Error: " : "",
                    static_cast<unsigned>(code), row->words);
      EXPECT_EQ(log.lines, std::vector<LogLine>(2, LogLine{row->level, line})) << log.all();
    }
  }
}

TEST(ParseExeCmdRes_v2, EveryFormatByteGivesDirectionCompressionAndColour) {
  for (int format = 0; format < 256; ++format) {
    SCOPED_TRACE(format);
    const bool bit3 = (format & 8) != 0, bit4 = (format & 16) != 0;
    const int compress = bit3 && !bit4 ? 1 : bit4 && !bit3 ? 2 : 0;
    const int low = format % 8;
    const int color = low == 1 ? 1 : low == 4 ? 2 : low == 5 ? 3 : 0;
    const auto byte = static_cast<unsigned char>(format);
    EXPECT_EQ(CParseExeCmdRes_v2::GetImageDirectionType(byte), format >= 128 ? 1u : 0u);
    EXPECT_EQ(CParseExeCmdRes_v2::GetImageCompressType(byte), compress);
    EXPECT_EQ(CParseExeCmdRes_v2::GetImageColorType(byte), color);
    for (const unsigned char second : Bytes{0x00, 0xFF}) {
      const Parsed parsed({0, 0x12, 1, 0, byte, second});
      EXPECT_EQ(parsed.value, 0);
      EXPECT_EQ(parsed.header.direction, format >= 128 ? 1u : 0u);
      EXPECT_EQ(parsed.header.compress, compress);
      EXPECT_EQ(parsed.header.color, color);
    }
  }
}

TEST(ParseExeCmdRes_v2, EveryProperPrefixOfARecordIsTooFewBytes) {
  for (const CodeRow& row : kCodes) {
    SCOPED_TRACE(row.code);
    const Bytes bytes = record(row, Bytes(300, 0xAA));
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      LogCapture log;
      ASSERT_EQ(Parsed(prefix(bytes, size)).value, 2) << size;
      ASSERT_TRUE(log.has(1, "Response Data is not enough")) << size << "\n" << log.all();
    }
    EXPECT_EQ(Parsed(bytes).value, 0);
  }
}

TEST(ParseExeCmdRes_v2, EveryNonZeroResultByteIsAnErrorOfTwoBytes) {
  for (int code = 1; code < 256; ++code) {
    SCOPED_TRACE(code);
    for (const unsigned char second : Bytes{0x00, 0x01, 0x20, 0x30, 0xFF}) {
      LogCapture log;
      const Parsed parsed({static_cast<unsigned char>(code), second, 0, 0, 0});
      EXPECT_EQ(parsed.value, 0);
      EXPECT_EQ(parsed.nextAt(), 2);
      EXPECT_EQ(parsed.dataAt(), 0);
      IMAGE_HEADER header{};
      PARSE_RESULT result{};
      result.isError = true;
      result.errorCode = static_cast<std::uint8_t>(code);
      EXPECT_EQ(told(parsed.header, parsed.result), told(header, result));
      char line[64];
      std::snprintf(line, sizeof line, "Error: Result Code = 0x%02x", static_cast<unsigned>(code));
      ASSERT_EQ(log.lines.size(), 1u) << log.all();
      EXPECT_EQ(log.lines[0].text, line);
    }
  }
}

TEST(ParseExeCmdRes_v2, AnErrorByteAtTheEndMovesOneBytePastTheBuffer) {
  const Parsed parsed({0x01});
  EXPECT_EQ(parsed.value, 0);
  EXPECT_TRUE(parsed.result.isError);
  EXPECT_EQ(parsed.result.errorCode, 1);
  EXPECT_EQ(parsed.nextAt(), 2);
}

TEST(ParseExeCmdRes_v2, NoBytesAreTooFew) { EXPECT_EQ(Parsed({}).value, 2); }

TEST(ParseExeCmdRes_v2, NullArgumentsAreRefused) {
  unsigned char bytes[] = {0, 0x20};
  IMAGE_HEADER header;
  PARSE_RESULT result;
  unsigned char* next = nullptr;
  CParseExeCmdRes_v2 parser;
  EXPECT_EQ(parser.ParseXSCcmdImageDataInfo(nullptr, 2, &header, &result, &next), 1);
  EXPECT_EQ(parser.ParseXSCcmdImageDataInfo(bytes, 2, nullptr, &result, &next), 1);
  EXPECT_EQ(parser.ParseXSCcmdImageDataInfo(bytes, 2, &header, nullptr, &next), 1);
}

TEST(ParseExeCmdRes_v2, WhatTheRecordsHeldBeforeIsCleared) {
  unsigned char bytes[] = {0, 0x10};
  IMAGE_HEADER header;
  PARSE_RESULT result;
  std::memset(&header, 0xEE, sizeof header);
  std::memset(static_cast<void*>(&result), 1, sizeof result);
  unsigned char* next = nullptr;
  EXPECT_EQ(CParseExeCmdRes_v2().ParseXSCcmdImageDataInfo(bytes, 2, &header, &result, &next), 0);
  EXPECT_EQ(told(header, result), told(IMAGE_HEADER{}, PARSE_RESULT{}));
  EXPECT_EQ(header.data, bytes);
  EXPECT_EQ(next, bytes + 2);
}

TEST(ParseExeCmdRes_v2, ADataSizeIsComparedAsUnsigned) {
  for (const std::uint32_t claimed : {4u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF8u, 0xFFFFFFFFu}) {
    for (const unsigned char code : Bytes{0x01, 0x02}) {
      Bytes bytes = {0, code, 1, 0, 0x15, 0};
      put(bytes, claimed, 4);
      put(bytes, 9, 4);
      bytes.insert(bytes.end(), {1, 2, 3});
      EXPECT_EQ(Parsed(bytes).value, 2) << claimed;
    }
  }
}

TEST(ParseExeCmdRes_v2, ADataRecordMayBeEmpty) {
  const Parsed parsed(record(kCodes[2], {}));
  EXPECT_EQ(parsed.value, 0);
  EXPECT_EQ(parsed.header.dataSize, 0u);
  EXPECT_EQ(parsed.nextAt(), 14);
}

TEST(ParseExeCmdRes_v2, TheDataStaysWhereItIs) {
  const Parsed parsed(record(kCodes[2], Bytes(5000, 0x5A)));
  EXPECT_EQ(parsed.header.data, parsed.bytes.get() + 14);
  EXPECT_EQ(parsed.header.dataSize, 5000u);
}

// The caller's way with the stream: it keeps what lies behind the last whole record.
TEST(ParseExeCmdRes_v2, AStreamSplitAnywhereGivesTheSameRecords) {
  Bytes stream;
  for (const CodeRow& row : kCodes) {
    const Bytes one = record(row, Bytes(static_cast<std::size_t>(row.code) * 3, static_cast<unsigned char>(row.code)));
    stream.insert(stream.end(), one.begin(), one.end());
  }
  stream.insert(stream.end(), {0x92, 0x00, 0x00, 0x20});
  const auto recordsOf = [&](const std::vector<std::size_t>& cuts) {
    std::vector<std::string> records;
    Bytes kept;
    std::size_t at = 0;
    for (const std::size_t cut : cuts) {
      kept.insert(kept.end(), stream.begin() + static_cast<std::ptrdiff_t>(at),
                  stream.begin() + static_cast<std::ptrdiff_t>(cut));
      at = cut;
      for (;;) {
        const Parsed parsed(kept);
        if (parsed.value != 0) {
          EXPECT_EQ(parsed.value, 2);
          break;
        }
        records.push_back(told(parsed.header, parsed.result));
        if (static_cast<std::size_t>(parsed.nextAt()) >= kept.size()) {
          // An error record may end one byte behind what has come; that byte is then still to be passed over.
          at += static_cast<std::size_t>(parsed.nextAt()) - kept.size();
          kept.clear();
          break;
        }
        kept.erase(kept.begin(), kept.begin() + parsed.nextAt());
      }
    }
    EXPECT_TRUE(kept.empty());
    return records;
  };
  const std::vector<std::string> whole = recordsOf({stream.size()});
  ASSERT_EQ(whole.size(), std::size(kCodes) + 2);
  for (std::size_t first = 1; first < stream.size(); ++first) {
    ASSERT_EQ(recordsOf({first, stream.size()}), whole) << first;
  }
  std::mt19937 random(11);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::size_t> cuts;
    for (std::size_t at = 2; at < stream.size(); at += 2 + random() % 40) cuts.push_back(at);
    cuts.push_back(stream.size());
    ASSERT_EQ(recordsOf(cuts), whole) << round;
  }
}

TEST(ParseExeCmdRes_v2, RandomBytesNeverLeadOutOfTheBuffer) {
  std::mt19937 random(5);
  int complete = 0;
  for (int round = 0; round < 50000; ++round) {
    Bytes bytes(random() % 40);
    for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random() % 4 == 0 ? random() : random() % 3);
    const Parsed parsed(bytes);
    ASSERT_TRUE(parsed.value >= 0 && parsed.value <= 2);
    if (parsed.value != 0) continue;
    ++complete;
    const auto size = static_cast<std::ptrdiff_t>(bytes.size());
    ASSERT_GE(parsed.nextAt(), 2);
    ASSERT_LE(parsed.nextAt(), parsed.result.isError ? size + 1 : size);
    ASSERT_GE(parsed.dataAt(), 0);
    ASSERT_LE(parsed.dataAt() + static_cast<std::ptrdiff_t>(parsed.header.dataSize), size);
  }
  EXPECT_GT(complete, 1000);
}
