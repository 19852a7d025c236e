#include "pnm_writer.h"

#include <string>
#include <vector>

#include "exit_codes.h"
#include "line_order.h"

namespace qsscan {

void PnmWriter::addPage(const Page& page) {
  const char kind = page.bitsPerPixel == 1 ? '4' : page.bitsPerPixel == 8 ? '5' : '6';
  const char* depth = page.bitsPerPixel == 1 ? "" : "255\n";
  bool written = std::fprintf(stream_, "P%c\n# %d x %d dpi\n%d %d\n%s", kind, page.dpiX, page.dpiY, page.widthPx,
                              page.heightPx, depth) > 0;
  std::vector<std::uint8_t> buffer(page.lineBytes);
  for (int y = 0; written && y < page.heightPx; ++y) {
    const std::uint8_t* line = lineFor(page, y, true, buffer.data());
    written = std::fwrite(line, 1, page.lineBytes, stream_) == page.lineBytes;
  }
  if (written) return;
  throw pageFailure(page, "PNM", stream_, "unknown reason");
}

}  // namespace qsscan
