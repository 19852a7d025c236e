#include "foundation/qvtcl/TFileIo.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <string>
#include <utility>

#include "tests/foundation/temporary_folder.h"

using foundation_test::TemporaryFolder;
using qvtcl::CTFileIo;
using qvtcl::openmode_t;
using qvtcl::seekorigin_t;

namespace {

constexpr unsigned long kAtEnd = ~0UL;
const char* const kNull = nullptr;

std::string readRest(CTFileIo& file) {
  char bytes[4096];
  const unsigned long count = file.Read(bytes, sizeof bytes, 1);
  return count == kAtEnd ? "" : std::string(bytes, count);
}

}  // namespace

TEST(TFileIo, EveryModeOpensAsItsCStringSays) {
  const TemporaryFolder folder;
  struct Row {
    const char* name;
    int mode;
    bool opensAbsent, writes;
    const char* afterwards;  // of a file "0123456789" into which "XY" was written first
  };
  for (const Row& row : {Row{"read", 1, false, false, "0123456789"}, Row{"append", 2, true, true, "0123456789XY"},
                         Row{"update", 3, false, true, "XY23456789"}, Row{"zero", 0, false, true, "XY23456789"},
                         Row{"other", 77, false, true, "XY23456789"}}) {
    SCOPED_TRACE(row.name);
    const auto mode = static_cast<openmode_t>(row.mode);
    CTFileIo absent;
    EXPECT_EQ(absent.Open(folder.file(std::string("absent") + row.name).c_str(), mode), row.opensAbsent);
    EXPECT_EQ(absent.GetLastError(), row.opensAbsent ? 0u : static_cast<unsigned>(ENOENT));
    const std::string path = folder.write(row.name, "0123456789");
    CTFileIo file;
    EXPECT_TRUE(file.Open(path.c_str(), mode));
    EXPECT_EQ(file.GetLastError(), 0u);
    EXPECT_EQ(file.Write("XY", 2, 1), row.writes ? 2u : 0u);
    EXPECT_EQ(file.GetLastError(), row.writes ? 0u : static_cast<unsigned>(EBADF));
    EXPECT_TRUE(file.SeekToBegin());
    EXPECT_EQ(readRest(file), row.afterwards);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(folder.read(row.name), row.afterwards);
  }
}

TEST(TFileIo, CreateMakesANewFileOrEmptiesAnOldOne) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "old content");
  for (const std::string& at : {path, folder.file("new")}) {
    CTFileIo file;
    EXPECT_TRUE(file.Create(at.c_str()));
    EXPECT_EQ(file.Write("abc", 3, 1), 3u);
    EXPECT_TRUE(file.SeekToBegin());
    EXPECT_EQ(readRest(file), "abc");
  }
  EXPECT_EQ(folder.read("file"), "abc");
  CTFileIo file;
  EXPECT_FALSE(file.Create(folder.file("no/such/folder").c_str()));
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(ENOENT));
}

TEST(TFileIo, ANullOrEmptyPathOrModeIsABadArgument) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "abc");
  CTFileIo file;
  for (const char* bad : {kNull, ""}) {
    const std::function<bool()> calls[] = {
        [&] { return file.OpenFile(bad, "rb"); }, [&] { return file.OpenFile(path.c_str(), bad); },
        [&] { return file.Open(bad, qvtcl::kOpenRead); }, [&] { return file.Create(bad); }};
    for (const auto& call : calls) {
      EXPECT_TRUE(file.OpenFile(path.c_str(), "rb") && file.Close());  // lastError is 0
      EXPECT_FALSE(call());
      EXPECT_EQ(file.GetLastError(), 22u);
    }
  }
  EXPECT_FALSE(file.OpenFile(path.c_str(), "nonsense"));
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(EINVAL));
  EXPECT_FALSE(file.OpenFile(folder.path().c_str(), "r+b"));
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(EISDIR));
}

TEST(TFileIo, AnOpenStreamIsNotOpenedAgain) {
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "abc");
  const std::string other = folder.write("other", "other");
  CTFileIo file;
  EXPECT_TRUE(file.Open(path.c_str(), qvtcl::kOpenRead));
  EXPECT_FALSE(file.OpenFile(other.c_str(), "rb"));
  EXPECT_EQ(file.GetLastError(), 37u);
  EXPECT_FALSE(file.Open(other.c_str(), qvtcl::kOpenUpdate));
  EXPECT_EQ(file.GetLastError(), 37u);
  EXPECT_FALSE(file.Create(other.c_str()));
  EXPECT_EQ(file.GetLastError(), 37u);
  EXPECT_EQ(folder.read("other"), "other");
  EXPECT_EQ(readRest(file), "abc") << "the stream stays open";
  EXPECT_EQ(file.GetLastError(), 0u);
}

TEST(TFileIo, NothingWorksWithoutAStream) {
  char bytes[4] = "abc";
  CTFileIo file;
  const std::pair<const char*, std::function<bool()>> calls[] = {
      {"Close", [&] { return file.Close(); }},
      {"Read", [&] { return file.Read(bytes, 1, 1) != 0; }},
      {"ReadLine", [&] { return file.ReadLine(bytes, 4, true) != 0; }},
      {"Write", [&] { return file.Write(bytes, 1, 1) != 0; }},
      {"WriteLine", [&] { return file.WriteLine("a") != 0; }},
      {"Flush", [&] { return file.Flush(); }},
      {"IsEndOfFile", [&] { return file.IsEndOfFile(); }},
      {"Seek", [&] { return file.Seek(0, qvtcl::kSeekBegin); }},
      {"SeekToBegin", [&] { return file.SeekToBegin(); }},
      {"SeekToEnd", [&] { return file.SeekToEnd(); }},
  };
  const TemporaryFolder folder;
  const std::string path = folder.write("file", "abc");
  for (const auto& [name, call] : calls) {
    EXPECT_TRUE(file.OpenFile(path.c_str(), "rb") && file.Close());
    EXPECT_EQ(file.GetLastError(), 0u);
    EXPECT_FALSE(call()) << name;
    EXPECT_EQ(file.GetLastError(), 98u) << name;
  }
  EXPECT_STREQ(bytes, "abc");
}

TEST(TFileIo, ReadAndWriteOfNothingAreBadArguments) {
  const TemporaryFolder folder;
  CTFileIo file;
  ASSERT_TRUE(file.Create(folder.file("file").c_str()));
  char bytes[4] = "abc";
  const std::pair<const char*, std::function<unsigned long()>> calls[] = {
      {"read into null", [&] { return file.Read(nullptr, 1, 1); }},
      {"read no items", [&] { return file.Read(bytes, 0, 1); }},
      {"read items of no size", [&] { return file.Read(bytes, 1, 0); }},
      {"a line into null", [&] { return file.ReadLine(nullptr, 4, false); }},
      {"a line into no bytes", [&] { return file.ReadLine(bytes, 0, false); }},
      {"write null", [&] { return file.Write(nullptr, 1, 1); }},
      {"write no items", [&] { return file.Write(bytes, 0, 1); }},
      {"write items of no size", [&] { return file.Write(bytes, 1, 0); }},
      {"write a null line", [&] { return file.WriteLine(nullptr); }},
  };
  for (const auto& [name, call] : calls) {
    EXPECT_TRUE(file.Flush());
    EXPECT_EQ(file.GetLastError(), 0u);
    EXPECT_EQ(call(), 0u) << name;
    EXPECT_EQ(file.GetLastError(), 22u) << name;
  }
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(folder.read("file"), "");
}

TEST(TFileIo, ReadGivesItemsAndTheEndOnlyWhenNoneIsLeft) {
  const TemporaryFolder folder;
  CTFileIo file;
  ASSERT_TRUE(file.Open(folder.write("file", "0123456789").c_str(), qvtcl::kOpenRead));
  char bytes[16] = {};
  EXPECT_EQ(file.Read(bytes, 2, 3), 2u);
  EXPECT_STREQ(bytes, "012345");
  EXPECT_FALSE(file.IsEndOfFile());
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_EQ(file.Read(bytes, 5, 3), 1u) << "one whole item, one byte of another";
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_TRUE(file.IsEndOfFile());
  EXPECT_EQ(file.Read(bytes, 1, 1), kAtEnd);
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_TRUE(file.Seek(8, qvtcl::kSeekBegin));
  EXPECT_EQ(file.Read(bytes, 1, 4), kAtEnd) << "no whole item is left";
  EXPECT_EQ(file.GetLastError(), 0u);
}

TEST(TFileIo, ReadAndWriteFailWithTheErrorOfTheSystem) {
  const TemporaryFolder folder;
  char bytes[4] = {};
  CTFileIo writeOnly;
  ASSERT_TRUE(writeOnly.OpenFile(folder.file("file").c_str(), "wb"));
  EXPECT_EQ(writeOnly.Read(bytes, 1, 1), 0u);
  EXPECT_EQ(writeOnly.GetLastError(), static_cast<unsigned>(EBADF));
  EXPECT_EQ(writeOnly.ReadLine(bytes, 4, true), 0u);
  EXPECT_EQ(writeOnly.GetLastError(), static_cast<unsigned>(EBADF));
  CTFileIo directory;
  ASSERT_TRUE(directory.OpenFile(folder.path().c_str(), "rb"));
  EXPECT_EQ(directory.Read(bytes, 1, 1), 0u);
  EXPECT_EQ(directory.GetLastError(), static_cast<unsigned>(EISDIR));
  EXPECT_EQ(directory.WriteLine("text"), 0u);
  EXPECT_EQ(directory.GetLastError(), static_cast<unsigned>(EBADF));
  CTFileIo readOnly;
  ASSERT_TRUE(readOnly.Open(folder.write("other", "abc").c_str(), qvtcl::kOpenRead));
  EXPECT_EQ(readOnly.WriteLine("text"), 0u);
  EXPECT_EQ(readOnly.GetLastError(), static_cast<unsigned>(EBADF));
  EXPECT_TRUE(readOnly.SeekToEnd()) << "the failure does not stay with the stream";
  CTFileIo full;
  ASSERT_TRUE(full.Open("/dev/full", qvtcl::kOpenUpdate));
  EXPECT_EQ(full.Write("abc", 3, 1), 3u) << "still in the stream's own buffer";
  EXPECT_FALSE(full.Flush());
  EXPECT_EQ(full.GetLastError(), static_cast<unsigned>(ENOSPC));
  EXPECT_TRUE(full.Close()) << "whatever the system says";
  EXPECT_EQ(full.GetLastError(), 0u);
}

TEST(TFileIo, SeekingGoesFromItsOrigin) {
  const TemporaryFolder folder;
  CTFileIo file;
  ASSERT_TRUE(file.Open(folder.write("file", "0123456789").c_str(), qvtcl::kOpenRead));
  const auto next = [&file] {
    char c = '?';
    return file.Read(&c, 1, 1) == 1 ? c : '!';
  };
  EXPECT_TRUE(file.Seek(4, qvtcl::kSeekBegin));
  EXPECT_EQ(next(), '4');
  EXPECT_TRUE(file.Seek(2, qvtcl::kSeekCurrent));
  EXPECT_EQ(next(), '7');
  EXPECT_TRUE(file.Seek(-6, qvtcl::kSeekCurrent));
  EXPECT_EQ(next(), '2');
  EXPECT_TRUE(file.Seek(1, static_cast<seekorigin_t>(9))) << "any other origin is the current position";
  EXPECT_EQ(next(), '4');
  EXPECT_TRUE(file.Seek(-3, qvtcl::kSeekEnd));
  EXPECT_EQ(next(), '7');
  EXPECT_TRUE(file.SeekToEnd());
  EXPECT_FALSE(file.IsEndOfFile()) << "a seek takes the mark of the end away";
  EXPECT_EQ(next(), '!');
  EXPECT_TRUE(file.IsEndOfFile());
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_TRUE(file.SeekToBegin());
  EXPECT_FALSE(file.IsEndOfFile());
  EXPECT_EQ(next(), '0');
  EXPECT_FALSE(file.Seek(-5, qvtcl::kSeekBegin));
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(EINVAL));
  EXPECT_EQ(next(), '1') << "the stream is as it was";
}

// This file has no size that the system could seek from: only reading finds its end.
TEST(TFileIo, SeekingFromTheEndReadsTheStreamThrough) {
  const char* const path = "/proc/self/limits";
  CTFileIo file;
  ASSERT_TRUE(file.Open(path, qvtcl::kOpenRead));
  const std::string content = readRest(file);
  ASSERT_GT(content.size(), 100u);
  EXPECT_TRUE(file.Close());
  ASSERT_TRUE(file.Open(path, qvtcl::kOpenRead));
  EXPECT_TRUE(file.Seek(-9, qvtcl::kSeekEnd));
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_EQ(readRest(file), content.substr(content.size() - 9));
  EXPECT_TRUE(file.SeekToBegin());
  EXPECT_TRUE(file.SeekToEnd());
  EXPECT_EQ(readRest(file), "");
}

TEST(TFileIo, WritingGoesOnBehindASeekToTheEnd) {
  const TemporaryFolder folder;
  CTFileIo file;
  ASSERT_TRUE(file.Create(folder.file("file").c_str()));
  EXPECT_EQ(file.Write("0123", 4, 1), 4u);
  EXPECT_TRUE(file.SeekToEnd());
  EXPECT_EQ(file.Write("4567", 4, 1), 4u);
  EXPECT_TRUE(file.Seek(-2, qvtcl::kSeekEnd));
  EXPECT_EQ(file.Write("X", 1, 1), 1u);
  EXPECT_TRUE(file.Close());
  EXPECT_EQ(folder.read("file"), "012345X7");
  ASSERT_TRUE(file.OpenFile(folder.file("file").c_str(), "wb"));
  EXPECT_FALSE(file.SeekToEnd()) << "what cannot be read cannot be read through";
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(EBADF));
}

TEST(TFileIo, APipeCannotBeSeeked) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  CTFileIo file;
  ASSERT_TRUE(file.OpenFile(("/dev/fd/" + std::to_string(ends[0])).c_str(), "rb"));
  EXPECT_FALSE(file.Seek(0, qvtcl::kSeekBegin));
  EXPECT_EQ(file.GetLastError(), static_cast<unsigned>(ESPIPE));
  ::close(ends[0]);
  ::close(ends[1]);
}

TEST(TFileIo, TheDestructorClosesTheStream) {
  const TemporaryFolder folder;
  {
    CTFileIo file;
    ASSERT_TRUE(file.Create(folder.file("file").c_str()));
    EXPECT_EQ(file.WriteLine("text"), 5u);
    EXPECT_EQ(folder.read("file"), "") << "still in the stream's own buffer";
  }
  EXPECT_EQ(folder.read("file"), "text\n");
  CTFileIo again;
  ASSERT_TRUE(again.Open(folder.file("file").c_str(), qvtcl::kOpenRead));
  EXPECT_TRUE(again.Close());
  EXPECT_FALSE(again.Close());
  EXPECT_EQ(again.GetLastError(), 98u);
}
