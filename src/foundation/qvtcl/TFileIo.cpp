#include "foundation/qvtcl/TFileIo.h"

#include <cerrno>
#include <cstring>

namespace qvtcl {

CTFileIo::~CTFileIo() {
  if (stream != nullptr) std::fclose(stream);
}

bool CTFileIo::ready(bool argumentsValid) {
  lastError = !argumentsValid ? kFileBadArgument : stream == nullptr ? kFileNotOpen : 0;
  return lastError == 0;
}

bool CTFileIo::failed() {
  lastError = static_cast<std::uint32_t>(errno);
  std::clearerr(stream);
  return false;
}

bool CTFileIo::Create(const char* path) { return OpenFile(path, "w+b"); }

bool CTFileIo::Open(const char* path, openmode_t mode) {
  return OpenFile(path, mode == kOpenRead ? "rb" : mode == kOpenAppend ? "a+b" : "r+b");
}

bool CTFileIo::OpenFile(const char* path, const char* mode) {
  lastError = 0;
  if (path == nullptr || path[0] == '\0' || mode == nullptr || mode[0] == '\0') {
    lastError = kFileBadArgument;
  } else if (stream != nullptr) {
    lastError = kFileAlreadyOpen;
  } else {
    stream = std::fopen(path, mode);
    if (stream == nullptr) lastError = static_cast<std::uint32_t>(errno);
  }
  return lastError == 0;
}

bool CTFileIo::Close() {
  if (!ready(true)) return false;
  std::fclose(stream);
  stream = nullptr;
  return true;
}

unsigned long CTFileIo::Read(void* buffer, unsigned long count, unsigned long itemSize) {
  if (!ready(buffer != nullptr && count != 0 && itemSize != 0)) return 0;
  const unsigned long items = std::fread(buffer, itemSize, count, stream);
  if (items != 0) return items;
  if (std::feof(stream) != 0) return kEndOfFile;
  failed();
  return 0;
}

unsigned long CTFileIo::ReadLine(char* buffer, unsigned long size, bool stripLineEnd) {
  if (!ready(buffer != nullptr && size != 0)) return 0;
  const int room = size > 0x7FFFFFFF ? 0x7FFFFFFF : static_cast<int>(size);
  if (std::fgets(buffer, room, stream) == nullptr) {
    if (std::feof(stream) != 0) return kEndOfFile;
    failed();
    return 0;
  }
  unsigned long length = std::strlen(buffer);
  if (!stripLineEnd || length == 0) return length;
  if (buffer[length - 1] == '\n') {
    buffer[--length] = '\0';
    if (length == 0) return 0;
  }
  if (buffer[length - 1] == '\r') buffer[--length] = '\0';
  return length;
}

unsigned long CTFileIo::Write(const void* buffer, unsigned long count, unsigned long itemSize) {
  if (!ready(buffer != nullptr && count != 0 && itemSize != 0)) return 0;
  const unsigned long items = std::fwrite(buffer, itemSize, count, stream);
  if (items == count) return items;
  failed();
  return 0;
}

unsigned long CTFileIo::WriteLine(const char* text) {
  if (!ready(text != nullptr)) return 0;
  const unsigned long length = std::strlen(text);
  if (std::fwrite(text, 1, length, stream) == length && std::fputc('\n', stream) != EOF) return length + 1;
  failed();
  return 0;
}

bool CTFileIo::Flush() {
  if (!ready(true)) return false;
  return std::fflush(stream) == 0 || failed();
}

bool CTFileIo::IsEndOfFile() { return ready(true) && std::feof(stream) != 0; }

bool CTFileIo::Seek(long offset, seekorigin_t origin) {
  if (!ready(true)) return false;
  if (origin == kSeekEnd) {
    while (std::fgetc(stream) != EOF) {
    }
    if (std::ferror(stream) != 0) return failed();
  }
  return std::fseek(stream, offset, origin == kSeekBegin ? SEEK_SET : SEEK_CUR) == 0 || failed();
}

bool CTFileIo::SeekToBegin() {
  if (!ready(true)) return false;
  std::rewind(stream);
  return true;
}

bool CTFileIo::SeekToEnd() { return Seek(0, kSeekEnd); }

}  // namespace qvtcl
