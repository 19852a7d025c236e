#include "foundation/OutputLog.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <new>

// Construction order is the order of these lines, destruction the reverse.
COutputLog g_outputLog;
COutputLog g_ScanDevApiLog("ScanApiLog");
COutputLog g_ScanDecLog("ScanDecLog");
COutputLog g_JpegDecLog("JpegDecLog");
COutputLog g_ImageEnhanceLog("ImageEnhaLog");

namespace {

constexpr char kSetupFileName[] = "QvSetupLog.txt";
constexpr char kLogFolderName[] = "QvOutLog";
constexpr char kDefaultLogName[] = "QvOutLog.kmy";
constexpr char kLogExtension[] = ".kmy";
constexpr int kMessageBytes = 1200;

bool ownedByCallerOrRoot(const struct stat& info) { return info.st_uid == geteuid() || info.st_uid == 0; }

// Opens a regular file of our own, never through a link, and never blocks on something that is no file. A file that is
// not ours keeps its content: it is emptied only after it was looked at.
std::FILE* openOwnFile(const std::string& path, int flags, const char* mode) {
  const int fd = open(path.c_str(), (flags & ~O_TRUNC) | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK, 0666);
  if (fd < 0) return nullptr;
  struct stat info {};
  const bool isOurs = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && ownedByCallerOrRoot(info);
  if (!isOurs || ((flags & O_TRUNC) != 0 && ftruncate(fd, 0) != 0)) {
    close(fd);
    return nullptr;
  }
  std::FILE* stream = fdopen(fd, mode);
  if (stream == nullptr) close(fd);
  return stream;
}

}  // namespace

COutputLog::COutputLog() : logFileName(kDefaultLogName) {}

COutputLog::COutputLog(const char* name)
    : logFileName(name == nullptr ? std::string(kDefaultLogName) : std::string(name) + kLogExtension) {}

COutputLog::~COutputLog() {
  if (logStream != nullptr) std::fclose(logStream);
}

void COutputLog::WriteLog(int level, const char* format, ...) noexcept {
  if (!EnsureSetup() || setupFailed || logLevel < level) return;
  char message[kMessageBytes];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(message, sizeof message, format, arguments);
  va_end(arguments);
  try {
    const std::lock_guard<std::mutex> lock(writeLock);
    WriteFile(message);
  } catch (const std::bad_alloc&) {
    return;
  }
}

void COutputLog::WriteDump(const unsigned char* data, int size, const char* name, int page) noexcept {
  EnsureSetup();
  if (!dumpEnabled || logFolder.empty() || data == nullptr || size < 1 || name == nullptr) return;
  const struct {
    const char* name;
    int on;
  } kDumps[] = {{"DumpPackBits", dumpPackBits},
                {"DumpJpg", dumpJpg},
                {"DumpPreScanDec", dumpPreScanDec},
                {"DumpPreImagEnhance", dumpPreImagEnhance},
                {"DumpFinalData", dumpFinalData}};
  for (const auto& dump : kDumps) {
    if (std::strcmp(dump.name, name) != 0) continue;
    if (dump.on > 0) appendDump(data, static_cast<std::size_t>(size), name, page);
    return;
  }
}

void COutputLog::appendDump(const unsigned char* data, std::size_t size, const char* name, int page) noexcept {
  std::FILE* file = nullptr;
  try {
    file = openOwnFile(CreateSaveFilePath(name, page), O_WRONLY | O_CREAT | O_APPEND, "ab");
  } catch (const std::bad_alloc&) {
    return;
  }
  if (file == nullptr) return;
  std::fwrite(data, 1, size, file);
  std::fclose(file);
}

// False only for the call whose set-up failed; later calls see setupFailed or a null stream.
bool COutputLog::EnsureSetup() noexcept {
  if (setupDone.load(std::memory_order_acquire)) return true;
  const std::lock_guard<std::mutex> lock(writeLock);
  if (setupDone.load(std::memory_order_relaxed)) return true;
  bool ready = false;
  try {
    ready = SetupLog();
  } catch (const std::bad_alloc&) {
    setupFailed = true;
    dumpEnabled = false;
  }
  setupDone.store(true, std::memory_order_release);
  return ready;
}

bool COutputLog::SetupLog() {
  const std::string base = makeDesktopPath();
  if (!CheckLogSetup(base)) {
    setupFailed = true;
    return false;
  }
  return CheckLogFolder(base) && CheckLogText(logFolder);
}

bool COutputLog::CheckLogSetup(const std::string& base) {
  std::FILE* file = openOwnFile(makePath(base, kSetupFileName), O_RDONLY, "rb");
  if (file == nullptr) return false;
  // The position of a line decides which key it may hold.
  const struct {
    const char* pattern;
    int* field;
  } kLines[] = {{"LogLevel=%d", &logLevel},
                {"OutDir=%d", &outDir},
                {"WriteForm=%d", &writeForm},
                {"DumpPackBits=%d", &dumpPackBits},
                {"DumpJpg=%d", &dumpJpg},
                {"DumpPreScanDec=%d", &dumpPreScanDec},
                {"DumpPreImagEnhance=%d", &dumpPreImagEnhance},
                {"DumpFinalData=%d", &dumpFinalData}};
  char* line = nullptr;  // getline's own, of any length
  std::size_t lineBytes = 0;
  for (const auto& expected : kLines) {
    if (getline(&line, &lineBytes, file) < 0) break;
    int value = 0;
    if (std::sscanf(line, expected.pattern, &value) == 1) *expected.field = value;
  }
  std::free(line);
  std::fclose(file);
  dumpEnabled = dumpPackBits > 0 || dumpJpg > 0 || dumpPreScanDec > 0 || dumpPreImagEnhance > 0 || dumpFinalData > 0;
  return true;
}

bool COutputLog::CheckLogFolder(const std::string& base) {
  const std::string folder = makePath(outDir == 1 ? makeProgramDataPath() : base, kLogFolderName);
  struct stat info {};
  if (lstat(folder.c_str(), &info) != 0) {
    if (mkdir(folder.c_str(), 0777) != 0 || lstat(folder.c_str(), &info) != 0) return false;
  }
  if (!S_ISDIR(info.st_mode) || !ownedByCallerOrRoot(info)) return false;
  logFolder = folder;
  return true;
}

bool COutputLog::CheckLogText(const std::string& folder) {
  logFilePath = makePath(folder, logFileName.c_str());
  if (logStream != nullptr) return true;
  logStream = writeForm == 1 ? openOwnFile(logFilePath, O_RDWR | O_CREAT | O_APPEND, "a+")
                             : openOwnFile(logFilePath, O_RDWR | O_CREAT | O_TRUNC, "w+");
  return logStream != nullptr;
}

void COutputLog::WriteFile(const char* message) {
  if (logStream == nullptr) return;
  std::fprintf(logStream, "%s%s\r\n", makeNowDateTime().c_str(), message);
  std::fflush(logStream);
}

std::string COutputLog::CreateSaveFilePath(const char* name, int page) const {
  const char* extension = std::strcmp(name, "DumpJpg") == 0 ? ".jpg" : ".bmp";
  if (std::strcmp(name, "DumpPackBits") == 0) extension = "";
  char leaf[64];
  std::snprintf(leaf, sizeof leaf, "%s_%02d%s", name, page, extension);
  return makePath(logFolder, leaf);
}

std::string COutputLog::makePath(const std::string& base, const char* leaf) {
  return leaf == nullptr ? base : base + "/" + leaf;
}

std::string COutputLog::makeDesktopPath() { return "/tmp"; }

std::string COutputLog::makeProgramDataPath() { return "/tmp"; }

std::string COutputLog::makeNowDateTime() {
  const std::time_t now = std::time(nullptr);
  struct tm local {};
  localtime_r(&now, &local);
  char text[96];
  std::snprintf(text, sizeof text, "(%d/%d/%d %d:%d:%d) ", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                local.tm_hour, local.tm_min, local.tm_sec);
  return text;
}

void COutputLog::CreateCurrentTimeStr(char* buffer) {
  if (buffer == nullptr) return;
  std::snprintf(buffer, kTimeTextBytes, "%d", static_cast<int>(std::time(nullptr)));
}
