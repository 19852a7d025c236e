// Where a sheet lies on the device and which pixels of the device a scan covers. All in pixels at the granted
// resolution, counted from the left and the top of the largest area of the source.
// Threads: reentrant.
#pragma once
#include <array>
#include <cstdint>
#include <optional>

#include "device/profile.h"
#include "protocol/scan_settings.h"

namespace vscan {

struct Size {
  int widthPx = 0;
  int heightPx = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;  // the first pixel outside
  int bottom = 0;
  int widthPx() const { return right - left; }
  int heightPx() const { return bottom - top; }
  bool operator==(const Rect&) const = default;
};

// The largest area of a path at a resolution; a long-paper scan in the feeder reaches further down.
Size maxArea(const Profile& profile, Path path, bool longPaper, int dpiX, int dpiY);

// A sheet of that size at the paper position of the profile: against an edge or in the middle.
Rect placeSheet(const Profile& profile, Path path, Size sheet, Size maximum);

// How far a scan goes beyond its area; below 0: how much it leaves out.
struct Rim {
  int left = 0;
  int right = 0;
  int top = 0;
  int bottom = 0;
};

// What of the device is scanned. Automatic kinds cover the sheet itself, Over the sheet and the rim, Full everything;
// Normal the area that the numbers give and the rim. The numbers of a start command are taken as
// 32 bits that may have wrapped below 0, and are cut to the largest area; a width or a height that is then nothing or
// less is left open by the host and becomes that of the sheet.
Rect scannedArea(AreaKind kind, const std::array<std::int64_t, 4>& numbers, Rect sheet, Size maximum,
                 const Rim& rim = {});

}  // namespace vscan
