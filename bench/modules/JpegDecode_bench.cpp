// A page through the JPEG decoder in both modes, and the same file through libjpeg's own interface into one buffer.
#include <benchmark/benchmark.h>

#include <memory>

#include "modules/JpegDecode.h"
#include "sheet.h"
#include "tests/modules/jpeg_pictures.h"

extern "C" orvalle_scan_api::IJpegDecode* CreateInstance();

namespace {

using namespace orvalle_scan_api;
using namespace module_test;
using Bytes = std::vector<std::uint8_t>;

Pixels sheet(bool color) {
  return {bench_sheet::kWidthPx, bench_sheet::kHeightPx, color ? 3 : 1,
          color ? bench_sheet::drawRgb() : bench_sheet::drawGray()};
}

void report(benchmark::State& state, const Pixels& picture) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(picture.bytes.size()));
}

void libjpeg(benchmark::State& state, bool color) {
  const Bytes jpeg = encodeJpeg(sheet(color));
  Pixels picture;
  for (auto _ : state) decodeWithLibjpeg(jpeg, picture);
  report(state, picture);
}

void page(benchmark::State& state, bool color) {
  const Bytes jpeg = encodeJpeg(sheet(color));
  Pixels expected;
  decodeWithLibjpeg(jpeg, expected);
  const std::unique_ptr<IJpegDecode> decoder(CreateInstance());
  tagQS_SCAN_IMAGEDATA image{};
  const auto decode = [&] { return decoder->DecodePage(jpeg.data(), static_cast<unsigned>(jpeg.size()), &image); };
  if (decode() != JPEGDECODE_OK) return state.SkipWithError("not decoded");
  for (int y = 0; y < expected.heightPx; ++y) {
    const std::size_t fromTop = static_cast<std::size_t>(y) * expected.lineBytes();
    const std::size_t fromBottom = static_cast<std::size_t>(expected.heightPx - 1 - y) * expected.lineBytes();
    if (!std::equal(image.pixelData + fromBottom, image.pixelData + fromBottom + expected.lineBytes(),
                    expected.bytes.data() + fromTop)) {
      return state.SkipWithError("wrong pixels");
    }
  }
  for (auto _ : state) {
    decode();
    decoder->EndPage();
  }
  report(state, expected);
}

// Lines go to one buffer, as the core's page store takes them.
bool decodeBand(IJpegDecode& decoder, const Bytes& jpeg, Bytes& out) {
  JPEGBANDINFO info{};
  if (decoder.OpenBand(jpeg.data(), static_cast<unsigned>(jpeg.size()), &info) != JPEGDECODE_OK) return false;
  std::size_t filled = 0;
  JPEGDECODESTATUS status = JPEGDECODE_NEED_INPUT;
  for (std::size_t fed = 0; fed < jpeg.size() && status == JPEGDECODE_NEED_INPUT;) {
    const std::size_t count = std::min(static_cast<std::size_t>(info.writeSizeSpan), jpeg.size() - fed);
    decoder.WriteBand(jpeg.data() + fed, static_cast<unsigned>(count));
    fed += count;
    do {
      void* line = nullptr;
      unsigned size = 0;
      status = decoder.ReadBandLine(&line, &size);
      if (size == 0) continue;
      std::copy_n(static_cast<const std::uint8_t*>(line), size, out.data() + filled);
      filled += size;
    } while (status == JPEGDECODE_MORE_LINES);
  }
  decoder.CloseBand();
  return filled == out.size();
}

void band(benchmark::State& state, bool color) {
  const Bytes jpeg = encodeJpeg(sheet(color));
  Pixels expected;
  decodeWithLibjpeg(jpeg, expected);
  const std::unique_ptr<IJpegDecode> decoder(CreateInstance());
  Bytes out(expected.bytes.size());
  if (!decodeBand(*decoder, jpeg, out) || out != expected.bytes) return state.SkipWithError("wrong pixels");
  for (auto _ : state) decodeBand(*decoder, jpeg, out);
  report(state, expected);
}

BENCHMARK_CAPTURE(libjpeg, color, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(page, color, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(band, color, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(libjpeg, gray, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(page, gray, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(band, gray, false)->Unit(benchmark::kMillisecond);

}  // namespace
