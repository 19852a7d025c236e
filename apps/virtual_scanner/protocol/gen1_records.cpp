#include "protocol/gen1_records.h"

#include <algorithm>

#include "image/packbits.h"
#include "protocol/answer.h"
#include "support/failure.h"

namespace vscan::gen1 {
namespace {

// Bits of a line's header byte.
enum HeaderBits : std::uint8_t {
  kLine = 0x40,
  kJpeg = 0x20,
  kPacked = 0x02,
  kMono = 0x00,
  kRed = 0x04,
  kGreen = 0x08,
  kBlue = 0x0C,
  kRgb = 0x10,
  kBgr = 0x14,
  kGrey = 0x1C,
};

enum Status : std::uint8_t {
  kAllPagesEnd = 0x80,
  kPageEnd = 0x82,
  kStoppedByHost = 0x83,
  kStoppedByKey = 0x86,
};

enum Marker : std::uint8_t { kMorePending = 0x00, kLastOfPage = 0x85 };

constexpr std::size_t kPageAndMarkerBytes = 3;
constexpr std::size_t kHeightBytes = 4;
constexpr std::size_t kLineHeadBytes = 1 + 2 + kPageAndMarkerBytes;

void addInformation(Bytes& out, std::uint16_t page, Marker marker) {
  appendU16(out, kPageAndMarkerBytes);
  appendU16(out, page);
  appendU8(out, marker);
}

void addInformation(Bytes& out, std::uint16_t page, Marker marker, int heightPx) {
  appendU16(out, kPageAndMarkerBytes + kHeightBytes);
  appendU16(out, page);
  appendU8(out, marker);
  appendU32(out, static_cast<std::uint32_t>(heightPx));
}

class LineRecords final : public PageRecords {
 public:
  LineRecords(std::uint16_t number, const Page& page)
      : number_(number),
        page_(page),
        isPlanes_(page.color == PageColor::Color && page.colorLines == ColorLines::Planes) {
    // PackBits needs at worst a byte more for each 128.
    if (page.lineBytes + page.lineBytes / 128 + 1 > kMaxDataBytes) {
      throw Failure("a line of " + std::to_string(page.lineBytes) + " bytes does not fit its record");
    }
  }

  bool next(Bytes& out) override {
    if (dataDone_ == page_.data.size()) return false;
    const std::span<const std::uint8_t> line(page_.data.data() + dataDone_, page_.lineBytes);
    if (isPlanes_) {
      constexpr std::uint8_t kPlanes[] = {kRed, kGreen, kBlue};
      appendRecord(out, kPlanes[plane_], everyThird(line, plane_));
      plane_ = (plane_ + 1) % 3;
      if (plane_ != 0) return true;
    } else if (page_.color == PageColor::Color && page_.colorLines == ColorLines::Bgr) {
      appendRecord(out, kBgr, swapped(line));
    } else {
      const std::uint8_t kind = page_.color == PageColor::Mono ? kMono : page_.color == PageColor::Grey ? kGrey : kRgb;
      appendRecord(out, kind, line);
    }
    dataDone_ += page_.lineBytes;
    ++linesDone_;
    return true;
  }

  int linesDone() const override { return linesDone_; }

 private:
  static Bytes everyThird(std::span<const std::uint8_t> line, std::size_t first) {
    Bytes plane;
    for (std::size_t i = first; i < line.size(); i += 3) plane.push_back(line[i]);
    return plane;
  }

  static Bytes swapped(std::span<const std::uint8_t> line) {
    Bytes bgr(line.begin(), line.end());
    for (std::size_t i = 0; i + 2 < bgr.size(); i += 3) std::swap(bgr[i], bgr[i + 2]);
    return bgr;
  }

  void appendRecord(Bytes& out, std::uint8_t kind, std::span<const std::uint8_t> line) const {
    const bool isPacked = page_.compression == Compression::RunLength;
    const std::size_t start = out.size();
    appendU8(out, static_cast<std::uint8_t>(kLine | kind | (isPacked ? kPacked : 0)));
    addInformation(out, number_, kMorePending);
    appendU16(out, 0);
    const std::size_t dataPlace = out.size();
    if (isPacked) {
      packBits(line, out);
    } else {
      out.insert(out.end(), line.begin(), line.end());
    }
    putLe(out, start + kLineHeadBytes, 2, out.size() - dataPlace);
  }

  const std::uint16_t number_;
  const Page& page_;
  const bool isPlanes_;
  std::size_t dataDone_ = 0;
  std::size_t plane_ = 0;
  int linesDone_ = 0;
};

class JpegRecords final : public PageRecords {
 public:
  JpegRecords(std::uint16_t number, const Page& page) : number_(number), page_(page) {}

  bool next(Bytes& out) override {
    if (dataDone_ == page_.data.size()) return false;
    const std::size_t bytes = std::min(kJpegBlockBytes, page_.data.size() - dataDone_);
    const auto from = page_.data.begin() + static_cast<std::ptrdiff_t>(dataDone_);
    dataDone_ += bytes;
    appendU8(out, kLine | kJpeg);
    addInformation(out, number_, kMorePending);
    appendU16(out, static_cast<std::uint16_t>(bytes));
    out.insert(out.end(), from, from + static_cast<std::ptrdiff_t>(bytes));
    return true;
  }

  // How many lines lie in part of a JPEG is only known to who decodes it; their share of the bytes stands in.
  int linesDone() const override {
    return static_cast<int>(static_cast<std::uint64_t>(page_.heightPx) * dataDone_ / page_.data.size());
  }

 private:
  const std::uint16_t number_;
  const Page& page_;
  std::size_t dataDone_ = 0;
};

class FirstStream final : public Stream {
 public:
  std::unique_ptr<PageRecords> cut(std::uint16_t number, const Page& page, bool) const override {
    // A record for a white line exists, but hosts take it for a device error; white lines go as all others.
    if (page.compression == Compression::Jpeg) return std::make_unique<JpegRecords>(number, page);
    return std::make_unique<LineRecords>(number, page);
  }

  SizeField sizeField(const Bytes& record) const override {
    const bool isLine = !record.empty() && (record[0] & 0xC0) == kLine;
    return isLine ? SizeField{kLineHeadBytes, 2} : SizeField{};
  }

  Bytes findings(std::uint16_t, const Page&) const override { return {}; }
  Bytes failedCheck(FailedCheck, std::uint16_t, const Page&) const override { return {}; }
  Bytes timerRestart(std::uint16_t) const override { return {}; }
  Bytes timerExtend(std::uint16_t) const override { return {}; }

  Bytes pageEnd(std::uint16_t number, const Page& page) const override {
    Bytes record{kPageEnd};
    addInformation(record, number, kLastOfPage, page.heightPx);
    return record;
  }

  Bytes allPagesEnd() const override { return {kAllPagesEnd}; }
  Bytes stoppedByHost() const override { return {kStoppedByHost}; }
  Bytes stoppedByKey() const override { return {kStoppedByKey}; }
  Bytes deviceError(std::uint8_t code) const override { return {code}; }
};

}  // namespace

const Stream& stream() {
  static const FirstStream one;
  return one;
}

}  // namespace vscan::gen1
