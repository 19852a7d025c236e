#include "modules/ImageEnhance.h"
#include "timed_module.h"

namespace {

using namespace orvalle_scan_api;

timed::Meter meter("enhancement");

class TimedImageEnhance : public IImageEnhance {
 public:
  bool isThere() const { return real_.isThere(); }

  unsigned int Process(CImageDataStore* source, _IE_PARAM* parameters, int autoColorMode) override {
    return meter.during([&] { return real_->Process(source, parameters, autoColorMode); });
  }
  tagQS_SCAN_IMAGEDATA GetResult() override { return real_->GetResult(); }

 private:
  timed::Real<IImageEnhance> real_;
};

}  // namespace

extern "C" IImageEnhance* CreateInstance() { return timed::create<TimedImageEnhance>(); }
