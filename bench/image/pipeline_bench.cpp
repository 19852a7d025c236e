// A4 pages at 300 dpi through the whole pipeline on the real modules: pages for each second, the time that each stage
// takes of a page, and how both compare with the decoding alone and with a copy of the page's
// pixels into a new block.
//
// pages/…   ratio      wall time of a page against that of the bare decoding, in the same run; stages work side by side
//           cpu_ratio  the same for processor time
// stages/…  …_ms       processor time of one stage at a time, and of what its module does there
//           copies     what each stage costs beyond its module, in copies of a page
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <limits>
#include <memory>
#include <thread>

#include "bench/modules/sheet.h"
#include "image/DecodeManage.h"
#include "tests/modules/jpeg_pictures.h"
#include "tests/modules/packbits_lines.h"

namespace {

using namespace orvalle_scan_api;
using bench_sheet::Bytes;
using bench_sheet::kHeightPx;
using bench_sheet::kWidthPx;

constexpr int kPagesAtATime = 6;

enum class Sheet { ColorJpeg, ColorJpegInBands, ColorLines, PackedGray, PackedMono };

// A sheet as it is received, and the pixels that it has: top line first, B,G,R, grey or mono.
struct Received {
  COLORTYPE color = COLORTYPE_COLOR24BIT;
  int kind = 5;
  int code = 2;
  PAPERTYPE paper = PAPERTYPE_A4;
  std::size_t lineBytes = 0;  // of a decoded line
  Bytes jpeg;
  std::vector<Bytes> lines;
  Bytes pixels;
};

void swapRedAndBlue(Bytes& pixels) {
  for (std::size_t i = 0; i + 2 < pixels.size(); i += 3) std::swap(pixels[i], pixels[i + 2]);
}

Received receive(Sheet sheet) {
  Received received;
  received.lineBytes = sheet == Sheet::PackedMono ? kWidthPx / 8 : sheet == Sheet::PackedGray ? kWidthPx : kWidthPx * 3;
  if (sheet == Sheet::ColorJpeg || sheet == Sheet::ColorJpegInBands) {
    received.code = 5;
    if (sheet == Sheet::ColorJpegInBands) received.paper = PAPERTYPE_LONG;  // is never decoded at once
    received.jpeg = module_test::encodeJpeg({kWidthPx, kHeightPx, 3, bench_sheet::drawRgb()});
    module_test::Pixels decoded;
    module_test::decodeWithLibjpeg(received.jpeg, decoded);
    received.pixels = std::move(decoded.bytes);
    swapRedAndBlue(received.pixels);
    return received;
  }
  const bool isColor = sheet == Sheet::ColorLines;
  if (!isColor) {
    received.color = sheet == Sheet::PackedGray ? COLORTYPE_TRUEGRAY : COLORTYPE_BLACKANDWHITE;
    received.kind = sheet == Sheet::PackedGray ? 7 : 1;
    received.code = 3;
  }
  received.pixels = isColor                      ? bench_sheet::drawRgb()
                    : sheet == Sheet::PackedGray ? bench_sheet::drawGray()
                                                 : bench_sheet::drawMono();
  for (std::size_t at = 0; at < received.pixels.size(); at += received.lineBytes) {
    const auto begin = received.pixels.begin() + static_cast<std::ptrdiff_t>(at);
    const Bytes line(begin, begin + static_cast<std::ptrdiff_t>(received.lineBytes));
    received.lines.push_back(isColor ? line : module_test::packBits(line));
  }
  if (isColor) swapRedAndBlue(received.pixels);
  return received;
}

QS_SCANNER_PARAMETERS settingsFor(const Received& received) {
  QS_SCANNER_PARAMETERS settings{};
  settings.resolution = {300, 300};
  settings.colorType = received.color;
  settings.paperType = received.paper;
  settings.detectEndOfPage = 1;
  settings.scanArea = {0, 0, kWidthPx, kHeightPx, UNIT_PIXEL};
  return settings;
}

void fill(CImageData& page, const Received& received) {
  const bool isJpeg = !received.jpeg.empty();
  CImageDataStore& store = isJpeg ? page.m_jpegData : page.m_rawData;
  page.m_pCurrentStore = &store;
  store.StartWriteData(300, 300, kWidthPx, isJpeg ? kHeightPx : 0, received.color, static_cast<unsigned>(received.kind),
                       static_cast<unsigned>(received.code));
  if (isJpeg) store.WriteJpegBlock(received.jpeg.data(), static_cast<unsigned>(received.jpeg.size()));
  for (const Bytes& line : received.lines) {
    store.WriteLineData(received.kind, received.code, line.data(), static_cast<unsigned>(line.size()));
  }
  store.FinishWriteData(false, 0);
}

bool isRight(CImageData& page, const Received& received) {
  const tagQS_SCAN_IMAGEDATA image = page.GetFinalImage();
  if (image.data == nullptr || image.pixelDataSize != received.pixels.size()) return false;
  for (std::size_t y = 0; y < kHeightPx; ++y) {
    if (std::memcmp(image.pixelData + (kHeightPx - 1 - y) * received.lineBytes,
                    received.pixels.data() + y * received.lineBytes, received.lineBytes) != 0) {
      return false;
    }
  }
  return true;
}

// A page's lines through the line decoder into a buffer of one line.
class LineDecoder {
 public:
  explicit LineDecoder(const Received& received) : received_(received), line_(received.lineBytes) {}

  void decode() { decodeInto(line_.data(), 0); }
  // Each line to its place in out.
  void decodeTo(Bytes& out) { decodeInto(out.data(), received_.lineBytes); }
  // Lines that come from a decoded picture.
  void decodePixels(const Bytes& pixels) {
    open();
    for (std::size_t at = 0; at < pixels.size(); at += received_.lineBytes) {
      write(2, pixels.data() + at, received_.lineBytes, line_.data());
    }
    decoder_->Close();
  }

 private:
  void decodeInto(std::uint8_t* to, std::size_t step) {
    open();
    for (const Bytes& line : received_.lines) {
      write(received_.code, line.data(), line.size(), to);
      to += step;
    }
    decoder_->Close();
  }
  void open() {
    SCANDEC_OPEN open{};
    open.nColorType = received_.color == COLORTYPE_COLOR24BIT ? 0x420
                      : received_.color == COLORTYPE_TRUEGRAY ? 0x208
                                                              : 0x101;
    open.dwInLinePixCnt = kWidthPx;
    open.dwInHeightPixCnt = kHeightPx;
    open.dwOutLineByteCnt = received_.lineBytes;
    decoder_->Open(0);
    decoder_->SetOpenParam(&open);
  }
  void write(int code, const std::uint8_t* line, std::size_t size, std::uint8_t* to) {
    SCANDEC_WRITE write{code, received_.kind, line, size, to, received_.lineBytes, 0, 0};
    int lines = 0;
    int bytes = 0;
    decoder_->Write(&write, &lines, &bytes);
  }

  const Received& received_;
  CModuleInstances modules_;
  IScanDec* decoder_ = modules_.GetScanDecInstance();
  Bytes line_;
};

// The decoding alone: libjpeg's own interface, or the line decoder, straight into one buffer.
class BareDecoder {
 public:
  explicit BareDecoder(const Received& received)
      : received_(received), lines_(received), out_(received.pixels.size()) {}

  void operator()() {
    if (received_.jpeg.empty()) {
      lines_.decodeTo(out_);
    } else {
      module_test::decodeWithLibjpeg(received_.jpeg, picture_);
    }
  }

 private:
  const Received& received_;
  LineDecoder lines_;
  module_test::Pixels picture_;
  Bytes out_;
};

double now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void pause(std::chrono::microseconds time) { std::this_thread::sleep_for(time); }

// A thread that was joined may still be on its way out of the system, and the process's clock lacks what it has used
// since the last tick: up to several milliseconds.
void waitUntilWorkersAreGone() {
  const auto threads = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
  };
  while (threads() > 1) pause(std::chrono::microseconds(50));
}

struct Seconds {
  double wall = 0;
  double cpu = 0;
};
template <class Work>
Seconds timeOf(Work&& work) {
  const double wall = now(CLOCK_MONOTONIC);
  const double cpu = now(CLOCK_PROCESS_CPUTIME_ID);
  work();
  const double wallTime = now(CLOCK_MONOTONIC) - wall;
  waitUntilWorkersAreGone();
  return {wallTime, now(CLOCK_PROCESS_CPUTIME_ID) - cpu};
}

// Pages through one manager, from the first call to the last page's settling.
class Scan {
 public:
  Scan(const Received& received, int pages) : settings_(settingsFor(received)) {
    manage_.SetScanProcStatus(&scanError_);
    isReady_ = manage_.Initialize() == 0;
    for (int i = 1; i <= pages; ++i) {
      pages_.push_back(std::make_unique<CImageData>());
      pages_.back()->SetPageNo(static_cast<unsigned>(i));
      fill(*pages_.back(), received);
    }
  }
  bool run() {
    if (!isReady_) return false;
    for (const auto& page : pages_) manage_.WriteImage(page.get());
    while (!pages_.back()->IsSettled()) {
      if (manage_.DecodeProcess(settings_, settings_, {}) != 0) return false;
      pause(std::chrono::microseconds(200));  // a read of the device takes its time, too
    }
    return scanError_.Get().status == 0;
  }
  CImageData& page(std::size_t index) { return *pages_[index]; }

 private:
  QS_SCANNER_PARAMETERS settings_;
  CScanError scanError_;
  std::vector<std::unique_ptr<CImageData>> pages_;
  CDecodeManage manage_;
  bool isReady_ = false;
};

void pages(benchmark::State& state, Sheet sheet) {
  const Received received = receive(sheet);
  {
    Scan scan(received, 2);
    if (!scan.run() || !isRight(scan.page(0), received) || !isRight(scan.page(1), received)) {
      return state.SkipWithError("wrong page");
    }
  }
  BareDecoder bare(received);
  bare();
  Seconds pipeline;
  Seconds decoding;
  for (auto _ : state) {
    auto scan = std::make_unique<Scan>(received, kPagesAtATime);
    const Seconds took = timeOf([&] { benchmark::DoNotOptimize(scan->run()); });
    scan.reset();
    const Seconds alone = timeOf([&] {
      for (int i = 0; i < kPagesAtATime; ++i) bare();
    });
    pipeline = {pipeline.wall + took.wall, pipeline.cpu + took.cpu};
    decoding = {decoding.wall + alone.wall, decoding.cpu + alone.cpu};
    state.SetIterationTime(took.wall);
  }
  const double count = static_cast<double>(state.iterations()) * kPagesAtATime;
  state.counters["pages_per_s"] = count / pipeline.wall;
  state.counters["bare_ms"] = decoding.wall / count * 1e3;
  state.counters["ratio"] = pipeline.wall / decoding.wall;
  state.counters["cpu_ratio"] = pipeline.cpu / decoding.cpu;
}

// The shortest of some times: what else the machine does only adds.
struct Best {
  double ms = std::numeric_limits<double>::infinity();
  void take(double seconds) { ms = std::min(ms, seconds * 1e3); }
};

// Processor time on a thread of its own, as a stage has one for each page.
template <class Work>
double workerSeconds(Work work) {
  return timeOf([&] { std::thread(work).join(); }).cpu;
}

// The picture through the decoder in the way that the page asks for; what comes out stays where it is.
void decodeJpeg(IJpegDecode& decoder, const Received& received) {
  const Bytes& jpeg = received.jpeg;
  const auto size = static_cast<unsigned>(jpeg.size());
  if (received.paper != PAPERTYPE_LONG) {
    tagQS_SCAN_IMAGEDATA image{};
    decoder.DecodePage(jpeg.data(), size, &image);
    return decoder.EndPage();
  }
  JPEGBANDINFO info{};
  decoder.OpenBand(jpeg.data(), size, &info);
  JPEGDECODESTATUS status = JPEGDECODE_NEED_INPUT;
  for (unsigned fed = 0; fed < size && status == JPEGDECODE_NEED_INPUT;) {
    const unsigned span = std::min(static_cast<unsigned>(info.writeSizeSpan), size - fed);
    decoder.WriteBand(jpeg.data() + fed, span);
    fed += span;
    void* line = nullptr;
    unsigned lineBytes = 0;
    do {
      status = decoder.ReadBandLine(&line, &lineBytes);
    } while (status == JPEGDECODE_MORE_LINES);
  }
  decoder.CloseBand();
}

// A page's pixels into a block of their own.
void copyOf(const Bytes& pixels) {
  const std::unique_ptr<std::uint8_t, decltype(&std::free)> block(
      static_cast<std::uint8_t*>(std::malloc(pixels.size())), std::free);
  std::memcpy(block.get(), pixels.data(), pixels.size());
  benchmark::DoNotOptimize(block.get());
}

// One page through one stage; its processor time.
template <class Stage, class... Rest>
double stageSeconds(Stage& stage, CImageData& page, const QS_SCANNER_PARAMETERS& settings, Rest... rest) {
  stage.WriteImage(&page);
  return timeOf([&] {
           stage.Start1Image(settings, settings, rest...);
           while (stage.GetResultImageData() == nullptr) pause(std::chrono::milliseconds(1));
         })
      .cpu;
}

void stages(benchmark::State& state, Sheet sheet) {
  const Received received = receive(sheet);
  const bool isJpeg = !received.jpeg.empty();
  const QS_SCANNER_PARAMETERS settings = settingsFor(received);
  CModuleInstances modules;
  CScanError scanError;
  LineDecoder lineDecoder(received);
  Bytes decodedJpeg = received.pixels;  // as the line stage gets it
  swapRedAndBlue(decodedJpeg);
  Best jpeg, jpegModule, lines, lineModule, enhance, copying;
  for (auto _ : state) {
    CImageData page;
    page.SetPageNo(1);
    fill(page, received);
    CJpegDecodeThread jpegStage;
    CScanDecThread lineStage;
    CImageEnhanceThread enhanceStage;
    IJpegDecode* const jpegDecoder = modules.GetJpegDecodeInstance();
    if (isJpeg) {
      jpegModule.take(workerSeconds([&] { decodeJpeg(*jpegDecoder, received); }));
      jpeg.take(stageSeconds(jpegStage, page, settings, &scanError, jpegDecoder));
    }
    lineModule.take(workerSeconds([&] { isJpeg ? lineDecoder.decodePixels(decodedJpeg) : lineDecoder.decode(); }));
    lines.take(stageSeconds(lineStage, page, settings, &scanError, modules.GetScanDecInstance()));
    enhance.take(
        stageSeconds(enhanceStage, page, settings, &scanError, modules.GetImageEnhanceInstance(), _IE_PARAM{}));
    if (!isRight(page, received)) return state.SkipWithError("wrong page");
    copying.take(workerSeconds([&] { copyOf(received.pixels); }));
  }
  if (isJpeg) {
    state.counters["jpeg_ms"] = jpeg.ms;
    state.counters["jpeg_module_ms"] = jpegModule.ms;
    state.counters["jpeg_copies"] = (jpeg.ms - jpegModule.ms) / copying.ms;
  }
  state.counters["lines_ms"] = lines.ms;
  state.counters["line_module_ms"] = lineModule.ms;
  state.counters["line_copies"] = (lines.ms - lineModule.ms) / copying.ms;
  state.counters["enhance_ms"] = enhance.ms;
  state.counters["copy_ms"] = copying.ms;
}

#define QS_BENCH_SHEET(name, sheet)                                                      \
  BENCHMARK_CAPTURE(pages, name, sheet)->UseManualTime()->Unit(benchmark::kMillisecond); \
  BENCHMARK_CAPTURE(stages, name, sheet)->Unit(benchmark::kMillisecond)

QS_BENCH_SHEET(color_jpeg, Sheet::ColorJpeg);
QS_BENCH_SHEET(color_jpeg_bands, Sheet::ColorJpegInBands);
QS_BENCH_SHEET(color_lines, Sheet::ColorLines);
QS_BENCH_SHEET(gray_packbits, Sheet::PackedGray);
QS_BENCH_SHEET(mono_packbits, Sheet::PackedMono);

}  // namespace
