// Loads the run-time modules that lie beside this library, each on first demand.
//
// Two objects exist: one in CScanProtocol for device access, one in CDecodeManage for the image modules.
// Threads: not locked. A getter of a loaded module only rereads the cached pointer.
#pragma once

#include "foundation/qvtcl/TDynLib.h"
#include "foundation/qvtcl/TString.h"
#include "modules/DeviceAccess.h"
#include "modules/ImageEnhance.h"
#include "modules/JpegDecode.h"
#include "modules/QvScnImgProc.h"
#include "modules/ScanDec.h"

namespace orvalle_scan_api {

class CModuleInstances {
 public:
  CModuleInstances() = default;
  // Releases JPEG decoder, line decoder, enhancement, device access, in this order.
  ~CModuleInstances();
  CModuleInstances(const CModuleInstances&) = delete;
  CModuleInstances& operator=(const CModuleInstances&) = delete;

  // Null when the module cannot be loaded or has no working factory. The object stays owned here.
  IJpegDecode* GetJpegDecodeInstance();
  IScanDec* GetScanDecInstance();
  IDeviceAccess* GetDeviceAccessInstance();
  IImageEnhance* GetImageEnhanceInstance();
  IQvScnImgProc* GetImageProcessInstance();

  // Destroys the object and unloads the module; nothing when it is not loaded.
  void FreeJpegDecodeInstance();
  void FreeScanDecInstance();
  void FreeDeviceAccessInstance();
  void FreeImageEnhanceInstance();
  void FreeImageProcessInstance();

 private:
  template <class T>
  struct Module {
    qvtcl::CTDynLib<T> library;
    T* cached = nullptr;
  };
  template <class T>
  static T* get(Module<T>& module, const char* getter, const char* fileName, bool evenWhenCached = false);
  template <class T>
  static void free(Module<T>& module, const char* releaser);
  static qvtcl::CTString GenerateModulePathInCurrentFolder(const char* fileName);

  Module<IJpegDecode> jpegDecode_;
  Module<IScanDec> scanDec_;
  Module<IDeviceAccess> deviceAccess_;
  Module<IImageEnhance> imageEnhance_;
  Module<IQvScnImgProc> imageProcess_;
};

}  // namespace orvalle_scan_api
