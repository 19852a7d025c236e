#include "image/decoded_lines.h"

#include <algorithm>
#include <cstring>

#include "reception/ImageDataStore.h"

namespace orvalle_scan_api {
namespace {

constexpr int kWhite = 0xFF;  // in every depth: a set mono bit is white

std::size_t count(int value) { return static_cast<std::size_t>(std::max(0, value)); }

}  // namespace

QSRSLT DecodedLines::open(CImageDataStore* page) {
  const std::uint64_t lineBytes = page->GetWidthBytes();
  const int height = std::max(0, page->GetHeightPixel());
  // The block has room for the whole page since the header was written.
  lines_ = page->MakeRoom(lineBytes * count(height));
  if (lines_ == nullptr) return QSRSLT_NO_PAGE_MEMORY;
  page_ = page;
  lineBytes_ = lineBytes;
  height_ = height;
  return QSRSLT_SUCCESS;
}

std::uint8_t* DecodedLines::place(int line) const {
  return lines_ + count(order_ == Order::TopFirst ? line : height_ - 1 - line) * lineBytes_;
}

std::uint8_t* DecodedLines::room() { return total_ < height_ && bufferBytes_ <= lineBytes_ ? place(total_) : buffer_; }

QSRSLT DecodedLines::take(int lines, int bytes) {
  if (lines < 1 || bytes == 0) return QSRSLT_LINE_DECODER_WROTE_NOTHING;
  const std::uint8_t* const from = room();
  const std::size_t stride = count(bytes) / count(lines);
  const int wanted = std::min(lines, height_ - total_);
  // The first line comes last: the others may lie in its place.
  for (int i = wanted; i-- > 0;) {
    const std::size_t at = std::min(count(i) * stride, bufferBytes_);
    const std::size_t present = std::min({lineBytes_, stride, bufferBytes_ - at});
    std::uint8_t* const to = place(total_ + i);
    if (to != from + at) std::memcpy(to, from + at, present);
    std::memset(to + present, kWhite, lineBytes_ - present);
  }
  total_ += wanted;
  return QSRSLT_SUCCESS;
}

void DecodedLines::finish() {
  // A page that was cancelled has given its block back.
  if (page_ == nullptr || page_->IsEmpty()) return;
  const std::size_t bytes = count(total_) * lineBytes_;
  if (order_ == Order::BottomFirst && total_ > 0 && total_ < height_) std::memmove(lines_, place(total_ - 1), bytes);
  page_->TakeFilled(bytes);
}

}  // namespace orvalle_scan_api
