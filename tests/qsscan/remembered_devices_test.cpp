#include "apps/qsscan/remembered_devices.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

#include "temporary_folder.h"

namespace {

using namespace qsscan;
using qsscan_test::TemporaryFolder;
using Names = std::vector<std::string>;

class RememberedDevicesFile : public testing::Test {
 protected:
  void SetUp() override { ::setenv("XDG_STATE_HOME", folder_.file("state").c_str(), 1); }
  void TearDown() override { ::setenv("XDG_STATE_HOME", "/dev/null/none", 1); }
  std::string path() const { return folder_.file("state/qsscan/devices.json"); }
  void write(const std::string& text) const {
    std::filesystem::create_directories(folder_.file("state/qsscan"));
    std::ofstream(path(), std::ios::binary) << text;
  }
  static Names names() {
    Names all;
    for (const RememberedDevice& device : readRememberedDevices().devices) all.push_back(device.address);
    return all;
  }
  static std::string problem() { return readRememberedDevices().problem; }
  const TemporaryFolder folder_;
};

TEST_F(RememberedDevicesFile, NewestComesFirstAndOnce) {
  EXPECT_EQ(names(), Names{});
  rememberDevice("a");
  rememberDevice("b:1");
  rememberDevice("a");
  EXPECT_EQ(names(), (Names{"a", "b:1"}));
  EXPECT_EQ(readRememberedDevices().devices[0].lastAnswer.size(), 20u);
  struct stat status {};
  ASSERT_EQ(::stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u) << "whom one scans from is nobody else's business";
}

TEST_F(RememberedDevicesFile, IsBounded) {
  for (int i = 0; i < 30; ++i) rememberDevice("host" + std::to_string(i));
  const Names all = names();
  ASSERT_EQ(all.size(), 20u);
  EXPECT_EQ(all.front(), "host29");
  EXPECT_EQ(all.back(), "host10");
}

TEST_F(RememberedDevicesFile, ASocketIsRememberedByItsWholePath) {
  rememberDevice("unix:scanner.sock");
  EXPECT_EQ(names(), Names{"unix:" + std::filesystem::current_path().string() + "/scanner.sock"});
}

TEST_F(RememberedDevicesFile, NothingIsLeftBesideIt) {
  rememberDevice("a");
  rememberDevice("b");
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder_.file("state/qsscan"))) files += entry.exists();
  EXPECT_EQ(files, 1);
}

TEST_F(RememberedDevicesFile, BadFilesAreToldAndBegunAnew) {
  const std::string good = R"({"devices":[{"device":"a","lastAnswer":"x"}]})";
  for (const std::string& text :
       {std::string(), std::string("{"), std::string("[]"), std::string("7"), std::string("{\"devices\":7}"),
        std::string("\x00\xff\x01", 3), std::string(50000, '['), good.substr(0, good.size() - 3)}) {
    write(text);
    EXPECT_EQ(names(), Names{});
    EXPECT_NE(problem().find("are not understood"), std::string::npos) << text.substr(0, 20);
    rememberDevice("new");
    EXPECT_EQ(names(), Names{"new"});
    EXPECT_EQ(problem(), "");
  }
}

TEST_F(RememberedDevicesFile, EachBeginningOfAFileIsRead) {
  rememberDevice("a");
  rememberDevice("b");
  const std::string whole = folder_.content("state/qsscan/devices.json");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    write(whole.substr(0, size));
    EXPECT_LE(names().size(), 2u);
  }
}

TEST_F(RememberedDevicesFile, EntriesWithoutMeaningAreLeftOut) {
  write(R"({"devices":[7,null,{},{"device":3},{"device":""},{"device":"a:b:c"},{"device":"good","lastAnswer":9},
           {"device":"h\u0007"},{"device":")" +
        std::string(200, 'x') + R"("}],"more":1})");
  EXPECT_EQ(names(), Names{"good"});
  EXPECT_EQ(problem(), "");
}

TEST_F(RememberedDevicesFile, AHugeFileIsNotRead) {
  write(std::string(1 << 20, ' '));
  EXPECT_NE(problem().find("larger than 64 KiB"), std::string::npos) << problem();
  rememberDevice("new");
  EXPECT_EQ(names(), Names{"new"});
}

TEST_F(RememberedDevicesFile, ADirectoryOrAForbiddenPlaceStopsNobody) {
  std::filesystem::create_directories(path() + "/inside");
  EXPECT_NE(problem().find("it is a directory"), std::string::npos);
  rememberDevice("a");
  EXPECT_EQ(names(), Names{});
  ::setenv("XDG_STATE_HOME", "/dev/null/none", 1);
  rememberDevice("a");
  EXPECT_EQ(names(), Names{});
  EXPECT_EQ(problem(), "");
}

TEST_F(RememberedDevicesFile, WhatIsNoUtf8IsNotRemembered) {
  rememberDevice("a");
  rememberDevice("unix:/\xff");
  EXPECT_EQ(names(), Names{"a"});
}

TEST_F(RememberedDevicesFile, ManyAtOnceLeaveAWholeFile) {
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int n = 0; n < 20; ++n) rememberDevice("host" + std::to_string(i));
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(problem(), "");
  EXPECT_FALSE(names().empty());
}

}  // namespace
