// USB transfers: what a read and a write make of every way and order in which transfers can end.
#include <gtest/gtest.h>

#include <cerrno>
#include <random>

#include "device_usb_fixture.h"
#include "modules/device_access/device_result.h"
#include "modules/device_access/usb_transport.h"

namespace {

using namespace device_access;
using module_test::DeviceUsbTest;
using module_test::FakeUsb;
using module_test::kIn;
using module_test::kOut;
using module_test::kStreamRead;
using module_test::sleepMs;

constexpr int kAtOnceMs = 1000;

class DeviceUsbRead : public DeviceUsbTest {
 protected:
  void SetUp() override {
    DeviceUsbTest::SetUp();
    connectUsb();
  }
  bool cleared(const std::string& entry) const {
    const auto log = usb_.log();
    return std::find(log.begin(), log.end(), entry) != log.end();
  }
};

TEST_F(DeviceUsbRead, AnAnswerIsReadByTheRulesOfSockets) {
  usb_.send("0123456");
  usb_.send("789ABCDEF");
  EXPECT_EQ(read(0x40000, 30000), 16);
  usb_.send("\x80");
  EXPECT_EQ(read(0x40000, 30000), 1);
  EXPECT_EQ(access_->lastResult, 0u);
  EXPECT_LT(elapsedMs_, 5000);
  usb_.send("0123456789ABCDEFGHIJ");
  EXPECT_EQ(read(2, 5000), 2);
  EXPECT_EQ(read(17, 5000), 17);
  EXPECT_EQ(bytes_, "23456789ABCDEFGHI");
  EXPECT_EQ(read(5, 5000), 1);
}

TEST_F(DeviceUsbRead, SilenceLastsTheWholeTimeOutAndZeroReturnsAtOnce) {
  for (const unsigned size : {1u, 0x40000u}) {
    EXPECT_EQ(read(size, 350), 0);
    EXPECT_EQ(access_->lastResult, module_test::kReadTimeout);
    EXPECT_GE(elapsedMs_, 349);
    EXPECT_LT(elapsedMs_, 350 + kAtOnceMs);
  }
  for (const unsigned size : {16u, 0x40000u, kStreamRead}) {
    EXPECT_EQ(read(size, 0), 0);
    EXPECT_LT(elapsedMs_, kAtOnceMs);
  }
  EXPECT_TRUE(access_->IsOpen());
}

TEST_F(DeviceUsbRead, ASilentStreamGivesTheReaderItsTurn) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(read(kStreamRead, 700), 0);
    EXPECT_EQ(access_->lastResult, i < 2 ? 0u : module_test::kReadTimeout);
    EXPECT_GE(elapsedMs_, 199);
    EXPECT_LE(elapsedMs_, 250 + kAtOnceMs);
  }
}

TEST_F(DeviceUsbRead, InterruptedWaitsGoOn) {
  usb_.failEvents(LIBUSB_ERROR_INTERRUPTED, 50);
  EXPECT_EQ(read(16, 200), 0);
  EXPECT_EQ(access_->lastResult, module_test::kReadTimeout);
  EXPECT_GE(elapsedMs_, 199);
}

TEST_F(DeviceUsbRead, ADeviceThatSendsWholePacketsOnlyIsHeardToo) {
  const std::string packets(1024, 'p');
  usb_.send(packets, true);
  EXPECT_EQ(read(0x40000, 30000), 1024);
  EXPECT_LT(elapsedMs_, 5000) << "long before the time-out";
  usb_.send(packets, true);
  EXPECT_EQ(read(0x40000, 0), 1024) << "a drain that does not wait sees it as well";
  usb_.send(packets, true);
  usb_.send("rest");
  EXPECT_EQ(read(0x40000, 5000), 1028);
  EXPECT_EQ(bytes_.substr(1024), "rest");
}

TEST_F(DeviceUsbRead, BytesThatComeAfterATimeOutAreKept) {
  EXPECT_EQ(read(16, 50), 0);
  usb_.send("ab");
  usb_.send("cd", true);
  sleepMs(20);
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_EQ(read(16, 5000), 4);
  EXPECT_EQ(bytes_, "abcd");
}

TEST_F(DeviceUsbRead, EmptyTransfersAreNeitherDataNorTheEnd) {
  for (std::size_t i = 0; i < 3 * kTransfersInFlight; ++i) {
    usb_.end(0, LIBUSB_TRANSFER_COMPLETED);
    EXPECT_EQ(read(16, 0), 0);
  }
  usb_.end(0, LIBUSB_TRANSFER_COMPLETED);
  usb_.send("x");
  EXPECT_EQ(read(16, 5000), 1);
  // A device that sends nothing but empty packets is silent.
  std::atomic<bool> stop{false};
  std::thread device([&] {
    while (!stop) usb_.end(0, LIBUSB_TRANSFER_COMPLETED);
  });
  EXPECT_EQ(read(16, 300), 0);
  EXPECT_EQ(access_->lastResult, module_test::kReadTimeout);
  EXPECT_GE(elapsedMs_, 299);
  EXPECT_LT(elapsedMs_, 300 + 2 * kAtOnceMs);
  stop = true;
  device.join();
}

TEST_F(DeviceUsbRead, ATransferThatTimedOutGivesItsBytesAndIsSubmittedAgain) {
  usb_.end(0, LIBUSB_TRANSFER_TIMED_OUT, "part");
  EXPECT_EQ(read(16, 5000), 4);
  EXPECT_EQ(bytes_, "part");
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_EQ(usb_.inFlight(), kTransfersInFlight);
}

struct StatusCase {
  int status;
  int detail;
};

constexpr StatusCase kFailures[] = {
    {LIBUSB_TRANSFER_ERROR, EIO},        {LIBUSB_TRANSFER_CANCELLED, ECANCELED}, {LIBUSB_TRANSFER_STALL, EPIPE},
    {LIBUSB_TRANSFER_NO_DEVICE, ENODEV}, {LIBUSB_TRANSFER_OVERFLOW, EOVERFLOW},
};

TEST_F(DeviceUsbRead, AFailedTransferGivesItsBytesFirstThenItsFailure) {
  for (const unsigned size : {0x40000u, kStreamRead}) {
    for (const StatusCase& row : kFailures) {
      SCOPED_TRACE(row.status);
      connectUsb();
      usb_.end(1, LIBUSB_TRANSFER_COMPLETED, "behind the gap");
      usb_.end(0, row.status, "last words");
      EXPECT_EQ(read(size, 5000), 10);
      EXPECT_EQ(bytes_, "last words");
      EXPECT_EQ(access_->lastResult, 0u);
      EXPECT_LT(read(size, 5000), 0) << bytes_;
      expectFailure(kLost);
      EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(row.detail));
      EXPECT_LT(elapsedMs_, kAtOnceMs);
      EXPECT_FALSE(access_->IsOpen());
      EXPECT_TRUE(usb_.nothingLeft()) << "the others are cancelled and reaped";
      EXPECT_LT(read(size, 5000), 0) << "and so it stays";
      expectFailure(kNotOpen);
    }
  }
  EXPECT_TRUE(cleared("clear in")) << "after the stall";
}

TEST_F(DeviceUsbRead, BytesComeInTheOrderOfSubmissionWhateverEndsFirst) {
  usb_.end(2, LIBUSB_TRANSFER_COMPLETED, "ghi");
  usb_.end(1, LIBUSB_TRANSFER_COMPLETED, "def");
  EXPECT_TRUE(access_->IsOpen());
  std::thread device([this] {
    sleepMs(40);
    usb_.end(0, LIBUSB_TRANSFER_COMPLETED, "abc");
  });
  EXPECT_EQ(read(kStreamRead, 5000), 9);
  EXPECT_EQ(bytes_, "abcdefghi");
  device.join();
}

TEST_F(DeviceUsbRead, EveryOrderOfEndsGivesTheSameBytes) {
  std::mt19937 random(7);
  for (int round = 0; round < 40; ++round) {
    std::vector<std::size_t> waiting(kTransfersInFlight);
    std::string expected;
    for (std::size_t i = 0; i < waiting.size(); ++i) {
      waiting[i] = i;
      expected += "<" + std::to_string(i) + ">";
    }
    while (!waiting.empty()) {
      const std::size_t n = random() % waiting.size();
      usb_.end(n, LIBUSB_TRANSFER_COMPLETED, "<" + std::to_string(waiting[n]) + ">");
      waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(n));
    }
    std::string received;
    while (received.size() < expected.size() && read(static_cast<unsigned>(1 + random() % 30), 5000) > 0)
      received += bytes_;
    ASSERT_EQ(received, expected);
  }
}

TEST_F(DeviceUsbRead, AFastDeviceNeverWaits) {
  EXPECT_EQ(usb_.inFlight(), kTransfersInFlight);
  EXPECT_EQ(usb_.largestTransfer(), 0x40000);
  const std::string full(kTransferBytes, 'f');
  for (std::size_t i = 0; i + 1 < kTransfersInFlight; ++i) usb_.send(full);  // while the reader is busy elsewhere
  std::size_t received = 0;
  while (received < (kTransfersInFlight - 1) * kTransferBytes && read(0xA00000, 5000) > 0) received += bytes_.size();
  EXPECT_EQ(received, (kTransfersInFlight - 1) * kTransferBytes);
  EXPECT_EQ(usb_.inFlight(), kTransfersInFlight);
  EXPECT_FALSE(usb_.starved());
}

TEST_F(DeviceUsbRead, ALargeStreamFromABusyDeviceArrivesWhole) {
  std::string sent(20u << 20, 0);
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 4096);
  std::thread device([&] {
    std::mt19937 random(3);
    for (std::size_t at = 0; at < sent.size();) {
      const std::size_t bytes = std::min<std::size_t>(sent.size() - at, 1 + random() % 600000);
      usb_.send(std::string_view(sent).substr(at, bytes), random() % 2 == 0);
      at += bytes;
      if (random() % 8 == 0) sleepMs(1);
    }
  });
  std::string received;
  while (received.size() < sent.size() && read(0xA00000, 10000) >= 0 && access_->lastResult == 0) received += bytes_;
  device.join();
  EXPECT_TRUE(received == sent);
}

TEST_F(DeviceUsbRead, UnpluggedWhileReading) {
  usb_.send("before");
  std::thread device([this] {
    sleepMs(60);
    usb_.unplug();
  });
  EXPECT_EQ(read(kStreamRead, 5000), 6);
  int got = 0;
  while (got == 0 && access_->lastResult == 0) got = read(kStreamRead, 5000);
  EXPECT_LT(got, 0);
  expectFailure(kLost);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ENODEV));
  EXPECT_FALSE(access_->IsOpen());
  device.join();
}

TEST_F(DeviceUsbRead, UnpluggedBeforeTheReadTheDataIsStillHandedOut) {
  usb_.send("one");
  usb_.send("two");
  usb_.unplug();  // submitting the emptied transfer again fails, with data behind it
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_EQ(read(3, 5000), 3);
  EXPECT_EQ(read(kStreamRead, 5000), 3);
  EXPECT_EQ(bytes_, "two");
  EXPECT_LT(read(kStreamRead, 5000), 0);
  expectFailure(kLost);
}

TEST_F(DeviceUsbRead, SeesBetweenCommandsThatTheDeviceWasUnplugged) {
  usb_.unplug();
  EXPECT_FALSE(access_->IsOpen());
  EXPECT_TRUE(usb_.nothingLeft());
  EXPECT_NE(openUsb(), 0);
}

TEST_F(DeviceUsbRead, DuringAnExchangeItIsReadThatFindsOut) {
  EXPECT_EQ(write("x"), 1);
  usb_.unplug();
  EXPECT_TRUE(access_->IsOpen());
  EXPECT_LT(read(kStreamRead, 5000), 0);
  expectFailure(kLost);
  EXPECT_FALSE(access_->IsOpen());
}

TEST_F(DeviceUsbRead, FailingEventsEndTheConnection) {
  usb_.failEvents(LIBUSB_ERROR_IO, 1);
  EXPECT_LT(read(16, 5000), 0);
  expectFailure(kLost);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(EIO));
}

TEST_F(DeviceUsbRead, AFrameLargerThanATransferIsWrittenWhole) {
  std::string frame(1000000, 0);
  for (std::size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<char>(i * 31);
  EXPECT_EQ(write(frame), static_cast<int>(frame.size()));
  EXPECT_EQ(access_->lastResult, 0u);
  EXPECT_TRUE(usb_.written() == frame);
  EXPECT_EQ(usb_.largestTransfer(), 0x40000);
  EXPECT_EQ(write(""), 0);
}

TEST_F(DeviceUsbRead, APartlyTakenTransferIsGoneOnWith) {
  usb_.take(LIBUSB_TRANSFER_COMPLETED, 5);
  EXPECT_EQ(write("0123456789ABC"), 13);
  EXPECT_EQ(usb_.written(), "0123456789ABC");
  usb_.take(LIBUSB_TRANSFER_TIMED_OUT, 5);
  EXPECT_EQ(write("0123456"), 7) << "it has ten seconds of its own";
}

TEST_F(DeviceUsbRead, AWriteFailsAsItsTransferDoes) {
  for (const StatusCase& row : kFailures) {
    SCOPED_TRACE(row.status);
    connectUsb();
    usb_.take(row.status, 2);
    EXPECT_LT(write("frame"), 0);
    expectFailure(kLost);
    EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(row.detail));
    EXPECT_FALSE(access_->IsOpen());
    EXPECT_TRUE(usb_.nothingLeft());
  }
  EXPECT_TRUE(cleared("clear out"));
}

TEST_F(DeviceUsbRead, UnpluggedWhileWriting) {
  usb_.take(FakeUsb::kNever, 2);
  std::thread device([this] {
    sleepMs(60);
    usb_.unplug();
  });
  EXPECT_LT(write("frame"), 0);
  expectFailure(kLost);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ENODEV));
  EXPECT_FALSE(access_->IsOpen());
  device.join();
}

TEST_F(DeviceUsbRead, ADeviceThatTakesNothingEndsTheWriteAfterTenSeconds) {
  usb_.take(FakeUsb::kNever, 3);
  const auto start = module_test::Clock::now();
  EXPECT_LT(write("frame"), 0);
  expectFailure(kWriteTimeout);
  EXPECT_EQ(access_->lastDetail, 3u) << "bytes taken";
  EXPECT_GE(module_test::Clock::now() - start, std::chrono::milliseconds(9990));
  EXPECT_FALSE(access_->IsOpen());
  EXPECT_TRUE(usb_.nothingLeft());
}

TEST_F(DeviceUsbRead, BytesThatComeDuringAWriteAreKept) {
  usb_.take(FakeUsb::kNever, 0);
  std::thread device([this] {
    usb_.send("meanwhile");
    sleepMs(30);
    usb_.take(LIBUSB_TRANSFER_COMPLETED);
    usb_.send("!");
  });
  device.join();
  EXPECT_EQ(write("abort"), 5);
  EXPECT_EQ(read(16, 5000), 10);
  EXPECT_EQ(bytes_, "meanwhile!");
}

TEST_F(DeviceUsbRead, CloseCancelsAndReapsWhatIsInFlight) {
  usb_.send("half", true);
  usb_.end(3, LIBUSB_TRANSFER_COMPLETED, "ended but not noticed yet");
  access_->Close();
  EXPECT_TRUE(usb_.nothingLeft());
  EXPECT_FALSE(access_->IsOpen());
  EXPECT_EQ(access_->lastResult, 0u);
}

TEST_F(DeviceUsbRead, ObjectsOfTheirOwnDoNotMeet) {
  FakeUsb other;
  other.devices.emplace_back();
  std::thread second([&other] {
    device_access::DeviceAccess access(other);
    orvalle_scan_api::_DEV_IDENTIFIER id{0, 1, "usb:fff0:00a1"};
    ASSERT_EQ(access.Open(id), 0);
    for (int i = 0; i < 200; ++i) {
      other.send("other");
      char bytes[5];
      ASSERT_EQ(access.Read(bytes, 5, 5, 5000), 5);
    }
  });
  for (int i = 0; i < 200; ++i) {
    usb_.send("first");
    ASSERT_EQ(read(5, 5000), 5);
    ASSERT_EQ(bytes_, "first");
  }
  second.join();
  EXPECT_TRUE(other.nothingLeft());
}

// The one case in which something is left behind on purpose: the system may still write into it.
TEST(DeviceUsbClose, ATransferThatTheSystemKeepsIsNotFreed) {
  static FakeUsb* const usb = new FakeUsb;  // reachable for ever, as the system's own record of the transfers
  usb->devices.emplace_back();
  auto access = std::make_unique<device_access::DeviceAccess>(*usb);
  orvalle_scan_api::_DEV_IDENTIFIER id{0, 1, "usb:fff0:00a1"};
  ASSERT_EQ(access->Open(id), 0);
  usb->keepsCancelled = true;
  const auto start = module_test::Clock::now();
  access.reset();
  EXPECT_LT(module_test::Clock::now() - start, std::chrono::seconds(8));
  EXPECT_EQ(usb->inFlight(), kTransfersInFlight);
  usb->end(0, LIBUSB_TRANSFER_COMPLETED, "late");
  timeval wait{};
  usb->handleEvents(nullptr, &wait);
}

}  // namespace
