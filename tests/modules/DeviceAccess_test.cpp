// Device access: names, connecting, losing the device, writing.
#include "modules/DeviceAccess.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <vector>

#include "device_access_fixture.h"
#include "modules/device_access/device_result.h"

namespace {

using namespace device_access;
using namespace module_test;

class DeviceAccess : public DeviceAccessTest {};

void stayOpen(const Client& client) { client.stay(); }

// Sends back what it gets, until the host has gone.
void echo(const Client& client) {
  for (std::string byte = client.receive(1); !byte.empty(); byte = client.receive(1)) client.send(byte);
}

TEST_F(DeviceAccess, ConnectsByTcpOfBothFamiliesAndByUnixSocket) {
  for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Ipv6, LoopbackDevice::Kind::Unix}) {
    LoopbackDevice device(echo, kind);
    if (!device.listening()) continue;
    connect(device);
    EXPECT_EQ(write("hello"), 5);
    EXPECT_EQ(read(5, 5000), 5) << device.name();
    EXPECT_EQ(bytes_, "hello");
    access_->Close();
    EXPECT_FALSE(access_->IsOpen());
  }
}

TEST_F(DeviceAccess, FindsAHostByNameWhicheverFamilyItListensOn) {
  for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Ipv6}) {
    LoopbackDevice device(stayOpen, kind);
    if (!device.listening()) continue;
    const int result = open(2, "localhost:" + std::to_string(device.port()));
    if (result == static_cast<int>(kNameNotFound)) GTEST_SKIP() << "this machine does not know localhost";
    // Where localhost has addresses of the other family only, nobody listens there.
    if (kind == LoopbackDevice::Kind::Ipv6 && result == static_cast<int>(kConnectRefused)) continue;
    EXPECT_EQ(result, 0) << std::hex << result;
  }
}

TEST_F(DeviceAccess, TheSecondaryNameHasTheSameGrammar) {
  LoopbackDevice device(stayOpen);
  const std::string name = device.name();
  orvalle_scan_api::_DEV_IDENTIFIER id{3, 2, name.c_str()};
  EXPECT_EQ(access_->Open(id), 0);
}

struct NameCase {
  const char* name;
  int connection;
  NameFault fault;
};

TEST_F(DeviceAccess, RefusesABadNameAndSaysWhy) {
  const std::string longPath = "unix:/" + std::string(200, 'x');
  const std::string longHost(300, 'h');
  const std::string longSerial = "usb:fff0:00a1:" + std::string(127, 's');
  const NameCase rows[] = {
      {"", 1, NameFault::Empty},
      {"", 2, NameFault::Empty},
      {"scanner", 1, NameFault::UnknownKind},
      {"/dev/usb/scanner0", 1, NameFault::UnknownKind},
      {"127.0.0.1", 0, NameFault::UnknownKind},
      {"127.0.0.1", 3, NameFault::UnknownKind},
      {"usb:", 1, NameFault::BadUsb},
      {"usb:fff0", 1, NameFault::BadUsb},
      {"usb:fff0:", 1, NameFault::BadUsb},
      {"usb:fff0:00a", 1, NameFault::BadUsb},
      {"usb:fff0:00a1:", 1, NameFault::BadUsb},
      {"usb:fff0:00a10", 1, NameFault::BadUsb},
      {"usb:fff0:00a1x", 1, NameFault::BadUsb},
      {"usb:ff0:000a1", 1, NameFault::BadUsb},
      {"usb:fff0-00a1", 1, NameFault::BadUsb},
      {"usb:fffg:00a1", 1, NameFault::BadUsb},
      {"usb:0xff:00a1", 1, NameFault::BadUsb},
      {"usb:-ff0:00a1", 1, NameFault::BadUsb},
      {"usb: ff0:00a1", 1, NameFault::BadUsb},
      {"usb:fff0:00a1:tab\there", 1, NameFault::BadUsb},
      {"usb:fff0:00a1:\xC3\xA9", 1, NameFault::BadUsb},
      {longSerial.c_str(), 1, NameFault::BadUsb},
      {"unix:", 1, NameFault::BadPath},
      {longPath.c_str(), 1, NameFault::BadPath},
      {"unix:/run/scanner", 2, NameFault::MisplacedPrefix},
      {"usb:fff0:1234", 2, NameFault::MisplacedPrefix},
      {":9480", 2, NameFault::BadHost},
      {"two words", 2, NameFault::BadHost},
      {"-option", 2, NameFault::BadHost},
      {".scanner", 2, NameFault::BadHost},
      {"scanner;rm", 2, NameFault::BadHost},
      {"scanner/1", 2, NameFault::BadHost},
      {"fe80::1", 2, NameFault::BadHost},
      {"::1:9480", 2, NameFault::BadHost},
      {longHost.c_str(), 2, NameFault::BadHost},
      {"scanner:", 2, NameFault::BadPort},
      {"scanner:0", 2, NameFault::BadPort},
      {"scanner:65536", 2, NameFault::BadPort},
      {"scanner:99999999999999999999", 2, NameFault::BadPort},
      {"scanner:9480x", 2, NameFault::BadPort},
      {"scanner:+1", 2, NameFault::BadPort},
      {"scanner: 1", 2, NameFault::BadPort},
      {"[::1]:", 2, NameFault::BadPort},
      {"[::1", 2, NameFault::BadAddress},
      {"[]", 2, NameFault::BadAddress},
      {"[127.0.0.1]", 2, NameFault::BadAddress},
      {"[::1]9480", 2, NameFault::BadAddress},
      {"[fe80::1%]", 2, NameFault::BadAddress},
      {"[scanner]", 2, NameFault::BadAddress},
  };
  for (const NameCase& row : rows) {
    EXPECT_EQ(open(row.connection, row.name), static_cast<int>(kNameRefused)) << row.name;
    expectFailure(kNameRefused);
    EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(row.fault)) << row.connection << " " << row.name;
    EXPECT_FALSE(access_->IsOpen());
  }
  orvalle_scan_api::_DEV_IDENTIFIER nameless{0, 2, nullptr};
  EXPECT_EQ(access_->Open(nameless), static_cast<int>(kNameRefused));
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(NameFault::Empty));
}

TEST_F(DeviceAccess, AUsbDeviceThatIsNotPluggedInIsAbsent) {
  for (const char* const name : {"usb:fff0:00a1", "usb:FFF0:00A1:S1"}) {
    EXPECT_EQ(open(1, name), static_cast<int>(kDeviceAbsent));
    expectFailure(kDeviceAbsent);
    EXPECT_FALSE(access_->IsOpen());
  }
}

TEST_F(DeviceAccess, AHostThatNobodyKnowsIsNotFound) {
  // A label of more than 63 letters cannot be asked for, so the answer does not depend on the network.
  EXPECT_EQ(open(2, std::string(70, 'h') + ".invalid"), static_cast<int>(kNameNotFound));
  expectFailure(kNameNotFound);
  EXPECT_NE(access_->lastDetail, 0u);
}

TEST_F(DeviceAccess, APortWhereNobodyListensRefuses) {
  std::string name;
  { name = LoopbackDevice(stayOpen).name(); }
  EXPECT_EQ(open(2, name), static_cast<int>(kConnectRefused));
  expectFailure(kConnectRefused);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ECONNREFUSED));
  EXPECT_FALSE(access_->IsOpen());
}

TEST_F(DeviceAccess, ASocketFileThatIsNotThereFails) {
  EXPECT_EQ(open(1, "unix:/nonexistent/device"), static_cast<int>(kConnectFailed));
  expectFailure(kConnectFailed);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ENOENT));
}

// A listener whose queue is full: further hosts get no answer.
TEST_F(DeviceAccess, AMachineThatDoesNotAnswerIsGivenUpAfterFiveSeconds) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t addressBytes = sizeof(address);
  const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ASSERT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), addressBytes), 0);
  ASSERT_EQ(listen(listener, 0), 0);
  getsockname(listener, reinterpret_cast<sockaddr*>(&address), &addressBytes);
  std::vector<int> waiting;
  for (int i = 0; i < 4; ++i) {
    waiting.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    ::connect(waiting.back(), reinterpret_cast<sockaddr*>(&address), addressBytes);
  }
  sleepMs(50);

  const Clock::time_point start = Clock::now();
  EXPECT_EQ(open(2, "127.0.0.1:" + std::to_string(ntohs(address.sin_port))), static_cast<int>(kConnectTimeout));
  const auto elapsed = Clock::now() - start;
  expectFailure(kConnectTimeout);
  EXPECT_GE(elapsed, std::chrono::milliseconds(4900));
  EXPECT_LT(elapsed, std::chrono::seconds(15));
  for (const int descriptor : waiting) close(descriptor);
  close(listener);
}

TEST_F(DeviceAccess, CallsWithoutAConnectionFail) {
  EXPECT_FALSE(access_->IsOpen());
  EXPECT_LT(read(10, 0), 0);
  expectFailure(kNotOpen);
  EXPECT_LT(write("x"), 0);
  expectFailure(kNotOpen);
}

TEST_F(DeviceAccess, CloseIsIdempotentAndAfterItOpenWorksAgain) {
  LoopbackDevice device(echo);
  access_->Close();
  for (int round = 0; round < 3; ++round) {
    connect(device);
    EXPECT_EQ(write("x"), 1);
    EXPECT_EQ(read(1, 5000), 1);
    access_->Close();
    access_->Close();
    EXPECT_EQ(access_->lastResult, 0u);
    EXPECT_FALSE(access_->IsOpen());
  }
}

TEST_F(DeviceAccess, OpenWhileOpenBeginsANewConnection) {
  LoopbackDevice device(echo);
  connect(device);
  EXPECT_EQ(write("old"), 3);
  connect(device);
  EXPECT_EQ(write("new"), 3);
  EXPECT_EQ(read(10, 5000), 3);
  EXPECT_EQ(bytes_, "new");
}

TEST_F(DeviceAccess, BadArgumentsFailAndKeepTheConnection) {
  LoopbackDevice device(stayOpen);
  connect(device);
  EXPECT_LT(access_->Read(nullptr, 10, 10, 0), 0);
  expectFailure(kBadArgument);
  EXPECT_LT(access_->Write(nullptr, 10, 0), 0);
  expectFailure(kBadArgument);
  EXPECT_LT(access_->Write("x", -1, 0), 0);
  expectFailure(kBadArgument);
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_EQ(read(0, 0), 0);
  EXPECT_EQ(access_->lastResult, 0u);
}

TEST_F(DeviceAccess, AFrameLargerThanEveryBufferIsWrittenWhole) {
  std::string frame(8u << 20, 0);
  for (std::size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<char>(i * 31);
  std::string got;
  std::atomic<bool> done{false};
  {
    LoopbackDevice device([&](const Client& client) {
      sleepMs(50);
      got = client.receive(frame.size());
      done = true;
    });
    connect(device);
    EXPECT_EQ(write(frame), static_cast<int>(frame.size()));
    EXPECT_EQ(access_->lastResult, 0u);
    for (int i = 0; i < 1000 && !done; ++i) sleepMs(5);
  }
  EXPECT_TRUE(got == frame);
}

TEST_F(DeviceAccess, ADeviceThatTakesNothingEndsTheWriteAfterTenSeconds) {
  LoopbackDevice device(stayOpen);
  connect(device);
  const Clock::time_point start = Clock::now();
  EXPECT_LE(write(std::string(64u << 20, 'x')), 0);
  expectFailure(kWriteTimeout);
  EXPECT_GT(access_->lastDetail, 0u) << "bytes taken";
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(9900));
  EXPECT_FALSE(access_->IsOpen()) << "the device holds part of a frame";
}

TEST_F(DeviceAccess, WritingToAVanishedDeviceFailsWithoutASignal) {
  LoopbackDevice device([](const Client& client) {
    client.receive(1);  // so that it is there while the connection is looked at
    client.resetOnClose();
  });
  connect(device);
  int written = 1;
  for (int i = 0; i < 200 && written > 0; ++i) {
    written = write("frame");
    sleepMs(1);
  }
  EXPECT_LT(written, 0);
  expectFailure(kLost);
  EXPECT_FALSE(access_->IsOpen());
}

TEST_F(DeviceAccess, SeesBetweenCommandsThatTheDeviceHasClosed) {
  LoopbackDevice device([](const Client& client) { client.send(client.receive(1)); });
  connect(device);
  EXPECT_EQ(write("x"), 1);
  EXPECT_EQ(read(1, 5000), 1);
  for (int i = 0; i < 1000 && access_->IsOpen(); ++i) sleepMs(5);
  EXPECT_FALSE(access_->IsOpen());
  connect(device);
}

TEST_F(DeviceAccess, DuringAnExchangeItIsReadThatFindsOut) {
  std::atomic<bool> closed{false};
  LoopbackDevice device([&](const Client& client) {
    client.receive(1);
    closed = true;
  });
  connect(device);
  EXPECT_EQ(write("x"), 1);
  while (!closed) sleepMs(1);
  sleepMs(50);
  EXPECT_TRUE(access_->IsOpen()) << "a reader that saw it closed would never read the failure";
  EXPECT_LT(read(kStreamRead, 5000), 0);
  expectFailure(kLost);
  EXPECT_FALSE(access_->IsOpen());
}

std::vector<int> openDescriptors() {
  std::vector<int> open;
  for (int descriptor = 0; descriptor < 256; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) open.push_back(descriptor);
  }
  return open;
}

int optionOf(int descriptor, int level, int option) {
  int value = 0;
  socklen_t valueBytes = sizeof(value);
  getsockopt(descriptor, level, option, &value, &valueBytes);
  return value;
}

TEST_F(DeviceAccess, ATcpConnectionSendsAtOnceAndIsProbedWhileSilent) {
  for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Ipv6}) {
    LoopbackDevice device(stayOpen, kind);
    if (!device.listening()) continue;
    connect(device);
    int ours = 0;
    for (const int descriptor : openDescriptors()) {
      sockaddr_in6 peer{};  // the port stands in the same place for both families
      socklen_t peerBytes = sizeof(peer);
      if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerBytes) != 0) continue;
      if (ntohs(peer.sin6_port) != device.port()) continue;
      ++ours;
      EXPECT_NE(optionOf(descriptor, IPPROTO_TCP, TCP_NODELAY), 0);
      EXPECT_NE(optionOf(descriptor, SOL_SOCKET, SO_KEEPALIVE), 0);
      EXPECT_LE(optionOf(descriptor, IPPROTO_TCP, TCP_KEEPIDLE), 60);
    }
    EXPECT_EQ(ours, 1);
    access_->Close();
  }
}

TEST_F(DeviceAccess, ItsDescriptorsAreNotInheritedAndNoneIsLeft) {
  for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Unix}) {
    const std::vector<int> atFirst = openDescriptors();
    {
      LoopbackDevice device(stayOpen, kind);
      connect(device);
      // The listener, the accepted connection and our own: all of them closed by exec.
      for (const int descriptor : openDescriptors()) {
        const bool old = std::find(atFirst.begin(), atFirst.end(), descriptor) != atFirst.end();
        EXPECT_TRUE(old || (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) != 0) << descriptor;
      }
      access_->Close();
      open(1, "unix:/nonexistent/device");
      open(2, "127.0.0.1:1");
    }
    EXPECT_EQ(openDescriptors(), atFirst);
  }
}

}  // namespace
