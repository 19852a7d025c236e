// A PDF of scanned pages: each page one image at its true physical size.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "document_writer.h"
#include "pdf_file.h"

namespace qsscan {

// A page is coded into the spool file first and is in the document when addPage() returns. The spool file holds one
// page; what it takes of a disk that is full is enough for the end of the document.
class PdfWriter : public DocumentWriter {
 public:
  // Offsets in a PDF have ten digits; limitBytes is how long it may become.
  static constexpr std::uint64_t kLimitBytes = 9'999'999'999;

  PdfWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes = kLimitBytes);
  void addPage(const Page& page) override;
  Finished finish() override;

 private:
  enum class Coding { kJpeg, kFlate, kFaxG4 };
  struct WrittenPage {
    int object;
    PdfFile::Mark start;
  };

  int write(const Page& page);  // its object
  Coding spool(const Page& page);
  int addImage(const Page& page);
  std::string colorSpace(const Page& page);
  void addEnd();
  bool cutBackTo(const PdfFile::Mark& mark);
  bool fits();
  CommandError failure() const;

  const WriterOptions options_;
  const std::uint64_t limitBytes_;
  SpoolFile spool_;
  PdfFile file_;
  const int catalog_;
  const int tree_;                                             // of the pages
  std::map<std::shared_ptr<const IccProfile>, int> profiles_;  // each is written once
  std::vector<WrittenPage> pages_;
  bool isBroken_ = false;  // ends with a part of a page
};

}  // namespace qsscan
