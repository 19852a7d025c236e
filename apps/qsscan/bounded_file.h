// Small files that people and programs leave for us: read whole, and never more than expected.
#pragma once

#include <cstddef>
#include <string>

namespace qsscan {

struct FileText {
  enum class Kind { kRead, kMissing, kFailed };
  Kind kind = Kind::kMissing;
  std::string text;
  std::string reason;  // of a failure: "it is a directory", without a full stop
};

// The whole content. Missing where no file has the name; failed for what is no file, cannot be read or is larger than
// maxBytes. Never waits for anybody, not for the writer of a pipe either.
FileText readBoundedFile(const std::string& path, std::size_t maxBytes);

}  // namespace qsscan
