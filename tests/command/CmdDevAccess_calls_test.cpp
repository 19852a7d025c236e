// Everything but framed answers: opening, closing, sending, one- and two-byte results.
#include <gtest/gtest.h>

#include "command/CmdDevAccess.h"
#include "tests/fakes/ScriptedDevice.h"
#include "tests/fakes/log_capture.h"

using namespace orvalle_scan_api;
using namespace std::string_literals;

namespace {

constexpr int kBufferBytes = 0x40000;
const char kNoDevice[] = "IDeviceAccess instance does not exist.";

}  // namespace

class CmdDevAccessCalls : public ::testing::Test {
 protected:
  CmdDevAccessCalls() { access.SetPointerToDeviceAccess(&device); }
  ~CmdDevAccessCalls() override { EXPECT_EQ(device.trouble(), ""); }

  ScriptedDevice device{true};
  CCmdDevAccess access;
  LogCapture log;
};

// ---- opening and closing

TEST(CmdDevAccessOpening, OpensTheGivenDeviceWithTheIdentifier) {
  ScriptedDevice device;
  CCmdDevAccess access;
  _DEV_IDENTIFIER id{3, 2, "scanner"};
  EXPECT_FALSE(access.IsOpenDevice());
  EXPECT_TRUE(access.OpenDevice(&device, id));
  EXPECT_TRUE(access.IsOpenDevice());
  EXPECT_EQ(device.opens, 1);
  EXPECT_EQ(device.openedWith.kind, 3);
  EXPECT_EQ(device.openedWith.connection, 2);
  EXPECT_STREQ(device.openedWith.name, "scanner");
}

TEST(CmdDevAccessOpening, NullIsRefused) {
  CCmdDevAccess access;
  _DEV_IDENTIFIER id{};
  LogCapture log;
  EXPECT_FALSE(access.OpenDevice(nullptr, id));
  EXPECT_TRUE(log.says("Invalid pointer to IDeviceAccess instance.")) << log.all();
}

TEST(CmdDevAccessOpening, AFailureIsLoggedWithItsCodeAndDetail) {
  ScriptedDevice device;
  device.openResult = -7;
  device.openDetail = 42;
  CCmdDevAccess access;
  _DEV_IDENTIFIER id{};
  LogCapture log;
  EXPECT_FALSE(access.OpenDevice(&device, id));
  EXPECT_TRUE(log.says("Open Scanner FAILD! result = -7(42)")) << log.all();
  EXPECT_FALSE(access.IsOpenDevice());
}

TEST(CmdDevAccessOpening, TheStoredDeviceWinsOverTheArgument) {
  ScriptedDevice first, second;
  first.openResult = 1;
  CCmdDevAccess access;
  _DEV_IDENTIFIER id{};
  EXPECT_FALSE(access.OpenDevice(&first, id));
  first.openResult = 0;
  EXPECT_TRUE(access.OpenDevice(&second, id));
  EXPECT_EQ(first.opens, 2);
  EXPECT_EQ(second.opens, 0);
  access.SetPointerToDeviceAccess(&second);
  EXPECT_TRUE(access.IsOpenDevice());
  EXPECT_FALSE(second.IsOpen());
}

TEST(CmdDevAccessOpening, SettingNullStoresNothing) {
  ScriptedDevice device(true);
  CCmdDevAccess access;
  access.SetPointerToDeviceAccess(nullptr);
  EXPECT_FALSE(access.IsOpenDevice());
  access.SetPointerToDeviceAccess(&device);
  EXPECT_TRUE(access.IsOpenDevice());
}

TEST(CmdDevAccessOpening, ClosingForgetsAnOpenDevice) {
  ScriptedDevice first(true), second(true);
  CCmdDevAccess access;
  access.SetPointerToDeviceAccess(&first);
  EXPECT_EQ(access.CloseDevice(), 0u);
  EXPECT_EQ(first.closes, 1);
  EXPECT_FALSE(access.IsOpenDevice());
  access.SetPointerToDeviceAccess(&second);
  EXPECT_TRUE(access.IsOpenDevice());
}

TEST(CmdDevAccessOpening, ClosingKeepsADeviceThatIsNotOpen) {
  ScriptedDevice first, second(true);
  CCmdDevAccess access;
  access.SetPointerToDeviceAccess(&first);
  EXPECT_EQ(access.CloseDevice(), 0u);
  EXPECT_EQ(first.closes, 0);
  access.SetPointerToDeviceAccess(&second);
  EXPECT_FALSE(access.IsOpenDevice()) << "the first device is still the stored one";
}

TEST(CmdDevAccessOpening, ClosingWhatWasNeverOpenedSaysSoAndReturnsZero) {
  CCmdDevAccess access;
  LogCapture log;
  EXPECT_EQ(access.CloseDevice(), 0u);
  EXPECT_TRUE(log.says(kNoDevice)) << log.all();
}

TEST(CmdDevAccessOpening, DestroyingDoesNotCloseTheDevice) {
  ScriptedDevice device(true);
  {
    CCmdDevAccess access;
    access.SetPointerToDeviceAccess(&device);
  }
  EXPECT_EQ(device.closes, 0);
}

// ---- sending

TEST(CmdDevAccessSending, WithoutADeviceNothingElseIsLookedAt) {
  CCmdDevAccess access;
  LogCapture log;
  EXPECT_EQ(access.SendCommand(nullptr, 0), 0x40210011u);
  EXPECT_TRUE(log.has(0, kNoDevice)) << log.all();
}

TEST_F(CmdDevAccessCalls, AnEmptyCommandNeverReachesTheDevice) {
  EXPECT_EQ(access.SendCommand(nullptr, 4), 0x70210002u);
  EXPECT_EQ(access.SendCommand("x", 0), 0x70210002u);
  EXPECT_EQ(access.SendCommand("x", -1), 0x70210002u);
  EXPECT_TRUE(device.writes.empty());
}

TEST_F(CmdDevAccessCalls, ACommandIsOneWriteOfTheWholeFrame) {
  const std::string frame = "\x1BQ\n\x80"s;
  device.expect(frame);
  EXPECT_EQ(access.SendCommand(frame.data(), 4), 0u);
  ASSERT_EQ(device.writes.size(), 1u);
  EXPECT_EQ(device.writes[0].bytes, frame);
  EXPECT_EQ(device.writes[0].flags, 0);
  EXPECT_TRUE(log.lines.empty()) << log.all();
}

TEST_F(CmdDevAccessCalls, TheResultOfSendingIsTheDevicesLastResultWhateverWriteReturned) {
  struct Row {
    const char* name;
    int written;
    std::uint32_t lastResult;
    bool logged;
  };
  const Row rows[] = {{"whole, good", 4, 0, false},          {"whole, stale code", 4, 0x40500020, false},
                      {"short, good", 1, 0, false},          {"short, code", 3, 0x40500021, false},
                      {"nothing, good", 0, 0, true},         {"nothing, code", 0, 0x40500022, true},
                      {"failed, code", -1, 0x40500023, true}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    log.lines.clear();
    device.expectBut("\x1BK\n\x80", row.written, row.lastResult, 17);
    EXPECT_EQ(access.SendCommand("\x1BK\n\x80", 4), row.lastResult);
    const std::string line =
        "Error occurred during send command. result = " + std::to_string(static_cast<int>(row.lastResult)) + "(17)";
    EXPECT_EQ(log.says(line), row.logged) << log.all();
    EXPECT_EQ(log.lines.empty(), !row.logged) << log.all();
  }
  EXPECT_EQ(device.writes.size(), std::size(rows)) << "nothing is sent twice";
}

// ---- receiving one or two bytes

TEST(CmdDevAccessResult, WithoutADeviceNothingElseIsLookedAt) {
  CCmdDevAccess access;
  LogCapture log;
  EXPECT_EQ(access.RecvCmdResult(nullptr, nullptr, 0), 0x40210011u);
  EXPECT_TRUE(log.says(kNoDevice)) << log.all();
}

TEST_F(CmdDevAccessCalls, AResultNeedsItsSecondByteAndATimeOut) {
  unsigned char first = 0, second = 0;
  EXPECT_EQ(access.RecvCmdResult(&first, nullptr, 5000), 0x70210002u);
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 0), 0x70210002u);
  EXPECT_EQ(access.RecvCmdResult(&first, &second, -5), 0x70210002u);
  EXPECT_TRUE(device.reads.empty());
}

TEST_F(CmdDevAccessCalls, AResultIsOneReadOfOneByteOrTwo) {
  unsigned char first = 1, second = 1;
  device.answer("\x80");
  EXPECT_EQ(access.RecvCmdResult(nullptr, &second, 5000), 0u);
  EXPECT_EQ(second, 0x80);
  device.answer("\x00\x05"s);
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 5000), 0u);
  EXPECT_EQ(first, 0);
  EXPECT_EQ(second, 5);
  device.answer("\x07\x08\x09");
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 5000), 0u);
  EXPECT_EQ(first, 7);
  EXPECT_EQ(second, 8);
  ASSERT_EQ(device.reads.size(), 3u);
  device.answer("\x80");
  EXPECT_EQ(access.RecvCmdResult(nullptr, &second, 1), 0u);
  EXPECT_EQ(device.reads.back().timeOutMs, 1);
  device.reads.pop_back();
  for (const auto& read : device.reads) {
    EXPECT_EQ(read.size, unsigned{kBufferBytes});
    EXPECT_EQ(read.wanted, unsigned{kBufferBytes});
    EXPECT_EQ(read.timeOutMs, 5000);
  }
}

TEST_F(CmdDevAccessCalls, TooFewBytesAreAnErrorEvenIfTheRestWouldCome) {
  unsigned char first = 0x11, second = 0x22;
  device.answer("\x00"s);
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 5000), 0x10210041u);
  EXPECT_TRUE(log.has(0, "Received response is not enough data. (recv size = 1)")) << log.all();
  EXPECT_EQ(first, 0x11);
  EXPECT_EQ(second, 0x22);
  device.timeOut(0);
  EXPECT_EQ(access.RecvCmdResult(nullptr, &second, 5000), 0x10210041u);
  EXPECT_TRUE(log.has(0, "Received response is not enough data. (recv size = 0)")) << log.all();
  device.failRead(0);
  EXPECT_EQ(access.RecvCmdResult(nullptr, &second, 5000), 0x10210041u);
  EXPECT_TRUE(log.has(0, "Received response is not enough data. (recv size = -1)")) << log.all();
}

TEST_F(CmdDevAccessCalls, AResultWithACodeLeftBehindFailsThoughItsBytesCame) {
  unsigned char first = 0, second = 0x22;
  device.answer("\x00\x05"s, 0x40500055);
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 5000), 0x40500055u);
  EXPECT_TRUE(log.has(0, "Error occurred during receive response. result = " + std::to_string(0x40500055) + "(0)"))
      << log.all();
  EXPECT_EQ(second, 0x22);
  device.timeOut();
  EXPECT_EQ(access.RecvCmdResult(&first, &second, 5000), ScriptedDevice::kTimeOut);
}

// ---- the buffer and the rest

TEST_F(CmdDevAccessCalls, TheBufferIsAllocatedOnceAndAgainAfterItWasFreed) {
  unsigned char* buffer = access.AllocReceiveBuffer();
  ASSERT_NE(buffer, nullptr);
  EXPECT_EQ(access.AllocReceiveBuffer(), buffer);
  buffer[kBufferBytes - 1] = 1;
  access.FreeReceiveBuffer();
  access.FreeReceiveBuffer();
  buffer = access.AllocReceiveBuffer();
  ASSERT_NE(buffer, nullptr);
  buffer[kBufferBytes - 1] = 1;
}

TEST_F(CmdDevAccessCalls, DrainingNeedsADeviceAndABuffer) {
  CCmdDevAccess without;
  without.DiscardsRemainData();
  access.DiscardsRemainData();
  EXPECT_TRUE(device.reads.empty());
  access.AllocReceiveBuffer();
  device.answer("abc").answer("d");
  access.DiscardsRemainData();
  EXPECT_EQ(device.reads.size(), 3u);
}

TEST_F(CmdDevAccessCalls, ClosingFreesTheBuffer) {
  access.AllocReceiveBuffer();
  access.CloseDevice();
  device.open = true;
  access.SetPointerToDeviceAccess(&device);
  access.DiscardsRemainData();
  EXPECT_TRUE(device.reads.empty()) << "nothing is drained without a buffer";
}

TEST_F(CmdDevAccessCalls, TheDiagnosisToolDoesNothing) {
  access.StartDiagnosisTool();
  EXPECT_TRUE(device.reads.empty());
  EXPECT_TRUE(device.writes.empty());
}
