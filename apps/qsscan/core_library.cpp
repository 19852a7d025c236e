#include "core_library.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>

#include "exit_codes.h"
#include "program_folder.h"

namespace qsscan {
namespace {

constexpr const char* kFileName = "libQsScanCoreApi.so";

[[noreturn]] void fail(const std::string& sentence) { throw CommandError(ExitCode::kNoLibrary, sentence); }

std::string findLibrary() {
  if (const char* named = std::getenv("QSSCAN_LIBRARY"); named != nullptr && *named != '\0') return named;
  const auto places = libraryPlaces(programFolder());
  for (const std::string& place : places) {
    if (::access(place.c_str(), F_OK) == 0) return place;
  }
  std::string looked;
  for (const std::string& place : places) looked += "\n  " + place;
  fail("The scanning library " + std::string(kFileName) +
       " is not there. Install it, or name it with --library or QSSCAN_LIBRARY. Looked for:" + looked);
}

}  // namespace

std::vector<std::string> libraryPlaces(const std::string& folder) {
  const std::string installed = folder + "/" QSSCAN_LIBDIR_FROM_BINDIR;
  return {folder + "/../lib/" + kFileName, installed + "/qsscan/" + kFileName, installed + "/" + kFileName};
}

CoreLibrary::CoreLibrary(const std::string& path) {
  const std::string file = path.empty() ? findLibrary() : path;
  // With a slash in it, so that the loader takes this file and does not search for the name.
  const std::string loaded = file.find('/') == std::string::npos ? "./" + file : file;
  handle_ = ::dlopen(loaded.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    const char* reason = ::dlerror();
    fail("The scanning library could not be loaded: " + std::string(reason != nullptr ? reason : "unknown reason") +
         ".");
  }
  createInstance_ = reinterpret_cast<orvalle_scan_api::IScanCoreApi* (*)()>(::dlsym(handle_, "CreateInstance"));
  if (createInstance_ == nullptr) {
    ::dlclose(handle_);
    fail("\"" + file + "\" is no scanning library: it does not export CreateInstance.");
  }
}

CoreLibrary::~CoreLibrary() { ::dlclose(handle_); }

std::string CoreLibrary::folder() const {
  Dl_info info{};
  char path[PATH_MAX];
  const bool isKnown = ::dladdr(reinterpret_cast<void*>(createInstance_), &info) != 0 && info.dli_fname != nullptr &&
                       ::realpath(info.dli_fname, path) != nullptr;
  if (!isKnown) return ".";
  const std::string text(path);
  return text.substr(0, text.rfind('/'));
}

std::unique_ptr<orvalle_scan_api::IScanCoreApi> CoreLibrary::create() const {
  std::unique_ptr<orvalle_scan_api::IScanCoreApi> core(createInstance_());
  if (!core) throw CommandError(ExitCode::kInternal, "There is not enough memory for the scanning library.");
  return core;
}

}  // namespace qsscan
