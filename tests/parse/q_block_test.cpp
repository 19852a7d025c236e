#include <gtest/gtest.h>

#include <cstring>

#include "tests/parse/q_body.h"

using namespace orvalle_scan_api;

namespace {

QBytes bytesOf(const QCMDRESPONSE& response) {
  QBytes bytes(sizeof response);
  std::memcpy(bytes.data(), &response, sizeof response);
  return bytes;
}

QBytes read(const QBytes& body) {
  const auto copy = exactCopy(body);
  return bytesOf(CParseCmdRes_v1().GetQcmdResponse(copy.get(), static_cast<long>(body.size())));
}

// What a reader owes for the first bytes of a body, field by field.
QBytes wantedFor(const QBytes& body) {
  QBytes wanted = QBody().bytes;
  for (const QField& field : kQFields) {
    const auto offset = static_cast<std::size_t>(field.offset);
    if (offset >= body.size()) break;
    for (std::size_t i = offset; i < offset + static_cast<std::size_t>(field.bytes); ++i) {
      wanted[i] = i < body.size() ? body[i] : 0;
    }
  }
  return wanted;
}

// No byte is 0 and no two neighbours are alike.
QBytes longBody(std::size_t size) {
  QBytes body(size);
  for (std::size_t i = 0; i < size; ++i) body[i] = static_cast<unsigned char>(0x81 + i);
  return body;
}

TEST(QBlock, TheDefaultsStandInTheirPlaces) {
  EXPECT_EQ(bytesOf(CParseCmdRes_v1().GetDefaultQcmdResponse()), QBody().bytes);
}

TEST(QBlock, NoBodyIsTheDefaults) {
  unsigned char byte = 99;
  CParseCmdRes_v1 parser;
  EXPECT_EQ(bytesOf(parser.GetQcmdResponse(nullptr, 73)), QBody().bytes);
  EXPECT_EQ(bytesOf(parser.GetQcmdResponse(&byte, 0)), QBody().bytes);
  EXPECT_EQ(bytesOf(parser.GetQcmdResponse(&byte, -1)), QBody().bytes);
}

TEST(QBlock, FieldsBehindTheEndKeepTheirDefaultsAtEveryLength) {
  const QBytes whole = longBody(74);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const QBytes body(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(read(body), size == 0 ? QBody().bytes : wantedFor(body)) << size;
  }
}

TEST(QBlock, AFieldThatTheBodyCutsReadsZeroForItsMissingBytes) {
  QBytes body = QBody().bytes;
  body.resize(30);  // ends inside flatbedMaxY, whose first byte is 168
  const auto copy = exactCopy(body);
  const QCMDRESPONSE response = CParseCmdRes_v1().GetQcmdResponse(copy.get(), 30);
  EXPECT_EQ(response.flatbedMaxX, 2100);
  EXPECT_EQ(response.flatbedMaxY, 168);
  EXPECT_EQ(response.adfMaxX, 2100);
}

TEST(QBlock, BytesBehindTheLastFieldAreIgnored) {
  const QBytes whole = longBody(73);
  for (const std::size_t size : {74u, 100u, 252u, 70000u}) {
    QBytes body = whole;
    body.resize(size, 0x55);
    EXPECT_EQ(read(body), whole) << size;
  }
}

TEST(QBlock, WordsAreLittleEndian) {
  const auto copy = exactCopy(QBody().setXY(q::kAdfMax, 0x1234, 0xFEDC).bytes);
  const QCMDRESPONSE response = CParseCmdRes_v1().GetQcmdResponse(copy.get(), 73);
  EXPECT_EQ(response.adfMaxX, 0x1234);
  EXPECT_EQ(response.adfMaxY, 0xFEDC);
}

}  // namespace
