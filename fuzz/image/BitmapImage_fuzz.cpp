// Every operation on one image, over any bytes: the first ones choose operation and numbers, the rest is the image.
//
//   0 operation   1 switches: 1 flag of the operation, 2 set the height too, 4 sign as a BMP, 8 and 16 a depth
//   2 four numbers of 32 bits   18 the image
#include <algorithm>
#include <cstring>
#include <vector>

#include "fuzz/touch.h"
#include "image/BitmapImage.h"
#include "image/bmp_lines.h"

namespace {

constexpr std::size_t kNumbers = 4;
constexpr std::size_t kChoiceBytes = 2 + 4 * kNumbers;

// Signature and depth by choice, since arbitrary bytes hardly ever come upon them.
void dress(std::vector<unsigned char>& bytes, unsigned switches) {
  if ((switches & 4) == 0 || bytes.size() < 54) return;
  bytes[0] = 'B';
  bytes[1] = 'M';
  constexpr unsigned char kDepths[] = {0, 1, 8, 24};
  const unsigned char depth = kDepths[switches >> 3 & 3];
  if (depth == 0) return;
  bytes[28] = depth;
  bytes[29] = 0;
}

void change(CBitmapImage& image, unsigned operation, bool flag, const std::uint32_t (&numbers)[kNumbers]) {
  const auto first = static_cast<int>(numbers[0]);
  switch (operation % 10) {
    case 0:
      image.InvertWidth();
      break;
    case 1:
      image.InvertHeight();
      break;
    case 2:
      image.InvertRgbArray();
      break;
    case 3:
      image.InvertPixelFlavor();
      break;
    case 4:
      image.TrimBmpPageWidth(first);
      break;
    case 5:
      image.TrimBmpPageHeight(first, flag);
      break;
    case 6:
      image.FillEdge(flag, numbers[0], numbers[1], numbers[2], numbers[3]);
      break;
    case 7:
      image.FillEdgeOf1BitsImage(flag, numbers[0], numbers[1], numbers[2], numbers[3]);
      break;
    case 8:
      image.FillEdgeOfMultiBitsImage(flag, numbers[0], numbers[1], numbers[2], numbers[3]);
      break;
    default:
      break;
  }
}

// What the accessors answer must lie inside the image.
void read(CBitmapImage& image, unsigned char* data, unsigned size) {
  unsigned pixelBytes = 0;
  const unsigned char* const pixels = image.GetBmpPixelDataPointer(data, size, &pixelBytes);
  if (pixels != nullptr && image.IsBmpData(data, size)) touchAll(pixels, pixelBytes);
  const auto lines = orvalle_scan_api::bmpLines(data, size);
  if (lines.count > 0) touchAll(lines.first, lines.count * lines.lineBytes);
  image.GetWhiteDataValue(data, size);
  image.GetColorPaletteIndexOfBlack(data, size);
  image.GetColorPaletteIndexOfWhite(data, size);
  image.IsChocolatePixelFlavor();
  image.IsVanillaPixelFlavor();
  image.GetResolutionX(data, size);
  image.GetResolutionY(data, size);
  if (image.GetPixelDataSize(data, size) != 0 && size < 54) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < kChoiceBytes || size > 20000) return 0;
  std::uint32_t numbers[kNumbers];
  std::memcpy(numbers, data + 2, sizeof numbers);
  // A block of its own, so that a sanitizer sees every byte too far.
  std::vector<unsigned char> bytes(data + kChoiceBytes, data + size);
  dress(bytes, data[1]);
  const auto imageBytes = static_cast<unsigned>(bytes.size());
  CBitmapImage image(bytes.data(), imageBytes);
  read(image, bytes.data(), imageBytes);
  change(image, data[0], (data[1] & 1) != 0, numbers);
  read(image, bytes.data(), imageBytes);
  if ((data[1] & 2) != 0) {
    image.SetHeightPixel(bytes.data(), imageBytes, static_cast<int>(numbers[1]));
    read(image, bytes.data(), imageBytes);
  }
  return 0;
}
