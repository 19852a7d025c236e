// Paper by name, and the paper that people in a place use.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "scan_types.h"

namespace qsscan {

struct Paper {
  orvalle_scan_api::PAPERTYPE type = orvalle_scan_api::PAPERTYPE_AUTO;
  double widthMm = 0;
  double heightMm = 0;  // 0 for long paper, whose end the device finds
};

struct PaperRow {
  const char* name;
  Paper paper;
};

// The named papers, in the order in which help shows them.
std::span<const PaperRow> paperTable();

// A named paper, in any case, WIDTHxHEIGHT in millimetres such as 148x210.5, or WIDTHxlong. Nothing for anything else,
// sizes below 1 mm and above 10 m included.
std::optional<Paper> findPaper(std::string_view name);

// Long paper by its own name, not as WIDTHxlong: the library drops some wishes there.
bool isLongByName(orvalle_scan_api::PAPERTYPE type);

// "letter" or "a4" for a locale name such as en_US.UTF-8.
const char* paperOfLocale(std::string_view locale);

// The same for the environment of this process: LC_ALL, LC_PAPER, LANG, in this order.
const char* defaultPaperName();

}  // namespace qsscan
