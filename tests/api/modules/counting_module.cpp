// A run-time module for tests that tells the program that loads it about its life: "<file name> <event>". Its object
// stands for every interface, of which only the destructor is used, and for device access in full.
//
// QS_FACTORY: 0 no factory, 1 a factory that makes nothing, 2 a working factory.
#include <dlfcn.h>

#include <string>

#include "include/modules/DeviceAccess.h"

extern "C" void qsTestNote(const char* note) __attribute__((weak));

namespace {

void note(const std::string& event) {
  Dl_info info{};
  if (qsTestNote == nullptr || dladdr(reinterpret_cast<void*>(&note), &info) == 0) return;
  const std::string path = info.dli_fname;
  qsTestNote((path.substr(path.rfind('/') + 1) + " " + event).c_str());
}

__attribute__((constructor)) void loaded() { note("load"); }
__attribute__((destructor)) void unloaded() { note("unload"); }

#if QS_FACTORY == 2
class Object final : public orvalle_scan_api::IDeviceAccess {
 public:
  ~Object() override { note("delete"); }
  void SetClientId(const char* id) override { note(std::string("SetClientId ") + id); }
  void ReservedFirst() override { note("ReservedFirst"); }
  void ReservedSecond() override { note("ReservedSecond"); }
  int Open(orvalle_scan_api::_DEV_IDENTIFIER&) override { return 1; }
  void Close() override { note("Close"); }
  bool IsOpen() override { return false; }
  int Read(void*, unsigned int, unsigned int, long) override { return -1; }
  int Write(const void*, int, int) override { return -1; }
};
#endif

}  // namespace

#if QS_FACTORY > 0
extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IDeviceAccess* CreateInstance() {
  note("create");
#if QS_FACTORY == 2
  return new Object;
#else
  return nullptr;
#endif
}
#endif
