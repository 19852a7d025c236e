// The settings that a user chose on the panel (GKP): the walk over the body, and every item of the push-scan record.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "parse/ParseCmdRes_v2.h"
#include "tests/fakes/log_capture.h"
#include "tests/parse/tag_body.h"

using namespace orvalle_scan_api;
using Push = tagQS_PUSHSCAN_PARAMETERS;

namespace {

// Every item by its name, as one text.
std::string told(const Push& p) {
  std::string text;
  const auto add = [&](const char* name, std::initializer_list<long long> values) {
    text += name;
    for (const long long value : values) text += " " + std::to_string(value);
    text += "\n";
  };
  const auto value = [&](const char* name, const PUSHSCAN_VALUE& v) { add(name, {v.valid, v.value}); };
  const auto state = [&](const char* name, const PUSHSCAN_STATE& s) { add(name, {s.valid, s.on}); };
  value("event", p.event), value("duplex", p.duplex);
  const PUSHSCAN_RESOLUTION& r = p.resolution;
  add("resolution", {r.xValid, r.yValid, r.xAuto, r.yAuto, r.x, r.y});
  value("color", p.colorType), value("paper", p.paperType);
  value("brightness", p.brightness), value("contrast", p.contrast), state("crop", p.autoCrop);
  const PUSHSCAN_FILETYPE& f = p.fileType;
  add("file", {f.valid, f.format, f.compressValid, f.compress, f.tiffCompressValid, f.tiffCompressOn, f.qualityValid,
               f.quality, f.qualityArg});
  state("blank", p.blankPageRemove), state("bleed", p.removeBleedThrough);
  add("orient", {p.orient.valid, p.orient.isLandscape, p.orient.angle});
  state("deskew", p.deskew);
  const PUSHSCAN_REMOVEBACKGROUND& b = p.removeBackground;
  add("background", {b.valid, b.on, b.hasLevel, b.level});
  return text;
}

Push none() {
  Push push;
  std::memset(static_cast<void*>(&push), 0, sizeof push);
  return push;
}

void expectSame(const Push& got, const Push& wanted) { EXPECT_EQ(told(got), told(wanted)); }

// Parses an exact copy, so that a read behind the body is found out.
Push parse(const BodyBytes& body) {
  const std::unique_ptr<unsigned char[]> copy(new unsigned char[body.size()]);
  std::copy(body.begin(), body.end(), copy.get());
  return CParseCmdRes_v2().ParseDeviceKeyInfoResponse(copy.get(), static_cast<long>(body.size()));
}

// One byte of one tag at a value, the tag's other bytes as given.
BodyBytes withByte(int tag, BodyBytes value, std::size_t at, int byte) {
  value[at] = static_cast<unsigned char>(byte);
  return TagBody().tag(tag, value).end().bytes;
}

// Values of which each item says "not given".
const BodyBytes kNoSettings(10, 0xFF);
const BodyBytes kNoDuplex(2, 0xFF);
const BodyBytes kNoImage(8, 0xFF);
const BodyBytes kNoFile(4, 0xFF);

// A body whose every item is given, and what it says.
TagBody everyTag() {
  return TagBody()
      .tag(0x1001, {2, 0xEE})
      .tag(0x1002, {0x2C, 0x01, 0x58, 0x02, 3, 0x24, 1, 60, 40, 0xEE})
      .tag(0x1003, {1, 2})
      .tag(0x1004, {1, 0, 1, 1, 0, 1, 5, 0xEE})
      .tag(0x1005, {0x21, 1, 4, 80})
      .tag(0x1006, {9, 9, 9, 9});
}
Push everyItem() {
  Push p = none();
  p.event = {true, 1};
  p.duplex = {true, 2};
  p.resolution = {true, true, false, false, 300, 600};
  p.colorType = {true, 3};
  p.paperType = {true, 2};
  p.brightness = {true, 60};
  p.contrast = {true, 40};
  p.autoCrop = {true, true};
  p.fileType = {true, 1, true, 50, false, false, true, 4, 80};
  p.blankPageRemove = {true, true};
  p.removeBleedThrough = {true, false};
  p.orient = {true, true, 90};
  p.deskew = {true, false};
  p.removeBackground = {true, true, true, 5};
  return p;
}

}  // namespace

// ---- the walk

TEST(gkp_push_scan, AWholeBody) { expectSame(parse(everyTag().end().bytes), everyItem()); }

TEST(gkp_push_scan, TheOrderOfTheTagsDoesNotMatter) {
  const BodyBytes forward = everyTag().bytes;
  BodyBytes backward = TagBody().end().bytes;
  for (std::size_t at = 0; at < forward.size(); at += 4u + forward[at + 2]) {
    backward.insert(backward.begin(), forward.begin() + static_cast<std::ptrdiff_t>(at),
                    forward.begin() + static_cast<std::ptrdiff_t>(at + 4 + forward[at + 2]));
  }
  ASSERT_EQ(backward.size(), forward.size() + 4);
  expectSame(parse(backward), everyItem());
}

TEST(gkp_push_scan, TheWalkKeepsTheDevicesValuesAndNotesEachGroup) {
  BodyBytes body = everyTag().end().bytes;
  CParseCmdRes_v2 parser;
  const _GKPCMDRESPONSE response = parser.GetGKPcommandResponse(body.data(), static_cast<long>(body.size()));
  const BodyBytes wanted = {2, 0xEE,                                                //
                            1, 0x2C, 0x01, 0x58, 0x02, 3, 0x24, 1, 60,   40, 0xEE,  //
                            1, 1,    2,                                             //
                            1, 1,    0,    1,    1,    0, 1,    5, 0xEE,            //
                            1, 0x21, 1,    4,    80,                                //
                            1, 9,    9,    9,    9};
  ASSERT_EQ(sizeof response, wanted.size());
  EXPECT_EQ(std::memcmp(&response, wanted.data(), wanted.size()), 0);
  EXPECT_TRUE(parser.gkpResponseComplete);
  EXPECT_FALSE(parser.qdiResponseComplete || parser.sspResponseComplete || parser.gcpResponseComplete);
  expectSame(parser.GetParseScanKeyInfoResponse(&response), everyItem());
}

TEST(gkp_push_scan, AnEventAloneGivesNothingElse) {
  Push wanted = none();
  wanted.event = {true, 0};
  expectSame(parse(TagBody().tag(0x1001, {1, 0}).end().bytes), wanted);
  expectSame(parse(TagBody().tag(0x1001, BodyBytes(2)).end().bytes), none());
  expectSame(parse(TagBody().end().bytes), none());
}

TEST(gkp_push_scan, WithoutATerminatorEveryItemIsInvalid) {
  const BodyBytes whole = everyTag().end().bytes;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // Two bytes of the terminator are enough; its length then reads as 0.
    const BodyBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    expectSame(parse(cut), size + 2 >= whole.size() ? everyItem() : none());
  }
  expectSame(parse(everyTag().end().tag(0x1007, {1}).bytes), none());
  expectSame(parse(everyTag().tag(0x1007, {1, 2, 3}).end().bytes), everyItem());
  expectSame(parse(everyTag().end().tag(0x1007, {1}).end().bytes), everyItem());
  expectSame(CParseCmdRes_v2().ParseDeviceKeyInfoResponse(nullptr, 9), none());
  expectSame(CParseCmdRes_v2().GetParseScanKeyInfoResponse(nullptr), none());
  unsigned char byte = 0;
  expectSame(CParseCmdRes_v2().ParseDeviceKeyInfoResponse(&byte, 0), none());
}

TEST(gkp_push_scan, ATagCutShortBehindTheTerminatorReadsAsZeroPadded) {
  for (std::size_t present = 0; present <= 10; ++present) {
    const BodyBytes value = {0x2C, 0x01, 0x58, 0x02, 3, 0x24, 1, 60, 40, 0xEE};
    BodyBytes padded(value.begin(), value.begin() + static_cast<std::ptrdiff_t>(present));
    const BodyBytes cut = TagBody().end().tagDeclaring(0x1002, 10, padded).bytes;
    padded.resize(10);
    expectSame(parse(cut), parse(TagBody().tag(0x1002, padded).end().bytes));
  }
}

TEST(gkp_push_scan, FixedFieldsAreReadWhateverTheDeclaredLength) {
  const std::map<int, BodyBytes> tags = {
      {0x1001, {2, 0xEE}},        {0x1002, {0x2C, 0x01, 0x58, 0x02, 3, 0x24, 1, 60, 40, 0xEE}},
      {0x1003, {1, 2}},           {0x1004, {1, 0, 1, 1, 0, 1, 5, 0xEE}},
      {0x1005, {0x21, 1, 4, 80}}, {0x1006, {9, 9, 9, 9}}};
  for (const int declared : {0, 1, 2, 3, 5, 9, 11, 40}) {
    TagBody body;
    for (const auto& [tag, value] : tags) {
      BodyBytes longer = value;
      longer.resize(std::max(value.size(), static_cast<std::size_t>(declared)));
      body.tagDeclaring(tag, declared, longer);
    }
    SCOPED_TRACE(declared);
    expectSame(parse(body.end().bytes), everyItem());
  }
}

TEST(gkp_push_scan, EachTagIsTraced) {
  LogCapture log;
  BodyBytes body = TagBody().tag(0x1001, {1, 0}).tag(0x9999, {1}).end().bytes;
  CParseCmdRes_v2().ParseDeviceKeyInfoResponse(body.data(), static_cast<long>(body.size()));
  EXPECT_EQ(log.lines, (std::vector<LogLine>{{1, ">>>>> ParseDeviceKeyInfoResponse >>>>>"},
                                             {2, "GKP Target TagID = 0x1001"},
                                             {2, "GKP Target TagID = 0x9999"},
                                             {2, "GKP Target TagID = 0xF0F0"},
                                             {1, "<<<<< ParseDeviceKeyInfoResponse <<<<<"}}))
      << log.all();
}

// ---- the items

TEST(gkp_push_scan, EveryEventByte) {
  for (int byte = 0; byte < 256; ++byte) {
    Push wanted = none();
    if (byte >= 1 && byte <= 4) wanted.event = {true, byte - 1};
    expectSame(parse(withByte(0x1001, {0, 0}, 0, byte)), wanted);
  }
}

TEST(gkp_push_scan, EachAxisOfTheResolutionIsGivenByItself) {
  const struct {
    int word;
    bool valid;
    bool isAuto;
    std::uint32_t dpi;
  } axes[] = {{0xFFFF, false, false, 0}, {0, true, true, 0},           {300, true, false, 300},
              {1, true, false, 1},       {0xFFFE, true, false, 65534}, {0xFF, true, false, 255}};
  for (const auto& x : axes) {
    for (const auto& y : axes) {
      BodyBytes value = u16s({x.word, y.word});
      value.resize(10, 0xFF);
      Push wanted = none();
      wanted.resolution = {x.valid, y.valid, x.isAuto, y.isAuto, x.dpi, y.dpi};
      wanted.orient.valid = true;  // the other tag did not come
      expectSame(parse(TagBody().tag(0x1002, value).end().bytes), wanted);
    }
  }
}

TEST(gkp_push_scan, EveryColourByte) {
  for (int byte = 0; byte < 256; ++byte) {
    Push wanted = none();
    wanted.orient.valid = true;
    if (byte != 255) wanted.colorType = {true, byte < 5 ? byte : 5};
    expectSame(parse(withByte(0x1002, kNoSettings, 4, byte)), wanted);
  }
}

TEST(gkp_push_scan, EveryPaperCode) {
  const std::map<int, int> papers = {{0, 0},     {0x11, 4}, {0x13, 8},  {0x14, 10}, {0x21, 5},  {0x22, 3},
                                     {0x23, 20}, {0x24, 2}, {0x25, 11}, {0x26, 21}, {0x27, 22}, {115, 0},
                                     {49, 6},    {50, 7},   {51, 9},    {65, 18},   {81, 13},   {82, 15},
                                     {83, 12},   {84, 14},  {97, 16},   {98, 17},   {113, 23},  {114, 24}};
  for (int byte = 0; byte < 256; ++byte) {
    const auto found = papers.find(byte);
    Push wanted = none();
    wanted.orient.valid = true;
    if (byte != 255) wanted.paperType = {true, found == papers.end() ? 1 : found->second};
    SCOPED_TRACE(byte);
    expectSame(parse(withByte(0x1002, kNoSettings, 5, byte)), wanted);
  }
}

TEST(gkp_push_scan, EveryPairOfDirectionBytes) {
  for (int direction = 0; direction < 256; ++direction) {
    for (const int landscape : {0, 1, 2, 254, 255}) {
      BodyBytes settings = kNoSettings, image = kNoImage;
      settings[6] = static_cast<unsigned char>(direction);
      image[2] = static_cast<unsigned char>(landscape);
      Push wanted = none();
      wanted.orient = {direction != 255 || landscape != 255, landscape == 1, direction == 1 ? 90 : 0};
      expectSame(parse(TagBody().tag(0x1002, settings).tag(0x1004, image).end().bytes), wanted);
    }
  }
}

TEST(gkp_push_scan, TheDirectionIsGivenAlsoWithoutTheImageSettings) {
  Push wanted = none();
  wanted.orient.valid = true;
  expectSame(parse(TagBody().tag(0x1002, kNoSettings).end().bytes), wanted);
}

TEST(gkp_push_scan, ALandscapeWithoutScanSettingsSaysNothing) {
  expectSame(parse(withByte(0x1004, kNoImage, 2, 1)), none());
}

TEST(gkp_push_scan, EveryBrightnessAndContrastByte) {
  for (int byte = 0; byte < 256; ++byte) {
    Push wanted = none();
    wanted.orient.valid = true;
    if (byte != 255) wanted.brightness = {true, byte};
    expectSame(parse(withByte(0x1002, kNoSettings, 7, byte)), wanted);
    wanted.contrast = std::exchange(wanted.brightness, {});
    expectSame(parse(withByte(0x1002, kNoSettings, 8, byte)), wanted);
  }
}

TEST(gkp_push_scan, EveryPairOfDuplexBytes) {
  for (int duplex = 0; duplex < 256; ++duplex) {
    for (int binding = 0; binding < 256; ++binding) {
      Push wanted = none();
      wanted.duplex.valid = duplex != 255 || binding != 255;
      wanted.duplex.value = duplex == 1 && (binding == 1 || binding == 2) ? binding : 0;
      const Push got = parse(
          TagBody().tag(0x1003, {static_cast<unsigned char>(duplex), static_cast<unsigned char>(binding)}).end().bytes);
      ASSERT_EQ(told(got), told(wanted)) << duplex << " " << binding;
    }
  }
}

TEST(gkp_push_scan, EveryByteOfASwitch) {
  const std::pair<std::size_t, PUSHSCAN_STATE Push::*> switches[] = {
      {0, &Push::autoCrop}, {1, &Push::deskew}, {3, &Push::blankPageRemove}, {4, &Push::removeBleedThrough}};
  for (const auto& [at, item] : switches) {
    for (int byte = 0; byte < 256; ++byte) {
      Push wanted = none();
      wanted.*item = {byte != 255, byte == 1};
      expectSame(parse(withByte(0x1004, kNoImage, at, byte)), wanted);
    }
  }
}

TEST(gkp_push_scan, TheBackgroundHasALevelOnlyWhereItIsOn) {
  for (int byte = 0; byte < 256; ++byte) {
    for (const int level : {0, 3, 255}) {
      BodyBytes image = kNoImage;
      image[6] = static_cast<unsigned char>(level);
      Push wanted = none();
      if (byte != 255) wanted.removeBackground = {true, byte == 1, byte == 1, byte == 1 ? level : 0};
      expectSame(parse(withByte(0x1004, image, 5, byte)), wanted);
    }
  }
}

TEST(gkp_push_scan, EveryCompressionByte) {
  for (int byte = 0; byte < 256; ++byte) {
    Push wanted = none();
    wanted.fileType.compressValid = byte != 255;
    wanted.fileType.compress = byte == 1 ? 50 : 0;
    expectSame(parse(withByte(0x1005, kNoFile, 1, byte)), wanted);
  }
}

TEST(gkp_push_scan, EveryQualityByteOfWhichTheFourthHasAnArgument) {
  for (int byte = 0; byte < 256; ++byte) {
    Push wanted = none();
    wanted.fileType.qualityValid = byte != 255;
    wanted.fileType.quality = byte >= 1 && byte <= 4 ? byte : 0;
    wanted.fileType.qualityArg = byte == 4 ? 80 : 0;
    expectSame(parse(withByte(0x1005, {0xFF, 0xFF, 0, 80}, 2, byte)), wanted);
  }
}

TEST(gkp_push_scan, EveryFileTypeByte) {
  const std::map<int, int> formats = {{0x21, 1}, {0x22, 3}, {0x24, 8}, {0x11, 2}, {0x12, 2},  {0x01, 4},
                                      {0x02, 5}, {0x03, 6}, {0x04, 7}, {0x41, 9}, {0x43, 10}, {0x42, 11}};
  for (int byte = 0; byte < 256; ++byte) {
    for (const int quality : {0, 3, 255}) {
      const auto found = formats.find(byte);
      Push wanted = none();
      PUSHSCAN_FILETYPE& file = wanted.fileType;
      file.qualityValid = quality != 255;
      file.quality = quality == 3 ? 3 : 0;
      file.valid = byte != 255;
      file.format = found == formats.end() ? 0 : found->second;
      if (byte == 0x11) file.quality = 1;
      if (byte == 0x12) file.quality = 0;
      SCOPED_TRACE(byte);
      expectSame(parse(withByte(0x1005, {0, 0xFF, static_cast<unsigned char>(quality), 0xFF}, 0, byte)), wanted);
    }
  }
}

// Whatever comes, flags are 0 or 1 and numbers lie in their ranges.
TEST(gkp_push_scan, AnyBodyGivesAWellFormedRecord) {
  std::mt19937 random(5);
  for (int round = 0; round < 20000; ++round) {
    TagBody body;
    for (std::size_t tags = random() % 8; tags > 0; --tags) {
      BodyBytes value(random() % 12);
      for (unsigned char& byte : value) byte = static_cast<unsigned char>(random() % 4 == 0 ? random() % 6 : random());
      body.tag(random() % 10 == 0 ? static_cast<int>(random() % 0x10000) : static_cast<int>(0x1001 + random() % 6),
               value);
    }
    const Push p = parse(body.end().bytes);
    unsigned char bytes[sizeof p];
    std::memcpy(bytes, &p, sizeof p);
    ASSERT_LE(bytes[offsetof(Push, event)], 1);
    ASSERT_TRUE(p.event.value >= 0 && p.event.value <= 3);
    ASSERT_TRUE(p.duplex.value >= 0 && p.duplex.value <= 2);
    ASSERT_TRUE(p.colorType.value >= 0 && p.colorType.value <= 5);
    ASSERT_TRUE(p.paperType.value >= 0 && p.paperType.value <= 24);
    ASSERT_TRUE(p.fileType.format >= 0 && p.fileType.format <= 11);
    ASSERT_TRUE(p.fileType.quality >= 0 && p.fileType.quality <= 4);
    ASSERT_TRUE(p.orient.angle == 0 || p.orient.angle == 90);
  }
}
