// Paper sizes, trimmed areas and the limits of long pages against a second reading of their rules that is written here.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "settings/PaperSize.h"

namespace orvalle_scan_api {
namespace {

const CPaperSize kPaper;

struct StoredPaper {
  int type;
  std::uint32_t width, height;
  char unit;  // i or m
};
constexpr StoredPaper kStored[] = {
    {0, 0, 0, 'i'},          {1, 21000, 29700, 'm'},  {2, 8500, 11000, 'i'},   {3, 8500, 14000, 'i'},
    {4, 29700, 42000, 'm'},  {5, 11000, 17000, 'i'},  {6, 25700, 36400, 'm'},  {7, 18200, 25700, 'm'},
    {8, 14800, 21000, 'm'},  {9, 12800, 18200, 'm'},  {10, 10500, 14800, 'm'}, {11, 7250, 10500, 'i'},
    {12, 4000, 6000, 'i'},   {13, 5000, 8000, 'i'},   {14, 3503, 5000, 'i'},   {15, 5000, 7000, 'i'},
    {16, 10000, 14800, 'm'}, {17, 14800, 20000, 'm'}, {18, 9000, 6000, 'm'},   {19, 6000, 9000, 'm'},
    {20, 8500, 13000, 'i'},  {21, 8500, 13380, 'i'},  {22, 21500, 34500, 'm'}, {23, 4250, 0, 'i'},
    {24, 8500, 0, 'i'},
};

std::string text(AXIS size) { return std::to_string(size.x) + " by " + std::to_string(size.y); }
std::string paper(int type, UNITTYPE unit) { return text(kPaper.GetPaperSize(static_cast<PAPERTYPE>(type), unit)); }

// Digits only: thousandths of an inch and hundredths of a millimetre are 2540 to 1000, rounded down.
std::uint32_t toMm(std::uint32_t inch) { return inch * 254u / 100u; }
std::uint32_t toInch(std::uint32_t mm) { return mm * 100u / 254u; }

TEST(PaperSizeRows, EveryPaperInEveryUnit) {
  for (const StoredPaper& row : kStored) {
    const bool metric = row.unit == 'm';
    const AXIS stored{row.width, row.height};
    EXPECT_EQ(paper(row.type, UNIT_MILLIMETER), text(metric ? stored : AXIS{toMm(row.width), toMm(row.height)}))
        << row.type;
    EXPECT_EQ(paper(row.type, UNIT_INCH), text(metric ? AXIS{toInch(row.width), toInch(row.height)} : stored))
        << row.type;
    EXPECT_EQ(paper(row.type, UNIT_PIXEL), "0 by 0") << row.type;
  }
}

TEST(PaperSizeRows, TheSizesThatPeopleKnow) {
  EXPECT_EQ(paper(1, UNIT_INCH), "8267 by 11692");
  EXPECT_EQ(paper(2, UNIT_MILLIMETER), "21590 by 27940");
  EXPECT_EQ(paper(14, UNIT_MILLIMETER), "8897 by 12700");
  EXPECT_EQ(paper(4, UNIT_INCH), "11692 by 16535");
  EXPECT_EQ(paper(21, UNIT_MILLIMETER), "21590 by 33985");
  for (const UNITTYPE unit : {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL}) {
    EXPECT_EQ(kPaper.GetPaperSize(PAPERTYPE_LONG, unit).y, 0u);
    EXPECT_EQ(kPaper.GetPaperSize(PAPERTYPE_LONG_NARROW, unit).y, 0u);
  }
}

TEST(PaperSizeRows, APaperWithoutARowHasNoSize) {
  for (const int type : {25, 26, 27, 255, -1, INT_MAX, INT_MIN}) {
    EXPECT_EQ(paper(type, UNIT_MILLIMETER), "0 by 0") << type;
    EXPECT_EQ(paper(type, UNIT_INCH), "0 by 0") << type;
  }
}

// ---- areas

struct Span {
  int start, size;
};
Span revised(Span span, int maximum) {
  if (maximum == 0) return span;
  return {span.start > maximum ? 0 : span.start, span.size > maximum ? maximum : span.size};
}
SCANAREA area(Span across, Span down, UNITTYPE unit) {
  return {across.start, down.start, across.size, down.size, unit};
}
std::string text(SCANAREA a) {
  return std::to_string(a.left) + " " + std::to_string(a.top) + " " + std::to_string(a.right) + " " +
         std::to_string(a.bottom) + " unit " + std::to_string(a.unit);
}

TEST(PaperSizeRows, EverySmallAreaAgainstEverySmallMaximum) {
  for (const UNITTYPE unit : {UNIT_INCH, UNIT_MILLIMETER, UNIT_PIXEL}) {
    for (int x = -2; x <= 4; ++x) {
      for (int width = -2; width <= 4; ++width) {
        for (int maxX = 0; maxX <= 3; ++maxX) {
          for (int y = -2; y <= 4; ++y) {
            for (int maxY = 0; maxY <= 3; ++maxY) {
              const Span across{x, width}, down{y, 2 - y};
              const AXIS maximum{static_cast<std::uint32_t>(maxX), static_cast<std::uint32_t>(maxY)};
              const SCANAREA once = kPaper.ReviseArea(area(across, down, unit), maximum);
              ASSERT_EQ(text(once), text(area(revised(across, maxX), revised(down, maxY), unit)));
              ASSERT_EQ(text(kPaper.ReviseArea(once, maximum)), text(once)) << "revised twice";
            }
          }
        }
      }
    }
  }
}

TEST(PaperSizeRows, AnAreaOnPaperAgainstADevice) {
  const AXIS a4{21000, 29700};
  EXPECT_EQ(text(kPaper.ReviseArea({0, 0, 21590, 27940, UNIT_MILLIMETER}, a4)), "0 0 21000 27940 unit 1");
  EXPECT_EQ(text(kPaper.ReviseArea({21001, 29701, 100, 100, UNIT_MILLIMETER}, a4)), "0 0 100 100 unit 1");
  EXPECT_EQ(text(kPaper.ReviseArea({20000, 29000, 5000, 5000, UNIT_MILLIMETER}, a4)), "20000 29000 5000 5000 unit 1");
  EXPECT_EQ(text(kPaper.ReviseArea({-300, -300, 42000, 42000, UNIT_MILLIMETER}, a4)), "-300 -300 21000 29700 unit 1");
  EXPECT_EQ(text(kPaper.ReviseArea({9, 9, 99999, 99999, UNIT_MILLIMETER}, {0, 0})), "9 9 99999 99999 unit 1");
}

TEST(PaperSizeRows, AMarginComesOffTwice) {
  for (const int margin : {0, 1, 150, 300}) {
    const AXIS axis{static_cast<std::uint32_t>(margin), static_cast<std::uint32_t>(2 * margin)};
    EXPECT_EQ(text(kPaper.CutOutMarginSize({7, 8, 21000, 29700, UNIT_MILLIMETER}, axis)),
              text(area({7, 21000 - 2 * margin}, {8, 29700 - 4 * margin}, UNIT_MILLIMETER)));
  }
  EXPECT_EQ(text(kPaper.CutOutMarginSize({0, 0, 1, 1, UNIT_INCH}, {1, 2})), "0 0 -1 -3 unit 0");
}

// ---- long pages

struct Limit {
  std::uint32_t dpi, length;
  char unit;
};
constexpr Limit kLimits[] = {{100, 500000, 'm'}, {150, 500000, 'm'}, {200, 500000, 'm'}, {300, 500000, 'm'},
                             {400, 277400, 'm'}, {600, 100000, 'm'}, {1200, 14000, 'i'}};

bool mayGrow(std::uint32_t dpi, std::uint32_t deviceDpi, std::uint32_t height) {
  for (const Limit& limit : kLimits) {
    if (limit.dpi != dpi) continue;
    std::uint32_t length = height * 1000u / dpi;
    if (limit.unit == 'm') length = toMm(length);
    if (dpi > deviceDpi) length *= dpi / deviceDpi;
    return length <= limit.length;
  }
  return true;
}
bool supported(int type, std::uint32_t dpi, std::uint32_t deviceDpi, std::uint32_t height) {
  QS_SCANNER_PARAMETERS settings{};
  settings.paperType = static_cast<PAPERTYPE>(type);
  return kPaper.IsSupportImageSize(dpi, deviceDpi, height, &settings);
}

TEST(PaperSizeRows, EveryHeightOfALongPageAtEveryResolution) {
  for (const std::uint32_t dpi : {100u, 150u, 200u, 300u, 400u, 600u, 1200u, 250u, 2400u}) {
    for (const std::uint32_t deviceDpi : {100u, 200u, 300u, 400u, 600u, 601u, 1200u}) {
      for (std::uint32_t height = 0; height < 62000; height += 7) {
        ASSERT_EQ(supported(24, dpi, deviceDpi, height), mayGrow(dpi, deviceDpi, height))
            << dpi << " " << deviceDpi << " " << height;
      }
    }
  }
}

TEST(PaperSizeRows, TheLastHeightThatPasses) {
  for (const Limit& limit : kLimits) {
    std::uint32_t last = 0;
    while (mayGrow(limit.dpi, limit.dpi, last + 1)) ++last;
    for (const int type : {23, 24}) {
      EXPECT_TRUE(supported(type, limit.dpi, limit.dpi, last)) << limit.dpi << " " << last;
      EXPECT_FALSE(supported(type, limit.dpi, limit.dpi, last + 1)) << limit.dpi << " " << last;
    }
  }
  EXPECT_TRUE(supported(24, 600, 600, 23622));
  EXPECT_FALSE(supported(24, 600, 600, 23623));
  // At twice the device's resolution the length counts twice: 7000 thousandths of an inch are the limit.
  EXPECT_TRUE(supported(24, 1200, 600, 8400));
  EXPECT_FALSE(supported(24, 1200, 600, 8402));
}

TEST(PaperSizeRows, WhatIsNotLimited) {
  for (int type = 0; type <= 26; ++type) {
    EXPECT_EQ(supported(type, 600, 600, 1000000), type != 23 && type != 24) << type;
  }
  EXPECT_TRUE(supported(24, 250, 250, 1000000));
  EXPECT_TRUE(kPaper.IsSupportImageSize(600, 600, 1000000, nullptr));
}

}  // namespace
}  // namespace orvalle_scan_api
