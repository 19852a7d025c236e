#include <tiffio.h>

#include <cmath>
#include <memory>
#include <stdexcept>

#include "picture.h"

namespace e2e {
namespace {

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

// The page in hand, in colour.
Picture currentPage(TIFF* tiff, const std::string& path) {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  float dpi = 0;
  if (TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width) != 1 || TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height) != 1) {
    fail(path + " is broken");
  }
  TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &dpi);
  std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * height);
  if (TIFFReadRGBAImageOriented(tiff, width, height, pixels.data(), ORIENTATION_TOPLEFT, 1) != 1) {
    fail(path + " is broken");
  }
  Picture picture(static_cast<int>(width), static_cast<int>(height), 3, std::round(static_cast<double>(dpi)));
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    picture.pixels[3 * i] = static_cast<std::uint8_t>(TIFFGetR(pixels[i]));
    picture.pixels[3 * i + 1] = static_cast<std::uint8_t>(TIFFGetG(pixels[i]));
    picture.pixels[3 * i + 2] = static_cast<std::uint8_t>(TIFFGetB(pixels[i]));
  }
  return picture;
}

}  // namespace

void writeTiff(const std::string& path, const std::vector<Picture>& pages) {
  const Tiff tiff(TIFFOpen(path.c_str(), "w"));
  if (!tiff) fail(path + " cannot be written");
  for (const Picture& page : pages) {
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, page.widthPx);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, page.heightPx);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, page.channels);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, page.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 64);
    TIFFSetField(tiff.get(), TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    TIFFSetField(tiff.get(), TIFFTAG_XRESOLUTION, page.dpi);
    TIFFSetField(tiff.get(), TIFFTAG_YRESOLUTION, page.dpi);
    for (int y = 0; y < page.heightPx; ++y) {
      if (TIFFWriteScanline(tiff.get(), const_cast<std::uint8_t*>(page.at(0, y)), static_cast<std::uint32_t>(y)) < 0) {
        fail(path + " cannot be written");
      }
    }
    TIFFWriteDirectory(tiff.get());
  }
}

Picture readTiff(const std::string& path) {
  TIFFSetWarningHandler(nullptr);
  const Tiff tiff(TIFFOpen(path.c_str(), "r"));
  if (!tiff) fail(path + " is broken");
  return currentPage(tiff.get(), path);
}

void readTiffPages(const std::string& path, const std::function<void(Picture)>& take) {
  const Tiff tiff(TIFFOpen(path.c_str(), "r"));
  if (!tiff) fail(path + " is broken");
  do {
    std::uint16_t channels = 0;
    std::uint16_t bits = 0;
    TIFFGetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, &channels);
    TIFFGetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, &bits);
    Picture page = currentPage(tiff.get(), path);
    if (channels == 1) page = withoutIdleColor(page);
    if (page.channels != channels) fail(path + " has a grey page with colours");
    page.bitsPerSample = bits;
    take(std::move(page));
  } while (TIFFReadDirectory(tiff.get()) == 1);
}

std::vector<Picture> readTiffPages(const std::string& path) {
  std::vector<Picture> pages;
  readTiffPages(path, [&](Picture page) { pages.push_back(std::move(page)); });
  return pages;
}

Picture decodeFaxG4(const std::uint8_t* data, std::size_t bytes, int widthPx, int heightPx,
                    const std::string& scratch) {
  {
    const Tiff tiff(TIFFOpen(scratch.c_str(), "w"));
    if (!tiff) fail(scratch + " cannot be written");
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, widthPx);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, heightPx);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 1);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISWHITE);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, heightPx);
    TIFFWriteRawStrip(tiff.get(), 0, const_cast<std::uint8_t*>(data), static_cast<tmsize_t>(bytes));
  }
  const Tiff tiff(TIFFOpen(scratch.c_str(), "r"));
  const auto lineBytes = (static_cast<std::size_t>(widthPx) + 7) / 8;
  std::vector<std::uint8_t> bits(lineBytes * static_cast<std::size_t>(heightPx));
  const auto wanted = static_cast<tmsize_t>(bits.size());
  if (!tiff || TIFFReadEncodedStrip(tiff.get(), 0, bits.data(), wanted) != wanted) fail("the G4 picture is broken");
  Picture picture(widthPx, heightPx, 1, 0);
  picture.bitsPerSample = 1;
  for (int y = 0; y < heightPx; ++y) {
    const std::uint8_t* line = bits.data() + static_cast<std::size_t>(y) * lineBytes;
    for (int x = 0; x < widthPx; ++x) *picture.at(x, y) = (line[x / 8] >> (7 - x % 8) & 1) != 0 ? 0 : 255;
  }
  return picture;
}

}  // namespace e2e
