// A picture that is fed in pieces and comes out line by line, so that a very large page is never held twice.
// Threads: one caller at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jpeg_reader.h"

namespace jpeg_decode {

class BandDecoder {
 public:
  // Reads the header of data, the whole picture, and uses none of it afterwards: feed brings it again.
  Step open(std::span<const std::uint8_t> data, Picture& picture);

  // Adds the next bytes. False when they are more than open was told of. May throw std::bad_alloc.
  bool feed(std::span<const std::uint8_t> data);

  // Done with a line, which stays valid until the next call, or with an empty one when all lines were handed out. Once
  // all bytes are in, every line that is still missing comes as mid-grey, if at least the first lines came.
  Step nextLine(std::span<std::uint8_t>& next);

  bool finished() const { return handedOut_ == picture_.heightPx; }

 private:
  Step decodeLine();
  std::span<std::uint8_t> line();

  enum class Stage { Header, Start, Lines, Broken };

  std::optional<JpegReader> reader_;
  Picture picture_;
  Stage stage_ = Stage::Header;
  std::size_t totalBytes_ = 0;
  std::size_t fedBytes_ = 0;
  std::uint32_t handedOut_ = 0;
  std::vector<std::uint8_t> input_;  // what libjpeg has not used yet
  std::vector<std::uint8_t> lineRoom_;
};

}  // namespace jpeg_decode
