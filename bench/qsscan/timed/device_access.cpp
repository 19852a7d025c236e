#include "modules/DeviceAccess.h"
#include "timed_module.h"

namespace {

using namespace orvalle_scan_api;

timed::Meter meter("transport");

class TimedDeviceAccess : public IDeviceAccess {
 public:
  bool isThere() const { return real_.isThere(); }

  void SetClientId(const char* id) override { real_->SetClientId(id); }
  void ReservedFirst() override { real_->ReservedFirst(); }
  void ReservedSecond() override { real_->ReservedSecond(); }
  int Open(_DEV_IDENTIFIER& id) override {
    return told(meter.during([&] { return real_->Open(id); }));
  }
  void Close() override {
    meter.during([&] { real_->Close(); });
    told(0);
  }
  bool IsOpen() override {
    return meter.during([&] { return real_->IsOpen(); });
  }
  int Read(void* buffer, unsigned int size, unsigned int wanted, long timeOutMs) override {
    return told(meter.during([&] { return real_->Read(buffer, size, wanted, timeOutMs); }));
  }
  int Write(const void* data, int size, int flags) override {
    return told(meter.during([&] { return real_->Write(data, size, flags); }));
  }

 private:
  int told(int value) {
    lastResult = real_->lastResult;
    lastDetail = real_->lastDetail;
    return value;
  }

  timed::Real<IDeviceAccess> real_;
};

}  // namespace

extern "C" IDeviceAccess* CreateInstance() { return timed::create<TimedDeviceAccess>(); }
