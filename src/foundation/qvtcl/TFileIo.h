// A C stream that remembers why its last operation failed.
//
// Threads: an object belongs to one thread.
#pragma once

#include <cstdint>
#include <cstdio>

namespace qvtcl {

enum openmode_t : int { kOpenRead = 1, kOpenAppend = 2, kOpenUpdate = 3 };  // "rb", "a+b", any other value "r+b"
enum seekorigin_t : int { kSeekBegin = 0, kSeekCurrent = 1, kSeekEnd = 2 };

// What lastError holds beside 0 and the errno of a failed call.
inline constexpr std::uint32_t kFileBadArgument = 22;
inline constexpr std::uint32_t kFileAlreadyOpen = 37;
inline constexpr std::uint32_t kFileNotOpen = 98;

class CTFileIo {
 public:
  static constexpr unsigned long kEndOfFile = ~0UL;

  CTFileIo() = default;
  virtual ~CTFileIo();
  CTFileIo(const CTFileIo&) = delete;
  CTFileIo& operator=(const CTFileIo&) = delete;

  // Every call sets lastError: 0 after success, otherwise why it failed.
  std::uint32_t GetLastError() const { return lastError; }

  // A new file, or an old one emptied.
  bool Create(const char* path);
  bool Open(const char* path, openmode_t mode);
  // mode is fopen's. Fails, and leaves it open, when a stream is open already.
  bool OpenFile(const char* path, const char* mode);
  // False if nothing is open.
  bool Close();

  // Items read into a buffer for count items of itemSize bytes; 0 on failure, kEndOfFile when none was left.
  unsigned long Read(void* buffer, unsigned long count, unsigned long itemSize);
  // Length of the line read into a buffer of size bytes, line end included; stripLineEnd removes a CR, an LF, or both.
  // kEndOfFile when no line is left, 0 on failure.
  unsigned long ReadLine(char* buffer, unsigned long size, bool stripLineEnd);
  // Items written; 0 on failure.
  unsigned long Write(const void* buffer, unsigned long count, unsigned long itemSize);
  // The text and one LF. Bytes written; 0 on failure.
  unsigned long WriteLine(const char* text);
  bool Flush();
  bool IsEndOfFile();

  // Kept: from the end, the stream is read through to its end first and the seek then goes from there. Looks like a
  // detour around fseek's own end; a stream without a known size needs it. Pinned by TFileIo_test
  // "SeekingFromTheEndReadsTheStreamThrough".
  bool Seek(long offset, seekorigin_t origin);
  bool SeekToBegin();
  bool SeekToEnd();

 private:
  bool ready(bool argumentsValid);
  bool failed();

  std::FILE* stream = nullptr;
  std::uint32_t lastError = 0;
};

}  // namespace qvtcl
