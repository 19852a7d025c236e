#include "sheet_makers.h"

#include <png.h>
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "image/jpeg_errors.h"

namespace vscan::test {

TempFolder::TempFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "qs-virtual-scanner-XXXXXX").string();
  if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
  path_ = name;
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

Raster patternOf(int widthPx, int heightPx, int channels) {
  Raster picture(widthPx, heightPx, channels);
  std::size_t i = 0;
  for (int y = 0; y < heightPx; ++y) {
    for (int x = 0; x < widthPx; ++x) {
      for (int c = 0; c < channels; ++c) {
        picture.pixels[i++] = static_cast<std::uint8_t>((x * 7 + y * 13 + c * 61 + x * y / 5) & 0xFF);
      }
    }
  }
  return picture;
}

void writePng(const std::string& path, const Raster& picture, double dpi) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, static_cast<png_uint_32>(picture.widthPx), static_cast<png_uint_32>(picture.heightPx), 8,
               picture.channels == 3 ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_GRAY, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (dpi > 0) {
    const auto perMetre = static_cast<png_uint_32>(std::lround(dpi / 0.0254));
    png_set_pHYs(png, info, perMetre, perMetre, PNG_RESOLUTION_METER);
  }
  png_set_compression_level(png, 1);
  png_write_info(png, info);
  for (int y = 0; y < picture.heightPx; ++y) png_write_row(png, picture.line(y));
  png_write_end(png, nullptr);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

void writeTiff(const std::string& path, const std::vector<Raster>& pages, float dpi) {
  TIFF* tiff = TIFFOpen(path.c_str(), "w");
  for (const Raster& page : pages) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.widthPx);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.heightPx);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.channels);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, page.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
    if (dpi > 0) {
      TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
      TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dpi);
      TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dpi);
    }
    for (int y = 0; y < page.heightPx; ++y) {
      TIFFWriteScanline(tiff, const_cast<std::uint8_t*>(page.line(y)), static_cast<std::uint32_t>(y), 0);
    }
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::filesystem::remove(path);  // some file systems wait for the disk when a file is cut to nothing and written anew
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void writePdf(const std::string& path, int pages, int widthPoints, int heightPoints) {
  std::ostringstream pdf;
  std::vector<long> places;
  const auto object = [&](const std::string& text) {
    places.push_back(static_cast<long>(pdf.tellp()));
    pdf << places.size() << " 0 obj\n" << text << "\nendobj\n";
  };
  pdf << "%PDF-1.4\n";
  std::string kids;
  for (int page = 0; page < pages; ++page) kids += std::to_string(page + 4) + " 0 R ";
  object("<< /Type /Catalog /Pages 2 0 R >>");
  object("<< /Type /Pages /Kids [ " + kids + "] /Count " + std::to_string(pages) + " >>");
  const std::string drawing = "0 " + std::to_string(heightPoints - 72) + " " + std::to_string(widthPoints) + " 72 re f";
  object("<< /Length " + std::to_string(drawing.size()) + " >>\nstream\n" + drawing + "\nendstream");
  for (int page = 0; page < pages; ++page) {
    object("<< /Type /Page /Parent 2 0 R /Contents 3 0 R /MediaBox [ 0 0 " + std::to_string(widthPoints) + " " +
           std::to_string(heightPoints) + " ] >>");
  }
  const long xref = static_cast<long>(pdf.tellp());
  pdf << "xref\n0 " << places.size() + 1 << "\n0000000000 65535 f \n";
  for (const long place : places) {
    char line[32];
    std::snprintf(line, sizeof line, "%010ld 00000 n \n", place);
    pdf << line;
  }
  pdf << "trailer\n<< /Size " << places.size() + 1 << " /Root 1 0 R >>\nstartxref\n" << xref << "\n%%EOF\n";
  writeFile(path, pdf.str());
}

namespace {

bool decode(const std::vector<std::uint8_t>& file, JpegErrors& errors, DecodedJpeg* out) {
  jpeg_decompress_struct info{};
  info.err = &errors.manager;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_decompress(&info);
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&info, TRUE);
  out->dpiX = info.density_unit == 1 ? info.X_density : 0;
  out->dpiY = info.density_unit == 1 ? info.Y_density : 0;
  out->horizontalFactor = info.comp_info[0].h_samp_factor;
  out->verticalFactor = info.comp_info[0].v_samp_factor;
  out->picture = Raster(static_cast<int>(info.image_width), static_cast<int>(info.image_height), info.num_components);
  jpeg_start_decompress(&info);
  while (info.output_scanline < info.output_height) {
    JSAMPROW line = out->picture.line(static_cast<int>(info.output_scanline));
    jpeg_read_scanlines(&info, &line, 1);
  }
  jpeg_destroy_decompress(&info);
  return true;
}

}  // namespace

DecodedJpeg decodeJpeg(const std::vector<std::uint8_t>& file) {
  JpegErrors errors;
  DecodedJpeg out;
  if (!decode(file, errors, &out)) return {};
  return out;
}

Difference differenceOf(const Raster& one, const Raster& other) {
  Difference difference;
  if (one.pixels.size() != other.pixels.size() || one.pixels.empty()) return {255, 255};
  double sum = 0;
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    const int d = std::abs(one.pixels[i] - other.pixels[i]);
    difference.largest = std::max(difference.largest, d);
    sum += d;
  }
  difference.mean = sum / static_cast<double>(one.pixels.size());
  return difference;
}

}  // namespace vscan::test
