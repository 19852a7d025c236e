#include "image/jpeg_errors.h"
#include "sheets/input_file.h"
#include "sheets/sheet_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

struct Header {
  unsigned widthPx = 0;
  unsigned heightPx = 0;
  bool isGrey = false;
  bool isCmyk = false;
  bool isInverted = false;  // CMYK with 255 for no ink, as files with an APP14 segment have it
  double dpiX = 0;          // 0 = not said
  double dpiY = 0;
};

Header headerOf(const jpeg_decompress_struct& info) {
  Header header;
  header.widthPx = info.image_width;
  header.heightPx = info.image_height;
  header.isGrey = info.jpeg_color_space == JCS_GRAYSCALE;
  header.isCmyk = info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK;
  header.isInverted = info.saw_Adobe_marker != FALSE;
  const double perInch = info.density_unit == 1 ? 1.0 : info.density_unit == 2 ? 2.54 : 0.0;
  if (info.saw_JFIF_marker != FALSE && info.X_density > 1 && info.Y_density > 1) {
    header.dpiX = info.X_density * perInch;
    header.dpiY = info.Y_density * perInch;
  }
  return header;
}

// Both functions hold only plain values: the library may jump out of them. False with errors.text set when it did.
bool readHeader(std::FILE* file, JpegErrors& errors, Header& header) {
  jpeg_decompress_struct info{};
  info.err = &errors.manager;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_stdio_src(&info, file);
  jpeg_read_header(&info, TRUE);
  header = headerOf(info);
  jpeg_destroy_decompress(&info);
  return true;
}

// pixels has room for width x height x channels bytes of the header read before.
bool readPixels(std::FILE* file, JpegErrors& errors, const Header& header, std::uint8_t* pixels,
                std::size_t lineBytes) {
  jpeg_decompress_struct info{};
  info.err = &errors.manager;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_stdio_src(&info, file);
  jpeg_read_header(&info, TRUE);
  bool fits = info.image_width == header.widthPx && info.image_height == header.heightPx;
  info.out_color_space = header.isGrey ? JCS_GRAYSCALE : header.isCmyk ? JCS_CMYK : JCS_RGB;
  if (fits) jpeg_start_decompress(&info);
  while (fits && info.output_scanline < info.output_height) {
    JSAMPROW line = pixels + static_cast<std::size_t>(info.output_scanline) * lineBytes;
    jpeg_read_scanlines(&info, &line, 1);
  }
  jpeg_destroy_decompress(&info);
  return fits;
}

Raster cmykToRgb(const Raster& cmyk, int widthPx, bool isInverted) {
  Raster rgb(widthPx, cmyk.heightPx, 3);
  const std::uint8_t* in = cmyk.pixels.data();
  for (std::size_t i = 0; i < rgb.pixels.size(); i += 3, in += 4) {
    for (std::size_t c = 0; c < 3; ++c) {
      const unsigned paper = isInverted ? in[c] : 255u - in[c];
      const unsigned light = isInverted ? in[3] : 255u - in[3];
      rgb.pixels[i + c] = static_cast<std::uint8_t>((paper * light + 127u) / 255u);
    }
  }
  return rgb;
}

class JpegFile final : public SheetFile {
 public:
  explicit JpegFile(const std::string& path) : SheetFile(path) {
    JpegErrors errors;
    if (!readHeader(openForReading(path).get(), errors, header_)) throw Failure(path + " is broken: " + errors.text);
    checkSheetSize(path, header_.widthPx, header_.heightPx);
  }

  int pages() const override { return 1; }
  bool hasResolution() const override { return header_.dpiX > 0; }

  Sheet load(int, int, int) const override {
    const int width = static_cast<int>(header_.widthPx);
    Raster pixels(width, static_cast<int>(header_.heightPx), header_.isGrey ? 1 : header_.isCmyk ? 4 : 3);
    JpegErrors errors;
    if (!readPixels(openForReading(path()).get(), errors, header_, pixels.pixels.data(), pixels.lineBytes())) {
      throw Failure(path() + " is broken: " + (errors.text[0] != 0 ? errors.text : "it has changed"));
    }
    if (errors.endedEarly) throw Failure(path() + " is broken: it ends before its picture does");
    if (header_.isCmyk) pixels = cmykToRgb(pixels, width, header_.isInverted);
    if (!hasResolution()) return {std::move(pixels), kAssumedDpi, kAssumedDpi};
    return {std::move(pixels), header_.dpiX, header_.dpiY};
  }

 private:
  Header header_;
};

}  // namespace

std::shared_ptr<const SheetFile> openJpeg(const std::string& path) { return std::make_shared<JpegFile>(path); }

}  // namespace vscan
