#include "foundation/qvtcl/TModulePath.h"

#include <dlfcn.h>
#include <link.h>

#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace qvtcl {
namespace {

constexpr char kProgram[] = "/proc/self/exe";

CTString realPath(const char* path) {
  char resolved[PATH_MAX];
  return CTString(path == nullptr ? nullptr : realpath(path, resolved));
}

const CTString& ownFile() {
  static const CTString file = [] {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&CTModulePath::RememberOwnFile), &info) == 0) return CTString();
    // The program itself is known by the name it was called with, which need not be a path.
    CTString path = realPath(info.dli_fname);
    return path.IsEmpty() ? realPath(kProgram) : path;
  }();
  return file;
}

struct Search {
  std::string_view stem;
  CTString path;
};

int matchObject(struct dl_phdr_info* object, std::size_t, void* context) {
  auto& search = *static_cast<Search*>(context);
  const std::string_view path = object->dlpi_name == nullptr ? "" : object->dlpi_name;
  std::string_view name = path.substr(path.find_last_of('/') + 1);
  name = name.substr(0, name.find_last_of('.'));
  if (name.empty() || name != search.stem) return 0;
  search.path = object->dlpi_name;
  return 1;
}

CTString fileOfObject(const char* identifier) {
  if (identifier == nullptr || identifier[0] == '\0') return {};
  if (std::strcmp(identifier, kDriverIdentifier) == 0) return ownFile();
  Search search{identifier, {}};
  if (dl_iterate_phdr(matchObject, &search) == 0) return {};
  return realPath(search.path.C_str());
}

}  // namespace

void CTModulePath::RememberOwnFile() { ownFile(); }

CTString CTModulePath::GetModuleFullPathName(const void* bundleId) {
  return fileOfObject(static_cast<const char*>(bundleId));
}

CTString CTModulePath::GetCurrentProcessFullPathName() { return realPath(kProgram); }

CTString CTModulePath::GetModuleFullName(const void* bundleId) { return GetModuleFullPathName(bundleId); }

CTString CTModulePath::GetModuleBaseName(const void* bundleId) {
  CTString path = GetModuleFullPathName(bundleId);
  RemoveFileExtensionName(path);
  return path;
}

CTString CTModulePath::GetModulePathName(const void* bundleId) {
  CTString path = GetModuleFullPathName(bundleId);
  RemoveLastPathComponent(path);
  return path;
}

CTString CTModulePath::GetProcessFullName() { return GetCurrentProcessFullPathName(); }

CTString CTModulePath::GetProcessBaseName() {
  CTString path = GetCurrentProcessFullPathName();
  RemoveFileExtensionName(path);
  return path;
}

CTString CTModulePath::GetProcessPathName() {
  CTString path = GetCurrentProcessFullPathName();
  RemoveLastPathComponent(path);
  return path;
}

CTString CTModulePath::GenerateModuleFileName(const void* bundleId, const char* fileName) {
  if (fileName == nullptr || fileName[0] == '\0') return {};
  const CTString folder = bundleId == nullptr ? GetProcessPathName() : GetModulePathName(bundleId);
  return folder.IsEmpty() ? CTString() : folder + "/" + fileName;
}

void CTModulePath::RemoveFileExtensionName(CTString& path) {
  const unsigned long last = path.RFindOneOf("./\\");
  if (path.GetAt(last) == '.') path.Erase(last);
}

void CTModulePath::RemoveLastPathComponent(CTString& path) { path.Erase(path.RFindOneOf("/\\")); }

}  // namespace qvtcl
