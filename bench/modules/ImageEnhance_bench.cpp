// The time that each enhancement takes on an A4 page at 300 dpi, from the core's store to the module's result. A page
// that changes is copied once in and once out: `colour_copied`, which whitens one line of pixels, is the floor.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>

#include "modules/ImageEnhance.h"
#include "sheet.h"
#include "tests/fakes/test_bmp.h"

extern "C" orvalle_scan_api::IImageEnhance* CreateInstance();

namespace {

using namespace orvalle_scan_api;
using namespace bench_sheet;

using Ask = void (*)(_IE_PARAM&);

void enhance(benchmark::State& state, int bits, int wantedBits, Ask ask) {
  Bytes pixels = bits == 24 ? drawRgb() : bits == 8 ? drawGray() : drawMono();
  const std::size_t lineBytes = fakes::lineBytesOf(kWidthPx, bits);
  std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(100 * lineBytes), 4 * lineBytes, 0);  // a ruled line
  for (std::size_t y = 40; y < 43; ++y) {                                                        // a speck
    std::fill_n(pixels.begin() + static_cast<std::ptrdiff_t>(y * lineBytes + lineBytes / 8),
                bits == 1 ? 1 : bits / 8 * 3, bits == 1 ? 0x1F : 0);
  }
  Bytes bmp = fakes::makeBmp(kWidthPx, kHeightPx, bits, fakes::upsideDown(pixels, lineBytes));
  PAGE_STORE_VIEW store{};
  store.data = bmp.data();
  store.dataSize = store.blockSize = static_cast<std::uint32_t>(bmp.size());
  store.resolutionX = store.resolutionY = 300;
  _IE_PARAM param{};
  param.colorClass = 4;
  ask(param);
  const std::unique_ptr<IImageEnhance> module(CreateInstance());
  auto* const source = reinterpret_cast<CImageDataStore*>(&store);
  if (module->Process(source, &param, 0) != 0) return state.SkipWithError("refused");
  // 0: the answer is that there is nothing to do.
  if (module->GetResult().bitPerPixel != wantedBits) return state.SkipWithError("another depth than asked for");
  for (auto _ : state) benchmark::DoNotOptimize(module->Process(source, &param, 0));
}

void nothing(_IE_PARAM&) {}
void copied(_IE_PARAM& param) {
  param.doEdgeFill = true;
  param.edgeFill = {true, 0, 0, 1, 0, 0};
}
void toGray(_IE_PARAM& param) { param.colorClass = 3; }
void manualThreshold(_IE_PARAM& param) {
  param.colorClass = 1;
  param.threshold = 128;
}
void otsuThreshold(_IE_PARAM& param) { param.colorClass = 1; }
void evenThreshold(_IE_PARAM& param) {
  param.colorClass = 1;
  param.doAutoThreshold = true;
  param.autoThreshold = {{50, 50}, 0, {7, 2}};
}
void diffusion(_IE_PARAM& param) { param.colorClass = 2; }
void tone(_IE_PARAM& param) {
  param.doToneAdjust = true;
  param.toneAdjust = {140, 140, 10, 220, 1.2};
}
void autoTone(_IE_PARAM& param) { param.doAutoTone = true; }
void smoothing(_IE_PARAM& param) { param.doSmoothing = true; }
void smoothingAlike(_IE_PARAM& param) {
  param.doSmoothing = true;
  param.smoothingMode = 1;
}
void colorDrop(_IE_PARAM& param) {
  param.doColorDrop = true;
  param.colorDrop = {1, 0, 0, 0, 1, 1};
}
void thickText(_IE_PARAM& param) {
  param.doThickText = true;
  param.thickTextLevel = 3;
}
void dotText(_IE_PARAM& param) {
  param.doDotTextCombine = true;
  param.dotTextCombineMode = 1;
}
void edges(_IE_PARAM& param) {
  param.doEdgeEnhance = true;
  param.edgeEnhanceLevel = 3;
}
void noise(_IE_PARAM& param) {
  param.doNoiseRemoval = true;
  param.noiseRemoval = {{100, 120, 120, 500, 1}};
}
void lines(_IE_PARAM& param) {
  param.doLineRemoval = true;
  param.lineRemovalA.enable = param.lineRemovalB.enable = 1;
}
void holes(_IE_PARAM& param) {
  copied(param);
  param.doPunchHole = true;
  param.punchHole = {{30, 30, 30, 30}, 3, 10, 0, 0, 0, 1, {0, 0}};
}
void rotation(_IE_PARAM& param) {
  copied(param);
  param.doAutoRotate = true;
}

#define PAGE(name, bits, wantedBits, ask) \
  BENCHMARK_CAPTURE(enhance, name, bits, wantedBits, ask)->Unit(benchmark::kMillisecond)

PAGE(colour_nothing, 24, 0, nothing);
PAGE(colour_copied, 24, 24, copied);
PAGE(colour_to_grey, 24, 8, toGray);
PAGE(colour_to_mono_threshold, 24, 1, manualThreshold);
PAGE(colour_to_mono_otsu, 24, 1, otsuThreshold);
PAGE(colour_to_mono_even, 24, 1, evenThreshold);
PAGE(colour_to_mono_diffusion, 24, 1, diffusion);
PAGE(colour_tone, 24, 24, tone);
PAGE(colour_auto_tone, 24, 24, autoTone);
PAGE(colour_smoothing, 24, 24, smoothing);
PAGE(colour_smoothing_alike, 24, 24, smoothingAlike);
PAGE(colour_drop, 24, 24, colorDrop);
PAGE(colour_edges, 24, 24, edges);
PAGE(colour_thick_text, 24, 24, thickText);
PAGE(colour_dot_text, 24, 24, dotText);
PAGE(colour_noise, 24, 24, noise);
PAGE(colour_lines, 24, 24, lines);
PAGE(colour_holes, 24, 24, holes);
PAGE(colour_rotation, 24, 24, rotation);
PAGE(grey_edges, 8, 8, edges);
PAGE(grey_noise, 8, 8, noise);
PAGE(mono_copied, 1, 1, copied);
PAGE(mono_thick_text, 1, 1, thickText);
PAGE(mono_dot_text, 1, 1, dotText);
PAGE(mono_noise, 1, 1, noise);
PAGE(mono_lines, 1, 1, lines);
PAGE(mono_holes, 1, 1, holes);
PAGE(mono_rotation, 1, 1, rotation);

}  // namespace
