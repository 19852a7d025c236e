// What came of a scan, for people and for programs.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "exit_codes.h"
#include "page.h"

namespace qsscan {

struct PageReport {
  int number;
  int widthPx, heightPx, bitsPerPixel, dpiX, dpiY;
  bool cutAtMaximum;
  bool hasProfile;  // a colour profile is attached
  double seconds;   // since the start of the scan
};

PageReport reportPage(const Page& page, double seconds);

struct ScanReport {
  std::string device;
  ExitCode exit = ExitCode::kDone;
  std::string sentence;  // why the scan ended early; empty when it did not
  std::uint32_t result = 0;
  std::vector<PageReport> pages;  // in the files
  std::vector<std::string> files;
  int lostPages = 0;  // came and could not be written
  int blankPages = 0;
  bool profileIsMissing = false;  // asked for, and not given
  double seconds = 0;
};

// The text of a value; bytes of a file name that are no UTF-8 become replacement characters. indent -1 is one line.
std::string jsonText(const nlohmann::ordered_json& json, int indent);

nlohmann::ordered_json pageJson(const PageReport& page);
nlohmann::ordered_json reportJson(const ScanReport& report);

// "Page 1: 210 x 297 mm, 2480 x 3508 pixels, 300 dpi, 1.2 s"
std::string pageText(const PageReport& page);

// What was kept and why the scan ended, a sentence a line.
std::string reportText(const ScanReport& report);

}  // namespace qsscan
