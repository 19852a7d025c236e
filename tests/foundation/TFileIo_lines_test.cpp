// Lines of text files.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "foundation/qvtcl/TFileIo.h"
#include "tests/foundation/temporary_folder.h"

using foundation_test::TemporaryFolder;
using qvtcl::CTFileIo;

namespace {

constexpr unsigned long kAtEnd = ~0UL;

}  // namespace

TEST(TFileIoLines, LinesAreReadWithOrWithoutTheirEnd) {
  struct Row {
    const char* name;
    std::string content;
    unsigned long size;
    std::vector<std::string> kept, stripped;
  };
  const Row rows[] = {
      {"LF", "ab\ncd\n", 16, {"ab\n", "cd\n"}, {"ab", "cd"}},
      {"CR LF", "ab\r\ncd\r\n", 16, {"ab\r\n", "cd\r\n"}, {"ab", "cd"}},
      {"no end", "ab", 16, {"ab"}, {"ab"}},
      {"CR at the end of the file", "ab\r", 16, {"ab\r"}, {"ab"}},
      {"CR inside a line", "a\rb\n", 16, {"a\rb\n"}, {"a\rb"}},
      {"two CR", "ab\r\r\n", 16, {"ab\r\r\n"}, {"ab\r"}},
      {"LF CR", "ab\n\rcd\n", 16, {"ab\n", "\rcd\n"}, {"ab", "\rcd"}},
      {"only LF", "\n\n", 16, {"\n", "\n"}, {"", ""}},
      {"only CR LF", "\r\n", 16, {"\r\n"}, {""}},
      {"only CR", "\r", 16, {"\r"}, {""}},
      {"longer than the buffer", "abcdef\n", 4, {"abc", "def", "\n"}, {"abc", "def", ""}},
      {"the end divided by the buffer", "ab\r\ncd", 4, {"ab\r", "\n", "cd"}, {"ab", "", "cd"}},
      {"NUL first", std::string("\0ab\ncd\n", 7), 16, {"", "cd\n"}, {"", "cd"}},
      {"NUL inside", std::string("a\0b\ncd\n", 7), 16, {"a", "cd\n"}, {"a", "cd"}},
      {"nothing", "", 16, {}, {}},
  };
  const TemporaryFolder folder;
  for (const Row& row : rows) {
    for (const bool strip : {false, true}) {
      SCOPED_TRACE(std::string(row.name) + (strip ? ", stripped" : ""));
      CTFileIo file;
      ASSERT_TRUE(file.Open(folder.write("file", row.content).c_str(), qvtcl::kOpenRead));
      std::vector<std::string> lines;
      for (;;) {
        std::vector<char> bytes(row.size, '?');  // exactly so long: a sanitizer sees one byte more
        const unsigned long length = file.ReadLine(bytes.data(), row.size, strip);
        EXPECT_EQ(file.GetLastError(), 0u);
        if (length == kAtEnd || lines.size() > 9) break;
        EXPECT_EQ(length, std::strlen(bytes.data()));
        lines.emplace_back(bytes.data());
      }
      EXPECT_EQ(lines, strip ? row.stripped : row.kept);
    }
  }
}

TEST(TFileIoLines, LinesAreWrittenWithOneLf) {
  const TemporaryFolder folder;
  CTFileIo file;
  ASSERT_TRUE(file.Create(folder.file("file").c_str()));
  EXPECT_EQ(file.WriteLine("first"), 6u);
  EXPECT_EQ(file.WriteLine(""), 1u);
  EXPECT_EQ(file.WriteLine("with an end\r\n"), 14u);
  EXPECT_EQ(file.GetLastError(), 0u);
  EXPECT_EQ(file.Write("0123456789", 3, 2), 3u);
  EXPECT_TRUE(file.Flush());
  EXPECT_EQ(folder.read("file"), "first\n\nwith an end\r\n\n012345");
}
