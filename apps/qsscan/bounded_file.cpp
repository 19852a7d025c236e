#include "bounded_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace qsscan {
namespace {

FileText failed(const std::string& reason) { return {FileText::Kind::kFailed, "", reason}; }
FileText failedBecause(int error) { return failed(std::strerror(error)); }

FileText readAll(int file, std::size_t maxBytes) {
  struct stat status {};
  if (::fstat(file, &status) != 0) return failedBecause(errno);
  if (S_ISDIR(status.st_mode)) return failed("it is a directory");
  // /dev/null is a usual way to name nothing.
  if (!S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode)) return failed("it is no file");
  std::string text;
  char block[4096];
  for (;;) {
    const ssize_t got = ::read(file, block, sizeof block);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return failedBecause(errno);
    if (got == 0) return {FileText::Kind::kRead, text, ""};
    text.append(block, static_cast<std::size_t>(got));
    if (text.size() > maxBytes) return failed("it is larger than " + std::to_string(maxBytes >> 10) + " KiB");
  }
}

}  // namespace

FileText readBoundedFile(const std::string& path, std::size_t maxBytes) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (file < 0) return errno == ENOENT || errno == ENOTDIR ? FileText{} : failedBecause(errno);
  FileText result = readAll(file, maxBytes);
  ::close(file);
  return result;
}

}  // namespace qsscan
