// The panel's settings through the facade, asked of a second-generation device that is played from memory.
#include <gtest/gtest.h>

#include <cstring>

#include "api/ScanProtocol.h"
#include "tests/fakes/MemoryDevice.h"

using namespace orvalle_scan_api;
using fakes::ByteString;
using fakes::endTag;
using fakes::framed;
using fakes::tag;
using fakes::u16;
using fakes::operator+;
using Frames = std::vector<std::string>;

namespace {

const ByteString kBusinessCardOnThePanel = tag(0x1001, {4, 0}) +
                                           tag(0x1002, u16(300) + u16(0) + ByteString{5, 0x41, 0, 50, 0xFF, 0}) +
                                           tag(0x1003, {1, 1}) + tag(0x1005, {0x21, 0xFF, 4, 75}) + endTag();

struct Panel {
  explicit Panel(std::uint16_t commandVersion) {
    device.answer("QDI", framed("QDI", tag(0x0001, u16(commandVersion)) + tag(0x0302, {3, 1}) + endTag()));
    device.answer("GKP", framed("GKP", kBusinessCardOnThePanel));
    core.SetDeviceAccess(&device);
    EXPECT_EQ(core.Initialize(), 0u);
    _QS_SELECT_DEVICE_INFO info{};
    info.connectionType = 1;
    std::strcpy(info.primaryName, "memory");
    EXPECT_EQ(core.SelectDevice(info), 0u);
    std::memset(static_cast<void*>(&push), 0x5A, sizeof push);
  }

  fakes::MemoryDevice device;
  CScanProtocol core;
  tagQS_PUSHSCAN_PARAMETERS push;
};

}  // namespace

TEST(PushScan, TheSettingsOfThePanelComeThroughTheFacade) {
  Panel panel(0x0101);
  const tagQS_PUSHSCAN_PARAMETERS& push = panel.push;
  ASSERT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0u);
  EXPECT_EQ(panel.device.mnemonics(), (Frames{"Q", "QDI", "GKP"}));
  EXPECT_TRUE(push.event.valid);
  EXPECT_EQ(push.event.value, 3);
  EXPECT_TRUE(push.resolution.xValid && push.resolution.yValid && push.resolution.yAuto);
  EXPECT_FALSE(push.resolution.xAuto);
  EXPECT_EQ(push.resolution.x, 300u);
  EXPECT_EQ(push.resolution.y, 0u);
  EXPECT_EQ(push.colorType.value, COLORTYPE_COLOR24BIT);
  EXPECT_TRUE(push.paperType.valid);
  EXPECT_EQ(push.paperType.value, PAPERTYPE_BCARD);
  EXPECT_TRUE(push.brightness.valid);
  EXPECT_EQ(push.brightness.value, 50);
  EXPECT_FALSE(push.contrast.valid);
  EXPECT_TRUE(push.duplex.valid);
  EXPECT_EQ(push.duplex.value, DUPLEXTYPE_LONG_EDGE);
  EXPECT_FALSE(push.autoCrop.valid);
  EXPECT_TRUE(push.fileType.valid && push.fileType.qualityValid);
  EXPECT_FALSE(push.fileType.compressValid);
  EXPECT_EQ(push.fileType.format, 1);
  EXPECT_EQ(push.fileType.quality, 4);
  EXPECT_EQ(push.fileType.qualityArg, 75);
}

TEST(PushScan, TheGenerationArgumentChoosesNothing) {
  for (const unsigned generation : {0u, 1u, 2u, 99u}) {
    Panel panel(0x0101);
    EXPECT_EQ(panel.core.GetPushScanParameter(generation, &panel.push), 0u);
    EXPECT_EQ(panel.push.event.value, 3) << generation;
  }
}

TEST(PushScan, AskingAgainAsksThePanelAloneAgain) {
  Panel panel(0x0101);
  ASSERT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0u);
  panel.device.forgetCalls();
  panel.device.answer("GKP", framed("GKP", tag(0x1001, {1, 0}) + endTag()));
  ASSERT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0u);
  EXPECT_EQ(panel.device.mnemonics(), (Frames{"GKP"}));
  EXPECT_EQ(panel.push.event.value, 0);
  EXPECT_FALSE(panel.push.paperType.valid) << "nothing is left of the answer before";
}

TEST(PushScan, ABusinessCardOfTheVerticalVersionIsVertical) {
  Panel panel(0x0102);
  ASSERT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0u);
  EXPECT_EQ(panel.push.paperType.value, PAPERTYPE_BCARDV);
}

TEST(PushScan, ABodyWithoutItsTerminatorIsSuccessWithNoItemGiven) {
  Panel panel(0x0101);
  panel.device.answer("GKP", framed("GKP", tag(0x1001, {1, 0})));
  ASSERT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0u);
  EXPECT_FALSE(panel.push.event.valid || panel.push.duplex.valid || panel.push.paperType.valid ||
               panel.push.fileType.valid || panel.push.orient.valid || panel.push.removeBackground.valid);
}

TEST(PushScan, ARefusalLeavesTheRecordAlone) {
  Panel panel(0x0101);
  const tagQS_PUSHSCAN_PARAMETERS untouched = panel.push;
  panel.device.answer("GKP", framed("GKP", {0}, 0x84));
  EXPECT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0x10240084u);
  panel.device.answer("GKP", framed("GKQ", endTag()));
  EXPECT_EQ(panel.core.GetPushScanParameter(1, &panel.push), 0x10210043u);
  panel.device.answer("GKP", {});
  EXPECT_EQ(panel.core.GetPushScanParameter(1, &panel.push), fakes::MemoryDevice::kTimeOut);
  EXPECT_EQ(std::memcmp(&panel.push, &untouched, sizeof untouched), 0);
}
