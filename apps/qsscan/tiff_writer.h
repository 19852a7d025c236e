// A TIFF of any number of pages, by libtiff, without loss: grey and colour in LZW, black and white in CCITT G4 or,
// where a dithered picture would grow, in Flate.
#pragma once

#include <cstdint>
#include <optional>

#include "document_writer.h"
#include "spool_file.h"

struct tiff;

namespace qsscan {

// Directories are patched as pages come. Where the output is no file of our own, it may be a pipe: the document grows
// in a spool file then, and finish() copies it out.
class TiffWriter : public DocumentWriter {
 public:
  // A TIFF counts its bytes in 32 bits; limitBytes is what its pages may need at most.
  static constexpr std::uint64_t kLimitBytes = 0xF0000000;

  TiffWriter(std::FILE* stream, const WriterOptions& options, std::uint64_t limitBytes = kLimitBytes);
  ~TiffWriter() override;
  TiffWriter(const TiffWriter&) = delete;
  TiffWriter& operator=(const TiffWriter&) = delete;
  void addPage(const Page& page) override;
  Finished finish() override;

 private:
  void abandon();
  void endAt(std::uint64_t bytes);

  std::FILE* stream_;  // Not owned.
  const std::uint64_t limitBytes_;
  std::optional<SpoolFile> spool_;
  int fd_ = -1;           // of the file that grows. Not owned.
  tiff* tiff_ = nullptr;  // a view of it
  int pages_ = 0;         // whole ones
};

}  // namespace qsscan
