// Where a module lies on disk.
//
// A run-time module lies beside the shared object that it serves. An identifier names that object: null the program,
// the driver's own identifier this library, any other a loaded shared object whose file name without extension equals
// it. Every name is empty on failure.
// Threads: reentrant.
#pragma once

#include <string>

namespace qvtcl {

inline constexpr char kDriverIdentifier[] = "com.orvalle.twainds";

class CTModulePath {
 public:
  virtual ~CTModulePath() = default;

  // Folder of the object that bundleId names, "/", fileName.
  std::string GenerateModuleFileName(const void* bundleId, const char* fileName);

  // Fixes the folder of this library. The loader may know it by a relative path, so it is taken while that path still
  // leads there: when the first instance is made.
  static void RememberOwnFolder();
};

}  // namespace qvtcl
