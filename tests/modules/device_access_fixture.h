// A device-access object of the module, and what every test asks of it.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "loopback_device.h"
#include "module_loader.h"
#include "modules/DeviceAccess.h"

namespace module_test {

using Clock = std::chrono::steady_clock;

inline constexpr std::uint32_t kReadTimeout = 0x40500031;
inline constexpr unsigned kStreamRead = 0x40001;  // the smallest read that belongs to the image stream

class DeviceAccessTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(access_, nullptr);
    access_->SetClientId("com.orvalle.twainds");
  }

  int open(int connection, const std::string& name) {
    orvalle_scan_api::_DEV_IDENTIFIER id{0, connection, name.c_str()};
    return access_->Open(id);
  }
  void connect(const LoopbackDevice& device) {
    ASSERT_EQ(open(device.connection(), device.name()), 0) << std::hex << access_->lastResult;
    ASSERT_TRUE(access_->IsOpen());
    ASSERT_EQ(access_->lastResult, 0u);
  }

  // Reads and tells how long it took in elapsedMs_; the value read is in bytes_.
  int read(unsigned size, long timeOutMs) {
    bytes_.assign(size, '\xA5');
    const Clock::time_point start = Clock::now();
    const int got = access_->Read(bytes_.data(), size, size, timeOutMs);
    elapsedMs_ = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_LE(got, static_cast<int>(size));
    bytes_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return got;
  }
  int write(const std::string& bytes) { return access_->Write(bytes.data(), static_cast<int>(bytes.size()), 0); }

  void expectFailure(std::uint32_t expected) {
    EXPECT_EQ(access_->lastResult >> 28, 4u) << "a failure has the top digit 4";
    EXPECT_EQ(access_->lastResult, expected) << std::hex << "got 0x" << access_->lastResult;
  }

  std::unique_ptr<orvalle_scan_api::IDeviceAccess> access_ =
      createInstance<orvalle_scan_api::IDeviceAccess>("QsDeviceAccs");
  std::string bytes_;
  long long elapsedMs_ = 0;
};

}  // namespace module_test
