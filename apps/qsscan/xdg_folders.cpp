#include "xdg_folders.h"

#include <cstdlib>

namespace qsscan {
namespace {

std::string absoluteFrom(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value == '/' ? value : "";
}

std::string folder(const char* variable, const char* belowHome) {
  if (const std::string base = absoluteFrom(variable); !base.empty()) return base + "/qsscan";
  const std::string home = absoluteFrom("HOME");
  return home.empty() ? "" : home + belowHome + "/qsscan";
}

}  // namespace

std::string userConfigFolder() { return folder("XDG_CONFIG_HOME", "/.config"); }
std::string userStateFolder() { return folder("XDG_STATE_HOME", "/.local/state"); }

}  // namespace qsscan
