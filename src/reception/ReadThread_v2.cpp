#include "reception/ReadThread_v2.h"

#include <algorithm>
#include <memory>

#include "foundation/trace.h"
#include "modules/ScanDec.h"
#include "reception/device_errors.h"
#include "settings/ConvertUnit.h"
#include "settings/PaperSize.h"
#include "settings/ScanParam.h"

namespace orvalle_scan_api {
namespace {

constexpr CAP kPresent = 2;
constexpr PAPERTYPE kPaperWithoutLimit = static_cast<PAPERTYPE>(25);  // told apart here alone
constexpr int kInfoSize = 0;
constexpr int kInfoColorCheck = 1;
constexpr int kTimerRestart = 0;
constexpr QSRSLT kOtherStatus = 0xD0;

}  // namespace

QSRSLT CReadThread_v2::ConvertDeviceErrorToQSRSLT(unsigned short deviceError) {
  return deviceErrorResult_v2(deviceError);
}

QSRSLT CReadThread_v2::GetColorProfile(void** data, int* size, int bpp) {
  if (data == nullptr || size == nullptr) return QSRSLT_NULL_ARGUMENT;
  const std::lock_guard<std::mutex> lock(m_iccMutex);
  const bool color = bpp == 24 && m_iccProfile.colorProfileSize > 0;
  const std::uint8_t* profile = color ? m_iccProfile.colorProfile : m_iccProfile.grayProfile;
  const std::int32_t bytes = color ? m_iccProfile.colorProfileSize : m_iccProfile.grayProfileSize;
  if (bytes < 1) return QSRSLT_WRONG_STATE;
  *data = const_cast<std::uint8_t*>(profile);
  *size = bytes;
  return QSRSLT_SUCCESS;
}

QSRSLT CReadThread_v2::StartScan() {
  Trace trace("StartScan");
  _SCANCMD_SCANPARAM command{};
  if (const QSRSLT result = negotiate(command, m_actualParam); result != 0) return trace.ret(result);    // 1 to 6
  if (const QSRSLT result = m_pScanCmd->SetScanParam(&command); result != 0) return trace.ret(result);   // 7
  if (const QSRSLT result = fetchColorProfile(); result != 0) return trace.ret(result);                  // 8
  const QSRSLT started = m_pScanCmd->StartScanning();                                                    // 9
  m_deviceParam = CScanParam().CreateDeviceScanParam(m_userParam, command, m_actualParam.maxSizePixel);  // 10
  rememberHeightLimit();
  return trace.ret(started);  // 11
}

QSRSLT CReadThread_v2::fetchColorProfile() {
  const bool wanted = (m_userParam.wantColorProfile & 0xFF) != 0;
  if (!wanted || m_capability.imageProcFunc.colorProfileOutput != kPresent) return QSRSLT_SUCCESS;
  // The lock is not held while the device is asked: GetColorProfile answers at once meanwhile.
  setIccProfile({});
  ICCPROFIE profile{};
  const QSRSLT result = CScanParam().GetColorProfile(m_pScanCmd, &profile, m_capability);
  if (result == 0) setIccProfile(profile);
  return result;
}

void CReadThread_v2::setIccProfile(const ICCPROFIE& profile) {
  const std::lock_guard<std::mutex> lock(m_iccMutex);
  m_iccProfile = profile;
}

// The height that was asked for does not change while the pages arrive.
void CReadThread_v2::rememberHeightLimit() {
  CScanParam settings;
  const _SCANCMD_SCANAREA area =
      settings.CalcScanCmdArea(m_actualParam.resolution.x, m_actualParam.resolution.y, m_actualParam.paperSource,
                               m_actualParam.maxSizePixel, m_userParam, m_capability);
  std::uint32_t height = area.height;
  if (m_userParam.edgeCut.enable != 0) {
    CConvertUnit convert;
    for (const int cut : {m_userParam.edgeCut.top, m_userParam.edgeCut.bottom}) {
      int pixels = 0;
      convert.ConvertToPixles(m_actualParam.resolution.y, cut, m_userParam.edgeCut.unit, &pixels);
      height += static_cast<std::uint32_t>(pixels);
    }
  }
  m_requestedHeight = static_cast<int>(height);
  m_heightLimited = m_userParam.paperType != PAPERTYPE_AUTO && m_userParam.paperType != kPaperWithoutLimit &&
                    !settings.IsLongPaperScanSetting(&m_userParam);
}

QSRSLT CReadThread_v2::DispatchReceivedData(unsigned char* bytes, unsigned int size, unsigned char** escape,
                                            unsigned int* escapeSize) {
  SCANSTATUS status = m_pScanError->Get();
  CParseExeCmdRes_v2 parser;
  QSRSLT result = QSRSLT_SUCCESS;
  unsigned char* position = bytes;
  unsigned char* const end = bytes + size;
  while (position < end && !m_pScanError->IsErrorOccurred()) {
    IMAGE_HEADER header;
    PARSE_RESULT record;
    unsigned char* next = position;
    const int parsed =
        parser.ParseXSCcmdImageDataInfo(position, static_cast<unsigned long>(end - position), &header, &record, &next);
    if (parsed == kParsedIncomplete) break;
    if (parsed != kParsedRecord) {
      result = QSRSLT_UNKNOWN_DATA;
      status.status = result;
      status.deviceErr = 1;
      g_ScanDevApiLog.WriteLog(0, "Read unknown data");
      break;
    }
    result = dispatchRecord(header, record, status);
    position = next;
    if (result != 0) break;
  }
  if (const QSRSLT saved = escapeRest(position, end, escape, escapeSize, status); saved != 0) result = saved;
  // The device is closed by then: a page that was begun behind the end of all pages gets no end of its own either.
  if (m_pScanError->IsAllPageEnd() && !m_pScanError->IsErrorOccurred()) finishOpenPages(status);
  // The local copy may be older than what DispatchStatusCode recorded; the merge keeps the newer.
  m_pScanError->Set(status);
  return result;
}

QSRSLT CReadThread_v2::dispatchRecord(const IMAGE_HEADER& header, const PARSE_RESULT& record, SCANSTATUS& status) {
  if (record.isInfo) {
    DispatchDataInfo(header, record);
  } else if (record.isFail) {
    g_ScanDevApiLog.WriteLog(0, "Received failed code = 0x%X", static_cast<unsigned>(record.failKind));
  } else if (record.isImageRecord && header.dataType <= kRecordBlock) {
    if (const QSRSLT result = WriteDataBlockToImageDataArray(header); result != 0) {
      status.status = result;
      status.errPageNo = header.pageNo;
      return result;
    }
  } else {
    DispatchStatusCode(header, record);
  }
  return QSRSLT_SUCCESS;
}

QSRSLT CReadThread_v2::WriteDataBlockToImageDataArray(const IMAGE_HEADER& header) {
  if (header.pageNo == 0) return QSRSLT_SUCCESS;  // there is no such page
  const std::uint32_t compress = ConvertToQvSncdcCompressType(header.compress);
  const std::uint32_t dataType = ConvertToQvSncdkDataType(header.color);
  if (pageCount() < header.pageNo) AddNewImageDataToArray(header.pageNo, compress, dataType);
  CImageData& page = *pageAt(header.pageNo);
  if (page.IsHandedOver() || page.GetIsBlankPage()) return QSRSLT_SUCCESS;  // its end has come before
  CImageDataStore& store = *page.m_pCurrentStore;
  const bool isJpeg = compress == static_cast<std::uint32_t>(kCompressJpeg);
  const int newHeight = isJpeg ? believedPixels(header.heightSoFar) : store.GetHeightPixel() + 1;
  if (!CPaperSize().IsSupportImageSize(m_userParam.resolution.y, m_deviceParam.resolution.y,
                                       static_cast<unsigned>(newHeight), &m_userParam)) {
    page.SetPageScanIsTerminated(true);
    return QSRSLT_SUCCESS;
  }
  if (!IsImageDataWritableCondition()) {
    if (const QSRSLT result = WaitForImageDataWritableCondition(); result != 0) return result;
  }
  const QSRSLT result = isJpeg ? writeJpeg(store, header, newHeight) : writeLine(store, header, newHeight);
  store.UpdateCompressType(compress);
  return result;
}

QSRSLT CReadThread_v2::writeJpeg(CImageDataStore& store, const IMAGE_HEADER& header, int newHeight) {
  g_ScanDevApiLog.WriteDump(header.data, static_cast<int>(header.dataSize), "DumpJpg", static_cast<int>(header.pageNo));
  const QSRSLT result = store.WriteJpegBlock(header.data, header.dataSize);
  if (header.widthPixel != 0) store.UpdateWidthPixel(believedPixels(header.widthPixel));
  // Kept: the data is written whole also above the limit; only the height is held back, and the decoder honours it.
  if (newHeight != 0) store.UpdateHeightPixel(isAboveLimit(newHeight) ? m_requestedHeight : newHeight);
  return result;
}

QSRSLT CReadThread_v2::writeLine(CImageDataStore& store, const IMAGE_HEADER& header, int newHeight) {
  g_ScanDevApiLog.WriteDump(header.data, static_cast<int>(header.dataSize), "DumpPackBits",
                            static_cast<int>(header.pageNo));
  QSRSLT result = QSRSLT_SUCCESS;
  if (isAboveLimit(newHeight)) {
    store.UpdateHeightPixel(m_requestedHeight);
  } else {
    result = store.WriteLineData(static_cast<int>(ConvertToQvSncdkDataType(header.color)),
                                 static_cast<int>(ConvertToQvSncdcCompressType(header.compress)), header.data,
                                 header.dataSize);
  }
  if (header.widthPixel != 0) store.UpdateWidthPixel(believedPixels(header.widthPixel));
  return result;
}

// Pages are never skipped: a first record for page 3 makes pages 1, 2 and 3.
void CReadThread_v2::AddNewImageDataToArray(unsigned int pageNo, std::uint32_t compress, std::uint32_t dataType) {
  const COLORTYPE colorType = m_deviceParam.colorType;
  const bool labelledAsJpeg =
      colorType == COLORTYPE_AUTO || colorType == COLORTYPE_TRUEGRAY || colorType == COLORTYPE_COLOR24BIT;
  for (unsigned int next = pageCount() + 1; next <= pageNo; ++next) {
    auto page = std::make_unique<CImageData>();
    const bool isJpeg = compress == static_cast<std::uint32_t>(kCompressJpeg);
    page->m_pCurrentStore = isJpeg ? &page->m_jpegData : &page->m_rawData;
    // Kept: the label of these colour types is 5 and 5 whatever the stream says, and stays so for the later pages of
    // this call, whose store is then chosen by it.
    if (labelledAsJpeg) {
      dataType = static_cast<std::uint32_t>(kLineKindRgb);
      compress = static_cast<std::uint32_t>(kCompressJpeg);
    }
    page->m_pCurrentStore->StartWriteData(static_cast<int>(m_deviceParam.resolution.x),
                                          static_cast<int>(m_deviceParam.resolution.y), m_deviceParam.scanArea.right,
                                          isJpeg ? m_deviceParam.scanArea.bottom : 0, colorType, dataType, compress);
    page->SetPageNo(next);
    appendPage(std::move(page));
  }
}

bool CReadThread_v2::DispatchDataInfo(const IMAGE_HEADER& header, const PARSE_RESULT& record) {
  g_ScanDevApiLog.WriteLog(0, "DispatchDataInfo status = %d", record.infoKind);
  if (header.pageNo == 0) return true;
  if (pageCount() < header.pageNo) {
    AddNewImageDataToArray(header.pageNo, ConvertToQvSncdcCompressType(header.compress),
                           ConvertToQvSncdkDataType(header.color));
  }
  CImageData& page = *pageAt(header.pageNo);
  switch (record.infoKind) {
    case kInfoColorCheck: {
      constexpr int kBppOfColor[] = {1, 8, 8, 24};
      SetAutoColorInfo(header.pageNo, kBppOfColor[header.color]);
      return true;
    }
    case kInfoSize: {
      if (page.IsHandedOver() || page.IsSettled()) return true;
      CImageDataStore& store = *page.m_pCurrentStore;
      if (header.widthPixel != 0) store.UpdateWidthPixel(believedPixels(header.widthPixel));
      if (header.heightPixel != 0) store.UpdateHeightPixel(believedPixels(header.heightPixel));
      return true;
    }
    default:
      return false;
  }
}

bool CReadThread_v2::DispatchStatusCode(const IMAGE_HEADER& header, const PARSE_RESULT& record) {
  g_ScanDevApiLog.WriteLog(0, "DispatchStatusCode status = 0x%X", header.dataType);
  SCANSTATUS status = m_pScanError->Get();
  const auto pageNo = static_cast<int>(header.pageNo);
  bool known = true;
  switch (header.dataType) {
    case kRecordAllPagesEnded:
      finishOpenPages(status);
      status.scanFinished = true;
      g_ScanDevApiLog.WriteLog(1, "Status = All Page End");
      m_pDevAcs->Close();
      break;
    case kRecordBlankPageEnded:
      SetBlankPageFlag(header.pageNo);
      g_ScanDevApiLog.WriteLog(1, "Status = White Page End. Page No = %d", pageNo);
      endPage(header, status);
      g_ScanDevApiLog.WriteLog(1, "Status = Page End. Page No = %d", pageNo);
      break;
    case kRecordPageEnded:
      endPage(header, status);
      g_ScanDevApiLog.WriteLog(1, "Status = Page End. Page No = %d", pageNo);
      break;
    case kRecordPageTooLong:
      SetPageScanIsTerminated(header.pageNo);
      endPage(header, status);
      g_ScanDevApiLog.WriteLog(1, "Status = Device Max Length Page End. Page No = %d", pageNo);
      break;
    default:
      endScan(header, record, status);
      known = false;
  }
  m_pScanError->Set(status);
  return known;
}

void CReadThread_v2::endPage(const IMAGE_HEADER& header, SCANSTATUS& status) {
  status.status = WriteImgeDataFinishProc(header.pageNo, believedPixels(header.heightSoFar));
  if (status.status != 0) status.errPageNo = header.pageNo;
  status.lastReceivePageNo = header.pageNo;
}

// Kept: timer records too end unfinished pages and may set betweenPageErr.
void CReadThread_v2::endScan(const IMAGE_HEADER& header, const PARSE_RESULT& record, SCANSTATUS& status) {
  if (record.isStop) {
    status.status = QSRSLT_CANCELED;
    status.canceled = true;
    status.cancelPageNo = status.lastReceivePageNo + 1;
    g_ScanDevApiLog.WriteLog(1, "Cancel response code = 0x%X", static_cast<unsigned>(record.stopKind));
  } else if (record.isError) {
    status.status = QSRSLT_DEVICE_STOPPED;
    status.deviceErr = record.errorCode;
    status.errPageNo = status.lastReceivePageNo + 1;
    g_ScanDevApiLog.WriteLog(1, "Device error code = 0x%X", record.errorCode);
  } else if (record.isTimer) {
    SetScanTimeOutSec(record.timerSeconds * 1000L);
    g_ScanDevApiLog.WriteLog(1, "Scan timeout postpone. time = %d[sec]", record.timerSeconds);
    // Behind the end of all pages no page is incomplete, and the decoder has them.
    if (record.timerKind == kTimerRestart && !status.scanFinished) {
      ClearImageDataFromArray(status.lastReceivePageNo + 1);
      g_ScanDevApiLog.WriteLog(1, "Delete noncomplete scan images. last page no = %d",
                               static_cast<int>(status.lastReceivePageNo));
    }
  } else {
    status.status = kOtherStatus;
    status.errPageNo = lowestOpenPage();
    g_ScanDevApiLog.WriteLog(1, "Other stauts status = 0x%X", header.dataType);
  }
  bool found = false;
  TerminateDataReadProcess(&found);
  if (!found) status.betweenPageErr = true;
}

void CReadThread_v2::SetBlankPageFlag(unsigned int pageNo) {
  CImageData* page = pageAt(pageNo);
  if (page != nullptr && !page->IsHandedOver()) page->SetIsBlankPage(true);
}

void CReadThread_v2::SetPageScanIsTerminated(unsigned int pageNo) {
  if (CImageData* page = pageAt(pageNo); page != nullptr) page->SetPageScanIsTerminated(true);
}

void CReadThread_v2::SetAutoColorInfo(unsigned int pageNo, int bitPerPixel) {
  if (CImageData* page = pageAt(pageNo); page != nullptr) page->SetAutoColorBpp(bitPerPixel);
}

std::uint32_t CReadThread_v2::ConvertToQvSncdcCompressType(IMAGE_COMPRESS compress) {
  switch (compress) {
    case IMAGE_COMPRESS_PACKBITS:
      return kCompressPackBits;
    case IMAGE_COMPRESS_JPEG:
      return kCompressJpeg;
    default:
      return kCompressNone;
  }
}

std::uint32_t CReadThread_v2::ConvertToQvSncdkDataType(IMAGE_COLOR color) {
  switch (color) {
    case 2:
      return kLineKindGray;
    case 3:
      return kLineKindRgb;
    default:
      return kLineKindMono;
  }
}

}  // namespace orvalle_scan_api
