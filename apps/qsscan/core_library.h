// The scanning library, found and loaded as any host does it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "ScanCoreApi.h"

namespace qsscan {

class CoreLibrary {
 public:
  // Loads the library from path or, where that is empty, from QSSCAN_LIBRARY or the first of libraryPlaces() that
  // exists. Throws CommandError (no library).
  explicit CoreLibrary(const std::string& path);
  ~CoreLibrary();
  CoreLibrary(const CoreLibrary&) = delete;
  CoreLibrary& operator=(const CoreLibrary&) = delete;

  // A new instance, to be destroyed before this object. Throws CommandError.
  std::unique_ptr<orvalle_scan_api::IScanCoreApi> create() const;

  // Where the library lies, links resolved, and its modules beside it.
  std::string folder() const;

 private:
  void* handle_ = nullptr;
  orvalle_scan_api::IScanCoreApi* (*createInstance_)() = nullptr;
};

// Where the library is looked for, relative to the program's folder: the build tree, then the installed places.
std::vector<std::string> libraryPlaces(const std::string& programFolder);

}  // namespace qsscan
