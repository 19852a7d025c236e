#include "format.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace qsscan {
namespace {

constexpr FormatRow kFormats[] = {
    // format        name    ending  spellings                              pages   profile
    {Format::kPdf, "pdf", "pdf", {"pdf"}, true, true},
    {Format::kTiff, "tiff", "tif", {"tif", "tiff"}, true, true},
    {Format::kPng, "png", "png", {"png"}, false, true},
    {Format::kJpeg, "jpeg", "jpg", {"jpg", "jpeg"}, false, true},
    {Format::kPnm, "pnm", "pnm", {"pnm", "pbm", "pgm", "ppm"}, false, false},
};

}  // namespace

const FormatRow& rowOf(Format format) {
  return *std::find_if(std::begin(kFormats), std::end(kFormats),
                       [format](const FormatRow& row) { return row.format == format; });
}

std::optional<Format> findFormat(std::string_view name) {
  const std::string text(name);
  for (const FormatRow& row : kFormats) {
    for (const std::string_view spelling : row.spellings) {
      if (!spelling.empty() && strcasecmp(spelling.data(), text.c_str()) == 0) return row.format;
    }
  }
  return std::nullopt;
}

std::string formatNames() {
  std::string text;
  for (const FormatRow& row : kFormats) {
    const bool isFirst = &row == std::begin(kFormats);
    const bool isLast = &row == std::end(kFormats) - 1;
    text += std::string(isFirst ? "" : isLast ? " and " : ", ") + row.name;
  }
  return text;
}

}  // namespace qsscan
