// 100 MiB of the image stream, cut into small records and into large ones. The parser copies nothing, so that what a
// record costs does not depend on its size.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "command/ParseExeCmdRes_v2.h"
#include "foundation/bytes.h"

namespace {

using namespace orvalle_scan_api;

constexpr std::size_t kStreamBytes = 100 << 20;
constexpr std::size_t kHeaderBytes = 14;

// Line records of page 1, each with dataBytes of data that begin with the record's number, and the end of all pages.
std::vector<unsigned char> streamOf(std::size_t dataBytes) {
  const std::size_t records = kStreamBytes / (kHeaderBytes + dataBytes);
  std::vector<unsigned char> stream(records * (kHeaderBytes + dataBytes) + 2);
  for (std::size_t i = 0; i < records; ++i) {
    unsigned char* record = stream.data() + i * (kHeaderBytes + dataBytes);
    record[1] = 0x01;
    storeU16le(record + 2, 1);
    record[4] = 0x0D;  // PackBits, colour
    storeU32le(record + 6, static_cast<std::uint32_t>(dataBytes));
    storeU32le(record + 10, static_cast<std::uint32_t>(i));
    storeU32le(record + 14, static_cast<std::uint32_t>(i));
  }
  stream[stream.size() - 1] = 0x20;
  return stream;
}

struct Seen {
  std::uint64_t records = 0;
  std::uint64_t dataBytes = 0;
  std::uint64_t sumOfNumbers = 0;  // as the data tells them
};

Seen walk(std::vector<unsigned char>& stream) {
  Seen seen;
  unsigned char* at = stream.data();
  unsigned char* const end = at + stream.size();
  IMAGE_HEADER header;
  PARSE_RESULT result;
  CParseExeCmdRes_v2 parser;
  while (at < end && parser.ParseXSCcmdImageDataInfo(at, static_cast<unsigned long>(end - at), &header, &result, &at) ==
                         kParsedRecord) {
    ++seen.records;
    seen.dataBytes += header.dataSize;
    if (header.dataType == kRecordLine) seen.sumOfNumbers += loadU32le(header.data);
  }
  return seen;
}

void records(benchmark::State& state) {
  const auto dataBytes = static_cast<std::size_t>(state.range(0));
  std::vector<unsigned char> stream = streamOf(dataBytes);
  const std::uint64_t lines = kStreamBytes / (kHeaderBytes + dataBytes);
  const Seen seen = walk(stream);
  if (seen.records != lines + 1 || seen.dataBytes != lines * dataBytes ||
      seen.sumOfNumbers != lines * (lines - 1) / 2) {
    return state.SkipWithError("wrong records");
  }
  for (auto _ : state) benchmark::DoNotOptimize(walk(stream));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(stream.size()));
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(lines));
}

BENCHMARK(records)
    ->ArgName("dataBytes")
    ->Arg(32)
    ->Arg(1000)
    ->Arg(64 << 10)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond);

}  // namespace
