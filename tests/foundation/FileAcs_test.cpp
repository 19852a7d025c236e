// Whole files; the linker sends the core's calls of fread here, to let one come short.
#include "foundation/FileAcs.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "tests/foundation/temporary_folder.h"

using foundation_test::TemporaryFolder;

namespace {

constexpr unsigned int kUntouched = 4711;
const char* const kNull = nullptr;

std::size_t bytesMissing = 0;

std::size_t openDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

}  // namespace

extern "C" {
std::size_t __real_fread(void* bytes, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fread(void* bytes, std::size_t size, std::size_t count, std::FILE* file);

std::size_t __wrap_fread(void* bytes, std::size_t size, std::size_t count, std::FILE* file) {
  return __real_fread(bytes, size, count, file) - bytesMissing;
}
}

TEST(FileAcs, ReadsAWholeFile) {
  const TemporaryFolder folder;
  const std::string content("bytes\0of\r\nany kind\xFF", 19);
  const std::string path = folder.write("file", content);
  CFileAcs file;
  unsigned int size = kUntouched;
  const unsigned char* const bytes = file.Read(path.c_str(), &size);
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(size, content.size());
  EXPECT_EQ(std::memcmp(bytes, content.data(), content.size()), 0);
  file.FreeBufAndCloseFile();
}

TEST(FileAcs, AnAbsentOrEmptyFileGivesNothingAndLeavesTheSizeAlone) {
  const TemporaryFolder folder;
  const std::string absent = folder.file("absent");
  const std::string empty = folder.write("empty", "");
  for (const char* path : {absent.c_str(), empty.c_str(), "", kNull, folder.path().c_str()}) {
    CFileAcs file;
    unsigned int size = kUntouched;
    EXPECT_EQ(file.Read(path, &size), nullptr);
    EXPECT_EQ(size, kUntouched);
    EXPECT_EQ(file.GetFileSize(path), 0u);
    file.FreeBufAndCloseFile();
  }
}

TEST(FileAcs, AShortReadGivesNothingAndTheBytesThatCame) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  CFileAcs file;
  unsigned int size = kUntouched;
  bytesMissing = 3;
  EXPECT_EQ(file.Read(path.c_str(), &size), nullptr);
  bytesMissing = 0;
  EXPECT_EQ(size, 7u);
  file.FreeBufAndCloseFile();  // not a second time
}

TEST(FileAcs, TheBufferOutlivesTheObject) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  unsigned char* bytes = nullptr;
  {
    CFileAcs file;
    unsigned int size = 0;
    bytes = file.Read(path.c_str(), &size);
  }
  ASSERT_NE(bytes, nullptr);
  EXPECT_EQ(std::memcmp(bytes, "0123456789", 10), 0);
  std::free(bytes);
}

TEST(FileAcs, ReadClosesTheFileAgain) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  const std::string empty = folder.write("empty", "");
  const std::size_t before = openDescriptors();
  CFileAcs file;
  unsigned int size = 0;
  for (int round = 0; round < 3; ++round) {
    EXPECT_NE(file.Read(path.c_str(), &size), nullptr);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(file.Read(empty.c_str(), &size), nullptr);
    EXPECT_EQ(file.GetFileSize(path.c_str()), 10u);
    EXPECT_EQ(openDescriptors(), before);
    file.FreeBufAndCloseFile();
  }
  EXPECT_TRUE(file.Write(path.c_str(), "x", 1, "ab"));
  EXPECT_EQ(openDescriptors(), before);
}

TEST(FileAcs, TheOtherReadGoesOnFromCallToCall) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  const std::string other = folder.write("other", "abcdefghij");
  CFileAcs file;
  char bytes[8] = {};
  EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 4u);
  EXPECT_STREQ(bytes, "0123");
  EXPECT_EQ(file.Read(other.c_str(), bytes, 4), 4u) << "the file stays the one that the first call opened";
  EXPECT_STREQ(bytes, "4567");
  EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 2u);
  EXPECT_EQ(std::memcmp(bytes, "89", 2), 0);
  EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 0u);
  file.FreeBufAndCloseFile();
  EXPECT_EQ(file.Read(other.c_str(), bytes, 4), 4u);
  EXPECT_STREQ(bytes, "abcd");
}

TEST(FileAcs, TheOtherReadGivesNothingWhereThereIsNothing) {
  const TemporaryFolder folder;
  CFileAcs file;
  char bytes[8] = {};
  const std::string path = folder.file("file");
  EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 0u);
  EXPECT_EQ(file.Read(kNull, bytes, 4), 0u);
  EXPECT_EQ(file.Read("", bytes, 4), 0u);
  folder.write("file", "0123456789");
  EXPECT_EQ(file.Read(path.c_str(), nullptr, 4), 0u);
  EXPECT_EQ(file.Read(path.c_str(), bytes, 0), 0u);
  EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 4u) << "an absent file is looked for again";
  EXPECT_STREQ(bytes, "0123");
}

TEST(FileAcs, ClosingTwiceOrBeforeTheDestructorIsHarmless) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  const std::size_t before = openDescriptors();
  {
    CFileAcs file;
    char bytes[4];
    unsigned int size = 0;
    file.FreeBufAndCloseFile();
    EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 4u);
    EXPECT_EQ(openDescriptors(), before + 1);
    EXPECT_NE(file.Read(path.c_str(), &size), nullptr);
    file.FreeBufAndCloseFile();
    EXPECT_EQ(openDescriptors(), before);
    file.FreeBufAndCloseFile();
    EXPECT_EQ(file.Read(path.c_str(), bytes, 4), 4u);
  }
  EXPECT_EQ(openDescriptors(), before) << "the destructor closes the stream";
}

TEST(FileAcs, TheSizeIsToldWithoutMovingTheStream) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "0123456789");
  CFileAcs file;
  std::FILE* const stream = std::fopen(path.c_str(), "rb");
  ASSERT_NE(stream, nullptr);
  for (int expected = 0; expected < 10; ++expected) {
    EXPECT_EQ(file.GetFileSize(stream), 10u);
    EXPECT_EQ(std::fgetc(stream), '0' + expected);
  }
  EXPECT_EQ(file.GetFileSize(stream), 10u);
  std::fclose(stream);
  EXPECT_EQ(file.GetFileSize(path.c_str()), 10u);
  EXPECT_EQ(file.GetFileSize(static_cast<std::FILE*>(nullptr)), 0u);
}

TEST(FileAcs, TheSizeIsCutTo32Bits) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "");
  ASSERT_EQ(::truncate(path.c_str(), 0x100000005), 0);
  EXPECT_EQ(CFileAcs().GetFileSize(path.c_str()), 5u);
}

TEST(FileAcs, WritesInTheGivenMode) {
  const TemporaryFolder folder;
  const std::string path = folder.file("file");
  CFileAcs file;
  EXPECT_FALSE(file.Write(path.c_str(), "abc", 3, "r+b"));
  EXPECT_TRUE(file.Write(path.c_str(), "abcdef", 6, "wb"));
  EXPECT_TRUE(file.Write(path.c_str(), "gh", 2, "ab"));
  EXPECT_EQ(folder.read("file"), "abcdefgh");
  EXPECT_TRUE(file.Write(path.c_str(), "XY", 2, "r+b"));
  EXPECT_EQ(folder.read("file"), "XYcdefgh");
  EXPECT_FALSE(file.Write(path.c_str(), "abc", 3, "rb"));
  EXPECT_EQ(folder.read("file"), "XYcdefgh");
  EXPECT_TRUE(file.Add(path.c_str(), "12", 2));
  EXPECT_EQ(folder.read("file"), "XYcdefgh12");
  EXPECT_TRUE(file.Add(folder.file("new").c_str(), "12", 2));
  EXPECT_EQ(folder.read("new"), "12");
  EXPECT_TRUE(file.Write(path.c_str(), "z", 1, "wb"));
  EXPECT_EQ(folder.read("file"), "z");
}

TEST(FileAcs, NothingToWriteIsFalse) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "old");
  CFileAcs file;
  EXPECT_FALSE(file.Write(kNull, "abc", 3, "wb"));
  EXPECT_FALSE(file.Write("", "abc", 3, "wb"));
  EXPECT_FALSE(file.Write(path.c_str(), nullptr, 3, "wb"));
  EXPECT_FALSE(file.Write(path.c_str(), "abc", 0, "wb"));
  EXPECT_FALSE(file.Write(path.c_str(), "abc", 3, kNull));
  EXPECT_FALSE(file.Write(path.c_str(), "abc", 3, ""));
  EXPECT_FALSE(file.Add(kNull, "abc", 3));
  EXPECT_FALSE(file.Add(path.c_str(), nullptr, 3));
  EXPECT_FALSE(file.Add(path.c_str(), "abc", 0));
  EXPECT_FALSE(file.Add(folder.path().c_str(), "abc", 3));
  EXPECT_EQ(folder.read("file"), "old");
}

TEST(FileAcs, AFullDiskIsFalse) {
  EXPECT_FALSE(CFileAcs().Write("/dev/full", "abc", 3, "wb"));
  const std::string much(100000, 'x');
  EXPECT_FALSE(CFileAcs().Add("/dev/full", much.data(), 100000));
}

TEST(FileAcs, RemovesAFile) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "abc");
  CFileAcs file;
  file.RemoveFile(kNull);
  file.RemoveFile("");
  file.RemoveFile(folder.file("absent").c_str());
  file.RemoveFile(path.c_str());
  EXPECT_FALSE(std::filesystem::exists(path));
}
