// Device names: HOST, HOST:PORT, [IPV6]:PORT for TCP; unix:PATH and usb:VVVV:PPPP[:SERIAL] for direct connections.
#pragma once

#include <string_view>

#include "select_device.h"

namespace qsscan {

// The record that selects the device. Throws CommandError (usage) with a sentence for a name outside the grammar and
// for one that does not fit the record; a name is never guessed at.
orvalle_scan_api::_QS_SELECT_DEVICE_INFO parseDeviceName(std::string_view name);

}  // namespace qsscan
