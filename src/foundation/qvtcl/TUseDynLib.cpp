#include "foundation/qvtcl/TUseDynLib.h"

#include <dlfcn.h>

namespace qvtcl {

CTUseDynLib::~CTUseDynLib() { ReleaseDynamicLibrary(); }

bool CTUseDynLib::LoadDynamicLibrary(const char* path) {
  if (path == nullptr || path[0] == '\0') return false;
  if (handle_ == nullptr) handle_ = LoadDynLib(path);
  return handle_ != nullptr;
}

bool CTUseDynLib::ReleaseDynamicLibrary() {
  if (handle_ != nullptr && FreeDynLib(handle_)) handle_ = nullptr;
  return handle_ == nullptr;
}

void* CTUseDynLib::GetPtrExportSymbol(const char* name) const {
  return handle_ == nullptr || name == nullptr ? nullptr : GetPtrSymbol(handle_, name);
}

void* CTUseDynLib::LoadDynLib(const char* path) { return dlopen(path, RTLD_LAZY | RTLD_LOCAL); }

void* CTUseDynLib::GetPtrSymbol(void* handle, const char* name) { return dlsym(handle, name); }

bool CTUseDynLib::FreeDynLib(void* handle) { return dlclose(handle) == 0; }

}  // namespace qvtcl
