// Pages as JPEG, by libjpeg.
#pragma once

#include <cstdio>

#include "document_writer.h"

namespace qsscan {

// Whether the page can be a JPEG picture: 8 or 24 bits, and no side above 65500 pixels.
bool fitsJpeg(const Page& page);

// Writes the page with its resolution as JFIF density, and with its colour profile unless the file around it holds it.
// Throws CommandError (cannot write), also when it does not fit. A black-and-white page becomes grey.
void writeJpeg(const Page& page, int quality, std::FILE* stream, bool withProfile = true);

class JpegWriter : public DocumentWriter {
 public:
  JpegWriter(std::FILE* stream, int quality) : stream_(stream), quality_(quality) {}
  void addPage(const Page& page) override { writeJpeg(page, quality_, stream_); }
  Finished finish() override { return {1, {}}; }

 private:
  std::FILE* stream_;  // Not owned.
  int quality_;
};

}  // namespace qsscan
