#include "output_file.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "exit_codes.h"

namespace qsscan {
namespace {

const char* advice(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return " Make room there or choose another place with -o, then scan the missing pages again.";
    case EACCES:
    case EPERM:
    case EROFS:
    case ENOENT:
    case ENOTDIR:
    case EISDIR:
      return " Choose another place with -o.";
    default:
      return "";
  }
}

[[noreturn]] void fail(const std::string& path, int error) {
  throw CommandError(ExitCode::kCannotWrite, fileErrorText(path, error));
}

// The file behind links, so that a link stays a link and its target is replaced.
std::string resolved(const std::string& path) {
  char* real = ::realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string text(real);
  std::free(real);
  return text;
}

}  // namespace

std::string writeErrorText(const std::string& what, int error) {
  return what + " cannot be written: " + std::strerror(error) + "." + advice(error);
}

std::string fileErrorText(const std::string& path, int error) { return writeErrorText("\"" + path + "\"", error); }

bool cutStream(std::FILE* stream, std::uint64_t bytes) {
  const auto end = static_cast<off_t>(bytes);
  ::__fpurge(stream);
  if (::ftruncate(::fileno(stream), end) != 0 || ::fseeko(stream, end, SEEK_SET) != 0) return false;
  std::clearerr(stream);
  return true;
}

OutputFile::OutputFile(const std::string& path) : path_(path) {
  if (path == "-") {
    stream_ = stdout;
    return;
  }
  struct stat info {};
  const bool exists = ::stat(path.c_str(), &info) == 0;
  if (exists && S_ISDIR(info.st_mode)) fail(path, EISDIR);
  if (exists && !S_ISREG(info.st_mode)) {
    stream_ = std::fopen(path.c_str(), "wbe");
  } else {
    path_ = resolved(path);
    partPath_ = path_ + ".part";
    stream_ = std::fopen(partPath_.c_str(), "w+be");
  }
  if (stream_ == nullptr) fail(path, errno);
}

OutputFile::~OutputFile() {
  if (stream_ != nullptr && stream_ != stdout) std::fclose(stream_);
  if (!partPath_.empty()) ::unlink(partPath_.c_str());
}

void OutputFile::commit() {
  std::FILE* stream = stream_;
  // A write that failed on the way leaves nothing for the flush to fail on; the stream remembers it.
  const bool flushed = std::fflush(stream) == 0 && std::ferror(stream) == 0;
  const int flushError = errno != 0 ? errno : EIO;
  if (stream == stdout) {
    if (!flushed) fail("standard output", flushError);
    return;
  }
  stream_ = nullptr;
  const bool closed = std::fclose(stream) == 0;
  if (!flushed || !closed) fail(path_, flushed ? errno : flushError);
  if (partPath_.empty()) return;
  if (std::rename(partPath_.c_str(), path_.c_str()) != 0) fail(path_, errno);
  partPath_.clear();
}

}  // namespace qsscan
