// Where the program and its shared objects lie on disk.
//
// An identifier, a text, names a shared object: the driver's own identifier this library, any other a loaded object
// whose file name without extension equals it. A run-time module lies beside the object that it serves. Every name is
// empty on failure. Threads: reentrant.
#pragma once

#include "foundation/qvtcl/TString.h"

namespace qvtcl {

inline constexpr char kDriverIdentifier[] = "com.orvalle.twainds";

class CTModulePath {
 public:
  virtual ~CTModulePath() = default;

  CTString GetModuleFullPathName(const void* bundleId);  // a null identifier is empty here
  CTString GetCurrentProcessFullPathName();

  CTString GetModuleFullName(const void* bundleId);
  // Kept: the base name keeps its folders: the full path less its extension. Pinned by TModulePath_test
  // "TheBaseNameKeepsItsFolders".
  CTString GetModuleBaseName(const void* bundleId);
  CTString GetModulePathName(const void* bundleId);  // the folder
  CTString GetProcessFullName();
  CTString GetProcessBaseName();
  CTString GetProcessPathName();

  // Folder of the object that bundleId names, null being the program, then "/" and fileName.
  CTString GenerateModuleFileName(const void* bundleId, const char* fileName);

  // From the last dot of the last name on; without one nothing changes.
  void RemoveFileExtensionName(CTString& path);
  // From the last separator on; without one nothing changes.
  void RemoveLastPathComponent(CTString& path);

  // Fixes where this library lies. The loader may know it by a relative path, so it is taken while that path still
  // leads there: when the first instance is made.
  static void RememberOwnFile();
};

}  // namespace qvtcl
