#include "spool_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "exit_codes.h"
#include "output_file.h"

namespace qsscan {
namespace {

int openNameless(const std::string& folder) {
  const int fd = ::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (fd >= 0) return fd;
  // Some file systems have no nameless files: make a named one and take the name away.
  std::string name = folder + "/.qsscan-XXXXXX";
  const int named = ::mkostemp(name.data(), O_CLOEXEC);
  if (named >= 0) ::unlink(name.c_str());
  return named;
}

[[noreturn]] void fail(int error) {
  throw CommandError(ExitCode::kCannotWrite, writeErrorText("A temporary file beside the output", error));
}

}  // namespace

SpoolFile::SpoolFile(const std::string& folder) {
  const int fd = openNameless(folder);
  if (fd < 0) throw CommandError(ExitCode::kCannotWrite, fileErrorText(folder, errno));
  stream_ = ::fdopen(fd, "w+b");
  if (stream_ == nullptr) {
    const int error = errno;
    ::close(fd);
    fail(error);
  }
}

void SpoolFile::cut(std::uint64_t bytes) {
  if (!cutStream(stream_, bytes)) fail(errno);
}

void SpoolFile::giveBack(std::uint64_t bytes) {
  ::fallocate(::fileno(stream_), FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(bytes));
}

void SpoolFile::grow(std::size_t bytes) {
  const std::string zeros(bytes, '\0');
  std::fwrite(zeros.data(), 1, bytes, stream_);
  std::fflush(stream_);
}

std::uint64_t SpoolFile::size() {
  if (std::fflush(stream_) != 0 || std::ferror(stream_) != 0) fail(errno);
  const off_t end = ::ftello(stream_);
  if (end < 0) fail(errno);
  return static_cast<std::uint64_t>(end);
}

std::size_t SpoolFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t n =
        ::pread(::fileno(stream_), bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
    if (n == 0) break;
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) fail(errno);
    done += static_cast<std::size_t>(n);
  }
  return done;
}

}  // namespace qsscan
