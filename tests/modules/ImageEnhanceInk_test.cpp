// Ink: colour drop, noise and line removal, thick text, dots joined to strokes.
#include <cmath>

#include "image_enhance_harness.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;

constexpr IE_COLORDROP kDropChromatic = {1, 0, 0, 0, 1, 1};
constexpr IE_COLORDROP kDropRed = {0, 80, 0, 28, 40, 1};
constexpr IE_COLORDROP kDropGreen = {0, 0, 60, 0, 40, 1};
constexpr IE_COLORDROP kDropBlue = {0, 0, 0, 40, 60, 1};

_IE_PARAM color() {
  _IE_PARAM param{};
  param.colorClass = 4;
  return param;
}

_IE_PARAM dropOf(IE_COLORDROP drop) {
  _IE_PARAM param = color();
  param.doColorDrop = true;
  param.colorDrop = drop;
  return param;
}

// A ring with a word in it, as stamps have it.
void stamp(Sheet& sheet, int x, int y, Ink ink) {
  for (int angle = 0; angle < 7200; ++angle) {
    for (int radius = 84; radius < 92; ++radius) {
      sheet.set(x + static_cast<int>(radius * std::cos(angle / 1145.9)),
                y + static_cast<int>(radius * std::sin(angle / 1145.9)), ink);
    }
  }
  sheet.text(x - 60, y + 12, "PAID", 12, ink);
}

// Black text, and on it a stamp in each of three inks; black wins where they meet.
Sheet stamped(Ink paper, bool hasStamps = true) {
  Sheet sheet(900, 300, paper);
  if (hasStamps) {
    stamp(sheet, 150, 150, kRed);
    stamp(sheet, 450, 150, kGreen);
    stamp(sheet, 750, 150, kBlue);
  }
  writeText(sheet, {30, 10, 840, 280});
  return sheet;
}

// Each ink's third of the sheet.
constexpr Rect kThirds[] = {{0, 0, 300, 300}, {300, 0, 300, 300}, {600, 0, 300, 300}};

TEST(ImageEnhanceInk, DropsTheInkOfAPresetAndNoOther) {
  const Ink cream = {250, 244, 226};
  const Sheet before = stamped(cream);
  const Sheet textAlone = stamped(cream, false);
  const struct {
    const char* name;
    IE_COLORDROP drop;
    bool isDropped[3];
  } rows[] = {
      {"red", kDropRed, {true, false, false}},
      {"green", kDropGreen, {false, true, false}},
      {"blue", kDropBlue, {false, false, true}},
      {"chromatic", kDropChromatic, {true, true, true}},
  };
  for (const auto& row : rows) {
    const Sheet after = enhance(before, dropOf(row.drop)).sheet;
    for (std::size_t i = 0; i < 3; ++i) {
      const int fromText = countDifferent(after, textAlone, kThirds[i], 6);
      const int fromBefore = countDifferent(after, before, kThirds[i], 6);
      EXPECT_EQ(row.isDropped[i] ? fromText : fromBefore, 0) << row.name << " " << i;
    }
    leavePicture(std::string("drop-") + row.name, before, after, before.whole(), 0.4F);
  }
}

TEST(ImageEnhanceInk, DropsARedStampFromAMonoPage) {
  _IE_PARAM param = dropOf(kDropRed);
  param.colorClass = 1;
  const Sheet after = enhance(stamped(kWhite), param).sheet;
  EXPECT_EQ(countDifferent(after, toMono(stamped(kWhite, false)), kThirds[0]), 0);
}

// Soft rims of ink, as a lens and JPEG make them, go with the ink, and text under the stamp stays readable.
TEST(ImageEnhanceInk, LeavesNoRimOfADroppedInk) {
  const auto soft = [](bool hasStamps) {
    _IE_PARAM blur = color();
    blur.doSmoothing = true;
    Sheet sheet = enhance(stamped(kWhite, hasStamps), blur).sheet;
    addGrain(sheet, 2);
    return sheet;
  };
  _IE_PARAM param = dropOf(kDropRed);
  const Sheet before = soft(true);
  const Sheet after = enhance(before, param).sheet;
  const Sheet wanted = soft(false);
  EXPECT_GT(countDifferent(before, wanted, kThirds[0], 40), 4000);
  EXPECT_LT(countDifferent(after, wanted, kThirds[0], 40), 400);
  const Sheet mono = toMono(after);
  const Sheet text = toMono(wanted);
  EXPECT_NEAR(countDark(mono, kThirds[0]), countDark(text, kThirds[0]), countDark(text, kThirds[0]) / 20);
}

// As JPEG keeps it: the brightness of every pixel, the colour of four by four of them.
Sheet withSmearedColors(const Sheet& sheet) {
  Sheet smeared = sheet;
  for (int top = 0; top < sheet.heightPx; top += 4) {
    for (int left = 0; left < sheet.widthPx; left += 4) {
      double off[3] = {};
      for (int i = 0; i < 16; ++i) {
        const Ink ink = sheet.at(left + i % 4, top + i / 4);
        for (std::size_t part = 0; part < 3; ++part) {
          off[part] += (ink[part] - sheet.level(left + i % 4, top + i / 4)) / 16.0;
        }
      }
      for (int i = 0; i < 16; ++i) {
        Ink ink{};
        for (std::size_t part = 0; part < 3; ++part) {
          const double value = sheet.level(left + i % 4, top + i / 4) + off[part];
          ink[part] = static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
        }
        smeared.set(left + i % 4, top + i / 4, ink);
      }
    }
  }
  return smeared;
}

TEST(ImageEnhanceInk, KeepsBlackTextThatTookOnTheColourOfAStamp) {
  Sheet text(600, 200);
  writeText(text, {20, 10, 560, 180});
  Sheet stamped = text;
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 600; ++x) {
      if (x / 30 % 2 == 0 && text.level(x, y) > 128) stamped.set(x, y, kRed);
    }
  }
  const Sheet after = enhance(withSmearedColors(stamped), dropOf(kDropRed)).sheet;
  const int letters = countDark(text, text.whole());
  EXPECT_LT(countDifferent(toMono(after), toMono(text), text.whole()), letters / 20);
}

TEST(ImageEnhanceInk, DropsACustomColourByItsHue) {
  Sheet sheet(300, 100);
  const Ink violet = {120, 50, 160};
  sheet.fill({0, 0, 100, 100}, violet);
  sheet.fill({100, 0, 100, 100}, kRed);
  sheet.fill({200, 0, 100, 100}, {100, 100, 100});
  const auto at = [&](IE_COLORDROP drop, int x) { return enhance(sheet, dropOf(drop)).sheet.at(x, 50); };
  EXPECT_EQ(at({0, 120, 50, 160, 20, 0}, 50), kWhite);
  EXPECT_EQ(at({0, 120, 50, 160, 20, 0}, 150), kRed);
  EXPECT_EQ(at({0, 160, 40, 160, 10, 0}, 50), violet) << "out of range";
  EXPECT_EQ(at({0, 160, 40, 160, 25, 0}, 50), kWhite) << "within range";
  EXPECT_EQ(at({0, 104, 100, 98, 5, 0}, 250), kWhite) << "a grey is dropped by its looks";
  EXPECT_EQ(at({0, 104, 100, 98, 5, 0}, 150), kRed);
}

// The hues of one ink may lie on both sides of a border between two of the hues that inks are measured by.
TEST(ImageEnhanceInk, LeavesNoSpotsInADroppedInk) {
  Sheet sheet(300, 100);
  sheet.fill({50, 20, 200, 60}, {200, 60, 33});                                    // 10 degrees
  for (int i = 0; i < 40; ++i) sheet.fill({60 + i * 4, 30, 1, 1}, {200, 78, 33});  // 16 degrees
  EXPECT_EQ(enhance(sheet, dropOf(kDropRed)).sheet, Sheet(300, 100));
}

TEST(ImageEnhanceInk, FillsADroppedColourWithPaperOrWhite) {
  const Ink cream = {250, 244, 226};
  Sheet sheet(300, 300, cream);
  sheet.fill({100, 100, 60, 60}, kRed);
  IE_COLORDROP drop = kDropRed;
  EXPECT_EQ(enhance(sheet, dropOf(drop)).sheet, Sheet(300, 300, cream));
  drop.flag = 0;
  const Sheet after = enhance(sheet, dropOf(drop)).sheet;
  EXPECT_EQ(after.at(130, 130), kWhite);
  EXPECT_EQ(after.at(50, 50), cream);
}

// --- Noise ---

// A word as a needle printer sets it: a pattern of 5 by 7 needles for each letter, 1/72 inch apart.
void needleText(Sheet& sheet, int x, int y) {
  static constexpr const char* kLetters[][7] = {
      {"####.", "#...#", "#...#", "####.", "#.#..", "#..#.", "#...#"},
      {"#####", "#....", "#....", "####.", "#....", "#....", "#####"},
      {".####", "#....", "#....", ".###.", "....#", "....#", "####."},
      {"#####", "..#..", "..#..", "..#..", "..#..", "..#..", "..#.."},
  };
  for (const auto& letter : kLetters) {
    for (int row = 0; row < 7; ++row) {
      for (int column = 0; column < 5; ++column) {
        if (letter[row][column] != '#') continue;
        sheet.disc(x + column * 25 / 6, y + row * 25 / 6, 1, kBlack);
      }
    }
    x += 32;
  }
}

_IE_PARAM noiseOf(std::int32_t side) {
  _IE_PARAM param = color();
  param.doNoiseRemoval = true;
  param.noiseRemoval = {{100, side, side, 500, 1}};
  return param;
}
constexpr std::int32_t kNoiseSides[] = {30, 60, 120, 200, 300};  // of the levels 1 to 5

TEST(ImageEnhanceInk, RemovesSpecksUpToTheSizeOfTheLevel) {
  Sheet sheet(900, 100);
  for (int side = 1; side <= 12; ++side) sheet.fill({side * 70 - 40, 40, side, side}, kBlack);
  constexpr int kLargest[] = {1, 2, 4, 6, 9};
  for (std::size_t level = 0; level < 5; ++level) {
    for (const Sheet& page : {sheet, toGray(sheet), toMono(sheet)}) {
      const Sheet after = enhance(page, noiseOf(kNoiseSides[level])).sheet;
      for (int side = 1; side <= 12; ++side) {
        const int left = countDark(after, {side * 70 - 60, 20, 60, 60});
        EXPECT_EQ(left, side <= kLargest[level] ? 0 : side * side) << "level " << level + 1 << " side " << side;
      }
    }
  }
}

TEST(ImageEnhanceInk, RemovesDustAndKeepsEveryDotOfTheText) {
  Sheet clean(900, 400);
  writeText(clean, {40, 10, 820, 240});
  Sheet before = clean;
  std::minstd_rand random(3);
  const auto next = [&](int below) { return static_cast<int>(random() >> 4) % below; };
  for (int i = 0; i < 150; ++i) {
    before.fill({next(900), 290 + next(100), 1 + next(4), 1 + next(4)}, kBlack);
  }
  for (const bool isMono : {false, true}) {
    const Sheet page = isMono ? toMono(before) : before;
    const Sheet after = enhance(page, noiseOf(200)).sheet;
    EXPECT_EQ(countDifferent(after, isMono ? toMono(clean) : clean, {0, 0, 900, 270}), 0) << "the text has changed";
    EXPECT_LT(countDark(after, {0, 280, 900, 120}), countDark(before, {0, 280, 900, 120}) / 10);
    if (!isMono) leavePicture("noise", before, after, before.whole(), 0.4F);
  }
}

// Dots that are as small as specks and yet belong to something: leaders, the needles of a printer, a printed screen.
void drawDots(Sheet& sheet) {
  for (int i = 0; i < 30; ++i) sheet.fill({60 + i * 10, 40, 4, 4}, kBlack);
  for (int i = 0; i < 8; ++i) sheet.fill({60 + i * 27, 80 + i % 2, 4, 4}, kBlack);
  needleText(sheet, 420, 40);
  for (int y = 130; y < 190; y += 6) {
    for (int x = 60; x < 160; x += 6) sheet.fill({x + y / 6 % 2 * 3, y, 2, 2}, kBlack);
  }
}

// Where dust lies as thick as this, many specks have others near them by chance.
TEST(ImageEnhanceInk, RemovesThickDust) {
  Sheet before(900, 400);
  std::minstd_rand random(11);
  const auto next = [&](int below) { return static_cast<int>(random() >> 4) % below; };
  for (int i = 0; i < 900 * 400 / 100; ++i) before.set(next(900), next(400), kBlack);
  const Sheet after = enhance(before, noiseOf(120)).sheet;
  EXPECT_LT(countDark(after, after.whole()), countDark(before, before.whole()) / 10);
}

TEST(ImageEnhanceInk, KeepsDotsThatBelongTogether) {
  Sheet clean(700, 260);
  drawDots(clean);
  Sheet before = clean;
  for (int i = 0; i < 12; ++i) before.fill({220 + i * 37, 120 + i * 41 % 120, 1 + i % 4, 1 + i % 3}, kBlack);
  leavePicture("noise-dots", before, enhance(before, noiseOf(200)).sheet, before.whole(), 0.5F);
  for (const std::int32_t side : kNoiseSides) {
    if (side < 120) continue;  // of the smaller ones, some specks are too large
    EXPECT_EQ(enhance(before, noiseOf(side)).sheet, clean) << side;
    EXPECT_EQ(enhance(toMono(before), noiseOf(side)).sheet, toMono(clean)) << side;
  }
}

TEST(ImageEnhanceInk, FillsSpecksWithThePaperAroundThem) {
  Sheet sheet(200, 200, {210, 190, 160});
  sheet.fill({100, 100, 3, 3}, kBlack);
  EXPECT_EQ(enhance(sheet, noiseOf(120)).sheet, Sheet(200, 200, Ink{210, 190, 160}));
}

// --- Lines ---

_IE_PARAM linesOf(bool along, bool across) {
  _IE_PARAM param = color();
  param.doLineRemoval = true;
  param.lineRemovalA.enable = along ? 1 : 0;
  param.lineRemovalB.enable = across ? 1 : 0;
  return param;
}

// A ruled form, slightly askew, with text that stands on and hangs over its lines.
Sheet form(bool hasRows, bool hasColumns, Ink ink = {90, 90, 95}) {
  Sheet sheet(900, 420);
  writeText(sheet, {60, 0, 780, 400});
  for (int row = 0; hasRows && row < 7; ++row) {
    for (int x = 40; x < 860; ++x) sheet.fill({x, 57 + row * 54 + x / 200, 1, 4}, ink);
  }
  for (int column = 0; hasColumns && column < 3; ++column) {
    for (int y = 20; y < 400; ++y) sheet.fill({44 + column * 400 + y / 200, y, 4, 1}, ink);
  }
  sheet.fill({620, 120, 120, 90}, kBlack);  // a solid box is no line
  return sheet;
}

TEST(ImageEnhanceInk, RemovesTheLinesOfTheDirectionsAskedFor) {
  const Sheet before = form(true, true);
  const struct {
    const char* name;
    bool along, across;
  } rows[] = {{"rows", true, false}, {"columns", false, true}, {"both", true, true}};
  for (const auto& row : rows) {
    const Sheet wanted = form(!row.along, !row.across);
    for (const bool isMono : {false, true}) {
      const auto page = [&](const Sheet& sheet) { return isMono ? toMono(sheet) : sheet; };
      const Sheet after = enhance(page(before), linesOf(row.along, row.across)).sheet;
      const int lines = countDifferent(page(before), page(wanted), before.whole());
      EXPECT_LT(countDifferent(after, page(wanted), before.whole()), lines / 7) << row.name << isMono;
      EXPECT_EQ(countDifferent(after, page(wanted), {625, 125, 110, 80}), 0) << "the solid box";
      if (!isMono) leavePicture(std::string("lines-") + row.name, before, after, before.whole(), 0.4F);
    }
  }
}

TEST(ImageEnhanceInk, LeavesTextWithoutLinesAlone) {
  const Sheet before = form(false, false);
  EXPECT_FALSE(enhance(before, linesOf(true, true)).hasChanged);
  EXPECT_FALSE(enhance(toMono(before), linesOf(true, true)).hasChanged);
}

// A dark picture of dots is full of long thin rows, and so is a black box above and below its white letters.
TEST(ImageEnhanceInk, LeavesPicturesAndWhiteLettersAlone) {
  Sheet before(900, 600);
  std::minstd_rand random(5);
  for (int y = 60; y < 300; ++y) {
    for (int x = 60; x < 460; ++x) {
      const int darkness = 40 + (x - 60) / 8 + (y - 60) / 16;  // of 100, up to all black
      if (static_cast<int>(random() >> 8) % 100 < darkness) before.set(x, y, kBlack);
    }
  }
  before.fill({60, 380, 600, 56}, kBlack);
  before.text(80, 424, "PRICE INCLUDES POSTAGE", 10, kWhite);
  Sheet wanted = before;
  before.fill({500, 100, 360, 4}, kBlack);
  before.fill({40, 520, 820, 4}, kBlack);
  for (const bool isMono : {false, true}) {
    const auto page = [&](const Sheet& sheet) { return isMono ? toMono(sheet) : sheet; };
    const Sheet after = enhance(page(before), linesOf(true, true)).sheet;
    EXPECT_EQ(countDifferent(after, page(wanted), before.whole()), 0);
    if (!isMono) leavePicture("lines-picture", before, after, before.whole(), 0.4F);
  }
}

TEST(ImageEnhanceInk, TakesTheSizeOfLinesFromTheRecord) {
  Sheet sheet(900, 200);
  sheet.fill({50, 50, 100, 3}, kBlack);                                    // 8 mm
  sheet.fill({50, 100, 500, 20}, kBlack);                                  // 1.7 mm thick
  for (int x = 50; x < 550; x += 20) sheet.fill({x, 150, 12, 3}, kBlack);  // broken every 0.7 mm
  const auto left = [&](_IE_PARAM param, int y) { return countDark(enhance(sheet, param).sheet, {0, y, 900, 30}); };
  _IE_PARAM param = linesOf(true, false);
  for (const int y : {40, 95, 140}) EXPECT_GT(left(param, y), 250) << y;
  param.lineRemovalA.first = 500;
  EXPECT_EQ(left(param, 40), 0);
  param.lineRemovalA.second = 200;
  EXPECT_EQ(left(param, 95), 0);
  param.lineRemovalThird = 80;
  EXPECT_EQ(left(param, 140), 0);
}

// --- Thick text, dots ---

TEST(ImageEnhanceInk, MakesStrokesThickerByTheLevel) {
  Sheet sheet(200, 100);
  sheet.fill({50, 0, 3, 100}, kBlack);
  for (int level = 1; level <= 5; ++level) {
    for (const Sheet& page : {sheet, toGray(sheet), toMono(sheet)}) {
      _IE_PARAM param = color();
      param.doThickText = true;
      param.thickTextLevel = level;
      EXPECT_EQ(countDark(enhance(page, param).sheet, {0, 50, 200, 1}), 3 + level) << page.bits;
    }
  }
  Sheet text(640, 200);
  writeText(text, {20, 10, 600, 180}, 12);
  _IE_PARAM param = color();
  param.doThickText = true;
  param.thickTextLevel = 2;
  const Sheet after = enhance(text, param).sheet;
  EXPECT_GT(countDark(after, after.whole()), countDark(text, text.whole()) * 13 / 10);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 640; ++x) ASSERT_LE(after.level(x, y), text.level(x, y)) << "ink was lost";
  }
  leavePicture("thick", text, after, {10, 20, 300, 150}, 1.2F);
}

int pieces(const Sheet& sheet, Rect rect) {
  Pix* color = pixOf(sheet, rect);
  Pix* mono = pixConvertTo1(color, 128);
  l_int32 count = 0;
  pixCountConnComp(mono, 8, &count);
  pixDestroy(&mono);
  pixDestroy(&color);
  return count;
}

TEST(ImageEnhanceInk, JoinsTheDotsOfNeedlePrintAndLeavesOtherTextAlone) {
  Sheet before(400, 240);
  needleText(before, 40, 40);
  needleText(before, 210, 40);
  const Rect needles{20, 20, 360, 80};
  writeText(before, {30, 110, 340, 120}, 10);
  const Rect text{0, 110, 400, 130};
  ASSERT_GT(pieces(before, needles), 90);
  for (const Sheet& page : {before, toGray(before), toMono(before)}) {
    _IE_PARAM param = color();
    param.doDotTextCombine = true;
    param.dotTextCombineMode = 1;
    const Sheet after = enhance(page, param).sheet;
    EXPECT_LE(pieces(after, needles), 16) << "eight letters";
    EXPECT_EQ(countDifferent(after, page, text), 0);
    if (page.bits == 24) leavePicture("dots", before, after, {20, 20, 360, 200}, 1.0F);
  }
}

}  // namespace
