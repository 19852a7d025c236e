// The image stream that follows a start command: records, in the form of one generation.
// Threads: a Stream is reentrant, PageRecords belong to one thread.
#pragma once
#include <cstdint>
#include <memory>

#include "protocol/generation.h"
#include "protocol/page.h"

namespace vscan {

// The lines or JPEG blocks of a page, one record after the other.
class PageRecords {
 public:
  virtual ~PageRecords() = default;

  // Appends the next record to out. False, with nothing appended, after the last.
  virtual bool next(Bytes& out) = 0;

  virtual int linesDone() const = 0;  // with the record given last
};

// Where the size of a record's data stands in the record; no bytes: nowhere.
struct SizeField {
  std::size_t at = 0;
  std::size_t bytes = 0;
};

// What a device can fail to find out about a page.
enum class FailedCheck { Size, Color, Blank, Deskew };

class Stream {
 public:
  virtual ~Stream() = default;

  // The page has to outlive what is returned. whiteLines: a white line goes as a record without data, where the
  // generation has such a record. Throws Failure for a page that its records cannot carry.
  virtual std::unique_ptr<PageRecords> cut(std::uint16_t number, const Page& page, bool whiteLines) const = 0;

  virtual SizeField sizeField(const Bytes& record) const = 0;

  // What the device has found out about the page, between its data and its end; may be nothing.
  virtual Bytes findings(std::uint16_t number, const Page& page) const = 0;

  // Records of the second generation only; nothing in the first.
  virtual Bytes failedCheck(FailedCheck check, std::uint16_t number, const Page& page) const = 0;
  virtual Bytes timerRestart(std::uint16_t seconds) const = 0;
  virtual Bytes timerExtend(std::uint16_t seconds) const = 0;

  virtual Bytes pageEnd(std::uint16_t number, const Page& page) const = 0;
  virtual Bytes allPagesEnd() const = 0;
  virtual Bytes stoppedByHost() const = 0;
  virtual Bytes stoppedByKey() const = 0;
  virtual Bytes deviceError(std::uint8_t code) const = 0;
};

const Stream& streamOf(Generation generation);

}  // namespace vscan
