#include "scan_report.h"

#include <cmath>
#include <cstdio>

#include "results.h"

namespace qsscan {
namespace {

using Json = nlohmann::ordered_json;

std::string counted(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string filesText(const std::vector<std::string>& files) {
  if (files.size() == 1) return files.front() == "-" ? "standard output" : files.front();
  return files.front() + " to " + files.back();
}

double roundedSeconds(double seconds) { return std::round(seconds * 1000) / 1000; }

}  // namespace

PageReport reportPage(const Page& page, double seconds) {
  return {page.number, page.widthPx, page.heightPx,     page.bitsPerPixel,
          page.dpiX,   page.dpiY,    page.cutAtMaximum, page.fittingProfile() != nullptr,
          seconds};
}

std::string jsonText(const Json& json, int indent) {
  return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

Json pageJson(const PageReport& page) {
  return Json{{"number", page.number},
              {"widthPx", page.widthPx},
              {"heightPx", page.heightPx},
              {"bitsPerPixel", page.bitsPerPixel},
              {"dpiX", page.dpiX},
              {"dpiY", page.dpiY},
              {"cutAtMaximum", page.cutAtMaximum},
              {"colorProfile", page.hasProfile},
              {"seconds", roundedSeconds(page.seconds)}};
}

Json reportJson(const ScanReport& report) {
  Json pages = Json::array();
  for (const PageReport& page : report.pages) pages.push_back(pageJson(page));
  return Json{{"device", report.device},
              {"exitCode", static_cast<int>(report.exit)},
              {"reason", report.sentence.empty() ? Json(nullptr) : Json(report.sentence)},
              {"result", hexCode(report.result)},
              {"files", report.files},
              {"pages", pages},
              {"lostPages", report.lostPages},
              {"blankPages", report.blankPages},
              {"seconds", roundedSeconds(report.seconds)}};
}

std::string pageText(const PageReport& page) {
  constexpr double kMmPerInch = 25.4;
  char text[160];
  std::snprintf(text, sizeof text, "Page %d: %.0f x %.0f mm, %d x %d pixels, %d dpi, %.1f s", page.number,
                page.widthPx * kMmPerInch / page.dpiX, page.heightPx * kMmPerInch / page.dpiY, page.widthPx,
                page.heightPx, page.dpiX, page.seconds);
  return text;
}

std::string reportText(const ScanReport& report) {
  std::string text;
  if (!report.sentence.empty()) text += "qsscan: " + report.sentence + "\n";
  for (const PageReport& page : report.pages) {
    if (page.cutAtMaximum) {
      text += "qsscan: Page " + std::to_string(page.number) + " is longer than the device can scan and was cut.\n";
    }
  }
  if (report.profileIsMissing) text += "qsscan: The device gave no colour profile; the pages have none.\n";
  if (report.blankPages > 0) {
    text += "qsscan: " + counted(static_cast<std::size_t>(report.blankPages), "blank page") + " left out.\n";
  }
  if (!report.files.empty()) {
    const bool toStdout = report.files.front() == "-";
    const char* verb = toStdout ? "sent to" : report.sentence.empty() ? "in" : "kept in";
    text += "qsscan: " + counted(report.pages.size(), "page") + " " + verb + " " + filesText(report.files) + ".\n";
  } else if (!report.sentence.empty()) {
    text += "qsscan: No page was kept.\n";
  }
  if (report.lostPages > 0) {
    text += "qsscan: " + counted(static_cast<std::size_t>(report.lostPages), "page") +
            (report.lostPages == 1 ? " that was scanned is lost: scan it again.\n"
                                   : " that were scanned are lost: scan them again.\n");
  }
  return text;
}

}  // namespace qsscan
