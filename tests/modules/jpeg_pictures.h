// Pictures for tests and benchmarks: drawn, encoded by libjpeg, and decoded by libjpeg's own interface as the
// reference for the module.
#pragma once

#include <csetjmp>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

// clang-format off
#include <cstdio>  // jpeglib.h uses FILE and does not declare it
#include <jpeglib.h>
// clang-format on

namespace module_test {

// Top line first, R,G,B or grey, not padded.
struct Pixels {
  int widthPx = 0;
  int heightPx = 0;
  int parts = 0;
  std::vector<std::uint8_t> bytes;

  std::size_t lineBytes() const { return static_cast<std::size_t>(widthPx) * static_cast<std::size_t>(parts); }
};

// Slopes and some noise: no line is like another, none is mid-grey, all of it survives compression recognisably.
inline Pixels drawPicture(int widthPx, int heightPx, int parts) {
  std::mt19937 random(7);
  Pixels picture{widthPx, heightPx, parts, {}};
  for (int y = 0; y < heightPx; ++y) {
    for (int x = 0; x < widthPx; ++x) {
      for (int part = 0; part < parts; ++part) {
        const unsigned slope = static_cast<unsigned>(x * (3 + part) + y * (7 - 2 * part));
        picture.bytes.push_back(static_cast<std::uint8_t>((slope + random() % 32) % 256));
      }
    }
  }
  return picture;
}

struct Encoding {
  int quality = 90;
  bool progressive = false;
  int restartRows = 0;
  bool fullColor = false;              // no part is stored at half the width and height
  J_COLOR_SPACE colors = JCS_UNKNOWN;  // unknown: by the number of parts
  int dpi = 300;                       // 0 writes none
};

inline std::vector<std::uint8_t> encodeJpeg(const Pixels& picture, const Encoding& how = {}) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* file = nullptr;
  unsigned long fileBytes = 0;
  jpeg_mem_dest(&info, &file, &fileBytes);
  info.image_width = static_cast<JDIMENSION>(picture.widthPx);
  info.image_height = static_cast<JDIMENSION>(picture.heightPx);
  info.input_components = picture.parts;
  info.in_color_space = picture.parts == 1 ? JCS_GRAYSCALE : picture.parts == 4 ? JCS_CMYK : JCS_RGB;
  jpeg_set_defaults(&info);
  if (how.colors != JCS_UNKNOWN) jpeg_set_colorspace(&info, how.colors);
  jpeg_set_quality(&info, how.quality, TRUE);
  if (how.progressive) jpeg_simple_progression(&info);
  if (how.fullColor) info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
  info.restart_in_rows = how.restartRows;
  if (how.dpi == 0) {
    info.write_JFIF_header = FALSE;
  } else {
    info.density_unit = 1;
    info.X_density = info.Y_density = static_cast<UINT16>(how.dpi);
  }
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    auto* row = const_cast<std::uint8_t*>(picture.bytes.data()) + info.next_scanline * picture.lineBytes();
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  std::vector<std::uint8_t> jpeg(file, file + fileBytes);
  jpeg_destroy_compress(&info);
  std::free(file);
  return jpeg;
}

// libjpeg's own decode, top line first. False where libjpeg gives up.
inline bool decodeWithLibjpeg(const std::vector<std::uint8_t>& jpeg, Pixels& picture) {
  struct Errors : jpeg_error_mgr {
    std::jmp_buf jump;
  } errors{};
  jpeg_decompress_struct info{};
  info.err = jpeg_std_error(&errors);
  errors.error_exit = [](j_common_ptr common) { std::longjmp(static_cast<Errors*>(common->err)->jump, 1); };
  errors.output_message = [](j_common_ptr) {};
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, jpeg.data(), jpeg.size());
  jpeg_read_header(&info, TRUE);
  info.out_color_space = info.num_components == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_start_decompress(&info);
  picture.widthPx = static_cast<int>(info.output_width);
  picture.heightPx = static_cast<int>(info.output_height);
  picture.parts = info.output_components;
  picture.bytes.resize(picture.lineBytes() * info.output_height);
  while (info.output_scanline < info.output_height) {
    std::uint8_t* row = picture.bytes.data() + info.output_scanline * picture.lineBytes();
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  return true;
}

// Where the frame header stores the height, high byte first; the width follows it.
inline std::size_t heightPlace(const std::vector<std::uint8_t>& jpeg) {
  std::size_t i = 2;
  while (i + 9 < jpeg.size() && jpeg[i] == 0xFF) {
    const int marker = jpeg[i + 1];
    if (marker == 0xC0 || marker == 0xC1 || marker == 0xC2) return i + 5;
    i += 2u + static_cast<std::size_t>(jpeg[i + 2] * 256 + jpeg[i + 3]);
  }
  throw std::logic_error("no frame header");
}

inline std::vector<std::uint8_t> withHeight(std::vector<std::uint8_t> jpeg, int heightPx) {
  const std::size_t at = heightPlace(jpeg);
  jpeg[at] = static_cast<std::uint8_t>(heightPx >> 8);
  jpeg[at + 1] = static_cast<std::uint8_t>(heightPx);
  return jpeg;
}

}  // namespace module_test
