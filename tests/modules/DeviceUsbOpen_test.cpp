// USB devices: which one a name means, what opening takes and gives back, and how each failure is told apart.
#include <gtest/gtest.h>

#include <cerrno>

#include "device_usb_fixture.h"
#include "modules/device_access/device_result.h"
#include "modules/device_access/usb_transport.h"

namespace {

using namespace device_access;
using namespace module_test;

class DeviceUsbOpen : public DeviceUsbTest {
 protected:
  FakeDevice& add(const std::string& serial = {}) {
    usb_.devices.emplace_back();
    usb_.devices.back().serial = serial;
    return usb_.devices.back();
  }
  bool logged(const std::string& entry) const {
    const auto log = usb_.log();
    return std::find(log.begin(), log.end(), entry) != log.end();
  }
};

TEST_F(DeviceUsbOpen, FindsTheDeviceByItsIdsInEitherCase) {
  add().vendor = 0x1234;
  add();
  add().product = 0x00a2;
  EXPECT_EQ(openUsb("usb:fff0:00a1"), 0);
  EXPECT_EQ(openUsb("usb:FFF0:00A1"), 0);
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_EQ(access_->lastResult, 0u);
}

TEST_F(DeviceUsbOpen, FindsOneOfSeveralByItsSerialNumber) {
  add("A-1").openError = LIBUSB_ERROR_ACCESS;
  add();
  FakeDevice& wanted = add("B:2 x");
  add("B:2").claimError = LIBUSB_ERROR_BUSY;
  EXPECT_EQ(openUsb("usb:fff0:00a1:B:2 x"), 0);
  wanted.claimError = LIBUSB_ERROR_BUSY;
  expectOpenFails("usb:fff0:00a1:B:2 x", kDeviceBusy, EBUSY);
}

TEST_F(DeviceUsbOpen, ANameThatFitsSeveralIsRefusedAndNotGuessed) {
  add("A");
  add("B");
  add("B");
  expectOpenFails("usb:fff0:00a1", kSeveralDevices, 3);
  expectOpenFails("usb:fff0:00a1:B", kSeveralDevices, 2);
}

struct FailureCase {
  const char* what;
  const char* name;
  int FakeDevice::*place;
  int error;
  std::uint32_t result;
  std::uint32_t detail;
};

TEST_F(DeviceUsbOpen, TellsABusyDeviceFromAnAbsentAndAForbiddenOne) {
  const char* const plain = "usb:fff0:00a1";
  const char* const serial = "usb:fff0:00a1:S1";
  const FailureCase rows[] = {
      {"no permission", plain, &FakeDevice::openError, LIBUSB_ERROR_ACCESS, kNoPermission, EACCES},
      {"no permission to read the serial", serial, &FakeDevice::openError, LIBUSB_ERROR_ACCESS, kNoPermission, EACCES},
      {"serial unreadable", serial, &FakeDevice::serialError, LIBUSB_ERROR_PIPE, kConnectFailed, EPIPE},
      {"unplugged before open", plain, &FakeDevice::openError, LIBUSB_ERROR_NO_DEVICE, kDeviceAbsent, ENODEV},
      {"no memory", plain, &FakeDevice::openError, LIBUSB_ERROR_NO_MEM, kNoResource, ENOMEM},
      {"open fails", plain, &FakeDevice::openError, LIBUSB_ERROR_IO, kConnectFailed, EIO},
      {"not configured", plain, &FakeDevice::configError, LIBUSB_ERROR_NOT_FOUND, kNoBulkEndpoints, ENOENT},
      {"configuration unreadable", plain, &FakeDevice::configError, LIBUSB_ERROR_IO, kConnectFailed, EIO},
      {"claimed by another program", plain, &FakeDevice::claimError, LIBUSB_ERROR_BUSY, kDeviceBusy, EBUSY},
      {"unplugged before claim", plain, &FakeDevice::claimError, LIBUSB_ERROR_NO_DEVICE, kDeviceAbsent, ENODEV},
  };
  for (const FailureCase& row : rows) {
    SCOPED_TRACE(row.what);
    usb_.devices.clear();
    add("S1").*row.place = row.error;
    expectOpenFails(row.name, row.result, row.detail);
  }
  usb_.devices.clear();
  add("S2");
  expectOpenFails("usb:fff0:00a2", kDeviceAbsent, 0);
  expectOpenFails("usb:fff0:00a1:S1", kDeviceAbsent, 0);
}

TEST_F(DeviceUsbOpen, AMachineWithoutUsbHasNoSuchDevice) {
  usb_.initError = LIBUSB_ERROR_OTHER;
  expectOpenFails("usb:fff0:00a1", kDeviceAbsent, ENOSYS);
}

TEST_F(DeviceUsbOpen, TakesTheFirstInterfaceWithABulkPair) {
  add().interfaces = {
      {{}},
      {{{0x83, kInterrupt}, {kOut, kBulk}}},
      {{{0x84, kBulk}}, {{0x83, kInterrupt}, {kIn, kBulk}, {kOut, kBulk}, {0x85, kBulk}}},
      {{{0x86, kBulk}, {0x07, kBulk}}},
  };
  ASSERT_EQ(openUsb(), 0);
  EXPECT_TRUE(logged("claim 2"));
  EXPECT_TRUE(logged("setting 2 1"));
  EXPECT_EQ(write("x"), 1);
  EXPECT_EQ(usb_.written(), "x") << "by the endpoint of that interface";
  usb_.send("y");
  EXPECT_EQ(read(1, 5000), 1);
}

TEST_F(DeviceUsbOpen, ADeviceWithoutABulkPairIsNoneOfOurs) {
  add().interfaces = {{{{kIn, kBulk}}}, {{{kOut, kBulk}}}};
  expectOpenFails("usb:fff0:00a1", kNoBulkEndpoints, 0);
  usb_.devices.back().interfaces = {};
  expectOpenFails("usb:fff0:00a1", kNoBulkEndpoints, 0);
}

TEST_F(DeviceUsbOpen, GivesEverythingBackInReverseOrder) {
  connectUsb();
  access_->Close();
  const std::vector<std::string> expected = {"detach 1", "claim 0", "release 0", "close", "exit"};
  EXPECT_EQ(usb_.log(), expected) << "with no setting asked for where there is nothing to choose";
}

TEST_F(DeviceUsbOpen, OpensAgainAfterCloseAndWhileOpen) {
  for (int i = 0; i < 3; ++i) connectUsb();
  access_->Close();
  access_->Close();
  EXPECT_TRUE(usb_.nothingLeft());
  connectUsb();
}

TEST_F(DeviceUsbOpen, ThrowsAwayWhatAnEarlierConnectionLeft) {
  usb_.send(std::string(3 * kTransferBytes + 700, 'o'));
  usb_.send("old", true);
  connectUsb();
  EXPECT_EQ(read(16, 0), 0) << bytes_;
  usb_.send("new");
  EXPECT_EQ(read(16, 5000), 3);
  EXPECT_EQ(bytes_, "new");
}

TEST_F(DeviceUsbOpen, ADeviceThatGoesOnSendingIsBusy) {
  add();
  usb_.neverFallSilent();
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(static_cast<std::uint32_t>(openUsb()), kDeviceBusy);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(EAGAIN));
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
}

TEST_F(DeviceUsbOpen, ClearsAHaltOnce) {
  usb_.halt(kIn);
  connectUsb();
  EXPECT_TRUE(logged("clear in"));
  usb_.send("alive");
  EXPECT_EQ(read(16, 5000), 5);
}

TEST_F(DeviceUsbOpen, WorksWithFewerTransfersWhereTheSystemHasNoMemoryForMore) {
  usb_.submitErrors = {{3, LIBUSB_ERROR_NO_MEM}};
  connectUsb();
  EXPECT_EQ(usb_.inFlight(), 2u);
  for (const char* const answer : {"one", "two", "three"}) {
    usb_.send(answer);
    EXPECT_GT(read(16, 5000), 0);
    EXPECT_EQ(bytes_, answer);
  }
  usb_.submitErrors.clear();
  access_->Close();
  FakeUsb poor;
  poor.devices.emplace_back();
  poor.submitErrors = {{1, LIBUSB_ERROR_NO_MEM}};
  device_access::DeviceAccess access(poor);
  orvalle_scan_api::_DEV_IDENTIFIER id{0, 1, "usb:fff0:00a1"};
  EXPECT_EQ(static_cast<std::uint32_t>(access.Open(id)), kNoResource);
}

// Whichever call fails, nothing is left behind and the next try works.
TEST_F(DeviceUsbOpen, EveryCallMayFail) {
  add("S1").interfaces = {{{}, {{kIn, kBulk}, {kOut, kBulk}}}};
  int failures = 0;
  bool reached = true;
  for (int n = 1; reached; ++n) {
    const int before = usb_.calls();
    usb_.failingCall = before + n;
    const int result = openUsb("usb:fff0:00a1:S1");
    reached = usb_.calls() >= usb_.failingCall;
    if (result != 0) {
      ++failures;
      EXPECT_EQ(static_cast<unsigned>(result) >> 28, 4u);
      EXPECT_FALSE(access_->IsOpen());
      EXPECT_TRUE(usb_.nothingLeft()) << "call " << n;
    }
    usb_.failingCall = 0;
    ASSERT_EQ(openUsb("usb:fff0:00a1:S1"), 0) << "after call " << n;
    access_->Close();
  }
  EXPECT_GE(failures, 8 + static_cast<int>(kTransfersInFlight));
}

}  // namespace
