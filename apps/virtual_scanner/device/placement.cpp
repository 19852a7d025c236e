#include "device/placement.h"

#include <algorithm>

namespace vscan {
namespace {

constexpr std::int64_t kTenthsOfMmPerInch = 254;

int toPixels(std::int64_t tenthsOfMm, int dpi) { return static_cast<int>(tenthsOfMm * dpi / kTenthsOfMmPerInch); }

// The paper position of the capability answer: 1 against the left or top edge, 2 in the middle, 3 against the other.
int offsetOf(std::int64_t position, int sheetPx, int maximumPx) {
  const int room = std::max(0, maximumPx - sheetPx);
  return position == 3 ? room : position == 2 ? room / 2 : 0;
}

std::int64_t wrapped(std::int64_t number) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(number)); }

int cut(std::int64_t value, int low, int high) {
  return static_cast<int>(std::clamp<std::int64_t>(value, low, std::max(low, high)));
}

// The area that the numbers of a start command give.
Rect areaOf(const std::array<std::int64_t, 4>& numbers, const Rect& sheet, Size maximum) {
  const auto [left, top, right, bottom] = numbers;
  Rect area{cut(wrapped(left), 0, maximum.widthPx - 1), cut(wrapped(top), 0, maximum.heightPx - 1), 0, 0};
  if (wrapped(right) > area.left) {
    area.right = cut(wrapped(right), area.left + 1, maximum.widthPx);
  } else {
    area.left = sheet.left;
    area.right = sheet.right;
  }
  area.bottom = cut(wrapped(bottom) > area.top ? wrapped(bottom) : sheet.bottom, area.top + 1, maximum.heightPx);
  return area;
}

Rect widened(Rect area, const Rim& rim, Size maximum) {
  area.left = cut(area.left - rim.left, 0, maximum.widthPx - 1);
  area.top = cut(area.top - rim.top, 0, maximum.heightPx - 1);
  area.right = cut(area.right + rim.right, area.left + 1, maximum.widthPx);
  area.bottom = cut(area.bottom + rim.bottom, area.top + 1, maximum.heightPx);
  return area;
}

}  // namespace

Size maxArea(const Profile& profile, Path path, bool longPaper, int dpiX, int dpiY) {
  const PathAbilities can = profile.abilities().of(path);
  const std::int64_t length = longPaper ? std::max(can.size[1], can.longLength) : can.size[1];
  return {std::max(1, toPixels(can.size[0], dpiX)), std::max(1, toPixels(length, dpiY))};
}

Rect placeSheet(const Profile& profile, Path path, Size sheet, Size maximum) {
  const std::size_t place = path == Path::Flatbed ? 0 : 2;
  const auto position = profile.abilities().position;
  const int left = offsetOf(position[place], sheet.widthPx, maximum.widthPx);
  const int top = offsetOf(position[place + 1], sheet.heightPx, maximum.heightPx);
  return {left, top, left + sheet.widthPx, top + sheet.heightPx};
}

Rect scannedArea(AreaKind kind, const std::array<std::int64_t, 4>& numbers, Rect sheet, Size maximum, const Rim& rim) {
  sheet.right = std::min(sheet.right, maximum.widthPx);
  sheet.bottom = std::min(sheet.bottom, maximum.heightPx);
  switch (kind) {
    case AreaKind::Normal:
      return widened(areaOf(numbers, sheet, maximum), rim, maximum);
    case AreaKind::Full:
      return {0, 0, maximum.widthPx, maximum.heightPx};
    case AreaKind::Over:
      return widened(sheet, rim, maximum);
    case AreaKind::Automatic:
    case AreaKind::AutomaticDeskewed:
      break;
  }
  return sheet;
}

}  // namespace vscan
