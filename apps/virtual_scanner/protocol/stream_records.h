// The records of the image stream of the second generation, and one page cut into them.
// Threads: one for each object.
#pragma once
#include <cstdint>
#include <optional>

#include "protocol/page.h"
#include "support/little_endian.h"

namespace vscan::gen2 {

// Records without data.
Bytes pageEnd(std::uint16_t page);
Bytes blankPageEnd(std::uint16_t page);
Bytes allPagesEnd();
Bytes stoppedByCancel();
Bytes deviceError(std::uint8_t code);  // two bytes: a result other than 0, and a byte that means nothing
Bytes pageSize(std::uint16_t page, std::uint32_t widthPx, std::uint32_t heightPx);

// The first of the two format bytes: bits 3 and 4 compression, bits 0 to 2 colour.
std::uint8_t formatByte(PageColor color, Compression compression);

// The lines or JPEG blocks of a page, one record after the other.
class PageRecords {
 public:
  // Far below what a host can hold, and small enough that an abort is heard soon.
  static constexpr std::size_t kBlockBytes = 64 * 1024;

  // The page has to outlive this. whiteLines: a white line goes as a record without data.
  PageRecords(std::uint16_t number, const Page& page, bool whiteLines);

  // Appends the next record to out. False, with nothing appended, after the last.
  bool next(Bytes& out);

  int linesDone() const { return linesDone_; }  // with the record given last

 private:
  void nextBlock(Bytes& out);
  void nextLine(Bytes& out);
  void dataHeader(std::uint8_t status, Bytes& out) const;

  const std::uint16_t number_;
  const Page& page_;
  const bool whiteLines_;
  std::size_t dataDone_ = 0;
  int linesDone_ = 0;
};

}  // namespace vscan::gen2
