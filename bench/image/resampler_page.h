// What the benchmarks of the resampler share: the conversions, a strip of an A4 sheet in any depth and resolution, and
// a run over it.
#pragma once

#include <time.h>

#include <cstdint>
#include <vector>

#include "bench/modules/sheet.h"
#include "image/QvChangeReso.h"

namespace bench_reso {

using bench_sheet::Bytes;

struct Conversion {
  const char* name;
  std::uint32_t format;
  std::int32_t inX, outX, inY, outY;
};

constexpr std::uint32_t kColor = 0x420, kGrey = 0x208, kBits = 0x101;
constexpr std::size_t kLines = 400;

inline std::size_t widthOf(const Conversion& job) {
  return static_cast<std::size_t>(bench_sheet::kWidthPx) * static_cast<std::size_t>(job.inX) / 300;
}

// kLines lines from where the letters end and the picture begins.
inline std::vector<Bytes> strip(const Conversion& job) {
  static const Bytes sheet = bench_sheet::drawRgb();
  const std::size_t width = widthOf(job);
  std::vector<Bytes> lines;
  for (std::size_t y = 0; y < kLines; ++y) {
    const std::uint8_t* const row = sheet.data() + (2300 - kLines / 2 + y) * bench_sheet::kWidthPx * 3;
    Bytes line(job.format == kColor ? 3 * width : job.format == kGrey ? width : (width + 7) / 8);
    for (std::size_t x = 0; x < width; ++x) {
      const std::uint8_t* const pixel = row + 3 * (x * bench_sheet::kWidthPx / width);
      if (job.format == kColor) {
        for (std::size_t c = 0; c < 3; ++c) line[3 * x + c] = pixel[c];
      } else if (job.format == kGrey) {
        line[x] = pixel[0];
      } else if (pixel[0] >= 128) {
        line[x / 8] = static_cast<std::uint8_t>(line[x / 8] | 0x80U >> (x % 8));
      }
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

inline CHRESO_OPEN openRecord(const Conversion& job) {
  CHRESO_OPEN open{};
  open.inResoX = job.inX;
  open.outResoX = job.outX;
  open.inResoY = job.inY;
  open.outResoY = job.outY;
  open.formatFlags = job.format;
  open.inLinePixels = widthOf(job);
  open.colorOrder = 3;
  return open;
}

// The page that comes out, all its lines in one run. out keeps its memory from call to call.
struct Output {
  Bytes bytes;
  std::size_t lines = 0, strideBytes = 0, pixels = 0;
};
template <class Resampler>
bool convert(Resampler& resampler, const Conversion& job, const std::vector<Bytes>& lines, Output& out) {
  CHRESO_OPEN open = openRecord(job);
  if (!resampler.ChangeResoInit(&open) || resampler.ChangeResoWriteStart() != 1) return false;
  const std::size_t outLines = kLines * static_cast<std::size_t>(job.outY) / static_cast<std::size_t>(job.inY) + 1;
  out.bytes.resize(outLines * open.outStrideBytes + open.writeBufferSize);
  CHRESO_WRITE write{};
  write.lineKind = 6;
  std::size_t at = 0;
  out.lines = 0;
  out.strideBytes = open.outStrideBytes;
  for (std::size_t y = 0; y <= lines.size(); ++y) {
    const bool flush = y == lines.size();
    if (!flush) {
      write.lineData = lines[y].data();
      write.lineBytes = lines[y].size();
    }
    write.writeBuffer = out.bytes.data() + at;
    write.writeBufferBytes = out.bytes.size() - at;
    int count = 0;
    flush ? resampler.ChangeResoWriteEnd(&write, &count) : resampler.ChangeResoWrite(&write, &count);
    at += static_cast<std::size_t>(count) * open.outStrideBytes;
    out.lines += static_cast<std::size_t>(count);
  }
  out.pixels = out.lines * open.outPixels;
  return true;
}

// Processor time of this thread: other programs may share the processor.
double secondsOf(auto run) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  };
  const double start = now();
  run();
  return now() - start;
}

}  // namespace bench_reso
