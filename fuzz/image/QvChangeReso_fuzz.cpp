// Settings and lines of any kind through the resampler: every kernel set agrees with the plain form, and stays within
// lines and buffer.
// Input: ratios, format, geometry and buffer, 20 bytes in all; then records of a line's kind, length, first byte and
// step from byte to byte.
#include <cstdio>
#include <utility>

#include "tests/image/reso_compare.h"

using reso_compare::Job;
using reso_compare::Line;

namespace {

constexpr std::size_t kHeadBytes = 20;
constexpr unsigned long kMostBufferBytes = 1UL << 17;

// Two bytes: most are resolutions that scanners have, the others count as they are.
std::int32_t resolution(const std::uint8_t* at) {
  constexpr std::int32_t kUsual[] = {75, 100, 150, 199, 200, 300, 400, 600, 1200, 2400};
  return at[0] < 200 ? kUsual[at[0] % 10] : at[1] * 256 + (at[0] - 200);
}

Job jobFrom(const std::uint8_t* head) {
  constexpr std::uint32_t kFormats[] = {0x101, 0x102, 0x208, 0x210, 0x420, 0x300};
  Job job;
  job.open.inResoX = resolution(head);
  job.open.outResoX = resolution(head + 2);
  job.open.inResoY = resolution(head + 4);
  job.open.outResoY = resolution(head + 6);
  job.open.formatFlags = kFormats[head[8] % 6];
  job.open.inLinePixels = head[9] < 240 ? head[9] % 48U : 100U + head[10];
  job.open.colorOrder = head[11] % 5;
  job.open.alignOutLine = (head[12] & 1) != 0;
  job.bottomUp = (head[12] & 2) != 0;
  job.nullFlush = (head[12] & 4) != 0;
  job.pages = (head[12] & 8) != 0 ? 2 : 1;
  job.open.fixedOutLineBytes = head[13] < 128 ? 0 : head[14];
  job.open.leftPadPixels = head[15] < 128 ? 0 : head[15] - 128U;
  job.spareBytes = head[16] < 128 ? 64 : head[17] - 256L * (head[16] - 128L);
  job.guardBytes = head[18] % 2;  // mostly exact blocks for the sanitizer
  job.fillSeed = head[19];
  return job;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kHeadBytes || size > 20000) return 0;
  Job job = jobFrom(data);
  CHRESO_OPEN probe = job.open;
  if (CQvChangeReso().ChangeResoInit(&probe) && probe.writeBufferSize > kMostBufferBytes) return 0;
  for (std::size_t at = kHeadBytes; at + 4 <= size && job.lines.size() < 60; at += 4) {
    Line line;
    line.kind = data[at] % 8;
    line.null = data[at] >= 240;
    line.bytes.resize(data[at + 1]);
    std::uint8_t value = data[at + 2];
    for (auto& byte : line.bytes) byte = std::exchange(value, static_cast<std::uint8_t>(value + data[at + 3]));
    job.lines.push_back(std::move(line));
  }
  const auto outcome = reso_compare::compare(job);
  if (!outcome.difference.empty()) {
    std::fprintf(stderr, "%s\n", outcome.difference.c_str());
    __builtin_trap();
  }
  return 0;
}
