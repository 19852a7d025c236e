// USB as the list sees it, with devices that umockdev plays in the place of the kernel. Runs with umockdev's library
// loaded before all others, see CMakeLists.txt.
#include "apps/qsscan/usb_devices.h"

#include <gtest/gtest.h>
#include <linux/usbdevice_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <umockdev.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace qsscan;

// A device with a product name (string 2) and a serial number (string 3).
std::string description(const std::string& number, const std::string& idsInWireOrder) {
  return "P: /devices/usb1/1-" + number + "\nN: bus/usb/001/00" + number +
         "\nE: DEVTYPE=usb_device\nE: SUBSYSTEM=usb\nE: BUSNUM=001\nE: DEVNUM=00" + number +
         "\nE: DEVNAME=/dev/bus/usb/001/00" + number + "\nA: busnum=1\\n\nA: devnum=" + number +
         "\\n\nA: bConfigurationValue=1\\n\nA: speed=480\\n\nH: descriptors=1201000200000040" + idsInWireOrder +
         "0000010203010902190001010080320904000001ff000000070581020002"
         "00\n\n";
}

std::string stringDescriptor(const std::string& text) {
  std::string bytes = {static_cast<char>(2 + 2 * text.size()), 3};
  for (const char c : text) bytes += {c, '\0'};
  return bytes;
}

// Answers the control transfers of one device with its strings. Its handler runs in a thread of umockdev's, one call
// after the other.
class MockDevice {
 public:
  MockDevice(UMockdevTestbed* testbed, const std::string& number, std::vector<std::string> strings)
      : testbed_(testbed), node_("/dev/bus/usb/001/00" + number), strings_(std::move(strings)) {
    g_signal_connect(handler_, "handle-ioctl", G_CALLBACK(handle), this);
    GError* error = nullptr;
    EXPECT_TRUE(umockdev_testbed_attach_ioctl(testbed_, node_.c_str(), handler_, &error));
  }
  ~MockDevice() {
    GError* error = nullptr;
    umockdev_testbed_detach_ioctl(testbed_, node_.c_str(), &error);
    g_object_unref(handler_);
  }
  MockDevice(const MockDevice&) = delete;
  MockDevice& operator=(const MockDevice&) = delete;

 private:
  static gboolean handle(UMockdevIoctlBase*, UMockdevIoctlClient* client, gpointer self) {
    const int result = static_cast<MockDevice*>(self)->answer(client);
    umockdev_ioctl_client_complete(client, result < 0 ? -1 : result, result < 0 ? -result : 0);
    return TRUE;
  }
  int answer(UMockdevIoctlClient* client) {
    UMockdevIoctlData* const argument = umockdev_ioctl_client_get_arg(client);
    switch (umockdev_ioctl_client_get_request(client)) {
      case USBDEVFS_GET_CAPABILITIES:
        umockdev_ioctl_data_resolve(argument, 0, sizeof(std::uint32_t), nullptr);
        return 0;
      case USBDEVFS_SUBMITURB: {
        UMockdevIoctlData* urb = umockdev_ioctl_data_resolve(argument, 0, sizeof(usbdevfs_urb), nullptr);
        auto& fields = *reinterpret_cast<usbdevfs_urb*>(urb->data);
        UMockdevIoctlData* buffer = umockdev_ioctl_data_resolve(urb, offsetof(usbdevfs_urb, buffer),
                                                                static_cast<gsize>(fields.buffer_length), nullptr);
        umockdev_ioctl_data_ref(urb);
        const std::size_t index = buffer->data[2];
        const std::string text = index == 0                ? std::string("\x04\x03\x09\x04", 4)
                                 : index < strings_.size() ? stringDescriptor(strings_[index])
                                                           : "";
        text.copy(reinterpret_cast<char*>(buffer->data) + 8, text.size());
        fields.actual_length = static_cast<int>(text.size());
        fields.status = text.empty() ? -EPIPE : 0;
        ended_.push_back(urb);
        return 0;
      }
      case USBDEVFS_REAPURB:
      case USBDEVFS_REAPURBNDELAY: {
        if (ended_.empty()) return -EAGAIN;
        UMockdevIoctlData* place = umockdev_ioctl_data_resolve(argument, 0, sizeof(void*), nullptr);
        umockdev_ioctl_data_set_ptr(place, 0, ended_.front());
        ended_.pop_front();
        return 0;
      }
      default:
        return -ENOTTY;
    }
  }

  UMockdevTestbed* const testbed_;
  const std::string node_;
  const std::vector<std::string> strings_;
  UMockdevIoctlBase* const handler_ = umockdev_ioctl_base_new();
  std::deque<UMockdevIoctlData*> ended_;
};

class UsbDevices : public testing::Test {
 protected:
  void SetUp() override {
    const char* const preloaded = std::getenv("LD_PRELOAD");
    if (preloaded == nullptr || std::strstr(preloaded, "umockdev") == nullptr) GTEST_SKIP() << "run it with ctest";
    testbed_ = umockdev_testbed_new();
  }
  void TearDown() override {
    if (testbed_ != nullptr) g_object_unref(testbed_);
  }
  void plugIn(const std::string& number, const std::string& idsInWireOrder = "f0ffa100") {
    GError* error = nullptr;
    const std::string text = description(number, idsInWireOrder);
    EXPECT_TRUE(umockdev_testbed_add_from_string(testbed_, text.c_str(), &error)) << (error ? error->message : "");
  }
  std::string root() const {
    char* const path = umockdev_testbed_get_root_dir(testbed_);
    const std::string text = path;
    g_free(path);
    return text;
  }

  static inline const std::vector<UsbIds> kIds = {{0xfff0, 0xa1}};
  UMockdevTestbed* testbed_ = nullptr;
};

TEST_F(UsbDevices, AreListedByIdsAndSerialNumber) {
  plugIn("2");
  plugIn("3");
  plugIn("4", "f0ffa200");
  const MockDevice first(testbed_, "2", {"", "", "Desk scanner", "S1"});
  const MockDevice second(testbed_, "3", {"", "", "Attic scanner", "S2"});
  const Search search = findUsbDevices(kIds);
  EXPECT_EQ(search.problem, "");
  ASSERT_EQ(search.devices.size(), 2u) << "the third is another kind of device";
  std::vector<std::string> told;
  for (const FoundDevice& device : search.devices) told.push_back(device.address + " " + device.about + device.problem);
  std::sort(told.begin(), told.end());
  EXPECT_EQ(told, (std::vector<std::string>{"usb:fff0:00a1:S1 Desk scanner", "usb:fff0:00a1:S2 Attic scanner"}));
}

TEST_F(UsbDevices, WithoutIdsNoneAreListed) {
  plugIn("2");
  EXPECT_TRUE(findUsbDevices({}).devices.empty());
  EXPECT_TRUE(findUsbDevices({{0xfff0, 0xa2}}).devices.empty());
}

TEST_F(UsbDevices, ASerialNumberThatCannotBeReadIsLeftOut) {
  plugIn("2");
  const MockDevice device(testbed_, "2", {"", "", "Scanner"});
  const Search search = findUsbDevices(kIds);
  ASSERT_EQ(search.devices.size(), 1u);
  EXPECT_EQ(search.devices[0].address, "usb:fff0:00a1");
}

TEST_F(UsbDevices, ASerialNumberWithControlCharactersIsLeftOut) {
  plugIn("2");
  const MockDevice device(testbed_, "2", {"", "", "Scan\x1Bner", "S\n1"});
  const Search search = findUsbDevices(kIds);
  ASSERT_EQ(search.devices.size(), 1u);
  EXPECT_EQ(search.devices[0].address, "usb:fff0:00a1");
  EXPECT_EQ(search.devices[0].about, "Scan?ner");
}

TEST_F(UsbDevices, ADeviceThatMayNotBeUsedSaysWhatToDo) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs root, to become somebody else";
  constexpr uid_t kNobody = 65534;
  plugIn("2");
  using std::filesystem::perms;
  std::filesystem::permissions(root(), perms{0777});
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root())) {
    if (!entry.is_symlink()) std::filesystem::permissions(entry, perms{0777}, std::filesystem::perm_options::add);
  }
  ASSERT_EQ(::chmod((root() + "/dev/bus/usb/001/002").c_str(), 0600), 0);
  ASSERT_EQ(::seteuid(kNobody), 0);
  const Search search = findUsbDevices(kIds);
  ASSERT_EQ(::seteuid(0), 0);
  ASSERT_EQ(search.devices.size(), 1u) << search.problem;
  EXPECT_EQ(search.devices[0].address, "usb:fff0:00a1");
  EXPECT_NE(search.devices[0].problem.find("70-qsscan-usb.rules.template"), std::string::npos)
      << search.devices[0].problem;
}

}  // namespace
