#include "tiff_writer.h"

#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include "exit_codes.h"
#include "fax_g4.h"
#include "flate.h"
#include "line_order.h"
#include "output_file.h"

namespace qsscan {
namespace {

constexpr std::size_t kStripBytes = std::size_t{256} << 10;

// libtiff tells its reasons to the whole process by default; here they would only repeat the sentence that follows.
void stayQuiet(const char*, const char*, va_list) {}

std::uint32_t rowsPerStrip(const Page& page) {
  const std::size_t rows = page.lineBytes > kStripBytes ? 1 : kStripBytes / page.lineBytes;
  // A strip of fax data has lines that lean on the line above: one strip is smallest.
  return static_cast<std::uint32_t>(page.bitsPerPixel == 1 ? page.heightPx : static_cast<int>(rows));
}

bool setFields(TIFF* tiff, const Page& page, std::uint16_t compression) {
  const bool color = page.bitsPerPixel == 24;
  const bool mono = page.bitsPerPixel == 1;
  bool set = TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_PAGE) == 1 &&
             TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(page.widthPx)) == 1 &&
             TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(page.heightPx)) == 1 &&
             TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, color ? 3 : 1) == 1 &&
             TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, mono ? 1 : 8) == 1 &&
             TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == 1 &&
             TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                          color  ? PHOTOMETRIC_RGB
                          : mono ? PHOTOMETRIC_MINISWHITE
                                 : PHOTOMETRIC_MINISBLACK) == 1 &&
             TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) == 1 &&
             TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression) == 1 &&
             TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsPerStrip(page)) == 1 &&
             TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH) == 1 &&
             TIFFSetField(tiff, TIFFTAG_XRESOLUTION, static_cast<double>(page.dpiX)) == 1 &&
             TIFFSetField(tiff, TIFFTAG_YRESOLUTION, static_cast<double>(page.dpiY)) == 1 &&
             TIFFSetField(tiff, TIFFTAG_SOFTWARE, "qsscan " QSSCAN_VERSION) == 1;
  if (set && !mono) set = TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL) == 1;
  if (const IccProfile* profile = page.fittingProfile(); set && profile != nullptr) {
    set = TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(profile->bytes.size()),
                       profile->bytes.data()) == 1;
  }
  return set;
}

bool writeLines(TIFF* tiff, const Page& page) {
  if (!setFields(tiff, page, COMPRESSION_LZW)) return false;
  // The coder changes the line that it is given.
  std::vector<std::uint8_t> buffer(page.lineBytes);
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* line = lineFor(page, y, true, buffer.data());
    if (line != buffer.data()) buffer.assign(line, line + page.lineBytes);
    if (TIFFWriteScanline(tiff, buffer.data(), static_cast<std::uint32_t>(y)) != 1) return false;
  }
  return true;
}

// Black and white is coded here, since dithered pictures grow in fax coding.
bool writeMono(TIFF* tiff, const Page& page) {
  std::vector<std::uint8_t> strip = codeFaxG4(page);
  std::uint16_t compression = COMPRESSION_CCITTFAX4;
  if (strip.size() > page.pixels.size() / 2) {
    std::vector<std::uint8_t> flate = deflated(invertedLines(page));
    if (flate.size() < strip.size()) {
      strip.swap(flate);
      compression = COMPRESSION_ADOBE_DEFLATE;
    }
  }
  const auto bytes = static_cast<tmsize_t>(strip.size());
  return setFields(tiff, page, compression) && TIFFWriteRawStrip(tiff, 0, strip.data(), bytes) == bytes;
}

bool readAt(int fd, std::uint64_t offset, void* to, std::size_t bytes) {
  return ::pread(fd, to, bytes, static_cast<off_t>(offset)) == static_cast<ssize_t>(bytes);
}

// Makes an end of the pages at endBytes: what lies behind is taken away, and the last directory before it names no
// next one. Numbers are in the byte order of this machine, as the file has been written here.
bool cutAt(int fd, std::uint64_t endBytes) {
  constexpr std::uint64_t kFirstLink = 4;  // behind the mark of the byte order and the number 42
  constexpr std::uint64_t kEntryBytes = 12;
  std::uint64_t link = kFirstLink;
  for (;;) {
    std::uint32_t directory = 0;
    if (!readAt(fd, link, &directory, sizeof directory)) return false;
    if (directory == 0 || directory >= endBytes) break;
    std::uint16_t entries = 0;
    if (!readAt(fd, directory, &entries, sizeof entries)) return false;
    link = directory + sizeof entries + entries * kEntryBytes;
  }
  constexpr std::uint32_t kNoNext = 0;
  return ::pwrite(fd, &kNoNext, sizeof kNoNext, static_cast<off_t>(link)) == sizeof kNoNext &&
         ::ftruncate(fd, static_cast<off_t>(endBytes)) == 0;
}

std::uint64_t sizeOf(int fd) {
  struct stat info {};
  ::fstat(fd, &info);
  return static_cast<std::uint64_t>(info.st_size);
}

}  // namespace

TiffWriter::TiffWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes)
    : stream_(stream), limitBytes_(limitBytes) {
  TIFFSetErrorHandler(stayQuiet);
  TIFFSetWarningHandler(stayQuiet);
  if (!options.isOwnFile) spool_.emplace(options.scratchDir);
  fd_ = ::fileno(spool_ ? spool_->stream() : stream_);
  errno = 0;
  tiff_ = TIFFFdOpen(fd_, "document.tif", "w");
  if (tiff_ == nullptr) throw CommandError(ExitCode::kCannotWrite, writeErrorText("The TIFF file", errno));
}

TiffWriter::~TiffWriter() { abandon(); }

// Lets go of the library's view of the file; what it has not written yet is lost. The file stays open.
void TiffWriter::abandon() {
  if (tiff_ != nullptr) TIFFCleanup(tiff_);
  tiff_ = nullptr;
}

void TiffWriter::addPage(const Page& page) {
  const std::uint64_t start = sizeOf(fd_);
  // Coded pages hardly ever grow, and by no more than half where they do: then a page too much is refused before it
  // spoils those in the file.
  if (start + page.pixels.size() + page.pixels.size() / 2 > limitBytes_) {
    throw CommandError(ExitCode::kCannotWrite, "Page " + std::to_string(page.number) +
                                                   " does not fit into the TIFF file, which holds 4 GiB. Use --format "
                                                   "pdf, or --batch for one file per page.");
  }
  int error = 0;
  try {
    errno = 0;
    const bool written = page.bitsPerPixel == 1 ? writeMono(tiff_, page) : writeLines(tiff_, page);
    if (written && TIFFWriteDirectory(tiff_) == 1) {
      ++pages_;
      return;
    }
    error = errno;
  } catch (...) {
    endAt(start);
    throw;
  }
  endAt(start);
  throw CommandError(ExitCode::kCannotWrite,
                     error != 0 ? writeErrorText("The TIFF file", error)
                                : "Page " + std::to_string(page.number) + " cannot be written as TIFF.");
}

void TiffWriter::endAt(std::uint64_t bytes) {
  abandon();
  if (pages_ > 0 && !cutAt(fd_, bytes)) pages_ = 0;
}

Finished TiffWriter::finish() {
  abandon();  // every directory has been written
  Finished finished{pages_, {}};
  if (!spool_ || pages_ == 0) return finished;
  std::array<std::uint8_t, 1 << 16> buffer;
  std::uint64_t offset = 0;
  while (const std::size_t n = spool_->read(offset, buffer)) {
    if (std::fwrite(buffer.data(), 1, n, stream_) != n) {
      return {0, CommandError(ExitCode::kCannotWrite, writeErrorText("The TIFF file", errno))};
    }
    offset += n;
  }
  return finished;
}

}  // namespace qsscan
