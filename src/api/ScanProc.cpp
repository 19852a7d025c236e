#include "api/ScanProc.h"

#include <algorithm>
#include <limits>
#include <new>

#include "foundation/qvtcl/TTime.h"
#include "foundation/trace.h"
#include "image/BitmapHeader.h"
#include "parse/ParseScanCmd.h"
#include "reception/ImageData.h"
#include "reception/ReadThread_v1.h"
#include "reception/ReadThread_v2.h"
#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

constexpr std::int32_t kReady = 0;
constexpr std::int32_t kScanning = 1;
constexpr std::int32_t kScanningSecond = 2;  // accepted by ReadImageData, set by nothing

std::int32_t pixelsPerMeter(std::uint32_t dpi) {
  constexpr double kMost = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(static_cast<double>(dpi) * 1000 / 25.4, kMost));
}

}  // namespace

QSRSLT CScanProc::Initialize(IScanCmd* command, ICDeviceCaps* caps, IDeviceAccess* device) {
  Trace trace(Trace::NoEntryLine{}, "Initialize");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> pScanCmd = 0x%X, pDevCaps = 0x%X, pDevAcs = 0x%X", "Initialize",
                           logAddress(command), logAddress(caps), logAddress(device));
  if (m_initialized) {
    m_status = kReady;
    return trace.ret(QSRSLT_SUCCESS);
  }
  if (command == nullptr) return trace.ret(QSRSLT_NULL_SCAN_COMMAND);
  if (caps == nullptr) return trace.ret(QSRSLT_NULL_CAPS);
  if (device == nullptr) return trace.ret(QSRSLT_NULL_DEVICE_ACCESS);
  if (!caps->IsInitialized()) {
    g_ScanDevApiLog.WriteLog(0, "DeviceCaps not initialized");
    return trace.ret(QSRSLT_CAPS_NOT_READY);
  }
  m_pScanCmd = command;
  m_pDevCaps = caps;
  m_pDevAcs = device;
  m_initialized = true;
  return trace.ret(QSRSLT_SUCCESS);
}

void CScanProc::UnInitialize() {
  // The thread uses what the pointers lead to, so it goes first.
  StopReadThread();
  m_pScanCmd = nullptr;
  m_pDevCaps = nullptr;
  m_pDevAcs = nullptr;
  DeleteScanReadClassInstances();
  m_initialized = false;
  m_xferPageNo = 0;
  g_ScanDevApiLog.WriteLog(1, "%s", "UnInitialize");
}

void CScanProc::StopReadThread() {
  if (m_pReadThread != nullptr) m_pReadThread->End();
}

QSRSLT CScanProc::QueryPushScanSettings(tagQS_PUSHSCAN_PARAMETERS* parameters) {
  Trace trace("QueryPushScanSettings");
  if (!m_initialized) return trace.ret(QSRSLT_NOT_INITIALIZED);
  if (parameters == nullptr) return trace.ret(QSRSLT_NULL_ARGUMENT);
  _SCANCMD_RESPONSE_INFO response{};
  if (const QSRSLT result = m_pScanCmd->GetPushScanParameter(&response); result != 0) {
    g_ScanDevApiLog.WriteLog(0, "GetPushScanParameter failed. qsRslt = 0x%X", result);
    return trace.ret(result);
  }
  QS_SCANNER_CAPABILITY capability{};
  if (const QSRSLT result = m_pDevCaps->GetDeviceCapability(&capability); result != 0) return trace.ret(result);
  *parameters = CParseScanCmd().ParseDeviceKeyInfoData(&response, capability);
  return trace.ret(QSRSLT_SUCCESS);
}

QSRSLT CScanProc::GetIccProfile(void** data, int* size) {
  if (data == nullptr || size == nullptr) return QSRSLT_NULL_ARGUMENT;
  if (m_pReadThread == nullptr) return QSRSLT_WRONG_STATE;
  return m_pReadThread->GetColorProfile(data, size, m_firstPageBpp);
}

QSRSLT CScanProc::StartScan(QS_SCANNER_PARAMETERS parameters, QS_SCANNER_CAPABILITY capability) {
  Trace trace("StartScan");
  // Kept: the counters are cleared before the refusals.
  m_xferPageNo = 0;
  m_firstPageBpp = 0;
  if (!m_initialized || m_status > kReady) return trace.ret(QSRSLT_NOT_INITIALIZED);
  if (m_pScanCmd == nullptr) return trace.ret(QSRSLT_WRONG_STATE);
  m_userParam = parameters;
  FreeLastXferImageData();
  if (!CreateScanReadClassInstances(capability.generation)) return trace.ret(QSRSLT_NO_READ_THREAD);
  m_scanError.Reset();
  const QSRSLT result = m_pReadThread->Start(m_userParam, m_pScanCmd, m_pDevAcs, &m_scanError, capability);
  if (result == 0) m_status = kScanning;
  return trace.ret(result);
}

bool CScanProc::CreateScanReadClassInstances(SCANCMD_GENERATION generation) {
  Trace trace(Trace::NoEntryLine{}, "CreateScanReadClassInstances");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> protocol = %d", "CreateScanReadClassInstances", generation);
  DeleteScanReadClassInstances();
  if (generation == SCANCMD_GENERATION_1ST) m_pReadThread.reset(new (std::nothrow) CReadThread_v1);
  if (generation == SCANCMD_GENERATION_2ND) m_pReadThread.reset(new (std::nothrow) CReadThread_v2);
  return trace.success(m_pReadThread != nullptr);
}

void CScanProc::DeleteScanReadClassInstances() {
  StopReadThread();
  m_pReadThread.reset();
  g_ScanDevApiLog.WriteLog(1, "%s", "DeleteScanReadClassInstances");
}

bool CScanProc::AbortScan() {
  Trace trace("AbortScan");
  if (m_pReadThread == nullptr) return trace.success(false);
  m_pReadThread->Abort();
  return trace.success(true);
}

SCANAPISTATUS CScanProc::GetReadStatus() {
  if (m_pReadThread == nullptr) return READY;
  const SCANAPISTATUS status = m_pReadThread->GetReadStatus(static_cast<unsigned>(m_xferPageNo) + 1);
  if (status == ALLEND || status == XFERCANCELED) {
    // The object stays until the next start: its pages are still the caller's.
    StopReadThread();
    m_status = kReady;
  }
  return status;
}

QSRSLT CScanProc::ReadImageData(tagQS_SCAN_IMAGEDATA* image, int* pageNo) {
  Trace trace(Trace::NoEntryLine{}, "ReadImageData");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> pScanBmpData = 0x%X, pPageNo = 0x%X, m_xferPageNo = %d", "ReadImageData",
                           logAddress(image), logAddress(pageNo), m_xferPageNo);
  if (image == nullptr || pageNo == nullptr) return trace.ret(QSRSLT_NULL_ARGUMENT);
  // The status outlives UnInitialize, the read thread does not.
  const bool scans = m_status == kScanning || m_status == kScanningSecond;
  if (!scans || m_pReadThread == nullptr) return trace.ret(QSRSLT_WRONG_STATE);
  FreeLastXferImageData();
  ++m_xferPageNo;
  const bool plasticCard = m_userParam.plasticCard != 0;
  *pageNo = plasticCard ? m_xferPageNo / 2 + 1 : m_xferPageNo;
  g_ScanDevApiLog.WriteLog(1, "Set Page No %d", *pageNo);
  if (plasticCard) {
    ReadImageForPlasticCardProc();
    return trace.ret(QSRSLT_SUCCESS);
  }
  if (const QSRSLT result = ReadImageFromReadThread(image, m_xferPageNo); result != 0) return trace.ret(result);
  g_ScanDevApiLog.WriteDump(image->data, static_cast<int>(image->dataSize), "DumpFinalData", *pageNo);
  return trace.ret(QSRSLT_SUCCESS);
}

// Kept: card pages are numbered but not delivered; the caller's record stays as it is.
void CScanProc::ReadImageForPlasticCardProc() { g_ScanDevApiLog.WriteLog(1, "%s", "ReadImageForPlasticCardProc"); }

QSRSLT CScanProc::ReadImageFromReadThread(tagQS_SCAN_IMAGEDATA* image, int pageNo) {
  Trace trace(Trace::NoEntryLine{}, "ReadImageFromReadThread");
  g_ScanDevApiLog.WriteLog(1, ">>>>> %s >>>>> m_status = %d", "ReadImageFromReadThread", m_status);
  unsigned int result = 0;
  bool cancelled = false;
  CImageData* page = m_pReadThread->GetScanData(static_cast<unsigned>(pageNo), &cancelled, &result);
  g_ScanDevApiLog.WriteLog(1, "pageNo = %d, pImgData = 0x%X, cancelled = %d, ret = %d", pageNo, logAddress(page),
                           cancelled, static_cast<int>(result));
  if (page != nullptr) {
    m_lastXferImage = page->GetFinalImage();
    if (m_firstPageBpp == 0) m_firstPageBpp = m_lastXferImage.bitPerPixel;
    g_ScanDevApiLog.WriteLog(1, "pScanBmpData = 0x%X", logAddress(m_lastXferImage.data));
    *image = m_lastXferImage;
  } else if (cancelled) {
    result = QSRSLT_CANCELED;
  }
  if ((page == nullptr && cancelled) || result != 0) {
    StopReadThread();
    m_status = kReady;
    g_ScanDevApiLog.WriteLog(1, "Set m_status Ready");
  }
  return trace.ret(result);
}

void CScanProc::FreeImageData(int pageNo) {
  if (m_userParam.plasticCard != 0) return;
  if (m_pReadThread != nullptr) m_pReadThread->FreeScanData(static_cast<unsigned>(pageNo));
}

QS_BITMAP_IMAGE_INFO CScanProc::GetScanBitmapImageInfo() {
  QS_BITMAP_IMAGE_INFO info{};
  const int bpp = bitsOfColorType(m_userParam.colorType);
  const AXIS size = forecastSize();
  info.bitPerPixel = static_cast<std::int16_t>(bpp);
  info.resolutionX = static_cast<std::int32_t>(m_userParam.resolution.x);
  info.resolutionY = static_cast<std::int32_t>(m_userParam.resolution.y);
  info.pixelsPerMeterX = pixelsPerMeter(m_userParam.resolution.x);
  info.pixelsPerMeterY = pixelsPerMeter(m_userParam.resolution.y);
  info.widthPixel = static_cast<std::int32_t>(size.x);
  info.heightPixel = static_cast<std::int32_t>(size.y);
  info.widthBytes = static_cast<std::int32_t>(CBitmapHeader().CalcWidthBytes(info.widthPixel, bpp));
  return info;
}

QS_SCANNER_PARAMETERS CScanProc::ConvertScanAreaToPixel(const QS_SCANNER_PARAMETERS& parameters) {
  return CScanParam().ConvertScanAreaValueUnit(parameters, UNIT_PIXEL);
}

SCANAPISTATUS CScanProc::WaitForXferStatus(SCANAPISTATUS status) {
  constexpr unsigned long kPollMs = 100;
  SCANAPISTATUS now = GetReadStatus();
  for (; now == status; now = GetReadStatus()) qvtcl::CTTime().Sleep_ms(kPollMs);
  return now;
}

// Pixels at the user's resolution: of the area, of the custom size, or of the named paper.
AXIS CScanProc::forecastSize() const {
  AXIS size{};
  const AXIS& resolution = m_userParam.resolution;
  if (m_userParam.scanArea.right != 0) {
    const AXIS area{static_cast<std::uint32_t>(m_userParam.scanArea.right),
                    static_cast<std::uint32_t>(m_userParam.scanArea.bottom)};
    CConvertUnit().ConvertToPixles(resolution, area, m_userParam.scanArea.unit, &size);
  } else if (m_userParam.paperType == PAPERTYPE_CUSTOM) {
    const CUSTOMPAPERSIZE& custom = m_userParam.customPaperSize;
    const AXIS paper{static_cast<std::uint32_t>(custom.x), static_cast<std::uint32_t>(custom.y)};
    CConvertUnit().ConvertToPixles(resolution, paper, custom.unit, &size);
  } else {
    const AXIS paper = CPaperSize().GetPaperSize(m_userParam.paperType, UNIT_INCH);
    CConvertUnit().ConvertToPixles(resolution, paper, UNIT_INCH, &size);
  }
  return size;
}

}  // namespace orvalle_scan_api
