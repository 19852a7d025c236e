// Pictures as the tests compare them, and the files they are kept in.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace e2e {

// 8 bits a sample, top line first, lines unpadded. Black-and-white pictures hold 0 and 255.
struct Picture {
  int widthPx = 0;
  int heightPx = 0;
  int channels = 1;       // 1 grey, 3 red, green, blue
  double dpi = 0;         // 0 not told
  int bitsPerSample = 8;  // of the file it was read from: 1 or 8
  std::vector<std::uint8_t> pixels;

  Picture() = default;
  Picture(int width, int height, int channelCount, double dotsPerInch, std::uint8_t value = 255)
      : widthPx(width), heightPx(height), channels(channelCount), dpi(dotsPerInch), pixels(size(), value) {}

  std::size_t lineBytes() const { return static_cast<std::size_t>(widthPx) * static_cast<std::size_t>(channels); }
  std::size_t size() const { return lineBytes() * static_cast<std::size_t>(heightPx); }
  std::uint8_t* at(int x, int y) {
    return pixels.data() + static_cast<std::size_t>(y) * lineBytes() +
           static_cast<std::size_t>(x) * static_cast<std::size_t>(channels);
  }
  const std::uint8_t* at(int x, int y) const { return const_cast<Picture*>(this)->at(x, y); }
};

// Empty when both have the same size and samples; else a sentence that names the first difference.
std::string difference(const Picture& expected, const Picture& actual);
Picture turnedHalfway(const Picture& picture);
Picture cutOut(const Picture& picture, int left, int top, int widthPx, int heightPx);
// The same picture with one channel, where no pixel has a colour; else as it is.
Picture withoutIdleColor(const Picture& picture);
// A grey picture as its means over squares of that many pixels; what is over at the edges is left out.
Picture meansOf(const Picture& grey, int squarePx);
// The picture in the top left corner of a larger white one.
Picture onWhite(const Picture& picture, int widthPx, int heightPx);
// White from the level on.
Picture blackAndWhite(const Picture& grey, int level);

// Every file holds the picture's resolution. Failures throw std::runtime_error, as those of the readers do.
void writePng(const std::string& path, const Picture& picture);
void writeTiff(const std::string& path, const std::vector<Picture>& pages);
// sampling: horizontal and vertical factor of the luminance.
std::vector<std::uint8_t> encodeJpeg(const Picture& picture, int quality, int horizontal, int vertical);
void writeBytes(const std::string& path, const std::vector<std::uint8_t>& bytes);

// Grey of 1 or 8 bits, or colour; the resolution rounded to whole dots per inch.
Picture readPng(const std::string& path);
// The first page in colour.
Picture readTiff(const std::string& path);
// Every page, with as many channels as it has in the file.
std::vector<Picture> readTiffPages(const std::string& path);
// The same page by page, for a file whose pages do not fit into memory together.
void readTiffPages(const std::string& path, const std::function<void(Picture)>& take);
// A raw PBM, PGM or PPM; the resolution from a comment such as "# 300 x 300 dpi".
Picture readPnm(const std::string& path);
Picture decodeJpeg(const std::uint8_t* data, std::size_t bytes);
Picture readJpeg(const std::string& path);
// A CCITT G4 picture as a PDF holds it; scratch is a file name for its own use.
Picture decodeFaxG4(const std::uint8_t* data, std::size_t bytes, int widthPx, int heightPx, const std::string& scratch);

}  // namespace e2e
