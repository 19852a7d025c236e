// The capability of a Q block against a second reading of its rules that is written here: every byte of the block with
// every value, for every choice of sources, and random blocks.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "parse/ParseCmdRes_v1.h"
#include "tests/parse/capability_fields.h"

using namespace orvalle_scan_api;

namespace {

using Bytes = std::vector<unsigned char>;

// A block in numbers; every row is eight bytes.
const Bytes kDefaultBlock = {
    0x0B, 0x00, 0x1F, 0x00, 0x00, 0x00, 0x00, 0x00,  //  0 version, colours
    0x00, 0x00, 0x00, 0x04, 0x01, 0x01, 0x01, 0x02,  //  8 positions from 13
    0x01, 0x08, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,  // 16 scan functions at 17
    0x00, 0x01, 0x01, 0x34, 0x08, 0xA8, 0x0D, 0x34,  // 24 background at 26, sizes from 27
    0x08, 0xA8, 0x0D, 0x34, 0x08, 0xA8, 0x0D, 0xA0,  // 32 least sizes from 39
    0x05, 0xA0, 0x05, 0xA0, 0x05, 0xA0, 0x05, 0x1E,  // 40 margins from 47
    0x00, 0x1E, 0x00, 0x00, 0x02, 0x01, 0xB0, 0x04,  // 48 landscape 51, card 52, resolutions from 54
    0x60, 0x09, 0xB0, 0x04, 0x60, 0x09, 0xB0, 0x04,  // 56
    0x60, 0x09, 0x0F, 0x32, 0x00, 0x00, 0x00, 0x00,  // 64 stack 67
    0x00,                                            // 72
};

// The rules again, on the 73 bytes.
class Model {
 public:
  explicit Model(const Bytes& block) : b_(block) {}

  QS_SCANNER_CAPABILITY capability() {
    std::memset(static_cast<void*>(&c_), 0, sizeof c_);
    c_.commandVersion = b_[0];
    c_.modelInfo.category = 1;
    auto& push = c_.func.pushScan;
    push.supportPushScanEvent.scanToImage = push.supportPushScanEvent.scanToCOR = 1;
    push.supportPushScanEvent.scanToEmail = push.supportPushScanEvent.scanToFile = 1;
    push.continuousScan.cap = 1;
    push.paramSetting.cap = 2;
    sources();
    sizes();
    positions();
    imageProcessing();
    paperSize();
    advanced();
    return c_;
  }

 private:
  unsigned word(std::size_t at) const { return b_[at] + 256u * b_[at + 1]; }
  AXIS words(std::size_t at) const { return {word(at), word(at + 2)}; }
  unsigned tenfold(std::size_t at, unsigned ifZero) const { return word(at) == 0 ? ifZero : word(at) * 10; }
  static FLAG flag(unsigned value, int bit) { return static_cast<FLAG>(value >> bit & 1u); }
  bool fb() const { return word(27) != 0; }
  bool adf() const { return word(31) != 0; }
  bool dup() const { return word(35) != 0; }
  static CAP has(bool yes) { return yes ? 2 : 1; }

  void sources() {
    auto& base = c_.baseFunc;
    if (fb()) base.resolutionOptical.flatbed = words(54);
    if (adf()) base.resolutionOptical.adfSimplex = words(58);
    if (dup()) base.resolutionOptical.adfDuplex = words(62);
    base.colorType = colours();
    base.paperSource.supportPaperSource.flatbed = fb();
    base.paperSource.supportPaperSource.adfSimplex = adf();
    base.paperSource.supportPaperSource.adfDuplex = dup();
    base.paperSource.duplexScanSystem = dup() ? 1 : 0;
    if (adf()) base.paperSource.adfStackCapacity = static_cast<int>(word(67));
  }
  SUPPORTCOLORTYPES colours() const {
    SUPPORTCOLORTYPES types{};
    types.blackAndWhite = flag(b_[2], 0);
    types.errorDiffusion = flag(b_[2], 1);
    types.trueGray = flag(b_[2], 2);
    types.color256 = flag(b_[2], 3);
    types.color24bit = flag(b_[2], 4);
    return types;
  }

  void sizes() {
    auto& base = c_.baseFunc;
    auto& most = base.deviceScanSizeMax;
    auto& least = base.deviceScanSizeMin;
    most.unit = least.unit = UNIT_MILLIMETER;
    if (fb()) {
      most.flatbed = {word(27) * 10, tenfold(29, 29700)};
      least.flatbed = {1, 1};
      base.marginSize.flatbed = margin();
    }
    if (adf()) {
      most.simplex = {word(31) * 10, tenfold(33, 35560)};
      least.simplex = {tenfold(39, 1), tenfold(41, 1)};
      base.marginSize.adfSimplex = margin();
    }
    if (dup()) {
      most.duplex = {word(35) * 10, tenfold(37, 35560)};
      least.duplex = {tenfold(43, 1), tenfold(45, 1)};
      base.marginSize.adfDuplex = margin();
    }
    base.marginSize.flatbed.unit = base.marginSize.adfSimplex.unit = base.marginSize.adfDuplex.unit = UNIT_MILLIMETER;
    base.longPaperLengthMax.cap = has(b_[18] != 0);
    if (b_[18] == 1) {
      base.longPaperLengthMax.simplexMaxLength = 86300;
      base.longPaperLengthMax.unit = UNIT_MILLIMETER;
    }
  }
  MARGIN margin() const {
    const int x = static_cast<int>(word(47)) * 10, y = static_cast<int>(word(49)) * 10;
    MARGIN m{};
    m.left = m.right = x;
    m.top = m.bottom = y;
    m.unit = UNIT_MILLIMETER;
    return m;
  }

  static int across(unsigned code) { return code == 3 ? 2 : code == 2 ? 1 : 0; }
  static int down(unsigned code) { return code == 3 ? 4 : code == 2 ? 1 : 3; }
  void positions() {
    auto& p = c_.baseFunc.paperPosition;
    if (fb()) p.flatbedX = across(b_[13]), p.flatbedY = down(b_[14]);
    if (adf()) p.adfX = across(b_[15]), p.adfY = down(b_[16]);
    if (dup()) p.cardslotX = across(b_[52]), p.cardslotY = down(b_[53]);
    auto& card = c_.baseFunc.cardSizeOrient;
    card.capFlatbed = card.orientFlatbed = 2;
    if (!adf()) return;
    // A length of 300 mm and more in tenths cannot be a smallest paper: it is in hundredths already.
    const auto hundredths = [this](std::size_t at) { return word(at) >= 3000 ? word(at) : tenfold(at, 1); };
    const unsigned x = hundredths(39), y = hundredths(41);
    if (x > 9000) {
      card.capAdf = 1;
    } else if (y <= 6000) {
      card.capAdf = 2, card.orientAdf = 2;
    } else if (x <= 6000 && y <= 9000) {
      card.capAdf = 2, card.orientAdf = 1;
    } else {
      card.capAdf = 1;
    }
  }

  void imageProcessing() {
    auto& image = c_.imageProcFunc;
    auto& types = image.supportCompresssionType;
    for (COMPRESSSUPPORT* type : {&types.blackAndWhite, &types.errorDiffusion, &types.trueGray}) {
      type->noCompress = type->packbits = 1;
    }
    types.color256.noCompress = 1;
    types.color24bit.jpeg = 1;
    image.monoThreshold.autoThresholdCap = 2;
    image.monoThreshold.manuanThresholdCap = 1;
    image.colorProfileOutput = 1;
  }

  void paperSize() {
    auto& size = c_.advancedFunc.autoSize;
    const AXIS feeder = adf() ? words(58) : AXIS{0, 0};
    if (flag(b_[17], 1) != 0) {
      size.paperWidthDetect.cap = 2;
      size.paperWidthDetect.supportColorType = colours();
      size.paperWidthDetect.supportPaperSource.flatbed = fb();
      size.paperWidthDetect.supportPaperSource.adfSimplex = adf();
      size.paperWidthDetect.supportPaperSource.adfDuplex = dup();
    }
    if (flag(b_[17], 0) != 0) {
      size.autoCrop.cap = 2;
      size.autoCrop.supportColorType.color24bit = 1;
      size.autoCrop.resolutionDpiMax = size.autoCrop.resolutionDpiMin = {300, 300};
    }
    size.cornerDetect.cap = 1;
    if (flag(b_[17], 2) != 0) {
      size.cornerDetect.cap = 2;
      auto& types = size.cornerDetect.supportColorType;
      types.trueGray = types.color256 = types.color24bit = 1;
      size.cornerDetect.supportPaperSource.adfSimplex = size.cornerDetect.supportPaperSource.adfDuplex = 1;
      size.cornerDetect.cornerInfoOutputSystem = 1;
      size.cornerDetect.resolutionDpiMin = {100, 100};
      size.cornerDetect.resolutionDpiMax = feeder;
    }
    auto& sheet = c_.advancedFunc.carrierSheet;
    sheet.cap = 1;
    if (flag(b_[20], 0) != 0) {
      sheet.cap = 2;
      auto& types = sheet.supportColorType;
      types.blackAndWhite = types.errorDiffusion = types.trueGray = types.color256 = types.color24bit = 1;
      sheet.offsetSizeMm.top = 3200;
      sheet.resolutionDpiMax = feeder;
      sheet.resolutionDpiMin = {100, 100};
    }
  }

  void advanced() {
    auto& a = c_.advancedFunc;
    a.idCardMode.cap = a.plasticCard.cap = a.blankRemoval.cap = a.autoColor.cap = a.detectResolution = 1;
    a.landscape.cap = has(b_[51] != 0);
    if (b_[51] != 0) {
      a.landscape.ladscapeCapablePaperSource.adfSimplex = adf();
      a.landscape.ladscapeCapablePaperSource.adfDuplex = dup();
    }
    a.multifeedDetect.cap = has(b_[19] != 0);
    a.multifeedDetect.systemType = 1;
    const SUPPORTADJUSTLEVEL removal = b_[26] != 0 ? SUPPORTADJUSTLEVEL{2, 255} : SUPPORTADJUSTLEVEL{1, 0};
    a.backgroundRemove.blackAndWhite = a.backgroundRemove.errorDiffusion = removal;
    a.backgroundRemove.trueGray = a.backgroundRemove.color24bit = {1, 0};
    const bool feeder = flag(b_[17], 3) != 0, flatbed = flag(b_[17], 4) != 0;
    a.deskew.cap = has(feeder || flatbed);
    a.deskew.suportPaperSource.flatbed = flatbed;
    a.deskew.suportPaperSource.adfSimplex = feeder;
    a.deskew.suportPaperSource.adfDuplex = feeder && dup();
  }

  Bytes b_;
  QS_SCANNER_CAPABILITY c_;
};

QS_SCANNER_CAPABILITY parse(const Bytes& body) {
  const std::unique_ptr<unsigned char[]> copy(new unsigned char[body.size()]);
  std::copy(body.begin(), body.end(), copy.get());
  return CParseCmdRes_v1().ParseDeviceInfoResponse(copy.get(), static_cast<long>(body.size()));
}

bool same(const Bytes& body, const Bytes& block) {
  const CapabilityFields got(parse(body)), wanted(Model(block).capability());
  if (got == wanted) return true;
  ADD_FAILURE() << got.differenceTo(wanted);
  return false;
}

Bytes put16(Bytes block, std::size_t at, unsigned value) {
  block[at] = static_cast<unsigned char>(value);
  block[at + 1] = static_cast<unsigned char>(value >> 8);
  return block;
}
// The block of a device with the sources of the three bits: flatbed, feeder, both sides.
Bytes withSources(int present) {
  Bytes block = kDefaultBlock;
  for (int source = 0; source < 3; ++source) {
    if ((present >> source & 1) == 0) block = put16(block, static_cast<std::size_t>(27 + 4 * source), 0);
  }
  return block;
}

TEST(QCapabilityRows, EveryByteWithEveryValueForEveryChoiceOfSources) {
  for (int present = 0; present < 8; ++present) {
    for (std::size_t at = 0; at < 73; ++at) {
      for (int value = 0; value < 256; ++value) {
        Bytes block = withSources(present);
        block[at] = static_cast<unsigned char>(value);
        ASSERT_TRUE(same(block, block)) << "sources " << present << " byte " << at << " value " << value;
      }
    }
  }
}

TEST(QCapabilityRows, EveryWordAtItsEdges) {
  for (int present = 0; present < 8; ++present) {
    for (const std::size_t at : {27, 29, 31, 33, 35, 37, 39, 41, 43, 45, 47, 49, 54, 56, 58, 60, 62, 64, 67}) {
      for (const unsigned value : {0u,    1u,    255u,  256u,  599u,  600u,  601u,  899u,   900u,   901u,  2999u,
                                   3000u, 5999u, 6000u, 6001u, 8999u, 9000u, 9001u, 32767u, 32768u, 65535u}) {
        const Bytes block = put16(withSources(present), at, value);
        ASSERT_TRUE(same(block, block)) << "sources " << present << " word " << at << " value " << value;
      }
    }
  }
}

TEST(QCapabilityRows, EveryPairOfSmallestLengthsAroundACard) {
  std::vector<unsigned> lengths = {0, 1, 65535};
  for (const unsigned bound : {600u, 900u, 3000u, 6000u, 9000u}) {
    for (const unsigned length : {bound - 1, bound, bound + 1}) lengths.push_back(length);
  }
  for (const unsigned x : lengths) {
    for (const unsigned y : lengths) {
      const Bytes block = put16(put16(kDefaultBlock, 39, x), 41, y);
      ASSERT_TRUE(same(block, block)) << x << " by " << y;
    }
  }
}

TEST(QCapabilityRows, AnyBlockOfAnyLength) {
  std::mt19937 random(34);
  for (int round = 0; round < 3000; ++round) {
    const std::size_t size = random() % 80;
    Bytes body(size);
    for (unsigned char& byte : body) {
      byte = static_cast<unsigned char>(random() % 2 == 0 ? random() % 4 : random());
    }
    // What the body does not begin is what it is by default; what it only begins is filled up with zero.
    Bytes block = kDefaultBlock;
    for (std::size_t i = 0; i < std::min<std::size_t>(size, 73); ++i) block[i] = body[i];
    if (size < 73) {
      const bool cutsWord = (size >= 4 && size <= 10 && size % 2 == 0) || (size >= 28 && size <= 50 && size % 2 == 0) ||
                            (size >= 55 && size <= 65 && size % 2 == 1) || size == 68;
      if (cutsWord) block[size] = 0;
    }
    ASSERT_TRUE(same(body, block)) << "round " << round << " of " << size << " bytes";
  }
}

// ---- the lines that are easy to get wrong, in numbers

TEST(QCapabilityRows, OneByteIsTheDeviceOfAllDefaults) {
  for (const Bytes& body : {Bytes{0x0B}, Bytes{}}) {
    const QS_SCANNER_CAPABILITY c = parse(body);
    EXPECT_EQ(c.commandVersion, 11);
    for (const AXIS& size : {c.baseFunc.deviceScanSizeMax.flatbed, c.baseFunc.deviceScanSizeMax.simplex,
                             c.baseFunc.deviceScanSizeMax.duplex}) {
      EXPECT_EQ(size.x, 21000u);
      EXPECT_EQ(size.y, 34960u);
    }
    EXPECT_EQ(c.baseFunc.resolutionOptical.flatbed.x, 1200u);
    EXPECT_EQ(c.baseFunc.resolutionOptical.flatbed.y, 2400u);
    EXPECT_EQ(c.baseFunc.marginSize.flatbed.left, 300);
    EXPECT_EQ(c.baseFunc.marginSize.adfDuplex.bottom, 300);
    EXPECT_EQ(c.baseFunc.paperSource.adfStackCapacity, 50);
    EXPECT_EQ(c.advancedFunc.deskew.cap, 2);
    EXPECT_EQ(c.advancedFunc.deskew.suportPaperSource.flatbed, 0);
    EXPECT_EQ(c.advancedFunc.deskew.suportPaperSource.adfSimplex, 1);
    EXPECT_EQ(c.advancedFunc.deskew.suportPaperSource.adfDuplex, 1);
  }
  EXPECT_EQ(CParseCmdRes_v1().ParseDeviceInfoResponse(nullptr, 0).commandVersion, 11);
}

TEST(QCapabilityRows, WithoutAFlatbedCardsStillLieOnIt) {
  const QS_SCANNER_CAPABILITY c = parse(withSources(6));
  EXPECT_EQ(c.baseFunc.paperSource.supportPaperSource.flatbed, 0);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMax.flatbed.x, 0u);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMax.flatbed.y, 0u);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMin.flatbed.x, 0u);
  EXPECT_EQ(c.baseFunc.cardSizeOrient.capFlatbed, 2);
}

TEST(QCapabilityRows, TheSmallestPaperTellsHowCardsGoThroughTheFeeder) {
  const struct {
    unsigned x, y;
    int cap, orient;
  } rows[] = {{5000, 5000, 2, 2}, {5000, 7000, 2, 1}, {7000, 7000, 1, 0}, {1440, 1440, 1, 0}, {0, 0, 2, 2}};
  for (const auto& row : rows) {
    const auto card = parse(put16(put16(kDefaultBlock, 39, row.x), 41, row.y)).baseFunc.cardSizeOrient;
    EXPECT_EQ(card.capAdf, row.cap) << row.x << " by " << row.y;
    EXPECT_EQ(card.orientAdf, row.orient) << row.x << " by " << row.y;
  }
}

TEST(QCapabilityRows, LongPaperTellsItsLengthOnlyWithTheValueOne) {
  for (const int value : {0, 1, 2, 255}) {
    Bytes block = kDefaultBlock;
    block[18] = static_cast<unsigned char>(value);
    const LONGPAPERSUPPORTSIZE size = parse(block).baseFunc.longPaperLengthMax;
    EXPECT_EQ(size.cap, value == 0 ? 1 : 2);
    EXPECT_EQ(size.simplexMaxLength, value == 1 ? 86300 : 0);
    EXPECT_EQ(size.duplexMaxLength, 0);
    EXPECT_EQ(size.unit, value == 1 ? UNIT_MILLIMETER : UNIT_INCH);
  }
}

TEST(QCapabilityRows, WithoutScanFunctionsTwoGroupsSayNothingAndOneSaysMissing) {
  Bytes block = kDefaultBlock;
  block[17] = 0;
  const auto size = parse(block).advancedFunc.autoSize;
  EXPECT_EQ(size.autoCrop.cap, 0);
  EXPECT_EQ(size.paperWidthDetect.cap, 0);
  EXPECT_EQ(size.cornerDetect.cap, 1);
}

}  // namespace
