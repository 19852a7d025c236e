#include "settings/ConvertUnit.h"

#include <climits>

namespace orvalle_scan_api {

namespace {

// The magnitude's bits; the most negative number is its own magnitude.
std::uint32_t magnitude(std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  return value < 0 ? 0 - bits : bits;
}

// True where the magnitude, taken as a signed number, stays below the limit. Where long has 64 bits, the most negative
// number alone fails.
bool isBelow(std::uint32_t magnitude, unsigned long limit) {
  return static_cast<unsigned long>(static_cast<std::int32_t>(magnitude)) < limit;
}

std::int32_t withSignOf(std::int32_t sign, std::int64_t magnitude) {
  return static_cast<std::int32_t>(sign < 0 ? -magnitude : magnitude);
}

}  // namespace

bool CConvertUnit::ConvMillimeterToInch(std::int32_t mm, std::int32_t* out) const {
  if (out == nullptr) return false;
  const std::uint32_t m = magnitude(mm);
  if (!isBelow(m, ULONG_MAX / 100)) {
    *out = 0;
    return false;
  }
  // Kept: the product wraps in 32 bits, so that lengths above 2147.48 mm come out wrong. A wider product would change
  // what is sent for such pages. Pinned by ConvertUnit_test "the product of a long millimetre value wraps".
  const std::int64_t product = static_cast<std::int32_t>(m * 10000);
  *out = withSignOf(mm, (product / 254 + 5) / 100);
  return true;
}

bool CConvertUnit::ConvInchToMillimeter(std::int32_t inch, std::int32_t* out) const {
  if (out == nullptr) return false;
  const std::uint32_t i = magnitude(inch);
  if (!isBelow(i, ULONG_MAX / 254)) {
    *out = 0;
    return false;
  }
  *out = withSignOf(inch, std::int64_t{i} * 25400 / 10000);
  return true;
}

bool CConvertUnit::ConvInchToPixels(std::uint32_t dpi, std::int32_t inch, std::int32_t* out) const {
  if (out == nullptr) return false;
  *out = withSignOf(inch, (magnitude(inch) * dpi * 10 + 5000) / 10000);
  return true;
}

bool CConvertUnit::ConvPixelsToInch(std::uint32_t dpi, std::int32_t pixels, std::int32_t* out) const {
  if (out == nullptr) return false;
  *out = dpi == 0 ? 0 : static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels) * 1000 / dpi);
  return dpi != 0;
}

bool CConvertUnit::ConvMillimeterToPixles(std::uint32_t dpi, std::int32_t mm, std::int32_t* out) const {
  return ConvMillimeterToInch(mm, out) && ConvInchToPixels(dpi, *out, out);
}

bool CConvertUnit::ConvPixlesToMillimeter(std::uint32_t dpi, std::int32_t pixels, std::int32_t* out) const {
  return ConvPixelsToInch(dpi, pixels, out) && ConvInchToMillimeter(*out, out);
}

std::int32_t CConvertUnit::ConvDeviceMillimeterToDriverMillimeter(std::int32_t deviceMm) const {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(deviceMm) * 10);
}

bool CConvertUnit::ConvertUnit(SCANAREA area, SCANAREA* out, UNITTYPE to) const {
  if (out == nullptr) return false;
  out->unit = to;
  return eachMember({0, 0}, area, out, [=, this](std::uint32_t, std::int32_t v, std::int32_t* r) {
    return convertLength(v, area.unit, r, to);
  });
}

bool CConvertUnit::ConvertToPixles(Resolution dpi, SCANAREA area, SCANAREA* out) const {
  if (out == nullptr) return false;
  out->unit = UNIT_PIXEL;
  return eachMember(dpi, area, out, [=, this](std::uint32_t d, std::int32_t v, std::int32_t* r) {
    return lengthToPixels(d, v, area.unit, r);
  });
}

bool CConvertUnit::ConvertPixlesTo(Resolution dpi, SCANAREA area, SCANAREA* out, UNITTYPE to) const {
  if (out == nullptr || area.unit != UNIT_PIXEL) return false;
  out->unit = to == UNIT_INCH || to == UNIT_MILLIMETER ? to : UNIT_PIXEL;
  return eachMember(dpi, area, out, [=, this](std::uint32_t d, std::int32_t v, std::int32_t* r) {
    return pixelsToLength(d, v, r, to);
  });
}

bool CConvertUnit::convertLength(std::int32_t value, UNITTYPE from, std::int32_t* out, UNITTYPE to) const {
  if (from == UNIT_PIXEL || to == UNIT_PIXEL) return false;
  if (from == UNIT_MILLIMETER && to == UNIT_INCH) return ConvMillimeterToInch(value, out);
  if (from == UNIT_INCH && to == UNIT_MILLIMETER) return ConvInchToMillimeter(value, out);
  *out = value;
  return true;
}

bool CConvertUnit::lengthToPixels(std::uint32_t dpi, std::int32_t value, UNITTYPE from, std::int32_t* out) const {
  if (from == UNIT_INCH) return ConvInchToPixels(dpi, value, out);
  if (from == UNIT_MILLIMETER) return ConvMillimeterToPixles(dpi, value, out);
  *out = value;
  return true;
}

bool CConvertUnit::pixelsToLength(std::uint32_t dpi, std::int32_t pixels, std::int32_t* out, UNITTYPE to) const {
  if (to == UNIT_INCH) return ConvPixelsToInch(dpi, pixels, out);
  if (to == UNIT_MILLIMETER) return ConvPixlesToMillimeter(dpi, pixels, out);
  *out = pixels;
  return true;
}

}  // namespace orvalle_scan_api
