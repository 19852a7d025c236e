// One document file in the making: a PDF or TIFF of any number of pages, or a PNG, JPEG or PNM file of one.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "exit_codes.h"
#include "format.h"
#include "page.h"

namespace qsscan {

struct WriterOptions {
  int jpegQuality = 90;    // 1 to 100
  bool lossless = false;   // PDF: no JPEG, whatever the page
  std::string scratchDir;  // folder for the spool file of a PDF or TIFF
  bool isOwnFile = false;  // the stream is a file of our own, which can be read and cut
};

// How a document ended.
struct Finished {
  int pages = 0;                        // in it; 0 where it is of no use
  std::optional<CommandError> failure;  // why there are fewer than were added
};

class DocumentWriter {
 public:
  virtual ~DocumentWriter() = default;

  // A failure throws CommandError (cannot write). It is the last page then; those before it stay, and finish()
  // completes them where the stream can be cut.
  virtual void addPage(const Page& page) = 0;

  // Once, after at least one page. Where there is no room for the end of a document of many pages, it takes the room of
  // the last ones. The stream stays open; it may hold bytes that are not flushed yet.
  virtual Finished finish() = 0;
};

// Why a page could not be written: what the stream met, else what the coder says. To be asked straight after the
// failure, for errno.
CommandError pageFailure(const Page& page, const char* format, std::FILE* stream, const std::string& reason);

// Writes to the stream, which is empty, is not owned and outlives the writer.
std::unique_ptr<DocumentWriter> makeWriter(Format format, std::FILE* stream, const WriterOptions& options);

}  // namespace qsscan
