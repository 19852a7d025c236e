#include <gtest/gtest.h>

#include <random>

#include "tests/parse/expected_capability.h"
#include "tests/parse/q_body.h"

using namespace orvalle_scan_api;
using expected_capability::Capability;
using expected_capability::expectSame;

namespace {

// What a device of this generation is without having told anything but its version 11.
Capability defaultDevice() {
  Capability c = expected_capability::zero();
  c.commandVersion = 11;
  c.modelInfo.category = 1;
  auto& push = c.func.pushScan;
  push.supportPushScanEvent = {1, 1, 1, 1};
  push.continuousScan.cap = 1;
  push.paramSetting.cap = 2;

  auto& b = c.baseFunc;
  b.resolutionOptical = {{1200, 2400}, {1200, 2400}, {1200, 2400}};
  b.colorType = {1, 1, 1, 1, 1, 0, 0};
  b.paperSource.supportPaperSource = {1, 1, 1, 0};
  b.paperSource.duplexScanSystem = 1;
  b.paperSource.adfStackCapacity = 50;
  b.deviceScanSizeMax = {{21000, 34960}, {21000, 34960}, {21000, 34960}, UNIT_MILLIMETER};
  b.deviceScanSizeMin = {{1, 1}, {14400, 14400}, {14400, 14400}, UNIT_MILLIMETER};
  b.longPaperLengthMax.cap = 1;
  const MARGIN margin{300, 300, 300, 300, UNIT_MILLIMETER};
  b.marginSize = {margin, margin, margin, {}};
  b.paperPosition = {0, 3, 1, 3, 1, 3};
  b.cardSizeOrient = {2, 2, 1, 0};

  auto& i = c.imageProcFunc;
  i.supportCompresssionType.blackAndWhite = {1, 1, 0, 0};
  i.supportCompresssionType.errorDiffusion = {1, 1, 0, 0};
  i.supportCompresssionType.trueGray = {1, 1, 0, 0};
  i.supportCompresssionType.color256 = {1, 0, 0, 0};
  i.supportCompresssionType.color24bit = {0, 0, 0, 1};
  i.monoThreshold.autoThresholdCap = 2;
  i.monoThreshold.manuanThresholdCap = 1;
  i.colorProfileOutput = 1;

  auto& a = c.advancedFunc;
  a.autoSize.cornerDetect.cap = 1;
  a.idCardMode.cap = a.landscape.cap = a.carrierSheet.cap = a.plasticCard.cap = 1;
  a.multifeedDetect.cap = a.multifeedDetect.systemType = 1;
  a.backgroundRemove = {{2, 255}, {2, 255}, {1, 0}, {1, 0}};
  a.deskew.cap = 2;
  a.deskew.suportPaperSource = {0, 1, 1, 0};
  a.blankRemoval.cap = a.autoColor.cap = a.detectResolution = 1;
  return c;
}

TEST(QCapability, OneByteIsADeviceWithAllTheDefaults) { expectSame(parseQ({11}), defaultDevice()); }

TEST(QCapability, NoBodyIsADeviceWithAllTheDefaults) {
  expectSame(CParseCmdRes_v1().ParseDeviceInfoResponse(nullptr, 73), defaultDevice());
  expectSame(parseQ({}), defaultDevice());
}

TEST(QCapability, AWholeBodyOfDefaultsIsTheSameDevice) { expectSame(parseQ(QBody().bytes), defaultDevice()); }

struct Case {
  const char* name;
  QBody body;
  void (*change)(Capability&);
};

void withoutFlatbed(Capability& c) {
  auto& b = c.baseFunc;
  b.paperSource.supportPaperSource.flatbed = 0;
  b.resolutionOptical.flatbed = b.deviceScanSizeMax.flatbed = b.deviceScanSizeMin.flatbed = {0, 0};
  b.marginSize.flatbed = {0, 0, 0, 0, UNIT_MILLIMETER};
  b.paperPosition.flatbedX = b.paperPosition.flatbedY = 0;
}
void withoutFeeder(Capability& c) {
  auto& b = c.baseFunc;
  b.paperSource.supportPaperSource.adfSimplex = 0;
  b.paperSource.adfStackCapacity = 0;
  b.resolutionOptical.adfSimplex = b.deviceScanSizeMax.simplex = b.deviceScanSizeMin.simplex = {0, 0};
  b.marginSize.adfSimplex = {0, 0, 0, 0, UNIT_MILLIMETER};
  b.paperPosition.adfX = b.paperPosition.adfY = 0;
  b.cardSizeOrient.capAdf = b.cardSizeOrient.orientAdf = 0;
}
void withoutSecondSide(Capability& c) {
  auto& b = c.baseFunc;
  b.paperSource.supportPaperSource.adfDuplex = 0;
  b.paperSource.duplexScanSystem = 0;
  b.resolutionOptical.adfDuplex = b.deviceScanSizeMax.duplex = b.deviceScanSizeMin.duplex = {0, 0};
  b.marginSize.adfDuplex = {0, 0, 0, 0, UNIT_MILLIMETER};
  b.paperPosition.cardslotX = b.paperPosition.cardslotY = 0;
  c.advancedFunc.deskew.suportPaperSource.adfDuplex = 0;
}

TEST(QCapability, EachFieldChangesWhatItStandsForAndNothingElse) {
  const Case cases[] = {
      {"version", QBody().set8(q::kVersion, 1), [](Capability& c) { c.commandVersion = 1; }},
      {"version is not signed", QBody().set8(q::kVersion, 0xF3), [](Capability& c) { c.commandVersion = 0xF3; }},
      {"no flatbed", QBody().set16(q::kFlatbedMax, 0), withoutFlatbed},
      {"no feeder", QBody().set16(q::kAdfMax, 0), withoutFeeder},
      {"one side", QBody().set16(q::kDuplexMax, 0), withoutSecondSide},
      {"high byte of a width is enough for a source", QBody().set16(q::kFlatbedMax, 0x0100),
       [](Capability& c) { c.baseFunc.deviceScanSizeMax.flatbed.x = 2560; }},
      {"largest words", QBody().setXY(q::kFlatbedMax, 65535, 65535),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMax.flatbed = {655350, 655350};
       }},
      {"flatbed without a length", QBody().setXY(q::kFlatbedMax, 2160, 0),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMax.flatbed = {21600, 29700};
       }},
      {"feeder without a length", QBody().setXY(q::kAdfMax, 2160, 0),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMax.simplex = {21600, 35560};
       }},
      {"two sides without a length", QBody().setXY(q::kDuplexMax, 2170, 0),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMax.duplex = {21700, 35560};
       }},
      {"smallest two-sided paper", QBody().setXY(q::kDuplexMin, 0, 7),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMin.duplex = {1, 70};
       }},
      {"smallest two-sided paper without a length", QBody().setXY(q::kDuplexMin, 6, 0),
       [](Capability& c) {
         c.baseFunc.deviceScanSizeMin.duplex = {60, 1};
       }},
      {"resolutions",
       QBody().setXY(q::kFlatbedOptical, 1, 2).setXY(q::kAdfOptical, 3, 4).setXY(q::kDuplexOptical, 5, 6),
       [](Capability& c) {
         c.baseFunc.resolutionOptical = {{1, 2}, {3, 4}, {5, 6}};
       }},
      {"stack", QBody().set16(q::kStackCapacity, 0x0201),
       [](Capability& c) { c.baseFunc.paperSource.adfStackCapacity = 0x0201; }},
      {"long paper", QBody().set8(q::kLongPaper, 1),
       [](Capability& c) {
         c.baseFunc.longPaperLengthMax = {2, 86300, 0, UNIT_MILLIMETER};
       }},
      {"long paper without a length", QBody().set8(q::kLongPaper, 2),
       [](Capability& c) { c.baseFunc.longPaperLengthMax.cap = 2; }},
      {"positions",
       QBody()
           .set8(q::kFlatbedPosition, 2)
           .set8(q::kFlatbedPosition + 1, 2)
           .set8(q::kAdfPosition, 3)
           .set8(q::kAdfPosition + 1, 3)
           .set8(q::kCardPosition, 3)
           .set8(q::kCardPosition + 1, 2),
       [](Capability& c) { c.baseFunc.paperPosition = {1, 1, 2, 4, 2, 1}; }},
      {"unknown positions", QBody().set8(q::kAdfPosition, 4).set8(q::kAdfPosition + 1, 0xFF),
       [](Capability& c) { c.baseFunc.paperPosition.adfX = 0, c.baseFunc.paperPosition.adfY = 3; }},
      {"landscape", QBody().set8(q::kLandscape, 0x80),
       [](Capability& c) {
         c.advancedFunc.landscape = {2, {0, 1, 1, 0}};
       }},
      {"multifeed", QBody().set8(q::kMultifeed, 0x80), [](Capability& c) { c.advancedFunc.multifeedDetect.cap = 2; }},
      {"background removal missing", QBody().set8(q::kRemoveBackground, 0),
       [](Capability& c) {
         c.advancedFunc.backgroundRemove = {{1, 0}, {1, 0}, {1, 0}, {1, 0}};
       }},
      {"carrier sheet", QBody().set8(q::kCarrierSheet, 1).setXY(q::kAdfOptical, 600, 900),
       [](Capability& c) {
         c.baseFunc.resolutionOptical.adfSimplex = {600, 900};
         c.advancedFunc.carrierSheet = {2, 0, {1, 1, 1, 1, 1, 0, 0}, {3200, 0}, {600, 900}, {100, 100}, {}};
       }},
      {"carrier sheet's other bits", QBody().set8(q::kCarrierSheet, 0xFE), [](Capability&) {}},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    Capability wanted = defaultDevice();
    one.change(wanted);
    expectSame(parseQ(one.body.bytes), wanted);
  }
}

TEST(QCapability, BytesWithoutAMeaningChangeNothing) {
  for (const int offset : {1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 21, 22, 23, 24, 25, 66, 69, 70, 71, 72}) {
    SCOPED_TRACE(offset);
    expectSame(parseQ(QBody().set8(offset, 0xFF).bytes), defaultDevice());
  }
}

TEST(QCapability, ColorTypeIsAMask) {
  for (int mask = 0; mask < 256; ++mask) {
    Capability wanted = defaultDevice();
    const auto flag = [mask](int bit) { return static_cast<FLAG>(mask >> bit & 1); };
    wanted.baseFunc.colorType = {flag(0), flag(1), flag(2), flag(3), flag(4), 0, 0};
    SCOPED_TRACE(mask);
    expectSame(parseQ(QBody().set8(q::kColorType, mask).bytes), wanted);
  }
}

TEST(QCapability, MarginsArePositiveAndTheSameForEverySource) {
  const Capability c = parseQ(QBody().set16(q::kMarginX, 31).set16(q::kMarginY, 65535).bytes);
  Capability wanted = defaultDevice();
  const MARGIN margin{310, 310, 655350, 655350, UNIT_MILLIMETER};
  wanted.baseFunc.marginSize = {margin, margin, margin, {0, 0, 0, 0, UNIT_INCH}};
  expectSame(c, wanted);
}

TEST(QCapability, TheCardPositionHangsOnTwoSidedFeeding) {
  const Capability c = parseQ(QBody().set16(q::kDuplexMax, 0).set8(q::kCardPosition, 2).bytes);
  EXPECT_EQ(c.baseFunc.paperPosition.cardslotX, 0);
  EXPECT_EQ(c.baseFunc.paperPosition.cardslotY, 0);
}

TEST(QCapability, CardsLieOnAFlatbedThatIsNotThere) {
  const Capability c = parseQ(QBody().set16(q::kFlatbedMax, 0).bytes);
  EXPECT_EQ(c.baseFunc.cardSizeOrient.capFlatbed, 2);
  EXPECT_EQ(c.baseFunc.cardSizeOrient.orientFlatbed, 2);
}

TEST(QCapability, CardsGoThroughTheFeederByItsSmallestPaper) {
  const struct {
    int minX, minY, cap, orient;
  } rows[] = {
      // Told in hundredths of a millimetre.
      {5000, 5000, 2, 2},
      {5000, 7000, 2, 1},
      {7000, 7000, 1, 0},
      {9000, 6000, 2, 2},
      {9001, 6000, 1, 0},
      {9000, 6001, 1, 0},
      {6000, 9000, 2, 1},
      {6001, 9000, 1, 0},
      {6000, 9001, 1, 0},
      {3000, 3000, 2, 2},
      {65535, 3000, 1, 0},
      // In tenths.
      {1440, 1440, 1, 0},
      {900, 600, 2, 2},
      {901, 600, 1, 0},
      {900, 601, 1, 0},
      {600, 900, 2, 1},
      {601, 900, 1, 0},
      {600, 901, 1, 0},
      {2999, 2999, 1, 0},
      {1, 1, 2, 2},
      // One of each, and not told at all.
      {600, 9000, 2, 1},
      {6000, 900, 2, 1},
      {0, 0, 2, 2},
      {0, 7000, 2, 1},
      {0, 901, 1, 0},
  };
  for (const auto& row : rows) {
    const Capability c = parseQ(QBody().setXY(q::kAdfMin, row.minX, row.minY).bytes);
    EXPECT_EQ(c.baseFunc.cardSizeOrient.capAdf, row.cap) << row.minX << " by " << row.minY;
    EXPECT_EQ(c.baseFunc.cardSizeOrient.orientAdf, row.orient) << row.minX << " by " << row.minY;
    // The size itself is always told in tenths.
    EXPECT_EQ(c.baseFunc.deviceScanSizeMin.simplex.x, row.minX == 0 ? 1u : static_cast<unsigned>(row.minX) * 10);
    EXPECT_EQ(c.baseFunc.deviceScanSizeMin.simplex.y, row.minY == 0 ? 1u : static_cast<unsigned>(row.minY) * 10);
  }
}

TEST(QCapability, EveryMaskOfScanFunctions) {
  for (int mask = 0; mask < 256; ++mask) {
    Capability wanted = defaultDevice();
    auto& a = wanted.advancedFunc;
    if ((mask & 1) != 0) a.autoSize.autoCrop = {2, {0, 0, 0, 0, 1, 0, 0}, {300, 300}, {300, 300}};
    if ((mask & 2) != 0) a.autoSize.paperWidthDetect = {2, {1, 1, 1, 1, 1, 0, 0}, {1, 1, 1, 0}};
    if ((mask & 4) != 0) {
      a.autoSize.cornerDetect = {2, {0, 0, 1, 1, 1, 0, 0}, {0, 1, 1, 0}, 1, {100, 100}, {1200, 2400}};
    }
    const bool feeder = (mask & 8) != 0;
    const bool flatbed = (mask & 16) != 0;
    a.deskew = {feeder || flatbed ? 2 : 1, {flatbed, feeder, feeder, 0}, {}};
    SCOPED_TRACE(mask);
    expectSame(parseQ(QBody().set8(q::kScanFunc, mask).bytes), wanted);
  }
}

TEST(QCapability, AMissingWayToFindTheSizeIsToldInTwoWays) {
  const Capability c = parseQ(QBody().set8(q::kScanFunc, 0).bytes);
  EXPECT_EQ(c.advancedFunc.autoSize.paperWidthDetect.cap, 0);
  EXPECT_EQ(c.advancedFunc.autoSize.autoCrop.cap, 0);
  EXPECT_EQ(c.advancedFunc.autoSize.cornerDetect.cap, 1);
  EXPECT_EQ(c.advancedFunc.deskew.cap, 1);
}

TEST(QCapability, FindingTheSizeKnowsTheDevicesColoursAndSources) {
  const Capability c = parseQ(QBody().set8(q::kScanFunc, 6).set8(q::kColorType, 5).set16(q::kAdfMax, 0).bytes);
  Capability wanted = defaultDevice();
  withoutFeeder(wanted);
  wanted.baseFunc.colorType = {1, 0, 1, 0, 0, 0, 0};
  wanted.advancedFunc.autoSize.paperWidthDetect = {2, {1, 0, 1, 0, 0, 0, 0}, {1, 0, 1, 0}};
  // Without a feeder there is no highest resolution, though the sources stay.
  wanted.advancedFunc.autoSize.cornerDetect = {2, {0, 0, 1, 1, 1, 0, 0}, {0, 1, 1, 0}, 1, {100, 100}, {0, 0}};
  wanted.advancedFunc.deskew = {1, {}, {}};
  expectSame(c, wanted);
}

TEST(QCapability, LandscapeIsForTheSidesThatTheFeederHas) {
  const auto sources = [](const QBody& body) {
    return parseQ(body.bytes).advancedFunc.landscape.ladscapeCapablePaperSource;
  };
  const auto one = sources(QBody().set8(q::kLandscape, 1).set16(q::kDuplexMax, 0));
  EXPECT_EQ(one.adfSimplex, 1);
  EXPECT_EQ(one.adfDuplex, 0);
  EXPECT_EQ(one.flatbed, 0);
  const auto two = sources(QBody().set8(q::kLandscape, 1).set16(q::kAdfMax, 0));
  EXPECT_EQ(two.adfSimplex, 0);
  EXPECT_EQ(two.adfDuplex, 1);
}

TEST(QCapability, ThePredicatesTellPresentMissingAndUnknown) {
  const struct {
    int flatbed, feeder, duplex;
    CAP wantFlatbed, wantFeeder, wantDuplex;
  } rows[] = {
      {0, 0, 0, 0, 0, 0}, {1, 0, 0, 2, 1, 1}, {0, 1, 0, 1, 2, 0}, {1, 1, 0, 2, 2, 1},
      {0, 0, 1, 0, 0, 2}, {1, 0, 1, 2, 1, 2}, {0, 1, 1, 1, 2, 2}, {1, 1, 1, 2, 2, 2},
  };
  const CParseCmdRes_v1 parser;
  for (const auto& row : rows) {
    QCMDRESPONSE r = parser.GetDefaultQcmdResponse();
    r.flatbedMaxX = static_cast<std::uint16_t>(row.flatbed);
    r.adfMaxX = static_cast<std::uint16_t>(row.feeder);
    r.duplexMaxX = static_cast<std::uint16_t>(row.duplex);
    EXPECT_EQ(parser.IsFbScanSupported(r), row.wantFlatbed);
    EXPECT_EQ(parser.IsAdfSimplexScanSupported(r), row.wantFeeder);
    EXPECT_EQ(parser.IsAdfDuplexScanSupported(r), row.wantDuplex);
  }
  QCMDRESPONSE r = parser.GetDefaultQcmdResponse();
  for (int mask = 0; mask < 32; ++mask) {
    r.scanFunc = static_cast<std::uint8_t>(mask);
    EXPECT_EQ(parser.IsOverScanSupported(r), (mask & 0x11) != 0 ? 2 : 1) << mask;
    EXPECT_EQ(parser.IsFbDeskewSupported(r), (mask & 0x10) != 0 ? 2 : 1) << mask;
    EXPECT_EQ(parser.IsAdfDeskewSupported(r), (mask & 0x08) != 0 ? 2 : 1) << mask;
    EXPECT_EQ(parser.IsDetectCornerSupported(r), (mask & 0x04) != 0 ? 2 : 1) << mask;
    EXPECT_EQ(parser.IsDetectDocSizeSupported(r), (mask & 0x02) != 0 ? 2 : 1) << mask;
    EXPECT_EQ(parser.IsEdgeDetectScanSupported(r), (mask & 0x01) != 0 ? 2 : 1) << mask;
  }
  r.cardPositionX = r.cardPositionY = 0;
  EXPECT_EQ(parser.IsCardSlotScanSupported(r), 1);
  r.cardPositionY = 1;
  EXPECT_EQ(parser.IsCardSlotScanSupported(r), 2);
  r.cardPositionX = 1, r.cardPositionY = 0;
  EXPECT_EQ(parser.IsCardSlotScanSupported(r), 2);
}

TEST(QCapability, ACutBodyIsTheSameAsOnePaddedWithDefaults) {
  std::mt19937 random(34);
  for (int round = 0; round < 20; ++round) {
    QBytes whole(74);
    for (auto& byte : whole) byte = static_cast<unsigned char>(random());
    for (std::size_t size = 1; size <= whole.size(); ++size) {
      const QBytes body(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      QBytes padded = QBody().bytes;
      for (const QField& field : kQFields) {
        for (int i = 0; i < field.bytes && field.offset < static_cast<int>(size); ++i) {
          const auto at = static_cast<std::size_t>(field.offset + i);
          padded[at] = at < size ? whole[at] : 0;
        }
      }
      SCOPED_TRACE(size);
      expectSame(parseQ(body), parseQ(padded));
    }
  }
}

}  // namespace
