#include "protocol/gen2_records.h"

#include <algorithm>

#include "image/packbits.h"
#include "protocol/answer.h"

namespace vscan::gen2 {
namespace {

enum Status : std::uint8_t {
  kWhiteLine = 0x00,
  kLine = 0x01,
  kBlock = 0x02,
  kPageSize = 0x11,
  kPageColor = 0x12,
  kAllPagesEnd = 0x20,
  kPageEnd = 0x21,
  kBlankPageEnd = 0x22,
  kTooLongPageEnd = 0x23,
  kStoppedByHost = 0x40,
  kStoppedByKey = 0x41,
  kTimerRestart = 0x50,
  kTimerExtend = 0x51,
  kSizeFailed = 0x71,  // 0x72 colour, 0x73 blank page, 0x74 deskew
};

constexpr std::uint8_t kResultGood = 0x00;
constexpr std::size_t kSizeAt = 6;  // in a record with data: behind result, status, page and format

Bytes ofPage(Status status, std::uint16_t page) {
  Bytes record{kResultGood, status};
  appendU16(record, page);
  return record;
}

void appendSize(Bytes& record, const Page& page) {
  appendU32(record, static_cast<std::uint32_t>(page.widthPx));
  appendU32(record, static_cast<std::uint32_t>(page.heightPx));
}

Bytes timer(Status status, std::uint16_t seconds) {
  Bytes record{kResultGood, status};
  appendU16(record, seconds);
  return record;
}

class Records final : public PageRecords {
 public:
  Records(std::uint16_t number, const Page& page, bool whiteLines)
      : number_(number), page_(page), whiteLines_(whiteLines) {}

  bool next(Bytes& out) override {
    if (dataDone_ == page_.data.size()) return false;
    if (page_.compression == Compression::Jpeg) {
      nextBlock(out);
    } else {
      nextLine(out);
    }
    return true;
  }

  int linesDone() const override { return linesDone_; }

 private:
  void dataHeader(std::uint8_t status, Bytes& out) const {
    appendU8(out, kResultGood);
    appendU8(out, status);
    appendU16(out, number_);
    appendU8(out, formatByte(page_.color, page_.compression));
    appendU8(out, 0);
  }

  void nextBlock(Bytes& out) {
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

  void nextLine(Bytes& out) {
    const std::span<const std::uint8_t> line(page_.data.data() + dataDone_, page_.lineBytes);
    dataDone_ += line.size();
    ++linesDone_;
    if (whiteLines_ && std::all_of(line.begin(), line.end(), [](std::uint8_t byte) { return byte == 0xFF; })) {
      const Bytes record = ofPage(kWhiteLine, number_);
      out.insert(out.end(), record.begin(), record.end());
      return;
    }
    const std::size_t start = out.size();
    dataHeader(kLine, out);
    appendU32(out, 0);
    appendU32(out, static_cast<std::uint32_t>(linesDone_));
    const std::size_t dataPlace = out.size();
    if (page_.compression == Compression::RunLength) {
      packBits(line, out);
    } else {
      out.insert(out.end(), line.begin(), line.end());
    }
    putLe(out, start + kSizeAt, 4, out.size() - dataPlace);
  }

  const std::uint16_t number_;
  const Page& page_;
  const bool whiteLines_;
  std::size_t dataDone_ = 0;
  int linesDone_ = 0;
};

class SecondStream final : public Stream {
 public:
  std::unique_ptr<PageRecords> cut(std::uint16_t number, const Page& page, bool whiteLines) const override {
    return std::make_unique<Records>(number, page, whiteLines);
  }

  SizeField sizeField(const Bytes& record) const override {
    const bool hasData =
        record.size() > kSizeAt && record[0] == kResultGood && (record[1] == kLine || record[1] == kBlock);
    return hasData ? SizeField{kSizeAt, 4} : SizeField{};
  }

  // The size and the colour close the page rather than open it: a host that reads it first would take the page's form
  // from it, which it does not tell, and a height that stands before the lines would count against them. A page that is
  // found blank sends it as the record that names the page, without which its end would count for nothing.
  Bytes findings(std::uint16_t number, const Page& page) const override {
    Bytes records;
    if (page.tellsColor) {
      records = ofPage(kPageColor, number);
      appendU8(records, formatByte(page.foundColor, page.compression));
      appendU8(records, 0);
    }
    if (page.tellsSize || page.isBlank) {
      const Bytes size = ofPage(kPageSize, number);
      records.insert(records.end(), size.begin(), size.end());
      appendSize(records, page);
    }
    return records;
  }

  Bytes failedCheck(FailedCheck check, std::uint16_t number, const Page& page) const override {
    Bytes record = ofPage(static_cast<Status>(kSizeFailed + static_cast<int>(check)), number);
    if (check == FailedCheck::Size) appendSize(record, page);
    return record;
  }

  Bytes timerRestart(std::uint16_t seconds) const override { return timer(kTimerRestart, seconds); }
  Bytes timerExtend(std::uint16_t seconds) const override { return timer(kTimerExtend, seconds); }

  Bytes pageEnd(std::uint16_t number, const Page& page) const override {
    return ofPage(page.isBlank ? kBlankPageEnd : page.isTooLong ? kTooLongPageEnd : kPageEnd, number);
  }

  Bytes allPagesEnd() const override { return {kResultGood, kAllPagesEnd}; }
  Bytes stoppedByHost() const override { return {kResultGood, kStoppedByHost}; }
  Bytes stoppedByKey() const override { return {kResultGood, kStoppedByKey}; }
  // Two bytes: a result other than 0, and a byte that means nothing.
  Bytes deviceError(std::uint8_t code) const override { return {code, 0x00}; }
};

}  // namespace

std::uint8_t formatByte(PageColor color, Compression compression) {
  constexpr std::uint8_t kMono = 1, kGrey = 4, kColor = 5, kPackBits = 0x08, kJpeg = 0x10;
  const std::uint8_t colorBits = color == PageColor::Mono ? kMono : color == PageColor::Grey ? kGrey : kColor;
  const std::uint8_t compressBits = compression == Compression::Jpeg        ? kJpeg
                                    : compression == Compression::RunLength ? kPackBits
                                                                            : std::uint8_t{0};
  return static_cast<std::uint8_t>(colorBits | compressBits);
}

const Stream& stream() {
  static const SecondStream one;
  return one;
}

}  // namespace vscan::gen2
