// The Q block field by field: each at its place, each with its default, at every length of the body. The places and the
// defaults are written here a second time, by the fields' names.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "parse/ParseCmdRes_v1.h"

using namespace orvalle_scan_api;

namespace {

using Bytes = std::vector<unsigned char>;

struct Field {
  const char* name;
  std::size_t at, width;
  unsigned byDefault;
  std::function<unsigned(const QCMDRESPONSE&)> get;
};
#define FIELD(name, at, width, byDefault)                                                            \
  {                                                                                                  \
#name, at, width, byDefault, [](const QCMDRESPONSE& r) { return static_cast<unsigned>(r.name); } \
  }
unsigned kept69(const QCMDRESPONSE& r) { return r.kept69[0] + 256u * r.kept69[1] + 65536u * r.kept69[2]; }

const std::vector<Field> kFields = {
    FIELD(version, 0, 1, 11),
    FIELD(kept1, 1, 1, 0),
    FIELD(colorType, 2, 1, 31),
    FIELD(kept3, 3, 2, 0),
    FIELD(kept5, 5, 2, 0),
    FIELD(kept7, 7, 2, 0),
    FIELD(kept9, 9, 2, 0),
    FIELD(kept11, 11, 1, 4),
    FIELD(kept12, 12, 1, 1),
    FIELD(flatbedPositionX, 13, 1, 1),
    FIELD(flatbedPositionY, 14, 1, 1),
    FIELD(adfPositionX, 15, 1, 2),
    FIELD(adfPositionY, 16, 1, 1),
    FIELD(scanFunc, 17, 1, 8),
    FIELD(longPaper, 18, 1, 0),
    FIELD(multifeed, 19, 1, 0),
    FIELD(carrierSheet, 20, 1, 0),
    FIELD(kept21, 21, 4, 0),
    FIELD(kept25, 25, 1, 1),
    FIELD(removeBackground, 26, 1, 1),
    FIELD(flatbedMaxX, 27, 2, 2100),
    FIELD(flatbedMaxY, 29, 2, 3496),
    FIELD(adfMaxX, 31, 2, 2100),
    FIELD(adfMaxY, 33, 2, 3496),
    FIELD(duplexMaxX, 35, 2, 2100),
    FIELD(duplexMaxY, 37, 2, 3496),
    FIELD(adfMinX, 39, 2, 1440),
    FIELD(adfMinY, 41, 2, 1440),
    FIELD(duplexMinX, 43, 2, 1440),
    FIELD(duplexMinY, 45, 2, 1440),
    FIELD(marginX, 47, 2, 30),
    FIELD(marginY, 49, 2, 30),
    FIELD(landscape, 51, 1, 0),
    FIELD(cardPositionX, 52, 1, 2),
    FIELD(cardPositionY, 53, 1, 1),
    FIELD(flatbedOpticalX, 54, 2, 1200),
    FIELD(flatbedOpticalY, 56, 2, 2400),
    FIELD(adfOpticalX, 58, 2, 1200),
    FIELD(adfOpticalY, 60, 2, 2400),
    FIELD(duplexOpticalX, 62, 2, 1200),
    FIELD(duplexOpticalY, 64, 2, 2400),
    FIELD(kept66, 66, 1, 15),
    FIELD(adfStackCapacity, 67, 2, 50),
    {"kept69", 69, 3, 0, kept69},
    FIELD(kept72, 72, 1, 0),
};

QCMDRESPONSE read(const Bytes& body) {
  const std::unique_ptr<unsigned char[]> copy(new unsigned char[body.size()]);
  std::copy(body.begin(), body.end(), copy.get());
  return CParseCmdRes_v1().GetQcmdResponse(copy.get(), static_cast<long>(body.size()));
}

unsigned littleEndian(const Bytes& body, const Field& field) {
  unsigned value = 0;
  for (std::size_t i = field.width; i-- > 0;) {
    value = value * 256 + (field.at + i < body.size() ? body[field.at + i] : 0u);
  }
  return value;
}

Bytes defaults() {
  Bytes body(73);
  for (const Field& field : kFields) {
    for (std::size_t i = 0; i < field.width; ++i) {
      body[field.at + i] = static_cast<unsigned char>(field.byDefault >> (8 * i));
    }
  }
  return body;
}

TEST(QBlockRows, TheFieldsFollowEachOtherWithoutGaps) {
  std::size_t at = 0;
  for (const Field& field : kFields) {
    EXPECT_EQ(field.at, at) << field.name;
    at += field.width;
  }
  EXPECT_EQ(at, 73u);
  EXPECT_EQ(sizeof(QCMDRESPONSE), 73u);
}

TEST(QBlockRows, EveryFieldHasItsDefault) {
  for (const QCMDRESPONSE& response :
       {CParseCmdRes_v1().GetDefaultQcmdResponse(), CParseCmdRes_v1().GetQcmdResponse(nullptr, 73), read({}),
        read(defaults()), read({11})}) {
    for (const Field& field : kFields) EXPECT_EQ(field.get(response), field.byDefault) << field.name;
  }
}

// Each field is given values that its neighbours do not have.
TEST(QBlockRows, EveryFieldIsReadAtItsPlaceAndAlone) {
  for (const Field& field : kFields) {
    for (const std::size_t filler : {0x00u, 0x01u, 0x7Fu, 0x80u, 0xA5u, 0xFFu}) {
      Bytes body = defaults();
      for (std::size_t i = 0; i < field.width; ++i) body[field.at + i] = static_cast<unsigned char>(filler + i);
      const QCMDRESPONSE response = read(body);
      for (const Field& other : kFields) {
        EXPECT_EQ(other.get(response), &other == &field ? littleEndian(body, field) : other.byDefault)
            << other.name << " while " << field.name << " is " << filler;
      }
    }
  }
}

TEST(QBlockRows, EveryLengthKeepsTheDefaultsBehindIt) {
  for (const int step : {1, 37, 201}) {
    Bytes whole(74);
    for (std::size_t i = 0; i < whole.size(); ++i) {
      whole[i] = static_cast<unsigned char>(0x91 + i * static_cast<std::size_t>(step));
    }
    for (std::size_t size = 0; size <= 74; ++size) {
      const Bytes body(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      const QCMDRESPONSE response = read(body);
      for (const Field& field : kFields) {
        // A field is begun if one of its bytes is there; the others read zero.
        const unsigned wanted = field.at < size ? littleEndian(body, field) : field.byDefault;
        EXPECT_EQ(field.get(response), wanted) << field.name << " of " << size << " bytes";
      }
    }
  }
}

TEST(QBlockRows, ABodyOfThirtyBytesEndsInsideALength) {
  Bytes body = defaults();
  body[29] = 0x34, body[30] = 0x12;
  body.resize(30);
  EXPECT_EQ(read(body).flatbedMaxY, 0x0034);
  EXPECT_EQ(read(body).adfMaxX, 2100);
  body.resize(29);
  EXPECT_EQ(read(body).flatbedMaxY, 3496);
}

// ---- the small converters

TEST(QBlockRows, PositionsAreMapped) {
  const CParseCmdRes_v1 parser;
  for (int code = 0; code < 256; ++code) {
    const int x = code == 2 ? 1 : code == 3 ? 2 : 0;
    const int y = code == 2 ? 1 : code == 3 ? 4 : 3;
    EXPECT_EQ(parser.GetPositionX(static_cast<unsigned char>(code)), x) << code;
    EXPECT_EQ(parser.GetPositionY(static_cast<unsigned char>(code)), y) << code;
  }
}

TEST(QBlockRows, ThePredicatesOfTheScanFunctions) {
  using Is = CAP (CParseCmdRes_v1::*)(QCMDRESPONSE) const;
  const struct {
    const char* name;
    Is is;
    int mask;
  } rows[] = {
      {"edges", &CParseCmdRes_v1::IsEdgeDetectScanSupported, 0x01},
      {"size", &CParseCmdRes_v1::IsDetectDocSizeSupported, 0x02},
      {"corners", &CParseCmdRes_v1::IsDetectCornerSupported, 0x04},
      {"feeder deskew", &CParseCmdRes_v1::IsAdfDeskewSupported, 0x08},
      {"flatbed deskew", &CParseCmdRes_v1::IsFbDeskewSupported, 0x10},
      {"over-scan", &CParseCmdRes_v1::IsOverScanSupported, 0x11},
  };
  for (const auto& row : rows) {
    for (int value = 0; value < 256; ++value) {
      QCMDRESPONSE response{};
      response.scanFunc = static_cast<std::uint8_t>(value);
      EXPECT_EQ((CParseCmdRes_v1().*row.is)(response), (value & row.mask) != 0 ? 2 : 1) << row.name << " " << value;
    }
  }
}

TEST(QBlockRows, MarginsAreThoseOfThePresentSources) {
  const CParseCmdRes_v1 parser;
  for (int present = 0; present < 8; ++present) {
    QCMDRESPONSE response{};
    response.marginX = 31, response.marginY = 65535;
    response.flatbedMaxX = (present & 1) != 0 ? 1 : 0;
    response.adfMaxX = (present & 2) != 0 ? 256 : 0;
    response.duplexMaxX = (present & 4) != 0 ? 65535 : 0;
    const AXIS all[] = {parser.GetMarginSizeMmOfFlatbed(response), parser.GetMarginSizeMmOfAdfSimplex(response),
                        parser.GetMarginSizeMmOfAdfDuplex(response)};
    for (int source = 0; source < 3; ++source) {
      const bool has = (present >> source & 1) != 0;
      EXPECT_EQ(all[source].x, has ? 310u : 0u) << present << source;
      EXPECT_EQ(all[source].y, has ? 655350u : 0u) << present << source;
    }
  }
}

}  // namespace
