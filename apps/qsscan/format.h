// The formats of the output, and what each can hold.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace qsscan {

enum class Format { kPdf, kTiff, kPng, kJpeg, kPnm };

struct FormatRow {
  Format format;
  const char* name;    // as --format takes it
  const char* ending;  // of the files that we name
  std::string_view spellings[6];
  bool holdsManyPages;
  bool holdsProfile;  // a colour profile
};

const FormatRow& rowOf(Format format);

// By name or by the ending of a file's name, in any case.
std::optional<Format> findFormat(std::string_view name);

// "pdf, tiff, png, jpeg and pnm"
std::string formatNames();

}  // namespace qsscan
