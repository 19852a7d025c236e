// A button of the scanner's panel and the settings chosen with it, for the answers that tell hosts about them.
//   image | ocr | email | file, then any of KEY=VALUE (docs/virtual-scanner.md has the list)
// Threads: reentrant; a plain value.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "support/little_endian.h"

namespace vscan {

enum class PushEvent { Image = 1, Ocr, Email, File };

// Paper and file formats by the words and codes of both generations; rows of static tables.
struct PaperName {
  std::string_view word;  // of the first generation
  std::uint8_t code;      // of the second
};
struct FormatName {
  std::string_view name;
  std::string_view word;
  std::uint8_t code;
};

// What the panel does not say is left open.
struct PanelSettings {
  PushEvent event = PushEvent::Image;
  std::optional<int> resolutionX;  // dots per inch; 0 = automatic
  std::optional<int> resolutionY;
  std::optional<int> color;  // 0 automatic, 1 mono, 2 error diffusion, 3 grey, 4 palette, 5 colour
  const PaperName* paper = nullptr;
  std::optional<bool> isLandscape;
  std::optional<bool> isTurned;   // by 90 degrees
  std::optional<int> brightness;  // 0 to 100
  std::optional<int> contrast;    // 0 to 100
  std::optional<bool> isDuplex;
  std::optional<bool> bindsShortEdge;
  std::optional<bool> crops;
  std::optional<bool> deskews;
  std::optional<bool> dropsBlankPages;
  std::optional<bool> removesBleedThrough;
  std::optional<bool> removesBackground;
  std::optional<int> backgroundLevel;  // 0 to 255
  const FormatName* format = nullptr;
  std::optional<int> compression;  // 0 to 100
  std::optional<int> quality;      // 1 to 4, second generation only
};

// Throws Failure with a sentence for what is no button, no key or no value.
PanelSettings parsePanelSettings(const std::string& text);

namespace gen1 {
// The body of the answer to K; a single empty line when no button is pressed.
std::string keyText(const std::optional<PanelSettings>& pressed);
}  // namespace gen1

namespace gen2 {
// The body of the answer to GKP.
Bytes keyBody(const std::optional<PanelSettings>& pressed);
}  // namespace gen2

}  // namespace vscan
