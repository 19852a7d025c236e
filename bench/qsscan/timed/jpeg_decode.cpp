// Where QS_TIMED_JPEGS names a folder, the JPEGs that come are also written there: 0.jpg, 1.jpg and so on.
#include <string>

#include "modules/JpegDecode.h"
#include "timed_module.h"

namespace {

using namespace orvalle_scan_api;

timed::Meter meter("jpeg");

class TimedJpegDecode : public IJpegDecode {
 public:
  bool isThere() const { return real_.isThere(); }

  JPEGDECODESTATUS DecodePage(const void* data, unsigned int size, tagQS_SCAN_IMAGEDATA* result) override {
    keep(data, size);
    return meter.during([&] { return real_->DecodePage(data, size, result); });
  }
  void EndPage() override {
    meter.during([&] { real_->EndPage(); });
  }
  JPEGDECODESTATUS OpenBand(const void* data, unsigned int size, JPEGBANDINFO* info) override {
    keep(data, size);
    return meter.during([&] { return real_->OpenBand(data, size, info); });
  }
  JPEGDECODESTATUS WriteBand(const void* data, unsigned int size) override {
    return meter.during([&] { return real_->WriteBand(data, size); });
  }
  JPEGDECODESTATUS ReadBandLine(void** line, unsigned int* size) override {
    return meter.during([&] { return real_->ReadBandLine(line, size); });
  }
  void CloseBand() override {
    meter.during([&] { real_->CloseBand(); });
  }
  int GetDecodeMode(unsigned int pixelDataSize) override { return real_->GetDecodeMode(pixelDataSize); }

 private:
  void keep(const void* data, unsigned int size) {
    const char* folder = std::getenv("QS_TIMED_JPEGS");
    if (folder == nullptr) return;
    const std::string path = std::string(folder) + "/" + std::to_string(kept_++) + ".jpg";
    std::FILE* file = std::fopen(path.c_str(), "wbe");
    if (file == nullptr) return;
    std::fwrite(data, 1, size, file);
    std::fclose(file);
  }

  timed::Real<IJpegDecode> real_;
  int kept_ = 0;
};

}  // namespace

extern "C" IJpegDecode* CreateInstance() { return timed::create<TimedJpegDecode>(); }
