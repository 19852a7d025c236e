// The library exports its factory and its five log objects, and needs nothing but the system's own libraries.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <sstream>
#include <string>

namespace {

std::set<std::string> linesOf(const std::string& command) {
  std::FILE* pipe = popen(command.c_str(), "r");
  std::string text;
  std::array<char, 256> part;
  while (pipe != nullptr && std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr)
    text += part.data();
  EXPECT_TRUE(pipe != nullptr && pclose(pipe) == 0) << command;
  std::set<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.insert(line);
  return lines;
}

TEST(Exports, AreTheFactoryAndTheLogs) {
  EXPECT_EQ(linesOf("nm -D --defined-only --format=just-symbols '" QS_CORE_LIBRARY "'"),
            (std::set<std::string>{"CreateInstance", "g_ImageEnhanceLog", "g_JpegDecLog", "g_ScanDecLog",
                                   "g_ScanDevApiLog", "g_outputLog"}));
}

TEST(Exports, OfTheLibraryUnderItsOwnName) {
  const auto entries = linesOf("readelf -d '" QS_CORE_LIBRARY "' | sed -n 's/.*SONAME.*\\[\\(.*\\)\\]/\\1/p'");
  EXPECT_EQ(entries, std::set<std::string>{"libQsScanCoreApi.so.1"});
}

TEST(Exports, ComeFromTheStandardLibrariesAlone) {
  const auto needed = linesOf("readelf -d '" QS_CORE_LIBRARY "' | sed -n 's/.*NEEDED.*\\[\\(.*\\)\\]/\\1/p'");
  for (const std::string& library : needed) {
    const std::string stem = library.substr(0, library.find(".so"));
    const std::set<std::string> allowed = {"libstdc++",  "libm",    "libgcc_s",        "libc",
                                           "libpthread", "libdl",   "libasan",         "libtsan",
                                           "libubsan",   "liblsan", "ld-linux-x86-64", "ld-linux-aarch64"};
    EXPECT_TRUE(allowed.contains(stem)) << library;
  }
}

}  // namespace
