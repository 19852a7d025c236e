// Sheets for the tests: drawn pictures, written as files into a folder that goes with the test.
#pragma once
#include <filesystem>
#include <string>
#include <vector>

#include "image/raster.h"

namespace vscan::test {

// A folder of its own for each object, removed with it.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

// A picture in which no two lines and no two columns are alike.
Raster patternOf(int widthPx, int heightPx, int channels);

// dpi 0 leaves the resolution out of the file.
void writePng(const std::string& path, const Raster& picture, double dpi);
void writeTiff(const std::string& path, const std::vector<Raster>& pages, float dpi);
void writeFile(const std::string& path, const std::string& bytes);

// A PDF of empty pages of that size with a black bar along the top edge, an inch high.
void writePdf(const std::string& path, int pages, int widthPoints, int heightPoints);

// Decodes a JPEG file; no pixels when it is none.
struct DecodedJpeg {
  Raster picture;
  int dpiX = 0;
  int dpiY = 0;
  int horizontalFactor = 0;  // of the first component
  int verticalFactor = 0;
};
DecodedJpeg decodeJpeg(const std::vector<std::uint8_t>& file);

// The largest and the mean difference between two pictures of the same shape.
struct Difference {
  int largest = 0;
  double mean = 0;
};
Difference differenceOf(const Raster& one, const Raster& other);

}  // namespace vscan::test
