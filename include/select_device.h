// The device that a host chooses.
#pragma once

#include <cstddef>
#include <type_traits>

#include "scan_types.h"

namespace orvalle_scan_api {

// Refused by SelectDevice when connectionType is 0 or when both names are empty. Names are NUL-terminated; a name that
// fills its field without a NUL is cut at 127 characters.
struct _QS_SELECT_DEVICE_INFO {
  std::int32_t connectionType;  // 1 direct, 2 network
  char primaryName[128];        // used unless a network device has a secondary name
  char secondaryName[128];      // preferred for network devices when it is not empty
};
static_assert(std::is_standard_layout_v<_QS_SELECT_DEVICE_INFO> &&
              std::is_trivially_copyable_v<_QS_SELECT_DEVICE_INFO>);
static_assert(offsetof(_QS_SELECT_DEVICE_INFO, secondaryName) == 132 && sizeof(_QS_SELECT_DEVICE_INFO) == 260);

}  // namespace orvalle_scan_api
