#include "pdf_writer.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <map>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFSystemError.hh>
#include <qpdf/QPDFWriter.hh>
#include <utility>

#include "exit_codes.h"
#include "fax_g4.h"
#include "flate.h"
#include "jpeg_writer.h"
#include "output_file.h"

namespace qsscan {
namespace {

using SpooledPage = PdfWriter::SpooledPage;

constexpr double kPointsPerInch = 72;
constexpr int kDecimals = 4;
constexpr std::size_t kReserveBytes = 16 << 10;     // for the beginning and the end of a document
constexpr std::size_t kReservePageBytes = 1 << 10;  // and what it says of each page

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

QPDFObjectHandle makeImage(QPDF& pdf, const SpooledPage& page, const QPDFObjectHandle& colorSpace, SpoolFile& spool,
                           bool freesPages) {
  auto image = QPDFObjectHandle::newStream(&pdf);
  auto dictionary = image.getDict();
  dictionary.replaceKey("/Type", name("/XObject"));
  dictionary.replaceKey("/Subtype", name("/Image"));
  dictionary.replaceKey("/Width", number(page.widthPx));
  dictionary.replaceKey("/Height", number(page.heightPx));
  dictionary.replaceKey("/ColorSpace", colorSpace);
  dictionary.replaceKey("/BitsPerComponent", number(page.bitsPerPixel == 1 ? 1 : 8));
  const auto copyFromSpool = [page, &spool, freesPages](Pipeline* out) {
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
    if (freesPages) spool.giveBack(offset);  // qpdf holds the page now, and takes the pages in their order, each once
  };
  image.replaceStreamData(copyFromSpool, name(filterName(page.coding)), decodeParameters(page));
  return image;
}

QPDFObjectHandle makePage(QPDF& pdf, const SpooledPage& page, const QPDFObjectHandle& image) {
  const std::string width = real(points(page.widthPx, page.dpiX));
  const std::string height = real(points(page.heightPx, page.dpiY));
  auto images = QPDFObjectHandle::newDictionary();
  images.replaceKey("/Im0", image);
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

constexpr int kTooLong = -1;

CommandError failureOf(int error) {
  if (error == kTooLong) {
    return {ExitCode::kCannotWrite,
            "The pages do not fit into one PDF, which holds 10 GB. Use --batch for one file per page."};
  }
  return {ExitCode::kCannotWrite, writeErrorText("The PDF", error)};
}

QPDFObjectHandle makeInformation() {
  auto information = QPDFObjectHandle::newDictionary();
  information.replaceKey("/Producer", QPDFObjectHandle::newString("qsscan " QSSCAN_VERSION));
  information.replaceKey("/CreationDate", QPDFObjectHandle::newString(pdfDate(std::time(nullptr))));
  return information;
}

}  // namespace

PdfWriter::PdfWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes)
    : stream_(stream),
      options_(options),
      limitBytes_(limitBytes),
      spool_(options.scratchDir),
      reserve_(options.scratchDir) {
  reserve_.grow(kReserveBytes);
}

void PdfWriter::addPage(const Page& page) {
  const std::uint64_t start = spool_.size();
  try {
    SpooledPage spooled = spool(page);
    if (start + spooled.bytes + pages_.size() * kReservePageBytes > limitBytes_) throw failureOf(kTooLong);
    pages_.push_back(std::move(spooled));
  } catch (...) {
    spool_.cut(start);
    throw;
  }
  reserve_.grow(kReservePageBytes);
}

PdfWriter::SpooledPage PdfWriter::spool(const Page& page) {
  SpooledPage spooled{spool_.size(), 0, Coding::kFlate, page.widthPx, page.heightPx, page.bitsPerPixel, page.dpiX,
                      page.dpiY,     {}};
  if (page.fittingProfile() != nullptr) spooled.profile = page.profile;
  if (page.bitsPerPixel == 1) {
    const std::vector<std::uint8_t> fax = codeFaxG4(page);
    // Dithered pictures grow in fax coding.
    bool isSmaller = fax.size() <= page.pixels.size() / 2;
    if (!isSmaller) {
      writeFlate(page, spool_.stream());
      isSmaller = fax.size() <= spool_.size() - spooled.offset;
      if (isSmaller) spool_.cut(spooled.offset);
    }
    if (isSmaller) {
      spooled.coding = Coding::kFaxG4;
      std::fwrite(fax.data(), 1, fax.size(), spool_.stream());  // a failure shows in the size
    }
  } else if (!options_.lossless && fitsJpeg(page)) {
    spooled.coding = Coding::kJpeg;
    writeJpeg(page, options_.jpegQuality, spool_.stream(), false);
  } else {
    writeFlate(page, spool_.stream());
  }
  spooled.bytes = spool_.size() - spooled.offset;
  return spooled;
}

Finished PdfWriter::finish() {
  Finished finished;
  reserve_.cut(0);
  for (bool freesPages = false; !pages_.empty();) {
    const int error = writeDocument(freesPages);
    if (error == 0) {
      finished.pages = static_cast<int>(pages_.size());
      return finished;
    }
    // What has gone out elsewhere than into a file of our own, or has been given back, is not there for another try.
    const bool triesAgain = options_.isOwnFile && !freesPages && cutStream(stream_, 0);
    if (triesAgain && (error == ENOSPC || error == EDQUOT)) {
      freesPages = true;
      continue;
    }
    finished.failure = failureOf(error);
    if (!triesAgain) break;
    pages_.pop_back();
  }
  return finished;
}

int PdfWriter::writeDocument(bool freesPages) {
  try {
    QPDF pdf;
    pdf.emptyPDF();
    QPDFPageDocumentHelper document(pdf);
    ColorSpaces colorSpaces(pdf);
    for (const SpooledPage& page : pages_) {
      const auto image = makeImage(pdf, page, colorSpaces.of(page), spool_, freesPages);
      document.addPage(makePage(pdf, page, image), false);
    }
    pdf.getTrailer().replaceKey("/Info", pdf.makeIndirectObject(makeInformation()));

    QPDFWriter writer(pdf, "output", stream_, false);
    writer.setMinimumPDFVersion("1.4");
    // The images are coded already.
    writer.setStreamDataMode(qpdf_s_preserve);
    errno = 0;
    writer.write();
    // The stream remembers a write that failed on the way, when nothing may be left for the flush to fail on.
    if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0) return errno != 0 ? errno : EIO;
    return options_.isOwnFile && std::cmp_greater(::ftello(stream_), limitBytes_) ? kTooLong : 0;
  } catch (const CommandError&) {
    throw;
  } catch (const QPDFSystemError& error) {
    return error.getErrno();
  } catch (const std::exception& error) {
    throw CommandError(ExitCode::kCannotWrite, std::string("The PDF cannot be written: ") + error.what() + ".");
  }
}

}  // namespace qsscan
