// One palette entry as a BMP file holds it.
#pragma once

#include <cstdint>

struct tagRGBQUAD {
  std::uint8_t rgbBlue;
  std::uint8_t rgbGreen;
  std::uint8_t rgbRed;
  std::uint8_t rgbReserved;
};
static_assert(sizeof(tagRGBQUAD) == 4);
