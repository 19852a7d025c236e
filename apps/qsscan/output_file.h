// A file that appears under its name only when it is complete.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace qsscan {

// Until commit() the bytes lie in NAME.part beside the final name. "-" is standard output; a name that stands for
// something other than a regular file (a device, a pipe) is written directly. Failures throw CommandError (cannot
// write) with a sentence.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();  // without commit(): removes what was written
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Open for reading too where it is a file of our own.
  std::FILE* stream() const { return stream_; }

  // Nobody else has the file that is written, and it began empty: it can be read and cut.
  bool isOwn() const { return !partPath_.empty(); }

  // Everything is written and the file takes its final name. Once.
  void commit();

  // Another final name, given before commit(); only where a .part file is used.
  void setPath(const std::string& path) { path_ = path; }

 private:
  std::string path_;
  std::string partPath_;  // empty where the bytes go straight to their place
  std::FILE* stream_ = nullptr;
};

// The sentence for what could not be written, such as "The PDF", with the reason that errno tells and what to do.
std::string writeErrorText(const std::string& what, int error);

// The same for a file by its path.
std::string fileErrorText(const std::string& path, int error);

// Takes away all that was written behind these bytes, in the buffer and in the file, and every mark of a failure, so
// that writing goes on there. False where the stream is no file that can be cut.
bool cutStream(std::FILE* stream, std::uint64_t bytes);

}  // namespace qsscan
