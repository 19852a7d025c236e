// The scanner itself: what outlives a connection.
// Threads: profile and options are read by all that serve hosts; the feeder belongs to the host whose turn it is; panel
// and turn are for any.
#pragma once
#include <memory>
#include <vector>

#include "device/fault.h"
#include "device/page_maker.h"
#include "device/panel.h"
#include "device/paper_path.h"
#include "device/profile.h"
#include "device/turn.h"
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
  std::unique_ptr<Panel> panel = std::make_unique<Panel>();  // never null
  std::unique_ptr<Turn> turn = std::make_unique<Turn>();     // never null
};

// The face that a scan of that path would meet next; without a file when there is none.
inline Face nextFace(const Device& device, Path path) {
  return path == Path::Flatbed ? device.bed : device.feeder.top();
}

}  // namespace vscan
