#include "pdf_writer.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "fax_g4.h"
#include "flate.h"
#include "jpeg_writer.h"
#include "output_file.h"

namespace qsscan {
namespace {

constexpr double kPointsPerInch = 72;
constexpr int kDecimals = 4;

std::string points(int px, int dpi) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", kDecimals, px * kPointsPerInch / dpi);
  return text;
}

// D:20260131235959+01'00'
std::string pdfDate(std::time_t now) {
  std::tm local{};
  ::localtime_r(&now, &local);
  char date[32];
  std::strftime(date, sizeof date, "D:%Y%m%d%H%M%S", &local);
  const long minutes = local.tm_gmtoff / 60;
  char zone[16];
  std::snprintf(zone, sizeof zone, "%c%02ld'%02ld'", minutes < 0 ? '-' : '+', std::labs(minutes) / 60 % 24,
                std::labs(minutes) % 60);
  return std::string(date) + zone;
}

const char* deviceSpace(const Page& page) { return page.bitsPerPixel == 24 ? "/DeviceRGB" : "/DeviceGray"; }

int bitsPerComponent(const Page& page) { return page.bitsPerPixel == 1 ? 1 : 8; }

}  // namespace

PdfWriter::PdfWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes)
    : options_(options),
      limitBytes_(limitBytes),
      spool_(options.scratchDir),
      file_(stream),
      catalog_(file_.reserve()),
      tree_(file_.reserve()) {}

PdfWriter::Coding PdfWriter::spool(const Page& page) {
  spool_.clear();
  if (page.bitsPerPixel != 1) {
    const bool asJpeg = !options_.lossless && fitsJpeg(page);
    asJpeg ? writeJpeg(page, options_.jpegQuality, spool_.stream(), false) : writeFlate(page, spool_.stream());
    return asJpeg ? Coding::kJpeg : Coding::kFlate;
  }
  const std::vector<std::uint8_t> fax = codeFaxG4(page);
  // Dithered pictures grow in fax coding.
  if (fax.size() > page.pixels.size() / 2) {
    writeFlate(page, spool_.stream());
    if (spool_.size() < fax.size()) return Coding::kFlate;
    spool_.clear();
  }
  std::fwrite(fax.data(), 1, fax.size(), spool_.stream());  // a failure shows in the size
  return Coding::kFaxG4;
}

void PdfWriter::addPage(const Page& page) {
  const PdfFile::Mark start = file_.mark();
  try {
    const int object = write(page);
    if (!fits()) throw failure();
    pages_.push_back({object, start});
  } catch (...) {
    isBroken_ = !cutBackTo(start);
    throw;
  }
}

int PdfWriter::write(const Page& page) {
  const std::string width = points(page.widthPx, page.dpiX);
  const std::string height = points(page.heightPx, page.dpiY);
  const int image = addImage(page);
  const int content = file_.addStream("", "q " + width + " 0 0 " + height + " 0 0 cm /Im0 Do Q\n");
  return file_.add("<< /Type /Page /Parent " + reference(tree_) + " /MediaBox [0 0 " + width + " " + height +
                   "] /Resources << /XObject << /Im0 " + reference(image) + " >> >> /Contents " + reference(content) +
                   " >>");
}

int PdfWriter::addImage(const Page& page) {
  const Coding coding = spool(page);
  const std::string columns = " /Columns " + std::to_string(page.widthPx);
  std::string entries = "/Type /XObject /Subtype /Image /Width " + std::to_string(page.widthPx) + " /Height " +
                        std::to_string(page.heightPx) + " /BitsPerComponent " + std::to_string(bitsPerComponent(page)) +
                        " /ColorSpace " + colorSpace(page);
  switch (coding) {
    case Coding::kJpeg:
      entries += " /Filter /DCTDecode";
      break;
    case Coding::kFaxG4:
      entries += " /Filter /CCITTFaxDecode /DecodeParms << /K -1" + columns + " /Rows " +
                 std::to_string(page.heightPx) + " >>";
      break;
    case Coding::kFlate:
      entries += " /Filter /FlateDecode /DecodeParms << /Predictor 15 /Colors " +
                 std::to_string(page.bitsPerPixel == 24 ? 3 : 1) + " /BitsPerComponent " +
                 std::to_string(bitsPerComponent(page)) + columns + " >>";
      break;
  }
  return file_.addStream(entries, spool_);
}

std::string PdfWriter::colorSpace(const Page& page) {
  if (page.fittingProfile() == nullptr) return deviceSpace(page);
  int& object = profiles_[page.profile];
  if (object == 0) {
    const auto& bytes = page.profile->bytes;
    object = file_.addStream("/N " + std::to_string(page.profile->channels) + " /Alternate " + deviceSpace(page),
                             {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }
  return "[/ICCBased " + reference(object) + "]";
}

Finished PdfWriter::finish() {
  Finished finished;
  if (isBroken_) return finished;
  spool_.clear();
  while (!pages_.empty()) {
    addEnd();
    if (fits()) {
      finished.pages = static_cast<int>(pages_.size());
      break;
    }
    if (!finished.failure) finished.failure = failure();
    if (!cutBackTo(pages_.back().start)) break;
    pages_.pop_back();
  }
  return finished;
}

bool PdfWriter::cutBackTo(const PdfFile::Mark& mark) {
  return file_.mark().bytes == mark.bytes || (options_.isOwnFile && file_.cutBackTo(mark));
}

void PdfWriter::addEnd() {
  std::string kids;
  for (const WrittenPage& page : pages_) kids += (kids.empty() ? "" : " ") + reference(page.object);
  file_.add(tree_, "<< /Type /Pages /Count " + std::to_string(pages_.size()) + " /Kids [" + kids + "] >>");
  file_.add(catalog_, "<< /Type /Catalog /Pages " + reference(tree_) + " >>");
  const int information =
      file_.add("<< /Producer (qsscan " QSSCAN_VERSION ") /CreationDate (" + pdfDate(std::time(nullptr)) + ") >>");
  file_.addEnd(catalog_, information);
}

bool PdfWriter::fits() { return file_.flush() && file_.mark().bytes <= limitBytes_; }

CommandError PdfWriter::failure() const {
  if (file_.error() == 0) {
    return {ExitCode::kCannotWrite,
            "The pages do not fit into one PDF, which holds 10 GB. Use --batch for one file per page."};
  }
  return {ExitCode::kCannotWrite, writeErrorText("The PDF", file_.error())};
}

}  // namespace qsscan
