// The scanner itself: what outlives a connection.
// Threads: used by the thread that serves connections, but for the panel.
#pragma once
#include <memory>
#include <vector>

#include "device/fault.h"
#include "device/page_maker.h"
#include "device/panel.h"
#include "device/paper_path.h"
#include "device/profile.h"
#include "net/connection.h"
#include "support/log.h"

namespace vscan {

struct DeviceOptions {
  PageOptions page;
  bool whiteLinesInMono = true;
  bool whiteLinesInGrey = false;
  std::vector<Fault> faults;
  Drip drip;
  double pagesPerMinute = 0;  // 0 = as fast as the line allows
};

struct Device {
  Profile profile;
  Feeder feeder;
  Face bed;  // without a file: nothing lies on it
  DeviceOptions options;
  std::unique_ptr<Panel> panel = std::make_unique<Panel>();  // never null; shared with the control thread
};

// The face that a scan of that path would meet next; without a file when there is none.
inline Face nextFace(const Device& device, Path path) {
  return path == Path::Flatbed ? device.bed : device.feeder.top();
}

}  // namespace vscan
