// The diagnostic log of the library, off unless the set-up file /tmp/QvSetupLog.txt exists.
//
// Set-up happens once, at the first call, and is final until the library is unloaded: a set-up file created later is
// not noticed. /tmp is open to all users, so the set-up file counts only if it is a regular file of the caller's
// effective user or of root, the log folder only if it is a real folder of theirs, and no file is opened through a
// link. A level above the set-up's costs a few comparisons and no formatting. Threads: thread-safe. The log's lock is a
// leaf: nothing is called while it is held.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>

class __attribute__((visibility("default"))) COutputLog {
 public:
  COutputLog();
  // The log file is name plus ".kmy"; null gives the default name.
  explicit COutputLog(const char* name);
  ~COutputLog();
  COutputLog(const COutputLog&) = delete;
  COutputLog& operator=(const COutputLog&) = delete;

  // Levels: 0 errors, commands sent, device status; 1 normal flow; 2 high-rate traces. Messages are cut at 1199 bytes.
  // A line for which there is no memory, or no room on the disk, is dropped.
  void WriteLog(int level, const char* format, ...) noexcept __attribute__((format(printf, 3, 4)));

  // Appends size bytes to the dump of that page in the log folder if the set-up turned that dump on, whatever its
  // level. name is one of five; null data, a size below 1 and any other name write nothing.
  //   DumpPackBits, no extension    DumpJpg, .jpg    DumpPreScanDec, DumpPreImagEnhance, DumpFinalData, .bmp
  void WriteDump(const unsigned char* data, int size, const char* name, int page) noexcept;

  // base, and "/" and leaf unless leaf is null.
  static std::string makePath(const std::string& base, const char* leaf);
  // Two base folders by name, on this platform the same.
  static std::string makeDesktopPath();
  static std::string makeProgramDataPath();
  // What stands in front of a message: "(year/month/day hour:minute:second) ", local time, no leading zeros.
  static std::string makeNowDateTime();
  // Writes the seconds since the epoch in decimal, at most kTimeTextBytes with the NUL. Nothing for null.
  static constexpr std::size_t kTimeTextBytes = 12;
  static void CreateCurrentTimeStr(char* buffer);

 private:
  bool EnsureSetup() noexcept;
  bool SetupLog();
  bool CheckLogSetup(const std::string& base);
  bool CheckLogFolder(const std::string& base);
  bool CheckLogText(const std::string& folder);
  void WriteFile(const char* message);
  void appendDump(const unsigned char* data, std::size_t size, const char* name, int page) noexcept;
  std::string CreateSaveFilePath(const char* name, int page) const;

  // Written by the set-up, constant afterwards.
  std::string logFolder;
  std::string logFilePath;
  std::string logFileName;
  std::FILE* logStream = nullptr;
  std::atomic<bool> setupDone{false};
  bool setupFailed = false;
  bool dumpEnabled = false;
  std::mutex writeLock;
  int logLevel = 0;
  int outDir = 0;
  int writeForm = 0;
  int dumpPackBits = 0;
  int dumpJpg = 0;
  int dumpPreScanDec = 0;
  int dumpPreImagEnhance = 0;
  int dumpFinalData = 0;
};

// Every line and every dump of the library goes to g_ScanDevApiLog; the others stand for companions.
extern __attribute__((visibility("default"))) COutputLog g_outputLog;
extern __attribute__((visibility("default"))) COutputLog g_ScanDevApiLog;
extern __attribute__((visibility("default"))) COutputLog g_ScanDecLog;
extern __attribute__((visibility("default"))) COutputLog g_JpegDecLog;
extern __attribute__((visibility("default"))) COutputLog g_ImageEnhanceLog;
