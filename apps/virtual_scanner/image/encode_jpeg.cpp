#include "image/encode_jpeg.h"

#include <cstdlib>
#include <string>

#include "image/jpeg_errors.h"
#include "support/failure.h"

namespace vscan {
namespace {

struct Factors {
  int horizontal;
  int vertical;
};

Factors factorsOf(JpegSampling sampling) {
  switch (sampling) {
    case JpegSampling::Yuv422:
      return {2, 1};
    case JpegSampling::Yuv411:
      return {4, 1};
    case JpegSampling::Yuv420:
      return {2, 2};
    case JpegSampling::Yuv444:
    case JpegSampling::Grey:
      break;
  }
  return {1, 1};
}

struct Output {
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
};

// Holds only plain values: the library may jump out of it. False with errors.text set when it did.
bool compress(const Raster& raster, int quality, Factors factors, int dpiX, int dpiY, JpegErrors& errors, Output& out) {
  jpeg_compress_struct info{};
  info.err = &errors.manager;
  if (setjmp(errors.jump) != 0) {
    jpeg_destroy_compress(&info);
    return false;
  }
  jpeg_create_compress(&info);
  jpeg_mem_dest(&info, &out.bytes, &out.size);
  info.image_width = static_cast<JDIMENSION>(raster.widthPx);
  info.image_height = static_cast<JDIMENSION>(raster.heightPx);
  info.input_components = raster.channels;
  info.in_color_space = raster.channels == 3 ? JCS_RGB : JCS_GRAYSCALE;
  jpeg_set_defaults(&info);
  jpeg_set_quality(&info, quality, TRUE);
  info.density_unit = 1;
  info.X_density = static_cast<UINT16>(dpiX);
  info.Y_density = static_cast<UINT16>(dpiY);
  info.comp_info[0].h_samp_factor = factors.horizontal;
  info.comp_info[0].v_samp_factor = factors.vertical;
  jpeg_start_compress(&info, TRUE);
  while (info.next_scanline < info.image_height) {
    auto* line = const_cast<JSAMPROW>(raster.line(static_cast<int>(info.next_scanline)));
    jpeg_write_scanlines(&info, &line, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  return true;
}

}  // namespace

int jpegQuality(int rate) { return rate <= 50 ? 95 - rate / 5 : 85 - (rate - 50) * 35 / 50; }

Bytes encodeJpeg(const Raster& raster, int quality, JpegSampling sampling, int dpiX, int dpiY) {
  JpegErrors errors;
  Output out;
  const Factors factors = raster.channels == 3 ? factorsOf(sampling) : Factors{1, 1};
  const bool isDone = compress(raster, quality, factors, dpiX, dpiY, errors, out);
  Bytes file;
  if (isDone) file.assign(out.bytes, out.bytes + out.size);
  std::free(out.bytes);
  if (!isDone) throw Failure(std::string("the page could not be written as JPEG: ") + errors.text);
  return file;
}

}  // namespace vscan
