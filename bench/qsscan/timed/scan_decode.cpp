#include "modules/ScanDec.h"
#include "timed_module.h"

namespace {

using namespace orvalle_scan_api;

timed::Meter meter("lines");

class TimedScanDec : public IScanDec {
 public:
  bool isThere() const { return real_.isThere(); }

  unsigned char Open(int mode) override {
    return meter.during([&] { return real_->Open(mode); });
  }
  unsigned char SetOpenParam(SCANDEC_OPEN* param) override {
    return meter.during([&] { return real_->SetOpenParam(param); });
  }
  int Write(SCANDEC_WRITE* param, int* outLines, int* outBytes) override {
    return meter.during([&] { return real_->Write(param, outLines, outBytes); });
  }
  int PageEnd(SCANDEC_WRITE* param, int* outLines, int* outBytes) override {
    return meter.during([&] { return real_->PageEnd(param, outLines, outBytes); });
  }
  void Close() override {
    meter.during([&] { real_->Close(); });
  }

 private:
  timed::Real<IScanDec> real_;
};

}  // namespace

extern "C" IScanDec* CreateInstance() { return timed::create<TimedScanDec>(); }
