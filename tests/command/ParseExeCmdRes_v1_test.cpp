#include "command/ParseExeCmdRes_v1.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace orvalle_scan_api;
using namespace std::string_literals;

namespace {

using Bytes = std::vector<unsigned char>;

void put(Bytes& bytes, std::uint32_t value, int width) {
  for (int i = 0; i < width; ++i) bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

constexpr int kPage = 0x0201;
constexpr std::uint32_t kHeight = 0x89ABCDEF;

// Header and added information of N bytes; what lies behind the height is 0xEE.
Bytes added(int header, int n, int marker = 0x85) {
  Bytes bytes = {static_cast<unsigned char>(header)};
  put(bytes, static_cast<std::uint32_t>(n), 2);
  put(bytes, kPage, 2);
  bytes.push_back(static_cast<unsigned char>(marker));
  if (n >= 7) put(bytes, kHeight, 4);
  while (static_cast<int>(bytes.size()) < n + 3) bytes.push_back(0xEE);
  return bytes;
}
Bytes line(int header, int n, const Bytes& data, int marker = 0x85) {
  Bytes bytes = added(header, n, marker);
  put(bytes, static_cast<std::uint32_t>(data.size()), 2);
  bytes.insert(bytes.end(), data.begin(), data.end());
  return bytes;
}
Bytes pattern(std::size_t size) {
  Bytes bytes;
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(i * 7 + i / 256 + 1));
  return bytes;
}
Bytes prefix(const Bytes& bytes, std::size_t size) {
  return Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}
Bytes followed(Bytes bytes) {
  bytes.push_back(0x80);
  return bytes;
}
Bytes patched(Bytes bytes, std::size_t at, std::uint32_t value) {
  bytes[at] = static_cast<unsigned char>(value);
  bytes[at + 1] = static_cast<unsigned char>(value >> 8);
  return bytes;
}

// One parse over an exact copy, so that a read behind the bytes is found out.
struct Parsed {
  explicit Parsed(const Bytes& source) : bytes(new unsigned char[source.size()]) {
    std::copy(source.begin(), source.end(), bytes.get());
    std::memset(static_cast<void*>(&info), 0x01, sizeof info);
    value = CParseExeCmdRes_v1().ParseXcmdImageDataInfo(bytes.get(), source.size(), &info);
  }
  // -1: the record is the last.
  std::ptrdiff_t nextAt() const { return info.next == nullptr ? -1 : info.next - bytes.get(); }
  std::ptrdiff_t dataAt() const {
    return info.lineData.lineBytes == nullptr ? -1 : info.lineData.lineBytes - bytes.get();
  }

  std::unique_ptr<unsigned char[]> bytes;
  SCANIMAGEINFO info;
  int value;
};

// Everything that a record tells, as one line.
std::string told(const SCANIMAGEINFO& info) {
  std::string text;
  const auto add = [&](const char* name, long long value) { text += name + std::to_string(value) + " "; };
  const LINEDATA& l = info.lineData;
  add("incomplete", info.isIncomplete), add("kind", info.recordKind), add("status", info.statusCode);
  add("white", l.isWhiteLine), add("type", l.dataType), add("compress", l.compressType), add("page", l.pageNo);
  add("reserved", l.reserved), add("marker", l.markerIs85), add("height", l.heightPixel), add("size", l.lineSize);
  for (std::uint32_t i = 0; !info.isIncomplete && i < l.lineSize; ++i) text += std::to_string(l.lineBytes[i]) + ",";
  return text;
}

bool carriesAddedInfo(int header) { return header < 0x80 || header == 0x82 || header == 0x87; }
// A whole record with this header.
Bytes record(int header, int n = 3, const Bytes& data = {1, 2, 3}) {
  if (!carriesAddedInfo(header)) return {static_cast<unsigned char>(header)};
  return header >= 0x40 && header < 0x80 ? line(header, n, data) : added(header, n);
}

}  // namespace

TEST(ParseExeCmdRes_v1, EveryHeaderByteIsReadAsItsBitsSay) {
  // By the mask 0x1C.
  const std::uint32_t kTypes[] = {1, 2, 3, 4, 5, 6, 1, 7};
  for (int header = 0; header < 256; ++header) {
    for (const int n : {3, 7, 20}) {
      SCOPED_TRACE(std::to_string(header) + " " + std::to_string(n));
      const bool status = header >= 0x80, white = header < 0x40, withLine = !status && !white;
      const bool jpeg = withLine && (header & 0x20) != 0;
      const Bytes bytes = record(header, n);
      for (const bool last : {true, false}) {
        const Parsed parsed(last ? bytes : followed(bytes));
        const LINEDATA& l = parsed.info.lineData;
        EXPECT_EQ(parsed.value, 0);
        EXPECT_FALSE(parsed.info.isIncomplete);
        EXPECT_EQ(parsed.info.recordKind, withLine ? 1u : 0u);
        EXPECT_EQ(parsed.info.statusCode, status ? header : 0);
        EXPECT_EQ(parsed.nextAt(), last ? -1 : static_cast<std::ptrdiff_t>(bytes.size()));
        EXPECT_EQ(l.isWhiteLine, white);
        EXPECT_EQ(l.dataType, !withLine ? 0u : jpeg ? 5u : kTypes[header / 4 % 8]);
        EXPECT_EQ(l.compressType, !withLine ? 0u : jpeg ? 5u : header % 4 == 2 ? 3u : 2u);
        EXPECT_EQ(l.pageNo, carriesAddedInfo(header) ? kPage : 0);
        EXPECT_FALSE(l.reserved);
        EXPECT_EQ(l.markerIs85, carriesAddedInfo(header));
        EXPECT_EQ(l.heightPixel, carriesAddedInfo(header) && n >= 7 ? kHeight : 0u);
        EXPECT_EQ(l.lineSize, withLine ? 3u : 0u);
        EXPECT_EQ(parsed.dataAt(), withLine ? n + 5 : -1);
        if (withLine) {
          EXPECT_EQ(Bytes(l.lineBytes, l.lineBytes + 3), (Bytes{1, 2, 3}));
        }
      }
    }
  }
}

TEST(ParseExeCmdRes_v1, TheHeadersThatAreEasyToMistake) {
  const Parsed jpeg(line(0x60, 3, {1}));
  EXPECT_EQ(jpeg.info.lineData.compressType, 5u);
  EXPECT_EQ(jpeg.info.lineData.dataType, 5u);
  const Parsed packed(line(0x4A, 3, {1}));
  EXPECT_EQ(packed.info.lineData.compressType, 3u);
  EXPECT_EQ(packed.info.lineData.dataType, 3u);
  EXPECT_EQ(Parsed(line(0x58, 3, {1})).info.lineData.dataType, 1u);
  EXPECT_EQ(Parsed(line(0x5C, 3, {1})).info.lineData.dataType, 7u);
}

TEST(ParseExeCmdRes_v1, TheHelpersReadEveryHeader) {
  for (int header = 0; header < 256; ++header) {
    const auto byte = static_cast<unsigned char>(header);
    EXPECT_EQ(CParseExeCmdRes_v1::IsStatusCodeHeader(&byte), header >= 0x80) << header;
    EXPECT_EQ(CParseExeCmdRes_v1::IsAllWhiteLineHeader(byte), header < 0x40) << header;
    if (header < 0x40 || header >= 0x80) continue;
    const Parsed parsed(record(header));
    EXPECT_EQ(CParseExeCmdRes_v1::GetLineCompType(byte), parsed.info.lineData.compressType) << header;
    EXPECT_EQ(CParseExeCmdRes_v1::GetLineDataType(byte), parsed.info.lineData.dataType) << header;
  }
}

TEST(ParseExeCmdRes_v1, EveryProperPrefixOfARecordIsIncomplete) {
  for (int header = 0; header < 256; ++header) {
    for (const int n : {3, 7, 9}) {
      const Bytes bytes = record(header, n, pattern(header % 8 == 0 ? 300 : 4));
      for (std::size_t size = 0; size < bytes.size(); ++size) {
        const Parsed parsed(prefix(bytes, size));
        ASSERT_TRUE(parsed.info.isIncomplete) << header << " " << n << " " << size;
        ASSERT_EQ(parsed.info.next, nullptr) << header << " " << n << " " << size;
        // What the header alone tells is told.
        ASSERT_EQ(parsed.info.recordKind, size > 0 && header >= 0x40 && header < 0x80 ? 1u : 0u);
        ASSERT_EQ(parsed.info.statusCode, size > 0 && header >= 0x80 ? header : 0);
        ASSERT_EQ(parsed.info.lineData.isWhiteLine, size > 0 && header < 0x40);
      }
      ASSERT_FALSE(Parsed(bytes).info.isIncomplete) << header << " " << n;
    }
  }
}

TEST(ParseExeCmdRes_v1, AStatusCodeAloneIsWholeAndTellsWhetherMoreFollows) {
  EXPECT_EQ(told(Parsed({0x80}).info), told(SCANIMAGEINFO{false, 0, 0x80, {}, nullptr}));
  EXPECT_EQ(Parsed({0x80}).nextAt(), -1);
  EXPECT_EQ(Parsed({0x80, 0x80}).nextAt(), 1);
  const Parsed pageEnd({0x82});
  EXPECT_TRUE(pageEnd.info.isIncomplete);
  EXPECT_EQ(pageEnd.info.statusCode, 0x82);
}

TEST(ParseExeCmdRes_v1, EverySizeOfTheAddedInformation) {
  for (int n = -0x8000; n<0x8000; n += n> - 200 && n < 400 ? 1 : 97) {
    for (const int header : {0x00, 0x40, 0x82, 0x87}) {
      SCOPED_TRACE(std::to_string(header) + " " + std::to_string(n));
      const bool good = n == 3 || n >= 7;
      // Enough bytes for any size, so that only the size itself can be what is wrong.
      Bytes bytes = patched(record(header, good ? n : 7), 1, static_cast<std::uint32_t>(n));
      if (!good) bytes.resize(70000);
      const Parsed parsed(bytes);
      EXPECT_EQ(parsed.info.isIncomplete, !good);
      EXPECT_EQ(parsed.info.next, nullptr);
      EXPECT_EQ(parsed.info.lineData.pageNo, kPage);
      EXPECT_TRUE(parsed.info.lineData.markerIs85);
      EXPECT_EQ(parsed.info.lineData.heightPixel, n >= 7 ? kHeight : 0u);
    }
  }
}

TEST(ParseExeCmdRes_v1, ThePageIsSignedAndTheMarkerIsOneByte) {
  for (const int page : {0, 1, 0x7FFF, -1, -0x8000}) {
    EXPECT_EQ(Parsed(patched(added(0, 3), 3, static_cast<std::uint32_t>(page))).info.lineData.pageNo, page);
  }
  for (int marker = 0; marker < 256; ++marker) {
    EXPECT_EQ(Parsed(added(0x82, 7, marker)).info.lineData.markerIs85, marker == 0x85) << marker;
  }
}

TEST(ParseExeCmdRes_v1, TheHeightIsUnsignedAndStaysZeroWithoutIts4Bytes) {
  Bytes bytes = added(0x82, 7);
  for (const std::uint32_t height : {0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    for (int i = 0; i < 4; ++i) bytes[static_cast<std::size_t>(6 + i)] = static_cast<unsigned char>(height >> (8 * i));
    EXPECT_EQ(Parsed(bytes).info.lineData.heightPixel, height);
  }
  EXPECT_EQ(Parsed(followed(added(0x82, 3))).info.lineData.heightPixel, 0u);
}

TEST(ParseExeCmdRes_v1, AnEmptyLineAtTheVeryEndWaitsForTheNextByte) {
  for (const int n : {3, 7}) {
    const Bytes bytes = line(0x40, n, {});
    EXPECT_TRUE(Parsed(bytes).info.isIncomplete);
    const Parsed parsed(followed(bytes));
    EXPECT_FALSE(parsed.info.isIncomplete);
    EXPECT_EQ(parsed.info.lineData.lineSize, 0u);
    EXPECT_EQ(parsed.nextAt(), n + 5);
    EXPECT_EQ(parsed.dataAt(), n + 5);
  }
}

TEST(ParseExeCmdRes_v1, TheSizeOfALineIsUnsigned) {
  for (const std::size_t size : {std::size_t{1}, std::size_t{0x7FFF}, std::size_t{0x8000}, std::size_t{0xFFFF}}) {
    const Bytes data = pattern(size);
    const Parsed parsed(followed(line(0x41, 3, data)));
    EXPECT_FALSE(parsed.info.isIncomplete);
    EXPECT_EQ(parsed.info.lineData.lineSize, size);
    EXPECT_EQ(Bytes(parsed.info.lineData.lineBytes, parsed.info.lineData.lineBytes + size), data);
    EXPECT_EQ(parsed.nextAt(), static_cast<std::ptrdiff_t>(size) + 8);
  }
}

TEST(ParseExeCmdRes_v1, ALineThatIsCutInItsDataAlreadyTellsItsSize) {
  const Parsed parsed(prefix(line(0x41, 3, pattern(100)), 50));
  EXPECT_TRUE(parsed.info.isIncomplete);
  EXPECT_EQ(parsed.info.lineData.lineSize, 100u);
  EXPECT_EQ(parsed.dataAt(), 8);
}

TEST(ParseExeCmdRes_v1, NoBytesAndNullPointersAreIncompleteOrNothing) {
  SCANIMAGEINFO info;
  std::memset(static_cast<void*>(&info), 1, sizeof info);
  unsigned char byte = 0x80;
  CParseExeCmdRes_v1 parser;
  EXPECT_EQ(parser.ParseXcmdImageDataInfo(&byte, 0, &info), 0);
  EXPECT_EQ(told(info), told(SCANIMAGEINFO{true, 0, 0, {}, nullptr}));
  info = {};
  EXPECT_EQ(parser.ParseXcmdImageDataInfo(nullptr, 7, &info), 0);
  EXPECT_TRUE(info.isIncomplete);
  EXPECT_EQ(parser.ParseXcmdImageDataInfo(&byte, 1, nullptr), 0);
}

TEST(ParseExeCmdRes_v1, TheVerticesAreAPlainCopyOf28BytesAtMost) {
  CParseExeCmdRes_v1 parser;
  Bytes bytes = pattern(40);
  for (const long size : {-1L, 0L, 1L, 4L, 27L, 28L, 29L, 40L}) {
    Bytes exact = prefix(bytes, static_cast<std::size_t>(std::max(size, 0L)));
    Bytes wanted = prefix(exact, std::min<std::size_t>(exact.size(), 28));
    wanted.resize(28);
    const DETECTEDVERTICES vertices = parser.ParsePaperSizeDetectFrom4Vertex(exact.data(), size);
    ASSERT_EQ(sizeof vertices, 28u);
    EXPECT_EQ(std::memcmp(&vertices, wanted.data(), 28), 0) << size;
  }
  const DETECTEDVERTICES none = parser.ParsePaperSizeDetectFrom4Vertex(nullptr, 28);
  EXPECT_EQ(none.words[0], 0u);
}

// The caller's way with the stream: it keeps what lies behind the last whole record.
TEST(ParseExeCmdRes_v1, AStreamSplitAnywhereGivesTheSameRecords) {
  Bytes stream;
  std::size_t count = 0;
  for (int header = 0; header < 256; header += 3, ++count) {
    const Bytes one =
        record(header, header % 2 == 0 ? 3 : 7 + header % 5, pattern(static_cast<std::size_t>(header % 7)));
    stream.insert(stream.end(), one.begin(), one.end());
  }
  stream.push_back(0x80);
  ++count;
  const auto recordsOf = [&](const std::vector<std::size_t>& cuts) {
    std::vector<std::string> records;
    Bytes kept;
    std::size_t at = 0;
    for (const std::size_t cut : cuts) {
      kept.insert(kept.end(), stream.begin() + static_cast<std::ptrdiff_t>(at),
                  stream.begin() + static_cast<std::ptrdiff_t>(cut));
      at = cut;
      while (!kept.empty()) {
        const Parsed parsed(kept);
        if (parsed.info.isIncomplete) break;
        records.push_back(told(parsed.info));
        if (parsed.nextAt() < 0) {
          kept.clear();
        } else {
          kept.erase(kept.begin(), kept.begin() + parsed.nextAt());
        }
      }
    }
    EXPECT_TRUE(kept.empty());
    return records;
  };
  const std::vector<std::string> whole = recordsOf({stream.size()});
  ASSERT_EQ(whole.size(), count);
  for (std::size_t first = 1; first < stream.size(); ++first) {
    ASSERT_EQ(recordsOf({first, stream.size()}), whole) << first;
  }
  std::mt19937 random(5);
  for (int round = 0; round < 200; ++round) {
    std::vector<std::size_t> cuts;
    for (std::size_t at = 0; at < stream.size(); cuts.push_back(at))
      at = std::min(stream.size(), at + 1 + random() % 20);
    ASSERT_EQ(recordsOf(cuts), whole) << round;
  }
}
