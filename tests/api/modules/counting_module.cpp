// A run-time module for tests that tells the program that loads it about its life: "<file name> <event>". Which
// interface its factory makes follows from its file name.
//
// QS_FACTORY: 0 no factory, 1 a factory that makes nothing, 2 a working factory.
#include <dlfcn.h>

#include <string>

#include "include/modules/DeviceAccess.h"
#include "include/modules/ImageEnhance.h"
#include "include/modules/JpegDecode.h"
#include "include/modules/QvScnImgProc.h"
#include "include/modules/ScanDec.h"

extern "C" void qsTestNote(const char* note) __attribute__((weak));

namespace {

using namespace orvalle_scan_api;

std::string fileName() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&fileName), &info) == 0) return {};
  const std::string path = info.dli_fname;
  return path.substr(path.rfind('/') + 1);
}

void note(const std::string& event) {
  if (qsTestNote != nullptr) qsTestNote((fileName() + " " + event).c_str());
}

__attribute__((constructor)) void loaded() { note("load"); }
__attribute__((destructor)) void unloaded() { note("unload"); }

#if QS_FACTORY == 2
class Device final : public IDeviceAccess {
 public:
  ~Device() override { note("delete"); }
  void SetClientId(const char* id) override { note(std::string("SetClientId ") + id); }
  void ReservedFirst() override { note("ReservedFirst"); }
  void ReservedSecond() override { note("ReservedSecond"); }
  int Open(_DEV_IDENTIFIER&) override { return 1; }
  void Close() override { note("Close"); }
  bool IsOpen() override { return false; }
  int Read(void*, unsigned int, unsigned int, long) override { return -1; }
  int Write(const void*, int, int) override { return -1; }
};

class Lines final : public IScanDec {
 public:
  ~Lines() override { note("delete"); }
  unsigned char Open(int) override { return 0; }
  unsigned char SetOpenParam(SCANDEC_OPEN*) override { return 0; }
  int Write(SCANDEC_WRITE*, int*, int*) override { return -1; }
  int PageEnd(SCANDEC_WRITE*, int*, int*) override { return -1; }
  void Close() override {}
};

class Jpeg final : public IJpegDecode {
 public:
  ~Jpeg() override { note("delete"); }
  JPEGDECODESTATUS DecodePage(const void*, unsigned int, tagQS_SCAN_IMAGEDATA*) override { return JPEGDECODE_ERROR; }
  void EndPage() override {}
  JPEGDECODESTATUS OpenBand(const void*, unsigned int, JPEGBANDINFO*) override { return JPEGDECODE_ERROR; }
  JPEGDECODESTATUS WriteBand(const void*, unsigned int) override { return JPEGDECODE_ERROR; }
  JPEGDECODESTATUS ReadBandLine(void**, unsigned int*) override { return JPEGDECODE_ERROR; }
  void CloseBand() override {}
  int GetDecodeMode(unsigned int) override { return 1; }
};

class Enhance final : public IImageEnhance {
 public:
  ~Enhance() override { note("delete"); }
  unsigned int Process(CImageDataStore*, _IE_PARAM*, int) override { return 1; }
  tagQS_SCAN_IMAGEDATA GetResult() override { return {}; }
};

class Process final : public IQvScnImgProc {
 public:
  ~Process() override { note("delete"); }
};

// As the interface, since that is what the loader takes it for.
template <class Interface, class Object>
void* make() {
  return static_cast<Interface*>(new Object);
}
#endif

}  // namespace

#if QS_FACTORY > 0
extern "C" __attribute__((visibility("default"))) void* CreateInstance() {
  note("create");
#if QS_FACTORY == 2
  const std::string name = fileName();
  if (name == "QsDeviceAccs.so") return make<IDeviceAccess, Device>();
  if (name == "QsScanDecode.so") return make<IScanDec, Lines>();
  if (name == "QsJpegDecode.so") return make<IJpegDecode, Jpeg>();
  if (name == "QsImageEnhance.so") return make<IImageEnhance, Enhance>();
  if (name == "QvScnImgProc.so") return make<IQvScnImgProc, Process>();
#endif
  return nullptr;
}
#endif
