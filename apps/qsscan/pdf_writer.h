// A PDF of scanned pages, by qpdf: each page one image at its true physical size.
#pragma once

#include <memory>
#include <vector>

#include "document_writer.h"
#include "spool_file.h"

namespace qsscan {

// Coded pages wait in a spool file until finish(), so that memory does not grow with the document. Where the disk has
// no room for the pages a second time, finish() gives back that of each page when it takes it from the spool file.
class PdfWriter : public DocumentWriter {
 public:
  // Offsets in a PDF have ten digits; limitBytes is how long it may become.
  static constexpr std::uint64_t kLimitBytes = 9'999'999'999;

  PdfWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes = kLimitBytes);
  void addPage(const Page& page) override;
  Finished finish() override;

  enum class Coding { kJpeg, kFlate, kFaxG4 };
  struct SpooledPage {
    std::uint64_t offset;
    std::uint64_t bytes;
    Coding coding;
    int widthPx, heightPx, bitsPerPixel;
    int dpiX, dpiY;
    std::shared_ptr<const IccProfile> profile;  // null for none
  };

 private:
  SpooledPage spool(const Page& page);
  int writeDocument(bool freesPages);  // 0, or why as errno tells; throws CommandError for other reasons

  std::FILE* stream_;  // Not owned.
  const WriterOptions options_;
  const std::uint64_t limitBytes_;
  SpoolFile spool_;
  SpoolFile reserve_;  // room for what a document is beside its pages
  std::vector<SpooledPage> pages_;
};

}  // namespace qsscan
