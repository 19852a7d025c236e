#include "pix.h"

#include <cstring>
#include <vector>

namespace image_enhance {
namespace {

Pix* mutablePix(const Pix& pix) { return const_cast<Pix*>(&pix); }

l_uint32* words(const Pix& pix, int y) {
  return pixGetData(mutablePix(pix)) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(mutablePix(pix));
}

// Leptonica keeps pixels in words whose first pixel is the highest byte.
l_uint32 wordOf(const std::uint8_t* bytes) {
  return static_cast<l_uint32>(bytes[0]) << 24 | static_cast<l_uint32>(bytes[1]) << 16 |
         static_cast<l_uint32>(bytes[2]) << 8 | bytes[3];
}

void bytesOf(l_uint32 word, std::uint8_t* bytes) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

}  // namespace

PixPtr owned(Pix* pix) {
  if (pix == nullptr) throw LibraryFailure();
  return PixPtr(pix);
}

BoxaPtr owned(Boxa* boxes) {
  if (boxes == nullptr) throw LibraryFailure();
  return BoxaPtr(boxes);
}

PixPtr grayPix(const Page& page) {
  PixPtr pix = owned(pixCreate(page.widthPx, page.heightPx, 8));
  const auto wordsPerLine = static_cast<std::size_t>(pixGetWpl(pix.get()));
  std::vector<std::uint8_t> line(wordsPerLine * 4);
  for (int y = 0; y < page.heightPx; ++y) {
    brightnessOfLine(page, y, line.data());
    l_uint32* const to = words(*pix, y);
    for (std::size_t i = 0; i < wordsPerLine; ++i) to[i] = wordOf(&line[4 * i]);
  }
  return pix;
}

PixPtr inkBelow(const Page& page, int level) {
  PixPtr pix = owned(pixCreate(page.widthPx, page.heightPx, 1));
  const auto wordsPerLine = static_cast<std::size_t>(pixGetWpl(pix.get()));
  std::vector<std::uint8_t> line(wordsPerLine * (page.isMono() ? 4 : 32), 0xFF);
  for (int y = 0; y < page.heightPx; ++y) {
    l_uint32* const to = words(*pix, y);
    if (page.isMono()) {
      std::memcpy(line.data(), page.line(y), page.lineBytes());
      for (std::size_t i = 0; i < wordsPerLine; ++i) to[i] = ~wordOf(&line[4 * i]);
      continue;
    }
    brightnessOfLine(page, y, line.data());
    for (std::size_t i = 0; i < wordsPerLine; ++i) {
      l_uint32 word = 0;
      for (std::size_t bit = 0; bit < 32; ++bit) word = word << 1 | (line[32 * i + bit] < level ? 1u : 0u);
      to[i] = word;
    }
  }
  pixSetPadBits(pix.get(), 0);
  return pix;
}

Page monoPage(const PageForm& form, const Pix& ink) {
  PageForm mono = form;
  mono.widthPx = pixGetWidth(mutablePix(ink));
  mono.heightPx = pixGetHeight(mutablePix(ink));
  mono.bitsPerPixel = 1;
  Page page(mono);
  const auto wordsPerLine = static_cast<std::size_t>(pixGetWpl(mutablePix(ink)));
  std::vector<std::uint8_t> line(wordsPerLine * 4);
  for (int y = 0; y < page.heightPx; ++y) {
    const l_uint32* const from = words(ink, y);
    for (std::size_t i = 0; i < wordsPerLine; ++i) bytesOf(~from[i], &line[4 * i]);
    std::memcpy(page.line(y), line.data(), page.lineBytes());
  }
  return page;
}

}  // namespace image_enhance
