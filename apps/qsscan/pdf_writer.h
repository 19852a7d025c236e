// A PDF of scanned pages: each page one image at its true physical size.
#pragma once

#include <memory>
#include <vector>

#include "document_writer.h"
#include "spool_file.h"

namespace qsscan {

// Encoded pages wait in the spool file until finish(), so that memory does not grow with the document.
class PdfWriter : public DocumentWriter {
 public:
  PdfWriter(std::FILE* stream, const WriterOptions& options);
  void addPage(const Page& page) override;
  void finish() override;

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
  Coding codingFor(const Page& page) const;
  SpooledPage spool(const Page& page, Coding coding);

  std::FILE* stream_;  // Not owned.
  WriterOptions options_;
  SpoolFile spool_;
  std::vector<SpooledPage> pages_;
};

}  // namespace qsscan
