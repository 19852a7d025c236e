// Loads a run-time module as the core does. Modules stay loaded until the program ends.
#pragma once

#include <dlfcn.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace module_test {

inline std::string modulePath(const std::string& stem) {
  const char* folder = std::getenv("QSSCAN_MODULE_DIR");
  return std::string(folder != nullptr ? folder : QS_MODULE_DIR) + "/" + stem + ".so";
}

// A new object of the module, or null.
template <class Interface>
std::unique_ptr<Interface> createInstance(const std::string& stem) {
  void* handle = dlopen(modulePath(stem).c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (handle == nullptr) return nullptr;
  const auto create = reinterpret_cast<Interface* (*)()>(dlsym(handle, "CreateInstance"));
  return std::unique_ptr<Interface>(create != nullptr ? create() : nullptr);
}

}  // namespace module_test
