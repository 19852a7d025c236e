#pragma once

#include <dlfcn.h>

#include <filesystem>
#include <string>

#include "foundation/qvtcl/TModulePath.h"

namespace reception_test {

// Holds the image modules in memory, so that thousands of scans do not map them again, and fixes the folder in which
// they are looked for.
inline void keepModulesLoaded() {
  static const bool once = [] {
    qvtcl::CTModulePath::RememberOwnFile();
    const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    for (const char* stem : {"QsScanDecode", "QsJpegDecode", "QsImageEnhance"}) {
      dlopen((folder / (std::string(stem) + ".so")).c_str(), RTLD_LAZY | RTLD_LOCAL);
    }
    return true;
  }();
  static_cast<void>(once);
}

}  // namespace reception_test
