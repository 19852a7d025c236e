#include "api/ModuleInstances.h"

#include "api/DynLib_base.h"
#include "foundation/qvtcl/TModulePath.h"
#include "foundation/trace.h"

namespace orvalle_scan_api {

CModuleInstances::~CModuleInstances() {
  FreeJpegDecodeInstance();
  FreeScanDecInstance();
  FreeImageEnhanceInstance();
  FreeDeviceAccessInstance();
}

qvtcl::CTString CModuleInstances::GenerateModulePathInCurrentFolder(const char* fileName) {
  [[maybe_unused]] const CDynLib_base self;  // made, and asked for nothing: the path is found without a handle
  qvtcl::CTString path = qvtcl::CTModulePath().GenerateModuleFileName(qvtcl::kDriverIdentifier, fileName);
  g_ScanDevApiLog.WriteLog(1, "Module Path: %s", path.C_str());
  return path;
}

template <class T>
T* CModuleInstances::get(Module<T>& module, const char* getter, const char* fileName, bool evenWhenCached) {
  Trace trace(getter);
  const qvtcl::CTString path = GenerateModulePathInCurrentFolder(fileName);
  if ((module.cached == nullptr || evenWhenCached) && !path.IsEmpty()) {
    module.cached = module.library.GetInterface(path.C_str());
  }
  return trace.instance(module.cached);
}

template <class T>
void CModuleInstances::free(Module<T>& module, const char* releaser) {
  if (module.cached == nullptr) return;
  module.library.Release();
  module.cached = nullptr;
  g_ScanDevApiLog.WriteLog(1, "%s", releaser);
}

IJpegDecode* CModuleInstances::GetJpegDecodeInstance() { return get(jpegDecode_, __func__, "QsJpegDecode.so"); }
IScanDec* CModuleInstances::GetScanDecInstance() { return get(scanDec_, __func__, "QsScanDecode.so"); }
IDeviceAccess* CModuleInstances::GetDeviceAccessInstance() { return get(deviceAccess_, __func__, "QsDeviceAccs.so"); }
IImageEnhance* CModuleInstances::GetImageEnhanceInstance() { return get(imageEnhance_, __func__, "QsImageEnhance.so"); }
// Kept: this getter asks the module again although a pointer is cached; GetInterface then hands back the same object.
// Pinned by ModuleInstances_test "Load each module on its first demand and once".
IQvScnImgProc* CModuleInstances::GetImageProcessInstance() {
  return get(imageProcess_, __func__, "QvScnImgProc.so", true);
}

void CModuleInstances::FreeJpegDecodeInstance() { free(jpegDecode_, __func__); }
void CModuleInstances::FreeScanDecInstance() { free(scanDec_, __func__); }
void CModuleInstances::FreeDeviceAccessInstance() { free(deviceAccess_, __func__); }
void CModuleInstances::FreeImageEnhanceInstance() { free(imageEnhance_, __func__); }
void CModuleInstances::FreeImageProcessInstance() { free(imageProcess_, __func__); }

}  // namespace orvalle_scan_api
