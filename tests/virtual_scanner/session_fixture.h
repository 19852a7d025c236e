// A scanner that runs in a thread of the test, and hosts that talk to it over loopback.
#pragma once
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <mutex>
#include <thread>

#include "host.h"
#include "net/server.h"
#include "sheet_makers.h"

namespace vscan::test {

class SessionTest : public testing::Test {
 protected:
  SessionTest();
  ~SessionTest() override;

  // One face for each picture, at 300 dpi.
  std::vector<Face> sheets(const std::vector<Raster>& pictures);

  void serve(Device device);
  void stop();
  Host connect();

  // SSP, XSC and the stream. A small sheet in the feeder lies in the middle of its width.
  ReceivedScan scan(Host& host, const std::map<std::string, std::string>& settings = {},
                    const std::string& area = "AUTO");

  std::string logged();

  const TempFolder folder_;
  const Profile office_;
  const Profile classic_;
  DeviceOptions options_;

 private:
  int files_ = 0;
  std::mutex mutex_;
  std::string logged_;
  Log log_;
  UniqueFd stopFd_;
  std::unique_ptr<Device> device_;
  std::unique_ptr<Server> server_;
  std::string address_;
  std::thread thread_;
};

inline const std::map<std::string, std::string> kGreyLines = {{"CLR", "GRAY256"}, {"COMP", "RLENGTH"}};
inline const std::map<std::string, std::string> kGreyJpeg = {{"CLR", "GRAY256"}};

Bytes unpacked(const ReceivedPage& page);

}  // namespace vscan::test
