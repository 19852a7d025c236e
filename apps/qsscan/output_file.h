// A file that appears under its name only when it is complete.
#pragma once

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

  std::FILE* stream() const { return stream_; }

  // Everything is written and the file takes its final name. Once.
  void commit();

  // Another final name, given before commit(); only where a .part file is used.
  void setPath(const std::string& path) { path_ = path; }

 private:
  std::string path_;
  std::string partPath_;  // empty where the bytes go straight to their place
  std::FILE* stream_ = nullptr;
};

// The sentence for a failed operation on a file, with the reason that errno tells.
std::string fileErrorText(const std::string& path, int error);

}  // namespace qsscan
