#include "protocol/panel_settings.h"

#include <algorithm>
#include <sstream>

#include "protocol/values.h"
#include "support/failure.h"

namespace vscan {
namespace {

using Text = std::string_view;

constexpr PaperName kPapers[] = {
    {"AUTO", 0x00},  {"A4", 0x12},        {"LETTER", 0x24}, {"LEGAL", 0x22},   {"A3", 0x11},       {"LEDGER", 0x21},
    {"JISB4", 0x31}, {"JISB5", 0x32},     {"A5", 0x13},     {"JISB6", 0x33},   {"A6", 0x14},       {"EXECUTIVE", 0x25},
    {"PHOTO", 0x53}, {"INDEXCARD", 0x51}, {"PHOTOL", 0x54}, {"PHOTO2L", 0x52}, {"POSTCARD", 0x61}, {"POSTCARD2", 0x62},
    {"BCARD", 0x41}, {"BCARDV", 0x41},    {"LONG", 0x72},   {"FOLIO", 0x23},
};

constexpr FormatName kFormats[] = {
    {"bmp", "BMP", 0x20},  {"jpeg", "JPEG", 0x21},      {"tiff", "TIFF", 0x11}, {"multi-tiff", "MULTI-TIFF", 0x12},
    {"png", "PNG", 0x22},  {"pdf", "PDF(Image)", 0x01}, {"xps", "XPS", 0x24},   {"txt", "TXT", 'A'},
    {"html", "HTML", 'C'}, {"rtf", "RTF", 'B'},
};

template <class Row, std::size_t kCount>
bool findRow(const Row (&rows)[kCount], Text word, Text Row::*name, const Row*& out) {
  out = std::find_if(std::begin(rows), std::end(rows), [&](const Row& row) { return row.*name == word; });
  return out != std::end(rows);
}

bool readSmall(Text text, int minimum, int maximum, std::optional<int>& out) {
  std::int64_t number = 0;
  if (!readNumber(text, minimum, maximum, number)) return false;
  out = static_cast<int>(number);
  return true;
}

bool readFlag(Text text, std::optional<bool>& out) {
  return readWord<std::optional<bool>>(text, {{"on", true}, {"off", false}}, out);
}

bool readResolution(Text text, PanelSettings& s) {
  if (text == "auto") {
    s.resolutionX = s.resolutionY = 0;
    return true;
  }
  constexpr int kMaxDpi = 9600;
  const auto times = text.find('x');
  if (!readSmall(text.substr(0, times), 1, kMaxDpi, s.resolutionX)) return false;
  s.resolutionY = s.resolutionX;
  return times == Text::npos || readSmall(text.substr(times + 1), 1, kMaxDpi, s.resolutionY);
}

bool readBackground(Text text, PanelSettings& s) {
  if (readFlag(text, s.removesBackground)) return true;
  s.removesBackground = true;
  return readSmall(text, 0, 255, s.backgroundLevel);
}

struct KeyRowOfPanel {
  Text key;
  bool (*read)(Text text, PanelSettings& settings);
};

constexpr KeyRowOfPanel kKeys[] = {
    {"resolution", readResolution},
    {"color",
     [](Text text, PanelSettings& s) {
       return readWord<std::optional<int>>(
           text, {{"auto", 0}, {"mono", 1}, {"errdif", 2}, {"gray", 3}, {"palette", 4}, {"color", 5}}, s.color);
     }},
    {"paper", [](Text text, PanelSettings& s) { return findRow(kPapers, text, &PaperName::word, s.paper); }},
    {"landscape", [](Text text, PanelSettings& s) { return readFlag(text, s.isLandscape); }},
    {"turn",
     [](Text text, PanelSettings& s) {
       return readWord<std::optional<bool>>(text, {{"0", false}, {"90", true}}, s.isTurned);
     }},
    {"brightness", [](Text text, PanelSettings& s) { return readSmall(text, 0, 100, s.brightness); }},
    {"contrast", [](Text text, PanelSettings& s) { return readSmall(text, 0, 100, s.contrast); }},
    {"duplex", [](Text text, PanelSettings& s) { return readFlag(text, s.isDuplex); }},
    {"binding",
     [](Text text, PanelSettings& s) {
       return readWord<std::optional<bool>>(text, {{"long", false}, {"short", true}}, s.bindsShortEdge);
     }},
    {"crop", [](Text text, PanelSettings& s) { return readFlag(text, s.crops); }},
    {"deskew", [](Text text, PanelSettings& s) { return readFlag(text, s.deskews); }},
    {"blank", [](Text text, PanelSettings& s) { return readFlag(text, s.dropsBlankPages); }},
    {"bleed", [](Text text, PanelSettings& s) { return readFlag(text, s.removesBleedThrough); }},
    {"background", readBackground},
    {"format", [](Text text, PanelSettings& s) { return findRow(kFormats, text, &FormatName::name, s.format); }},
    {"compression", [](Text text, PanelSettings& s) { return readSmall(text, 0, 100, s.compression); }},
    {"quality", [](Text text, PanelSettings& s) { return readSmall(text, 1, 4, s.quality); }},
};

}  // namespace

PanelSettings parsePanelSettings(const std::string& text) {
  std::istringstream words(text);
  std::string word;
  words >> word;
  PanelSettings settings;
  if (!readWord<PushEvent>(word,
                           {{"image", PushEvent::Image},
                            {"ocr", PushEvent::Ocr},
                            {"email", PushEvent::Email},
                            {"file", PushEvent::File}},
                           settings.event)) {
    throw Failure("there is no button \"" + word + "\"; there are image, ocr, email and file");
  }
  while (words >> word) {
    const auto equals = word.find('=');
    const auto* const row =
        std::find_if(std::begin(kKeys), std::end(kKeys), [&](auto& one) { return one.key == word.substr(0, equals); });
    if (equals == std::string::npos || row == std::end(kKeys)) {
      std::string known;
      for (const auto& key : kKeys) known += (known.empty() ? "" : ", ") + std::string(key.key);
      throw Failure("\"" + word + "\" is no setting of a button; they are written KEY=VALUE with one of " + known);
    }
    if (!row->read(std::string_view(word).substr(equals + 1), settings)) {
      throw Failure("\"" + word.substr(equals + 1) + "\" is no value of " + std::string(row->key));
    }
  }
  if (settings.bindsShortEdge && !settings.isDuplex) throw Failure("binding means nothing without duplex=on");
  return settings;
}

}  // namespace vscan
