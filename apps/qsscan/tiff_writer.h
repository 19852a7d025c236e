// A TIFF of any number of pages, by libtiff: black and white in CCITT G4, grey and colour in LZW, without loss.
#pragma once

#include <cstdint>
#include <memory>

#include "document_writer.h"
#include "spool_file.h"

struct tiff;

namespace qsscan {

// The file grows in a spool file, since its directories are patched as pages come while the output may be a pipe;
// finish() copies it out.
class TiffWriter : public DocumentWriter {
 public:
  // A TIFF counts its bytes in 32 bits; limitBytes is what its pages may need at most.
  static constexpr std::uint64_t kLimitBytes = 0xF0000000;

  TiffWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes = kLimitBytes);
  ~TiffWriter() override;
  void addPage(const Page& page) override;
  void finish() override;

 private:
  struct Closer {
    void operator()(tiff* file) const;
  };

  std::FILE* stream_;  // Not owned.
  const std::uint64_t limitBytes_;
  SpoolFile spool_;
  std::unique_ptr<tiff, Closer> tiff_;
  bool isSpoilt_ = false;  // a page was written in part
};

}  // namespace qsscan
