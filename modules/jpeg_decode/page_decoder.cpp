#include "page_decoder.h"

#include <algorithm>
#include <array>

namespace jpeg_decode {
namespace {

// libjpeg hands over the lines of one block row at a time at most.
constexpr std::size_t kLinesPerCall = 16;

Step readAllLines(JpegReader& reader, const Picture& picture, BmpPage& page) {
  std::array<std::uint8_t*, kLinesPerCall> rows;
  std::size_t done = 0;
  while (done < picture.heightPx) {
    const std::size_t count = std::min(kLinesPerCall, picture.heightPx - done);
    for (std::size_t i = 0; i < count; ++i) rows[i] = page.line(done + i);
    std::size_t got = 0;
    const Step step = reader.readLines(rows.data(), count, got);
    if (reader.nothingCame() || (step != Step::Done && done == 0)) return Step::Failed;
    if (step != Step::Done) {
      page.fillFrom(done);
      break;
    }
    done += got;
  }
  return Step::Done;
}

}  // namespace

Step decodePage(const std::uint8_t* data, std::size_t size, BmpPage& page) {
  page.clear();
  JpegReader reader;
  reader.give(data, size, true);
  Picture picture;
  Step step = reader.readHeader(picture);
  if (step != Step::Done) return step;
  if (!page.create(picture)) return Step::NoMemory;
  step = reader.start();
  if (step == Step::Done) step = readAllLines(reader, picture, page);
  if (step != Step::Done) page.clear();
  return step;
}

}  // namespace jpeg_decode
