// The pages of a picture file: PNG, JPEG, TIFF (every directory), PNM or PDF (every page), told by their first bytes.
// A file without a resolution of its own counts as 300 dpi.
// Threads: load() may be called by any.
#pragma once
#include <memory>
#include <string>

#include "sheets/sheet.h"

namespace vscan {

inline constexpr double kAssumedDpi = 300;

// More pixels than any sheet on a scanner's glass has: beyond it a file is taken as broken.
inline constexpr std::int64_t kMaxSheetPixels = 250'000'000;

class SheetFile {
 public:
  virtual ~SheetFile() = default;

  virtual int pages() const = 0;

  // The page as it lies in the file; a PDF page is drawn at the resolution given. Throws Failure.
  virtual Sheet load(int page, int dpiX, int dpiY) const = 0;

  // False when the file does not say how large its pixels are, and kAssumedDpi stands in.
  virtual bool hasResolution() const = 0;

  const std::string& path() const { return path_; }

 protected:
  explicit SheetFile(std::string path) : path_(std::move(path)) {}

 private:
  const std::string path_;
};

// Opens a file far enough to know its pages. Throws Failure with a sentence when it is missing, of no known kind or
// broken at its start.
std::shared_ptr<const SheetFile> openSheetFile(const std::string& path);

// One kind each; the caller has looked at the first bytes.
std::shared_ptr<const SheetFile> openPng(const std::string& path);
std::shared_ptr<const SheetFile> openJpeg(const std::string& path);
std::shared_ptr<const SheetFile> openTiff(const std::string& path);
std::shared_ptr<const SheetFile> openPnm(const std::string& path);
std::shared_ptr<const SheetFile> openPdf(const std::string& path);

// Throws Failure for a picture without pixels or with more than kMaxSheetPixels.
void checkSheetSize(const std::string& path, std::int64_t widthPx, std::int64_t heightPx);

}  // namespace vscan
