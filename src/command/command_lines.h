// What the command strings of both generations are built with: the lines, the frame around them, and the one loop over
// a generation's table of lines.
// Threads: reentrant.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "command/scancmd_param.h"
#include "foundation/qvtcl/TString.h"

namespace orvalle_scan_api::command_lines {

// The word that the device reads for a number. A number without a row has the word that wordOf is given for the rest.
struct Keyword {
  std::int32_t value;
  const char* word;
};

template <std::size_t N>
const char* wordOf(const Keyword (&words)[N], std::int32_t value, const char* otherwise) {
  for (const Keyword& row : words) {
    if (row.value == value) return row.word;
  }
  return otherwise;
}

// KEY=VALUE and 0x0A.
std::string line(const char* key, std::string_view value);
// VALUE and 0x0A, the line of a command whose one line has no key.
std::string lineWithoutKey(const char* value);

// The numbers in decimal with commas between them. scratch holds one at a time.
template <class Number>
std::string joined(qvtcl::CTString& scratch, std::initializer_list<Number> numbers) {
  std::string text;
  for (const Number number : numbers) {
    if (!text.empty()) text += ',';
    text += scratch.ToString(number);
  }
  return text;
}

// 0x1B, mnemonic, 0x0A, lines, 0x80. Logged at level 0.
std::string frame(const char* mnemonic, const std::string& lines);
// The empty string of a command without its record, which is logged too.
std::string noFrame(const char* mnemonic);

// One line of a command; empty where it is not sent.
template <class Strings>
using MakeLine = std::string (Strings::*)(const _SCANCMD_SCANPARAM&) const;

// The frame of a table of lines, whose row order is wire order.
template <class Strings, std::size_t N>
std::string frame(const char* mnemonic, const Strings& strings, const MakeLine<Strings> (&rows)[N],
                  const _SCANCMD_SCANPARAM* param) {
  if (param == nullptr) return noFrame(mnemonic);
  std::string lines;
  for (const MakeLine<Strings> make : rows) lines += (strings.*make)(*param);
  return frame(mnemonic, lines);
}

}  // namespace orvalle_scan_api::command_lines
