// The module that opens devices, as it lies beside a library. QSSCAN_FAKE_OPEN tells how an opening ends, as
// RESULT:DETAIL in hexadecimal; a second opening or another kind of use ends as no real module would.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "modules/DeviceAccess.h"

namespace {

class FakeDeviceAccess : public orvalle_scan_api::IDeviceAccess {
 public:
  void SetClientId(const char* id) override { isNamed_ = std::string(id) == "com.orvalle.twainds"; }
  void ReservedFirst() override {}
  void ReservedSecond() override {}
  int Open(orvalle_scan_api::_DEV_IDENTIFIER& id) override {
    const char* script = std::getenv("QSSCAN_FAKE_OPEN");
    const char* device = std::getenv("QSSCAN_FAKE_DEVICE");
    const std::string expected = device != nullptr ? device : id.name;
    const bool asExpected = isNamed_ && id.kind == 0 && expected == id.name &&
                            id.connection == (expected.starts_with("usb:") || expected.starts_with("unix:") ? 1 : 2);
    if (!asExpected || script == nullptr || std::sscanf(script, "%x:%x", &lastResult, &lastDetail) != 2) {
      lastResult = 0x40500001;
    }
    return static_cast<int>(lastResult);
  }
  // As a real module does, so that who reads the outcome afterwards reads nothing.
  void Close() override { lastResult = lastDetail = 0; }
  bool IsOpen() override { return false; }
  int Read(void*, unsigned, unsigned, long) override { return -1; }
  int Write(const void*, int, int) override { return -1; }

 private:
  bool isNamed_ = false;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) orvalle_scan_api::IDeviceAccess* CreateInstance() {
  return new FakeDeviceAccess;
}
