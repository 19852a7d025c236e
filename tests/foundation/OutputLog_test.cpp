#include "foundation/OutputLog.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <random>
#include <thread>

#include "tests/foundation/log_sandbox.h"

namespace foundation_test {
namespace {

using Messages = std::vector<std::string>;
namespace fs = std::filesystem;

const std::string kLevel2 = "LogLevel=2\n";

std::string setupLines(int level, int outDir, int writeForm, int packBits, int jpg, int preScan, int preEnhance,
                       int final) {
  return "LogLevel=" + std::to_string(level) + "\nOutDir=" + std::to_string(outDir) +
         "\nWriteForm=" + std::to_string(writeForm) + "\nDumpPackBits=" + std::to_string(packBits) +
         "\nDumpJpg=" + std::to_string(jpg) + "\nDumpPreScanDec=" + std::to_string(preScan) +
         "\nDumpPreImagEnhance=" + std::to_string(preEnhance) + "\nDumpFinalData=" + std::to_string(final) + "\n";
}

void dump(const std::string& bytes, const char* name, int page) {
  g_ScanDevApiLog.WriteDump(reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()), name,
                            page);
}

// --- On and off ------------------------------------------------------------------------------------------------------

TEST(OutputLog, WithoutTheSetupFileNothingIsCreated) {
  const Left left = runWithLog(std::nullopt, [] {
    for (int level = -1; level < 4; ++level) g_ScanDevApiLog.WriteLog(level, "line");
    dump("bytes", "DumpJpg", 1);
    dump("bytes", "DumpFinalData", 1);
  });
  EXPECT_TRUE(left.files.empty());
}

TEST(OutputLog, OneLineOfSetupGivesALogOfThatLevel) {
  const Left left = runWithLog("LogLevel=0", [] {
    g_ScanDevApiLog.WriteLog(1, "one");
    g_ScanDevApiLog.WriteLog(0, "zero");
    g_ScanDevApiLog.WriteLog(-1, "below");
    g_ScanDevApiLog.WriteLog(2, "two");
  });
  EXPECT_EQ(left.messages(), (Messages{"zero", "below"}));
  EXPECT_EQ(left.files.size(), 3u) << "the folder, the log, the set-up file";
}

TEST(OutputLog, AMessageIsWrittenWhenItsLevelIsAtMostTheSetups) {
  for (int setup = -2; setup <= 4; ++setup) {
    Messages expected;
    for (int level = -2; level <= 4; ++level) {
      if (level <= setup) expected.push_back("level " + std::to_string(level));
    }
    const Left left = runWithLog("LogLevel=" + std::to_string(setup) + "\n", [] {
      for (int level = -2; level <= 4; ++level) g_ScanDevApiLog.WriteLog(level, "level %d", level);
    });
    EXPECT_EQ(left.messages(), expected) << setup;
  }
}

TEST(OutputLog, AnEmptySetupFileIsLevelZero) {
  const Left left = runWithLog("", [] {
    g_ScanDevApiLog.WriteLog(0, "zero");
    g_ScanDevApiLog.WriteLog(1, "one");
  });
  EXPECT_EQ(left.messages(), Messages{"zero"});
}

TEST(OutputLog, TheSetupIsReadOnceForAnObject) {
  Left left = runWithLog(std::nullopt, [] {
    g_ScanDevApiLog.WriteLog(0, "before");
    writeFile(kSetupFile, "LogLevel=2\n");
    g_ScanDevApiLog.WriteLog(0, "after");
    dump("bytes", "DumpJpg", 1);
  });
  EXPECT_FALSE(left.has(kLogFolder + std::string("/"))) << "one that comes later is not noticed";
  left = runWithLog(kLevel2, [] {
    g_ScanDevApiLog.WriteLog(2, "before");
    writeFile(kSetupFile, "LogLevel=0\n");
    g_ScanDevApiLog.WriteLog(2, "changed");
    unlink(kSetupFile);
    g_ScanDevApiLog.WriteLog(2, "removed");
  });
  EXPECT_EQ(left.messages(), (Messages{"before", "changed", "removed"}));
}

TEST(OutputLog, ADumpSetsTheLogUpToo) {
  const Left left = runWithLog(setupLines(2, 0, 0, 0, 1, 0, 0, 0), [] {
    dump("bytes", "DumpJpg", 1);
    unlink(kSetupFile);
    g_ScanDevApiLog.WriteLog(2, "line");
  });
  EXPECT_EQ(left.messages(), Messages{"line"});
}

// --- The set-up's lines
// ------------------------------------------------------------------------------------------------

TEST(OutputLog, AKeyCountsOnItsOwnLineAlone) {
  const struct {
    const char* name;
    std::string setup;
    Messages messages;
    bool dumps;
  } rows[] = {
      {"in order", setupLines(2, 0, 0, 0, 1, 0, 0, 0), {"0", "1", "2"}, true},
      {"OutDir first", "OutDir=0\nLogLevel=2\nWriteForm=0\n", {"0"}, false},
      {"DumpJpg one line early", "LogLevel=1\nOutDir=0\nWriteForm=0\nDumpJpg=1\n", {"0", "1"}, false},
      {"other lines do not matter", "x\ny\nz\n\nDumpJpg=1\n", {"0"}, true},
      {"blank lines count", "\nLogLevel=2\n", {"0"}, false},
      {"a ninth line", setupLines(1, 0, 0, 0, 0, 0, 0, 0) + "DumpJpg=1\n", {"0", "1"}, false},
      {"a space after the sign", "LogLevel= 1\n", {"0", "1"}, false},
      {"a space before the sign", "LogLevel =1\n", {"0"}, false},
      {"a space before the key", " LogLevel=1\n", {"0"}, false},
      {"other case", "loglevel=1\n", {"0"}, false},
      {"text behind the number", "LogLevel=1 and more\n", {"0", "1"}, false},
      {"no number", "LogLevel=\n", {"0"}, false},
      {"no number but text", "LogLevel=high\n", {"0"}, false},
      {"hexadecimal is 0", "LogLevel=0x2\n", {"0"}, false},
      {"a plus sign", "LogLevel=+1\n", {"0", "1"}, false},
      {"DOS line ends", "LogLevel=1\r\nOutDir=0\r\nWriteForm=0\r\nDumpPackBits=0\r\nDumpJpg=1\r\n", {"0", "1"}, true},
      {"a very long first line",
       std::string(20000, 'x') + "\nOutDir=0\nWriteForm=0\nDumpPackBits=0\nDumpJpg=1\n",
       {"0"},
       true},
      {"a negative dump", "LogLevel=0\nOutDir=0\nWriteForm=0\nDumpPackBits=0\nDumpJpg=-1\n", {"0"}, false},
      {"silence", "LogLevel=-1\nOutDir=0\nWriteForm=0\nDumpPackBits=0\nDumpJpg=3\n", {}, true},
  };
  for (const auto& row : rows) {
    const Left left = runWithLog(row.setup, [] {
      for (int level = 0; level < 3; ++level) g_ScanDevApiLog.WriteLog(level, "%d", level);
      dump("bytes", "DumpJpg", 1);
    });
    EXPECT_EQ(left.messages(), row.messages) << row.name;
    EXPECT_EQ(left.has("/tmp/QvOutLog/DumpJpg_01.jpg"), row.dumps) << row.name;
  }
}

TEST(OutputLog, BothOutDirsAreTheSameFolder) {
  for (const int outDir : {0, 1, 2, -1}) {
    const Left left = runWithLog(setupLines(0, outDir, 0, 0, 0, 0, 0, 0), [] { g_ScanDevApiLog.WriteLog(0, "line"); });
    EXPECT_EQ(left.messages(), Messages{"line"}) << outDir;
  }
}

TEST(OutputLog, NoSetupFileMakesItFail) {
  std::mt19937 random(5);
  for (int i = 0; i < 60; ++i) {
    std::string setup = i % 2 == 0 ? setupLines(2, 1, 1, 1, 1, 1, 1, 1) : std::string(random() % 400, 0);
    for (auto changes = random() % 40; changes > 0 && !setup.empty(); --changes) {
      setup[random() % setup.size()] = static_cast<char>(random());
    }
    if (i % 5 == 0) setup += "LogLevel=99999999999999999999";
    runWithLog(setup, [] {
      g_ScanDevApiLog.WriteLog(0, "zero");
      g_ScanDevApiLog.WriteLog(2, "two");
      dump("bytes", "DumpFinalData", 1);
    });
  }
}

// --- The log file
// --------------------------------------------------------------------------------------------------------

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

// --- Dumps -----------------------------------------------------------------------------------------------------------

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

// --- A folder that is open to all
// -------------------------------------------------------------------------------------

void logAndDump() {
  g_ScanDevApiLog.WriteLog(0, "line");
  dump("bytes", "DumpJpg", 1);
}

const std::string kAllOn = setupLines(2, 0, 0, 1, 1, 1, 1, 1);

TEST(OutputLog, ASetupFileThatIsALinkAFolderOrAPipeIsNone) {
  for (const int kind : {0, 1, 2}) {
    const Left left = runWithLog(std::nullopt, [&] {
      writeFile(kElsewhere, kAllOn);
      if (kind == 0) fs::create_symlink(kElsewhere, kSetupFile);
      if (kind == 1) fs::create_directory(kSetupFile);
      if (kind == 2) {
        EXPECT_EQ(mkfifo(kSetupFile, 0600), 0);
      }
      logAndDump();
      unlink(kElsewhere);
    });
    EXPECT_FALSE(left.has(kLogFolder + std::string("/"))) << kind;
  }
}

TEST(OutputLog, ASetupFileOfSomebodyElseIsNone) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  const Left left = runWithLog(kAllOn, [] {
    EXPECT_EQ(chown(kSetupFile, 12345, 12345), 0);
    logAndDump();
  });
  EXPECT_FALSE(left.has(kLogFolder + std::string("/")));
}

TEST(OutputLog, ALogFolderThatIsALinkAFileOrSomebodyElsesIsNotUsed) {
  for (const int kind : {0, 1, 2}) {
    if (kind == 2 && geteuid() != 0) continue;
    const Left left = runWithLog(kAllOn, [&] {
      if (kind == 0) {
        fs::create_directory(kElsewhere);
        fs::create_directory_symlink(kElsewhere, kLogFolder);
      }
      if (kind == 1) writeFile(kLogFolder, "a file");
      if (kind == 2) {
        fs::create_directory(kLogFolder);
        EXPECT_EQ(chown(kLogFolder, 12345, 12345), 0);
      }
      logAndDump();
      logAndDump();
    });
    for (const auto& [path, content] : left.files) {
      EXPECT_TRUE(path == kSetupFile || path == kLogFolder || path == kLogFolder + std::string("/") ||
                  path == kElsewhere + std::string("/"))
          << path << " was written, kind " << kind;
      EXPECT_TRUE(path != kLogFolder || content == "a file" || content == std::string("-> ") + kElsewhere);
    }
  }
}

TEST(OutputLog, ALogOrADumpThatIsALinkIsNotFollowed) {
  const Left left = runWithLog(kAllOn, [] {
    writeFile(kElsewhere, "precious");
    fs::create_directory(kLogFolder);
    fs::create_symlink(kElsewhere, kApiLog);
    fs::create_symlink(kElsewhere, "/tmp/QvOutLog/DumpJpg_01.jpg");
    logAndDump();
  });
  EXPECT_EQ(left.files.at(kElsewhere), "precious");
}

TEST(OutputLog, ALogFileThatIsAPipeDoesNotHoldTheProgramUp) {
  runWithLog(kAllOn, [] {
    fs::create_directory(kLogFolder);
    EXPECT_EQ(mkfifo(kApiLog, 0600), 0);
    EXPECT_EQ(mkfifo("/tmp/QvOutLog/DumpJpg_01.jpg", 0600), 0);
    alarm(10);
    logAndDump();
  });
}

TEST(OutputLog, TheFolderIsMadeForAllUnderTheUmask) {
  runWithLog("LogLevel=0\n", [] {
    umask(022);
    g_ScanDevApiLog.WriteLog(0, "line");
    struct stat status {};
    EXPECT_EQ(stat(kLogFolder, &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0755u);
  });
}

TEST(OutputLog, AFolderThatCannotBeMadeDropsTheLinesInSilence) {
  const Left left = runWithLog(kAllOn, [] {
    // Where /tmp is the real one it stays writable, and there is nothing to see.
    if (mount("none", "/tmp", nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) return;
    logAndDump();
    logAndDump();
  });
  EXPECT_EQ(left.files.size(), 1u) << "the set-up file alone";
}

}  // namespace
}  // namespace foundation_test
