// Names the device that IDeviceAccess::Open opens.
#pragma once

#include <cstddef>
#include <type_traits>

#include "../scan_types.h"

namespace orvalle_scan_api {

struct _DEV_IDENTIFIER {
  std::int32_t kind;        // 0, or 3 when name is the secondary name of a network device
  std::int32_t connection;  // the connectionType: 1 direct, 2 network
  const char* name;         // NUL-terminated. Not owned: points into the selected-device record.
};
static_assert(std::is_standard_layout_v<_DEV_IDENTIFIER> && std::is_trivially_copyable_v<_DEV_IDENTIFIER>);
static_assert(offsetof(_DEV_IDENTIFIER, name) == 8 && sizeof(_DEV_IDENTIFIER) == 16);

}  // namespace orvalle_scan_api
