// The sheet itself: punched holes, edges, the way it lay in the scanner.
#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

_IE_PARAM color() {
  _IE_PARAM param{};
  param.colorClass = 4;
  return param;
}

constexpr Ink kTape = {70, 130, 180};  // grey 117
constexpr int kHoleRadius = 35;        // 6 mm across

_IE_PARAM holesOf(bool hasTape, std::int32_t fillMode = 1) {
  _IE_PARAM param = color();
  param.doPunchHole = true;
  param.punchHole = {{30, 30, 30, 30}, 3, 10, hasTape ? 1 : 0, 107, 127, fillMode, {0, 0}};
  return param;
}

// The left part of a page with two holes, or without. Heading, bullets, a picture and a button are round or large, too.
Sheet letter(Ink hole, bool hasHoles, Ink paper = {252, 250, 240}) {
  Sheet sheet(1240, 1754, paper);
  writeText(sheet, {320, 200, 860, 950});
  sheet.text(320, 150, "OOQ 800 GOOD", 20);
  sheet.disc(290, 700, 12, kBlack);          // a bullet
  sheet.disc(640, 1300, kHoleRadius, hole);  // a button in the middle of the page
  sheet.fill({60, 40, 110, 70}, kBlack);     // a logo
  for (int y = -40; y <= 40; ++y) {          // a round picture near the edge
    for (int x = -40; x <= 40; ++x) {
      if (x * x + y * y <= 1600) {
        const auto level = static_cast<std::uint8_t>(100 + 2 * x);
        sheet.set(220 + x, 1600 + y, {level, level, 60});
      }
    }
  }
  if (hasHoles) {
    for (const int y : {405, 1350}) {
      sheet.disc(142, y + 3, kHoleRadius + 3, {225, 223, 215});  // its shadow on the paper
      sheet.disc(142, y, kHoleRadius, hole);
    }
  }
  return sheet;
}

TEST(ImageEnhanceSheet, RemovesPunchedHolesAndNothingElse) {
  const struct {
    const char* name;
    Ink hole;
    bool hasTape;
  } rows[] = {{"dark", {30, 30, 32}, false}, {"tape", kTape, true}};
  for (const auto& row : rows) {
    const Sheet before = letter(row.hole, true);
    const Sheet wanted = letter(row.hole, false);
    for (const Sheet& page : {before, toGray(before), toMono(before, 150)}) {
      const Sheet expected = page.bits == 24 ? wanted : page.bits == 8 ? toGray(wanted) : toMono(wanted, 150);
      const Sheet after = enhance(page, holesOf(row.hasTape)).sheet;
      // Of a mono page, a round black picture near the edge is not to be told from a hole.
      const Rect compared = {0, 0, page.widthPx, page.bits == 1 ? 1540 : page.heightPx};
      EXPECT_EQ(countDifferent(after, expected, compared, 3), 0) << row.name << page.bits;
      if (page.bits == 24) leavePicture(std::string("holes-") + row.name, before, after, {0, 0, 800, 1500}, 0.22F);
    }
  }
}

// The rest of what a hole was punched through is no part of it.
TEST(ImageEnhanceSheet, RemovesHolesInTextAndRules) {
  Sheet before(1240, 800, {250, 250, 246});
  writeText(before, {100, 100, 1000, 600});
  before.fill({60, 160, 1000, 4}, kBlack);
  for (const int y : {160, 420}) {
    before.disc(153, y + 2, kHoleRadius + 3, {180, 180, 176});
    before.disc(150, y, kHoleRadius, {30, 30, 32});
  }
  for (const Sheet& page : {before, toGray(before), toMono(before)}) {
    const Sheet after = enhance(page, holesOf(false)).sheet;
    for (const int y : {160, 420}) {
      EXPECT_EQ(countDark(after, {150 - 20, y - 20, 40, 40}, 160), 0) << page.bits;
      EXPECT_EQ(countDifferent(after, page, {200, y - 60, 1000, 120}), 0) << page.bits;
    }
    EXPECT_EQ(countDifferent(after, page, {60, 160, 40, 4}), 0) << "the rule on the other side of the hole";
  }
}

// Bold letters that are as wide as high, or run into one another, can fill as much of their box as a disc does.
TEST(ImageEnhanceSheet, TakesNoLetterForAHole) {
  Sheet sheet(1240, 800);
  sheet.fill({140, 400, 74, 74}, kBlack);  // U
  sheet.fill({169, 400, 16, 70}, kWhite);
  sheet.fill({140, 200, 80, 74}, kBlack);  // two M without a gap
  for (const int x : {160, 200}) {
    for (int i = 0; i < 34; ++i) sheet.fill({x - 8 + i / 4, 200 + i, 16 - i / 2, 1}, kWhite);
    sheet.fill({x - 10, 240, 4, 34}, kWhite);
    sheet.fill({x + 6, 240, 4, 34}, kWhite);
  }
  for (const Sheet& page : {sheet, toGray(sheet), toMono(sheet)}) {
    EXPECT_FALSE(enhance(page, holesOf(false)).hasChanged) << page.bits;
  }
}

TEST(ImageEnhanceSheet, SeesHolesThroughGrain) {
  Sheet before = letter(kTape, true);
  Sheet wanted = letter(kTape, false);
  addGrain(before, 6);
  const Sheet after = enhance(before, holesOf(true)).sheet;
  EXPECT_EQ(countDifferent(after, wanted, {80, 300, 130, 1200}, 20), 0);
}

TEST(ImageEnhanceSheet, TellsATapeFromDarkness) {
  EXPECT_EQ(enhance(letter({30, 30, 32}, true), holesOf(true)).hasChanged, false) << "darker than the tape";
  _IE_PARAM param = holesOf(true);
  param.punchHole.grayLow = 500;
  param.punchHole.grayHigh = -500;
  EXPECT_FALSE(enhance(letter(kTape, true), param).hasChanged) << "a tape of no grey";
}

TEST(ImageEnhanceSheet, LooksForHolesInTheMarginsOnly) {
  Sheet sheet(2480, 1200);
  const auto holeAt = [&](int x, int y) { sheet.disc(x, y, kHoleRadius, {30, 30, 30}); };
  holeAt(140, 600);
  holeAt(2340, 600);
  holeAt(1240, 140);
  holeAt(1240, 1060);
  holeAt(1240, 600);
  const auto isLeft = [](const Sheet& page, int x, int y) { return page.level(x, y) < 128; };
  Sheet after = enhance(sheet, holesOf(false)).sheet;
  EXPECT_TRUE(isLeft(after, 1240, 600));
  EXPECT_FALSE(isLeft(after, 140, 600) || isLeft(after, 2340, 600) || isLeft(after, 1240, 140) ||
               isLeft(after, 1240, 1060));
  _IE_PARAM param = holesOf(false);
  std::fill(std::begin(param.punchHole.margin), std::end(param.punchHole.margin), 0);
  param.punchHole.margin[1] = 20;  // the top
  after = enhance(sheet, param).sheet;
  EXPECT_FALSE(isLeft(after, 1240, 140));
  EXPECT_TRUE(isLeft(after, 140, 600) && isLeft(after, 2340, 600) && isLeft(after, 1240, 1060));
}

TEST(ImageEnhanceSheet, FillsHolesAsTheRecordSays) {
  const Ink paper = {240, 230, 200};
  Sheet sheet(1240, 800, paper);
  sheet.fill({60, 250, 170, 170}, {200, 215, 235});  // a tinted field about the hole
  sheet.disc(142, 330, kHoleRadius, {30, 30, 30});
  const auto filled = [&](std::int32_t mode) { return enhance(sheet, holesOf(false, mode)).sheet.at(142, 330); };
  EXPECT_EQ(filled(0), kWhite);
  EXPECT_EQ(filled(1), (Ink{200, 215, 235}));
  EXPECT_EQ(filled(2), paper);
}

// --- Edges ---

TEST(ImageEnhanceSheet, FillsTheEdges) {
  const Ink gray = {100, 100, 100};
  Sheet sheet(100, 60, gray);
  _IE_PARAM param = color();
  param.doEdgeFill = true;
  param.edgeFill.isPixel = true;
  param.edgeFill.first = 7;   // left
  param.edgeFill.third = 11;  // right
  param.edgeFill.second = 3;  // top
  param.edgeFill.fourth = 5;  // bottom
  for (const bool isBlack : {false, true}) {
    param.edgeFill.fifth = isBlack ? 1 : 0;
    for (const Sheet& page : {sheet, toGray(sheet), toMono(sheet, isBlack ? 90 : 128)}) {
      const Sheet after = enhance(page, param).sheet;
      for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 100; ++x) {
          const bool isInside = x >= 7 && x < 89 && y >= 3 && y < 55;
          ASSERT_EQ(after.level(x, y), isInside  ? page.level(x, y)
                                       : isBlack ? 0
                                                 : 255)
              << page.bits << " " << x << "," << y;
        }
      }
    }
  }
}

TEST(ImageEnhanceSheet, FillsTheDarkBorderOfAFeeder) {
  Sheet before(1000, 700, {30, 30, 34});
  before.fill({36, 24, 928, 652}, {250, 250, 248});
  writeText(before, {100, 60, 800, 560});
  _IE_PARAM param = color();
  param.doEdgeFill = true;
  param.edgeFill = {false, 305, 305, 204, 204, 0};  // 3.05 and 2.04 mm: 36 and 24 pixels
  const Sheet after = enhance(before, param).sheet;
  EXPECT_EQ(countDark(after, {0, 0, 1000, 24}) + countDark(after, {0, 0, 36, 700}), 0);
  EXPECT_EQ(countDifferent(before, after, {36, 24, 928, 652}), 0);
  leavePicture("edge-fill", before, after, before.whole(), 0.35F);
}

TEST(ImageEnhanceSheet, FillsTheWholePageAtMost) {
  Sheet sheet(50, 40, kBlack);
  _IE_PARAM param = color();
  param.doEdgeFill = true;
  for (const bool isPixel : {true, false}) {
    param.edgeFill = {isPixel, 2000000000, -5, 2000000000, 2000000000, 0};
    EXPECT_EQ(enhance(sheet, param).sheet, Sheet(50, 40));
    param.edgeFill = {isPixel, -1, 0, -2000000000, 0, 0};
    EXPECT_FALSE(enhance(sheet, param).hasChanged);
  }
}

// --- Rotation ---

Sheet page() {
  Sheet sheet(1240, 1600);
  sheet.text(120, 140, "Your forty-two volumes", 18);
  writeText(sheet, {120, 200, 1000, 900});
  sheet.fill({700, 1250, 400, 250}, kBlue);
  return sheet;
}

_IE_PARAM upright(std::int32_t colorClass = 4) {
  _IE_PARAM param{};
  param.colorClass = colorClass;
  param.doAutoRotate = true;
  return param;
}

TEST(ImageEnhanceSheet, TurnsTextUpright) {
  const Sheet straight = page();
  for (int quarters = 0; quarters < 4; ++quarters) {
    const Sheet lying = turned(straight, quarters);
    EXPECT_EQ(enhance(lying, upright()).sheet, straight) << quarters;
    EXPECT_EQ(enhance(toGray(lying), upright()).sheet, toGray(straight)) << quarters;
    EXPECT_EQ(enhance(toMono(lying), upright()).sheet, toMono(straight)) << quarters;
    if (quarters == 1) leavePicture("rotate", lying, lying.whole(), straight, straight.whole(), 0.2F);
  }
}

TEST(ImageEnhanceSheet, TurnsTextUprightAtEveryResolution) {
  for (const int dpi : {150, 200, 600}) {
    const Sheet scaled = scannedAt(page(), dpi, dpi);
    EXPECT_EQ(enhance(turned(scaled, 3), upright()).sheet, scaled) << dpi;
  }
}

// A page of which a line is not as high as a pixel is wide keeps both resolutions, and so its lengths on the paper.
TEST(ImageEnhanceSheet, TurnsAPageOfUnequalResolutions) {
  const struct { int dpiX, dpiY; } rows[] = {{300, 150}, {150, 300}, {204, 98}, {600, 300}};
  for (const auto& [dpiX, dpiY] : rows) {
    const Sheet straight = scannedAt(page(), dpiX, dpiY);
    for (const int quarters : {1, 2, 3}) {
      const Sheet lying = scannedAt(turned(page(), quarters), dpiX, dpiY);
      for (const Sheet& before : {lying, toGray(lying), toMono(lying)}) {
        const Sheet expected = before.bits == 1 ? toMono(straight) : straight;
        const Sheet after = enhance(before, upright()).sheet;
        SCOPED_TRACE(std::to_string(dpiX) + " " + std::to_string(quarters) + " " + std::to_string(before.bits));
        ASSERT_NEAR(after.widthPx, expected.widthPx, 2);
        ASSERT_NEAR(after.heightPx, expected.heightPx, 2);
        EXPECT_EQ(after.bits, before.bits);
        // The same ink in the same places, half an inch wide and high.
        for (int y = 0; y + dpiY / 2 < expected.heightPx; y += dpiY / 2) {
          for (int x = 0; x + dpiX / 2 < expected.widthPx; x += dpiX / 2) {
            const Rect field = {x, y, dpiX / 2 - 2, dpiY / 2 - 2};
            ASSERT_NEAR(meanLevel(after, field), meanLevel(expected, field), 16) << x << "," << y;
          }
        }
      }
    }
  }
}

TEST(ImageEnhanceSheet, TurnsAPageBeforeItIsDissolvedIntoDots) {
  const Sheet after = enhance(turned(page(), 2), upright(2)).sheet;
  EXPECT_EQ(after, enhance(page(), upright(2)).sheet);
  EXPECT_EQ(after.bits, 1);
}

TEST(ImageEnhanceSheet, TurnsNothingThatHasNoDirection) {
  Sheet blank(1240, 1600);
  Sheet shapes = blank;
  for (int i = 0; i < 40; ++i) shapes.fill({100 + i * 26, 200 + i * 31 % 400, 20, 20 + i * 7 % 90}, kBlack);
  EXPECT_FALSE(enhance(blank, upright()).hasChanged);
  EXPECT_FALSE(enhance(shapes, upright()).hasChanged);
}

}  // namespace
