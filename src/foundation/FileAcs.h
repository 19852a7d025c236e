// Operations on whole files.
//
// Threads: an object belongs to one thread.
#pragma once

#include <cstdio>

class CFileAcs {
 public:
  CFileAcs() = default;
  // Closes the stream. Kept: the buffer of Read is not freed here, since callers hold on to it; FreeBufAndCloseFile
  // frees it. Pinned by FileAcs_test "TheBufferOutlivesTheObject".
  ~CFileAcs();
  CFileAcs(const CFileAcs&) = delete;
  CFileAcs& operator=(const CFileAcs&) = delete;

  // The whole file in a new buffer that stays in the object until the next such call or FreeBufAndCloseFile. Null, with
  // *size left alone, for an absent or empty file; null, with the bytes that came in *size, if fewer came than
  // expected.
  unsigned char* Read(const char* path, unsigned int* size);
  // The next bytes of the file, which is opened by the first call and stays open. Bytes read.
  unsigned int Read(const char* path, void* buffer, unsigned int count);

  // Bytes, cut to 32 bits; 0 if that cannot be told, and for a folder. The position of the stream is kept.
  unsigned int GetFileSize(std::FILE* file);
  unsigned int GetFileSize(const char* path);

  void FreeBufAndCloseFile();

  // mode is fopen's; Add appends. True if every byte was written; nothing to write is false.
  bool Write(const char* path, const void* data, unsigned int size, const char* mode);
  bool Add(const char* path, const void* data, unsigned int size);
  void RemoveFile(const char* path);

 private:
  std::FILE* m_stream = nullptr;
  unsigned char* m_buffer = nullptr;
};
