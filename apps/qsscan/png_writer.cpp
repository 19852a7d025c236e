#include "png_writer.h"

#include <png.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "exit_codes.h"

namespace qsscan {
namespace {

// Half the time of the default level, for files a few percent larger.
constexpr int kCompressionLevel = 4;

struct Error {
  char message[128];
};

[[noreturn]] void leave(png_structp png, png_const_charp message) {
  auto* error = static_cast<Error*>(png_get_error_ptr(png));
  std::snprintf(error->message, sizeof error->message, "%s", message);
  png_longjmp(png, 1);
}

void stayQuiet(png_structp, png_const_charp) {}

png_uint_32 perMetre(int dpi) { return static_cast<png_uint_32>(std::lround(dpi / 0.0254)); }

// No object with a destructor may live in this function: the library leaves it by a jump.
bool encode(png_structp png, png_infop info, const Page& page, std::FILE* stream) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  const bool color = page.bitsPerPixel == 24;
  png_init_io(png, stream);
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_set_compression_level(png, kCompressionLevel);
  png_set_IHDR(png, info, static_cast<png_uint_32>(page.widthPx), static_cast<png_uint_32>(page.heightPx),
               color ? 8 : page.bitsPerPixel, color ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_pHYs(png, info, perMetre(page.dpiX), perMetre(page.dpiY), PNG_RESOLUTION_METER);
  if (const IccProfile* profile = page.fittingProfile(); profile != nullptr) {
    // A profile that the library finds fault with is left out, the page being good without it.
    png_set_benign_errors(png, 1);
    png_set_iCCP(png, info, "scanner", PNG_COMPRESSION_TYPE_BASE, profile->bytes.data(),
                 static_cast<png_uint_32>(profile->bytes.size()));
  }
  png_write_info(png, info);
  if (color) png_set_bgr(png);
  for (int y = 0; y < page.heightPx; ++y) png_write_row(png, page.line(y));
  png_write_end(png, info);
  return true;
}

}  // namespace

void PngWriter::addPage(const Page& page) {
  Error error{};
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error, leave, stayQuiet);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  const bool written = info != nullptr && encode(png, info, page, stream_);
  png_destroy_write_struct(&png, &info);
  if (written) return;
  throw pageFailure(page, "PNG", stream_, error.message);
}

}  // namespace qsscan
