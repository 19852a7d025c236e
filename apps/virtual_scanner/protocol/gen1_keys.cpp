// The answer to K: lines of key and value. A host searches the whole text for a key and takes the first hit.
#include "protocol/panel_settings.h"

namespace vscan::gen1 {
namespace {

std::string line(const char* key, std::string_view value) { return key + std::string("=") + std::string(value) + "\n"; }

std::string number(const char* key, std::optional<int> value) { return value ? line(key, std::to_string(*value)) : ""; }

std::string flag(const char* key, std::optional<bool> value) { return value ? line(key, *value ? "1" : "0") : ""; }

}  // namespace

std::string keyText(const std::optional<PanelSettings>& pressed) {
  if (!pressed) return "\n";
  constexpr std::string_view kEvents[] = {"", "IMAGE", "OCR", "EMAIL", "FILE"};
  constexpr std::string_view kColors[] = {"AUTO", "TEXT", "ERRDIF", "GRAY256", "C256", "CGRAY"};
  const PanelSettings& s = *pressed;
  std::string text = line("F", kEvents[static_cast<int>(s.event)]);
  if (s.isDuplex) text += line("D", *s.isDuplex ? "DUP" : "SIN");
  if (s.bindsShortEdge) text += line("E", *s.bindsShortEdge ? "SHO" : "LON");
  // This generation has one number for both directions.
  if (s.resolutionX) text += line("R", *s.resolutionX == 0 ? "AUTO" : std::to_string(*s.resolutionX));
  if (s.color) text += line("M", kColors[*s.color]);
  if (s.paper != nullptr) text += line("P", s.paper->word);
  text += number("B", s.brightness) + number("N", s.contrast) + flag("A", s.crops);
  if (s.format != nullptr) {
    text += line("T", s.format->word);
    const bool isTiff = s.format->word.find("TIFF") != std::string_view::npos;
    if (s.compression) text += isTiff ? flag("C", *s.compression != 0) : number("J", s.compression);
  }
  text += flag("W", s.dropsBlankPages) + flag("K", s.removesBleedThrough) + flag("O", s.isLandscape) +
          flag("X", s.isTurned) + flag("S", s.deskews) + flag("G", s.removesBackground) +
          number("L", s.backgroundLevel);
  return text;
}

}  // namespace vscan::gen1
