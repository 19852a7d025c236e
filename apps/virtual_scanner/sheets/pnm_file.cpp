// PBM, PGM and PPM, as text (P1 to P3) or as bytes (P4 to P6). They do not tell their resolution.
#include <cctype>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>

#include "sheets/sheet_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

// Numbers and bytes of the file, one after the other; `#` begins a comment in what is text.
class Cursor {
 public:
  explicit Cursor(const std::string& bytes) : bytes_(bytes) {}

  // The next number up to the maximum; nothing when there is none.
  std::optional<int> number(int maximum) {
    skipSpace();
    if (at_ == bytes_.size() || !isDigit(bytes_[at_])) return std::nullopt;
    int value = 0;
    for (; at_ < bytes_.size() && isDigit(bytes_[at_]); ++at_) {
      const int digit = bytes_[at_] - '0';
      if (value > (maximum - digit) / 10) return std::nullopt;
      value = value * 10 + digit;
    }
    return value;
  }

  // A PBM as text may have its digits side by side.
  std::optional<int> bit() {
    skipSpace();
    if (at_ == bytes_.size() || (bytes_[at_] != '0' && bytes_[at_] != '1')) return std::nullopt;
    return bytes_[at_++] - '0';
  }

  std::optional<int> byte() {
    if (at_ == bytes_.size()) return std::nullopt;
    return static_cast<unsigned char>(bytes_[at_++]);
  }

  void skip(std::size_t count) { at_ = std::min(bytes_.size(), at_ + count); }

 private:
  static bool isDigit(char c) { return c >= '0' && c <= '9'; }
  static bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

  void skipSpace() {
    while (at_ < bytes_.size() && (isSpace(bytes_[at_]) || bytes_[at_] == '#')) {
      if (bytes_[at_] == '#') {
        while (at_ < bytes_.size() && bytes_[at_] != '\n') ++at_;
      } else {
        ++at_;
      }
    }
  }

  const std::string& bytes_;
  std::size_t at_ = 0;
};

struct Header {
  char kind = '0';  // '1' to '6'
  int widthPx = 0;
  int heightPx = 0;
  int maximum = 1;

  bool isText() const { return kind <= '3'; }
  bool isBits() const { return kind == '1' || kind == '4'; }
  int channels() const { return kind == '3' || kind == '6' ? 3 : 1; }
};

class PnmFile final : public SheetFile {
 public:
  explicit PnmFile(const std::string& path) : SheetFile(path) {
    const std::string bytes = read();
    Cursor cursor(bytes);
    readHeader(bytes, cursor);
  }

  int pages() const override { return 1; }
  bool hasResolution() const override { return false; }

  Sheet load(int, int, int) const override {
    const std::string bytes = read();
    Cursor cursor(bytes);
    const Header header = readHeader(bytes, cursor);
    Sheet sheet{Raster(header.widthPx, header.heightPx, header.channels()), kAssumedDpi, kAssumedDpi};
    for (int y = 0; y < header.heightPx; ++y) {
      if (!readLine(header, cursor, sheet.pixels.line(y), sheet.pixels.lineBytes())) {
        throw Failure(path() + " ends in its line " + std::to_string(y + 1) + " or holds a wrong number there");
      }
    }
    return sheet;
  }

 private:
  std::string read() const {
    std::ifstream file(path(), std::ios::binary);
    if (!file) throw Failure("cannot open " + path());
    return {std::istreambuf_iterator<char>(file), {}};
  }

  Header readHeader(const std::string& bytes, Cursor& cursor) const {
    constexpr int kMaxSidePx = 1'000'000;
    constexpr int kMaxValue = 65535;
    const auto broken = [&] { return Failure(path() + " has a broken header"); };
    if (bytes.size() < 2 || bytes[0] != 'P' || bytes[1] < '1' || bytes[1] > '6') throw broken();
    Header header;
    header.kind = bytes[1];
    cursor.skip(2);
    const auto width = cursor.number(kMaxSidePx);
    const auto height = cursor.number(kMaxSidePx);
    if (!width || !height) throw broken();
    checkSheetSize(path(), *width, *height);
    header.widthPx = *width;
    header.heightPx = *height;
    if (!header.isBits()) {
      const auto maximum = cursor.number(kMaxValue);
      if (!maximum || *maximum == 0) throw broken();
      header.maximum = *maximum;
    }
    if (!header.isText()) cursor.skip(1);  // the one space before the bytes
    return header;
  }

  static bool readLine(const Header& header, Cursor& cursor, std::uint8_t* out, std::size_t count) {
    int packed = 0;
    for (std::size_t i = 0; i < count; ++i) {
      std::optional<int> value;
      if (header.kind == '1') {
        value = cursor.bit();
      } else if (header.kind == '4') {
        if (i % 8 == 0) {
          value = cursor.byte();
          if (!value) return false;
          packed = *value;
        }
        value = packed >> (7 - i % 8) & 1;
      } else if (header.isText()) {
        value = cursor.number(header.maximum);
      } else {
        value = cursor.byte();
        if (value && header.maximum > 255) {
          const auto low = cursor.byte();
          value = low ? std::optional<int>(*value << 8 | *low) : std::nullopt;
        }
      }
      if (!value || *value > header.maximum) return false;
      const int scaled = (*value * 255 + header.maximum / 2) / header.maximum;
      out[i] = static_cast<std::uint8_t>(header.isBits() ? 255 - scaled : scaled);  // a set bit is black
    }
    return true;
  }
};

}  // namespace

std::shared_ptr<const SheetFile> openPnm(const std::string& path) { return std::make_shared<PnmFile>(path); }

}  // namespace vscan
