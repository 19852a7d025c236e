// One document file in the making: a PDF or TIFF of any number of pages, or a PNG, JPEG or PNM file of one.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "format.h"
#include "page.h"

namespace qsscan {

struct WriterOptions {
  int jpegQuality = 90;    // 1 to 100
  bool lossless = false;   // PDF: no JPEG, whatever the page
  std::string scratchDir;  // folder for the spool file of a PDF or TIFF
};

// Failures throw CommandError (cannot write); the document is then of no use.
class DocumentWriter {
 public:
  virtual ~DocumentWriter() = default;
  virtual void addPage(const Page& page) = 0;
  virtual void finish() = 0;  // after the last page; the stream stays open
};

// Writes to the stream, which is not owned and outlives the writer.
std::unique_ptr<DocumentWriter> makeWriter(Format format, std::FILE* stream, const WriterOptions& options);

}  // namespace qsscan
