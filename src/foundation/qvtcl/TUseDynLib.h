// One run-time module: loading, looking up a symbol, unloading.
// Threads: bound to one thread at a time.
#pragma once

namespace qvtcl {

class CTUseDynLib {
 public:
  CTUseDynLib() = default;
  virtual ~CTUseDynLib();
  CTUseDynLib(const CTUseDynLib&) = delete;
  CTUseDynLib& operator=(const CTUseDynLib&) = delete;

  // True if the module is loaded afterwards; one that is loaded already is kept. A null or empty path fails.
  bool LoadDynamicLibrary(const char* path);
  // True when nothing is loaded afterwards; the handle is cleared only when the unload succeeded.
  bool ReleaseDynamicLibrary();
  void* GetPtrExportSymbol(const char* name) const;

 private:
  static void* LoadDynLib(const char* path);
  static void* GetPtrSymbol(void* handle, const char* name);
  static bool FreeDynLib(void* handle);

  void* handle_ = nullptr;
};

}  // namespace qvtcl
