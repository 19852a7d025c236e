#include "image/JpegHeader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "image/JpegImage.h"
#include "tests/fakes/test_bmp.h"

using fakes::ByteVector;

namespace {

unsigned sizeOf(const ByteVector& bytes) { return static_cast<unsigned>(bytes.size()); }

ByteVector app0(std::uint8_t units, unsigned densityX, unsigned densityY) {
  return {0xFF,
          0xE0,
          0,
          16,
          'J',
          'F',
          'I',
          'F',
          0,
          1,
          2,
          units,
          static_cast<std::uint8_t>(densityX >> 8),
          static_cast<std::uint8_t>(densityX),
          static_cast<std::uint8_t>(densityY >> 8),
          static_cast<std::uint8_t>(densityY),
          3,
          4};
}
ByteVector sof(std::uint8_t marker, unsigned height, unsigned width, std::uint8_t components) {
  return {0xFF,
          marker,
          0,
          17,
          8,
          static_cast<std::uint8_t>(height >> 8),
          static_cast<std::uint8_t>(height),
          static_cast<std::uint8_t>(width >> 8),
          static_cast<std::uint8_t>(width),
          components,
          1,
          0x22,
          0,
          2,
          0x11,
          1,
          3,
          0x11,
          1};
}
ByteVector join(std::initializer_list<ByteVector> parts) {
  ByteVector all;
  for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const ByteVector kSoi = {0xFF, 0xD8};
const ByteVector kTail = {0xFF, 0xDA, 0, 2, 1, 2, 3, 4};

ByteVector jpeg(std::uint8_t units = 1, unsigned densityX = 300, unsigned densityY = 200) {
  return join({kSoi, app0(units, densityX, densityY), sof(0xC0, 3507, 2480, 3), kTail});
}

struct Fields {
  int resX, resY, bpp, width, height;
};
Fields fieldsOf(ByteVector& bytes) {
  CJpegHeader header;
  unsigned char* data = bytes.data();
  const unsigned size = sizeOf(bytes);
  return {header.GetResolutionX(data, size), header.GetResolutionY(data, size), header.GetBitPerPixel(data, size),
          header.GetWidthPix(data, size), header.GetHeightPix(data, size)};
}

}  // namespace

TEST(JpegHeader, TheFieldsOfAnOrdinaryStream) {
  ByteVector bytes = jpeg();
  const Fields fields = fieldsOf(bytes);
  EXPECT_EQ(fields.resX, 300);
  EXPECT_EQ(fields.resY, 200);
  EXPECT_EQ(fields.bpp, 24);
  EXPECT_EQ(fields.width, 2480);
  EXPECT_EQ(fields.height, 3507);
}

TEST(JpegHeader, AStreamOfTwoBytesGives0FromEveryGetter) {
  ByteVector bytes = kSoi;
  const Fields fields = fieldsOf(bytes);
  EXPECT_EQ(fields.resX + fields.resY + fields.bpp + fields.width + fields.height, 0);
  EXPECT_FALSE(CJpegHeader().SetHeightPix(bytes.data(), 2, 5));
  EXPECT_FALSE(CJpegHeader().SetHeightPix(nullptr, 5, 5));
  EXPECT_FALSE(CJpegHeader().SetHeightPix(bytes.data(), 0, 5));
}

TEST(JpegHeader, DensityPerCentimetreIsTurnedIntoInches) {
  ByteVector centimetres = jpeg(2, 118, 79);
  EXPECT_EQ(fieldsOf(centimetres).resX, 299);
  EXPECT_EQ(fieldsOf(centimetres).resY, 200);
  ByteVector inches = jpeg(1, 118, 79);
  EXPECT_EQ(fieldsOf(inches).resX, 118);
  ByteVector none = jpeg(0, 118, 79);
  EXPECT_EQ(fieldsOf(none).resX, 118);
}

TEST(JpegHeader, AFrameHeaderMustBeShorterThanWhatIsLeft) {
  CJpegHeader header;
  ByteVector bytes = join({kSoi, sof(0xC0, 100, 200, 3)});
  // The length field, 17, must be less than the bytes from the marker on, which are 19 here.
  bytes.resize(2 + 17);
  EXPECT_EQ(header.GetSegment(CJpegHeader::kSof0, bytes.data(), sizeOf(bytes)), nullptr);
  EXPECT_EQ(header.GetHeightPix(bytes.data(), sizeOf(bytes)), 0);
  bytes.resize(2 + 18);
  EXPECT_EQ(header.GetSegment(CJpegHeader::kSof0, bytes.data(), sizeOf(bytes)), bytes.data() + 2);
  EXPECT_EQ(header.GetHeightPix(bytes.data(), sizeOf(bytes)), 100);
}

TEST(JpegHeader, AProgressiveFrameIsNotFound) {
  ByteVector bytes = join({kSoi, sof(0xC2, 100, 200, 3), kTail});
  EXPECT_EQ(fieldsOf(bytes).height, 0);
}

TEST(JpegHeader, GreyHas8Bits) {
  ByteVector bytes = join({kSoi, sof(0xC0, 100, 200, 1), kTail});
  EXPECT_EQ(fieldsOf(bytes).bpp, 8);
}

TEST(JpegHeader, SetHeightPixWritesTheHighByteFirst) {
  ByteVector bytes = jpeg();
  const ByteVector before = bytes;
  ASSERT_TRUE(CJpegHeader().SetHeightPix(bytes.data(), sizeOf(bytes), 0x1234));
  ByteVector expected = before;
  expected[2 + 18 + 5] = 0x12;
  expected[2 + 18 + 6] = 0x34;
  EXPECT_EQ(bytes, expected);
  EXPECT_EQ(fieldsOf(bytes).height, 0x1234);
}

TEST(JpegHeader, SetWidthPixLeavesTheWidthAndWritesTheHeight) {
  ByteVector bytes = jpeg();
  ASSERT_TRUE(CJpegHeader().SetWidthPix(bytes.data(), sizeOf(bytes), 0x1234));
  EXPECT_EQ(fieldsOf(bytes).width, 2480);
  EXPECT_EQ(fieldsOf(bytes).height, 0x1234);
}

TEST(JpegImage, TheLow16BitsOfTheHeightAreWritten) {
  ByteVector bytes = jpeg();
  CJpegImage image(bytes.data(), sizeOf(bytes));
  EXPECT_TRUE(image.ReduceHeightInfo(0x54321));
  EXPECT_EQ(fieldsOf(bytes).height, 0x4321);
  EXPECT_TRUE(image.ReduceHeightInfo(9000));
  EXPECT_EQ(fieldsOf(bytes).height, 9000);
  ByteVector none = kSoi;
  EXPECT_FALSE(CJpegImage(none.data(), sizeOf(none)).ReduceHeightInfo(5));
}

TEST(JpegHeader, TheJfifSegmentIsDecoded) {
  ByteVector segment = app0(1, 300, 200);
  segment.push_back(0);
  CJpegHeader header;
  const JPEG_APP0 decoded = header.GetAPP0Segment(segment.data());
  // "JFIF" and its terminator, reversed.
  EXPECT_EQ(std::memcmp(decoded.identifier, "\0FIF", 4), 0);
  EXPECT_EQ(decoded.version, 0x0102);
  EXPECT_EQ(decoded.units, 1);
  EXPECT_EQ(decoded.densityX, 300);
  EXPECT_EQ(decoded.densityY, 200);
  EXPECT_EQ(decoded.thumbnailWidth, 3);
  EXPECT_EQ(decoded.thumbnailHeight, 4);
  EXPECT_EQ(decoded.thumbnail, segment.data() + 18);
}

TEST(JpegHeader, SetAPP0SegmentPutsTheFieldsWhereNobodyWouldLookForThem) {
  CJpegHeader header;
  ByteVector segment(18);
  JPEG_APP0 app{};
  std::memcpy(app.identifier, "ABCD", 4);
  app.version = 0x0102;
  app.units = 2;
  app.densityX = 300;
  app.densityY = 200;
  app.thumbnailWidth = 5;
  app.thumbnailHeight = 6;
  EXPECT_TRUE(header.SetAPP0Segment(app, segment.data()));
  ByteVector expected = {0, 0, 0, 0, 'A', 'B', 'C', 'D', 0x02, 'A', 0x01, 2, 0, 0, 0, 0, 5, 6};
  const std::uint16_t perCentimetre[] = {118, 78};  // 300 * 10 / 25.4 and 200 * 10 / 25.4, truncated, in host order
  std::memcpy(expected.data() + 12, perCentimetre, 4);
  EXPECT_EQ(segment, expected);
}

TEST(JpegHeader, TheFrameHeaderGoesBackToItsPlace) {
  CJpegHeader header;
  ByteVector segment = sof(0xC0, 3507, 2480, 3);
  const ByteVector before = segment;
  const JPEG_SOF decoded = header.GetSOFSegment(segment.data());
  EXPECT_EQ(decoded.precision, 8);
  EXPECT_EQ(decoded.height, 3507);
  EXPECT_EQ(decoded.width, 2480);
  EXPECT_EQ(decoded.components, 3);
  EXPECT_TRUE(header.SetSOFSegment(decoded, segment.data()));
  EXPECT_EQ(segment, before);
}

TEST(JpegHeader, SmallHelpers) {
  CJpegHeader header;
  ByteVector bytes = {1, 2, 3, 4, 5};
  header.InvertEndian(bytes.data(), 5);
  EXPECT_EQ(bytes, (ByteVector{5, 4, 3, 2, 1}));
  header.InvertEndian(bytes.data(), 2);
  header.InvertEndian(bytes.data(), 1);
  header.InvertEndian(bytes.data(), -3);
  EXPECT_EQ(bytes, (ByteVector{4, 5, 3, 2, 1}));
  ByteVector segment = sof(0xC0, 1, 1, 1);
  EXPECT_EQ(header.GetSegmentDataLength(segment.data(), 4), 17);
  EXPECT_EQ(header.GetSegmentDataLength(segment.data(), 3), 0);
  EXPECT_EQ(header.GetSegmentDataLength(nullptr, 4), 0);
}

TEST(JpegHeader, AZeroLengthStepsOverTwoBytesAndANegativeOneEndsTheWalk) {
  ByteVector zero = join({kSoi, {0xFF, 0xE1}, {0, 0}, sof(0xC0, 100, 200, 3), kTail});
  // The step of 2 lands on the length field, read as a marker with the length 0xFFC0: backward.
  EXPECT_EQ(fieldsOf(zero).height, 0);
  ByteVector aligned = join({kSoi, {0xFF, 0xE1, 0, 2}, sof(0xC0, 100, 200, 3), kTail});
  EXPECT_EQ(fieldsOf(aligned).height, 100);
  ByteVector backward = join({kSoi, {0xFF, 0xE1, 0xFF, 0xFE}, sof(0xC0, 100, 200, 3), kTail});
  EXPECT_EQ(fieldsOf(backward).height, 0);
}

TEST(JpegHeader, TheWalkEndsWhereItCannotGoOn) {
  struct Row {
    const char* name;
    ByteVector between;
    bool found;
  };
  // Each lies between the first marker and a frame header.
  const Row kRows[] = {
      {"nothing", {}, true},
      {"a comment", {0xFF, 0xFE, 0, 4, 'o', 'k'}, true},
      {"a length of 0, then bytes that are taken for a segment", {0xFF, 0xE1, 0, 0, 0, 3, 7}, true},
      {"a length of 1 misses the frame header", {0xFF, 0xE1, 0, 1}, false},
      {"a length that ends one byte short of the frame header", {0xFF, 0xE1, 0, 3, 7, 7}, false},
      {"a length that leads behind the end", {0xFF, 0xE1, 0x7F, 0xFF}, false},
      {"a step of nothing", {0xFF, 0xE1, 0xFF, 0xFE}, false},
      {"a step backward", {0xFF, 0xE1, 0xFF, 0xFC}, false},
      {"the longest step backward", {0xFF, 0xE1, 0x80, 0x00}, false},
      {"a frame header of no length", {0xFF, 0xC0, 0, 0}, false},
      {"a frame header that is too long", {0xFF, 0xC0, 0x10, 0x00}, false},
  };
  for (const Row& row : kRows) {
    ByteVector bytes = join({kSoi, row.between, sof(0xC0, 100, 200, 3), kTail});
    unsigned char* const expected = row.found ? bytes.data() + 2 + row.between.size() : nullptr;
    EXPECT_EQ(CJpegHeader().GetSegment(CJpegHeader::kSof0, bytes.data(), sizeOf(bytes)), expected) << row.name;
  }
  EXPECT_EQ(CJpegHeader().GetSegment(CJpegHeader::kSof0, nullptr, 100), nullptr);
}

TEST(JpegHeader, TheFirstSegmentOfAKindCounts) {
  ByteVector bytes =
      join({kSoi, app0(1, 300, 200), app0(1, 75, 75), sof(0xC0, 100, 200, 3), sof(0xC0, 7, 8, 1), kTail});
  EXPECT_EQ(fieldsOf(bytes).resX, 300);
  EXPECT_EQ(fieldsOf(bytes).height, 100);
}

TEST(JpegHeader, FieldsThatLieBehindTheEndAreNotRead) {
  // A frame header of 4 bytes, with nothing behind it.
  ByteVector frame = join({kSoi, {0xFF, 0xC0, 0, 3, 8, 1}});
  EXPECT_NE(CJpegHeader().GetSegment(CJpegHeader::kSof0, frame.data(), sizeOf(frame)), nullptr);
  const ByteVector before = frame;
  EXPECT_EQ(fieldsOf(frame).height + fieldsOf(frame).width + fieldsOf(frame).bpp, 0);
  EXPECT_FALSE(CJpegHeader().SetHeightPix(frame.data(), sizeOf(frame), 7));
  EXPECT_FALSE(CJpegHeader().SetWidthPix(frame.data(), sizeOf(frame), 7));
  EXPECT_EQ(frame, before);
  ByteVector jfif = join({kSoi, {0xFF, 0xE0, 0, 12, 'J', 'F', 'I', 'F', 0, 1, 2, 1, 1, 44}});
  EXPECT_NE(CJpegHeader().GetSegment(CJpegHeader::kApp0, jfif.data(), sizeOf(jfif)), nullptr);
  EXPECT_EQ(fieldsOf(jfif).resX + fieldsOf(jfif).resY, 0);
}

TEST(JpegHeader, ASegmentIsEnoughWhenItsLengthIsBelowTheBytesLeft) {
  CJpegHeader header;
  struct Row {
    const char* name;
    ByteVector segment;
    bool enough;
  };
  const Row kRows[] = {{"less", {0xFF, 0xE0, 0, 5, 1, 2}, true},   {"as many", {0xFF, 0xE0, 0, 6, 1, 2}, false},
                       {"one", {0xFF, 0xE0, 0, 1}, true},          {"none", {0xFF, 0xE0, 0, 0}, false},
                       {"negative", {0xFF, 0xE0, 0xFF, 1}, false}, {"half a length field", {0xFF, 0xE0, 0}, false}};
  for (const Row& row : kRows) {
    ByteVector bytes = join({kSoi, row.segment});
    EXPECT_EQ(header.IsThereEnoughSegmentData(bytes.data(), bytes.data() + 2, sizeOf(bytes)), row.enough) << row.name;
  }
  ByteVector bytes = jpeg();
  EXPECT_FALSE(header.IsThereEnoughSegmentData(bytes.data(), bytes.data() + bytes.size(), sizeOf(bytes)));
  EXPECT_FALSE(header.IsThereEnoughSegmentData(bytes.data() + 2, bytes.data(), sizeOf(bytes) - 2));
  EXPECT_FALSE(header.IsThereEnoughSegmentData(nullptr, nullptr, 100));
}

TEST(JpegHeader, ComponentsAndPrecisionAreSignedBytes) {
  ByteVector bytes = join({kSoi, sof(0xC0, 100, 200, 0xFF), kTail});
  EXPECT_EQ(fieldsOf(bytes).bpp, -8);
  bytes[2 + 4] = 0x80;
  EXPECT_EQ(fieldsOf(bytes).bpp, 128);
}

TEST(JpegHeader, AHeightThatWasSetIsReadBack) {
  ByteVector bytes = jpeg();
  const ByteVector before = bytes;
  for (int height = 0; height <= 0xFFFF; height += 257) {
    ASSERT_TRUE(CJpegHeader().SetHeightPix(bytes.data(), sizeOf(bytes), height));
    ASSERT_EQ(CJpegHeader().GetHeightPix(bytes.data(), sizeOf(bytes)), height);
  }
  ASSERT_TRUE(CJpegHeader().SetHeightPix(bytes.data(), sizeOf(bytes), 3507));
  EXPECT_EQ(bytes, before);
}

TEST(JpegHeader, EveryPrefixOfAStreamIsReadWithoutLeavingIt) {
  const ByteVector whole = jpeg();
  for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
    ByteVector part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cut));
    part.shrink_to_fit();
    const Fields fields = fieldsOf(part);
    EXPECT_EQ(fields.height, cut > 2 + 18 + 17 ? 3507 : 0) << cut;
    EXPECT_EQ(CJpegHeader().SetHeightPix(part.data(), sizeOf(part), 7), cut > 2 + 18 + 17) << cut;
  }
}

TEST(JpegHeader, RandomBytesEndTheWalk) {
  std::mt19937 random(13);
  for (int round = 0; round < 20000; ++round) {
    ByteVector bytes(random() % 60);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() % 4 == 0 ? 0xFF : random() % 20);
    if (bytes.size() > 8 && random() % 2 == 0) {
      const std::size_t at = 2 + random() % (bytes.size() - 4);
      bytes[at] = 0xFF;
      bytes[at + 1] = random() % 2 == 0 ? 0xC0 : 0xE0;
    }
    fieldsOf(bytes);
    CJpegHeader().SetHeightPix(bytes.data(), sizeOf(bytes), static_cast<int>(random()));
  }
}
