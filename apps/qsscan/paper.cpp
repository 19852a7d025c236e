#include "paper.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace qsscan {
namespace {

using namespace orvalle_scan_api;

constexpr double kInch = 25.4;

constexpr PaperRow kPapers[] = {
    {"a3", {PAPERTYPE_A3, 297, 420}},
    {"a4", {PAPERTYPE_A4, 210, 297}},
    {"a5", {PAPERTYPE_A5, 148, 210}},
    {"a6", {PAPERTYPE_A6, 105, 148}},
    {"jis-b4", {PAPERTYPE_JISB4, 257, 364}},
    {"jis-b5", {PAPERTYPE_JISB5, 182, 257}},
    {"jis-b6", {PAPERTYPE_JISB6, 128, 182}},
    {"letter", {PAPERTYPE_LETTER, 8.5 * kInch, 11 * kInch}},
    {"legal", {PAPERTYPE_LEGAL, 8.5 * kInch, 14 * kInch}},
    {"ledger", {PAPERTYPE_LEDGER, 11 * kInch, 17 * kInch}},
    {"executive", {PAPERTYPE_EXECUTIVE, 7.25 * kInch, 10.5 * kInch}},
    {"folio", {PAPERTYPE_FOLIO, 8.5 * kInch, 13 * kInch}},
    {"photo-4x6", {PAPERTYPE_PHOTO, 4 * kInch, 6 * kInch}},
    {"photo-5x7", {PAPERTYPE_PHOTO2L, 5 * kInch, 7 * kInch}},
    {"photo-l", {PAPERTYPE_PHOTOL, 3.503 * kInch, 5 * kInch}},
    {"index-card", {PAPERTYPE_INDEXCARD, 5 * kInch, 8 * kInch}},
    {"postcard", {PAPERTYPE_POSTCARD, 100, 148}},
    {"double-postcard", {PAPERTYPE_POSTCARD2, 148, 200}},
    {"business-card", {PAPERTYPE_BCARD, 90, 60}},
    {"business-card-upright", {PAPERTYPE_BCARDV, 60, 90}},
    {"id-card", {PAPERTYPE_CUSTOM, 85.6, 53.98}},
    {"long", {PAPERTYPE_LONG, 8.5 * kInch, 0}},
    {"long-narrow", {PAPERTYPE_LONG_NARROW, 4.25 * kInch, 0}},
};

// Where letter-size paper is what people have.
constexpr std::string_view kLetterTerritories[] = {"BZ", "CA", "CL", "CO", "CR", "GT", "MX",
                                                   "NI", "PA", "PH", "PR", "SV", "US", "VE"};

std::optional<double> parseMm(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  if (!(value >= 1 && value <= 10000)) return std::nullopt;
  return value;
}

}  // namespace

std::span<const PaperRow> paperTable() { return kPapers; }

std::optional<Paper> findPaper(std::string_view name) {
  const std::string text(name);
  for (const PaperRow& row : kPapers) {
    if (strcasecmp(row.name, text.c_str()) == 0) return row.paper;
  }
  const auto cross = name.find_first_of("xX");
  if (cross == std::string_view::npos) return std::nullopt;
  const auto width = parseMm(name.substr(0, cross));
  const bool isLong = strcasecmp(text.c_str() + cross + 1, "long") == 0;
  const auto height = isLong ? std::optional<double>(0) : parseMm(name.substr(cross + 1));
  if (!width || !height) return std::nullopt;
  return Paper{PAPERTYPE_CUSTOM, *width, *height};
}

bool isLongByName(PAPERTYPE type) { return type == PAPERTYPE_LONG || type == PAPERTYPE_LONG_NARROW; }

const char* paperOfLocale(std::string_view locale) {
  const auto underscore = locale.find('_');
  if (underscore == std::string_view::npos) return "a4";
  const std::string_view territory = locale.substr(underscore + 1, 2);
  const bool letter = std::find(std::begin(kLetterTerritories), std::end(kLetterTerritories), territory) !=
                      std::end(kLetterTerritories);
  return letter ? "letter" : "a4";
}

const char* defaultPaperName() {
  for (const char* variable : {"LC_ALL", "LC_PAPER", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return paperOfLocale(value);
  }
  return "a4";
}

}  // namespace qsscan
