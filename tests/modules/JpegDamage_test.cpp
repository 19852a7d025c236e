// The JPEG decoder on pictures that are cut, damaged, or none at all.
#include <gtest/gtest.h>

#include <random>

#include "jpeg_decode_harness.h"
#include "jpeg_pictures.h"

namespace {

using namespace orvalle_scan_api;
using namespace module_test;
using Bytes = std::vector<std::uint8_t>;

// 3 to 9 and 14 are failures to the core; 0 to 2 and anything else are not.
bool isFailure(int status) { return (status >= 3 && status <= 9) || status == 14; }

Bytes head(const Bytes& bytes, std::size_t size) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

class JpegDamage : public testing::Test {
 protected:
  std::unique_ptr<IJpegDecode> decoder_ = jpegModule();
};

struct CutCase {
  const char* name;
  int parts;
  Encoding how;
  std::size_t blockRows;  // lines of one row of blocks
};
void PrintTo(const CutCase& row, std::ostream* out) { *out << row.name; }

class CutPicture : public testing::TestWithParam<CutCase> {};

TEST_P(CutPicture, KeepsWhatCameAndIsMidGrayBelow) {
  const CutCase& row = GetParam();
  const auto decoder = jpegModule();
  const Bytes jpeg = encodeJpeg(drawPicture(120, 100, row.parts), row.how);
  Pixels whole;
  ASSERT_TRUE(decodeWithLibjpeg(jpeg, whole));
  const std::size_t firstRow = row.blockRows * whole.lineBytes();
  int failed = 0;
  int partial = 0;
  for (std::size_t size = 0; size < jpeg.size(); size += 64) {
    const Bytes cut = head(jpeg, size);
    const Decoded page = decodePage(*decoder, cut);
    const Decoded band = decodeBand(*decoder, cut, 100);
    ASSERT_EQ(isFailure(page.status), isFailure(band.status)) << size;

    Pixels expected;
    const bool decodable = size > 0 && decodeWithLibjpeg(cut, expected);
    if (isFailure(page.status)) {
      ++failed;
      EXPECT_TRUE(band.bytes.empty()) << size;
      if (!decodable || row.how.progressive) continue;
      // Refused, so the first row of blocks must be incomplete. Its last line can tell only in part of the cases.
      const std::vector<std::uint8_t> lastBlock(expected.bytes.begin() + static_cast<std::ptrdiff_t>(firstRow) - 3,
                                                expected.bytes.begin() + static_cast<std::ptrdiff_t>(firstRow));
      EXPECT_NE(lastBlock, Bytes(whole.bytes.begin() + static_cast<std::ptrdiff_t>(firstRow) - 3,
                                 whole.bytes.begin() + static_cast<std::ptrdiff_t>(firstRow)))
          << size;
      continue;
    }
    ++partial;
    ASSERT_TRUE(decodable) << size;
    ASSERT_EQ(page.bytes, expected.bytes) << size;
    ASSERT_EQ(band.bytes, expected.bytes) << size;
    ASSERT_EQ(band.status, 0) << size;
  }
  EXPECT_GT(failed, 3);
  EXPECT_GT(partial, 5);
}

const CutCase kCuts[] = {
    {"Colour", 3, {}, 16},
    {"ColourWithFullParts", 3, {.fullColor = true}, 8},
    {"ColourWithRestarts", 3, {.restartRows = 2}, 16},
    {"Gray", 1, {}, 8},
    {"Progressive", 3, {.progressive = true}, 16},
};
INSTANTIATE_TEST_SUITE_P(JpegDamage, CutPicture, testing::ValuesIn(kCuts),
                         [](const auto& row) { return std::string(row.param.name); });

// Where a small picture is cut is where a marker, a length or a table is cut as well.
TEST(EveryCutOfASmallPicture, GivesItsLinesAndMidGrayBelowOrAFailure) {
  const Encoding kWays[] = {{}, {.fullColor = true}, {.restartRows = 1}, {.progressive = true}};
  const auto decoder = jpegModule();
  for (const int parts : {1, 3}) {
    for (const Encoding& how : kWays) {
      const int blockRows = parts == 3 && !how.fullColor ? 16 : 8;
      const Bytes jpeg = encodeJpeg(drawPicture(19, 50, parts), how);
      std::size_t firstPage = 0;  // the shortest cut that gives one
      Bytes before;               // the page of the cut before
      for (std::size_t size = 0; size <= jpeg.size(); ++size) {
        SCOPED_TRACE(std::to_string(parts) + " parts, cut at " + std::to_string(size));
        const Bytes cut = head(jpeg, size);
        const Decoded page = decodePage(*decoder, cut);
        const Decoded band = decodeBand(*decoder, cut, 7);
        ASSERT_EQ(page.status != 0, band.status != 0);
        if (page.status != 0) {
          ASSERT_TRUE(isFailure(page.status));
          ASSERT_TRUE(isFailure(band.status));
          ASSERT_TRUE(band.bytes.empty());
          ASSERT_EQ(firstPage, 0u) << "a shorter cut gave a page";
          continue;
        }
        // libjpeg's own source gives up where a table between two scans is cut: that one counts as not there.
        Pixels expected;
        if (!decodeWithLibjpeg(cut, expected)) {
          ASSERT_TRUE(how.progressive && firstPage != 0);
          expected.bytes = before;
        }
        ASSERT_EQ(page.bytes, expected.bytes);
        ASSERT_EQ(band.bytes, expected.bytes);
        before = page.bytes;
        if (firstPage != 0) continue;
        firstPage = size;
        // The first row of blocks has just come: the lines of the last one are mid-grey.
        const auto lineBytes = static_cast<std::ptrdiff_t>(page.bytes.size() / 50);
        if (!how.progressive) {
          EXPECT_EQ(Bytes(page.bytes.end() - 2 * lineBytes, page.bytes.end()),
                    Bytes(static_cast<std::size_t>(2 * lineBytes), 128));
        }
        EXPECT_NE(Bytes(page.bytes.begin(), page.bytes.begin() + blockRows / 2 * lineBytes),
                  Bytes(static_cast<std::size_t>(blockRows / 2 * lineBytes), 128));
      }
      EXPECT_GT(firstPage, 100u);
      EXPECT_LT(firstPage, jpeg.size() - 50);
    }
  }
}

TEST(EveryDamagedByteOfASmallPicture, GivesAPageOfItsHeadersSizeOrAFailure) {
  const Encoding kWays[] = {{}, {.restartRows = 1}, {.progressive = true}};
  const auto decoder = jpegModule();
  int pages = 0;
  for (const Encoding& how : kWays) {
    const Bytes jpeg = encodeJpeg(drawPicture(19, 33, 3), how);
    for (std::size_t at = 0; at < jpeg.size(); ++at) {
      for (const int value : {0x00, 0xFF, jpeg[at] ^ 0x01, jpeg[at] ^ 0x80}) {
        SCOPED_TRACE("byte " + std::to_string(at) + " is " + std::to_string(value));
        Bytes damaged = jpeg;
        damaged[at] = static_cast<std::uint8_t>(value);
        const Decoded band = decodeBand(*decoder, damaged, 11);
        // A size beyond reason costs time and says nothing new.
        if (static_cast<double>(band.widthPx) * band.heightPx > 4e6) continue;
        const Decoded page = decodePage(*decoder, damaged);
        ASSERT_TRUE(page.status == 0 || isFailure(page.status)) << page.status;
        ASSERT_TRUE(band.status == 0 || isFailure(band.status)) << band.status;
        if (page.status != 0) continue;
        ++pages;
        const auto sizeOf = [](const Decoded& d) {
          return static_cast<std::size_t>(d.widthPx) * static_cast<std::size_t>(d.heightPx * d.bitsPerPixel / 8);
        };
        ASSERT_EQ(page.bytes.size(), sizeOf(page));
        if (band.status == 0) {
          ASSERT_EQ(page.bytes, band.bytes);
        }
      }
    }
  }
  EXPECT_GT(pages, 100);
}

TEST_F(JpegDamage, TheLinesThatNeverCameAreMidGray) {
  const Bytes jpeg = encodeJpeg(drawPicture(120, 100, 3));
  const Decoded page = decodePage(*decoder_, head(jpeg, jpeg.size() / 2));
  ASSERT_EQ(page.status, 0);
  EXPECT_EQ(Bytes(page.bytes.end() - 360, page.bytes.end()), Bytes(360, 128));
}

TEST_F(JpegDamage, AnErrorAfterTheFirstLinesLeavesMidGrayBelow) {
  // A second picture header in the middle of the data is one of the few things that libjpeg gives up on.
  Bytes jpeg = encodeJpeg(drawPicture(120, 100, 1), {.restartRows = 4});
  const std::size_t middle = jpeg.size() / 2;
  const Bytes header{0xFF, 0xD8, 0xFF, 0xD8};
  std::copy(header.begin(), header.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(middle));
  const Decoded page = decodePage(*decoder_, jpeg);
  const Decoded band = decodeBand(*decoder_, jpeg, 100);
  EXPECT_EQ(page.status, 0);
  EXPECT_EQ(page.bytes.size(), 120u * 100);
  EXPECT_EQ(band.status, 0);
  EXPECT_EQ(band.bytes.size(), 120u * 100);
}

// Where the segments behind the first scan begin.
std::vector<std::size_t> segmentsBetweenScans(const Bytes& jpeg) {
  std::vector<std::size_t> places;
  bool scanSeen = false;
  for (std::size_t at = 2; at + 3 < jpeg.size(); ++at) {
    const int marker = jpeg[at] == 0xFF ? jpeg[at + 1] : 0;
    if (marker < 0xC0 || (marker >= 0xD0 && marker <= 0xD9)) continue;  // pixels, restarts and the end
    if (scanSeen) places.push_back(at);
    scanSeen = scanSeen || marker == 0xDA;
    at += 1u + static_cast<std::size_t>(jpeg[at + 2] * 256 + jpeg[at + 3]);
  }
  return places;
}

TEST_F(JpegDamage, ASegmentBetweenScansThatMakesNoSenseEndsThePictureBeforeIt) {
  const Bytes frame{0xFF, 0xC2, 0, 17, 8, 0xFF, 0xF0, 0xFF, 0xF0, 9, 1, 0x22, 0, 2, 0x11, 1, 3, 0x11, 1};
  const struct {
    const char* name;
    Bytes bytes;  // in the place of the segment
  } kRows[] = {
      {"a table without a length", {0xFF, 0xC4, 0, 0, 0, 1, 2, 3}},
      {"a table of too many codes", {0xFF, 0xC4, 0, 40, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255}},
      {"a table of no known number", {0xFF, 0xC4, 0, 20, 0x7F, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5}},
      {"a quantisation of no known number", {0xFF, 0xDB, 0, 67, 15, 1, 2, 3}},
      {"a scan of too many parts", {0xFF, 0xDA, 0, 20, 9, 1, 0, 2, 0}},
      {"a scan of unknown parts", {0xFF, 0xDA, 0, 8, 1, 77, 0, 1, 5, 0}},
      {"a second start", {0xFF, 0xD8, 0xFF, 0xD8}},
      {"a second frame of another size", frame},
      {"a second frame that is cut", Bytes(frame.begin(), frame.begin() + 9)},
      {"a marker that nobody knows", {0xFF, 0x05, 0xFF, 0x05}},
  };
  for (const int parts : {1, 3}) {
    const Bytes jpeg = encodeJpeg(drawPicture(70, 50, parts), {.progressive = true});
    const std::vector<std::size_t> places = segmentsBetweenScans(jpeg);
    ASSERT_GT(places.size(), 5u);
    for (const std::size_t at : places) {
      Pixels expected;
      ASSERT_TRUE(decodeWithLibjpeg(head(jpeg, at), expected));
      for (const auto& row : kRows) {
        SCOPED_TRACE(row.name + std::string(" at ") + std::to_string(at));
        Bytes damaged = head(jpeg, at);
        damaged.insert(damaged.end(), row.bytes.begin(), row.bytes.end());
        const bool isCut = row.bytes.size() == 9 && row.bytes[1] == 0xC2;
        if (!isCut) damaged.insert(damaged.end(), jpeg.begin() + static_cast<std::ptrdiff_t>(at), jpeg.end());
        const Decoded page = decodePage(*decoder_, damaged);
        EXPECT_EQ(page.status, 0);
        EXPECT_EQ(page.bytes, expected.bytes);
        const Decoded band = decodeBand(*decoder_, damaged, 13);
        EXPECT_EQ(band.status, 0);
        EXPECT_EQ(band.bytes, expected.bytes);
      }
    }
  }
}

TEST_F(JpegDamage, WhatIsNoJpegFails) {
  std::mt19937 random(5);
  Bytes noise(5000);
  for (auto& value : noise) value = static_cast<std::uint8_t>(random());
  const struct {
    const char* name;
    Bytes bytes;
  } rows[] = {
      {"one byte", {0xFF}},
      {"start marker", {0xFF, 0xD8}},
      {"start and end marker", {0xFF, 0xD8, 0xFF, 0xD9}},
      {"line records", {5, 0, 0, 0, 2, 0, 0, 0, 6, 0, 0, 0, 1, 2, 3, 4, 5, 6}},
      {"a BMP", {'B', 'M', 60, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0}},
      {"noise", noise},
      {"zeros", Bytes(5000)},
  };
  for (const auto& row : rows) {
    EXPECT_TRUE(isFailure(decodePage(*decoder_, row.bytes).status)) << row.name;
    EXPECT_TRUE(isFailure(decodeBand(*decoder_, row.bytes).status)) << row.name;
  }
}

TEST_F(JpegDamage, FourColoursAreRefused) {
  const Bytes jpeg = encodeJpeg(drawPicture(20, 20, 4));
  EXPECT_TRUE(isFailure(decodePage(*decoder_, jpeg).status));
  EXPECT_TRUE(isFailure(decodeBand(*decoder_, jpeg).status));
}

TEST_F(JpegDamage, AnEmptyPictureIsRefused) {
  const Bytes jpeg = withHeight(encodeJpeg(drawPicture(20, 20, 3)), 0);
  EXPECT_TRUE(isFailure(decodePage(*decoder_, jpeg).status));
  EXPECT_TRUE(isFailure(decodeBand(*decoder_, jpeg).status));
}

Bytes withSize(Bytes jpeg, int widthPx, int heightPx) {
  jpeg = withHeight(std::move(jpeg), heightPx);
  const std::size_t at = heightPlace(jpeg) + 2;
  jpeg[at] = static_cast<std::uint8_t>(widthPx >> 8);
  jpeg[at + 1] = static_cast<std::uint8_t>(widthPx);
  return jpeg;
}

TEST_F(JpegDamage, AHugeSizeIsRefusedBeforeMemoryIsTaken) {
  EXPECT_EQ(decodePage(*decoder_, withSize(encodeJpeg(drawPicture(20, 20, 3)), 65500, 65500)).status,
            JPEGDECODE_LOW_MEMORY);
  const Bytes progressive = encodeJpeg(drawPicture(20, 20, 3), {.progressive = true});
  EXPECT_EQ(decodePage(*decoder_, withSize(progressive, 20000, 17000)).status, JPEGDECODE_LOW_MEMORY);
  EXPECT_EQ(decodeBand(*decoder_, withSize(progressive, 65500, 65500)).status, JPEGDECODE_LOW_MEMORY);
}

TEST_F(JpegDamage, ALargeSizeWithoutItsDataEndsSoon) {
  const Bytes jpeg = withSize(encodeJpeg(drawPicture(20, 20, 3)), 65500, 5000);
  EXPECT_TRUE(isFailure(decodePage(*decoder_, jpeg).status));
  const Bytes tall = withSize(encodeJpeg(drawPicture(20, 20, 3)), 65500, 65500);
  EXPECT_TRUE(isFailure(decodeBand(*decoder_, tall).status));
}

TEST_F(JpegDamage, TooManyScansAreRefused) {
  // Each further scan costs a walk over the whole picture and only a few bytes.
  Bytes jpeg = encodeJpeg(drawPicture(64, 64, 1), {.progressive = true});
  jpeg.erase(jpeg.end() - 2, jpeg.end());
  const Bytes emptyScan{0xFF, 0xDA, 0, 8, 1, 1, 0, 1, 5, 0x00, 0x00};
  for (int i = 0; i < 1000; ++i) jpeg.insert(jpeg.end(), emptyScan.begin(), emptyScan.end());
  jpeg.insert(jpeg.end(), {0xFF, 0xD9});
  EXPECT_TRUE(isFailure(decodePage(*decoder_, jpeg).status));
}

TEST_F(JpegDamage, FlippedBytesGiveAPageOrAFailure) {
  std::mt19937 random(6);
  const Encoding ways[] = {{}, {.progressive = true}, {.restartRows = 1}, {.fullColor = true}};
  for (int round = 0; round < 400; ++round) {
    Bytes jpeg = encodeJpeg(drawPicture(70, 50, round % 3 == 0 ? 1 : 3), ways[round % 4]);
    for (unsigned flips = 1 + random() % 8; flips > 0; --flips) {
      jpeg[random() % jpeg.size()] = static_cast<std::uint8_t>(random());
    }
    const Decoded page = decodePage(*decoder_, jpeg);
    EXPECT_TRUE(page.status == 0 || isFailure(page.status)) << round;
    const Decoded band = decodeBand(*decoder_, jpeg, 1 + random() % 500);
    EXPECT_TRUE(band.status == 0 || isFailure(band.status)) << round << " " << band.status;
    if (band.status == 0) {
      const auto lineBytes = static_cast<std::size_t>(band.widthPx) * static_cast<std::size_t>(band.bitsPerPixel) / 8;
      EXPECT_EQ(band.bytes.size(), lineBytes * static_cast<std::size_t>(band.heightPx)) << "all lines come";
    }
  }
}

TEST_F(JpegDamage, BytesOfAnotherPictureThanTheOpenedOneFail) {
  const Bytes opened = encodeJpeg(drawPicture(40, 40, 3));
  const Bytes fed = encodeJpeg(drawPicture(20, 20, 3));
  JPEGBANDINFO info{};
  ASSERT_EQ(decoder_->OpenBand(opened.data(), static_cast<unsigned>(opened.size()), &info), 0);
  ASSERT_EQ(decoder_->WriteBand(fed.data(), static_cast<unsigned>(fed.size())), 0);
  void* line = nullptr;
  unsigned size = 0;
  EXPECT_TRUE(isFailure(decoder_->ReadBandLine(&line, &size)));
  EXPECT_EQ(size, 0u);
}

TEST_F(JpegDamage, NothingIsPrinted) {
  const Bytes jpeg = encodeJpeg(drawPicture(120, 100, 3));
  testing::internal::CaptureStderr();
  testing::internal::CaptureStdout();
  decodePage(*decoder_, head(jpeg, jpeg.size() / 2));
  decodePage(*decoder_, Bytes(100, 1));
  decodeBand(*decoder_, head(jpeg, jpeg.size() / 2));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(JpegDamage, AGoodPictureAfterABadOneIsWhole) {
  const Bytes jpeg = encodeJpeg(drawPicture(120, 100, 3));
  Pixels expected;
  ASSERT_TRUE(decodeWithLibjpeg(jpeg, expected));
  decodePage(*decoder_, head(jpeg, jpeg.size() / 2));
  decodeBand(*decoder_, head(jpeg, 300));
  EXPECT_EQ(decodePage(*decoder_, jpeg).bytes, expected.bytes);
  EXPECT_EQ(decodeBand(*decoder_, jpeg).bytes, expected.bytes);
}

}  // namespace
