// What the log and its dumps write.
#include "foundation/OutputLog.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/foundation/log_setup.h"

// The way to the step that opens the log file.
template <auto Member>
struct MemberAccess {
  friend bool checkLogText(COutputLog& log, const std::string& folder) { return (log.*Member)(folder); }
};
bool checkLogText(COutputLog& log, const std::string& folder);
template struct MemberAccess<&COutputLog::CheckLogText>;

namespace foundation_test {
namespace {

namespace fs = std::filesystem;

const std::string kLevel2 = "LogLevel=2\n";

// --- The log file ---

TEST(OutputLog, ALineIsDateMessageAndLineEnd) {
  const std::time_t before = std::time(nullptr);
  const Left left = runWithLog("LogLevel=0\n", [] { g_ScanDevApiLog.WriteLog(0, "text %d %s 0x%X", 5, "five", 0xAB); });
  const std::time_t after = std::time(nullptr);
  const std::string line = left.files.at(kApiLog);
  std::tm time{};
  ASSERT_EQ(std::sscanf(line.c_str(), "(%d/%d/%d %d:%d:%d) ", &time.tm_year, &time.tm_mon, &time.tm_mday, &time.tm_hour,
                        &time.tm_min, &time.tm_sec),
            6);
  // No number has leading zeros: written again from the numbers, the line is the same.
  char again[100];
  std::snprintf(again, sizeof again, "(%d/%d/%d %d:%d:%d) text 5 five 0xAB\r\n", time.tm_year, time.tm_mon,
                time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec);
  EXPECT_EQ(line, again);
  time.tm_year -= 1900;
  time.tm_mon -= 1;
  time.tm_isdst = -1;
  const std::time_t written = std::mktime(&time);
  EXPECT_GE(written, before);
  EXPECT_LE(written, after);
}

TEST(OutputLog, AMessageMayHoldLineEnds) {
  const Left left = runWithLog("LogLevel=0\n", [] { g_ScanDevApiLog.WriteLog(0, "S Command:\r\n%s", "A=1\nB=2\n"); });
  const std::string text = left.files.at(kApiLog);
  EXPECT_EQ(text.substr(text.find(") ") + 2), "S Command:\r\nA=1\nB=2\n\r\n");
}

TEST(OutputLog, ALongMessageIsCut) {
  for (const std::size_t size : {1198u, 1199u, 1200u, 1201u, 100000u}) {
    const Left left = runWithLog("LogLevel=0\n", [&] {
      g_ScanDevApiLog.WriteLog(0, "%s", std::string(size, 'm').c_str());
      g_ScanDevApiLog.WriteLog(0, "next");
    });
    EXPECT_EQ(left.messages(), (Messages{std::string(std::min<std::size_t>(size, 1199), 'm'), "next"}));
  }
}

TEST(OutputLog, EachLineIsInTheFileAtOnce) {
  runWithLog("LogLevel=0\n", [] {
    std::string before;
    for (int i = 0; i < 3; ++i) {
      g_ScanDevApiLog.WriteLog(0, "line %d", i);
      const std::string now = readFile(kApiLog);
      EXPECT_GT(now.size(), before.size());
      EXPECT_EQ(now.substr(now.size() - 8), "line " + std::to_string(i) + "\r\n");
      before = now;
    }
  });
}

TEST(OutputLog, AnOldLogIsStartedAnewUnlessTheSetupSaysOtherwise) {
  for (const int writeForm : {0, 1, 2, -1}) {
    const Left left = runWithLog(setupLines(0, 0, writeForm, 0, 0, 0, 0, 0), [] {
      fs::create_directory(kLogFolder);
      writeFile(kApiLog, "(1/1/1 1:1:1) old\r\n");
      g_ScanDevApiLog.WriteLog(0, "new");
    });
    EXPECT_EQ(left.messages(), writeForm == 1 ? (Messages{"old", "new"}) : Messages{"new"}) << writeForm;
  }
}

TEST(OutputLog, EachObjectHasItsFile) {
  const Left left = runWithLog("LogLevel=0\n", [] {
    COutputLog nameless;
    COutputLog null(nullptr);
    COutputLog named("ScanDecLog");
    COutputLog empty("");
    nameless.WriteLog(0, "nameless");
    named.WriteLog(0, "named");
    empty.WriteLog(0, "empty");
  });
  EXPECT_EQ(left.messages("/tmp/QvOutLog/QvOutLog.kmy"), Messages{"nameless"});
  EXPECT_EQ(left.messages("/tmp/QvOutLog/ScanDecLog.kmy"), Messages{"named"});
  EXPECT_EQ(left.messages("/tmp/QvOutLog/.kmy"), Messages{"empty"});
  EXPECT_FALSE(left.has(kApiLog)) << "an object that nobody writes to opens nothing";
}

TEST(OutputLog, TheFiveObjectsOfTheLibraryHaveTheirNames) {
  const Left left = runWithLog("LogLevel=0\n", [] {
    g_outputLog.WriteLog(0, "line");
    g_ScanDevApiLog.WriteLog(0, "line");
    g_ScanDecLog.WriteLog(0, "line");
    g_JpegDecLog.WriteLog(0, "line");
    g_ImageEnhanceLog.WriteLog(0, "line");
  });
  for (const char* name : {"QvOutLog", "ScanApiLog", "ScanDecLog", "JpegDecLog", "ImageEnhaLog"}) {
    EXPECT_EQ(left.messages("/tmp/QvOutLog/" + std::string(name) + ".kmy"), Messages{"line"}) << name;
  }
}

TEST(OutputLog, TheFileOfAnOpenLogIsNotOpenedAgain) {
  const Left left = runWithLog("LogLevel=0\n", [] {
    g_ScanDevApiLog.WriteLog(0, "before");
    EXPECT_TRUE(checkLogText(g_ScanDevApiLog, "/nowhere")) << "the stream that is open counts";
    g_ScanDevApiLog.WriteLog(0, "after");
  });
  EXPECT_EQ(left.messages(), (Messages{"before", "after"})) << "another opening would have started the file anew";
}

TEST(OutputLog, TwoThreadsThatSetItUpAtOnceBothWrite) {
  for (int round = 0; round < 50; ++round) {
    const Left left = runWithLog(setupLines(2, 0, 0, 0, 1, 0, 0, 0), [] {
      std::atomic<int> ready{0};
      const auto meet = [&] {
        ++ready;
        while (ready < 2) std::this_thread::yield();
      };
      std::thread other([&] {
        meet();
        dump("bytes", "DumpJpg", 1);
        g_ScanDevApiLog.WriteLog(2, "other");
      });
      meet();
      g_ScanDevApiLog.WriteLog(2, "one");
      other.join();
    });
    Messages messages = left.messages();
    std::sort(messages.begin(), messages.end());
    EXPECT_EQ(messages, (Messages{"one", "other"}));
    EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpJpg_01.jpg"), "bytes");
  }
}

TEST(OutputLog, LinesOfManyThreadsDoNotMix) {
  const Left left = runWithLog(kLevel2, [] {
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 6; ++writer) {
      writers.emplace_back([writer] {
        for (int i = 0; i < 200; ++i) {
          g_ScanDevApiLog.WriteLog(i % 3, "%s", std::string(50, static_cast<char>('a' + writer)).c_str());
          if (i % 50 == 0) g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>("x"), 1, "DumpJpg", 1);
        }
      });
    }
    for (std::thread& writer : writers) writer.join();
  });
  const Messages messages = left.messages();
  EXPECT_EQ(messages.size(), 1200u);
  for (const std::string& message : messages) EXPECT_EQ(message, std::string(50, message[0]));
}

// --- Its helpers ---

TEST(OutputLog, PathsAreBaseSlashLeaf) {
  EXPECT_EQ(COutputLog::makePath("/a", "b"), "/a/b");
  EXPECT_EQ(COutputLog::makePath("", "b"), "/b");
  EXPECT_EQ(COutputLog::makePath("/a", ""), "/a/");
  EXPECT_EQ(COutputLog::makePath("/a", nullptr), "/a");
  EXPECT_EQ(COutputLog::makeDesktopPath(), "/tmp");
  EXPECT_EQ(COutputLog::makeProgramDataPath(), "/tmp");
}

TEST(OutputLog, TheTimeIsLocalAndItsNumbersHaveNoLeadingZeros) {
  const auto text = [](std::time_t time) {
    std::tm local{};
    localtime_r(&time, &local);
    return "(" + std::to_string(local.tm_year + 1900) + "/" + std::to_string(local.tm_mon + 1) + "/" +
           std::to_string(local.tm_mday) + " " + std::to_string(local.tm_hour) + ":" + std::to_string(local.tm_min) +
           ":" + std::to_string(local.tm_sec) + ") ";
  };
  const std::time_t before = std::time(nullptr);
  const std::string written = COutputLog::makeNowDateTime();
  const std::time_t after = std::time(nullptr);
  std::set<std::string> possible;
  for (std::time_t time = before; time <= after; ++time) possible.insert(text(time));
  EXPECT_TRUE(possible.contains(written)) << written;
}

TEST(OutputLog, TheCurrentTimeIsAlsoANumberOfSeconds) {
  const std::time_t before = std::time(nullptr);
  char buffer[COutputLog::kTimeTextBytes + 1];
  std::fill(std::begin(buffer), std::end(buffer), 'x');
  COutputLog::CreateCurrentTimeStr(buffer);
  COutputLog::CreateCurrentTimeStr(nullptr);
  EXPECT_EQ(buffer[COutputLog::kTimeTextBytes], 'x');
  EXPECT_GE(std::atol(buffer), before);
  EXPECT_LE(std::atol(buffer), std::time(nullptr));
}

// --- Dumps ---

TEST(OutputLog, EachDumpHasItsNameAndItsSwitch) {
  const struct {
    const char* name;
    const char* extension;
  } points[] = {{"DumpPackBits", ""},
                {"DumpJpg", ".jpg"},
                {"DumpPreScanDec", ".bmp"},
                {"DumpPreImagEnhance", ".bmp"},
                {"DumpFinalData", ".bmp"}};
  for (int on = 0; on < 5; ++on) {
    const Left left = runWithLog(setupLines(-1, 0, 0, on == 0, on == 1, on == 2, on == 3, on == 4), [&] {
      for (const auto& point : points) dump(point.name, point.name, 3);
    });
    for (int i = 0; i < 5; ++i) {
      const std::string path = "/tmp/QvOutLog/" + std::string(points[i].name) + "_03" + points[i].extension;
      EXPECT_EQ(left.has(path), i == on) << path;
      if (i == on) {
        EXPECT_EQ(left.files.at(path), points[i].name);
      }
    }
  }
}

TEST(OutputLog, ADumpsFileIsNumberedByThePageAndGrows) {
  const Left left = runWithLog(setupLines(-1, 0, 0, 0, 1, 0, 0, 0), [] {
    fs::create_directory(kLogFolder);
    writeFile("/tmp/QvOutLog/DumpJpg_07.jpg", "old ");
    dump("one ", "DumpJpg", 7);
    dump("two", "DumpJpg", 7);
    for (const int page : {0, 10, 100, 12345}) dump("x", "DumpJpg", page);
    dump("x", "DumpJpeg", 1);
    dump("x", "dumpjpg", 1);
    dump("x", "", 1);
    g_ScanDevApiLog.WriteDump(nullptr, 5, "DumpJpg", 50);
    g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>("x"), 0, "DumpJpg", 51);
    g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>("x"), -1, "DumpJpg", 52);
    g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>("x"), 1, nullptr, 53);
  });
  EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpJpg_07.jpg"), "old one two");
  Messages names;
  for (const auto& [path, content] : left.files) {
    if (path.find("Dump") != std::string::npos) names.push_back(fs::path(path).filename());
  }
  EXPECT_EQ(names,
            (Messages{"DumpJpg_00.jpg", "DumpJpg_07.jpg", "DumpJpg_10.jpg", "DumpJpg_100.jpg", "DumpJpg_12345.jpg"}));
}

}  // namespace
}  // namespace foundation_test
