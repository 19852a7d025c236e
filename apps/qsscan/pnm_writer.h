// A page as raw PNM: black and white as PBM, grey as PGM, colour as PPM. Its resolution stands in a comment, since the
// format has no place of its own for it.
#pragma once

#include "document_writer.h"

namespace qsscan {

class PnmWriter : public DocumentWriter {
 public:
  explicit PnmWriter(std::FILE* stream) : stream_(stream) {}
  void addPage(const Page& page) override;
  Finished finish() override { return {1, {}}; }

 private:
  std::FILE* stream_;  // Not owned.
};

}  // namespace qsscan
