#include "sheets/sheet_file.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "sheets/input_file.h"
#include "support/failure.h"

namespace vscan {
namespace {

struct Kind {
  std::string_view firstBytes;
  std::shared_ptr<const SheetFile> (*open)(const std::string& path);
};

using namespace std::string_view_literals;

constexpr Kind kKinds[] = {
    {"\x89PNG\r\n\x1A\n"sv, openPng},
    {"\xFF\xD8\xFF"sv, openJpeg},
    {"II*\0"sv, openTiff},
    {"MM\0*"sv, openTiff},
    {"II+\0"sv, openTiff} /* BigTIFF */,
    {"MM\0+"sv, openTiff},
    {"%PDF-"sv, openPdf},
    {"P1"sv, openPnm},
    {"P2"sv, openPnm},
    {"P3"sv, openPnm},
    {"P4"sv, openPnm},
    {"P5"sv, openPnm},
    {"P6"sv, openPnm},
};

}  // namespace

InputFile openForReading(const std::string& path) {
  InputFile file(std::fopen(path.c_str(), "rbe"));
  if (!file) throw Failure("cannot open " + path + ": " + std::strerror(errno));
  return file;
}

void checkSheetSize(const std::string& path, std::int64_t widthPx, std::int64_t heightPx) {
  if (widthPx < 1 || heightPx < 1) throw Failure(path + " has no pixels");
  if (heightPx > kMaxSheetPixels / widthPx) {
    throw Failure(path + " has " + std::to_string(widthPx) + " x " + std::to_string(heightPx) +
                  " pixels, more than a sheet can have");
  }
}

std::shared_ptr<const SheetFile> openSheetFile(const std::string& path) {
  std::array<char, 8> head{};
  const std::size_t count = std::fread(head.data(), 1, head.size(), openForReading(path).get());
  const std::string_view firstBytes(head.data(), count);
  for (const Kind& kind : kKinds) {
    if (firstBytes.starts_with(kind.firstBytes)) return kind.open(path);
  }
  throw Failure(path + " is neither PNG, JPEG, TIFF, PNM nor PDF");
}

}  // namespace vscan
