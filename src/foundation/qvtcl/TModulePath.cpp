#include "foundation/qvtcl/TModulePath.h"

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace qvtcl {
namespace {

std::string folderOf(std::string path) {
  const std::size_t slash = path.find_last_of("/\\");
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string realPath(const char* path) {
  char resolved[PATH_MAX];
  return realpath(path, resolved) == nullptr ? std::string() : std::string(resolved);
}

const std::string& ownFolder() {
  static const std::string folder = [] {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&CTModulePath::RememberOwnFolder), &info) == 0) return std::string();
    // The program itself is known by the name it was called with, which need not be a path.
    const std::string path = realPath(info.dli_fname);
    return folderOf(path.empty() ? realPath("/proc/self/exe") : path);
  }();
  return folder;
}

struct Search {
  std::string_view stem;
  std::string path;
};

int matchObject(struct dl_phdr_info* object, std::size_t, void* context) {
  auto& search = *static_cast<Search*>(context);
  const std::string_view path = object->dlpi_name == nullptr ? "" : object->dlpi_name;
  std::string_view name = path.substr(path.find_last_of('/') + 1);
  name = name.substr(0, name.find_last_of('.'));
  if (name.empty() || name != search.stem) return 0;
  search.path = path;
  return 1;
}

std::string folderOfObject(const char* identifier) {
  if (identifier == nullptr) return folderOf(realPath("/proc/self/exe"));
  if (std::strcmp(identifier, kDriverIdentifier) == 0) return ownFolder();
  Search search{identifier, {}};
  if (search.stem.empty() || dl_iterate_phdr(matchObject, &search) == 0) return {};
  return folderOf(realPath(search.path.c_str()));
}

}  // namespace

void CTModulePath::RememberOwnFolder() { ownFolder(); }

std::string CTModulePath::GenerateModuleFileName(const void* bundleId, const char* fileName) {
  if (fileName == nullptr || fileName[0] == '\0') return {};
  const std::string folder = folderOfObject(static_cast<const char*>(bundleId));
  return folder.empty() ? std::string() : folder + "/" + fileName;
}

}  // namespace qvtcl
