// /tmp is open to all users: what lies there counts only if it is the caller's or root's, and no link is followed.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "foundation/OutputLog.h"
#include "tests/foundation/log_setup.h"

namespace foundation_test {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kSomebody = 12345;

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
    EXPECT_EQ(chown(kSetupFile, kSomebody, kSomebody), 0);
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
        EXPECT_EQ(chown(kLogFolder, kSomebody, kSomebody), 0);
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

TEST(OutputLog, AFileOfSomebodyElseIsNeitherWrittenNorEmptied) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  for (const int writeForm : {0, 1}) {
    const Left left = runWithLog(setupLines(2, 0, writeForm, 0, 1, 0, 0, 0), [] {
      fs::create_directory(kLogFolder);
      for (const char* path : {kApiLog, "/tmp/QvOutLog/DumpJpg_01.jpg"}) {
        writeFile(path, "precious");
        EXPECT_EQ(chown(path, kSomebody, kSomebody), 0);
      }
      logAndDump();
    });
    EXPECT_EQ(left.files.at(kApiLog), "precious") << writeForm;
    EXPECT_EQ(left.files.at("/tmp/QvOutLog/DumpJpg_01.jpg"), "precious");
  }
}

TEST(OutputLog, WhatIsRootsCountsForEverybody) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  Left left = runWithLog("LogLevel=0\n", [] {
    EXPECT_EQ(seteuid(kSomebody), 0);
    g_ScanDevApiLog.WriteLog(0, "line");
    struct stat status {};
    EXPECT_EQ(stat(kLogFolder, &status), 0);
    EXPECT_EQ(status.st_uid, kSomebody);
    EXPECT_EQ(seteuid(0), 0);
  });
  EXPECT_EQ(left.messages(), Messages{"line"}) << "the set-up file is root's, the folder the caller's own";
  left = runWithLog("LogLevel=0\n", [] {
    fs::create_directory(kLogFolder);
    EXPECT_EQ(chmod(kLogFolder, 0777), 0);
    EXPECT_EQ(seteuid(kSomebody), 0);
    g_ScanDevApiLog.WriteLog(0, "line");
    EXPECT_EQ(seteuid(0), 0);
  });
  EXPECT_EQ(left.messages(), Messages{"line"}) << "the folder is root's and open";
}

TEST(OutputLog, WhatIsAThirdUsersCountsForNobodyElse) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become somebody else";
  for (const char* thirdUsers : {kSetupFile, kLogFolder}) {
    const Left left = runWithLog("LogLevel=0\n", [&] {
      fs::create_directory(kLogFolder);
      EXPECT_EQ(chmod(kLogFolder, 0777), 0);
      EXPECT_EQ(chown(thirdUsers, kSomebody + 1, kSomebody + 1), 0);
      EXPECT_EQ(seteuid(kSomebody), 0);
      g_ScanDevApiLog.WriteLog(0, "line");
      EXPECT_EQ(seteuid(0), 0);
    });
    EXPECT_FALSE(left.has(kApiLog)) << thirdUsers;
  }
}

}  // namespace
}  // namespace foundation_test
