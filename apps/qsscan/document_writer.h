// One document file in the making: a PDF of any number of pages, or a PNG or JPEG file of one.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "page.h"

namespace qsscan {

enum class Format { kPdf, kPng, kJpeg };

struct WriterOptions {
  int jpegQuality = 90;    // 1 to 100
  bool lossless = false;   // PDF: no JPEG, whatever the page
  std::string scratchDir;  // folder for the PDF writer's spool file
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

// Whether one file holds any number of pages.
bool holdsManyPages(Format format);

}  // namespace qsscan
