#include <tiffio.h>

#include <memory>

#include "sheets/sheet_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

struct TiffCloser {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, TiffCloser>;

void silenceLibrary() {
  // What is wrong with a file is said by our own sentence, once.
  TIFFSetErrorHandler(nullptr);
  TIFFSetWarningHandler(nullptr);
}

Tiff openAt(const std::string& path, int page) {
  Tiff tiff(TIFFOpen(path.c_str(), "rm"));
  if (!tiff || TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(page)) == 0) throw Failure(path + " is broken");
  return tiff;
}

bool readResolution(TIFF* tiff, double& dpiX, double& dpiY) {
  float x = 0;
  float y = 0;
  std::uint16_t unit = RESUNIT_INCH;
  TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
  if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) == 0 || TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) == 0)
    return false;
  if (!(x > 1) || !(y > 1) || unit == RESUNIT_NONE) return false;
  const double perInch = unit == RESUNIT_CENTIMETER ? 2.54 : 1.0;
  dpiX = x * perInch;
  dpiY = y * perInch;
  return true;
}

bool isGreyPicture(TIFF* tiff) {
  std::uint16_t photometric = 0;
  TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &photometric);
  return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE;
}

std::uint8_t onWhitePaper(std::uint32_t value, std::uint32_t alpha) {
  // The library gives colours already multiplied by their alpha.
  return static_cast<std::uint8_t>(value + (255 - alpha) > 255 ? 255 : value + (255 - alpha));
}

class TiffFile final : public SheetFile {
 public:
  explicit TiffFile(const std::string& path) : SheetFile(path) {
    silenceLibrary();
    const Tiff tiff = openAt(path, 0);
    pages_ = static_cast<int>(TIFFNumberOfDirectories(tiff.get()));
    double x = 0;
    double y = 0;
    for (int page = 0; page < pages_; ++page) hasResolution_ &= readResolution(openAt(path, page).get(), x, y);
  }

  int pages() const override { return pages_; }
  bool hasResolution() const override { return hasResolution_; }

  Sheet load(int page, int, int) const override {
    const Tiff tiff = openAt(path(), page);
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height);
    checkSheetSize(path(), width, height);
    std::vector<std::uint32_t> rgba(static_cast<std::size_t>(width) * height);
    if (TIFFReadRGBAImageOriented(tiff.get(), width, height, rgba.data(), ORIENTATION_TOPLEFT, 1) == 0) {
      throw Failure(path() + ", page " + std::to_string(page + 1) + ", is broken or of a kind that cannot be read");
    }
    const int channels = isGreyPicture(tiff.get()) ? 1 : 3;
    Sheet sheet{Raster(static_cast<int>(width), static_cast<int>(height), channels), kAssumedDpi, kAssumedDpi};
    std::uint8_t* out = sheet.pixels.pixels.data();
    for (const std::uint32_t pixel : rgba) {
      const std::uint32_t alpha = TIFFGetA(pixel);
      *out++ = onWhitePaper(TIFFGetR(pixel), alpha);
      if (channels == 1) continue;
      *out++ = onWhitePaper(TIFFGetG(pixel), alpha);
      *out++ = onWhitePaper(TIFFGetB(pixel), alpha);
    }
    readResolution(tiff.get(), sheet.dpiX, sheet.dpiY);
    return sheet;
  }

 private:
  int pages_ = 0;
  bool hasResolution_ = true;
};

}  // namespace

std::shared_ptr<const SheetFile> openTiff(const std::string& path) { return std::make_shared<TiffFile>(path); }

}  // namespace vscan
