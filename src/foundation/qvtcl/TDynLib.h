// A run-time module and the one object that its factory "CreateInstance" made.
// Threads: bound to one thread at a time.
#pragma once

#include "foundation/qvtcl/TUseDynLib.h"

namespace qvtcl {

template <class T>
class CTDynLib {
 public:
  CTDynLib() = default;
  // What was not released before.
  virtual ~CTDynLib() { delete interface_; }
  CTDynLib(const CTDynLib&) = delete;
  CTDynLib& operator=(const CTDynLib&) = delete;

  // Loads the module on first use and makes its object. Null, with the module unloaded again, when the module, the
  // factory or the object is missing.
  T* GetInterface(const char* path) {
    if (!library_.LoadDynamicLibrary(path)) return nullptr;
    if (interface_ != nullptr) return interface_;
    using Factory = T* (*)();
    const auto factory = reinterpret_cast<Factory>(library_.GetPtrExportSymbol("CreateInstance"));
    if (factory != nullptr) interface_ = factory();
    if (interface_ == nullptr) library_.ReleaseDynamicLibrary();
    return interface_;
  }

  // Destroys the object, then unloads the module.
  void Release() {
    delete interface_;
    interface_ = nullptr;
    library_.ReleaseDynamicLibrary();
  }

 private:
  T* interface_ = nullptr;
  CTUseDynLib library_;
};

}  // namespace qvtcl
