#include "jpeg_writer.h"

#include <csetjmp>
#include <cstdint>
#include <string>
#include <vector>
// After <cstdio>, which it needs.
#include <jpeglib.h>

#include "exit_codes.h"

namespace qsscan {
namespace {

constexpr int kMaxSidePx = JPEG_MAX_DIMENSION;

struct ErrorManager {
  jpeg_error_mgr base;
  std::jmp_buf jump;
  char message[JMSG_LENGTH_MAX];
};

[[noreturn]] void leave(j_common_ptr info) {
  auto* manager = reinterpret_cast<ErrorManager*>(info->err);
  manager->base.format_message(info, manager->message);
  std::longjmp(manager->jump, 1);
}

void stayQuiet(j_common_ptr) {}

// One line of black and white as bytes of 0 and 255.
void widen(const std::uint8_t* bits, int widthPx, std::uint8_t* bytes) {
  for (int x = 0; x < widthPx; ++x) bytes[x] = (bits[x / 8] >> (7 - x % 8)) & 1 ? 255 : 0;
}

// No object with a destructor may live in this function: the library leaves it by a jump. widened has room for one
// line of a black-and-white page.
bool compress(const Page& page, int quality, std::FILE* stream, const IccProfile* profile, std::uint8_t* widened,
              ErrorManager* manager) {
  jpeg_compress_struct info;
  info.err = jpeg_std_error(&manager->base);
  manager->base.error_exit = leave;
  manager->base.output_message = stayQuiet;
  jpeg_create_compress(&info);
  if (setjmp(manager->jump) != 0) {
    jpeg_destroy_compress(&info);
    return false;
  }
  const bool color = page.bitsPerPixel == 24;
  jpeg_stdio_dest(&info, stream);
  info.image_width = static_cast<JDIMENSION>(page.widthPx);
  info.image_height = static_cast<JDIMENSION>(page.heightPx);
  info.input_components = color ? 3 : 1;
  info.in_color_space = color ? JCS_EXT_BGR : JCS_GRAYSCALE;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  info.density_unit = 1;  // dots per inch
  info.X_density = static_cast<UINT16>(page.dpiX);
  info.Y_density = static_cast<UINT16>(page.dpiY);
  jpeg_start_compress(&info, TRUE);
  if (profile != nullptr) {
    jpeg_write_icc_profile(&info, profile->bytes.data(), static_cast<unsigned>(profile->bytes.size()));
  }
  for (int y = 0; y < page.heightPx; ++y) {
    const std::uint8_t* line = page.line(y);
    if (page.bitsPerPixel == 1) {
      widen(line, page.widthPx, widened);
      line = widened;
    }
    JSAMPROW row = const_cast<JSAMPROW>(line);  // the library's own interface; it only reads
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  return true;
}

}  // namespace

bool fitsJpeg(const Page& page) {
  return page.bitsPerPixel != 1 && page.widthPx <= kMaxSidePx && page.heightPx <= kMaxSidePx;
}

void writeJpeg(const Page& page, int quality, std::FILE* stream, bool withProfile) {
  std::vector<std::uint8_t> widened(page.bitsPerPixel == 1 ? static_cast<std::size_t>(page.widthPx) : 0);
  const IccProfile* profile = withProfile ? page.fittingProfile() : nullptr;
  ErrorManager manager{};
  if (compress(page, quality, stream, profile, widened.data(), &manager)) return;
  throw pageFailure(page, "JPEG", stream, manager.message);
}

}  // namespace qsscan
