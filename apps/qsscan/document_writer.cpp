#include "document_writer.h"

#include <cerrno>

#include "jpeg_writer.h"
#include "output_file.h"
#include "pdf_writer.h"
#include "png_writer.h"
#include "pnm_writer.h"
#include "tiff_writer.h"

namespace qsscan {

CommandError pageFailure(const Page& page, const char* format, std::FILE* stream, const std::string& reason) {
  const int error = errno;
  const std::string what = "Page " + std::to_string(page.number);
  if (std::ferror(stream) != 0 && error != 0) return {ExitCode::kCannotWrite, writeErrorText(what, error)};
  return {ExitCode::kCannotWrite, what + " cannot be written as " + format + ": " + reason + "."};
}

std::unique_ptr<DocumentWriter> makeWriter(Format format, std::FILE* stream, const WriterOptions& options) {
  switch (format) {
    case Format::kPng:
      return std::make_unique<PngWriter>(stream);
    case Format::kJpeg:
      return std::make_unique<JpegWriter>(stream, options.jpegQuality);
    case Format::kPnm:
      return std::make_unique<PnmWriter>(stream);
    case Format::kTiff:
      return std::make_unique<TiffWriter>(stream, options);
    case Format::kPdf:
      break;
  }
  return std::make_unique<PdfWriter>(stream, options);
}

}  // namespace qsscan
