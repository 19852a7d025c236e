#include <png.h>

#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "picture.h"
#include "process.h"
// After <cstdio>, which it needs.
#include <jpeglib.h>

namespace e2e {
namespace {

constexpr double kInchesPerMetre = 0.0254;

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error(what); }

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File open(const std::string& path, const char* mode) {
  File file(std::fopen(path.c_str(), mode));
  if (!file) fail(path + " cannot be opened");
  return file;
}

// The tests' own pictures and the output under test are small: a broken one ends the test by an exception, thrown
// from the library's error call.
[[noreturn]] void onPngError(png_structp, png_const_charp text) { fail(std::string("PNG: ") + text); }
void onPngWarning(png_structp, png_const_charp) {}
[[noreturn]] void onJpegError(j_common_ptr info) {
  char text[JMSG_LENGTH_MAX];
  info->err->format_message(info, text);
  fail(std::string("JPEG: ") + text);
}

std::uint32_t toUnsigned(int value) { return static_cast<std::uint32_t>(value); }

}  // namespace

void writePng(const std::string& path, const Picture& picture) {
  const File file = open(path, "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, onPngError, onPngWarning);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file.get());
  png_set_compression_level(png, 1);
  png_set_filter(png, 0, PNG_FILTER_SUB);
  png_set_IHDR(png, info, toUnsigned(picture.widthPx), toUnsigned(picture.heightPx), 8,
               picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  const auto perMetre = static_cast<png_uint_32>(std::lround(picture.dpi / kInchesPerMetre));
  if (picture.dpi > 0) png_set_pHYs(png, info, perMetre, perMetre, PNG_RESOLUTION_METER);
  png_write_info(png, info);
  for (int y = 0; y < picture.heightPx; ++y) png_write_row(png, picture.at(0, y));
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
}

Picture readPng(const std::string& path) {
  const File file = open(path, "rb");
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, onPngError, onPngWarning);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file.get());
  png_read_info(png, info);
  const int bits = png_get_bit_depth(png, info);
  png_set_expand(png);
  png_read_update_info(png, info);
  Picture picture(static_cast<int>(png_get_image_width(png, info)), static_cast<int>(png_get_image_height(png, info)),
                  png_get_channels(png, info), 0);
  picture.bitsPerSample = bits;
  png_uint_32 x = 0;
  png_uint_32 y = 0;
  int unit = 0;
  if (png_get_pHYs(png, info, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER && x == y) {
    picture.dpi = std::round(x * kInchesPerMetre);
  }
  for (int line = 0; line < picture.heightPx; ++line) png_read_row(png, picture.at(0, line), nullptr);
  png_read_end(png, nullptr);
  png_destroy_read_struct(&png, &info, nullptr);
  return picture;
}

std::vector<std::uint8_t> encodeJpeg(const Picture& picture, int quality, int horizontal, int vertical) {
  jpeg_error_mgr errors{};
  jpeg_compress_struct info{};
  info.err = jpeg_std_error(&errors);
  errors.error_exit = onJpegError;
  jpeg_create_compress(&info);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &bytes, &size);
  info.image_width = toUnsigned(picture.widthPx);
  info.image_height = toUnsigned(picture.heightPx);
  info.input_components = picture.channels;
  info.in_color_space = picture.channels == 3 ? JCS_RGB : JCS_GRAYSCALE;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  info.comp_info[0].h_samp_factor = horizontal;
  info.comp_info[0].v_samp_factor = vertical;
  info.density_unit = 1;
  info.X_density = info.Y_density = static_cast<UINT16>(picture.dpi);
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    auto* line = const_cast<JSAMPROW>(picture.at(0, static_cast<int>(info.next_scanline)));
    jpeg_write_scanlines(&info, &line, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  std::vector<std::uint8_t> file(bytes, bytes + size);
  std::free(bytes);
  return file;
}

Picture decodeJpeg(const std::uint8_t* data, std::size_t bytes) {
  jpeg_error_mgr errors{};
  jpeg_decompress_struct info{};
  info.err = jpeg_std_error(&errors);
  errors.error_exit = onJpegError;
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, data, static_cast<unsigned long>(bytes));
  jpeg_read_header(&info, TRUE);
  jpeg_start_decompress(&info);
  Picture picture(static_cast<int>(info.output_width), static_cast<int>(info.output_height), info.output_components, 0);
  if (info.density_unit == 1 && info.X_density == info.Y_density) picture.dpi = info.X_density;
  while (info.output_scanline < info.output_height) {
    JSAMPROW line = picture.at(0, static_cast<int>(info.output_scanline));
    jpeg_read_scanlines(&info, &line, 1);
  }
  const long warnings = errors.num_warnings;
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  if (warnings != 0) fail("the JPEG is damaged");
  return picture;
}

Picture readJpeg(const std::string& path) {
  const std::string content = contentOf(path);
  return decodeJpeg(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
}

void writeBytes(const std::string& path, const std::vector<std::uint8_t>& bytes) {
  const File file = open(path, "wb");
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) fail(path + " cannot be written");
}

}  // namespace e2e
