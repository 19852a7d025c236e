// Uncompressed colour lines through the line decoder: R,G,B lines are turned, B,G,R lines copied.
#include <benchmark/benchmark.h>

#include <memory>

#include "modules/ScanDec.h"
#include "sheet.h"

extern "C" orvalle_scan_api::IScanDec* CreateInstance();

namespace {

using namespace orvalle_scan_api;
using bench_sheet::Bytes;

constexpr std::size_t kLineBytes = std::size_t{bench_sheet::kWidthPx} * 3;

void decode(IScanDec& decoder, std::int32_t kind, const Bytes& pixels, Bytes& out) {
  SCANDEC_OPEN open{};
  open.nColorType = 0x420;
  open.dwInLinePixCnt = bench_sheet::kWidthPx;
  open.dwOutLineByteCnt = kLineBytes;
  decoder.Open(0);
  decoder.SetOpenParam(&open);
  SCANDEC_WRITE write{};
  write.nInDataComp = kCompressNone;
  write.nInDataKind = kind;
  write.inSize = write.writeBuffSize = kLineBytes;
  for (std::size_t at = 0; at < pixels.size(); at += kLineBytes) {
    int lines = 0;
    int bytes = 0;
    write.pLineData = pixels.data() + at;
    write.pWriteBuff = out.data() + at;
    decoder.Write(&write, &lines, &bytes);
  }
  decoder.Close();
}

void lines(benchmark::State& state, std::int32_t kind) {
  const Bytes pixels = bench_sheet::drawRgb();
  const std::unique_ptr<IScanDec> decoder(CreateInstance());
  Bytes out(pixels.size());
  decode(*decoder, kind, pixels, out);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const std::size_t from = kind == kLineKindBgr ? i : i - i % 3 + 2 - i % 3;
    if (out[i] != pixels[from]) return state.SkipWithError("wrong pixels");
  }
  for (auto _ : state) decode(*decoder, kind, pixels, out);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(pixels.size()));
}

BENCHMARK_CAPTURE(lines, rgb, kLineKindRgb)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(lines, bgr, kLineKindBgr)->Unit(benchmark::kMillisecond);

}  // namespace
