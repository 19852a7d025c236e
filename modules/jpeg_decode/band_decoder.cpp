#include "band_decoder.h"

#include <algorithm>
#include <memory>

namespace jpeg_decode {
namespace {

constexpr std::uint8_t kMidGray = 128;

// libjpeg's vector code writes lines that start at a multiple of this past the caches, as suits a page but not a line
// that is read back at once; half of it beside such a place, it does not.
constexpr std::size_t kVectorBytes = 32;

}  // namespace

Step BandDecoder::open(std::span<const std::uint8_t> data, Picture& picture) {
  {
    JpegReader probe;
    probe.give(data.data(), data.size(), true);
    const Step step = probe.readHeader(picture);
    if (step != Step::Done) return step;
  }
  picture_ = picture;
  lineRoom_.resize(picture.lineBytes() + 2 * kVectorBytes);
  totalBytes_ = data.size();
  reader_.emplace();
  return Step::Done;
}

bool BandDecoder::feed(std::span<const std::uint8_t> data) {
  if (data.size() > totalBytes_ - fedBytes_) return false;
  const std::size_t unused = reader_->unusedBytes();
  input_.reserve(unused + data.size());  // the only step that can throw, and it leaves the unused bytes as they are
  input_.erase(input_.begin(), input_.end() - static_cast<std::ptrdiff_t>(unused));
  input_.insert(input_.end(), data.begin(), data.end());
  fedBytes_ += data.size();
  reader_->give(input_.data(), input_.size(), fedBytes_ == totalBytes_);
  return true;
}

Step BandDecoder::nextLine(std::span<std::uint8_t>& next) {
  next = {};
  if (finished()) return Step::Done;
  if (stage_ != Stage::Broken) {
    const Step step = decodeLine();
    if (step == Step::NeedInput) return step;
    if (step != Step::Done || reader_->nothingCame()) {
      if (handedOut_ == 0) return step == Step::Done ? Step::Failed : step;
      stage_ = Stage::Broken;
      std::ranges::fill(line(), kMidGray);
    }
  }
  ++handedOut_;
  next = line();
  return Step::Done;
}

std::span<std::uint8_t> BandDecoder::line() {
  void* at = lineRoom_.data();
  std::size_t space = lineRoom_.size();
  std::align(kVectorBytes, picture_.lineBytes() + kVectorBytes, at, space);
  return {static_cast<std::uint8_t*>(at) + kVectorBytes / 2, picture_.lineBytes()};
}

Step BandDecoder::decodeLine() {
  if (stage_ == Stage::Header) {
    Picture again;
    const Step step = reader_->readHeader(again);
    if (step != Step::Done) return step;
    // The bytes that are fed need not be those that were opened.
    if (again.widthPx != picture_.widthPx || again.heightPx != picture_.heightPx ||
        again.bitsPerPixel != picture_.bitsPerPixel) {
      return Step::Failed;
    }
    stage_ = Stage::Start;
  }
  if (stage_ == Stage::Start) {
    const Step step = reader_->start();
    if (step != Step::Done) return step;
    stage_ = Stage::Lines;
  }
  std::uint8_t* row = line().data();
  std::size_t got = 0;
  return reader_->readLines(&row, 1, got);
}

}  // namespace jpeg_decode
