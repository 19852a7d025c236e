#include "pdf_writer.h"

#include <array>
#include <cstdio>
#include <ctime>
#include <map>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include "exit_codes.h"
#include "fax_g4.h"
#include "flate.h"
#include "jpeg_writer.h"

namespace qsscan {
namespace {

using SpooledPage = PdfWriter::SpooledPage;

constexpr double kPointsPerInch = 72;
constexpr int kDecimals = 4;

double points(int px, int dpi) { return px * kPointsPerInch / dpi; }

std::string real(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.*f", kDecimals, value);
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

QPDFObjectHandle name(const char* text) { return QPDFObjectHandle::newName(text); }
QPDFObjectHandle number(int value) { return QPDFObjectHandle::newInteger(value); }

const char* filterName(PdfWriter::Coding coding) {
  switch (coding) {
    case PdfWriter::Coding::kJpeg:
      return "/DCTDecode";
    case PdfWriter::Coding::kFaxG4:
      return "/CCITTFaxDecode";
    case PdfWriter::Coding::kFlate:
      break;
  }
  return "/FlateDecode";
}

// How a reader undoes the coding; null where it needs to know nothing.
QPDFObjectHandle decodeParameters(const SpooledPage& page) {
  if (page.coding == PdfWriter::Coding::kFaxG4) {
    auto parameters = QPDFObjectHandle::newDictionary();
    parameters.replaceKey("/K", number(-1));
    parameters.replaceKey("/Columns", number(page.widthPx));
    parameters.replaceKey("/Rows", number(page.heightPx));
    return parameters;
  }
  if (page.coding != PdfWriter::Coding::kFlate) return QPDFObjectHandle::newNull();
  auto parameters = QPDFObjectHandle::newDictionary();
  parameters.replaceKey("/Predictor", number(15));
  parameters.replaceKey("/Colors", number(page.bitsPerPixel == 24 ? 3 : 1));
  parameters.replaceKey("/BitsPerComponent", number(page.bitsPerPixel == 1 ? 1 : 8));
  parameters.replaceKey("/Columns", number(page.widthPx));
  return parameters;
}

// The colour spaces of one document: a profile is written once, however many pages have it.
class ColorSpaces {
 public:
  explicit ColorSpaces(QPDF& pdf) : pdf_(pdf) {}

  QPDFObjectHandle of(const SpooledPage& page) {
    const char* device = page.bitsPerPixel == 24 ? "/DeviceRGB" : "/DeviceGray";
    if (!page.profile) return name(device);
    QPDFObjectHandle& space = ofProfile_[page.profile.get()];
    if (space.isInitialized()) return space;
    auto stream =
        QPDFObjectHandle::newStream(&pdf_, std::string(page.profile->bytes.begin(), page.profile->bytes.end()));
    stream.getDict().replaceKey("/N", number(page.profile->channels));
    stream.getDict().replaceKey("/Alternate", name(device));
    space = pdf_.makeIndirectObject(QPDFObjectHandle::newArray({name("/ICCBased"), stream}));
    return space;
  }

 private:
  QPDF& pdf_;
  std::map<const IccProfile*, QPDFObjectHandle> ofProfile_;
};

QPDFObjectHandle makeImage(QPDF& pdf, const SpooledPage& page, const QPDFObjectHandle& colorSpace, SpoolFile& spool) {
  auto image = QPDFObjectHandle::newStream(&pdf);
  auto dictionary = image.getDict();
  dictionary.replaceKey("/Type", name("/XObject"));
  dictionary.replaceKey("/Subtype", name("/Image"));
  dictionary.replaceKey("/Width", number(page.widthPx));
  dictionary.replaceKey("/Height", number(page.heightPx));
  dictionary.replaceKey("/ColorSpace", colorSpace);
  dictionary.replaceKey("/BitsPerComponent", number(page.bitsPerPixel == 1 ? 1 : 8));
  const auto copyFromSpool = [page, &spool](Pipeline* out) {
    std::array<std::uint8_t, 1 << 16> buffer;
    std::uint64_t offset = page.offset;
    const std::uint64_t end = page.offset + page.bytes;
    while (offset < end) {
      const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(buffer.size(), end - offset));
      const std::size_t n = spool.read(offset, std::span(buffer).first(wanted));
      if (n == 0) throw CommandError(ExitCode::kCannotWrite, "The temporary file was cut short.");
      out->write(buffer.data(), n);
      offset += n;
    }
    out->finish();
  };
  image.replaceStreamData(copyFromSpool, name(filterName(page.coding)), decodeParameters(page));
  return image;
}

QPDFObjectHandle makePage(QPDF& pdf, const SpooledPage& page, const QPDFObjectHandle& colorSpace, SpoolFile& spool) {
  const std::string width = real(points(page.widthPx, page.dpiX));
  const std::string height = real(points(page.heightPx, page.dpiY));
  auto images = QPDFObjectHandle::newDictionary();
  images.replaceKey("/Im0", makeImage(pdf, page, colorSpace, spool));
  auto resources = QPDFObjectHandle::newDictionary();
  resources.replaceKey("/XObject", images);

  auto object = QPDFObjectHandle::newDictionary();
  object.replaceKey("/Type", name("/Page"));
  object.replaceKey("/MediaBox", QPDFObjectHandle::parse("[0 0 " + width + " " + height + "]"));
  object.replaceKey("/Resources", resources);
  object.replaceKey("/Contents",
                    QPDFObjectHandle::newStream(&pdf, "q " + width + " 0 0 " + height + " 0 0 cm /Im0 Do Q\n"));
  return pdf.makeIndirectObject(object);
}

QPDFObjectHandle makeInformation() {
  auto information = QPDFObjectHandle::newDictionary();
  information.replaceKey("/Producer", QPDFObjectHandle::newString("qsscan " QSSCAN_VERSION));
  information.replaceKey("/CreationDate", QPDFObjectHandle::newString(pdfDate(std::time(nullptr))));
  return information;
}

}  // namespace

PdfWriter::PdfWriter(std::FILE* stream, const WriterOptions& options)
    : stream_(stream), options_(options), spool_(options.scratchDir) {}

PdfWriter::Coding PdfWriter::codingFor(const Page& page) const {
  if (page.bitsPerPixel == 1) return Coding::kFaxG4;
  return !options_.lossless && fitsJpeg(page) ? Coding::kJpeg : Coding::kFlate;
}

void PdfWriter::addPage(const Page& page) {
  SpooledPage spooled = spool(page, codingFor(page));
  // Dithered pictures grow in fax coding; the copy that loses stays unused in the spool file.
  if (spooled.coding == Coding::kFaxG4 && spooled.bytes > page.pixels.size() / 2) {
    const SpooledPage other = spool(page, Coding::kFlate);
    if (other.bytes < spooled.bytes) spooled = other;
  }
  pages_.push_back(spooled);
}

PdfWriter::SpooledPage PdfWriter::spool(const Page& page, Coding coding) {
  SpooledPage spooled{spool_.size(), 0,         coding, page.widthPx, page.heightPx, page.bitsPerPixel,
                      page.dpiX,     page.dpiY, {}};
  if (page.fittingProfile() != nullptr) spooled.profile = page.profile;
  switch (coding) {
    case Coding::kJpeg:
      writeJpeg(page, options_.jpegQuality, spool_.stream(), false);
      break;
    case Coding::kFaxG4:
      writeFaxG4(page, spool_.stream());
      break;
    case Coding::kFlate:
      writeFlate(page, spool_.stream());
      break;
  }
  spooled.bytes = spool_.size() - spooled.offset;
  return spooled;
}

void PdfWriter::finish() {
  try {
    QPDF pdf;
    pdf.emptyPDF();
    QPDFPageDocumentHelper document(pdf);
    ColorSpaces colorSpaces(pdf);
    for (const SpooledPage& page : pages_) {
      document.addPage(makePage(pdf, page, colorSpaces.of(page), spool_), false);
    }
    pdf.getTrailer().replaceKey("/Info", pdf.makeIndirectObject(makeInformation()));

    QPDFWriter writer(pdf, "output", stream_, false);
    writer.setMinimumPDFVersion("1.4");
    // The images are coded already.
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.write();
  } catch (const CommandError&) {
    throw;
  } catch (const std::exception& error) {
    throw CommandError(ExitCode::kCannotWrite, std::string("The PDF cannot be written: ") + error.what() + ".");
  }
}

}  // namespace qsscan
