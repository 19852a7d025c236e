#include "protocol/device_errors.h"

#include <iterator>

namespace vscan {
namespace {

struct ErrorRow {
  DeviceError error;
  std::string_view name;
  std::uint8_t first;
  std::uint8_t second;
};

constexpr ErrorRow kErrors[] = {
    {DeviceError::FeederEmpty, "feeder-empty", 0xC2, 0x90},
    {DeviceError::PaperJam, "jam", 0xC3, 0x91},
    {DeviceError::CoverOpen, "cover-open", 0xC4, 0xA0},
    {DeviceError::Busy, "busy", 0xC5, 0xB0},
    {DeviceError::OutOfMemory, "out-of-memory", 0xC6, 0xB1},
    {DeviceError::DoubleFeed, "double-feed", 0xC8, 0x92},
    {DeviceError::InternalFault, "internal-fault", 0xC9, 0x84},
    {DeviceError::LampFault, "lamp-fault", 0xCA, 0xA1},
    {DeviceError::SettingsNotPossible, "settings-not-possible", 0xCB, 0xA4},
    {DeviceError::Locked, "locked", 0xCC, 0xA5},
};

// Rows are found by their place.
constexpr bool rowsStandInPlace() {
  for (std::size_t i = 0; i < std::size(kErrors); ++i) {
    if (kErrors[i].error != static_cast<DeviceError>(i)) return false;
  }
  return std::size(kErrors) == static_cast<std::size_t>(DeviceError::Locked) + 1;
}
static_assert(rowsStandInPlace());

}  // namespace

std::uint8_t codeOf(DeviceError error, Generation generation) {
  const ErrorRow& row = kErrors[static_cast<std::size_t>(error)];
  return generation == Generation::First ? row.first : row.second;
}

std::vector<std::string_view> deviceErrorNames() {
  std::vector<std::string_view> names;
  for (const ErrorRow& row : kErrors) names.push_back(row.name);
  return names;
}

std::optional<DeviceError> deviceErrorNamed(std::string_view name) {
  for (const ErrorRow& row : kErrors) {
    if (row.name == name) return row.error;
  }
  return std::nullopt;
}

}  // namespace vscan
