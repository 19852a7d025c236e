// PackBits pages through the line decoder, and through libtiff's own reading of the very same bytes.
#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <cstring>
#include <memory>
#include <stdexcept>

#include "modules/ScanDec.h"
#include "sheet.h"
#include "tests/modules/packbits_lines.h"

extern "C" orvalle_scan_api::IScanDec* CreateInstance();

namespace {

using namespace orvalle_scan_api;
using bench_sheet::Bytes;
using bench_sheet::kHeightPx;
using bench_sheet::kWidthPx;

struct PackedSheet {
  std::int32_t kind;
  std::int32_t colorType;
  std::size_t lineBytes;
  Bytes pixels;
  std::vector<Bytes> lines;
};

PackedSheet pack(bool mono) {
  PackedSheet sheet{mono ? kLineKindMono : kLineKindGray,
                    mono ? 0x101 : 0x208,
                    std::size_t{kWidthPx} / (mono ? 8 : 1),
                    mono ? bench_sheet::drawMono() : bench_sheet::drawGray(),
                    {}};
  for (std::size_t at = 0; at < sheet.pixels.size(); at += sheet.lineBytes) {
    const auto begin = sheet.pixels.begin() + static_cast<std::ptrdiff_t>(at);
    sheet.lines.push_back(module_test::packBits({begin, begin + static_cast<std::ptrdiff_t>(sheet.lineBytes)}));
  }
  return sheet;
}

void decodeWithModule(IScanDec& decoder, const PackedSheet& sheet, std::uint8_t* out) {
  SCANDEC_OPEN open{};
  open.nColorType = sheet.colorType;
  open.dwInLinePixCnt = kWidthPx;
  open.dwInHeightPixCnt = kHeightPx;
  open.dwOutLineByteCnt = sheet.lineBytes;
  if (decoder.Open(0) != 1 || decoder.SetOpenParam(&open) != 1) throw std::runtime_error("refused");
  SCANDEC_WRITE write{};
  write.nInDataComp = kCompressPackBits;
  write.nInDataKind = sheet.kind;
  write.writeBuffSize = open.dwWriteBuffSize;
  for (const Bytes& line : sheet.lines) {
    int lines = 0;
    int bytes = 0;
    write.pLineData = line.data();
    write.inSize = line.size();
    write.pWriteBuff = out;
    decoder.Write(&write, &lines, &bytes);
    out += bytes;
  }
  decoder.Close();
}

// A TIFF file in memory.
class MemoryTiff {
 public:
  explicit MemoryTiff(const PackedSheet& sheet) {
    Bytes strip;
    for (const Bytes& line : sheet.lines) strip.insert(strip.end(), line.begin(), line.end());
    TIFF* tiff = open("w");
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kWidthPx);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kHeightPx);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, kHeightPx);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, sheet.kind == kLineKindMono ? 1 : 8);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    TIFFWriteRawStrip(tiff, 0, strip.data(), static_cast<tmsize_t>(strip.size()));
    TIFFClose(tiff);
    reader_.reset(open("r"));
  }

  void decode(Bytes& out) { TIFFReadEncodedStrip(reader_.get(), 0, out.data(), static_cast<tmsize_t>(out.size())); }

 private:
  TIFF* open(const char* mode) {
    position_ = 0;
    return TIFFClientOpen("memory", mode, this, read, write, seek, close, fileSize, map, unmap);
  }
  static MemoryTiff& of(thandle_t handle) { return *static_cast<MemoryTiff*>(handle); }
  static tmsize_t read(thandle_t handle, void* out, tmsize_t size) {
    MemoryTiff& file = of(handle);
    const std::size_t count = std::min(static_cast<std::size_t>(size), file.bytes_.size() - file.position_);
    std::memcpy(out, file.bytes_.data() + file.position_, count);
    file.position_ += count;
    return static_cast<tmsize_t>(count);
  }
  static tmsize_t write(thandle_t handle, void* in, tmsize_t size) {
    MemoryTiff& file = of(handle);
    const std::size_t end = file.position_ + static_cast<std::size_t>(size);
    if (file.bytes_.size() < end) file.bytes_.resize(end);
    std::memcpy(file.bytes_.data() + file.position_, in, static_cast<std::size_t>(size));
    file.position_ = end;
    return size;
  }
  static toff_t seek(thandle_t handle, toff_t offset, int whence) {
    MemoryTiff& file = of(handle);
    const toff_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file.position_ : file.bytes_.size();
    return file.position_ = base + offset;
  }
  static int close(thandle_t) { return 0; }
  static toff_t fileSize(thandle_t handle) { return of(handle).bytes_.size(); }
  static int map(thandle_t handle, void** base, toff_t* size) {
    *base = of(handle).bytes_.data();
    *size = of(handle).bytes_.size();
    return 1;
  }
  static void unmap(thandle_t, void*, toff_t) {}

  Bytes bytes_;
  std::size_t position_ = 0;
  std::unique_ptr<TIFF, decltype(&TIFFClose)> reader_{nullptr, TIFFClose};
};

void report(benchmark::State& state, const PackedSheet& sheet) {
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sheet.pixels.size()));
}

void module(benchmark::State& state, bool mono) {
  const PackedSheet sheet = pack(mono);
  const std::unique_ptr<IScanDec> decoder(CreateInstance());
  Bytes out(sheet.pixels.size());
  decodeWithModule(*decoder, sheet, out.data());
  if (out != sheet.pixels) return state.SkipWithError("wrong pixels");
  for (auto _ : state) decodeWithModule(*decoder, sheet, out.data());
  report(state, sheet);
}

void libtiff(benchmark::State& state, bool mono) {
  const PackedSheet sheet = pack(mono);
  MemoryTiff file(sheet);
  Bytes out(sheet.pixels.size());
  file.decode(out);
  if (out != sheet.pixels) return state.SkipWithError("wrong pixels");
  for (auto _ : state) file.decode(out);
  report(state, sheet);
}

BENCHMARK_CAPTURE(module, mono, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(libtiff, mono, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(module, gray, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(libtiff, gray, false)->Unit(benchmark::kMillisecond);

}  // namespace
