#include "device/control.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <thread>

#include "sheet_makers.h"
#include "support/failure.h"

namespace vscan {
namespace {

class ControlTest : public testing::Test {
 protected:
  ControlTest() : thread_([this] { control_.run(); }) {}
  ~ControlTest() override {
    ::eventfd_write(stopFd_.get(), 1);
    thread_.join();
  }

  const test::TempFolder folder_;
  const std::string path_ = folder_.file("control");
  Profile profile_ = loadProfile(QS_PROFILES "/office.json");
  Panel panel_;

 private:
  Log log_{false, [](const std::string&) {}};
  UniqueFd stopFd_{::eventfd(0, EFD_CLOEXEC)};
  Control control_{profile_, panel_, Listener::onUnix(path_), log_, stopFd_.get()};
  std::thread thread_;
};

TEST_F(ControlTest, AButtonIsPressedAndLetGo) {
  EXPECT_EQ(tellScanner(path_, "button ocr resolution=200"), "ok");
  ASSERT_TRUE(panel_.pressed());
  EXPECT_EQ(panel_.pressed()->event, PushEvent::Ocr);
  EXPECT_EQ(panel_.pressed()->resolutionX, 200);
  EXPECT_EQ(tellScanner(path_, "button none"), "ok");
  EXPECT_FALSE(panel_.pressed());
}

TEST_F(ControlTest, WhatIsWrongIsAnsweredByASentenceAndChangesNothing) {
  EXPECT_EQ(tellScanner(path_, "button image"), "ok");
  for (const char* line : {"", "explode", "button", "button ", "button fax", "button image day=1"}) {
    EXPECT_TRUE(tellScanner(path_, line).starts_with("error: ")) << line;
    EXPECT_TRUE(panel_.pressed()) << line;
  }
}

TEST_F(ControlTest, SeveralLinesComeOverOneConnectionInAnyPieces) {
  const UniqueFd owner = connectUnix(path_);
  for (const char byte : std::string("button image\nbutton none\n")) ASSERT_EQ(::send(owner.get(), &byte, 1, 0), 1);
  std::string answers(6, ' ');
  EXPECT_EQ(::recv(owner.get(), answers.data(), answers.size(), MSG_WAITALL), 6);
  EXPECT_EQ(answers, "ok\nok\n");
}

TEST_F(ControlTest, AnOwnerThatNeverEndsItsLineIsLeft) {
  const UniqueFd owner = connectUnix(path_);
  const std::string endless(8000, 'x');
  ASSERT_EQ(::send(owner.get(), endless.data(), endless.size(), 0), 8000);
  EXPECT_EQ(tellScanner(path_, "button image"), "ok");
}

TEST_F(ControlTest, AProfileWithoutAButtonRefusesIt) {
  Profile flatbed = loadProfile(QS_PROFILES "/flatbed.json");
  EXPECT_THROW(pressButton(flatbed, panel_, "image"), Failure);
  Profile classic = loadProfile(QS_PROFILES "/classic.json");
  EXPECT_NO_THROW(pressButton(classic, panel_, "image"));
}

TEST(Control, NobodyBehindTheSocketIsAFailure) {
  EXPECT_THROW(tellScanner("/nonexistent/control", "button none"), Failure);
}

}  // namespace
}  // namespace vscan
