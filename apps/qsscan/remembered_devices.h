// Devices that answered before, newest first, in a file of the user's.
#pragma once

#include <string>
#include <vector>

namespace qsscan {

struct RememberedDevice {
  std::string address;     // as -d takes it
  std::string lastAnswer;  // "2026-01-31T12:00:00Z", may be empty
};

struct RememberedDevices {
  std::vector<RememberedDevice> devices;
  std::string problem;  // a sentence where there is a file that cannot be used
};

// What is in the file. Entries that make no sense are left out.
RememberedDevices readRememberedDevices();

// Puts the device in front and keeps the newest. A file that cannot be used is begun anew; where none can be written
// nothing happens, for no scan may fail for it.
void rememberDevice(const std::string& address) noexcept;

}  // namespace qsscan
