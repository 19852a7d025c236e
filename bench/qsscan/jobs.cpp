#include "jobs.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "likeness.h"
#include "pdf_file.h"
#include "sheets.h"

namespace qsscan_bench {
namespace {

using e2e::Picture;

constexpr unsigned kMostSheets = 4;
constexpr double kSamePictureDb = 22;  // JPEG twice over; two of the sheets are below 20 dB

std::string nameOf(const Job& job, int page) {
  std::string name = job.file;
  if (const auto place = name.find("%d"); place != std::string::npos) name.replace(place, 2, std::to_string(page));
  return name;
}

void readPages(const Job& job, const std::string& folder, int pages, const std::function<void(Picture)>& take) {
  const std::string path = folder + "/" + job.file;
  if (path.ends_with(".pdf")) {
    e2e::readPdf(path, [&](e2e::PdfPage page) { take(std::move(page.picture)); });
  } else if (path.ends_with(".tif")) {
    e2e::readTiffPages(path, take);
  } else {
    const auto read = path.ends_with(".png") ? e2e::readPng : path.ends_with(".jpg") ? e2e::readJpeg : e2e::readPnm;
    for (int page = 1; page <= pages; ++page) take(read(folder + "/" + nameOf(job, page)));
  }
}

}  // namespace

const std::vector<Job>& jobs() {
  static const std::vector<Job> all = {
      {"colour, 300 dpi, both sides, PDF", 300, true, false, "scan.pdf", {"--duplex"}},
      {"grey, 300 dpi, PDF", 300, false, false, "scan.pdf", {"--mode", "gray"}},
      {"mono, 300 dpi, PDF", 300, false, true, "scan.pdf", {"--mode", "mono"}},
      {"colour, 600 dpi, PDF", 600, true, false, "scan.pdf", {}},
      {"colour, 300 dpi, lossless PDF", 300, true, false, "scan.pdf", {"--compression", "lossless"}},
      {"colour, 300 dpi, TIFF", 300, true, false, "scan.tif", {}},
      {"colour, 300 dpi, PNG", 300, true, false, "page%d.png", {}},
      {"colour, 300 dpi, JPEG", 300, true, false, "page%d.jpg", {}},
      {"colour, 300 dpi, PNM", 300, true, false, "page%d.pnm", {}},
  };
  return all;
}

Sheets drawSheets(const Job& job, int pages, const std::string& folder) {
  const auto px = [&job](double mm) { return static_cast<int>(std::lround(mm / 25.4 * job.dpi)); };
  const auto draw = job.isColor ? e2e::drawColor : e2e::drawText;
  Sheets sheets;
  for (unsigned i = 0; i < std::min(kMostSheets, static_cast<unsigned>(pages)); ++i) {
    sheets.pictures.push_back(draw(px(210), px(297), job.dpi, 30 + i));
    sheets.paths.push_back(folder + "/sheet" + std::to_string(i) + ".tif");
    e2e::writeTiff(sheets.paths.back(), {sheets.pictures.back()});
  }
  return sheets;
}

std::string faultOf(const Job& job, const Sheets& sheets, const std::string& folder, int pages) {
  int read = 0;
  std::string fault;
  readPages(job, folder, pages, [&](const Picture& page) {
    const Picture& drawn = sheets.pictures[static_cast<std::size_t>(read++) % sheets.pictures.size()];
    // A page ends at the last whole pixel of the paper.
    const bool isAPixelSmaller = drawn.widthPx - page.widthPx == 1 || drawn.heightPx - page.heightPx == 1;
    const Picture sheet = isAPixelSmaller ? e2e::onWhite(drawn, page.widthPx, page.heightPx) : drawn;
    const std::string place = "page " + std::to_string(read) + ": ";
    if (page.dpi != job.dpi) fault = place + "the resolution is wrong";
    if (job.isMono) {
      const std::string wrong = e2e::difference(e2e::blackAndWhite(sheet, 128), page);
      if (!wrong.empty()) fault = place + wrong;
    } else if (const double db = e2e::psnrDb(sheet, page); db < kSamePictureDb) {
      fault = place + "another picture, or another size (" + std::to_string(db) + " dB)";
    }
  });
  if (read != pages) fault = std::to_string(read) + " pages instead of " + std::to_string(pages);
  return fault;
}

}  // namespace qsscan_bench
