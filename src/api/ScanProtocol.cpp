#include "api/ScanProtocol.h"

#include <exception>
#include <iterator>
#include <new>

#include "api/DeviceCaps.h"
#include "api/ScanProc.h"
#include "command/ScanCmd.h"
#include "foundation/qvtcl/TModulePath.h"
#include "foundation/trace.h"
#include "parse/ParseScanCmd.h"

namespace orvalle_scan_api {
namespace {

constexpr std::int32_t kConnectionDirect = 1;
constexpr std::int32_t kConnectionNetwork = 2;
constexpr std::int32_t kKindSecondaryName = 3;
constexpr unsigned int kRecordVersion1 = 1;
// Memory that runs out anywhere below has no code of its own; pages are what fills it.
constexpr QSRSLT kNoMemory = QSRSLT_NO_PAGE_MEMORY;

// Nothing is thrown across the boundary: what body returns, or, when something below it throws, whenThrown.
template <class Result, class Body>
Result unlessThrown(Result whenThrown, Body body) {
  try {
    return body();
  } catch (const std::exception&) {
    return whenThrown;
  }
}

}  // namespace

CScanProtocol::CScanProtocol() { qvtcl::CTModulePath::RememberOwnFile(); }

CScanProtocol::~CScanProtocol() { CScanProtocol::UnInitialize(); }

QSRSLT CScanProtocol::Initialize() {
  Trace trace("Initialize");
  m_selectedDevice = {};
  if (GetDeviceAccessInstance() == nullptr) return trace.ret(QSRSLT_DEVICE_ACCESS_NOT_LOADED);
  m_initialized = true;
  return trace.ret(QSRSLT_SUCCESS);
}

void CScanProtocol::UnInitialize() {
  Trace trace("UnInitialize");
  // The read thread uses the command object and the device, so it ends before they do. An injected scan process is its
  // owner's to stop; one that was made here behind an earlier injection counts as injected below and is stopped too.
  if (m_scanProcIsOurs) static_cast<CScanProc*>(m_pScanProc)->StopReadThread();
  m_scanProcIsOurs = false;
  if (!m_scanCmdInjected) delete m_pScanCmd;  // 1
  m_pScanCmd = nullptr;
  if (m_pDevCaps != nullptr && !m_devCapsInjected) {  // 2
    m_pDevCaps->UnInitialize();
    delete static_cast<CDeviceCaps*>(m_pDevCaps);
  }
  m_pDevCaps = nullptr;
  if (m_pScanProc != nullptr && !m_scanProcInjected) {  // 3
    m_pScanProc->UnInitialize();
    delete m_pScanProc;
  }
  m_pScanProc = nullptr;
  if (m_pDevAcs != nullptr && !m_devAcsInjected) {  // 4
    m_pDevAcs->Close();
    m_modules.FreeDeviceAccessInstance();
  }
  m_pDevAcs = nullptr;
  m_initialized = false;  // 5
}

QSRSLT CScanProtocol::EnumerateDevice(_QS_SELECT_DEVICE_INFO**, int* count) {
  Trace trace("EnumerateDevice");
  if (count != nullptr) *count = 0;
  return trace.ret(m_initialized ? QSRSLT_NO_ENUMERATION : QSRSLT_NOT_INITIALIZED);
}

void CScanProtocol::ReleaseDeviceList() { g_ScanDevApiLog.WriteLog(1, "%s", "ReleaseDeviceList"); }

QSRSLT CScanProtocol::SelectDevice(_QS_SELECT_DEVICE_INFO& info) {
  Trace trace("SelectDevice");
  const bool unnamed = info.primaryName[0] == '\0' && info.secondaryName[0] == '\0';
  if (info.connectionType == 0 || unnamed) return trace.ret(QSRSLT_EMPTY_DEVICE);
  m_selectedDevice = info;
  m_selectedDevice.primaryName[std::size(m_selectedDevice.primaryName) - 1] = '\0';
  m_selectedDevice.secondaryName[std::size(m_selectedDevice.secondaryName) - 1] = '\0';
  return trace.ret(QSRSLT_SUCCESS);
}

QSRSLT CScanProtocol::GetSelectedDevInfo(_QS_SELECT_DEVICE_INFO* info) {
  Trace trace("GetSelectedDevInfo");
  if (info != nullptr) *info = m_selectedDevice;
  return trace.ret(QSRSLT_SUCCESS);
}

bool CScanProtocol::CheckConnection() {
  Trace trace("CheckConnection");
  IDeviceAccess* device = GetDeviceAccessInstance();
  IScanCmd* command = GetScanCmdInstance(device, m_selectedDevice);
  if (device == nullptr || command == nullptr) return trace.success(false);
  return trace.success(unlessThrown(false, [&] { return command->GetConnectionStatus(); }));
}

QSRSLT CScanProtocol::QueryDeviceCapabilities(QS_SCANNER_CAPABILITY* capability) {
  Trace trace("QueryDeviceCapabilities");
  GetDeviceCapsInstance();
  if (capability == nullptr) return trace.ret(QSRSLT_NOT_INITIALIZED);
  if (!m_initialized) {
    g_ScanDevApiLog.WriteLog(0, "Device not selected");
    return trace.ret(QSRSLT_NOT_PREPARED);
  }
  if (const QSRSLT result = PrepareQueryCapabilities(m_selectedDevice); result != 0) return trace.ret(result);
  return trace.ret(GetCapability(capability));
}

QSRSLT CScanProtocol::GetCapability(QS_SCANNER_CAPABILITY* record) {
  return unlessThrown(kNoMemory, [&] { return m_pDevCaps->GetDeviceCapability(record); });
}

QSRSLT CScanProtocol::QueryDeviceCapabilities(unsigned int generation, void* capability) {
  Trace trace(Trace::NoEntryLine{}, "QueryDeviceCapabilities");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> generation = %d", "QueryDeviceCapabilities",
                           static_cast<int>(generation));
  QS_SCANNER_CAPABILITY record{};
  QSRSLT result = QueryDeviceCapabilities(&record);
  if (result == 0 && generation == kRecordVersion1) {
    auto* older = static_cast<tagQS_SCANNER_CAPABILITY_VER1*>(capability);
    result = unlessThrown(kNoMemory, [&] { return m_pDevCaps->ScanCap2ScanCapV1(older, &record); });
  }
  return trace.ret(result);
}

QSRSLT CScanProtocol::GetIccProfile(void** data, int* size) {
  // Kept: a null argument is the one exit without its line. Pinned by log_texts_test "Every entry has its exit but
  // one".
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>>", "GetIccProfile");
  if (data == nullptr || size == nullptr) return QSRSLT_NULL_ARGUMENT;
  Trace trace(Trace::NoEntryLine{}, "GetIccProfile");
  if (m_pScanProc == nullptr) return trace.ret(QSRSLT_WRONG_STATE);
  return trace.ret(unlessThrown(kNoMemory, [&] { return m_pScanProc->GetIccProfile(data, size); }));
}

QSRSLT CScanProtocol::GetPushScanParameter(unsigned int generation, void* parameters) {
  Trace trace(Trace::NoEntryLine{}, "GetPushScanParameter");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> generation = %d", "GetPushScanParameter", static_cast<int>(generation));
  GetScanCmdInstance(m_pDevAcs, m_selectedDevice);
  GetDeviceCapsInstance();
  // Kept: success with nothing written. Hosts ask before they initialise and take any code as a fault of the device.
  // Pinned by ScanProtocol_test "Before initialize each operation gives its own refusal".
  if (!m_initialized) return trace.ret(QSRSLT_SUCCESS);
  if (parameters == nullptr) return trace.ret(QSRSLT_NULL_ARGUMENT);
  if (PrepareScanning(m_selectedDevice) != 0) return trace.ret(QSRSLT_NOT_PREPARED);
  QS_SCANNER_CAPABILITY record{};
  if (const QSRSLT result = GetCapability(&record); result != 0) return trace.ret(result);
  return trace.ret(unlessThrown(kNoMemory, [&] {
    if (!m_pScanCmd->SelectCommandVersion(record.generation)) return QSRSLT_PUSH_GENERATION;
    _SCANCMD_RESPONSE_INFO response{};
    if (const QSRSLT result = m_pScanCmd->GetPushScanParameter(&response); result != 0) return result;
    *static_cast<tagQS_PUSHSCAN_PARAMETERS*>(parameters) = CParseScanCmd().ParseDeviceKeyInfoData(&response, record);
    return QSRSLT_SUCCESS;
  }));
}

bool CScanProtocol::IsAdfInserted() {
  Trace trace("IsAdfInserted");
  IDeviceAccess* device = GetDeviceAccessInstance();
  IScanCmd* command = GetScanCmdInstance(device, m_selectedDevice);
  if (device == nullptr || command == nullptr) return trace.success(false);
  const QSRSLT result = unlessThrown(kNoMemory, [&] { return command->CheckDocument(SCANCMD_PAPERSOURCE_ADF); });
  if (result != 0) g_ScanDevApiLog.WriteLog(0, "Check Document result = 0x%X", result);
  return trace.success(result == 0);
}

QSRSLT CScanProtocol::StartScanning(QS_SCANNER_PARAMETERS* parameters) {
  Trace trace("StartScanning");
  GetScanCmdInstance(m_pDevAcs, m_selectedDevice);  // 1
  GetDeviceCapsInstance();
  if (!m_initialized || parameters == nullptr) return trace.ret(QSRSLT_NOT_INITIALIZED);  // 2
  if (PrepareScanning(m_selectedDevice) != 0) return trace.ret(QSRSLT_NOT_PREPARED);      // 3
  QS_SCANNER_CAPABILITY record{};                                                         // 4
  if (const QSRSLT result = GetCapability(&record); result != 0) return trace.ret(result);
  // 5. The object is initialised by now: this call makes it ready again, which allows a new scan after an error.
  if (const QSRSLT result = InitScanProc(m_pScanCmd, m_pDevCaps); result != 0) return trace.ret(result);
  return trace.ret(unlessThrown(kNoMemory, [&] { return m_pScanProc->StartScan(*parameters, record); }));  // 6
}

QSRSLT CScanProtocol::ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) {
  Trace trace("ReadImageData");
  if (image == nullptr) return trace.ret(QSRSLT_NULL_ARGUMENT);
  if (m_pScanProc == nullptr) {
    g_ScanDevApiLog.WriteLog(0, "ScanProc instance is null");
    return trace.ret(QSRSLT_WRONG_STATE);
  }
  const QSRSLT result = unlessThrown(kNoMemory, [&] { return m_pScanProc->ReadImageData(image, pageNo); });
  if (pageNo != nullptr) g_ScanDevApiLog.WriteLog(1, "PageNo = %d", *pageNo);
  return trace.ret(result);
}

bool CScanProtocol::AbortScanning() {
  Trace trace("AbortScanning");
  return trace.success(m_pScanProc == nullptr || m_pScanProc->AbortScan());
}

void CScanProtocol::FreeImageData(int pageNo) {
  Trace trace("FreeImageData");
  if (m_pScanProc != nullptr) m_pScanProc->FreeImageData(pageNo);
}

SCANAPISTATUS CScanProtocol::GetScanStatus() {
  Trace trace("GetScanStatus", 2);
  return trace.retDecimal(m_pScanProc == nullptr ? READY : m_pScanProc->GetReadStatus());
}

int CScanProtocol::GetCurrentReceivedLines(int pageNo) {
  Trace trace("GetCurrentReceivedLines");
  return trace.retDecimal(m_pScanProc == nullptr ? 0 : m_pScanProc->GetCurrentReceivedLines(pageNo));
}

QS_BITMAP_IMAGE_INFO CScanProtocol::GetScanBitmapImageInfo() {
  Trace trace("GetScanBitmapImageInfo");
  return m_pScanProc == nullptr ? QS_BITMAP_IMAGE_INFO{} : m_pScanProc->GetScanBitmapImageInfo();
}

void CScanProtocol::SetDeviceAccess(IDeviceAccess* device) {
  if (device == nullptr) return;
  if (m_pDevAcs != nullptr) m_pDevAcs->Close();
  m_pDevAcs = device;
  m_devAcsInjected = true;
}

void CScanProtocol::SetScanCommand(IScanCmd* command) {
  if (command == nullptr) return;
  m_pScanCmd = command;
  m_scanCmdInjected = true;
}

void CScanProtocol::SetDeviceCaps(ICDeviceCaps* caps) {
  if (caps == nullptr) return;
  if (m_pDevCaps != nullptr) m_pDevCaps->UnInitialize();
  m_pDevCaps = caps;
  m_devCapsInjected = true;
}

void CScanProtocol::SetScanProc(IScanProc* proc) {
  if (proc == nullptr) return;
  if (m_pScanProc != nullptr) m_pScanProc->UnInitialize();
  m_pScanProc = proc;
  m_scanProcIsOurs = false;
  m_scanProcInjected = true;
}

IDeviceAccess* CScanProtocol::GetDeviceAccessInstance() {
  Trace trace("GetDeviceAccessInstance", 2);
  if (m_pDevAcs == nullptr) {
    m_pDevAcs = m_modules.GetDeviceAccessInstance();
    if (m_pDevAcs != nullptr) m_pDevAcs->SetClientId(qvtcl::kDriverIdentifier);
  }
  return m_pDevAcs;
}

IScanCmd* CScanProtocol::GetScanCmdInstance(IDeviceAccess* device, _QS_SELECT_DEVICE_INFO& info) {
  Trace trace("GetScanCmdInstance", 2);
  // A command object made without a device would answer "not opened" for ever, so none is made.
  if (m_pScanCmd == nullptr && device != nullptr) {
    _DEV_IDENTIFIER identifier{};
    if (ConvertDevInfoToDevIdentifier(info, identifier) == 0) {
      m_pScanCmd = new (std::nothrow) CScanCmd(device, identifier);
    }
  }
  return m_pScanCmd;
}

ICDeviceCaps* CScanProtocol::GetDeviceCapsInstance() {
  Trace trace("GetDeviceCapsInstance", 2);
  if (m_pDevCaps == nullptr) m_pDevCaps = new (std::nothrow) CDeviceCaps;
  return m_pDevCaps;
}

IScanProc* CScanProtocol::GetScanProcInstance() {
  Trace trace("GetScanProcInstance", 2);
  if (m_pScanProc == nullptr) {
    m_pScanProc = new (std::nothrow) CScanProc;
    m_scanProcIsOurs = m_pScanProc != nullptr;
  }
  return m_pScanProc;
}

QSRSLT CScanProtocol::InitScanCmd() {
  Trace trace("InitScanCmd", 2);
  const bool made = GetScanCmdInstance(m_pDevAcs, m_selectedDevice) != nullptr;
  return trace.ret(made ? QSRSLT_SUCCESS : QSRSLT_NO_SCAN_COMMAND);
}

QSRSLT CScanProtocol::InitDeviceCaps(_QS_SELECT_DEVICE_INFO& info) {
  Trace trace("InitDeviceCaps", 2);
  ICDeviceCaps* caps = GetDeviceCapsInstance();
  if (caps == nullptr) return trace.ret(QSRSLT_NO_CAPS_OBJECT);
  if (caps->IsInitialized()) return trace.ret(QSRSLT_SUCCESS);
  IScanCmd* command = GetScanCmdInstance(m_pDevAcs, info);
  if (command == nullptr) return trace.ret(QSRSLT_NO_SCAN_COMMAND);
  return trace.ret(caps->Initialize(*command));
}

QSRSLT CScanProtocol::InitScanProc(IScanCmd* command, ICDeviceCaps* caps) {
  Trace trace("InitScanProc", 2);
  IScanProc* proc = GetScanProcInstance();
  if (proc == nullptr) return trace.ret(QSRSLT_WRONG_STATE);
  return trace.ret(proc->Initialize(command, caps, m_pDevAcs));
}

QSRSLT CScanProtocol::PrepareQueryCapabilities(_QS_SELECT_DEVICE_INFO& info) {
  Trace trace("PrepareQueryCapabilities", 2);
  QSRSLT result = InitScanCmd();
  if (result == 0) result = InitDeviceCaps(info);
  return trace.ret(result);
}

QSRSLT CScanProtocol::PrepareScanning(_QS_SELECT_DEVICE_INFO& info) {
  Trace trace("PrepareScanning", 2);
  QSRSLT result = InitScanCmd();
  if (result == 0) result = InitDeviceCaps(info);
  if (result == 0) result = InitScanProc(m_pScanCmd, m_pDevCaps);
  return trace.ret(result);
}

QSRSLT CScanProtocol::ConvertDevInfoToDevIdentifier(const _QS_SELECT_DEVICE_INFO& info, _DEV_IDENTIFIER& identifier) {
  Trace trace("ConvertDevInfoToDevIdentifier", 2);
  identifier = {};
  if (info.connectionType == kConnectionDirect) identifier.connection = kConnectionDirect;
  if (info.connectionType == kConnectionNetwork) {
    identifier.connection = kConnectionNetwork;
    if (info.secondaryName[0] != '\0') {
      identifier.kind = kKindSecondaryName;
      identifier.name = info.secondaryName;
      return trace.ret(QSRSLT_SUCCESS);
    }
  }
  if (info.primaryName[0] == '\0') return trace.ret(QSRSLT_EMPTY_DEVICE);
  identifier.name = info.primaryName;
  return trace.ret(QSRSLT_SUCCESS);
}

}  // namespace orvalle_scan_api
