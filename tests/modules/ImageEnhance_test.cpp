// The contract of the enhancement module: what it answers, what it hands out, what it refuses.
#include <functional>

#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

constexpr int kColor = 4;

// Three by two pixels of six colours.
Sheet sixColors() {
  Sheet sheet(3, 2);
  sheet.pixels = {1, 2, 3, 40, 50, 60, 255, 254, 253, 10, 200, 100, 0, 0, 255, 90, 90, 90};
  return sheet;
}

_IE_PARAM everything(std::int32_t colorClass) {
  _IE_PARAM param{};
  param.colorClass = colorClass;
  param.doFirstEnhance = param.doAutoTone = param.doSmoothing = param.doThickText = param.doColorDrop = true;
  param.doDotTextCombine = param.doEdgeEnhance = param.doPunchHole = param.doToneAdjust = param.doNoiseRemoval = true;
  param.doLineRemoval = param.doAutoThreshold = param.doAutoRotate = param.doEdgeFill = true;
  param.smoothingMode = 1;
  param.colorDrop = {0, 80, 0, 28, 40, 1};
  param.punchHole = {{30, 30, 30, 30}, 3, 10, 1, 100, 140, 1, {0, 0}};
  param.toneAdjust = {140, 140, 10, 220, 1.4};
  param.grayBrightness = 140;
  param.thickTextLevel = 2;
  param.dotTextCombineMode = 1;
  param.edgeEnhanceLevel = 3;
  param.autoThreshold = {{50, 50}, 0, {7, 2}};
  param.noiseRemoval = {{100, 120, 120, 500, 1}};
  param.lineRemovalA = param.lineRemovalB = {1, 0, 0x21, 0, 0};
  param.edgeFill = {true, 1, 1, 1, 1, 0};
  return param;
}

TEST(ImageEnhance, LeavesAPageAloneWhenNothingIsAsked) {
  const struct {
    const char* name;
    Sheet sheet;
    std::int32_t colorClass;
    int autoColorMode;
  } rows[] = {
      {"colour as colour", sixColors(), kColor, 0}, {"automatic colour that is colour", sixColors(), 0, 0},
      {"grey as grey", toGray(sixColors()), 3, 0},  {"grey found grey", toGray(sixColors()), 0, 1},
      {"mono as mono", toMono(sixColors()), 1, 0},  {"mono as error diffusion", toMono(sixColors()), 2, 0},
      {"mono as grey", toMono(sixColors()), 3, 0},  {"mono found mono", toMono(sixColors()), 0, 2},
  };
  for (const auto& row : rows) {
    _IE_PARAM param{};
    param.colorClass = row.colorClass;
    param.threshold = 128;
    param.doFirstEnhance = true;
    EXPECT_FALSE(enhance(row.sheet, param, row.autoColorMode).hasChanged) << row.name;
  }
}

TEST(ImageEnhance, LeavesAPageAloneThatNoStepChanged) {
  Sheet blank(300, 300);
  _IE_PARAM param = everything(kColor);
  param.toneAdjust = {128, 128, 0, 255, 1.0};
  param.doAutoTone = param.doSmoothing = param.doEdgeEnhance = param.doEdgeFill = param.doThickText = false;
  EXPECT_FALSE(enhance(blank, param).hasChanged);
}

TEST(ImageEnhance, AnswersTheLastPageAlone) {
  const auto module = createInstance<IImageEnhance>("QsImageEnhance");
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(module->GetResult().data, nullptr);
  std::vector<std::uint8_t> bmp = bmpOf(sixColors());
  PAGE_STORE_VIEW store = storeOf(bmp, sixColors());
  auto* const source = reinterpret_cast<CImageDataStore*>(&store);
  _IE_PARAM gray{};
  gray.colorClass = 3;
  _IE_PARAM color{};
  color.colorClass = kColor;
  EXPECT_EQ(module->Process(source, &gray, 0), 0u);
  EXPECT_EQ(module->GetResult().bitPerPixel, 8);
  EXPECT_EQ(module->Process(source, &color, 0), 0u);
  EXPECT_EQ(module->GetResult().data, nullptr);
  EXPECT_EQ(module->Process(source, &gray, 0), 0u);
  EXPECT_NE(module->Process(nullptr, &gray, 0), 0u);
  EXPECT_EQ(module->GetResult().data, nullptr) << "a page of an earlier call after a failure";
  EXPECT_NE(module->Process(source, nullptr, 0), 0u);
}

TEST(ImageEnhance, KeepsTheResolutionOfThePage) {
  const auto module = createInstance<IImageEnhance>("QsImageEnhance");
  std::vector<std::uint8_t> bmp = bmpOf(sixColors());
  PAGE_STORE_VIEW store = storeOf(bmp, sixColors());
  store.resolutionX = 600;
  store.resolutionY = 200;
  fakes::put32(bmp, 38, 23622);
  fakes::put32(bmp, 42, 7874);
  _IE_PARAM param{};
  param.colorClass = 3;
  ASSERT_EQ(module->Process(reinterpret_cast<CImageDataStore*>(&store), &param, 0), 0u);
  const tagQS_SCAN_IMAGEDATA result = module->GetResult();
  EXPECT_EQ(result.resolutionX, 600);
  EXPECT_EQ(result.resolutionY, 200);
  EXPECT_TRUE(std::equal(result.data + 38, result.data + 46, bmp.data() + 38));
}

// Each row damages a good store; every result is the failure code, and no byte outside is touched (AddressSanitizer).
TEST(ImageEnhance, RefusesAStoreThatDoesNotHoldWhatItPromises) {
  const struct {
    const char* name;
    std::function<void(std::vector<std::uint8_t>&)> damage;
  } rows[] = {
      {"no BMP", [](auto& bmp) { bmp[0] = 'C'; }},
      {"cut inside the headers", [](auto& bmp) { bmp.resize(53); }},
      {"cut before the pixels", [](auto& bmp) { bmp.resize(54); }},
      {"one byte missing", [](auto& bmp) { bmp.pop_back(); }},
      {"more lines than are there", [](auto& bmp) { fakes::put32(bmp, 22, 3); }},
      {"wider lines than are there", [](auto& bmp) { fakes::put32(bmp, 18, 4); }},
      {"top line first", [](auto& bmp) { fakes::put32(bmp, 22, 0xFFFFFFFE); }},
      {"huge", [](auto& bmp) { fakes::put32(bmp, 18, 0x7FFFFFFF), fakes::put32(bmp, 22, 0x7FFFFFFF); }},
      {"no width", [](auto& bmp) { fakes::put32(bmp, 18, 0); }},
      {"four bits", [](auto& bmp) { fakes::put16(bmp, 28, 4); }},
      {"a palette that is not there", [](auto& bmp) { fakes::put16(bmp, 28, 8); }},
  };
  const auto module = createInstance<IImageEnhance>("QsImageEnhance");
  for (const auto& row : rows) {
    std::vector<std::uint8_t> bmp = bmpOf(sixColors());
    row.damage(bmp);
    bmp.shrink_to_fit();
    PAGE_STORE_VIEW store = storeOf(bmp, sixColors());
    _IE_PARAM param = everything(1);
    EXPECT_EQ(module->Process(reinterpret_cast<CImageDataStore*>(&store), &param, 0), 0x70701003u) << row.name;
    EXPECT_EQ(module->GetResult().data, nullptr) << row.name;
  }
}

TEST(ImageEnhance, HasNothingToDoWithAnEmptyStore) {
  const auto module = createInstance<IImageEnhance>("QsImageEnhance");
  _IE_PARAM param = everything(1);
  PAGE_STORE_VIEW store{};
  EXPECT_EQ(module->Process(reinterpret_cast<CImageDataStore*>(&store), &param, 0), 0u);
  std::vector<std::uint8_t> bmp = bmpOf(sixColors());
  fakes::put32(bmp, 22, 0);
  store = storeOf(bmp, sixColors());
  EXPECT_EQ(module->Process(reinterpret_cast<CImageDataStore*>(&store), &param, 0), 0u);
  EXPECT_EQ(module->GetResult().data, nullptr);
}

// The library under the module prints its complaints; with what it is given here it has none.
TEST(ImageEnhance, PrintsNothing) {
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  for (const auto& [width, height] :
       {std::pair{1, 1}, {1, 400}, {400, 1}, {33, 65}, {150, 150}, {620, 420}, {65535, 1}, {1, 65535}}) {
    for (const Ink paper : {kWhite, kBlack, Ink{200, 190, 170}}) {
      Sheet sheet(width, height, paper);
      if (std::min(width, height) > 300) {
        writeText(sheet, {40, 40, width - 80, height / 2});
        sheet.disc(100, 370, 36, {120, 120, 120});
      }
      for (const Sheet& page : {sheet, toGray(sheet), toMono(sheet)}) {
        for (std::int32_t colorClass = 0; colorClass <= 4; ++colorClass) {
          _IE_PARAM param = everything(colorClass);
          enhance(page, param, 2);
          param.doEdgeFill = param.doColorDrop = false;
          param.thickTextLevel = param.edgeEnhanceLevel = 2000000000;
          param.lineRemovalA.first = param.lineRemovalB.second = 2000000000;
          param.noiseRemoval = {{-1, 2000000000, -2000000000, 2000000000, 1}};
          enhance(page, param, 1);
        }
      }
    }
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
