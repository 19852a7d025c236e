#include "foundation/compat.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "foundation/qvtcl/TModulePath.h"

namespace {

constexpr char kSystemDirectory[] = "system";
constexpr std::size_t kSchemeBytes = 7;
constexpr std::size_t kForkBytes = 4;
constexpr int kSkipBytes = 256;

static_assert(sizeof(int) == kForkBytes);

int descriptorOf(const std::FILE* fork) {
  int descriptor = -1;
  if (fork != nullptr) std::memcpy(&descriptor, static_cast<const void*>(fork), kForkBytes);
  return descriptor;
}

// Bytes read; fewer than asked only at the end, negative on an error.
long readFully(int descriptor, char* buffer, long size) {
  long done = 0;
  while (done < size) {
    const ssize_t count = read(descriptor, buffer + done, static_cast<std::size_t>(size - done));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return -1;
    if (count == 0) break;
    done += count;
  }
  return done;
}

}  // namespace

int GetSystemDirectory(char* buffer, int size) {
  if (buffer != nullptr && size >= static_cast<int>(sizeof kSystemDirectory)) {
    std::memcpy(buffer, kSystemDirectory, sizeof kSystemDirectory);
  }
  return static_cast<int>(sizeof kSystemDirectory) - 1;
}

std::FILE* mac_open(const char* path, const char* /*mode*/) {
  if (path == nullptr || std::strlen(path) < kSchemeBytes) return nullptr;
  return iOpenFromMainBundle(path + kSchemeBytes);
}

std::FILE* iOpenFromMainBundle(const char* name) {
  if (name == nullptr || std::strchr(name, '/') != nullptr) return nullptr;
  const qvtcl::CTString path = qvtcl::CTModulePath().GenerateModuleFileName(qvtcl::kDriverIdentifier, name);
  if (path.IsEmpty()) return nullptr;
  const int descriptor = open(path.C_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  void* const fork = std::malloc(kForkBytes);
  if (fork == nullptr) {
    close(descriptor);
    return nullptr;
  }
  std::memcpy(fork, &descriptor, kForkBytes);
  return static_cast<std::FILE*>(fork);
}

long mac_read(char* buffer, long size, std::FILE* file) {
  if (buffer == nullptr || size < 1 || file == nullptr) return 0;
  return std::max(readFully(descriptorOf(file), buffer, size), 0L);
}

int mac_seek(std::FILE* file, int offset) {
  if (file == nullptr) return 0;
  char skipped[kSkipBytes];
  while (offset > 0) {
    const int step = std::min(offset, kSkipBytes);
    if (readFully(descriptorOf(file), skipped, step) != step) return 0;
    offset -= step;
  }
  return 1;
}

int mac_close(std::FILE* file) { return close(descriptorOf(file)) == 0 ? 0 : errno; }

char** NewHandle(long size) {
  if (size < 0) return nullptr;
  char** const handle = static_cast<char**>(std::malloc(sizeof(char*)));
  char* const block = static_cast<char*>(std::malloc(static_cast<std::size_t>(std::max(size, 1L))));
  if (handle == nullptr || block == nullptr) {
    std::free(handle);
    std::free(block);
    return nullptr;
  }
  *handle = block;
  return handle;
}

char* GlobalLock(char** handle) { return handle == nullptr ? nullptr : *handle; }

int GlobalUnlock(char** /*handle*/) { return 1; }

int GlobalFree(char** handle) {
  if (handle != nullptr) std::free(*handle);
  std::free(handle);
  return 0;
}
