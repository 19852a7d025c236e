#include "foundation/compat.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

constexpr char kName[] = "foundation_compat_test.resource";

// A resource of 600 bytes beside the program, which holds the core here.
class Compat : public ::testing::Test {
 protected:
  void SetUp() override {
    for (int i = 0; i < 600; ++i) content_ += static_cast<char>('a' + i % 26);
    std::ofstream(path_, std::ios::binary) << content_;
  }
  void TearDown() override { std::filesystem::remove(path_); }

  const std::filesystem::path path_ = std::filesystem::read_symlink("/proc/self/exe").parent_path() / kName;
  std::string content_;
};

// Closes a fork and frees what closing leaves.
void closeAndFree(std::FILE* fork) {
  EXPECT_EQ(mac_close(fork), 0);
  std::free(fork);
}

std::string readFork(std::FILE* fork, long size) {
  std::string bytes(static_cast<std::size_t>(size), '?');
  const long count = mac_read(bytes.data(), size, fork);
  return bytes.substr(0, static_cast<std::size_t>(count));
}

int descriptorIn(const std::FILE* fork) {
  int descriptor = -1;
  std::memcpy(&descriptor, static_cast<const void*>(fork), 4);
  return descriptor;
}

}  // namespace

TEST(CompatNames, GetSystemDirectoryGivesAFixedText) {
  char buffer[16];
  for (const int size : {7, 8, 16, 1000}) {
    std::memset(buffer, '?', sizeof buffer);
    EXPECT_EQ(GetSystemDirectory(buffer, size), 6) << size;
    EXPECT_STREQ(buffer, "system") << size;
    EXPECT_EQ(buffer[7], '?') << size;
  }
  for (const int size : {6, 1, 0, -1}) {
    std::memset(buffer, '?', sizeof buffer);
    EXPECT_EQ(GetSystemDirectory(buffer, size), 6) << size;
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '?')) << "it does not fit";
  }
  EXPECT_EQ(GetSystemDirectory(nullptr, 16), 6);
}

TEST_F(Compat, OpenDropsSevenCharacters) {
  for (const char* scheme : {"file://", "1234567", "///////"}) {
    for (const char* mode : {"rb", "nonsense", static_cast<const char*>(nullptr)}) {
      std::FILE* const fork = mac_open((std::string(scheme) + kName).c_str(), mode);
      ASSERT_NE(fork, nullptr);
      EXPECT_EQ(readFork(fork, 5), "abcde");
      closeAndFree(fork);
    }
  }
  EXPECT_EQ(mac_open(kName, "rb"), nullptr) << "seven characters of the name itself are gone";
}

TEST_F(Compat, OpenOfNothingGivesNothing) {
  for (const char* path :
       {"", "a", "123456", "1234567", "1234567no-such-resource", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(mac_open(path, "rb"), nullptr);
  }
  for (const char* name : {"", "no-such-resource", "/etc/passwd", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(iOpenFromMainBundle(name), nullptr);
  }
  EXPECT_EQ(iOpenFromMainBundle((std::string("../tests/") + kName).c_str()), nullptr) << "a name, not a path";
}

TEST_F(Compat, AForkIsAFourByteBlockThatHoldsADescriptor) {
  std::FILE* const fork = iOpenFromMainBundle(kName);
  ASSERT_NE(fork, nullptr);
  const int descriptor = descriptorIn(fork);
  EXPECT_GT(descriptor, 2);
  EXPECT_EQ(::fcntl(descriptor, F_GETFL) & O_ACCMODE, O_RDONLY);
  EXPECT_EQ(std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor)), path_);
  closeAndFree(fork);
}

TEST_F(Compat, ReadGivesWhatIsThere) {
  std::FILE* const fork = iOpenFromMainBundle(kName);
  ASSERT_NE(fork, nullptr);
  char bytes[4] = "???";
  EXPECT_EQ(mac_read(bytes, 0, fork), 0);
  EXPECT_EQ(mac_read(bytes, -1, fork), 0);
  EXPECT_EQ(mac_read(nullptr, 3, fork), 0);
  EXPECT_EQ(mac_read(bytes, 3, nullptr), 0);
  EXPECT_STREQ(bytes, "???");
  EXPECT_EQ(readFork(fork, 300), content_.substr(0, 300));
  EXPECT_EQ(readFork(fork, 1000), content_.substr(300)) << "as much as is left";
  EXPECT_EQ(readFork(fork, 1), "") << "the end";
  closeAndFree(fork);
}

TEST_F(Compat, SeekMovesForwardByReading) {
  for (const int offset : {1, 255, 256, 257, 511, 512, 513, 599, 600}) {
    std::FILE* const fork = iOpenFromMainBundle(kName);
    ASSERT_NE(fork, nullptr);
    EXPECT_EQ(mac_seek(fork, offset), 1) << offset;
    EXPECT_EQ(readFork(fork, 3), content_.substr(static_cast<std::size_t>(offset), 3)) << offset;
    closeAndFree(fork);
  }
}

TEST_F(Compat, SeekGoesFromWhereTheForkIsAndNeverBack) {
  std::FILE* const fork = iOpenFromMainBundle(kName);
  ASSERT_NE(fork, nullptr);
  EXPECT_EQ(mac_seek(fork, 10), 1);
  for (const int nothing : {0, -1, -1000}) EXPECT_EQ(mac_seek(fork, nothing), 1);
  EXPECT_EQ(mac_seek(fork, 300), 1);
  EXPECT_EQ(readFork(fork, 3), content_.substr(310, 3));
  EXPECT_EQ(mac_seek(fork, 1000), 0) << "not so many bytes are left";
  EXPECT_EQ(mac_seek(fork, 1), 0);
  EXPECT_EQ(mac_seek(fork, 0), 1);
  closeAndFree(fork);
}

TEST_F(Compat, CloseLeavesTheBlock) {
  std::FILE* const fork = iOpenFromMainBundle(kName);
  ASSERT_NE(fork, nullptr);
  const int descriptor = descriptorIn(fork);
  EXPECT_EQ(mac_close(fork), 0);
  EXPECT_EQ(::fcntl(descriptor, F_GETFL), -1) << "the descriptor is closed";
  EXPECT_EQ(descriptorIn(fork), descriptor) << "the block is still there";
  char bytes[4];
  EXPECT_EQ(mac_read(bytes, 3, fork), 0);
  EXPECT_EQ(mac_seek(fork, 1), 0);
  EXPECT_EQ(mac_close(fork), EBADF) << "the system's code";
  std::free(fork);
  EXPECT_EQ(mac_seek(nullptr, 1), 0);
  EXPECT_NE(mac_close(nullptr), 0);
}

TEST(CompatNames, AHandlePointsToABlockThatStays) {
  char** const handle = NewHandle(10000);
  ASSERT_NE(handle, nullptr);
  char* const block = GlobalLock(handle);
  ASSERT_NE(block, nullptr);
  EXPECT_EQ(block, *handle);
  std::memset(block, 'x', 10000);
  EXPECT_EQ(GlobalUnlock(handle), 1);
  EXPECT_EQ(GlobalLock(handle), block);
  EXPECT_EQ(block[9999], 'x');
  EXPECT_EQ(GlobalUnlock(handle), 1);
  EXPECT_EQ(GlobalFree(handle), 0);
}

TEST(CompatNames, AHandleOfNothingIsHarmless) {
  char** const empty = NewHandle(0);
  ASSERT_NE(empty, nullptr);
  EXPECT_NE(GlobalLock(empty), nullptr);
  EXPECT_EQ(GlobalFree(empty), 0);
  EXPECT_EQ(NewHandle(-1), nullptr);
  EXPECT_EQ(GlobalLock(nullptr), nullptr);
  EXPECT_EQ(GlobalUnlock(nullptr), 1);
  EXPECT_EQ(GlobalFree(nullptr), 0);
}
