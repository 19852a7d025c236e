#include "likeness.h"

#include <leptonica/allheaders.h>

#include <cstring>
#include <memory>
#include <stdexcept>

namespace e2e {
namespace {

struct PixCloser {
  void operator()(PIX* pix) const { pixDestroy(&pix); }
};
using Pix = std::unique_ptr<PIX, PixCloser>;

Pix pixOf(const Picture& picture) {
  static const int quiet = setMsgSeverity(L_SEVERITY_WARNING);  // once: what went well need not be told
  static_cast<void>(quiet);
  Pix pix(pixCreate(picture.widthPx, picture.heightPx, picture.channels == 3 ? 32 : 8));
  if (!pix) throw std::runtime_error("there is no room for the picture");
  l_uint32* line = pixGetData(pix.get());
  for (int y = 0; y < picture.heightPx; ++y, line += pixGetWpl(pix.get())) {
    const std::uint8_t* from = picture.at(0, y);
    for (int x = 0; x < picture.widthPx; ++x) {
      if (picture.channels == 3) {
        composeRGBPixel(from[3 * x], from[3 * x + 1], from[3 * x + 2], line + x);
      } else {
        SET_DATA_BYTE(line, x, from[x]);
      }
    }
  }
  return pix;
}

Picture pictureOf(PIX* pix, double dpi) {
  Picture picture(pixGetWidth(pix), pixGetHeight(pix), pixGetDepth(pix) == 32 ? 3 : 1, dpi);
  const l_uint32* line = pixGetData(pix);
  for (int y = 0; y < picture.heightPx; ++y, line += pixGetWpl(pix)) {
    std::uint8_t* to = picture.at(0, y);
    for (int x = 0; x < picture.widthPx; ++x) {
      if (picture.channels == 3) {
        l_int32 rgb[3];
        extractRGBValues(line[x], &rgb[0], &rgb[1], &rgb[2]);
        for (int c = 0; c < 3; ++c) to[3 * x + c] = static_cast<std::uint8_t>(rgb[c]);
      } else {
        to[x] = static_cast<std::uint8_t>(GET_DATA_BYTE(line, x));
      }
    }
  }
  return picture;
}

bool canCompare(const Picture& a, const Picture& b) {
  return a.widthPx == b.widthPx && a.heightPx == b.heightPx && a.channels == b.channels && !a.pixels.empty();
}

}  // namespace

double psnrDb(const Picture& a, const Picture& b) {
  if (!canCompare(a, b)) return 0;
  l_float32 ratio = 0;
  if (pixGetPSNR(pixOf(a).get(), pixOf(b).get(), 1, &ratio) != 0) throw std::runtime_error("no ratio");
  return ratio;
}

double visiblyDifferent(const Picture& a, const Picture& b) {
  if (!canCompare(a, b)) return 1;
  constexpr int kEveryPixel = 1;
  constexpr int kNeighbours = 3;  // the brightest of three by three
  constexpr int kThirdOfRange = 85;
  l_float32 share = 1;
  if (pixGetPerceptualDiff(pixOf(a).get(), pixOf(b).get(), kEveryPixel, kNeighbours, kThirdOfRange, &share, nullptr,
                           nullptr) != 0) {
    throw std::runtime_error("no difference");
  }
  return share;
}

Picture greyOf(const Picture& picture) {
  if (picture.channels == 1) return picture;
  const Pix grey(pixConvertRGBToLuminance(pixOf(picture).get()));
  if (!grey) throw std::runtime_error("the picture cannot be made grey");
  return pictureOf(grey.get(), picture.dpi);
}

Picture shrunk(const Picture& picture, int times) {
  if (times == 1) return picture;
  // What is over at the edges belongs to no whole pixel.
  const Picture whole = cutOut(picture, 0, 0, picture.widthPx / times * times, picture.heightPx / times * times);
  const Pix small(pixScaleAreaMapToSize(pixOf(whole).get(), whole.widthPx / times, whole.heightPx / times));
  if (!small) throw std::runtime_error("the picture cannot be shrunk");
  return pictureOf(small.get(), picture.dpi / times);
}

}  // namespace e2e
