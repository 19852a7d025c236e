// When the log is on, and what the lines of its set-up file say.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <random>

#include "foundation/OutputLog.h"
#include "tests/foundation/log_setup.h"

namespace foundation_test {
namespace {

const std::string kLevel2 = "LogLevel=2\n";

// --- On and off ---

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

// --- The set-up's lines ---

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

// A set-up text of lines that are whole, spoilt, cut, or no lines at all.
std::string randomSetup(std::mt19937& random) {
  const char* const keys[] = {"LogLevel", "OutDir",         "WriteForm",          "DumpPackBits",
                              "DumpJpg",  "DumpPreScanDec", "DumpPreImagEnhance", "DumpFinalData"};
  const std::string ends[] = {"\n", "\n", "\n", "\n", "\r\n", "", "\n\n", std::string("\0\n", 2)};
  std::string setup;
  for (int line = static_cast<int>(random() % 12); line > 0; --line) {
    const auto kind = random() % 8;
    if (kind == 0) {
      for (auto bytes = random() % 300; bytes > 0; --bytes) setup += static_cast<char>(random());
    } else {
      setup += keys[kind == 1 ? random() % 8 : static_cast<std::size_t>(line) % 8];
      setup += kind == 2 ? " =" : "=";
      setup += std::to_string(static_cast<int>(random() % 9) - 3);
    }
    setup += ends[random() % 8];
  }
  return setup;
}

// The level by the rule: the first line, if it is the key, a sign of equality and a number.
int levelOf(const std::string& setup) {
  const std::string line = setup.substr(0, setup.find('\n'));
  if (line.rfind("LogLevel=", 0) != 0) return 0;
  char* end = nullptr;
  const std::string text =
      line.substr(9, line.find('\0') == std::string::npos ? std::string::npos : line.find('\0') - 9);
  const long level = std::strtol(text.c_str(), &end, 10);
  return end == text.c_str() ? 0 : static_cast<int>(level);
}

TEST(OutputLog, WhateverTheSetupSaysTheLevelTestHolds) {
  std::mt19937 random(5);
  for (int i = 0; i < 300; ++i) {
    std::string setup =
        i % 3 == 0 ? setupLines(static_cast<int>(random() % 5) - 1, 1, 0, 1, 1, 1, 1, 1) : randomSetup(random);
    if (i % 3 == 0) {
      for (auto changes = random() % 20; changes > 0; --changes)
        setup[random() % setup.size()] = static_cast<char>(random());
    }
    if (i % 50 == 0) setup = "LogLevel=2\n" + std::string(1 << 16, static_cast<char>(random())) + setup;
    const int level = levelOf(setup);
    Messages expected;
    for (int message = -2; message < 6; ++message) {
      if (message <= level) expected.push_back(std::to_string(message));
    }
    const Left left = runWithLog(setup, [] {
      for (int message = -2; message < 6; ++message) g_ScanDevApiLog.WriteLog(message, "%d", message);
      dump("bytes", "DumpFinalData", 1);
    });
    EXPECT_TRUE(left.ended);
    EXPECT_EQ(left.messages(), expected) << setup;
  }
}

}  // namespace
}  // namespace foundation_test
