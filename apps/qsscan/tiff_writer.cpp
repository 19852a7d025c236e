#include "tiff_writer.h"

#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <vector>

#include "exit_codes.h"
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

bool setFields(TIFF* tiff, const Page& page) {
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
             TIFFSetField(tiff, TIFFTAG_COMPRESSION, mono ? COMPRESSION_CCITTFAX4 : COMPRESSION_LZW) == 1 &&
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
  // The coder changes the line that it is given.
  std::vector<std::uint8_t> buffer(page.lineBytes);
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* line = lineFor(page, y, true, buffer.data());
    if (line != buffer.data()) buffer.assign(line, line + page.lineBytes);
    if (TIFFWriteScanline(tiff, buffer.data(), static_cast<std::uint32_t>(y)) != 1) return false;
  }
  return TIFFWriteDirectory(tiff) == 1;
}

}  // namespace

void TiffWriter::Closer::operator()(tiff* file) const { TIFFClose(file); }

TiffWriter::TiffWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes)
    : stream_(stream), limitBytes_(limitBytes), spool_(options.scratchDir) {
  TIFFSetErrorHandler(stayQuiet);
  TIFFSetWarningHandler(stayQuiet);
  const int fd = ::dup(::fileno(spool_.stream()));
  if (fd >= 0) tiff_.reset(TIFFFdOpen(fd, "document.tif", "w"));
  if (tiff_) return;
  const int error = errno;
  if (fd >= 0) ::close(fd);
  throw CommandError(ExitCode::kCannotWrite, fileErrorText("temporary file", error));
}

TiffWriter::~TiffWriter() = default;

void TiffWriter::addPage(const Page& page) {
  struct stat info {};
  ::fstat(::fileno(spool_.stream()), &info);
  // Coded pages hardly ever grow, and by no more than half where they do: then a page too much is refused before it
  // spoils those in the file.
  const std::uint64_t needed = page.pixels.size() + page.pixels.size() / 2;
  if (static_cast<std::uint64_t>(info.st_size) + needed > limitBytes_) {
    throw CommandError(ExitCode::kCannotWrite, "Page " + std::to_string(page.number) +
                                                   " does not fit into the TIFF file, which holds 4 GiB. Use --format "
                                                   "pdf, or --batch for one file per page.");
  }
  errno = 0;
  if (setFields(tiff_.get(), page) && writeLines(tiff_.get(), page)) return;
  isSpoilt_ = true;
  const std::string reason = errno != 0 ? fileErrorText("temporary file", errno) : "";
  throw CommandError(ExitCode::kCannotWrite, "Page " + std::to_string(page.number) + " cannot be written as TIFF." +
                                                 (reason.empty() ? "" : " " + reason));
}

void TiffWriter::finish() {
  if (isSpoilt_) throw CommandError(ExitCode::kCannotWrite, "The TIFF file could not be completed.");
  tiff_.reset();
  std::array<std::uint8_t, 1 << 16> buffer;
  std::uint64_t offset = 0;
  while (const std::size_t n = spool_.read(offset, buffer)) {
    if (std::fwrite(buffer.data(), 1, n, stream_) != n) {
      throw CommandError(ExitCode::kCannotWrite, fileErrorText("TIFF file", errno));
    }
    offset += n;
  }
}

}  // namespace qsscan
