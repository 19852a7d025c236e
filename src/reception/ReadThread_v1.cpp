#include "reception/ReadThread_v1.h"

#include <algorithm>
#include <memory>

#include "foundation/trace.h"
#include "modules/ScanDec.h"
#include "reception/device_errors.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

constexpr std::int32_t kWidthUnit = 16;

enum STATUSCODE : unsigned int {
  kAllPagesEnded = 0x80,
  kPageEnded = 0x82,
  kCanceledAtDevice = 0x83,
  kCanceledByHost = 0x86,
};

// There is no page 0, nor one below it.
unsigned int pageNumber(const LINEDATA& line) { return static_cast<unsigned>(std::max(line.pageNo, 0)); }

}  // namespace

QSRSLT CReadThread_v1::ConvertDeviceErrorToQSRSLT(unsigned short deviceError) {
  return deviceErrorResult_v1(deviceError);
}

QSRSLT CReadThread_v1::GetColorProfile(void** data, int* size, int /*bpp*/) {
  if (data == nullptr || size == nullptr) return QSRSLT_NULL_ARGUMENT;
  *data = nullptr;
  *size = 0;
  return QSRSLT_NO_ENUMERATION;
}

QSRSLT CReadThread_v1::SetScanParam(_SCANCMD_SCANPARAM param) {
  param.scanArea.width = static_cast<std::uint32_t>(
      CScanParam().RoundUpValue(static_cast<std::int32_t>(param.scanArea.width), kWidthUnit));
  return m_pScanCmd->SetScanParam(&param);
}

QSRSLT CReadThread_v1::StartScan() {
  Trace trace("StartScan");
  _SCANCMD_SCANPARAM command{};
  if (const QSRSLT result = negotiate(command, m_actualParam); result != 0) return trace.ret(result);    // 1 to 6
  if (const QSRSLT result = SetScanParam(command); result != 0) return trace.ret(result);                // 7
  const QSRSLT started = m_pScanCmd->StartScanning();                                                    // 8
  m_deviceParam = CScanParam().CreateDeviceScanParam(m_userParam, command, m_actualParam.maxSizePixel);  // 9
  return trace.ret(started);
}

RECEIVED_INFO CReadThread_v1::GetReceivedImageInfoStatus(const SCANIMAGEINFO& info) {
  const bool isLine = info.recordKind == kRecordKindLine;
  if (info.isIncomplete) return isLine ? kReceivedLineIncomplete : kReceivedStatusIncomplete;
  if (info.next == nullptr) return isLine ? kReceivedLineLast : kReceivedStatusLast;
  return isLine ? kReceivedLine : kReceivedStatus;
}

// Kept: unlike the second generation's it goes on to the end of the buffer whatever fails on the way. Pinned by
// ReadThread_v1_test "Lines behind a failure".
QSRSLT CReadThread_v1::DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                                            unsigned int* escapeSize) {
  SCANSTATUS status = m_pScanError->Get();
  CParseExeCmdRes_v1 parser;
  QSRSLT result = QSRSLT_SUCCESS;
  unsigned char* position = bytes;
  unsigned char* const end = bytes + size;
  bool incomplete = false;
  while (position < end && !incomplete) {
    SCANIMAGEINFO info{};
    parser.ParseXcmdImageDataInfo(position, static_cast<unsigned long>(end - position), &info);
    switch (GetReceivedImageInfoStatus(info)) {
      case kReceivedLine:
        dispatchLine(info.lineData, status);
        break;
      case kReceivedLineLast:
        result = dispatchLine(info.lineData, status);
        break;
      case kReceivedStatus:
      case kReceivedStatusLast:
        DispatchStatusCode(info);
        break;
      case kReceivedLineIncomplete:
      case kReceivedStatusIncomplete:
        incomplete = true;
        break;
    }
    if (!incomplete) position = info.next == nullptr ? end : info.next;
  }
  if (const QSRSLT saved = escapeRest(position, end, escape, escapeSize, status); saved != 0) result = saved;
  // The device is closed by then: a page that was begun behind the end of all pages gets no end of its own either.
  if (m_pScanError->IsAllPageEnd() && !m_pScanError->IsErrorOccurred()) finishOpenPages(status);
  // The local copy may be older than what DispatchStatusCode recorded; the merge keeps the newer.
  m_pScanError->Set(status);
  return result;
}

QSRSLT CReadThread_v1::dispatchLine(const LINEDATA& line, SCANSTATUS& status) {
  const QSRSLT result = WriteDataBlockToImageDataArray(line);
  if (result == 0) return QSRSLT_SUCCESS;
  status.status = result;
  status.errPageNo = pageNumber(line);
  return result;
}

QSRSLT CReadThread_v1::WriteDataBlockToImageDataArray(const LINEDATA& line) {
  const unsigned int pageNo = pageNumber(line);
  if (pageNo == 0) return QSRSLT_SUCCESS;
  if (pageCount() < pageNo) AddNewImageDataToArray(line);
  CImageData& page = *pageAt(pageNo);
  if (page.IsHandedOver() || page.IsSettled()) return QSRSLT_SUCCESS;  // its end has come before
  CImageDataStore& store = *page.m_pCurrentStore;
  if (!IsImageDataWritableCondition()) {
    if (const QSRSLT result = WaitForImageDataWritableCondition(); result != 0) return result;
  }
  const bool isJpeg = line.compressType == static_cast<std::uint32_t>(kCompressJpeg);
  g_ScanDevApiLog.WriteDump(line.lineBytes, static_cast<int>(line.lineSize), isJpeg ? "DumpJpg" : "DumpPackBits",
                            static_cast<int>(pageNo));
  // Kept: what became of the write is not looked at. Pinned by ReadThread_v1_test "A line that finds no memory".
  if (isJpeg) {
    store.WriteJpegBlock(line.lineBytes, line.lineSize);
  } else {
    store.WriteLineData(static_cast<int>(line.dataType), static_cast<int>(line.compressType), line.lineBytes,
                        line.lineSize);
  }
  return QSRSLT_SUCCESS;
}

// Pages are never skipped: a first record for page 3 makes pages 1, 2 and 3.
void CReadThread_v1::AddNewImageDataToArray(const LINEDATA& line) {
  for (unsigned int next = pageCount() + 1; next <= pageNumber(line); ++next) {
    auto page = std::make_unique<CImageData>();
    const bool isJpeg = line.compressType == static_cast<std::uint32_t>(kCompressJpeg);
    page->m_pCurrentStore = isJpeg ? &page->m_jpegData : &page->m_rawData;
    page->m_pCurrentStore->StartWriteData(static_cast<int>(m_deviceParam.resolution.x),
                                          static_cast<int>(m_deviceParam.resolution.y), m_deviceParam.scanArea.right,
                                          m_deviceParam.scanArea.bottom, m_deviceParam.colorType, line.dataType,
                                          line.compressType);
    page->SetPageNo(next);
    appendPage(std::move(page));
  }
}

bool CReadThread_v1::DispatchStatusCode(const SCANIMAGEINFO& info) {
  SCANSTATUS status = m_pScanError->Get();
  const unsigned int pageNo = pageNumber(info.lineData);
  bool known = true;
  switch (info.statusCode) {
    case kAllPagesEnded:
      finishOpenPages(status);
      status.status = QSRSLT_SUCCESS;
      status.scanFinished = true;
      m_pDevAcs->Close();
      break;
    case kPageEnded:
      status.status = WriteImgeDataFinishProc(pageNo, believedPixels(info.lineData.heightPixel));
      if (status.status != 0) status.errPageNo = pageNo;
      status.lastReceivePageNo = pageNo;
      break;
    case kCanceledAtDevice:
    case kCanceledByHost:
      status.status = QSRSLT_CANCELED;
      status.canceled = true;
      status.cancelPageNo = status.lastReceivePageNo + 1;
      m_pDevAcs->Close();
      break;
    default: {
      bool found = false;
      TerminateDataReadProcess(&found);
      if (!found) status.betweenPageErr = true;
      status.status = QSRSLT_DEVICE_STOPPED;
      status.deviceErr = info.statusCode;
      status.errPageNo = status.lastReceivePageNo + 1;
      known = false;
    }
  }
  m_pScanError->Set(status);
  return known;
}

}  // namespace orvalle_scan_api
