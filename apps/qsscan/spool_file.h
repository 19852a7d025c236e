// A nameless file for coded pages, gone when it is closed, also after a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string>

namespace qsscan {

class SpoolFile {
 public:
  // In the folder, which is that of the output, so that there is room for what will be written there. Throws
  // CommandError (cannot write).
  explicit SpoolFile(const std::string& folder);
  ~SpoolFile() { std::fclose(stream_); }
  SpoolFile(const SpoolFile&) = delete;
  SpoolFile& operator=(const SpoolFile&) = delete;

  // Takes away what was written behind these bytes, also after a failure. Throws CommandError.
  void cut(std::uint64_t bytes);

  // Gives the room of the first bytes back to the disk, where its file system can do so; they are not read again.
  void giveBack(std::uint64_t bytes);

  // Takes more room, as far as there is some.
  void grow(std::size_t bytes);

  // Written only at its end.
  std::FILE* stream() const { return stream_; }

  // Bytes written so far. Throws CommandError when the writing before failed, for want of room for example.
  std::uint64_t size();

  // Reads bytes that size() has counted; fewer than asked for only at the end of the file.
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> bytes);

 private:
  std::FILE* stream_;
};

}  // namespace qsscan
