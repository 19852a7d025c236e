// Pages that lie on their side, through the whole pipeline: what comes after the turning goes by the resolutions that
// the scan was ordered with.
#include "image_enhance_harness.h"
#include "tests/image/drawn_page.h"
#include "tests/image/pipeline_run.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

Sheet letter() {
  Sheet sheet(900, 1100);
  writeText(sheet, {60, 40, 780, 800});
  sheet.fill({600, 900, 200, 150}, kBlack);
  return sheet;
}

void send(CImageData& page, const Sheet& sheet) {
  page.m_pCurrentStore = &page.m_rawData;
  page.m_rawData.StartWriteData(sheet.dpi, sheet.dpiY(), sheet.widthPx, 0, COLORTYPE_COLOR24BIT, 6, 2);
  for (int y = 0; y < sheet.heightPx; ++y) {
    const auto line = sheet.pixels.begin() + y * static_cast<std::ptrdiff_t>(sheet.lineBytes());
    fakes::writeRecord(page.m_rawData, 6, 2, {line, line + static_cast<std::ptrdiff_t>(sheet.lineBytes())});
  }
  page.m_rawData.FinishWriteData(false, 0);
}

Sheet sheetOf(const tagQS_SCAN_IMAGEDATA& image) {
  Sheet sheet(image.widthPixel, image.heightPixel);
  sheet.dpi = image.resolutionX;
  sheet.linesPerInch = image.resolutionY;
  sheet.pixels = fakes::upsideDown({image.pixelData, image.pixelData + image.pixelDataSize}, sheet.lineBytes());
  return sheet;
}

TEST(ImageEnhanceTurned, APageKeepsItsSizeOnThePaperWhateverItsResolutions) {
  const struct {
    const char* name;
    AXIS device, user;
  } rows[] = {
      {"equal", {300, 300}, {300, 300}},
      {"unequal", {300, 150}, {300, 150}},
      {"raised both ways", {200, 200}, {400, 400}},
      {"raised sideways", {150, 300}, {300, 300}},
      {"raised downwards", {300, 150}, {300, 300}},
      {"raised to unequal ones", {200, 200}, {400, 300}},
  };
  for (const auto& row : rows) {
    for (const int quarters : {1, 2, 3}) {
      SCOPED_TRACE(row.name + std::to_string(quarters));
      const auto [deviceX, deviceY] = row.device;
      const Sheet lying = scannedAt(turned(letter(), quarters), static_cast<int>(deviceX), static_cast<int>(deviceY));
      fakes::PipelineRun run;
      ASSERT_TRUE(run.initialize());
      run.settings.user.resolution = row.user;
      run.settings.device.resolution = row.device;
      run.settings.user.autoRotate = run.settings.device.autoRotate = 1;
      run.settings.device.scanArea = {0, 0, lying.widthPx, lying.heightPx, UNIT_PIXEL};
      CImageData& page = run.newPage();
      send(page, lying);
      run.manage.WriteImage(&page);
      run.runAll();

      const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
      ASSERT_NE(image.data, nullptr);
      EXPECT_EQ(image.resolutionX, static_cast<int>(row.user.x));
      EXPECT_EQ(image.resolutionY, static_cast<int>(row.user.y));
      const Sheet wanted = scannedAt(letter(), image.resolutionX, image.resolutionY);
      ASSERT_NEAR(image.widthPixel, wanted.widthPx, 4);
      ASSERT_NEAR(image.heightPixel, wanted.heightPx, 4);
      const Sheet result = sheetOf(image);
      // The text stands above and the black box in its corner below.
      const auto inch = [&](double x, double y) {
        return Rect{static_cast<int>(x * result.dpi), static_cast<int>(y * result.dpiY()), result.dpi / 4,
                    result.dpiY() / 4};
      };
      EXPECT_LT(meanLevel(result, inch(2.2, 3.1)), 60);
      EXPECT_GT(meanLevel(result, inch(0.5, 3.1)), 200);
      for (double y = 0.2; y < 2.6; y += 0.4) {
        EXPECT_NEAR(meanLevel(result, inch(1, y)), meanLevel(wanted, inch(1, y)), 20) << y;
      }
    }
  }
}

}  // namespace
