// One picture on its way through libjpeg, whose failures and shortages come back as values.
//
//   give(...) -> readHeader() -> start() -> readLines() ... readLines()
//
// A step that answers NeedInput has done nothing visible; it is repeated after the next give. After Failed there is
// only the destructor. Nothing is printed. Threads: one caller at a time.
#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdint>
#include <optional>

// clang-format off
#include <cstdio>  // jpeglib.h uses FILE and does not declare it
#include <jpeglib.h>
// clang-format on

namespace jpeg_decode {

enum class Step {
  Done,
  NeedInput,
  NoMemory,
  Failed,
};

struct Picture {
  std::uint32_t widthPx = 0;
  std::uint32_t heightPx = 0;
  std::uint32_t bitsPerPixel = 0;  // 8 grey, 24 as R,G,B
  std::uint32_t dpiX = 0;          // 0 where the picture does not tell
  std::uint32_t dpiY = 0;

  std::size_t lineBytes() const { return std::size_t{widthPx} * bitsPerPixel / 8; }
};

class JpegReader {
 public:
  JpegReader();
  ~JpegReader();
  JpegReader(const JpegReader&) = delete;
  JpegReader& operator=(const JpegReader&) = delete;

  // The bytes from the first unused one on; they stay the caller's and are used until the next give. last: no more will
  // come, and what is missing of the picture is made up in mid-grey.
  void give(const std::uint8_t* data, std::size_t size, bool last);
  std::size_t unusedBytes() const { return source_.bytes_in_buffer; }

  // Reads up to the first scan and fills picture. Failed for anything but a grey or a three-colour picture, NoMemory
  // for one that would need more working memory than kMaxWorkingBytes.
  Step readHeader(Picture& picture);

  // Prepares for lines; a picture in several scans is taken in whole here, or up to what of it cannot be read.
  Step start();

  // Decodes at least one and at most count lines into rows, top line first, and stores their number in got.
  Step readLines(std::uint8_t** rows, std::size_t count, std::size_t& got);

  // The data ended before the first row of blocks was complete: whatever readLines delivers, it is not the picture's.
  bool nothingCame() const { return nothingCame_; }

 private:
  struct Errors : jpeg_error_mgr {
    std::jmp_buf jump;
  };

  // What of the frame header libjpeg overwrites when it meets a second one, before it finds that wrong.
  struct Frame {
    JDIMENSION widthPx;
    JDIMENSION heightPx;
    int components;
    int precision;
    boolean isProgressive;
    boolean isArithmetic;
  };

  template <class Action>
  Step guarded(Action action);
  void endHere();
  void fillPicture(Picture& picture) const;
  bool isAcceptable() const;
  std::size_t workingBytes() const;

  static JpegReader& of(j_common_ptr info) { return *static_cast<JpegReader*>(info->client_data); }
  static void onError(j_common_ptr info);
  static void onMessage(j_common_ptr info, int level);
  static void onScan(j_common_ptr info);
  static boolean onEmpty(j_decompress_ptr info);
  static void onSkip(j_decompress_ptr info, long count);

  jpeg_decompress_struct info_{};
  Errors errors_{};
  jpeg_source_mgr source_{};
  jpeg_progress_mgr progress_{};
  std::size_t skipBytes_ = 0;  // to be passed over at the head of the next give
  bool last_ = false;
  bool created_ = false;
  bool nothingCame_ = false;
  bool tooManyScans_ = false;
  std::optional<Frame> frame_;  // once the header is read
};

}  // namespace jpeg_decode
