// libusb itself, against a device that umockdev plays in the place of the kernel: what the bus in memory takes for
// granted about libusb holds. Runs with umockdev's library loaded before all others, see CMakeLists.txt.
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <umockdev.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <mutex>

#include "device_access_fixture.h"
#include "modules/device_access/device_result.h"

namespace {

using namespace device_access;
using namespace module_test;

// Device descriptor, configuration 1, interface 0 with an interrupt endpoint, interface 1 with a bulk pair.
constexpr char kDescription[] =
    "P: /devices/usb1/1-1\n"
    "N: bus/usb/001/002\n"
    "E: DEVTYPE=usb_device\n"
    "E: SUBSYSTEM=usb\n"
    "E: BUSNUM=001\n"
    "E: DEVNUM=002\n"
    "E: DEVNAME=/dev/bus/usb/001/002\n"
    "A: busnum=1\\n\n"
    "A: devnum=2\\n\n"
    "A: bConfigurationValue=1\\n\n"
    "A: speed=480\\n\n"
    "H: descriptors="
    "12010002000000"
    "40f0ffa1000001000003"
    "01"
    "0902300002010080"
    "32"
    "090400000103000000"
    "07058303080010"
    "0904010002ff000000"
    "07058102000200"
    "07050202000200"
    "\n";

// The kernel's side of the device file. Its handler runs in a thread of umockdev's.
class MockKernel {
 public:
  MockKernel() : testbed_(umockdev_testbed_new()), handler_(umockdev_ioctl_base_new()) {
    GError* error = nullptr;
    EXPECT_TRUE(umockdev_testbed_add_from_string(testbed_, kDescription, &error)) << (error ? error->message : "");
    g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(handle), this);
    EXPECT_TRUE(umockdev_testbed_attach_ioctl(testbed_, "/dev/bus/usb/001/002", handler_, &error));
  }
  ~MockKernel() {
    GError* error = nullptr;
    umockdev_testbed_detach_ioctl(testbed_, "/dev/bus/usb/001/002", &error);
    g_object_unref(handler_);
    g_object_unref(testbed_);
  }
  MockKernel(const MockKernel&) = delete;
  MockKernel& operator=(const MockKernel&) = delete;

  void refuseClaim(int error) { set(claimError_, error); }
  std::string written() { return get(written_); }
  int claimed() { return get(claimed_); }
  int driverPutBack() { return get(driverPutBack_); }
  std::size_t waiting() { return get(waiting_).size(); }

  // Ends the oldest transfer from the device: with bytes, and with status, an error number below 0.
  void send(const std::string& bytes, int status = 0) {
    const std::lock_guard lock(mutex_);
    if (waiting_.empty()) return;
    const Urb urb = waiting_.front();
    waiting_.pop_front();
    finish(urb, bytes, status);
  }
  // Bytes arrive in the oldest transfer, which goes on waiting.
  void sendWithoutEnd(const std::string& bytes) {
    const std::lock_guard lock(mutex_);
    if (!waiting_.empty()) waiting_.front().held = bytes;
  }

 private:
  struct Urb {
    UMockdevIoctlData* record;
    UMockdevIoctlData* buffer;
    std::string held;
    usbdevfs_urb& fields() const { return *reinterpret_cast<usbdevfs_urb*>(record->data); }
  };

  template <class Value>
  void set(Value& place, const Value& value) {
    const std::lock_guard lock(mutex_);
    place = value;
  }
  template <class Value>
  Value get(const Value& value) {
    const std::lock_guard lock(mutex_);
    return value;
  }

  static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self) {
    const int result = static_cast<MockKernel*>(self)->answer(client);
    umockdev_ioctl_client_complete(client, result < 0 ? -1 : result, result < 0 ? -result : 0);
    return TRUE;
  }
  int answer(UMockdevIoctlClient* client) {
    const std::lock_guard lock(mutex_);
    UMockdevIoctlData* const argument = umockdev_ioctl_client_get_arg(client);
    switch (umockdev_ioctl_client_get_request(client)) {
      case USBDEVFS_GET_CAPABILITIES: {
        auto* capabilities = umockdev_ioctl_data_resolve(argument, 0, sizeof(std::uint32_t), nullptr);
        *reinterpret_cast<std::uint32_t*>(capabilities->data) =
            USBDEVFS_CAP_BULK_CONTINUATION | USBDEVFS_CAP_NO_PACKET_SIZE_LIM | USBDEVFS_CAP_BULK_SCATTER_GATHER;
        return 0;
      }
      case USBDEVFS_DISCONNECT_CLAIM: {
        auto* claim = umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_disconnect_claim), nullptr);
        if (claimError_ != 0) return -claimError_;
        claimed_ = static_cast<int>(reinterpret_cast<usbdevfs_disconnect_claim*>(claim->data)->interface);
        return 0;
      }
      case USBDEVFS_RELEASEINTERFACE:
        claimed_ = -1;
        return 0;
      case USBDEVFS_IOCTL: {
        auto* command = umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_ioctl), nullptr);
        if (reinterpret_cast<usbdevfs_ioctl*>(command->data)->ioctl_code == USBDEVFS_CONNECT) ++driverPutBack_;
        return 1;
      }
      case USBDEVFS_SUBMITURB:
        return submit(umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_urb), nullptr));
      case USBDEVFS_DISCARDURB:
        return discard(*reinterpret_cast<gulong*>(argument->data));
      case USBDEVFS_REAPURB:
      case USBDEVFS_REAPURBNDELAY: {
        if (ended_.empty()) return -EAGAIN;
        auto* place = umockdev_ioctl_data_resolve(argument, 0, sizeof(void*), nullptr);
        umockdev_ioctl_data_set_ptr(place, 0, ended_.front().record);
        ended_.pop_front();
        return 0;
      }
      default:
        return -ENOTTY;
    }
  }
  int submit(UMockdevIoctlData* record) {
    Urb urb{record, nullptr, {}};
    urb.buffer = umockdev_ioctl_data_resolve(record, offsetof(usbdevfs_urb, buffer),
                                             static_cast<gsize>(urb.fields().buffer_length), nullptr);
    umockdev_ioctl_data_ref(record);
    const auto* bytes = reinterpret_cast<const char*>(urb.buffer->data);
    if (urb.fields().type == USBDEVFS_URB_TYPE_CONTROL) {
      // "Get string": of number 0 the languages, of any other the serial number "S1".
      const std::string text = bytes[2] == 0 ? std::string("\x04\x03\x09\x04", 4) : std::string("\x06\x03S\0001\0", 6);
      finish(urb, std::string(bytes, 8) + text, 0);
      ended_.back().fields().actual_length -= 8;
    } else if ((urb.fields().endpoint & 0x80) != 0) {
      waiting_.push_back(urb);
    } else {
      written_.append(bytes, static_cast<std::size_t>(urb.fields().buffer_length));
      finish(urb, std::string(bytes, static_cast<std::size_t>(urb.fields().buffer_length)), 0);
    }
    return 0;
  }
  int discard(gulong address) {
    for (auto urb = waiting_.begin(); urb != waiting_.end(); ++urb) {
      if (urb->record->client_addr != address) continue;
      finish(*urb, urb->held, -ENOENT);
      waiting_.erase(urb);
      return 0;
    }
    return -EINVAL;
  }
  void finish(const Urb& urb, const std::string& bytes, int status) {
    bytes.copy(reinterpret_cast<char*>(urb.buffer->data), bytes.size());
    urb.fields().actual_length = static_cast<int>(bytes.size());
    urb.fields().status = status;
    ended_.push_back(urb);
  }

  UMockdevTestbed* const testbed_;
  UMockdevIoctlBase* const handler_;
  std::mutex mutex_;
  std::deque<Urb> waiting_;
  std::deque<Urb> ended_;
  std::string written_;
  int claimError_ = 0;
  int claimed_ = -1;
  int driverPutBack_ = 0;
};

class DeviceUsbMock : public DeviceAccessTest {
 protected:
  void SetUp() override {
    const char* const preloaded = std::getenv("LD_PRELOAD");
    if (preloaded == nullptr || std::strstr(preloaded, "umockdev") == nullptr)
      GTEST_SKIP() << "run by umockdev-wrapper";
    kernel_ = std::make_unique<MockKernel>();
  }
  void TearDown() override { access_.reset(); }
  void connectUsb() {
    ASSERT_EQ(open(1, "usb:fff0:00a1"), 0) << std::hex << access_->lastResult;
    ASSERT_EQ(kernel_->waiting(), 8u) << "transfers in flight";
  }

  std::unique_ptr<MockKernel> kernel_;
};

TEST_F(DeviceUsbMock, AConversation) {
  ASSERT_NO_FATAL_FAILURE(connectUsb());
  EXPECT_EQ(kernel_->claimed(), 1) << "the first interface with a bulk pair";
  EXPECT_EQ(write("question"), 8);
  EXPECT_EQ(kernel_->written(), "question");
  kernel_->send("an answer of more than 16 bytes");
  EXPECT_EQ(read(0x40000, 5000), 31);
  EXPECT_EQ(bytes_, "an answer of more than 16 bytes");
  EXPECT_EQ(kernel_->waiting(), 8u);
  access_->Close();
  EXPECT_EQ(kernel_->waiting(), 0u) << "all cancelled and reaped";
  EXPECT_EQ(kernel_->claimed(), -1);
  EXPECT_GE(kernel_->driverPutBack(), 1);
  ASSERT_NO_FATAL_FAILURE(connectUsb());
}

TEST_F(DeviceUsbMock, SilenceIsATimeOutAndLosesNothing) {
  ASSERT_NO_FATAL_FAILURE(connectUsb());
  EXPECT_EQ(read(16, 250), 0);
  EXPECT_EQ(access_->lastResult, module_test::kReadTimeout);
  EXPECT_GE(elapsedMs_, 249);
  kernel_->sendWithoutEnd("whole packets only, as far as this transfer knows");
  EXPECT_EQ(read(0x40000, 5000), 49) << "a cancelled transfer gives what it holds";
}

// The value of a line of /proc/self/task/*/status, for the thread of that name.
std::string threadStatus(const std::string& threadName, const std::string& key) {
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(task.path() / "status");
    bool found = false;
    for (std::string line; std::getline(status, line);) {
      found = found || line == "Name:\t" + threadName;
      if (found && line.starts_with(key + ":\t")) return line.substr(key.size() + 2);
    }
  }
  return {};
}

TEST_F(DeviceUsbMock, TheThreadThatWatchesForDevicesTakesNoSignals) {
  ASSERT_NO_FATAL_FAILURE(connectUsb());
  std::string blocked;
  for (int i = 0; i < 1000 && blocked.empty(); ++i) {  // until the thread has named itself
    blocked = threadStatus("libusb_event", "SigBlk");
    sleepMs(1);
  }
  ASSERT_FALSE(blocked.empty());
  constexpr unsigned long kAllButKillAndStop = 0x7ffbfeff;  // of the 31 signals that are not real-time ones
  EXPECT_EQ(std::stoul(blocked, nullptr, 16) & 0x7fffffff, kAllButKillAndStop) << blocked;
}

TEST_F(DeviceUsbMock, FindsTheDeviceByItsSerialNumber) {
  EXPECT_EQ(open(1, "usb:fff0:00a1:S1"), 0) << std::hex << access_->lastResult;
  EXPECT_EQ(open(1, "usb:fff0:00a1:S2"), static_cast<int>(kDeviceAbsent));
  EXPECT_EQ(open(1, "usb:fff0:00a2"), static_cast<int>(kDeviceAbsent));
}

TEST_F(DeviceUsbMock, ADeviceThatAnotherProgramHasIsBusy) {
  kernel_->refuseClaim(EBUSY);
  EXPECT_EQ(open(1, "usb:fff0:00a1"), static_cast<int>(kDeviceBusy));
  expectFailure(kDeviceBusy);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(EBUSY));
}

TEST_F(DeviceUsbMock, AStallEndsTheConnectionBehindItsBytes) {
  ASSERT_NO_FATAL_FAILURE(connectUsb());
  kernel_->send("last words");
  kernel_->send("", -EPIPE);
  EXPECT_EQ(read(kStreamRead, 5000), 10);
  EXPECT_LT(read(kStreamRead, 5000), 0);
  expectFailure(kLost);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(EPIPE));
  EXPECT_EQ(kernel_->waiting(), 0u);
}

TEST_F(DeviceUsbMock, AnUnpluggedDeviceIsLost) {
  ASSERT_NO_FATAL_FAILURE(connectUsb());
  kernel_->send("", -ESHUTDOWN);
  EXPECT_LT(read(kStreamRead, 5000), 0);
  expectFailure(kLost);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ENODEV));
  EXPECT_FALSE(access_->IsOpen());
}

}  // namespace
