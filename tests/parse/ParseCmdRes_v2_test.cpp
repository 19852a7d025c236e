// The walks over the tagged bodies: device information, actual parameters, colour profiles.
#include "parse/ParseCmdRes_v2.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <ostream>
#include <random>
#include <string>

#include "tests/fakes/log_capture.h"
#include "tests/parse/capability_fields.h"
#include "tests/parse/tag_body.h"

using namespace orvalle_scan_api;

namespace {

// The tags again: what the walker reads of each, and where it lies in the packed record.
struct TagRow {
  int tag;
  std::size_t read;
  std::size_t at;
};
const TagRow kTags[] = {
    {0x0001, 2, 0},    {0x0101, 2, 2},    {0x0201, 2, 132},  {0x0202, 2, 134},  {0x0203, 2, 136},  {0x0204, 2, 138},
    {0x0301, 2, 140},  {0x0302, 2, 142},  {0x0303, 2, 144},  {0x0304, 12, 146}, {0x0305, 12, 158}, {0x0306, 4, 170},
    {0x0307, 12, 174}, {0x0308, 12, 186}, {0x0309, 32, 198}, {0x030A, 64, 230}, {0x030B, 6, 294},  {0x030C, 2, 300},
    {0x030D, 2, 302},  {0x030E, 4, 304},  {0x030F, 2, 308},  {0x0310, 4, 310},  {0x0311, 6, 314},  {0x0401, 6, 320},
    {0x0402, 2, 326},  {0x0403, 4, 328},  {0x0404, 2, 332},  {0x0405, 2, 334},  {0x0406, 2, 336},  {0x0407, 6, 338},
    {0x0408, 2, 344},  {0x0501, 2, 348},  {0x0502, 10, 350}, {0x0503, 10, 360}, {0x0504, 4, 370},  {0x0505, 16, 374},
    {0x0506, 12, 390}, {0x0507, 2, 402},  {0x0508, 6, 404},  {0x0509, 6, 410},  {0x050A, 2, 416},  {0x050B, 2, 418},
    {0x050C, 2, 420},  {0x050D, 4, 422},  {0x050E, 2, 426},  {0x050F, 10, 428},
};
constexpr std::size_t kRecordBytes = 438;
constexpr std::size_t kNameAt = 4;

using Record = std::array<unsigned char, kRecordBytes>;

struct Walked {
  Record record{};
  bool complete = false;

  bool operator==(const Walked&) const = default;
};

// What a failing test prints: where a record is not 0.
void PrintTo(const Walked& walked, std::ostream* out) {
  *out << (walked.complete ? "complete" : "incomplete");
  for (std::size_t i = 0; i < kRecordBytes; ++i) {
    if (walked.record[i] != 0) *out << " " << i << ":" << int{walked.record[i]};
  }
}

Record asBytes(const _QDICMDRESPONSE& response) {
  static_assert(sizeof response == kRecordBytes);
  Record record;
  std::memcpy(record.data(), &response, kRecordBytes);
  return record;
}

// An exact copy, so that a read behind the body is found out.
struct Exact {
  explicit Exact(const BodyBytes& body) : bytes(new unsigned char[body.size()]), size(static_cast<long>(body.size())) {
    std::copy(body.begin(), body.end(), bytes.get());
  }
  std::unique_ptr<unsigned char[]> bytes;
  long size;
};

Walked walk(const BodyBytes& body) {
  const Exact exact(body);
  CParseCmdRes_v2 parser;
  const _QDICMDRESPONSE response = parser.GetQDIcommandResponse(exact.bytes.get(), exact.size);
  return {asBytes(response), parser.qdiResponseComplete};
}

// Puts the bytes of a value into the record as the tag's row says.
void store(const TagRow& row, const BodyBytes& value, Record& record) {
  for (std::size_t i = 0; i < row.read; ++i) {
    if (row.tag == 0x0408) {  // two bytes, each widened to a word
      record[row.at + 2 * i] = value[i];
      record[row.at + 2 * i + 1] = 0;
    } else {
      record[row.at + i] = value[i];
    }
  }
}

// The rules of the walk in their plainest form.
Walked model(const BodyBytes& body) {
  Walked walked;
  const auto byteAt = [&](std::size_t at) { return at < body.size() ? body[at] : static_cast<unsigned char>(0); };
  for (std::size_t at = 0; at < body.size();) {
    const int tag = byteAt(at) | byteAt(at + 1) << 8;
    const std::size_t declared = byteAt(at + 2) | static_cast<std::size_t>(byteAt(at + 3)) << 8;
    const std::size_t start = at + 4;
    std::size_t fixed = 0;
    bool known = false;
    for (const TagRow& row : kTags) {
      if (row.tag != tag) continue;
      known = true;
      if (tag == 0x0308 && declared == 0) continue;
      fixed = row.read;
      BodyBytes value;
      for (std::size_t i = 0; i < row.read; ++i) value.push_back(byteAt(start + i));
      store(row, value, walked.record);
    }
    if (tag == 0x0102) {
      known = true;
      if (declared > 0) std::fill_n(walked.record.begin() + kNameAt, 128, static_cast<unsigned char>(0));
      for (std::size_t i = 0; i < declared && kNameAt + i < kRecordBytes; ++i) {
        unsigned char& byte = walked.record[kNameAt + i];
        byte = static_cast<unsigned char>(byte + byteAt(start + i));
      }
    }
    if (tag == 0xF0F0) {
      known = true;
      walked.complete = true;
    }
    if (!known) walked.complete = false;
    at = start + std::max(declared, fixed);
  }
  return walked;
}

BodyBytes numbered(std::size_t size, int from = 1) {
  BodyBytes bytes;
  for (std::size_t i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(from + static_cast<int>(i) * 3));
  return bytes;
}

TagBody everyTag() {
  TagBody body;
  body.tag(0x0102, "Scanner 7");
  for (const TagRow& row : kTags) body.tag(row.tag, numbered(row.read, row.tag));
  return body;
}

BodyBytes prefix(const BodyBytes& bytes, std::size_t size) {
  return BodyBytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}

QS_SCANNER_CAPABILITY parse(const BodyBytes& body) {
  const Exact exact(body);
  return CParseCmdRes_v2().ParseDeviceInfoResponse(exact.bytes.get(), exact.size);
}
bool isZero(const QS_SCANNER_CAPABILITY& c) {
  static const QS_SCANNER_CAPABILITY kZero{};
  return CapabilityFields(c) == CapabilityFields(kZero);
}

}  // namespace

// ---- device information

TEST(ParseCmdRes_v2, EveryTagGoesToItsPlaceAndNowhereElse) {
  for (const TagRow& row : kTags) {
    SCOPED_TRACE(row.tag);
    const BodyBytes value = numbered(row.read, 0x81);
    Walked wanted;
    wanted.complete = true;
    store(row, value, wanted.record);
    EXPECT_EQ(walk(TagBody().tag(row.tag, value).end().bytes), wanted);
  }
}

TEST(ParseCmdRes_v2, ADeclaredLengthMovesTheWalkForwardOnly) {
  for (const TagRow& row : kTags) {
    for (const int declared : {0, 1, 2, 3, 5, 8, 11, 13, 64, 65, 300}) {
      SCOPED_TRACE(std::to_string(row.tag) + " " + std::to_string(declared));
      if (row.tag == 0x0308 && declared == 0) continue;
      const BodyBytes value = numbered(std::max(row.read, static_cast<std::size_t>(declared)));
      Walked wanted;
      wanted.complete = true;
      store(row, value, wanted.record);
      store({0x0001, 2, 0}, {0xAB, 0xCD}, wanted.record);
      if (row.tag == 0x0001) store({0x0001, 2, 0}, {0xAB, 0xCD}, wanted.record);
      EXPECT_EQ(walk(TagBody().tagDeclaring(row.tag, declared, value).tag(0x0001, {0xAB, 0xCD}).end().bytes), wanted);
    }
  }
}

TEST(ParseCmdRes_v2, DocumentSizesOfLengthZeroReadNothing) {
  Walked wanted;
  wanted.complete = true;
  store({0x0303, 2, 144}, {50, 0}, wanted.record);
  EXPECT_EQ(walk(TagBody().tag(0x0308, BodyBytes{}).tag(0x0303, {50, 0}).end().bytes), wanted);
  wanted.record = {};
  store({0x0308, 12, 186}, numbered(12), wanted.record);
  EXPECT_EQ(walk(TagBody().tagDeclaring(0x0308, 1, numbered(12)).end().bytes), wanted);
}

TEST(ParseCmdRes_v2, OpticalResolutionsOfLengthZeroStillTakeTwelveBytes) {
  Walked wanted;
  wanted.complete = true;
  store({0x0304, 12, 146}, numbered(12), wanted.record);
  EXPECT_EQ(walk(TagBody().tagDeclaring(0x0304, 0, numbered(12)).end().bytes), wanted);
  // Without them the terminator is eaten as a value.
  EXPECT_TRUE(isZero(parse(TagBody().tagDeclaring(0x0304, 0, {}).end().bytes)));
}

TEST(ParseCmdRes_v2, AStackOfFiftySheetsIsTheseBytes) {
  const BodyBytes body = {0x03, 0x03, 0x02, 0x00, 0x32, 0x00, 0xF0, 0xF0, 0x00, 0x00};
  EXPECT_EQ(TagBody().tag(0x0303, {0x32, 0x00}).end().bytes, body);
  const Exact exact(body);
  CParseCmdRes_v2 parser;
  EXPECT_EQ(parser.GetQDIcommandResponse(exact.bytes.get(), exact.size).adfStackCapacity, 50);
  EXPECT_TRUE(parser.qdiResponseComplete);
}

TEST(ParseCmdRes_v2, AnUnknownTagBeforeTheTerminatorIsSkipped) {
  for (const int tag : {0x0000, 0x0002, 0x0103, 0x0205, 0x0312, 0x0409, 0x0510, 0x1001, 0xF0F1, 0xFFFF}) {
    const BodyBytes body = TagBody().tag(tag, numbered(7)).tag(0x0303, {50, 0}).end().bytes;
    Walked wanted;
    wanted.complete = true;
    store({0x0303, 2, 144}, {50, 0}, wanted.record);
    EXPECT_EQ(walk(body), wanted) << tag;
    EXPECT_FALSE(isZero(parse(body))) << tag;
  }
}

TEST(ParseCmdRes_v2, AnUnknownTagBehindTheTerminatorDiscardsTheRecord) {
  EXPECT_FALSE(isZero(parse(TagBody().tag(0x0303, {50, 0}).end().bytes)));
  EXPECT_TRUE(isZero(parse(TagBody().tag(0x0303, {50, 0}).end().tag(0x0999, {1}).bytes)));
  EXPECT_FALSE(isZero(parse(TagBody().tag(0x0303, {50, 0}).end().tag(0x0999, {1}).end().bytes)));
}

TEST(ParseCmdRes_v2, AKnownTagBehindTheTerminatorStillCounts) {
  const QS_SCANNER_CAPABILITY c = parse(TagBody().end().tag(0x0001, {0x02, 0x01}).bytes);
  EXPECT_EQ(c.commandVersion, 0x0102);
}

TEST(ParseCmdRes_v2, ABodyWithoutItsTerminatorGivesAZeroRecord) {
  EXPECT_TRUE(isZero(parse(everyTag().bytes)));
  EXPECT_FALSE(isZero(parse(everyTag().end().bytes)));
}

TEST(ParseCmdRes_v2, NothingGivesAZeroRecord) {
  unsigned char byte = 0xF0;
  CParseCmdRes_v2 parser;
  EXPECT_TRUE(isZero(parser.ParseDeviceInfoResponse(nullptr, 10)));
  EXPECT_TRUE(isZero(parser.ParseDeviceInfoResponse(&byte, 0)));
  EXPECT_TRUE(isZero(parser.ParseDeviceInfoResponse(&byte, -1)));
  EXPECT_EQ(asBytes(parser.GetQDIcommandResponse(nullptr, 10)), Record{});
  EXPECT_FALSE(parser.qdiResponseComplete);
}

TEST(ParseCmdRes_v2, TheCompletionFlagIsNotClearedAtTheStart) {
  CParseCmdRes_v2 parser;
  EXPECT_FALSE(parser.qdiResponseComplete || parser.gkpResponseComplete || parser.sspResponseComplete ||
               parser.gcpResponseComplete);
  const Exact good(TagBody().end().bytes), known(TagBody().tag(0x0001, {1, 1}).bytes);
  parser.ParseDeviceInfoResponse(good.bytes.get(), good.size);
  EXPECT_TRUE(parser.qdiResponseComplete);
  EXPECT_FALSE(isZero(parser.ParseDeviceInfoResponse(known.bytes.get(), known.size)));
  EXPECT_FALSE(parser.gkpResponseComplete || parser.sspResponseComplete || parser.gcpResponseComplete);
}

TEST(ParseCmdRes_v2, ABodyOfOneByteIsATagCutShort) {
  CParseCmdRes_v2 parser;
  const Exact good(TagBody().end().bytes), cut({0xF0});
  parser.GetQDIcommandResponse(good.bytes.get(), good.size);
  parser.GetQDIcommandResponse(cut.bytes.get(), cut.size);
  EXPECT_FALSE(parser.qdiResponseComplete) << "0x00F0 is a tag that nobody knows";
}

TEST(ParseCmdRes_v2, AnOverlongModelNameAddsToTheFieldsBehindIt) {
  // Two letters too many: they are added to the two bytes of 0x0201, which hold 0x80 and 1.
  BodyBytes name(130, 'x');
  name[128] = 0x7F;
  name[129] = 0xFF;
  Walked wanted;
  wanted.complete = true;
  std::fill_n(wanted.record.begin() + 4, 128, static_cast<unsigned char>('x'));
  wanted.record[132] = 0xFF;
  wanted.record[133] = 0;
  EXPECT_EQ(walk(TagBody().tag(0x0201, {0x80, 1}).tag(0x0102, name).end().bytes), wanted);

  // Told again, the name itself starts afresh, the fields behind it do not.
  wanted.record[132] = 0x7E;
  wanted.record[133] = 0xFF;
  EXPECT_EQ(walk(TagBody().tag(0x0201, {0x80, 1}).tag(0x0102, name).tag(0x0102, name).end().bytes), wanted);

  // A later tag of those fields overwrites them.
  wanted.record[132] = 3;
  wanted.record[133] = 4;
  EXPECT_EQ(walk(TagBody().tag(0x0102, name).tag(0x0201, {3, 4}).end().bytes), wanted);
}

TEST(ParseCmdRes_v2, ANameLongerThanTheRecordEndsWithIt) {
  for (const std::size_t size : {433u, 434u, 435u, 5000u, 65535u}) {
    Walked wanted;
    wanted.complete = true;
    std::fill_n(wanted.record.begin() + 4, std::min<std::size_t>(size, 434), static_cast<unsigned char>(0xEE));
    EXPECT_EQ(walk(TagBody().tag(0x0102, BodyBytes(size, 0xEE)).end().bytes), wanted) << size;
  }
}

TEST(ParseCmdRes_v2, AWidenedByteReplacesTheWholeWord) {
  Walked wanted;
  wanted.complete = true;
  std::fill_n(wanted.record.begin() + 4, 434, static_cast<unsigned char>(0xEE));
  store({0x0408, 2, 344}, {5, 6}, wanted.record);
  EXPECT_EQ(walk(TagBody().tag(0x0102, BodyBytes(434, 0xEE)).tag(0x0408, {5, 6}).end().bytes), wanted);
}

TEST(ParseCmdRes_v2, ANameOfLengthZeroTakesNothingFromTheBody) {
  Walked wanted;
  wanted.complete = true;
  store({0x0303, 2, 144}, {50, 0}, wanted.record);
  EXPECT_EQ(walk(TagBody().tag(0x0102, "").tag(0x0303, {50, 0}).end().bytes), wanted);
}

TEST(ParseCmdRes_v2, TheBytesOfANameAreTakenAsTheyAre) {
  const QS_SCANNER_CAPABILITY c = parse(TagBody().tag(0x0102, "\xC3\xA9\xFF").end().bytes);
  EXPECT_EQ(std::string(c.modelInfo.modelName), "\xC3\xA9\xFF");
}

TEST(ParseCmdRes_v2, ATruncatedBodyReadsAsZeroPadded) {
  const BodyBytes whole = everyTag().tag(0x0102, BodyBytes(140, 'm')).end().bytes;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const BodyBytes cut = prefix(whole, size);
    BodyBytes padded = cut;
    padded.resize(size + 200);
    const Walked walked = walk(cut);
    ASSERT_EQ(walked, model(cut)) << size;
    ASSERT_EQ(walked.record, walk(padded).record) << size;
    ASSERT_EQ(isZero(parse(cut)), !walked.complete) << size;
  }
}

TEST(ParseCmdRes_v2, RandomBodiesAreWalkedAsTheRulesSay) {
  std::mt19937 random(17);
  int complete = 0;
  for (int round = 0; round < 20000; ++round) {
    TagBody body;
    for (std::size_t tags = random() % 6; tags > 0; --tags) {
      const std::size_t choice = random() % (std::size(kTags) + 4);
      const int tag = choice < std::size(kTags)        ? kTags[choice].tag
                      : choice == std::size(kTags)     ? 0x0102
                      : choice == std::size(kTags) + 1 ? static_cast<int>(random() % 0x10000)
                                                       : 0xF0F0;
      BodyBytes value(random() % (random() % 8 == 0 ? 500 : 20));
      for (unsigned char& byte : value) byte = static_cast<unsigned char>(random());
      body.tagDeclaring(tag, static_cast<int>(random() % 3 == 0 ? random() % 40 : value.size()), value);
    }
    if (random() % 2 == 0) body.end();
    BodyBytes bytes = body.bytes;
    if (random() % 3 == 0) bytes.resize(random() % (bytes.size() + 1));
    const Walked wanted = model(bytes);
    ASSERT_EQ(walk(bytes), wanted) << round;
    ASSERT_EQ(isZero(parse(bytes)), !wanted.complete) << round;
    complete += wanted.complete;
  }
  EXPECT_GT(complete, 1000);
}

TEST(ParseCmdRes_v2, EachTagIsTraced) {
  LogCapture log;
  const Exact qdi(TagBody().tag(0x030A, BodyBytes(64)).tag(0x9999, {1}).end().bytes);
  CParseCmdRes_v2 parser;
  parser.GetQDIcommandResponse(qdi.bytes.get(), qdi.size);
  EXPECT_EQ(log.lines,
            (std::vector<LogLine>{
                {2, "QDI Target TagID = 0x030A"}, {2, "QDI Target TagID = 0x9999"}, {2, "QDI Target TagID = 0xF0F0"}}))
      << log.all();
  log.lines.clear();
  const Exact end(TagBody().end().bytes);
  parser.GetSSPcommandResponse(end.bytes.get(), end.size);
  parser.GetGCPcommandResponse(end.bytes.get(), end.size);
  EXPECT_EQ(log.lines, (std::vector<LogLine>{{2, "SSP Target TagID = 0xF0F0"}, {2, "GCP Target TagID = 0xF0F0"}}))
      << log.all();
}

TEST(ParseCmdRes_v2, EachOperationLogsEntryAndExit) {
  BodyBytes end = TagBody().end().bytes;
  const auto size = static_cast<long>(end.size());
  CParseCmdRes_v2 parser;
  LogCapture log;
  parser.ParseDeviceInfoResponse(end.data(), size);
  parser.ParseDeviceInfoResponse(nullptr, size);
  parser.ParseActualParameterResponse(end.data(), size);
  parser.ParsePDFaColorProfileResponse(end.data(), size);
  parser.ParseColorPaletteResponse(end.data(), size);
  parser.ParsePaperSizeDetectFrom2Vertex(end.data(), size, {}, {}, UNIT_PIXEL);
  std::erase_if(log.lines, [](const LogLine& line) { return line.level == 2; });
  std::vector<LogLine> wanted;
  for (const std::string operation :
       {"ParseDeviceInfoResponse", "ParseDeviceInfoResponse", "ParseActualParameterResponse",
        "ParsePDFaColorProfileResponse", "ParseColorPaletteResponse", "ParsePaperSizeDetectFrom2Vertex"}) {
    wanted.push_back({1, ">>>>> " + operation + " >>>>>"});
    wanted.push_back({1, "<<<<< " + operation + " <<<<<"});
  }
  EXPECT_EQ(log.lines, wanted) << log.all();
}

TEST(ParseCmdRes_v2, AConversionOfNothingIsAZeroRecord) {
  const CParseCmdRes_v2 parser;
  EXPECT_TRUE(isZero(parser.GetParseDeviceInfoResponse(nullptr)));
  EXPECT_EQ(parser.GetParseActualParameterResponse(nullptr).paperSource, 0);
  EXPECT_EQ(parser.GetParseColorProfileResponse(nullptr).colorProfile, nullptr);
}

// ---- what has no parser in this generation

TEST(ParseCmdRes_v2, PalettesAndDetectedPapersAreZero) {
  BodyBytes bytes(2000, 0xFF);
  CParseCmdRes_v2 parser;
  for (const long size : {0L, 2000L}) {
    const PALETTE palette = parser.ParseColorPaletteResponse(bytes.data(), size);
    EXPECT_EQ(palette.valid, 0u);
    EXPECT_EQ(palette.count, 0u);
    for (const tagRGBQUAD& entry : palette.entries) {
      EXPECT_EQ(entry.rgbRed | entry.rgbGreen | entry.rgbBlue | entry.rgbReserved, 0);
    }
    const DETECTEDPAPER paper = parser.ParsePaperSizeDetectFrom2Vertex(bytes.data(), size, QS_SCANNER_CAPABILITY{},
                                                                       ACTUALSCANPARAM{}, UNIT_PIXEL);
    EXPECT_EQ(paper.resolution.x | paper.resolution.y, 0u);
    EXPECT_EQ(paper.vertex1.x | paper.vertex1.y | paper.vertex2.x | paper.vertex2.y, 0);
    EXPECT_EQ(paper.paperType, PAPERTYPE_AUTO);
  }
  parser.ParseColorPaletteResponse(nullptr, 10);
}
