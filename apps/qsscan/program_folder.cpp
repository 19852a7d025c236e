#include "program_folder.h"

#include <unistd.h>

#include <climits>

namespace qsscan {

std::string programFolder() {
  char path[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
  if (length <= 0) return ".";
  const std::string text(path, static_cast<std::size_t>(length));
  return text.substr(0, text.rfind('/'));
}

}  // namespace qsscan
