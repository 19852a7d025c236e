#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstring>

#include "sheets/input_file.h"
#include "sheets/sheet_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

struct Header {
  std::uint32_t widthPx = 0;
  std::uint32_t heightPx = 0;
  int channels = 0;  // after the transformations: 1 or 3
  double dpiX = 0;   // 0 = not said
  double dpiY = 0;
};

double dpiFromMetre(png_uint_32 pixelsPerMetre) {
  // The file holds whole pixels per metre: 11811 stands for 300 dpi.
  const double dpi = pixelsPerMetre * 0.0254;
  const double whole = std::round(dpi);
  return std::fabs(dpi - whole) < 0.02 ? whole : dpi;
}

class Reader {
 public:
  Reader() : png_(png_create_read_struct(PNG_LIBPNG_VER_STRING, &error_, onError, onWarning)) {
    if (png_ != nullptr) info_ = png_create_info_struct(png_);
  }
  ~Reader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;

  // Both hold only plain values: the library may jump out of them. False with errorText() set when it did.
  bool readHeader(std::FILE* file, Header& header) {
    if (info_ == nullptr || setjmp(png_jmpbuf(png_)) != 0) return false;
    png_init_io(png_, file);
    png_read_info(png_, info_);
    png_set_expand(png_);
    png_set_scale_16(png_);
    if ((png_get_color_type(png_, info_) & PNG_COLOR_MASK_ALPHA) != 0 ||
        png_get_valid(png_, info_, PNG_INFO_tRNS) != 0) {
      png_color_16 paper{};
      paper.red = paper.green = paper.blue = paper.gray = 255;
      png_set_background(png_, &paper, PNG_BACKGROUND_GAMMA_SCREEN, 0, 1.0);
    }
    passes_ = png_set_interlace_handling(png_);
    png_read_update_info(png_, info_);
    header.widthPx = png_get_image_width(png_, info_);
    header.heightPx = png_get_image_height(png_, info_);
    header.channels = png_get_channels(png_, info_);
    png_uint_32 x = 0;
    png_uint_32 y = 0;
    int unit = PNG_RESOLUTION_UNKNOWN;
    if (png_get_pHYs(png_, info_, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER && x > 0 && y > 0) {
      header.dpiX = dpiFromMetre(x);
      header.dpiY = dpiFromMetre(y);
    }
    return true;
  }

  // After readHeader; pixels has room for the whole picture.
  bool readPixels(std::uint8_t* pixels, std::size_t lineBytes, std::uint32_t heightPx) {
    if (setjmp(png_jmpbuf(png_)) != 0) return false;
    if (png_get_rowbytes(png_, info_) != lineBytes) return false;
    for (int pass = 0; pass < passes_; ++pass) {
      for (std::uint32_t y = 0; y < heightPx; ++y) png_read_row(png_, pixels + y * lineBytes, nullptr);
    }
    return true;
  }

  const char* errorText() const { return error_; }

 private:
  static void onError(png_structp png, png_const_charp text) {
    auto* out = static_cast<char*>(png_get_error_ptr(png));
    std::strncpy(out, text, sizeof error_ - 1);
    png_longjmp(png, 1);
  }
  static void onWarning(png_structp, png_const_charp) {}

  char error_[160] = "";
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  int passes_ = 1;
};

class PngFile final : public SheetFile {
 public:
  explicit PngFile(const std::string& path) : SheetFile(path) {
    const InputFile file = openForReading(path);
    Reader reader;
    if (!reader.readHeader(file.get(), header_)) throw Failure(path + " is broken: " + reader.errorText());
    checkSheetSize(path, header_.widthPx, header_.heightPx);
  }

  int pages() const override { return 1; }
  bool hasResolution() const override { return header_.dpiX > 0; }

  Sheet load(int, int, int) const override {
    const InputFile file = openForReading(path());
    Reader reader;
    Header header;
    if (!reader.readHeader(file.get(), header)) throw Failure(path() + " is broken: " + reader.errorText());
    checkSheetSize(path(), header.widthPx, header.heightPx);
    if (header.channels != 1 && header.channels != 3) throw Failure(path() + " is of a kind that cannot be read");
    Raster pixels(static_cast<int>(header.widthPx), static_cast<int>(header.heightPx), header.channels);
    if (!reader.readPixels(pixels.pixels.data(), pixels.lineBytes(), header.heightPx)) {
      throw Failure(path() + " is broken: " + reader.errorText());
    }
    if (!(header.dpiX > 0)) return {std::move(pixels), kAssumedDpi, kAssumedDpi};
    return {std::move(pixels), header.dpiX, header.dpiY};
  }

 private:
  Header header_;
};

}  // namespace

std::shared_ptr<const SheetFile> openPng(const std::string& path) { return std::make_shared<PngFile>(path); }

}  // namespace vscan
