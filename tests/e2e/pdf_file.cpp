#include "pdf_file.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <mutex>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <stdexcept>

namespace e2e {
namespace {

constexpr double kMmPerPoint = 25.4 / 72;

Picture decode(QPDFObjectHandle image, const PdfPage& page, int widthPx, int heightPx, const std::string& path) {
  if (page.filter == "/DCTDecode") {
    const auto data = image.getRawStreamData();
    return decodeJpeg(data->getBuffer(), data->getSize());
  }
  if (page.filter == "/CCITTFaxDecode") {
    const auto data = image.getRawStreamData();
    return decodeFaxG4(data->getBuffer(), data->getSize(), widthPx, heightPx, path + ".g4.tif");
  }
  const auto data = image.getStreamData(qpdf_dl_specialized);
  const bool isColor = image.getDict().getKey("/ColorSpace").getName() == "/DeviceRGB";
  Picture picture(widthPx, heightPx, isColor ? 3 : 1, 0);
  picture.bitsPerSample = page.bitsPerSample;
  const std::size_t lineBytes = page.bitsPerSample == 8 ? picture.lineBytes() : (picture.lineBytes() + 7) / 8;
  if (data->getSize() != lineBytes * static_cast<std::size_t>(heightPx)) {
    throw std::runtime_error("the picture has the wrong size");
  }
  for (int y = 0; y < heightPx; ++y) {
    const std::uint8_t* line = data->getBuffer() + static_cast<std::size_t>(y) * lineBytes;
    if (page.bitsPerSample == 8) {
      std::memcpy(picture.at(0, y), line, lineBytes);
      continue;
    }
    for (int x = 0; x < widthPx; ++x) *picture.at(x, y) = (line[x / 8] >> (7 - x % 8) & 1) != 0 ? 255 : 0;
  }
  return picture;
}

PdfPage readPage(QPDFPageObjectHelper helper, const std::string& path) {
  PdfPage page;
  QPDFObjectHandle box = helper.getAttribute("/MediaBox", false);
  page.widthMm = (box.getArrayItem(2).getNumericValue() - box.getArrayItem(0).getNumericValue()) * kMmPerPoint;
  page.heightMm = (box.getArrayItem(3).getNumericValue() - box.getArrayItem(1).getNumericValue()) * kMmPerPoint;
  auto images = helper.getImages();
  if (images.size() != 1) throw std::runtime_error("a page holds " + std::to_string(images.size()) + " pictures");
  QPDFObjectHandle image = images.begin()->second;
  QPDFObjectHandle dictionary = image.getDict();
  page.filter = dictionary.getKey("/Filter").getName();
  page.bitsPerSample = dictionary.getKey("/BitsPerComponent").getIntValueAsInt();
  const int widthPx = dictionary.getKey("/Width").getIntValueAsInt();
  const int heightPx = dictionary.getKey("/Height").getIntValueAsInt();
  page.picture = decode(image, page, widthPx, heightPx, path);
  if (page.picture.widthPx != widthPx || page.picture.heightPx != heightPx) {
    throw std::runtime_error("a picture is not as large as the PDF says");
  }
  page.picture.dpi = std::round(widthPx * 25.4 / page.widthMm);
  return page;
}

}  // namespace

void readPdf(const std::string& path, const std::function<void(PdfPage)>& take) {
  QPDF pdf;
  pdf.setSuppressWarnings(true);
  pdf.setAttemptRecovery(false);
  pdf.processFile(path.c_str());
  for (auto& page : QPDFPageDocumentHelper(pdf).getAllPages()) take(readPage(page, path));
  if (pdf.anyWarnings()) throw std::runtime_error(path + " is not a clean PDF");
}

std::vector<PdfPage> readPdf(const std::string& path) {
  // Documents share objects inside the library: one at a time.
  static std::mutex mutex;
  const std::lock_guard lock(mutex);
  std::vector<PdfPage> pages;
  readPdf(path, [&](PdfPage page) { pages.push_back(std::move(page)); });
  return pages;
}

}  // namespace e2e
