// The facade's companions as fakes: each notes its calls in one common list and answers what its public fields say.
// Threads: the list is thread-safe; the fields are set before the call.
#pragma once

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "api/IDeviceCaps.h"
#include "api/IScanProc.h"
#include "command/IScanCmd.h"
#include "modules/DeviceAccess.h"

namespace fakes {

using namespace orvalle_scan_api;

class CallList {
 public:
  void add(const std::string& call) {
    const std::lock_guard lock(mutex_);
    calls_.push_back(call);
  }
  // The calls since the last take.
  std::vector<std::string> take() {
    const std::lock_guard lock(mutex_);
    return std::move(calls_);
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> calls_;
};

class FakeDeviceAccess : public IDeviceAccess {
 public:
  explicit FakeDeviceAccess(CallList& calls) : calls_(calls) {}
  ~FakeDeviceAccess() override { calls_.add("device.delete"); }

  std::atomic<bool> isOpen{false};
  std::atomic<int> openResult{0};

  void SetClientId(const char* id) override { calls_.add(std::string("device.SetClientId ") + id); }
  void ReservedFirst() override { calls_.add("device.ReservedFirst"); }
  void ReservedSecond() override { calls_.add("device.ReservedSecond"); }
  int Open(_DEV_IDENTIFIER& id) override {
    calls_.add("device.Open kind " + std::to_string(id.kind) + " connection " + std::to_string(id.connection) + " " +
               id.name);
    if (openResult == 0) isOpen = true;
    return openResult;
  }
  void Close() override {
    calls_.add("device.Close");
    isOpen = false;
  }
  bool IsOpen() override { return isOpen; }
  int Read(void*, unsigned int, unsigned int, long) override {
    calls_.add("device.Read");
    lastResult = 0x40500031;
    return 0;
  }
  int Write(const void*, int size, int) override {
    calls_.add("device.Write");
    lastResult = 0;
    return size;
  }

 private:
  CallList& calls_;
};

// Every call is noted as "command.<operation> [argument]"; results holds what an operation answers instead of 0.
class FakeScanCommand : public IScanCmd {
 public:
  explicit FakeScanCommand(CallList& calls) : calls_(calls) {}
  ~FakeScanCommand() override { calls_.add("command.delete"); }

  std::map<std::string, QSRSLT> results;
  bool versionAccepted = true;
  bool connected = true;
  _SCANCMD_RESPONSE_INFO pushAnswer{};
  _SCANCMD_RESPONSE_INFO scanParameterAnswer{};
  _SCANCMD_RESPONSE_INFO profileAnswer{};
  _SCANCMD_DEVICECAP_INFO capabilityAnswer{};
  std::vector<_SCANCMD_SCANPARAM> scanParams;  // as SetScanParam was given them
  std::function<void()> onAbort = [] {};
  std::function<void()> onGetColorProfile = [] {};

  bool SelectCommandVersion(SCANCMD_GENERATION generation) override {
    note("SelectCommandVersion", generation);
    return versionAccepted;
  }
  bool GetConnectionStatus() override {
    note("GetConnectionStatus");
    return connected;
  }
  QSRSLT SetScanParam(_SCANCMD_SCANPARAM* param) override {
    if (param != nullptr) scanParams.push_back(*param);
    return note("SetScanParam");
  }
  QSRSLT QueryDeviceCapability(_SCANCMD_DEVICECAP_INFO* info, bool query) override {
    *info = capabilityAnswer;
    return note("QueryDeviceCapability", query);
  }
  QSRSLT CheckDocument(SCANCMD_PAPERSOURCE_TYPE source) override { return note("CheckDocument", source); }
  QSRSLT SelectPaperSource(SCANCMD_PAPERSOURCE_TYPE source) override { return note("SelectPaperSource", source); }
  QSRSLT GetPushScanParameter(_SCANCMD_RESPONSE_INFO* response) override {
    *response = pushAnswer;
    return note("GetPushScanParameter");
  }
  QSRSLT QueryDeviceScanParameter(_SCANCMD_RESPONSE_INFO* response) override {
    *response = scanParameterAnswer;
    return note("QueryDeviceScanParameter");
  }
  QSRSLT GetPaletteTable(_SCANCMD_RESPONSE_INFO*) override { return note("GetPaletteTable"); }
  QSRSLT GetColorProfile(_SCANCMD_RESPONSE_INFO* response) override {
    onGetColorProfile();
    *response = profileAnswer;
    return note("GetColorProfile");
  }
  QSRSLT GetDocumentSizeOnPaperSource(_SCANCMD_RESPONSE_INFO*) override { return note("GetDocumentSizeOnPaperSource"); }
  QSRSLT StartScanning() override { return note("StartScanning"); }
  QSRSLT AbortScanning(SCANCMD_EJECTION_TYPE ejection) override {
    const QSRSLT result = note("AbortScanning", ejection);
    onAbort();
    return result;
  }

 private:
  QSRSLT note(const std::string& operation) {
    calls_.add("command." + operation);
    const auto found = results.find(operation);
    return found != results.end() ? found->second : 0;
  }
  QSRSLT note(const std::string& operation, int argument) {
    calls_.add("command." + operation + " " + std::to_string(argument));
    const auto found = results.find(operation);
    return found != results.end() ? found->second : 0;
  }

  CallList& calls_;
};

class FakeDeviceCaps : public ICDeviceCaps {
 public:
  explicit FakeDeviceCaps(CallList& calls) : calls_(calls) {}

  bool initialized = true;
  QSRSLT initializeResult = 0;
  QSRSLT capabilityResult = 0;
  QS_SCANNER_CAPABILITY capability{};

  QSRSLT Initialize(IScanCmd&) override {
    calls_.add("caps.Initialize");
    return initializeResult;
  }
  QSRSLT UnInitialize() override {
    calls_.add("caps.UnInitialize");
    return 0;
  }
  bool IsInitialized() override { return initialized; }
  QSRSLT GetDeviceCapability(QS_SCANNER_CAPABILITY* out) override {
    calls_.add("caps.GetDeviceCapability");
    if (capabilityResult == 0) *out = capability;
    return capabilityResult;
  }
  std::uint16_t GetScannerCommandVersion() override { return capability.commandVersion; }
  OPTICALRESOLUTIONS GetOpticalResolution() override { return {}; }
  bool CreateResolutionList(unsigned int*, QS_SCANNER_CAPABILITY*) override { return false; }
  std::uint64_t GetColorTypes() override { return 0; }
  SUPPORTPAPERSOURCES GetPaperSource() override { return {}; }
  bool IsDuplexSupport() override { return false; }
  DEVICESCANSIZES GetMaxSize() override { return {}; }
  DEVICESCANSIZES GetMinSize() override { return {}; }
  decltype(DEVINFO_BASEFUNC::marginSize) GetMarginSize() override { return {}; }
  PAPERSETTINGPOSITIONS GetPaperPosition() override { return {}; }
  CARDSIZEORIENT GetCardSizeOrientation() override { return {}; }
  bool IsLongPaperSupport() override { return false; }
  int GetLongPaperMaxLength(UNITTYPE) override { return 0; }
  bool IsAutoCropSupport() override { return false; }
  bool IsAutoPaperSizeSupport() override { return false; }
  CAP GetAutoPaperSizeCapability(SUPPORTAUTOPAPERSIZEMODE*) override { return 1; }
  bool IsAutoDeskewSupport() override { return false; }
  CAP GetAutoDeskewCapability(SUPPORTPAPERSOURCES*) override { return 1; }
  bool IsRemoveBackgroundColorSupport(BACKGROUNDREMOVALSUPPORT*) override { return false; }
  bool IsCarrierSheetSupport() override { return false; }
  bool IsPlasticCardModeSupport() override { return false; }
  bool IsMultifeedDetectSupport() override { return false; }
  bool IsInkAio() override { return false; }
  bool IsLaserAio() override { return false; }
  bool IsDocumentScanner() override { return false; }
  QSRSLT ScanCap2ScanCapV1(tagQS_SCANNER_CAPABILITY_VER1* older, QS_SCANNER_CAPABILITY* record) override {
    calls_.add("caps.ScanCap2ScanCapV1");
    older->xferCount = record->commandVersion;
    return 0;
  }

 private:
  CallList& calls_;
};

class FakeScanProc : public IScanProc {
 public:
  explicit FakeScanProc(CallList& calls) : calls_(calls) {}
  ~FakeScanProc() override { calls_.add("proc.delete"); }

  QSRSLT initializeResult = 0;
  int failingInitialize = 0;  // the one from 1 that answers initializeResult; 0 every one
  QSRSLT result = 0;          // of every other operation
  bool aborts = true;
  SCANAPISTATUS status = RECEIVING;
  int pageNo = 7;
  QS_BITMAP_IMAGE_INFO imageInfo{};
  QS_SCANNER_PARAMETERS startedWith{};
  QS_SCANNER_CAPABILITY startedOn{};

  QSRSLT Initialize(IScanCmd*, ICDeviceCaps*, IDeviceAccess*) override {
    calls_.add("proc.Initialize");
    return failingInitialize == 0 || ++initializations_ == failingInitialize ? initializeResult : 0;
  }
  bool IsInitialized() override { return true; }
  void UnInitialize() override { calls_.add("proc.UnInitialize"); }
  QSRSLT QueryPushScanSettings(tagQS_PUSHSCAN_PARAMETERS*) override { return note("QueryPushScanSettings"); }
  QSRSLT GetIccProfile(void**, int*) override { return note("GetIccProfile"); }
  QSRSLT StartScan(QS_SCANNER_PARAMETERS parameters, QS_SCANNER_CAPABILITY capability) override {
    startedWith = parameters;
    startedOn = capability;
    return note("StartScan");
  }
  bool AbortScan() override {
    calls_.add("proc.AbortScan");
    return aborts;
  }
  SCANAPISTATUS GetReadStatus() override { return status; }
  QSRSLT ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* page) override {
    image->widthPixel = 42;
    if (page != nullptr) *page = pageNo;
    return note("ReadImageData");
  }
  void FreeImageData(int page) override { calls_.add("proc.FreeImageData " + std::to_string(page)); }
  int GetCurrentReceivedLines(int page) override { return 100 + page; }
  QS_BITMAP_IMAGE_INFO GetScanBitmapImageInfo() override { return imageInfo; }

 private:
  QSRSLT note(const std::string& call) {
    calls_.add("proc." + call);
    return result;
  }

  CallList& calls_;
  int initializations_ = 0;
};

}  // namespace fakes
