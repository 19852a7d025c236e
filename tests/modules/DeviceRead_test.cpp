// What one read waits for and what it returns.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/time.h>

#include <cerrno>

#include "device_access_fixture.h"

namespace {

using namespace module_test;

class DeviceRead : public DeviceAccessTest {};

void stayOpen(const Client& client) { client.stay(); }

// Upper bounds leave room for a busy machine; lower bounds are exact but for the clock's own grain.
constexpr int kAtOnceMs = 1000;

TEST_F(DeviceRead, AnAnswerInTwoPartsComesInOneRead) {
  // The pause between the parts is far below the 10 ms that a read waits. A busy machine may stretch it, hence the
  // repetition; a read that does not wait never sees both parts.
  LoopbackDevice device([](const Client& client) {
    while (!client.receive(1).empty()) {
      client.send("0123456");
      sleepMs(1);
      client.send("789ABCDEF");
    }
  });
  connect(device);
  bool whole = false;
  for (int i = 0; i < 30 && !whole; ++i) {
    ASSERT_EQ(write("?"), 1);
    whole = read(1000, 5000) == 16;
    for (int rest = 16 - static_cast<int>(bytes_.size()); rest > 0;) rest -= read(1000, 5000);
  }
  EXPECT_TRUE(whole);
}

TEST_F(DeviceRead, AShortAnswerIsReturnedAfterAPause) {
  LoopbackDevice device([](const Client& client) {
    client.send("\x80");
    client.stay();
  });
  connect(device);
  EXPECT_EQ(read(0x40000, 30000), 1);
  EXPECT_EQ(access_->lastResult, 0u);
  EXPECT_LT(elapsedMs_, 5000);
}

TEST_F(DeviceRead, SixteenBytesAreEnough) {
  LoopbackDevice device([](const Client& client) {
    client.send("0123456789ABCDEF");
    client.stay();
  });
  connect(device);
  EXPECT_EQ(read(0x40000, 30000), 16);
}

TEST_F(DeviceRead, NeverReturnsMoreThanAskedFor) {
  LoopbackDevice device([](const Client& client) {
    client.send("0123456789ABCDEFGHIJ");
    client.stay();
  });
  connect(device);
  EXPECT_EQ(read(2, 5000), 2);
  EXPECT_EQ(bytes_, "01");
  EXPECT_EQ(read(17, 5000), 17);
  EXPECT_EQ(bytes_, "23456789ABCDEFGHI");
  EXPECT_EQ(read(5, 5000), 1);
  EXPECT_EQ(bytes_, "J");
}

TEST_F(DeviceRead, SilenceLastsTheWholeTimeOut) {
  LoopbackDevice device(stayOpen);
  connect(device);
  for (const unsigned size : {1u, 0x40000u}) {
    EXPECT_EQ(read(size, 400), 0);
    EXPECT_EQ(access_->lastResult, kReadTimeout);
    EXPECT_GE(elapsedMs_, 399) << "not cut down to the pause of the stream";
    EXPECT_TRUE(access_->IsOpen());
  }
}

TEST_F(DeviceRead, ATimeOutOfZeroReturnsAtOnce) {
  LoopbackDevice device([](const Client& client) {
    client.receive(1);
    client.send("late");
    client.stay();
  });
  connect(device);
  for (const unsigned size : {16u, 0x40000u, kStreamRead}) {
    EXPECT_EQ(read(size, 0), 0);
    EXPECT_LT(elapsedMs_, kAtOnceMs);
  }
  EXPECT_EQ(read(16, -1), 0) << "a time-out below zero is none";
  EXPECT_LT(elapsedMs_, kAtOnceMs);
  ASSERT_EQ(write("x"), 1);
  int got = 0;
  for (int i = 0; i < 1000 && got == 0; ++i) {
    sleepMs(5);
    got = read(0x40000, 0);
  }
  EXPECT_EQ(bytes_, "late");
}

TEST_F(DeviceRead, TheStreamIsHandedOverAsItComes) {
  LoopbackDevice device([](const Client& client) {
    client.send("abc");
    client.stay();
  });
  connect(device);
  EXPECT_EQ(read(kStreamRead, 90000), 3);
  EXPECT_EQ(access_->lastResult, 0u);
  EXPECT_LT(elapsedMs_, 5000);
}

TEST_F(DeviceRead, ASilentStreamGivesTheReaderItsTurn) {
  LoopbackDevice device(stayOpen);
  connect(device);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(read(0xA00000, 90000), 0);
    EXPECT_EQ(access_->lastResult, 0u) << "not a time-out";
    EXPECT_GE(elapsedMs_, 100) << "the reader has no sleep of its own";
    EXPECT_LE(elapsedMs_, 250 + kAtOnceMs);
  }
  EXPECT_TRUE(access_->IsOpen());
}

TEST_F(DeviceRead, AStreamTimesOutWhenItWasSilentForTheWholeTime) {
  LoopbackDevice device(stayOpen);
  connect(device);
  const Clock::time_point start = Clock::now();
  int turns = 0;
  do {
    ASSERT_EQ(read(kStreamRead, 600), 0);
    ++turns;
  } while (access_->lastResult == 0 && turns < 100);
  EXPECT_EQ(access_->lastResult, kReadTimeout);
  EXPECT_GE(turns, 3) << "250 + 250 + 100 ms";
  const auto elapsed = Clock::now() - start;
  EXPECT_GE(elapsed, std::chrono::milliseconds(599));
  EXPECT_LT(elapsed, std::chrono::seconds(5));
}

TEST_F(DeviceRead, AByteOrACommandStartsTheStreamsTimeOutAnew) {
  LoopbackDevice device([](const Client& client) {
    client.send("a");
    client.receive(1);
    client.send("b");
    client.stay();
  });
  connect(device);
  ASSERT_EQ(read(kStreamRead, 500), 1);
  EXPECT_EQ(read(kStreamRead, 500), 0);
  EXPECT_EQ(access_->lastResult, 0u);
  ASSERT_EQ(write("x"), 1);
  int got = 0;
  while (got == 0 && access_->lastResult == 0) got = read(kStreamRead, 500);
  ASSERT_EQ(got, 1);
  EXPECT_EQ(read(kStreamRead, 500), 0);
  EXPECT_EQ(access_->lastResult, 0u) << "the 250 ms before the byte do not count";
  EXPECT_EQ(read(kStreamRead, 500), 0);
  EXPECT_EQ(access_->lastResult, kReadTimeout);
}

TEST_F(DeviceRead, AStreamTimeOutBelowThePauseIsKept) {
  LoopbackDevice device(stayOpen);
  connect(device);
  EXPECT_EQ(read(kStreamRead, 50), 0);
  EXPECT_EQ(access_->lastResult, kReadTimeout);
  EXPECT_GE(elapsedMs_, 49);
}

TEST_F(DeviceRead, ALargeStreamArrivesWhole) {
  std::string sent(20u << 20, 0);
  for (std::size_t i = 0; i < sent.size(); ++i) sent[i] = static_cast<char>(i * 7 + i / 4096);
  for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Unix}) {
    LoopbackDevice device(
        [&](const Client& client) {
          client.send(sent);
          client.stay();
        },
        kind);
    connect(device);
    std::string received;
    while (received.size() < sent.size() && read(0xA00000, 10000) >= 0 && access_->lastResult == 0) received += bytes_;
    EXPECT_TRUE(received == sent);
    access_->Close();
  }
}

TEST_F(DeviceRead, AClosedDeviceGivesItsDataFirst) {
  for (const unsigned size : {0x40000u, kStreamRead}) {
    for (const auto kind : {LoopbackDevice::Kind::Ipv4, LoopbackDevice::Kind::Unix}) {
      LoopbackDevice device([](const Client& client) { client.send("last words"); }, kind);
      connect(device);
      sleepMs(30);
      EXPECT_TRUE(access_->IsOpen());
      EXPECT_EQ(read(size, 5000), 10);
      EXPECT_EQ(bytes_, "last words");
      EXPECT_EQ(access_->lastResult, 0u);
      EXPECT_LT(read(size, 5000), 0);
      EXPECT_EQ(access_->lastResult >> 28, 4u);
      EXPECT_NE(access_->lastResult, kReadTimeout);
      EXPECT_LT(elapsedMs_, kAtOnceMs);
      EXPECT_FALSE(access_->IsOpen());
      EXPECT_LT(read(size, 5000), 0) << "and so it stays";
      EXPECT_EQ(access_->lastResult >> 28, 4u);
    }
  }
}

TEST_F(DeviceRead, AResetIsAFailure) {
  LoopbackDevice device([](const Client& client) {
    client.receive(1);
    client.resetOnClose();
  });
  connect(device);
  ASSERT_EQ(write("x"), 1);
  EXPECT_LT(read(kStreamRead, 5000), 0);
  EXPECT_EQ(access_->lastResult >> 28, 4u);
  EXPECT_EQ(access_->lastDetail, static_cast<std::uint32_t>(ECONNRESET));
  EXPECT_FALSE(access_->IsOpen());
}

TEST_F(DeviceRead, SignalsOfTheHostDoNotShortenTheWait) {
  struct sigaction act {};
  struct sigaction before {};
  act.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGALRM, &act, &before), 0);
  const itimerval every{{0, 20000}, {0, 20000}};
  setitimer(ITIMER_REAL, &every, nullptr);

  LoopbackDevice device(stayOpen);
  connect(device);
  EXPECT_EQ(read(100, 400), 0);
  EXPECT_EQ(access_->lastResult, kReadTimeout);
  EXPECT_GE(elapsedMs_, 399);

  const itimerval never{};
  setitimer(ITIMER_REAL, &never, nullptr);
  sigaction(SIGALRM, &before, nullptr);
}

}  // namespace
