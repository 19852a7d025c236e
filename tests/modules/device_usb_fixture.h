// A device-access object with a bus of our own behind it.
#pragma once

#include "device_access_fixture.h"
#include "device_usb_fake.h"
#include "modules/device_access/device_access.h"

namespace module_test {

class DeviceUsbTest : public DeviceAccessTest {
 protected:
  DeviceUsbTest() { access_ = std::make_unique<device_access::DeviceAccess>(usb_); }
  ~DeviceUsbTest() override { access_.reset(); }

  void TearDown() override {
    access_->Close();
    EXPECT_TRUE(usb_.nothingLeft()) << "a transfer, an interface, a handle or a context was not given back";
  }

  int openUsb(const std::string& name = "usb:fff0:00a1") { return open(1, name); }
  // One device, opened.
  void connectUsb() {
    if (usb_.devices.empty()) usb_.devices.emplace_back();
    ASSERT_EQ(openUsb(), 0) << std::hex << access_->lastResult;
    ASSERT_TRUE(access_->IsOpen());
  }
  void expectOpenFails(const std::string& name, std::uint32_t result, std::uint32_t detail) {
    EXPECT_EQ(static_cast<std::uint32_t>(openUsb(name)), result) << name;
    expectFailure(result);
    EXPECT_EQ(access_->lastDetail, detail) << name;
    EXPECT_FALSE(access_->IsOpen());
    EXPECT_TRUE(usb_.nothingLeft());
  }

  FakeUsb usb_;
};

}  // namespace module_test
