#include "flate.h"

#include <zlib.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "exit_codes.h"
#include "output_file.h"

namespace qsscan {
namespace {

constexpr int kLevel = 6;
constexpr std::uint8_t kUpFilter = 2;  // each byte minus the one above it

class Deflater {
 public:
  explicit Deflater(std::FILE* stream) : stream_(stream) {
    if (deflateInit(&z_, kLevel) != Z_OK) throw CommandError(ExitCode::kInternal, "There is not enough memory.");
  }
  ~Deflater() { deflateEnd(&z_); }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;

  void write(const std::uint8_t* bytes, std::size_t size) { run(bytes, size, Z_NO_FLUSH); }
  void finish() { run(nullptr, 0, Z_FINISH); }

 private:
  void run(const std::uint8_t* bytes, std::size_t size, int flush) {
    z_.next_in = const_cast<Bytef*>(bytes);  // the library's own interface; it only reads
    z_.avail_in = static_cast<uInt>(size);
    do {
      z_.next_out = out_.data();
      z_.avail_out = static_cast<uInt>(out_.size());
      deflate(&z_, flush);
      const std::size_t n = out_.size() - z_.avail_out;
      if (std::fwrite(out_.data(), 1, n, stream_) != n) {
        throw CommandError(ExitCode::kCannotWrite, writeErrorText("A temporary file beside the output", errno));
      }
    } while (z_.avail_out == 0);
  }

  std::FILE* stream_;
  z_stream z_{};
  std::array<std::uint8_t, 1 << 16> out_;
};

void toRgb(const std::uint8_t* bgr, std::size_t bytes, std::uint8_t* rgb) {
  for (std::size_t i = 0; i + 2 < bytes; i += 3) {
    rgb[i] = bgr[i + 2];
    rgb[i + 1] = bgr[i + 1];
    rgb[i + 2] = bgr[i];
  }
}

}  // namespace

void writeFlate(const Page& page, std::FILE* stream) {
  Deflater deflater(stream);
  std::vector<std::uint8_t> above(page.lineBytes);
  std::vector<std::uint8_t> line(page.lineBytes);
  std::vector<std::uint8_t> filtered(page.lineBytes + 1, kUpFilter);
  for (int y = 0; y < page.heightPx; ++y) {
    if (page.bitsPerPixel == 24) {
      toRgb(page.line(y), page.lineBytes, line.data());
    } else {
      std::memcpy(line.data(), page.line(y), page.lineBytes);
    }
    for (std::size_t i = 0; i < line.size(); ++i) {
      filtered[i + 1] = static_cast<std::uint8_t>(line[i] - above[i]);
    }
    deflater.write(filtered.data(), filtered.size());
    std::swap(line, above);
  }
  deflater.finish();
}

std::vector<std::uint8_t> deflated(const std::vector<std::uint8_t>& bytes) {
  uLongf size = compressBound(bytes.size());
  std::vector<std::uint8_t> out(size);
  if (compress2(out.data(), &size, bytes.data(), bytes.size(), kLevel) != Z_OK) {
    throw CommandError(ExitCode::kInternal, "There is not enough memory.");
  }
  out.resize(size);
  return out;
}

}  // namespace qsscan
