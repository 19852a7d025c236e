#include "api/DeviceCaps.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <utility>

#include "tests/api/caps_bench.h"

namespace caps_test {
namespace {

// --- The fetch -------------------------------------------------------------------------------------------------------

TEST(DeviceCaps, AnswerNothingBeforeTheyAreInitialised) {
  CDeviceCaps caps;
  Record record;
  std::memset(&record, 0x5A, sizeof record);
  const Record untouched = record;
  EXPECT_FALSE(caps.IsInitialized());
  EXPECT_EQ(caps.GetDeviceCapability(&record), 0x10300001u);
  EXPECT_TRUE(sameBytes(record, untouched));
  const OPTICALRESOLUTIONS dpi = caps.GetOpticalResolution();
  for (const AXIS& axis : {dpi.flatbed, dpi.adfSimplex, dpi.adfDuplex}) {
    EXPECT_EQ(axis.x, 1200u);
    EXPECT_EQ(axis.y, 1200u);
  }
}

TEST(DeviceCaps, AskTheDeviceOnce) {
  Bench bench;
  Record first;
  Record second;
  std::memset(&second, 0x5A, sizeof second);
  EXPECT_TRUE(bench.caps.IsInitialized());
  EXPECT_EQ(bench.caps.GetDeviceCapability(&first), 0u);
  EXPECT_EQ(bench.queries(), 1);
  EXPECT_EQ(first.generation, SCANCMD_GENERATION_2ND);
  EXPECT_EQ(first.commandVersion, 0x0102);
  EXPECT_EQ(first.modelInfo.category, 2);
  EXPECT_EQ(bench.caps.GetDeviceCapability(&second), 0u);
  EXPECT_TRUE(sameBytes(first, second));
  bench.caps.GetMaxSize();
  bench.caps.IsInkAio();
  EXPECT_EQ(bench.caps.GetScannerCommandVersion(), 0x0102);
  EXPECT_EQ(bench.queries(), 0);
}

TEST(DeviceCaps, ASecondInitialiseChangesNothing) {
  Bench bench;
  fakes::FakeScanCommand other(bench.calls);
  other.results["QueryDeviceCapability"] = 0x40500031;
  EXPECT_EQ(bench.caps.Initialize(other), 0u);
  Record record;
  EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0u);
}

TEST(DeviceCaps, UnInitialiseForgetsTheRecord) {
  Bench bench;
  Record record;
  EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0u);
  EXPECT_EQ(bench.caps.UnInitialize(), 0u);
  EXPECT_FALSE(bench.caps.IsInitialized());
  EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0x10300001u);
  bench.body = tag(0x0001, u16(0x0105)) + fakes::endTag();
  bench.answerBody();
  bench.caps.Initialize(bench.command);
  EXPECT_EQ(bench.caps.GetScannerCommandVersion(), 0x0105);
  EXPECT_EQ(bench.queries(), 2);
}

TEST(DeviceCaps, AFailedQueryIsReturnedAndAskedAgainByTheNextQuestion) {
  Dead bench;
  Record record;
  EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0x40500031u);
  EXPECT_EQ(bench.caps.GetScannerCommandVersion(), 0x0101);
  EXPECT_EQ(bench.queries(), 2);
  bench.command.results.clear();
  EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0u);
}

TEST(DeviceCaps, AnEmptyAnswerIsAFailure) {
  for (const long size : {0L, -1L}) {
    Bench bench;
    bench.command.capabilityAnswer.size = size;
    Record record;
    EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0x1030000Au);
    EXPECT_EQ(bench.caps.GetDeviceCapability(&record), 0x1030000Au);
    EXPECT_EQ(bench.queries(), 2);
  }
}

TEST(DeviceCaps, EveryQuestionOfADeadDeviceAsksOnce) {
  const struct {
    const char* name;
    void (*ask)(CDeviceCaps&);
  } questions[] = {{"GetScannerCommandVersion", [](CDeviceCaps& c) { c.GetScannerCommandVersion(); }},
                   {"GetOpticalResolution", [](CDeviceCaps& c) { c.GetOpticalResolution(); }},
                   {"GetColorTypes", [](CDeviceCaps& c) { c.GetColorTypes(); }},
                   {"GetPaperSource", [](CDeviceCaps& c) { c.GetPaperSource(); }},
                   {"IsFlatbedSupported", [](CDeviceCaps& c) { c.IsFlatbedSupported(); }},
                   {"IsAdfSupported", [](CDeviceCaps& c) { c.IsAdfSupported(); }},
                   {"IsDuplexSupport", [](CDeviceCaps& c) { c.IsDuplexSupport(); }},
                   {"GetMaxSize", [](CDeviceCaps& c) { c.GetMaxSize(); }},
                   {"GetMinSize", [](CDeviceCaps& c) { c.GetMinSize(); }},
                   {"GetMarginSize", [](CDeviceCaps& c) { c.GetMarginSize(); }},
                   {"GetPaperPosition", [](CDeviceCaps& c) { c.GetPaperPosition(); }},
                   {"GetCardSizeOrientation", [](CDeviceCaps& c) { c.GetCardSizeOrientation(); }},
                   {"IsLongPaperSupport", [](CDeviceCaps& c) { c.IsLongPaperSupport(); }},
                   {"GetLongPaperMaxLength", [](CDeviceCaps& c) { c.GetLongPaperMaxLength(UNIT_INCH); }},
                   {"IsAutoCropSupport", [](CDeviceCaps& c) { c.IsAutoCropSupport(); }},
                   {"IsAutoPaperSizeSupport", [](CDeviceCaps& c) { c.IsAutoPaperSizeSupport(); }},
                   {"IsAutoDeskewSupport", [](CDeviceCaps& c) { c.IsAutoDeskewSupport(); }},
                   {"IsRemoveBackground", [](CDeviceCaps& c) { c.IsRemoveBackgroundColorSupport(nullptr); }},
                   {"IsCarrierSheetSupport", [](CDeviceCaps& c) { c.IsCarrierSheetSupport(); }},
                   {"IsPlasticCardModeSupport", [](CDeviceCaps& c) { c.IsPlasticCardModeSupport(); }},
                   {"IsMultifeedDetectSupport", [](CDeviceCaps& c) { c.IsMultifeedDetectSupport(); }},
                   {"IsIccProfileSupport", [](CDeviceCaps& c) { c.IsIccProfileSupport(); }},
                   {"IsQuietModeSupport", [](CDeviceCaps& c) { c.IsQuietModeSupport(); }},
                   {"GetQuietModeCapability", [](CDeviceCaps& c) { c.GetQuietModeCapability(nullptr); }},
                   {"IsAutoColorSupport", [](CDeviceCaps& c) { c.IsAutoColorSupport(); }},
                   {"GetAutoColorCapability", [](CDeviceCaps& c) { c.GetAutoColorCapability(nullptr); }},
                   {"GetBlankRemovalCapability", [](CDeviceCaps& c) { c.GetBlankRemovalCapability(nullptr); }},
                   {"GetXferCountCapability", [](CDeviceCaps& c) { c.GetXferCountCapability(); }},
                   {"IsEdgeCutSupport", [](CDeviceCaps& c) { c.IsEdgeCutSupport(); }},
                   {"IsDocumentScanner", [](CDeviceCaps& c) { c.IsDocumentScanner(); }},
                   {"IsInkAio", [](CDeviceCaps& c) { c.IsInkAio(); }}};
  for (const auto& question : questions) {
    Dead bench;
    question.ask(bench.caps);
    EXPECT_EQ(bench.queries(), 1) << question.name;
    Bench alive;
    question.ask(alive.caps);
    question.ask(alive.caps);
    EXPECT_EQ(alive.queries(), 1) << question.name;
  }
}

TEST(DeviceCaps, ThreeFixedQuestionsAskTheDeviceFirst) {
  Dead bench;
  EXPECT_FALSE(bench.caps.IsMonochromizeAutoThresholdSupport());
  EXPECT_EQ(bench.queries(), 1);
  EXPECT_FALSE(bench.caps.IsDustRemovalSupport());
  EXPECT_EQ(bench.queries(), 1);
  EXPECT_FALSE(bench.caps.IsLineRemovalSupport());
  EXPECT_EQ(bench.queries(), 1);
}

TEST(DeviceCaps, TheOtherFixedAnswersAskNothing) {
  Dead bench;
  EXPECT_FALSE(bench.caps.IsAutoRotateSupport());
  EXPECT_TRUE(bench.caps.IsDetectEndOfPageSupport());
  EXPECT_TRUE(bench.caps.IsMonochromizeCustomThresholdSupport());
  EXPECT_TRUE(bench.caps.IsColorToneSupport());
  EXPECT_TRUE(bench.caps.IsSmoothingSupport());
  EXPECT_TRUE(bench.caps.IsDotTextCombineSupport());
  EXPECT_EQ(bench.queries(), 0);
}

// --- Defaults --------------------------------------------------------------------------------------------------------

TEST(DeviceCaps, ADeadDeviceLooksLikeAnA4MachineOf1200Dpi) {
  Dead bench;
  CDeviceCaps& caps = bench.caps;
  EXPECT_EQ(caps.GetScannerCommandVersion(), 0x0101);
  EXPECT_EQ(caps.GetColorTypes(), 0x100010101u);
  EXPECT_TRUE(sameBytes(caps.GetPaperSource(), SUPPORTPAPERSOURCES{1, 1, 1, 0}));
  EXPECT_FALSE(caps.IsFlatbedSupported()) << "the flags' own default is no";
  EXPECT_FALSE(caps.IsAdfSupported());
  EXPECT_FALSE(caps.IsDuplexSupport());
  EXPECT_TRUE(sameBytes(caps.GetMaxSize(), DEVICESCANSIZES{{21000, 29700}, {21000, 29700}, {21000, 29700}, UNIT_INCH}));
  EXPECT_TRUE(sameBytes(caps.GetMinSize(), DEVICESCANSIZES{{1000, 1000}, {1000, 1000}, {1000, 1000}, UNIT_INCH}));
  const MARGIN three{300, 300, 300, 300, UNIT_MILLIMETER};
  const auto margins = caps.GetMarginSize();
  EXPECT_TRUE(sameBytes(margins.flatbed, three));
  EXPECT_TRUE(sameBytes(margins.adfSimplex, three));
  EXPECT_TRUE(sameBytes(margins.adfDuplex, three));
  EXPECT_TRUE(sameBytes(margins.cardslot, MARGIN{}));
  EXPECT_TRUE(sameBytes(caps.GetPaperPosition(), PAPERSETTINGPOSITIONS{0, 3, 1, 3, 1, 3}));
  EXPECT_TRUE(sameBytes(caps.GetCardSizeOrientation(), CARDSIZEORIENT{2, 2, 2, 1}));
  EXPECT_FALSE(caps.IsLongPaperSupport());
  EXPECT_EQ(caps.GetLongPaperMaxLength(UNIT_MILLIMETER), 0);
  EXPECT_FALSE(caps.IsAutoCropSupport());
  EXPECT_FALSE(caps.IsAutoPaperSizeSupport());
  EXPECT_EQ(caps.GetAutoPaperSizeCapability(nullptr), 1);
  EXPECT_FALSE(caps.IsAutoDeskewSupport());
  EXPECT_EQ(caps.GetAutoDeskewCapability(nullptr), 1);
  EXPECT_FALSE(caps.IsRemoveBackgroundColorSupport(nullptr));
  EXPECT_FALSE(caps.IsCarrierSheetSupport());
  EXPECT_FALSE(caps.IsPlasticCardModeSupport());
  EXPECT_FALSE(caps.IsMultifeedDetectSupport());
  EXPECT_FALSE(caps.IsIccProfileSupport());
  EXPECT_FALSE(caps.IsQuietModeSupport());
  EXPECT_EQ(caps.GetQuietModeCapability(nullptr), 1);
  EXPECT_FALSE(caps.IsAutoColorSupport());
  EXPECT_EQ(caps.GetAutoColorCapability(nullptr), 1);
  EXPECT_EQ(caps.GetBlankRemovalCapability(nullptr), 1);
  EXPECT_EQ(caps.GetXferCountCapability(), 0);
  EXPECT_FALSE(caps.IsEdgeCutSupport());
  EXPECT_FALSE(caps.IsDocumentScanner());
  EXPECT_FALSE(caps.IsInkAio());
  EXPECT_TRUE(caps.IsLaserAio());
}

// --- Answers out of the record
// -----------------------------------------------------------------------------------------

TEST(DeviceCaps, CopiesAreTheRecordsOwnFields) {
  Known known([](Record& record) {
    std::mt19937 random(3);
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    for (std::size_t i = 0; i < sizeof record; ++i) bytes[i] = static_cast<unsigned char>(random());
  });
  const DEVINFO_BASEFUNC& base = known.record().baseFunc;
  EXPECT_EQ(known.caps.GetScannerCommandVersion(), known.record().commandVersion);
  EXPECT_TRUE(sameBytes(known.caps.GetOpticalResolution(), base.resolutionOptical));
  std::uint64_t colors = 0;
  std::memcpy(&colors, &base.colorType, 7);
  EXPECT_EQ(known.caps.GetColorTypes(), colors);
  EXPECT_TRUE(sameBytes(known.caps.GetPaperSource(), base.paperSource.supportPaperSource));
  EXPECT_TRUE(sameBytes(known.caps.GetMaxSize(), base.supportDocSizeMax));
  EXPECT_TRUE(sameBytes(known.caps.GetMinSize(), base.deviceScanSizeMin));
  EXPECT_TRUE(sameBytes(known.caps.GetMarginSize(), base.marginSize));
  EXPECT_TRUE(sameBytes(known.caps.GetPaperPosition(), base.paperPosition));
  EXPECT_TRUE(sameBytes(known.caps.GetCardSizeOrientation(), base.cardSizeOrient));
  Record copy;
  EXPECT_EQ(known.caps.GetDeviceCapability(&copy), 0u);
  EXPECT_TRUE(sameBytes(copy, known.record()));
  EXPECT_EQ(known.queries(), 0);
}

TEST(DeviceCaps, ColourTypesAreBytesOfOneNumberTheFirstFlagLowest) {
  Known known([](Record& record) { record.baseFunc.colorType = {1, 0, 0, 0, 0, 0, 0}; });
  EXPECT_EQ(known.caps.GetColorTypes(), 1u);
  known.record().baseFunc.colorType = {0, 0, 0, 1, 0, 1, 1};
  EXPECT_EQ(known.caps.GetColorTypes(), 0x01010001000000u);
  EXPECT_EQ(known.caps.GetColorTypes() >> 56, 0u) << "there is no eighth flag";
}

TEST(DeviceCaps, AFeatureIsThereOnlyIfItsCapIsTwo) {
  const struct {
    const char* name;
    CAP& (*cap)(Record&);
    bool (*ask)(CDeviceCaps&);
  } rows[] = {
      {"long paper", [](Record& r) -> CAP& { return r.baseFunc.longPaperLengthMax.cap; },
       [](CDeviceCaps& c) { return c.IsLongPaperSupport(); }},
      {"document scanner", [](Record& r) -> CAP& { return r.baseFunc.longPaperLengthMax.cap; },
       [](CDeviceCaps& c) { return c.IsDocumentScanner(); }},
      {"crop", [](Record& r) -> CAP& { return r.advancedFunc.autoSize.autoCrop.cap; },
       [](CDeviceCaps& c) { return c.IsAutoCropSupport(); }},
      {"ink", [](Record& r) -> CAP& { return r.advancedFunc.autoSize.autoCrop.cap; },
       [](CDeviceCaps& c) { return c.IsInkAio(); }},
      {"paper size by width", [](Record& r) -> CAP& { return r.advancedFunc.autoSize.paperWidthDetect.cap; },
       [](CDeviceCaps& c) { return c.IsAutoPaperSizeSupport(); }},
      {"paper size by corners", [](Record& r) -> CAP& { return r.advancedFunc.autoSize.cornerDetect.cap; },
       [](CDeviceCaps& c) { return c.IsAutoPaperSizeSupport(); }},
      {"paper size by the device", [](Record& r) -> CAP& { return r.advancedFunc.autoSize.deviceDetectSize.cap; },
       [](CDeviceCaps& c) { return c.IsAutoPaperSizeSupport(); }},
      {"deskew", [](Record& r) -> CAP& { return r.advancedFunc.deskew.cap; },
       [](CDeviceCaps& c) { return c.IsAutoDeskewSupport(); }},
      {"background, mono", [](Record& r) -> CAP& { return r.advancedFunc.backgroundRemove.blackAndWhite.cap; },
       [](CDeviceCaps& c) { return c.IsRemoveBackgroundColorSupport(nullptr); }},
      {"background, diffusion", [](Record& r) -> CAP& { return r.advancedFunc.backgroundRemove.errorDiffusion.cap; },
       [](CDeviceCaps& c) { return c.IsRemoveBackgroundColorSupport(nullptr); }},
      {"background, grey", [](Record& r) -> CAP& { return r.advancedFunc.backgroundRemove.trueGray.cap; },
       [](CDeviceCaps& c) { return c.IsRemoveBackgroundColorSupport(nullptr); }},
      {"background, colour", [](Record& r) -> CAP& { return r.advancedFunc.backgroundRemove.color24bit.cap; },
       [](CDeviceCaps& c) { return c.IsRemoveBackgroundColorSupport(nullptr); }},
      {"carrier sheet", [](Record& r) -> CAP& { return r.advancedFunc.carrierSheet.cap; },
       [](CDeviceCaps& c) { return c.IsCarrierSheetSupport(); }},
      {"plastic card", [](Record& r) -> CAP& { return r.advancedFunc.plasticCard.cap; },
       [](CDeviceCaps& c) { return c.IsPlasticCardModeSupport(); }},
      {"multifeed", [](Record& r) -> CAP& { return r.advancedFunc.multifeedDetect.cap; },
       [](CDeviceCaps& c) { return c.IsMultifeedDetectSupport(); }},
      {"profile", [](Record& r) -> CAP& { return r.imageProcFunc.colorProfileOutput; },
       [](CDeviceCaps& c) { return c.IsIccProfileSupport(); }},
      {"quiet", [](Record& r) -> CAP& { return r.advancedFunc.quietScan.cap; },
       [](CDeviceCaps& c) { return c.IsQuietModeSupport(); }},
      {"automatic colour", [](Record& r) -> CAP& { return r.advancedFunc.autoColor.cap; },
       [](CDeviceCaps& c) { return c.IsAutoColorSupport(); }},
  };
  for (const auto& row : rows) {
    for (const CAP cap : {0, 1, 2, 3}) {
      Known known([&](Record& record) { row.cap(record) = cap; });
      EXPECT_EQ(row.ask(known.caps), cap == 2) << row.name << " " << cap;
    }
  }
}

TEST(DeviceCaps, SourcesAreTheirFlags) {
  Known known([](Record& record) { record.baseFunc.paperSource.supportPaperSource = {1, 0, 1, 0}; });
  EXPECT_TRUE(known.caps.IsFlatbedSupported());
  EXPECT_FALSE(known.caps.IsAdfSupported());
  EXPECT_TRUE(known.caps.IsDuplexSupport());
  known.record().baseFunc.paperSource.supportPaperSource = {0, 1, 0, 0};
  EXPECT_FALSE(known.caps.IsFlatbedSupported());
  EXPECT_TRUE(known.caps.IsAdfSupported());
  EXPECT_FALSE(known.caps.IsDuplexSupport());
}

TEST(DeviceCaps, TheLongestPaperIsTheLongerOfTheTwoInTheUnitAskedFor) {
  Known known([](Record& record) { record.baseFunc.longPaperLengthMax = {2, 86300, 30000, UNIT_MILLIMETER}; });
  EXPECT_EQ(known.caps.GetLongPaperMaxLength(UNIT_MILLIMETER), 86300);
  EXPECT_EQ(known.caps.GetLongPaperMaxLength(UNIT_INCH), 33976);
  known.record().baseFunc.longPaperLengthMax.duplexMaxLength = 100000;
  EXPECT_EQ(known.caps.GetLongPaperMaxLength(UNIT_MILLIMETER), 100000);
  known.record().baseFunc.longPaperLengthMax.cap = 1;
  EXPECT_EQ(known.caps.GetLongPaperMaxLength(UNIT_MILLIMETER), 0);
}

TEST(DeviceCaps, TheAutomaticSizeGroupIsCopiedWhereOneOfItsWaysIsThere) {
  SUPPORTAUTOPAPERSIZEMODE mode{};
  Known known([](Record& record) {
    record.advancedFunc.autoSize.cornerDetect = {2, {1, 0, 1, 0, 1, 0, 0}, {1, 1, 0, 0}, 1, {100, 101}, {600, 601}};
    record.advancedFunc.autoSize.autoCrop.resolutionDpiMax = {7, 8};
  });
  EXPECT_EQ(known.caps.GetAutoPaperSizeCapability(&mode), 2);
  EXPECT_TRUE(sameBytes(mode, known.record().advancedFunc.autoSize));
  EXPECT_EQ(known.caps.GetAutoPaperSizeCapability(nullptr), 2);

  known.record().advancedFunc.autoSize.cornerDetect.cap = 1;
  known.record().advancedFunc.autoSize.autoCrop.cap = 2;
  SUPPORTAUTOPAPERSIZEMODE untouched{};
  mode = untouched;
  EXPECT_EQ(known.caps.GetAutoPaperSizeCapability(&mode), 1) << "cropping alone finds no size";
  EXPECT_TRUE(sameBytes(mode, untouched));
}

TEST(DeviceCaps, DeskewBackgroundAndQuietScanGiveTheirRecords) {
  Known known([](Record& record) {
    record.advancedFunc.deskew.cap = 2;
    record.advancedFunc.deskew.suportPaperSource = {0, 1, 1, 0};
    record.advancedFunc.backgroundRemove = {{1, 5}, {2, 6}, {1, 7}, {0, 8}};
    record.advancedFunc.quietScan = {1, 9, 10};
  });
  SUPPORTPAPERSOURCES sources{};
  EXPECT_EQ(known.caps.GetAutoDeskewCapability(&sources), 2);
  EXPECT_TRUE(sameBytes(sources, SUPPORTPAPERSOURCES{0, 1, 1, 0}));
  BACKGROUNDREMOVALSUPPORT background{};
  EXPECT_TRUE(known.caps.IsRemoveBackgroundColorSupport(&background));
  EXPECT_TRUE(sameBytes(background, known.record().advancedFunc.backgroundRemove));
  QUIETSCANSUPPORT quiet{};
  EXPECT_EQ(known.caps.GetQuietModeCapability(&quiet), 1);
  EXPECT_TRUE(sameBytes(quiet, QUIETSCANSUPPORT{1, 9, 10}));
}

TEST(DeviceCaps, TheDefaultOfAnAutomaticColourLevelIsTheMiddle) {
  Known known([](Record& record) { record.advancedFunc.autoColor = {2, 255, 0, 99, 30, 11, 99}; });
  AUTOCOLORLEVELSUPPORT levels{};
  EXPECT_EQ(known.caps.GetAutoColorCapability(&levels), 2);
  EXPECT_TRUE(sameBytes(levels, AUTOCOLORLEVELSUPPORT{2, 255, 0, 127, 30, 11, 20}));
  EXPECT_EQ(known.record().advancedFunc.autoColor.firstDefault, 99) << "the record itself stays";
}

TEST(DeviceCaps, BlankRemovalCompletesItsLevels) {
  Known known([](Record& record) { record.advancedFunc.blankRemoval = {2, 1, 2, 77, 9, 78, 79}; });
  BLANKREMOVALSUPPORT blank{};
  EXPECT_EQ(known.caps.GetBlankRemovalCapability(&blank), 2);
  EXPECT_TRUE(sameBytes(blank, BLANKREMOVALSUPPORT{2, 1, 2, 1, 9, 0, 4}));
}

TEST(DeviceCaps, TheNumberOfSheetsIsLimitedAsTheDeviceCan) {
  const struct {
    FLAG onePaper, pageNumbers;
    int count;
  } rows[] = {{0, 0, 0}, {1, 0, 1}, {0, 1, 2}, {1, 1, 2}};
  for (const auto& row : rows) {
    Known known([&](Record& record) { record.baseFunc.multipageScanSystem = {row.onePaper, row.pageNumbers}; });
    EXPECT_EQ(known.caps.GetXferCountCapability(), row.count);
  }
}

TEST(DeviceCaps, EdgesCanBeCutOnlyIfAllEightAdjustmentsAreThere) {
  const MARGIN whole{1, -1, 2, 3, UNIT_MILLIMETER};
  Known bed([&](Record& record) {
    record.baseFunc.paperSource.supportPaperSource.flatbed = 1;
    record.baseFunc.marginAdjust.flatbed_plus = record.baseFunc.marginAdjust.flatbed_minus = whole;
  });
  EXPECT_TRUE(bed.caps.IsEdgeCutSupport());
  for (MARGIN* margin :
       {&bed.record().baseFunc.marginAdjust.flatbed_plus, &bed.record().baseFunc.marginAdjust.flatbed_minus}) {
    for (std::int32_t MARGIN::*field : {&MARGIN::left, &MARGIN::right, &MARGIN::top, &MARGIN::bottom}) {
      const std::int32_t old = std::exchange(margin->*field, 0);
      EXPECT_FALSE(bed.caps.IsEdgeCutSupport());
      margin->*field = old;
    }
  }
  bed.record().baseFunc.paperSource.supportPaperSource = {0, 1, 0, 0};
  EXPECT_FALSE(bed.caps.IsEdgeCutSupport()) << "the feeder has none";
  bed.record().baseFunc.marginAdjust.adfSimplex_plus = bed.record().baseFunc.marginAdjust.adfSimplex_minus = whole;
  EXPECT_TRUE(bed.caps.IsEdgeCutSupport());
  bed.record().baseFunc.marginAdjust.adfSimplex_minus.bottom = 0;
  EXPECT_FALSE(bed.caps.IsEdgeCutSupport());
  bed.record().baseFunc.marginAdjust.adfSimplex_minus.bottom = 1;
  bed.record().baseFunc.paperSource.supportPaperSource = {0, 0, 1, 0};
  EXPECT_FALSE(bed.caps.IsEdgeCutSupport()) << "neither bed nor feeder";
}

TEST(DeviceCaps, TheMachineTypeIsToldByLongPaperAndCropping) {
  for (const CAP longPaper : {1, 2}) {
    for (const CAP crop : {1, 2}) {
      for (const int category : {0, 1, 2, 3}) {
        Known known([&](Record& record) {
          record.modelInfo.category = category;
          record.baseFunc.longPaperLengthMax.cap = longPaper;
          record.advancedFunc.autoSize.autoCrop.cap = crop;
        });
        EXPECT_EQ(known.caps.IsDocumentScanner(), longPaper == 2);
        EXPECT_EQ(known.caps.IsInkAio(), crop == 2);
        EXPECT_EQ(known.caps.IsLaserAio(), longPaper != 2 && crop != 2);
      }
    }
  }
}

TEST(DeviceCaps, TheResolutionListEndsAt1200ForADocumentScanner) {
  Known known([](Record& record) {
    record.baseFunc.longPaperLengthMax.cap = 2;
    record.baseFunc.resolutionOptical.flatbed = {300, 300};
  });
  using List = std::array<unsigned, kResolutionListEntries>;
  List list;
  list.fill(9);
  EXPECT_TRUE(known.caps.CreateResolutionList(list.data(), &known.record()));
  EXPECT_EQ(list, (List{100, 150, 200, 300, 400, 600, 1200, 0, 0, 0, 0}));
  known.record().baseFunc.longPaperLengthMax.cap = 1;
  EXPECT_TRUE(known.caps.CreateResolutionList(list.data(), &known.record()));
  EXPECT_EQ(list, (List{100, 150, 200, 300, 400, 600, 1200, 2400, 4800, 9600, 19200}));
  EXPECT_FALSE(known.caps.CreateResolutionList(nullptr, &known.record()));
  EXPECT_FALSE(known.caps.CreateResolutionList(list.data(), nullptr));
}

// --- Fixed records
// -----------------------------------------------------------------------------------------------------

TEST(DeviceCaps, TheFixedRecordsAreTheSystemsOwn) {
  Dead bench;
  CDeviceCaps& caps = bench.caps;
  MONOTHRESHOLDSUPPORT threshold{};
  EXPECT_EQ(caps.GetMonochromizeThresholdCapability(&threshold), 2);
  EXPECT_EQ(threshold.autoThresholdCap, 1);
  EXPECT_EQ(threshold.autoThresholdFlag, 0);
  EXPECT_EQ(threshold.manuanThresholdCap, 2);
  EXPECT_EQ(threshold.manualThresholdLevelMax, 254);
  EXPECT_EQ(threshold.manualThresholdLevelMin, 1);
  EXPECT_EQ(threshold.manualThresholdLevelDefault, 128);
  COLORTONESUPPORT tone{};
  EXPECT_EQ(caps.GetColorToneCapability(&tone), 2);
  EXPECT_EQ(tone.cap, 2);
  EXPECT_EQ(tone.flag, 0);
  EXPECT_TRUE(sameBytes(tone.brightness, VALUERANGE{50, -50, 0}));
  EXPECT_TRUE(sameBytes(tone.contrast, VALUERANGE{50, -50, 0}));
  EXPECT_TRUE(sameBytes(tone.shadow, VALUERANGE{254, 0, 0}));
  EXPECT_TRUE(sameBytes(tone.highlight, VALUERANGE{255, 1, 220}));
  EXPECT_TRUE(sameBytes(tone.gamma, VALUERANGE{1000, 10, 100}));
  SMOOTHINGSUPPORT smoothing{};
  EXPECT_EQ(caps.GetSmoothingCapability(&smoothing), 2);
  EXPECT_EQ(smoothing.cap, 2);
  EXPECT_EQ(smoothing.flag, 0);
  EXPECT_EQ(smoothing.levelCap, 2);
  EXPECT_EQ(smoothing.levelFlag, 0);
  EXPECT_TRUE(sameBytes(smoothing.level, VALUERANGE{50, -50, 0}));
  COLORDROPSUPPORT drop{};
  EXPECT_EQ(caps.GetColorDropCapability(&drop), 2);
  EXPECT_TRUE(sameBytes(drop, COLORDROPSUPPORT{2, 1, 1, 1, 0, 1}));
  THICKTEXTSUPPORT thick{};
  EXPECT_EQ(caps.GetThickTextCapability(&thick), 2);
  EXPECT_EQ(thick.cap, 2);
  EXPECT_EQ(thick.flag, 0);
  EXPECT_TRUE(sameBytes(thick.level, VALUERANGE{5, 1, 1}));
  EDGEENHANCESUPPORT edge{};
  EXPECT_EQ(caps.GetEdgeEnhanceCapability(&edge), 2);
  EXPECT_EQ(edge.cap, 2);
  EXPECT_EQ(edge.flag, 0);
  EXPECT_TRUE(sameBytes(edge.level, VALUERANGE{5, 1, 1}));
  EDGEFILLSUPPORT fill{};
  EXPECT_EQ(caps.GetEdgeFillCapability(&fill), 2);
  EXPECT_EQ(fill.cap, 2);
  EXPECT_EQ(fill.first, 1);
  EXPECT_EQ(fill.second, 1);
  EXPECT_EQ(bench.queries(), 0);
}

TEST(DeviceCaps, AMissingFixedFeatureChangesItsCapAloneAndAnswersTwo) {
  CDeviceCaps caps;
  DUSTREMOVALSUPPORT dust{9, 8, {7, 6, 5}};
  EXPECT_EQ(caps.GetDustRemovalCapability(&dust), 2);
  EXPECT_EQ(dust.cap, 1);
  EXPECT_EQ(dust.flag, 8);
  EXPECT_TRUE(sameBytes(dust.level, VALUERANGE{7, 6, 5}));
  REMOVELINESUPPORT line{9, 8};
  EXPECT_EQ(caps.GetLineRemovalCapability(&line), 2);
  EXPECT_EQ(line.cap, 1);
  EXPECT_EQ(line.flag, 8);
  PUNCHHOLESUPPORT hole{9, 8};
  EXPECT_EQ(caps.GetPunchHoleRemovalCapability(&hole), 2);
  EXPECT_EQ(hole.cap, 1);
  EXPECT_EQ(hole.flag, 8);
}

TEST(DeviceCaps, AFixedRecordForNobodyIsStillAnswered) {
  CDeviceCaps caps;
  EXPECT_EQ(caps.GetMonochromizeThresholdCapability(nullptr), 1);
  EXPECT_EQ(caps.GetColorToneCapability(nullptr), 1);
  EXPECT_EQ(caps.GetSmoothingCapability(nullptr), 2);
  EXPECT_EQ(caps.GetColorDropCapability(nullptr), 2);
  EXPECT_EQ(caps.GetThickTextCapability(nullptr), 2);
  EXPECT_EQ(caps.GetEdgeEnhanceCapability(nullptr), 2);
  EXPECT_EQ(caps.GetDustRemovalCapability(nullptr), 2);
  EXPECT_EQ(caps.GetLineRemovalCapability(nullptr), 2);
  EXPECT_EQ(caps.GetPunchHoleRemovalCapability(nullptr), 2);
  EXPECT_EQ(caps.GetEdgeFillCapability(nullptr), 2);
}

}  // namespace
}  // namespace caps_test
