// The first-generation image stream, record by record, as the read thread walks its buffer. The parser does not touch
// the data of a line, so that the bytes per second grow with the size of the lines.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "command/ParseExeCmdRes_v1.h"

namespace {

using namespace orvalle_scan_api;

constexpr std::size_t kStreamBytes = 100U << 20;
constexpr std::uint8_t kStatusAllPagesEnded = 0x80;

// What a walk over a stream finds.
struct Walk {
  std::size_t records = 0;
  std::size_t lineBytes = 0;
  std::uint64_t pages = 0;  // their numbers added up
  bool ended = false;

  bool operator==(const Walk&) const = default;
};

struct Stream {
  std::vector<std::uint8_t> bytes;
  Walk wanted;
};

// Records of lineBytes bytes each, and the end of all pages behind them.
Stream makeStream(std::size_t lineBytes) {
  constexpr std::uint8_t kHead[] = {0x40, 3, 0, 0, 0, 0, 0, 0};  // header, N, page, marker, size
  Stream stream;
  stream.bytes.reserve(kStreamBytes);
  while (stream.bytes.size() + sizeof kHead + lineBytes < kStreamBytes) {
    const std::size_t at = stream.bytes.size();
    const auto page = static_cast<std::uint8_t>(1 + stream.wanted.records % 100);
    stream.bytes.resize(at + sizeof kHead + lineBytes, 0x5A);
    std::memcpy(&stream.bytes[at], kHead, sizeof kHead);
    stream.bytes[at + 3] = page;
    stream.bytes[at + 6] = static_cast<std::uint8_t>(lineBytes);
    stream.bytes[at + 7] = static_cast<std::uint8_t>(lineBytes >> 8);
    ++stream.wanted.records;
    stream.wanted.lineBytes += lineBytes;
    stream.wanted.pages += page;
  }
  stream.bytes.push_back(kStatusAllPagesEnded);
  ++stream.wanted.records;
  stream.wanted.ended = true;
  return stream;
}

Walk walk(std::vector<std::uint8_t>& bytes) {
  CParseExeCmdRes_v1 parser;
  Walk found;
  std::uint8_t* const end = bytes.data() + bytes.size();
  for (std::uint8_t* at = bytes.data(); at != nullptr;) {
    SCANIMAGEINFO info;
    parser.ParseXcmdImageDataInfo(at, static_cast<unsigned long>(end - at), &info);
    if (info.isIncomplete) break;
    ++found.records;
    found.lineBytes += info.lineData.lineSize;
    found.pages += static_cast<std::uint64_t>(info.lineData.pageNo);
    found.ended = info.statusCode == kStatusAllPagesEnded;
    at = info.next;
  }
  return found;
}

void parse(benchmark::State& state, std::size_t lineBytes) {
  Stream stream = makeStream(lineBytes);
  if (walk(stream.bytes) != stream.wanted) return state.SkipWithError("wrong records");
  for (auto _ : state) benchmark::DoNotOptimize(walk(stream.bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.bytes.size()));
  state.counters["records/s"] =
      benchmark::Counter(static_cast<double>(stream.wanted.records) * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate);
}

BENCHMARK_CAPTURE(parse, lines_of_24_bytes, 24)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parse, lines_of_320_bytes, 320)->Unit(benchmark::kMillisecond);      // mono, 300 dpi
BENCHMARK_CAPTURE(parse, lines_of_65535_bytes, 65535)->Unit(benchmark::kMillisecond);  // the most a record takes

}  // namespace
