#include "foundation/FileAcs.h"

#include <sys/stat.h>

#include <cstdlib>

CFileAcs::~CFileAcs() {
  if (m_stream != nullptr) std::fclose(m_stream);
}

unsigned char* CFileAcs::Read(const char* path, unsigned int* size) {
  std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "rb");
  if (file == nullptr) return nullptr;
  std::free(m_buffer);
  m_buffer = nullptr;
  const unsigned int expected = GetFileSize(file);
  if (expected != 0) m_buffer = static_cast<unsigned char*>(std::malloc(expected));
  if (m_buffer != nullptr) {
    const auto count = static_cast<unsigned int>(std::fread(m_buffer, 1, expected, file));
    if (count != expected) {
      std::free(m_buffer);
      m_buffer = nullptr;
    }
    if (size != nullptr) *size = count;
  }
  std::fclose(file);
  return m_buffer;
}

unsigned int CFileAcs::Read(const char* path, void* buffer, unsigned int count) {
  if (path == nullptr || buffer == nullptr) return 0;
  if (m_stream == nullptr) m_stream = std::fopen(path, "rb");
  return m_stream == nullptr ? 0 : static_cast<unsigned int>(std::fread(buffer, 1, count, m_stream));
}

unsigned int CFileAcs::GetFileSize(std::FILE* file) {
  if (file == nullptr) return 0;
  struct stat status {};
  // A folder opens for reading too, and puts its end as far out as a position can be.
  if (fstat(fileno(file), &status) == 0 && S_ISDIR(status.st_mode)) return 0;
  std::fpos_t saved{};
  if (std::fgetpos(file, &saved) != 0 || std::fseek(file, 0, SEEK_END) != 0) return 0;
  const long end = std::ftell(file);  // fpos_t is opaque here
  std::fsetpos(file, &saved);
  return end < 0 ? 0 : static_cast<unsigned int>(end);
}

unsigned int CFileAcs::GetFileSize(const char* path) {
  std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "rb");
  if (file == nullptr) return 0;
  const unsigned int size = GetFileSize(file);
  std::fclose(file);
  return size;
}

void CFileAcs::FreeBufAndCloseFile() {
  std::free(m_buffer);
  m_buffer = nullptr;
  if (m_stream != nullptr) std::fclose(m_stream);
  m_stream = nullptr;
}

bool CFileAcs::Write(const char* path, const void* data, unsigned int size, const char* mode) {
  if (path == nullptr || data == nullptr || size == 0 || mode == nullptr) return false;
  std::FILE* const file = std::fopen(path, mode);
  if (file == nullptr) return false;
  const bool written = std::fwrite(data, 1, size, file) == size;
  return std::fclose(file) == 0 && written;
}

bool CFileAcs::Add(const char* path, const void* data, unsigned int size) { return Write(path, data, size, "ab"); }

void CFileAcs::RemoveFile(const char* path) {
  if (path != nullptr) std::remove(path);
}
