#include "protocol/stream_records.h"

#include <algorithm>

#include "image/packbits.h"

namespace vscan::gen2 {
namespace {

enum Status : std::uint8_t {
  kWhiteLine = 0x00,
  kLine = 0x01,
  kBlock = 0x02,
  kPageSize = 0x11,
  kAllPagesEnd = 0x20,
  kPageEnd = 0x21,
  kBlankPageEnd = 0x22,
  kStoppedByCancel = 0x40,
};

constexpr std::uint8_t kResultGood = 0x00;

Bytes ofPage(Status status, std::uint16_t page) {
  Bytes record{kResultGood, status};
  appendU16(record, page);
  return record;
}

// Overwrites the four bytes at that place.
void putU32(Bytes& bytes, std::size_t place, std::size_t value) {
  for (std::size_t i = 0; i < 4; ++i) bytes[place + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

}  // namespace

Bytes pageEnd(std::uint16_t page) { return ofPage(kPageEnd, page); }
Bytes blankPageEnd(std::uint16_t page) { return ofPage(kBlankPageEnd, page); }
Bytes allPagesEnd() { return {kResultGood, kAllPagesEnd}; }
Bytes stoppedByCancel() { return {kResultGood, kStoppedByCancel}; }
Bytes deviceError(std::uint8_t code) { return {code, 0x00}; }

Bytes pageSize(std::uint16_t page, std::uint32_t widthPx, std::uint32_t heightPx) {
  Bytes record = ofPage(kPageSize, page);
  appendU32(record, widthPx);
  appendU32(record, heightPx);
  return record;
}

std::uint8_t formatByte(PageColor color, Compression compression) {
  constexpr std::uint8_t kMono = 1, kGrey = 4, kColor = 5, kPackBits = 0x08, kJpeg = 0x10;
  const std::uint8_t colorBits = color == PageColor::Mono ? kMono : color == PageColor::Grey ? kGrey : kColor;
  const std::uint8_t compressBits = compression == Compression::Jpeg        ? kJpeg
                                    : compression == Compression::RunLength ? kPackBits
                                                                            : std::uint8_t{0};
  return static_cast<std::uint8_t>(colorBits | compressBits);
}

PageRecords::PageRecords(std::uint16_t number, const Page& page, bool whiteLines)
    : number_(number), page_(page), whiteLines_(whiteLines) {}

bool PageRecords::next(Bytes& out) {
  if (dataDone_ == page_.data.size()) return false;
  if (page_.compression == Compression::Jpeg) {
    nextBlock(out);
  } else {
    nextLine(out);
  }
  return true;
}

void PageRecords::dataHeader(std::uint8_t status, Bytes& out) const {
  appendU8(out, kResultGood);
  appendU8(out, status);
  appendU16(out, number_);
  appendU8(out, formatByte(page_.color, page_.compression));
  appendU8(out, 0);
}

void PageRecords::nextBlock(Bytes& out) {
  const std::size_t bytes = std::min(kBlockBytes, page_.data.size() - dataDone_);
  const auto from = page_.data.begin() + static_cast<std::ptrdiff_t>(dataDone_);
  dataDone_ += bytes;
  // How many lines lie in part of a JPEG is only known to who decodes it; their share of the bytes stands in.
  linesDone_ = static_cast<int>(static_cast<std::uint64_t>(page_.heightPx) * dataDone_ / page_.data.size());
  dataHeader(kBlock, out);
  appendU32(out, static_cast<std::uint32_t>(bytes));
  appendU32(out, static_cast<std::uint32_t>(linesDone_));
  out.insert(out.end(), from, from + static_cast<std::ptrdiff_t>(bytes));
}

void PageRecords::nextLine(Bytes& out) {
  const std::span<const std::uint8_t> line(page_.data.data() + dataDone_, page_.lineBytes);
  dataDone_ += line.size();
  ++linesDone_;
  if (whiteLines_ && std::all_of(line.begin(), line.end(), [](std::uint8_t byte) { return byte == 0xFF; })) {
    const Bytes record = ofPage(kWhiteLine, number_);
    out.insert(out.end(), record.begin(), record.end());
    return;
  }
  dataHeader(kLine, out);
  const std::size_t sizePlace = out.size();
  appendU32(out, 0);
  appendU32(out, static_cast<std::uint32_t>(linesDone_));
  const std::size_t dataPlace = out.size();
  if (page_.compression == Compression::RunLength) {
    packBits(line, out);
  } else {
    out.insert(out.end(), line.begin(), line.end());
  }
  putU32(out, sizePlace, out.size() - dataPlace);
}

}  // namespace vscan::gen2
