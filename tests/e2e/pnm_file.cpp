#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "picture.h"
#include "process.h"

namespace e2e {

Picture readPnm(const std::string& path) {
  const std::string content = contentOf(path);
  std::istringstream in(content);
  const auto fail = [&path]() { throw std::runtime_error(path + " is broken"); };
  std::string line;
  std::getline(in, line);
  if (line != "P4" && line != "P5" && line != "P6") fail();
  const int kind = line[1] - '0';
  std::getline(in, line);
  int dpiX = 0;
  int dpiY = 0;
  if (std::sscanf(line.c_str(), "# %d x %d dpi", &dpiX, &dpiY) != 2 || dpiX != dpiY) fail();
  int width = 0;
  int height = 0;
  int largest = 255;
  in >> width >> height;
  if (kind != 4) in >> largest;
  if (!in || in.get() != '\n' || largest != 255) fail();

  Picture picture(width, height, kind == 6 ? 3 : 1, dpiX);
  picture.bitsPerSample = kind == 4 ? 1 : 8;
  const auto start = static_cast<std::size_t>(in.tellg());
  const std::size_t lineBytes = kind == 4 ? (static_cast<std::size_t>(width) + 7) / 8 : picture.lineBytes();
  if (content.size() != start + lineBytes * static_cast<std::size_t>(height)) fail();
  for (int y = 0; y < height; ++y) {
    const auto* from =
        reinterpret_cast<const std::uint8_t*>(content.data()) + start + lineBytes * static_cast<std::size_t>(y);
    for (std::size_t i = 0; i < picture.lineBytes(); ++i) {
      picture.at(0, y)[i] = kind != 4 ? from[i] : (from[i / 8] >> (7 - i % 8) & 1) != 0 ? 0 : 255;
    }
  }
  return picture;
}

}  // namespace e2e
