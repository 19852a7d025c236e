// Feeds an image to the resampler line by line and keeps what comes out.
#pragma once

#include <cstdint>
#include <vector>

#include "image/QvChangeReso.h"

namespace reso_feed {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kBits = 0x101, kGrey = 0x208, kGreySimple = 0x210, kColor = 0x420;

struct Ratio {
  std::int32_t in, out;
};

inline CHRESO_OPEN openRecord(std::uint32_t format, Ratio x, Ratio y, unsigned long width, std::int32_t order = 1) {
  CHRESO_OPEN open{};
  open.inResoX = x.in;
  open.outResoX = x.out;
  open.inResoY = y.in;
  open.outResoY = y.out;
  open.formatFlags = format;
  open.inLinePixels = width;
  open.colorOrder = order;
  return open;
}

// What one call gave: its answer, its lines, and the whole buffer.
struct Call {
  int bytes = 0;
  int lines = 0;
  Bytes buffer;
};

class Feed {
 public:
  // Every call gets a fresh buffer of this value. A resampler that refuses has ready() false.
  explicit Feed(const CHRESO_OPEN& open, std::uint8_t fill = 0xA5) : record_(open), fill_(fill) {
    ready_ = resampler_.ChangeResoInit(&record_) && resampler_.ChangeResoWriteStart() == 1;
  }

  bool ready() const { return ready_; }
  const CHRESO_OPEN& record() const { return record_; }
  CQvChangeReso& resampler() { return resampler_; }

  Call line(const Bytes& bytes, int kind = 5) {
    last_ = bytes;
    return call(kind, &last_, false);
  }
  Call nullLine(int kind = 5) { return call(kind, nullptr, false); }
  // The flush with the last line left in the record, and with none.
  Call flush(int kind = 5) { return call(kind, &last_, true); }
  Call flushNull(int kind = 5) { return call(kind, nullptr, true); }

  // All lines and the flush; only the output lines.
  std::vector<Bytes> image(const std::vector<Bytes>& lines, int kind = 5) {
    std::vector<Bytes> out;
    for (const Bytes& bytes : lines) append(out, line(bytes, kind));
    append(out, flush(kind));
    return out;
  }

  void append(std::vector<Bytes>& out, const Call& call) const {
    for (int i = 0; i < call.lines; ++i) {
      const auto begin = call.buffer.begin() + static_cast<std::ptrdiff_t>(record_.outStrideBytes) * i;
      out.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(record_.outStrideBytes));
    }
  }

 private:
  Call call(int kind, const Bytes* bytes, bool flush) {
    Call result;
    result.buffer.assign(record_.writeBufferSize + 64, fill_);
    CHRESO_WRITE write{};
    write.lineKind = kind;
    write.lineData = bytes ? bytes->data() : nullptr;
    write.lineBytes = bytes ? bytes->size() : 0;
    write.writeBuffer = result.buffer.data();
    write.writeBufferBytes = result.buffer.size();
    result.bytes = flush ? resampler_.ChangeResoWriteEnd(&write, &result.lines)
                         : resampler_.ChangeResoWrite(&write, &result.lines);
    return result;
  }

  CQvChangeReso resampler_;
  CHRESO_OPEN record_;
  std::uint8_t fill_;
  bool ready_ = false;
  Bytes last_;
};

}  // namespace reso_feed
