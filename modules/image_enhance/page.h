// A page while it is enhanced: top line first, lines not padded, colours B,G,R, a set mono bit white.
// Threads: none of its own; one caller at a time.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace image_enhance {

// Larger pages are refused before any memory is taken.
inline constexpr std::size_t kMaxPageBytes = std::size_t{1} << 30;
inline constexpr int kMaxSidePx = 1 << 20;

enum class Along { Width, Height };

struct PageForm {
  int widthPx = 0;
  int heightPx = 0;
  int bitsPerPixel = 0;  // 1, 8 or 24
  int dpiX = 0;          // as the store has them, of any value
  int dpiY = 0;
  std::uint32_t pixelsPerMetreX = 0;  // as the BMP header has them
  std::uint32_t pixelsPerMetreY = 0;

  bool isMono() const { return bitsPerPixel == 1; }
  bool isColor() const { return bitsPerPixel == 24; }
  int channels() const { return isColor() ? 3 : 1; }
  std::size_t lineBytes() const {
    return (static_cast<std::size_t>(widthPx) * static_cast<std::size_t>(bitsPerPixel) + 7) / 8;
  }
  std::size_t pixelBytes() const { return lineBytes() * static_cast<std::size_t>(heightPx); }

  // The resolution in one direction, for lengths on the paper: that of the other one where it is not told, 300 where
  // neither is, and within what scanners have.
  int dpi(Along along) const {
    const int own = along == Along::Width ? dpiX : dpiY;
    const int told = own > 0 ? own : std::max(dpiX, dpiY);
    return told <= 0 ? 300 : std::clamp(told, 50, 4800);
  }
  // A length on the paper in pixels, to the nearest.
  int pxOfMm(double mm, Along along) const { return static_cast<int>(std::lround(mm * dpi(along) / 25.4)); }
};

struct Page : PageForm {
  Page() = default;
  // Room for the lines, as they happen to be.
  explicit Page(const PageForm& form)
      : PageForm(form), pixels(std::make_unique_for_overwrite<std::uint8_t[]>(form.pixelBytes())) {}

  std::uint8_t* line(int y) { return pixels.get() + static_cast<std::size_t>(y) * lineBytes(); }
  const std::uint8_t* line(int y) const { return pixels.get() + static_cast<std::size_t>(y) * lineBytes(); }

  std::unique_ptr<std::uint8_t[]> pixels;
};

// The brightness of a colour, in the weights that the core uses for a colour tape.
inline std::uint8_t luma(const std::uint8_t* bgr) {
  return static_cast<std::uint8_t>((117u * bgr[0] + 601u * bgr[1] + 306u * bgr[2]) >> 10);
}

// The brightness of one line, a byte for each pixel.
void brightnessOfLine(const Page& page, int y, std::uint8_t* out);

// The brightness of a page as a page of its own; a mono page has black and white.
Page grayOf(const Page& page);

}  // namespace image_enhance
