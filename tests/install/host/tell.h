// What both hosts do with an instance of the core.
#pragma once

#include <ScanCoreApi.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <string>

// The file of this process's memory that ends with the name; empty when there is none.
inline std::string mappedFile(const std::string& ending) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    const std::size_t path = line.find('/');
    if (path != std::string::npos && line.size() > ending.size() &&
        line.compare(line.size() - ending.size(), ending.size(), ending) == 0) {
      return line.substr(path);
    }
  }
  return {};
}

// Initialises the core, which loads its first module, and prints what came of it and from where. 0 if all went well.
inline int tell(orvalle_scan_api::IScanCoreApi* instance) {
  const std::unique_ptr<orvalle_scan_api::IScanCoreApi> core(instance);
  if (core == nullptr) {
    std::cerr << "CreateInstance gave nothing\n";
    return 1;
  }
  const auto result = core->Initialize();
  std::cout << "Initialize 0x" << std::hex << result << '\n' << "module " << mappedFile("/QsDeviceAccs.so") << '\n';
  core->UnInitialize();
  return result == 0 ? 0 : 1;
}
