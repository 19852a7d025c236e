#include "fax_g4.h"

#include <tiffio.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "exit_codes.h"
#include "line_order.h"

namespace qsscan {
namespace {

// libtiff codes into a TIFF file only; this is one in memory, from which the coded strip is taken.
struct MemoryFile {
  std::vector<std::uint8_t> bytes;
  std::size_t position = 0;
};

MemoryFile& file(thandle_t handle) { return *static_cast<MemoryFile*>(handle); }

tmsize_t readBytes(thandle_t handle, void* to, tmsize_t wanted) {
  MemoryFile& f = file(handle);
  const std::size_t left = f.position < f.bytes.size() ? f.bytes.size() - f.position : 0;
  const std::size_t n = std::min(left, static_cast<std::size_t>(wanted));
  std::memcpy(to, f.bytes.data() + f.position, n);
  f.position += n;
  return static_cast<tmsize_t>(n);
}

tmsize_t writeBytes(thandle_t handle, void* from, tmsize_t count) {
  MemoryFile& f = file(handle);
  const auto n = static_cast<std::size_t>(count);
  if (f.position + n > f.bytes.size()) f.bytes.resize(f.position + n);
  std::memcpy(f.bytes.data() + f.position, from, n);
  f.position += n;
  return count;
}

toff_t seek(thandle_t handle, toff_t offset, int whence) {
  MemoryFile& f = file(handle);
  const std::size_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? f.position : f.bytes.size();
  f.position = base + static_cast<std::size_t>(offset);
  return f.position;
}

int closeNothing(thandle_t) { return 0; }
toff_t sizeOf(thandle_t handle) { return file(handle).bytes.size(); }

struct Closer {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};

[[noreturn]] void fail(const Page& page) {
  throw CommandError(ExitCode::kCannotWrite, "Page " + std::to_string(page.number) + " cannot be coded as fax data.");
}

}  // namespace

std::vector<std::uint8_t> codeFaxG4(const Page& page) {
  MemoryFile memory;
  const std::unique_ptr<TIFF, Closer> tiff(
      TIFFClientOpen("page", "w", &memory, readBytes, writeBytes, seek, closeNothing, sizeOf, nullptr, nullptr));
  if (!tiff) fail(page);
  TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(page.widthPx));
  TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(page.heightPx));
  TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(page.heightPx));
  TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 1);
  TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
  TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
  TIFFSetField(tiff.get(), TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
  TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);

  std::vector<std::uint8_t> lines = invertedLines(page);  // the coder takes a set bit for black
  if (TIFFWriteEncodedStrip(tiff.get(), 0, lines.data(), static_cast<tmsize_t>(lines.size())) < 0) fail(page);
  if (TIFFFlushData(tiff.get()) != 1) fail(page);
  const auto offset = static_cast<std::size_t>(TIFFGetStrileOffset(tiff.get(), 0));
  const auto bytes = static_cast<std::size_t>(TIFFGetStrileByteCount(tiff.get(), 0));
  if (offset > memory.bytes.size() || bytes > memory.bytes.size() - offset) fail(page);
  memory.bytes.erase(memory.bytes.begin(), memory.bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  memory.bytes.resize(bytes);
  return std::move(memory.bytes);
}

}  // namespace qsscan
