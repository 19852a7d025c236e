// The conversion where one value depends on another; every field by itself stands in qdi_capability_rows_test.
#include <gtest/gtest.h>

#include <random>

#include "parse/ParseCmdRes_v2.h"
#include "tests/parse/expected_capability.h"

using namespace orvalle_scan_api;
using namespace expected_capability;

TEST(qdi_capability, ABodyOfTheTerminatorIsADeviceWithoutSources) {
  expectSame(parse(TagBody().end().bytes), emptyDevice());
}

TEST(qdi_capability, EverySourceByteBringsItsDefaults) {
  for (int paperSource = 0; paperSource < 256; ++paperSource) {
    for (const int duplex : {0, 1, 2, 3, 255}) {
      SCOPED_TRACE(std::to_string(paperSource) + " " + std::to_string(duplex));
      const Sources s{paperSource, duplex};
      expectSame(parse(bodyWith(s).end().bytes), deviceWith(s));
    }
  }
}

TEST(qdi_capability, AFeederWithTheSecondDuplexSystemSaysSo) {
  const Capability c = parse(bodyWith({0x03, 2}).end().bytes);
  EXPECT_EQ(c.baseFunc.paperSource.supportPaperSource.adfDuplex, 1);
  EXPECT_EQ(c.baseFunc.paperSource.duplexScanSystem, 1);
}

TEST(qdi_capability, TwoSidesCountWithoutAFeeder) {
  const Capability c = parse(bodyWith({0x02, 1}).tag(0x0305, u16s({0, 0, 0, 0, 2160, 3000})).end().bytes);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMax.duplex.x, 21600u);
  EXPECT_EQ(c.baseFunc.deviceScanSizeMax.duplex.y, 30000u);
  EXPECT_EQ(c.baseFunc.paperSource.supportPaperSource.adfDuplex, 0);
}

TEST(qdi_capability, MarginsAreTakenOffTheSizeThatADocumentMayHave) {
  // 3 mm on each side of an A4 bed; the feeder tells the size of its documents itself, in one direction.
  Capability wanted = deviceWith({3, 0});
  auto& b = wanted.baseFunc;
  b.marginSize.flatbed = {-300, -300, -100, -200, UNIT_MILLIMETER};
  b.supportDocSizeMax.flatbed = {20400, 29400};
  b.marginSize.adfSimplex = {-10, -20, 30, 40, UNIT_MILLIMETER};
  b.supportDocSizeMax.simplex = {20970, 35000};
  expectSame(parse(bodyWith({3, 0})
                       .tag(0x0309, u16s({30, 30, 10, 20, 1, 2, -3, -4, 0, 0, 0, 0, 9, 9, 9, 9}))
                       .tag(0x0308, u16s({0, 0, 0, 3500, 0, 0}))
                       .end()
                       .bytes),
             wanted);
}

TEST(qdi_capability, MarginsWiderThanThePaperWrap) {
  BodyBytes margins = u16s({32767, 32767});
  margins.resize(32);
  const Capability c = parse(bodyWith({2, 0}).tag(0x0309, margins).end().bytes);
  EXPECT_EQ(c.baseFunc.supportDocSizeMax.flatbed.x, static_cast<std::uint32_t>(21000 - 655340));
}

TEST(qdi_capability, TheSameTablesServeTellingTheSizeBeforeTheSource) {
  // The order of the tags does not matter.
  const Capability late = parse(TagBody().tag(0x0305, u16s({2000, 3000, 0, 0, 0, 0})).tag(0x0302, {2, 0}).end().bytes);
  const Capability early = parse(TagBody().tag(0x0302, {2, 0}).tag(0x0305, u16s({2000, 3000, 0, 0, 0, 0})).end().bytes);
  expectSame(late, early);
  EXPECT_EQ(late.baseFunc.deviceScanSizeMax.flatbed.x, 20000u);
}

TEST(qdi_capability, TheCardSlotPositionIsTakenOnlyFromADeviceWithNothingElse) {
  for (int paperSource = 0; paperSource < 256; ++paperSource) {
    Capability wanted = deviceWith({paperSource, 0});
    if (paperSource == 4) {
      wanted.baseFunc.paperPosition.cardslotX = 2;
      wanted.baseFunc.paperPosition.cardslotY = 1;
    }
    expectSame(parse(bodyWith({paperSource, 0}).tag(0x030B, {0, 0, 0, 0, 3, 2}).end().bytes), wanted);
  }
}

TEST(qdi_capability, APlasticCardIsDescribedByTheCarrierSheetsTag) {
  const BodyBytes carrier = u16s({0x1F01, 5, 6, 100, 150, 600, 300, 0x1FF});
  Capability wanted = emptyDevice();
  auto& sheet = wanted.advancedFunc.carrierSheet;
  sheet.cap = 2;
  sheet.supportColorType = {1, 1, 1, 1, 1, 0, 0};
  sheet.offsetSizeMm = {50, 60};
  sheet.resolutionDpiMin = {100, 150};
  sheet.resolutionDpiMax = {600, 300};
  sheet.exclusion = {1, 1, 1, 1, 1, 1, 1, 1, 1};
  expectSame(parse(TagBody().tag(0x0505, carrier).end().bytes), wanted);

  auto& card = wanted.advancedFunc.plasticCard;
  card.cap = 2;
  card.supportColorType = sheet.supportColorType;
  card.resolutionDpiMin = sheet.resolutionDpiMin;
  card.resolutionDpiMax = sheet.resolutionDpiMax;
  card.exclusion = sheet.exclusion;
  const BodyBytes plastic = {1, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
  expectSame(parse(TagBody().tag(0x0505, carrier).tag(0x0506, plastic).end().bytes), wanted);
  expectSame(parse(TagBody().tag(0x0506, plastic).tag(0x0505, carrier).end().bytes), wanted);

  sheet.cap = 1;
  BodyBytes without = carrier;
  without[0] = 0;
  expectSame(parse(TagBody().tag(0x0505, without).tag(0x0506, plastic).end().bytes), wanted);
}

TEST(qdi_capability, OneByteAnswersForMoireAndTone) {
  const Capability c = parse(TagBody().tag(0x0407, {1, 0, 0, 0, 0, 0}).end().bytes);
  EXPECT_EQ(c.imageProcFunc.moireRemoval.moireCap, 2);
  EXPECT_EQ(c.imageProcFunc.toneAdjust, 2);
}

TEST(qdi_capability, TheColourOfAutomaticCroppingIsAValueAndNoMask) {
  const Capability c = parse(TagBody().tag(0x0502, {1, 3, 0, 0, 0, 0, 0, 0, 0, 0}).end().bytes);
  Capability wanted = emptyDevice();
  wanted.advancedFunc.autoSize.autoCrop.cap = 2;
  expectSame(c, wanted);
}

TEST(qdi_capability, ANameIsCopiedAndOneOf128LettersHasNoEnd) {
  Capability wanted = emptyDevice();
  std::memcpy(wanted.modelInfo.modelName, "QS-7", 4);
  expectSame(parse(TagBody().tag(0x0102, "QS-7").end().bytes), wanted);
  std::memset(wanted.modelInfo.modelName, 'n', 128);
  expectSame(parse(TagBody().tag(0x0102, std::string(128, 'n')).end().bytes), wanted);
}

// Whatever the device's values are, flags are 0 or 1 and caps 0 to 2.
TEST(qdi_capability, AnyValuesGiveAWellFormedRecord) {
  std::mt19937 random(3);
  for (int round = 0; round < 5000; ++round) {
    _QDICMDRESPONSE response;
    auto* bytes = reinterpret_cast<unsigned char*>(&response);
    for (std::size_t i = 0; i < sizeof response; ++i) bytes[i] = static_cast<unsigned char>(random());
    const Capability c = CParseCmdRes_v2().GetParseDeviceInfoResponse(&response);
    EXPECT_EQ(c.generation, SCANCMD_GENERATION_UNKNOWN);
    const auto& a = c.advancedFunc;
    for (const CAP cap : {c.func.qciCommandSupport, c.baseFunc.cancelSystem.cap, c.baseFunc.colorTape.cap,
                          c.imageProcFunc.toneAdjust, a.deskew.cap, a.autoColor.cap, a.quietScan.cap}) {
      ASSERT_TRUE(cap >= 0 && cap <= 2);
    }
    for (const FLAG flag :
         {c.baseFunc.colorType.color256table, a.deskew.systemType[0], a.deskew.systemType[1],
          a.carrierSheet.exclusion.autoRotateByDevice, c.imageProcFunc.specialDocumentImageProcs.copy}) {
      ASSERT_LE(flag, 1);
    }
  }
}
