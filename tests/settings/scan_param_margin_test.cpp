#include <gtest/gtest.h>

#include <climits>

#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

using Settings = QS_SCANNER_PARAMETERS;
using Capability = QS_SCANNER_CAPABILITY;

const CScanParam kParam;

void expectMargin(MARGIN got, MARGIN expected) {
  EXPECT_EQ(got.left, expected.left);
  EXPECT_EQ(got.right, expected.right);
  EXPECT_EQ(got.top, expected.top);
  EXPECT_EQ(got.bottom, expected.bottom);
  EXPECT_EQ(got.unit, expected.unit);
}

// --- Margins ----------------------------------------------------------------------------------------------------

Capability withMargins(UNITTYPE unit) {
  Capability capability{};
  capability.baseFunc.marginSize.flatbed = {100, 200, 300, 400, unit};
  capability.baseFunc.marginSize.adfSimplex = {101, 201, 301, 401, unit};
  capability.baseFunc.marginSize.adfDuplex = {102, 202, 302, 402, unit};
  capability.baseFunc.marginSize.cardslot = {103, 203, 303, 403, unit};
  return capability;
}

TEST(ScanParamMargin, TheMarginGoesByTheSourceAndTheSidesOfTheSettings) {
  const struct {
    int source, duplex, left;
  } rows[] = {{1, 0, 100}, {1, 2, 100}, {0, 1, 100}, {4, 0, 100}, {2, 0, 101},
              {2, 1, 102}, {2, 2, 102}, {2, 9, 102}, {3, 0, 103}, {3, 1, 103}};
  for (const auto& row : rows) {
    Settings settings{};
    settings.paperSource = static_cast<PAPERSOURCESELECT>(row.source);
    settings.duplexType = static_cast<DUPLEXTYPE>(row.duplex);
    const int n = row.left - 100;
    expectMargin(kParam.GetScanMargin(settings, withMargins(UNIT_INCH)),
                 {100 + n, 200 + n, 300 + n, 400 + n, UNIT_INCH});
  }
}

TEST(ScanParamMargin, AMarginInPixelsGoesByOneResolutionForAllSides) {
  Settings settings{};
  expectMargin(kParam.GetScanMarginPixel(settings, withMargins(UNIT_INCH), 300), {30, 60, 90, 120, UNIT_PIXEL});
  expectMargin(kParam.GetScanMarginPixel(settings, withMargins(UNIT_MILLIMETER), 300), {12, 23, 35, 47, UNIT_PIXEL});
  expectMargin(kParam.GetScanMarginPixel(settings, withMargins(UNIT_PIXEL), 300), {100, 200, 300, 400, UNIT_PIXEL});
  Capability negative{};
  negative.baseFunc.marginSize.flatbed = {-100, -200, 300, -1, UNIT_INCH};
  expectMargin(kParam.GetScanMarginPixel(settings, negative, 300), {-30, -60, 90, 0, UNIT_PIXEL});
}

TEST(ScanParamMargin, AMarginInMillimetresKeepsTheNumbersOfOneInPixels) {
  Settings settings{};
  expectMargin(kParam.GetScanMarginMm(settings, withMargins(UNIT_INCH)), {254, 508, 762, 1016, UNIT_MILLIMETER});
  expectMargin(kParam.GetScanMarginMm(settings, withMargins(UNIT_MILLIMETER)), {100, 200, 300, 400, UNIT_MILLIMETER});
  expectMargin(kParam.GetScanMarginMm(settings, withMargins(UNIT_PIXEL)), {100, 200, 300, 400, UNIT_MILLIMETER});
  Capability broken = withMargins(UNIT_INCH);
  broken.baseFunc.marginSize.flatbed.top = INT_MIN;  // that side becomes 0, the others are converted
  expectMargin(kParam.GetScanMarginMm(settings, broken), {254, 508, 0, 1016, UNIT_MILLIMETER});
}

// --- Lengths ----------------------------------------------------------------------------------------------------

TEST(ScanParamMargin, APageIsLongByItsPaperOrByAnAreaWithoutABottom) {
  for (int paper = 0; paper <= 27; ++paper) {
    for (const int customY : {0, 5000}) {
      for (const int useArea : {0, 1, 2}) {
        for (const int bottom : {0, 7, -7}) {
          Settings settings{};
          settings.paperType = static_cast<PAPERTYPE>(paper);
          settings.customPaperSize.y = customY;
          settings.useScanArea = static_cast<QSBOOL>(useArea);
          settings.scanArea.bottom = bottom;
          bool expected = useArea != 0 && bottom == 0;
          if (paper == 26) expected = customY == 0;
          if (paper == 23 || paper == 24) expected = true;
          EXPECT_EQ(kParam.IsLongPaperScanSetting(&settings), expected) << paper;
        }
      }
    }
  }
  EXPECT_FALSE(kParam.IsLongPaperScanSetting(nullptr));
}

TEST(ScanParamMargin, TheLongestPageIsInMillimetresWhateverItsUnitSays) {
  for (const UNITTYPE unit : {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL}) {
    const LONGPAPERSUPPORTSIZE support{2, 25400, 50800, unit};
    EXPECT_EQ(kParam.GetLongPaperSizePixel(300, DUPLEXTYPE_SIMPLEX, support), 3000u);
    EXPECT_EQ(kParam.GetLongPaperSizePixel(300, DUPLEXTYPE_LONG_EDGE, support), 6000u);
    EXPECT_EQ(kParam.GetLongPaperSizePixel(300, DUPLEXTYPE_SHORT_EDGE, support), 6000u);
  }
  // 863 mm are 33976 inch units.
  EXPECT_EQ(kParam.GetLongPaperSizePixel(300, DUPLEXTYPE_SIMPLEX, {0, 0, 50800, UNIT_INCH}), 10193u);
  EXPECT_EQ(kParam.GetLongPaperSizePixel(300, DUPLEXTYPE_LONG_EDGE, {0, 25400, 0, UNIT_INCH}), 10193u);
}

TEST(ScanParamMargin, ThePageLies32MillimetresBelowTheCarrierSheetsEdgeUnlessTheDeviceSaysOtherwise) {
  CARRIERSHEETSUPPORT support{};
  EXPECT_EQ(kParam.GetCarrierSheetOffsetSizePixel(300, support), 378u);
  support.offsetSizeMm.top = 2540;
  support.offsetSizeMm.bottom = 9999;
  EXPECT_EQ(kParam.GetCarrierSheetOffsetSizePixel(300, support), 300u);
}

}  // namespace
}  // namespace orvalle_scan_api
