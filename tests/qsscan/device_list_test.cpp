#include "apps/qsscan/device_list.h"

#include <gtest/gtest.h>

#include "apps/qsscan/printable.h"
#include "apps/qsscan/remembered_devices.h"
#include "temporary_folder.h"

namespace {

using namespace qsscan;
using qsscan_test::TemporaryFolder;

class DeviceListTest : public testing::Test {
 protected:
  void SetUp() override { ::setenv("XDG_STATE_HOME", folder_.file("state").c_str(), 1); }
  void TearDown() override { ::setenv("XDG_STATE_HOME", "/dev/null/none", 1); }
  const TemporaryFolder folder_;
};

TEST_F(DeviceListTest, ConfiguredDevicesComeBeforeRememberedOnesAndOnce) {
  rememberDevice("192.0.2.7");
  rememberDevice("192.0.2.8");
  Configuration configuration;
  configuration.devices = {{"office", "192.0.2.7", "second floor"}, {"attic", "unix:/s", ""}};
  const DeviceList list = listDevices(configuration, false);
  EXPECT_EQ(deviceNames(list), "office\nattic\n192.0.2.8\n");
  const auto json = deviceListJson(list);
  EXPECT_EQ(json["devices"][0]["device"], "192.0.2.7");
  EXPECT_EQ(json["devices"][0]["origin"], "configured");
  EXPECT_EQ(json["devices"][2]["origin"], "remembered");
  EXPECT_TRUE(json["devices"][2]["problem"].is_null());
}

TEST_F(DeviceListTest, IsATableForPeople) {
  DeviceList list;
  list.devices = {{"büro", "h", ListedDevice::Origin::kConfigured, "h, oben", ""},
                  {"192.0.2.7:9480", "192.0.2.7:9480", ListedDevice::Origin::kNetwork, "Virtual", ""},
                  {"usb:fff0:00a1", "usb:fff0:00a1", ListedDevice::Origin::kUsb, "", "You may not use this device."}};
  EXPECT_EQ(deviceListText(list),
            "NAME            KNOWN FROM  ABOUT\n"
            "büro            configured  h, oben\n"
            "192.0.2.7:9480  network     Virtual\n"
            "usb:fff0:00a1   usb         You may not use this device.\n");
  EXPECT_EQ(deviceListText({}), "");
}

TEST_F(DeviceListTest, AnUnreadableFileIsAProblemAndNotAnEnd) {
  std::filesystem::create_directories(folder_.file("state/qsscan/devices.json"));
  const DeviceList list = listDevices({}, false);
  EXPECT_TRUE(list.devices.empty());
  ASSERT_EQ(list.problems.size(), 1u);
  EXPECT_NE(list.problems[0].find("it is a directory"), std::string::npos);
}

TEST_F(DeviceListTest, AnEmptyListSaysWhatToDo) {
  for (const char* part : {"qsscan info -d", "[device.office]", "usb-ids", "qsscan.conf"}) {
    EXPECT_NE(noDeviceText().find(part), std::string::npos) << part;
  }
}

struct TextRow {
  const char* name;
  std::string text;
  std::string printed;
};
void PrintTo(const TextRow& row, std::ostream* out) { *out << row.name; }
class Printable : public testing::TestWithParam<TextRow> {};

TEST_P(Printable, IsFitForATerminal) { EXPECT_EQ(printable(GetParam().text), GetParam().printed); }

INSTANTIATE_TEST_SUITE_P(
    DeviceList, Printable,
    testing::Values(TextRow{"Plain", "Model 7", "Model 7"}, TextRow{"Umlaut", "B\xC3\xBCro", "B\xC3\xBCro"},
                    TextRow{"Emoji", "\xF0\x9F\x93\x84", "\xF0\x9F\x93\x84"},
                    TextRow{"TerminalCommand", "a\x1B[2Jb", "a?[2Jb"}, TextRow{"LineFeed", "a\nb", "a?b"},
                    TextRow{"Delete", "a\x7F", "a?"}, TextRow{"C1Control", "\xC2\x9B", "??"},
                    TextRow{"CutOff", "a\xC3", "a?"}, TextRow{"NoUtf8", "\xFF\xFE", "??"},
                    TextRow{"Overlong", "\xE0\x80\x80", "???"}, TextRow{"Surrogate", "\xED\xA0\x80", "???"},
                    TextRow{"BeyondUnicode", "\xF4\x90\x80\x80", "????"}, TextRow{"Nothing", "", ""}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
