// What a PDF of scanned pages holds: one picture on each page.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "picture.h"

namespace e2e {

struct PdfPage {
  double widthMm = 0;  // of the MediaBox
  double heightMm = 0;
  std::string filter;  // such as /DCTDecode
  int bitsPerSample = 0;
  Picture picture;  // its dpi is what the MediaBox makes of it
};

// Reads the whole file and checks its structure; throws std::exception where it is damaged in any way.
std::vector<PdfPage> readPdf(const std::string& path);
// The same page by page, for a file whose pages do not fit into memory together.
void readPdf(const std::string& path, const std::function<void(PdfPage)>& take);

}  // namespace e2e
