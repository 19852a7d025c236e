// A file that a C library reads from.
// Threads: reentrant.
#pragma once
#include <cstdio>
#include <memory>
#include <string>

namespace vscan {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using InputFile = std::unique_ptr<std::FILE, FileCloser>;

// Throws Failure with the reason when it cannot be opened.
InputFile openForReading(const std::string& path);

}  // namespace vscan
