// The lines of a page on their way from the line decoder into the page's BMP. Each goes to its final place at once, so
// that a page need not be turned when it is whole; a decoder whose buffer is no longer than a line writes there itself.
//
//   open -> room, take, room, take ... -> finish
//
// Threads: one caller at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "result_codes.h"

namespace orvalle_scan_api {

class CImageDataStore;

class DecodedLines {
 public:
  enum class Order { TopFirst, BottomFirst };

  // The decoder's buffer of bufferBytes stays the caller's.
  DecodedLines(std::uint8_t* buffer, std::size_t bufferBytes, Order order)
      : buffer_(buffer), bufferBytes_(bufferBytes), order_(order) {}

  // Takes the place for all lines of the page, whose BMP header is written. 0x30402001: no memory.
  QSRSLT open(CImageDataStore* page);

  // Where the decoder is to write next, with room for bufferBytes: the place of the next line, or the buffer.
  std::uint8_t* room();

  // Takes what the decoder says that it wrote to the room; what it cannot have written there is white, lines beyond the
  // page's height are dropped. 0x70406007 for no line or 0 bytes.
  QSRSLT take(int lines, int bytes);

  // Lines taken so far.
  int total() const { return total_; }

  // Makes the lines that came the page's data, side by side.
  void finish();

 private:
  // Of the line that the decoder delivers as the given one; below the height.
  std::uint8_t* place(int line) const;

  std::uint8_t* buffer_;
  std::size_t bufferBytes_;
  Order order_;

  CImageDataStore* page_ = nullptr;
  std::uint8_t* lines_ = nullptr;
  std::size_t lineBytes_ = 0;
  int height_ = 0;
  int total_ = 0;
};

}  // namespace orvalle_scan_api
