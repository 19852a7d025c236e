// A page as PNG, by libpng.
#pragma once

#include "document_writer.h"

namespace qsscan {

class PngWriter : public DocumentWriter {
 public:
  explicit PngWriter(std::FILE* stream) : stream_(stream) {}
  void addPage(const Page& page) override;
  Finished finish() override { return {1, {}}; }

 private:
  std::FILE* stream_;  // Not owned.
};

}  // namespace qsscan
